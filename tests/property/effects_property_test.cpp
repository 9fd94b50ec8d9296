// Every structural effect of both network kinds against an independent recount, on seeded
// random networks: the totals pass equals a brute-force count from the adjacency matrix; for
// every dyad, in the addition state and in the removal state of the store, the change
// statistic equals the total with the tie minus the total without it; toggling every dyad
// there and back leaves the store exactly as it was; a total equals the empty network's value
// plus the changes summed along a shuffled build-up of its ties; and relabelling the nodes
// leaves every total unchanged. Every row runs on both stores of its kind, which must also
// agree with each other exactly.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "numeric/rng.h"
#include "support/kinds.h"

namespace vexa {
namespace {

struct RowCase {
    NetworkKind kind;
    int row;
    float lambda;  // 0 for rows without one
    int n;
};

// Short names in test listings instead of the bytes of the case.
void PrintTo(const RowCase& c, std::ostream* out) {
    *out << (c.kind == NetworkKind::graph ? "graph" : "digraph") << " row " << c.row << " lambda "
         << c.lambda << " n " << c.n;
}

std::vector<RowCase> row_cases() {
    std::vector<RowCase> cases;
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        const CatalogueView& catalogue = structural_catalogue(kind);
        for (int row = 0; row < static_cast<int>(catalogue.rows.size()); ++row) {
            const EffectDescription& about = catalogue.rows[static_cast<size_t>(row)];
            std::vector<float> lambdas{0.0f};
            // Below 1 (switched off for most), exactly 1 (the weights become 0^m) and above.
            if (about.alternating()) lambdas = {0.5f, 1.0f, 1.5f, 2.0f, 3.0f};
            for (const float lambda : lambdas) {
                for (const int n : {1, 2, 3, 5, 12, 30}) cases.push_back({kind, row, lambda, n});
            }
        }
    }
    return cases;
}

template <class Store>
class RowChecker {
public:
    using Fixture = testing::KindFixture<Store>;

    explicit RowChecker(const RowCase& c)
        : case_(c),
          model_(testing::single_effect_model(c.kind, c.row, c.lambda)),
          terms_(make_terms<Store>(model_)),
          about_(structural_catalogue(c.kind).rows[static_cast<size_t>(c.row)]) {
        prepare_workspace(workspace_, terms_);
    }

    void run() {
        uint32_t seed = 3;
        for (const auto& [matrix, name] : Fixture::networks(case_.n)) {
            SCOPED_TRACE(name);
            check_network(matrix, seed++);
        }
    }

private:
    // Counts must agree exactly; alternating values within the rounding of their tables.
    void expect_same(double actual, double expected, const std::string& what) const {
        if (about_.alternating()) {
            EXPECT_NEAR(actual, expected, 1e-5 * std::max(1.0, std::fabs(expected))) << what;
        } else {
            EXPECT_EQ(actual, expected) << what;
        }
    }

    double total(const Store& store) { return testing::totals_of(store, terms_, 1)[0]; }

    double change(Store& store, int i, int j, int added) {
        const double parameter = 1.0;
        double out = -12345.0;
        change_statistics(store, terms_, workspace_, &parameter, &out, i, j, added);
        return out;
    }

    // Addition state: the tie is absent everywhere.
    void check_addition(Store& store, int i, int j, const char* where) {
        const double without = total(store);
        const double c = change(store, i, j, 1);
        add_tie(store, i, j);
        update_after_toggle(store, i, j, 1);
        expect_same(c, total(store) - without, std::string("adding ").append(where));
    }

    // Removal state: adjacency and degrees exclude the tie, the pair counts still count it.
    void check_removal(Store& store, int i, int j, const char* where) {
        const double with = total(store);
        remove_tie(store, i, j);
        const double c = change(store, i, j, 0);
        update_after_toggle(store, i, j, 0);
        expect_same(c, with - total(store), std::string("removing ").append(where));
    }

    std::vector<std::pair<int, int>> dyads() const {
        std::vector<std::pair<int, int>> all;
        for (int i = 0; i < case_.n; ++i) {
            for (int j = Fixture::directed() ? 0 : i + 1; j < case_.n; ++j) {
                if (i != j) all.emplace_back(i, j);
            }
        }
        return all;
    }

