#pragma once
// The catalogues of both network kinds as readers and writers see them (labels, lambda
// defaults, orders), and the rows with their functions as the terms of a store type need them.
//
// Orders: a structural catalogue lists its effects in report order; the run file (and the
// update file) may list them in another order, given as `run_file_order`. An attribute
// catalogue lists its effects in run-file order; the parameter vector (and every report that
// labels it) may take them in another order, given as `vector_order`.
//
// Each catalogue is written as one table (catalogue_table.h), from which its view and its
// rows are derived.

#include <cstdint>
#include <span>

#include "effects/term.h"
#include "network/network_kind.h"

namespace vexa {

// The four kinds of attribute effects, in the order their sections appear and their
// parameters follow the structural ones.
enum class AttributeKind : int32_t { binary = 0, continuous = 1, categorical = 2, covariate = 3 };
inline constexpr int attribute_kind_count = 4;

struct CatalogueView {
    std::span<const EffectDescription> rows;
    std::span<const int32_t> run_file_order;  // rows with a run-file entry, in run-file order
    std::span<const int32_t> vector_order;    // rows in parameter-vector order
};

const CatalogueView& structural_catalogue(NetworkKind kind);
const CatalogueView& attribute_catalogue(NetworkKind kind, AttributeKind which);

// The rows with their functions, for the terms of a store type. Defined beside each kind's
// catalogue for the store types of that kind.
template <class Store>
std::span<const EffectRow<Store>> structural_rows();
template <class Store>
std::span<const EffectRow<Store>> attribute_rows(AttributeKind which);

// The term of a row as a run builds it: a lambda of 0 takes the row's default, and an
// alternating row gets its weight table. `index` is the row's place in its catalogue.
template <class Store>
Term<Store> term_of(const EffectRow<Store>& row, size_t index, int32_t slot, float lambda) {
    Term<Store> term;
    term.row = static_cast<int32_t>(index);
    term.slot = slot;
    term.variant = row.about.variant;
    term.carried = row.about.carried;
    term.clique_order = row.about.clique_order;
    term.reads = row.about.reads;
    term.needs = row.about.needs;
    term.helps = row.about.helps;
    term.change = row.change;
    term.total = row.total;
    if (row.about.alternating()) {
        term.lambda = lambda == 0.0f ? row.about.lambda_default : lambda;
        term.weights = weight_table(term.lambda);
        for (size_t k = 0; k < term.gains.size(); ++k) {
            const int m = static_cast<int>(k) - 1;  // entry k holds the step from m to m + 1
            term.gains[k] =
                static_cast<double>(term.lambda) *
                (static_cast<double>(weight(term, m)) - static_cast<double>(weight(term, m + 1)));
        }
    }
    return term;
}

// The term of a structural row of the store type's catalogue.
template <class Store>
Term<Store> structural_term(int row, int32_t slot, float lambda = 0.0f) {
    return term_of(structural_rows<Store>()[static_cast<size_t>(row)], static_cast<size_t>(row),
                   slot, lambda);
}

}  // namespace vexa
