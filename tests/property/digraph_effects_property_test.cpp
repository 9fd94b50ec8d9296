// Every digraph structural effect against an independent recount, on seeded random digraphs of
// several sizes, densities and reciprocity levels: the total equals a brute-force count from
// the arc matrix; for every ordered pair, in the addition state and in the removal state of
// the store, the change statistic equals the total with the arc minus the total without it;
// toggling every pair twice leaves the store as it was; a total equals the empty digraph's
// value plus the changes summed along a shuffled build-up; relabelling the nodes changes no
// total.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"
#include "network/digraph.h"
#include "numeric/rng.h"
#include "support/digraph_brute_force.h"

namespace vexa {
namespace {

using testing::ArcMatrix;

struct RowCase {
    DigraphEffect effect;
    float lambda;  // 0 for rows without one
};

std::vector<RowCase> row_cases() {
    std::vector<RowCase> cases;
    const auto rows = structural_rows<Digraph>();
    for (size_t k = 0; k < rows.size(); ++k) {
        const auto effect = static_cast<DigraphEffect>(k);
        if (!rows[k].about.alternating()) {
            cases.push_back({effect, 0.0f});
            continue;
        }
        // Below 1 (switched off), exactly 1 (the weights become 0^m) and above.
        for (const float lambda : {0.5f, 1.0f, 1.5f, 2.0f, 3.0f}) cases.push_back({effect, lambda});
    }
    return cases;
}

class DigraphEffectProperty : public ::testing::TestWithParam<std::tuple<RowCase, int>> {
protected:
    void SetUp() override {
        row_case_ = std::get<0>(GetParam());
        n_ = std::get<1>(GetParam());
        terms_ = {digraph_term(row_case_.effect, 0, row_case_.lambda)};
        prepare_workspace(workspace_, terms_);
        alternating_ =
            structural_rows<Digraph>()[static_cast<size_t>(row_case_.effect)].about.alternating();
    }

    // Counts must agree exactly; alternating values within the rounding of their tables.
    void expect_same(double actual, double expected, const std::string& what) const {
        if (alternating_) {
            EXPECT_NEAR(actual, expected, 1e-5 * std::max(1.0, std::fabs(expected))) << what;
        } else {
            EXPECT_EQ(actual, expected) << what;
        }
    }

    double total(const Digraph& d) {
        std::vector<double> statistics(1, -12345.0);
        compute_totals(d, terms_, workspace_, statistics);
        return statistics[0];
    }

    double change(const Digraph& d, int i, int j, int added) {
        const double parameter = 1.0;
        double out = -12345.0;
        change_statistics(d, terms_, workspace_, &parameter, &out, i, j, added);
        return out;
    }

    double truth(const ArcMatrix& matrix) const {
        return testing::digraph_value(testing::digraph_counts(matrix), row_case_.effect,
                                      row_case_.lambda);
    }

    // Addition state: the arc is absent everywhere.
    void check_addition(Digraph& d, int i, int j, const std::string& where) {
        const double without = total(d);
        const double c = change(d, i, j, 1);
        add_arc(d, i, j);
        update_two_paths(d, i, j, 1);
        expect_same(c, total(d) - without, "adding " + where);
    }

    // Removal state: adjacency, degrees and lists exclude the arc; the two-path matrices count it.
    void check_removal(Digraph& d, int i, int j, const std::string& where) {
        const double with = total(d);
        remove_arc(d, i, j);
        const double c = change(d, i, j, 0);
        update_two_paths(d, i, j, 0);
        expect_same(c, with - total(d), "removing " + where);
    }

