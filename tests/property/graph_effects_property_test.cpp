// Every graph structural effect against an independent recount, on seeded random graphs:
// the totals pass equals a brute-force count from the adjacency matrix; for every dyad, in
// the addition state and in the removal state of the store, the change statistic equals the
// total with the edge minus the total without it; and a total equals the empty graph's value
// plus the changes summed along a shuffled build-up of its edges.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "effects/graph_catalogue.h"
#include "effects/model.h"
#include "network/graph.h"
#include "numeric/rng.h"
#include "support/brute_force.h"

namespace vexa {
namespace {

using testing::AdjacencyMatrix;

struct RowCase {
    GraphEffect effect;
    float lambda;  // 0 for rows without one
};

std::vector<RowCase> row_cases() {
    std::vector<RowCase> cases;
    for (const GraphEffectRow& row : graph_catalogue()) {
        if (!row.alternating()) {
            cases.push_back({row.id, 0.0f});
            continue;
        }
        // Below 1 (switched off, except AET), exactly 1 (the weights become 0^m) and above.
        for (const float lambda : {0.5f, 1.0f, 1.5f, 2.0f, 3.0f}) cases.push_back({row.id, lambda});
    }
    return cases;
}

bool reads_cliques(GraphEffect e) {
    return e == GraphEffect::clique4 || e == GraphEffect::clique5 || e == GraphEffect::clique6 ||
           e == GraphEffect::clique7 || e == GraphEffect::ac;
}

// One term at slot 0, built the way a run builds it.
std::vector<Term> single_term(const RowCase& c) {
    Model model = empty_model(NetworkKind::graph);
    model.structural[static_cast<size_t>(c.effect)].slot = 0;
    model.structural[static_cast<size_t>(c.effect)].lambda = c.lambda;
    return graph_terms(model);
}

double total_of(Graph& g, const std::vector<Term>& terms) {
    compute_totals(g, terms);
    return g.statistics[0];
}

class GraphEffectProperty : public ::testing::TestWithParam<std::tuple<RowCase, int>> {
protected:
    void SetUp() override {
        row_case_ = std::get<0>(GetParam());
        n_ = std::get<1>(GetParam());
        terms_ = single_term(row_case_);
        ASSERT_EQ(terms_.size(), 1u);
        depth_ = reads_cliques(row_case_.effect) ? 8 : 0;
        alternating_ = graph_row(row_case_.effect).alternating();
    }

    // Counts must agree exactly; alternating values within the rounding of their tables.
    void expect_same(double actual, double expected, const std::string& what) const {
        if (alternating_) {
            EXPECT_NEAR(actual, expected, 1e-5 * std::max(1.0, std::fabs(expected))) << what;
        } else {
            EXPECT_EQ(actual, expected) << what;
        }
    }

    double change(Graph& g, int i, int j, int added) {
        const double parameter = 1.0;
        double out = -12345.0;
        change_statistics(g, terms_, &parameter, &out, i, j, added);
        return out;
    }

    bool checks_change() const {
        return row_case_.effect != GraphEffect::et0 && row_case_.effect != GraphEffect::etnt;
    }

    // Addition state: the edge is absent everywhere.
    void check_addition(Graph& g, int i, int j, const char* where) {
        const double without = total_of(g, terms_);
        const double c = change(g, i, j, 1);
        add_edge(g, i, j);
        update_shared_partners(g, i, j, 1);
        const double with = total_of(g, terms_);
        expect_same(c, with - without, std::string("adding ").append(where));
    }

    // Removal state: adjacency and degrees exclude the edge, partners and triangles still count it.
    void check_removal(Graph& g, int i, int j, const char* where) {
        const double with = total_of(g, terms_);
        remove_edge(g, i, j);
        const double c = change(g, i, j, 0);
        update_shared_partners(g, i, j, 0);
        const double without = total_of(g, terms_);
        expect_same(c, with - without, std::string("removing ").append(where));
    }

