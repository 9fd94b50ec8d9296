#pragma once
// The effect mechanism shared by every network kind and every catalogue.
//
// A catalogue is a table of rows, one per effect, in a fixed order. A row carries everything
// the engine knows about an effect: its labels, its lambda default, how it is printed, the
// clique order it needs, whether the chain carries its statistic, the variant that its
// family's shared function switches on, and two plain functions, the total over a network
// and the change for one dyad. The rows are templates over the store type, so that the same
// function serves every store of a kind.
//
// A run turns its included effects into a list of terms (one per parameter, in catalogue
// order for the structural effects, then the attribute and covariate effects in parameter
// order); the combiner is a plain loop over that list.
//
// Change functions follow one convention: the increase of the statistic when the tie (i, j)
// is added, evaluated with the tie absent from the adjacency and the degrees. `added` is 1
// for a proposed addition and 0 for a removal; during a removal the pair counts of the store
// (shared partners, triangles, two-paths) still count the tie, and the function corrects for
// it.

#include <array>
#include <cstdint>
#include <vector>

#include "effects/labels.h"
#include "network/bookkeeping.h"

namespace vexa {

inline constexpr int weight_table_cap = 100;
using WeightTable = std::array<float, weight_table_cap + 1>;

// (1 - 1/lambda)^m for m = 1..100 computed in double and stored in single precision; entry 0 is 1.
WeightTable weight_table(float lambda);

// Entry m + 1: lambda (w(m) - w(m + 1)) for m = -1 .. cap, what one more configuration adds to
// a term lambda (1 - w(L)) whose count L moves from m to m + 1 (0 from the cap on, where the
// weights stop changing). Kept beside the weights so that a change statistic adding many such
// steps reads one entry per step instead of two weights and a product.
using GainTable = std::array<double, weight_table_cap + 2>;

// Per-chain scratch: what the combiner prepares once per proposal for the terms that read it,
// and what the totals pass counts once for all terms. Sized by the terms, never by a store.
struct Workspace {
    int32_t clique_depth = 0;            // the largest clique size an included effect reads
    std::vector<double> clique_changes;  // entry k-1: k-cliques that adding the dyad creates
    std::vector<double> clique_counts;   // entry k-1: k-cliques of the network (the totals pass)
};

template <class Store>
struct Term;

// Increase of the statistic when (i, j) is added; see the convention above.
template <class Store>
using ChangeFn = double (*)(const Store& store, const Term<Store>& term, const Workspace& workspace,
                            int i, int j, int added);
// The statistic of the whole network.
template <class Store>
using TotalFn = double (*)(const Store& store, const Term<Store>& term, const Workspace& workspace);

// What an effect's change statistic reads of the network beyond the tie it toggles: nothing
// (under the effect every tie is independent of the others), the reverse tie of a digraph's
// dyad (dyads are independent of each other), or other ties. A model whose effects read
// nothing beyond the dyad has a likelihood that factors over the dyads and can be maximised
// exactly.
enum class TieReads : int8_t { nothing, reverse, network };

// Everything about an effect but its functions: what readers and writers need.
struct EffectDescription {
    EffectLabels labels;
    float lambda_default = 0.0f;  // 0 for effects without lambda
    bool integral = true;         // a count: printed with %.0f where counts are
    int8_t clique_order = 0;      // cliques up to this size are read (0: none)
    bool carried = true;          // false: the chain does not carry it; counted afresh at samples
    int16_t variant = 0;          // the member of a family that a shared function computes
    TieReads reads = TieReads::network;
    // The pair and triangle counts its change and total read from the store: a chain's store
    // keeps the union over its terms and drops the rest.
    Bookkeeping needs = Bookkeeping::all;
    // Counts its change reads, when the store keeps them, only to do less work (to stop a walk
    // early, say); its values are the same without them.
    Bookkeeping helps = Bookkeeping::none;

    bool alternating() const { return lambda_default != 0.0f; }
};

template <class Store>
struct EffectRow {
    EffectDescription about;
    ChangeFn<Store> change;
    TotalFn<Store> total;
};

// One included effect of a run, ready for the combiner.
template <class Store>
struct Term {
    int32_t row = 0;                        // its catalogue row
    int32_t slot = -1;                      // index into the parameter and statistics vectors
    int16_t variant = 0;                    // copied from the row
    bool carried = true;                    // copied from the row
    int8_t clique_order = 0;                // copied from the row
    TieReads reads = TieReads::network;     // copied from the row
    Bookkeeping needs = Bookkeeping::all;   // copied from the row
    Bookkeeping helps = Bookkeeping::none;  // copied from the row
    float lambda = 0.0f;  // the run's lambda (its default when the run file gave 0)
    WeightTable weights{};
    GainTable gains{};
    ChangeFn<Store> change = nullptr;
    TotalFn<Store> total = nullptr;
    // Attribute and covariate terms: the attribute's values, one per node (a covariate: n x n,
    // row-major), with missing values already read as 0, and a flag per node that is 1 where
    // the value is missing. Null for structural terms.
    const double* values = nullptr;
    const uint8_t* missing = nullptr;
};

// The pair and triangle counts the terms read: what a store must keep for a chain of them.
template <class Store>
Bookkeeping needs_of(const std::vector<Term<Store>>& terms) {
    Bookkeeping needs = Bookkeeping::none;
    for (const Term<Store>& term : terms) needs |= term.needs;
    return needs;
}

// The counts that would save the terms work, beyond what they need.
template <class Store>
Bookkeeping helps_of(const std::vector<Term<Store>>& terms) {
    Bookkeeping helps = Bookkeeping::none;
    for (const Term<Store>& term : terms) helps |= term.helps;
    return helps;
}

// w(m): 0 below 0, 1 at 0, the table entry up to the cap and the cap's entry beyond it.
template <class Store>
inline float weight(const Term<Store>& term, int m) {
    if (m < 0) return 0.0f;
    if (m > weight_table_cap) m = weight_table_cap;
    return term.weights[static_cast<size_t>(m)];
}

// lambda (w(m) - w(m + 1)), from the gain table: bit for bit the product computed from the weights.
template <class Store>
inline double gain(const Term<Store>& term, int m) {
    if (m < -1) return 0.0;
    const int entry = m > weight_table_cap ? weight_table_cap + 1 : m + 1;
    return term.gains[static_cast<size_t>(entry)];
}

}  // namespace vexa