    RowCase row_case_{};
    int n_ = 0;
    bool alternating_ = false;
    std::vector<Term<Digraph>> terms_;
    Workspace workspace_;
};

std::vector<std::pair<double, double>> networks_for(int n) {
    // (density, reciprocity): from empty to complete, no mutual dyads to all mutual.
    if (n <= 3) return {{0.0, 0.0}, {0.5, 0.5}, {1.0, 0.0}, {1.0, 1.0}};
    return {{0.1, 0.0}, {0.3, 0.5}, {0.3, 1.0}, {0.6, 0.2}, {0.9, 0.8}};
}

TEST_P(DigraphEffectProperty, TotalsAndChangesAgreeWithRecounts) {
    for (const auto& [density, reciprocity] : networks_for(n_)) {
        const uint32_t seed = static_cast<uint32_t>(n_ * 131 + static_cast<int>(density * 100) * 7 +
                                                    static_cast<int>(reciprocity * 10));
        const ArcMatrix matrix = testing::random_arc_matrix(n_, density, reciprocity, seed);
        char name[96];
        std::snprintf(name, sizeof name, "n %d, density %.2f, reciprocity %.2f", n_, density,
                      reciprocity);
        SCOPED_TRACE(name);
        Digraph d = testing::digraph_from(matrix);
        const double expected = truth(matrix);
        expect_same(total(d), expected, "total");

        // Every ordered pair in both states of the store, the other arcs as drawn.
        const Digraph before = d;
        for (int i = 0; i < n_; ++i) {
            for (int j = 0; j < n_; ++j) {
                if (i == j) continue;
                const std::string where = std::to_string(i) + "->" + std::to_string(j);
                if (matrix(i, j)) {
                    check_removal(d, i, j, where);
                    check_addition(d, i, j, where);
                } else {
                    check_addition(d, i, j, where);
                    check_removal(d, i, j, where);
                }
            }
        }
        EXPECT_EQ(check_bookkeeping(d), "");
        EXPECT_TRUE(testing::same_store(before, d))
            << "toggling each pair twice restores the store";

        // A shuffled build-up from the empty digraph.
        std::vector<std::pair<int, int>> arcs;
        for (int i = 0; i < n_; ++i) {
            for (int j = 0; j < n_; ++j) {
                if (matrix(i, j)) arcs.emplace_back(i, j);
            }
        }
        Rng rng;
        rng.seed(seed * 7u + 3u);
        for (size_t k = arcs.size(); k > 1; --k)
            std::swap(arcs[k - 1], arcs[static_cast<size_t>(rng.next()) % k]);
        Digraph built = create_digraph(n_);
        double running = total(built);
        expect_same(running, truth(ArcMatrix(n_)), "empty digraph");
        for (const auto& [i, j] : arcs) {
            running += change(built, i, j, 1);
            add_arc(built, i, j);
            update_two_paths(built, i, j, 1);
        }
        expect_same(running, expected, "empty value plus the changes of a shuffled build-up");

        // The same digraph under another numbering of its nodes.
        std::vector<int> label(static_cast<size_t>(n_));
        std::iota(label.begin(), label.end(), 0);
        for (size_t k = label.size(); k > 1; --k)
            std::swap(label[k - 1], label[static_cast<size_t>(rng.next()) % k]);
        expect_same(total(testing::digraph_from(testing::relabelled(matrix, label))), expected,
                    "relabelled");
    }
}

std::string case_name(const ::testing::TestParamInfo<std::tuple<RowCase, int>>& info) {
    const RowCase& c = std::get<0>(info.param);
    const char* name =
        structural_rows<Digraph>()[static_cast<size_t>(c.effect)].about.labels.sample_column;
    char buffer[64];
    if (c.lambda != 0.0f) {
        std::snprintf(buffer, sizeof buffer, "%s_lambda%d_n%d", name,
                      static_cast<int>(c.lambda * 10.0f), std::get<1>(info.param));
    } else {
        std::snprintf(buffer, sizeof buffer, "%s_n%d", name, std::get<1>(info.param));
    }
    std::string text = buffer;
    for (char& ch : text) {
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    }
    return text;
}

INSTANTIATE_TEST_SUITE_P(EveryRow, DigraphEffectProperty,
                         ::testing::Combine(::testing::ValuesIn(row_cases()),
                                            ::testing::Values(1, 2, 3, 5, 12, 30)),
                         case_name);

}  // namespace
}  // namespace vexa