    RowCase row_case_{};
    int n_ = 0;
    int depth_ = 0;
    bool alternating_ = false;
    std::vector<Term> terms_;
};

std::vector<double> densities_for(int n) {
    if (n <= 2) return {0.0, 1.0};
    if (n >= 30) return {0.1, 0.3, 0.6};  // denser graphs of 30 nodes hold too many cliques
    return {0.1, 0.3, 0.6, 0.9};
}

TEST_P(GraphEffectProperty, TotalsAndChangesAgreeWithRecounts) {
    for (const double density : densities_for(n_)) {
        for (const uint32_t seed : {11u, 29u}) {
            const AdjacencyMatrix matrix = testing::random_matrix(n_, density, seed + static_cast<uint32_t>(n_));
            char graph_name[96];
            std::snprintf(graph_name, sizeof graph_name, "n %d, density %.2f, seed %u", n_, density, seed);
            SCOPED_TRACE(graph_name);
            Graph g = testing::graph_from(matrix, 1, depth_);

            // The totals pass against the recount from the matrix alone.
            const testing::BruteCounts counts = testing::brute_force_counts(matrix);
            const double truth = testing::brute_force_value(counts, row_case_.effect, row_case_.lambda);
            expect_same(total_of(g, terms_), truth, "total");

            if (!checks_change()) {
                EXPECT_EQ(change(g, 0, n_ > 1 ? 1 : 0, 1), 0.0) << "0ET and ETNT are never weighed";
                continue;
            }

            // Every dyad in both states of the store, the other edges as drawn.
            for (int i = 0; i < n_; ++i) {
                for (int j = i + 1; j < n_; ++j) {
                    char where[48];
                    std::snprintf(where, sizeof where, "{%d,%d}", i, j);
                    if (matrix(i, j)) {
                        check_removal(g, i, j, where);
                        check_addition(g, i, j, where);
                    } else {
                        check_addition(g, i, j, where);
                        check_removal(g, i, j, where);
                    }
                }
            }
            EXPECT_EQ(check_bookkeeping(g), "");
            EXPECT_TRUE(testing::adjacency_of(g).cells == matrix.cells) << "the toggles restored the graph";

            // A shuffled build-up from the empty graph.
            std::vector<std::pair<int, int>> edges;
            for (int i = 0; i < n_; ++i) {
                for (int j = i + 1; j < n_; ++j) {
                    if (matrix(i, j)) edges.emplace_back(i, j);
                }
            }
            Rng rng;
            rng.seed(seed * 7u + 3u);
            for (size_t k = edges.size(); k > 1; --k) {
                std::swap(edges[k - 1], edges[static_cast<size_t>(rng.next()) % k]);
            }
            Graph built = create(n_, 1, depth_);
            double running = total_of(built, terms_);
            expect_same(running, testing::brute_force_value(testing::brute_force_counts(AdjacencyMatrix(n_)),
                                                           row_case_.effect, row_case_.lambda),
                        "empty graph");
            for (const auto& [i, j] : edges) {
                running += change(built, i, j, 1);
                add_edge(built, i, j);
                update_shared_partners(built, i, j, 1);
            }
            expect_same(running, truth, "empty value plus the changes of a shuffled build-up");
        }
    }
}

std::string case_name(const ::testing::TestParamInfo<std::tuple<RowCase, int>>& info) {
    const RowCase& c = std::get<0>(info.param);
    char buffer[64];
    if (c.lambda != 0.0f) {
        std::snprintf(buffer, sizeof buffer, "%s_lambda%d_n%d", graph_row(c.effect).sample_column,
                      static_cast<int>(c.lambda * 10.0f), std::get<1>(info.param));
    } else {
        std::snprintf(buffer, sizeof buffer, "%s_n%d", graph_row(c.effect).sample_column, std::get<1>(info.param));
    }
    std::string name = buffer;
    for (char& ch : name) {
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(EveryRow, GraphEffectProperty,
                         ::testing::Combine(::testing::ValuesIn(row_cases()), ::testing::Values(1, 2, 5, 12, 30)),
                         case_name);

}  // namespace
}  // namespace vexa