    void check_network(const typename Fixture::Matrix& matrix, uint32_t seed) {
        const int n = case_.n;
        Store store = Fixture::build(matrix);

        // The totals pass against the recount from the matrix alone.
        const double truth = Fixture::value(Fixture::count(matrix), case_.row, case_.lambda);
        expect_same(total(store), truth, "total");

        // Relabelling the nodes leaves the total as it is.
        std::vector<int> to(static_cast<size_t>(n));
        for (int v = 0; v < n; ++v) to[static_cast<size_t>(v)] = v;
        Rng shuffle;
        shuffle.seed(seed * 13u + 1u);
        for (size_t k = to.size(); k > 1; --k)
            std::swap(to[k - 1], to[static_cast<size_t>(shuffle.next()) % k]);
        expect_same(total(Fixture::build(Fixture::relabel(matrix, to))), truth,
                    "total after relabelling");

        if (!about_.carried) {
            EXPECT_EQ(change(store, 0, n > 1 ? 1 : 0, 1), 0.0)
                << "a statistic the chain does not carry is never weighed";
            return;
        }

        // Every dyad in both states of the store, the other ties as drawn.
        const std::vector<std::pair<int, int>> all = dyads();
        for (const auto& [i, j] : all) {
            char where[48];
            std::snprintf(where, sizeof where, "(%d,%d)", i, j);
            if (Fixture::tied(matrix, i, j)) {
                check_removal(store, i, j, where);
                check_addition(store, i, j, where);
            } else {
                check_addition(store, i, j, where);
                check_removal(store, i, j, where);
            }
        }
        EXPECT_EQ(check_bookkeeping(store), "");
        EXPECT_TRUE(Fixture::adjacency(store).cells == matrix.cells)
            << "the toggles restored the network";

        // A shuffled build-up from the empty network.
        std::vector<std::pair<int, int>> ties;
        for (const auto& dyad : all) {
            if (Fixture::tied(matrix, dyad.first, dyad.second)) ties.push_back(dyad);
        }
        Rng rng;
        rng.seed(seed * 7u + 3u);
        for (size_t k = ties.size(); k > 1; --k)
            std::swap(ties[k - 1], ties[static_cast<size_t>(rng.next()) % k]);
        Store built = Fixture::build(typename Fixture::Matrix(n));
        double running = total(built);
        expect_same(
            running,
            Fixture::value(Fixture::count(typename Fixture::Matrix(n)), case_.row, case_.lambda),
            "empty network");
        for (const auto& [i, j] : ties) {
            running += change(built, i, j, 1);
            add_tie(built, i, j);
            update_after_toggle(built, i, j, 1);
        }
        expect_same(running, truth, "empty value plus the changes of a shuffled build-up");
    }

    RowCase case_;
    Model model_;
    std::vector<Term<Store>> terms_;
    Workspace workspace_;
    const EffectDescription& about_;
};

class EffectProperty : public ::testing::TestWithParam<RowCase> {};

// The two stores of a kind give the same total and the same change for every dyad in both
// states, to the last bit: a chain's path must not depend on the store it runs on.
template <class Dense, class Sparse>
void check_stores_agree(const RowCase& c) {
    using Fixture = testing::KindFixture<Dense>;
    const Model model = testing::single_effect_model(c.kind, c.row, c.lambda);
    const std::vector<Term<Dense>> dense_terms = make_terms<Dense>(model);
    const std::vector<Term<Sparse>> sparse_terms = make_terms<Sparse>(model);
    Workspace dense_workspace, sparse_workspace;
    prepare_workspace(dense_workspace, dense_terms);
    prepare_workspace(sparse_workspace, sparse_terms);
    const double parameter = 1.0;
    for (const auto& [matrix, name] : Fixture::networks(c.n)) {
        SCOPED_TRACE(name);
        Dense dense = Fixture::build(matrix);
        Sparse sparse = testing::KindFixture<Sparse>::build(matrix);
        EXPECT_EQ(testing::totals_of(dense, dense_terms, 1)[0],
                  testing::totals_of(sparse, sparse_terms, 1)[0])
            << "total";
        for (int i = 0; i < c.n; ++i) {
            for (int j = Fixture::directed() ? 0 : i + 1; j < c.n; ++j) {
                if (i == j) continue;
                const bool tied = matrix(i, j);
                if (tied) {
                    remove_tie(dense, i, j);
                    remove_tie(sparse, i, j);
                }
                double a = 0.0, b = 0.0;
                change_statistics(dense, dense_terms, dense_workspace, &parameter, &a, i, j,
                                  tied ? 0 : 1);
                change_statistics(sparse, sparse_terms, sparse_workspace, &parameter, &b, i, j,
                                  tied ? 0 : 1);
                EXPECT_EQ(a, b) << (tied ? "removing " : "adding ") << i << "," << j;
                if (tied) {
                    add_tie(dense, i, j);
                    add_tie(sparse, i, j);
                }
            }
        }
    }
}

TEST_P(EffectProperty, TotalsAndChangesAgreeWithRecounts) {
    const RowCase& c = GetParam();
    switch (c.kind) {
        case NetworkKind::graph:
            RowChecker<Graph>(c).run();
            RowChecker<SparseGraph>(c).run();
            check_stores_agree<Graph, SparseGraph>(c);
            break;
        case NetworkKind::digraph:
            RowChecker<Digraph>(c).run();
            RowChecker<SparseDigraph>(c).run();
            check_stores_agree<Digraph, SparseDigraph>(c);
            break;
    }
}

std::string case_name(const ::testing::TestParamInfo<RowCase>& info) {
    const RowCase& c = info.param;
    const char* column =
        structural_catalogue(c.kind).rows[static_cast<size_t>(c.row)].labels.sample_column;
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "%s_%s_lambda%d_n%d",
                  c.kind == NetworkKind::graph ? "graph" : "digraph", column,
                  static_cast<int>(c.lambda * 10.0f), c.n);
    std::string name = buffer;
    for (char& ch : name) {
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(EveryRow, EffectProperty, ::testing::ValuesIn(row_cases()), case_name);

}  // namespace
}  // namespace vexa
