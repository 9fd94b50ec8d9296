// Every structural effect of both network kinds against an independent recount, on seeded
// random networks from empty to complete: the totals pass equals a brute-force count from the
// adjacency matrix; for every dyad, in the addition state and in the removal state of the
// store, the change statistic equals the total with the tie minus the total without it;
// toggling every dyad there and back leaves the store exactly as it was; and renumbering the
// nodes leaves the total as it is. Every row runs on both stores of its kind, which must also
// agree with each other exactly.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "effects/combiner.h"
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

// The same network with its nodes renumbered by a shuffle fixed for each size.
template <class Matrix>
Matrix renumbered(const Matrix& matrix) {
    std::vector<int> to(static_cast<size_t>(matrix.n));
    for (int v = 0; v < matrix.n; ++v) to[static_cast<size_t>(v)] = v;
    std::mt19937 shuffle(static_cast<uint32_t>(matrix.n));
    std::shuffle(to.begin(), to.end(), shuffle);
    Matrix out(matrix.n);
    for (int a = 0; a < matrix.n; ++a) {
        for (int b = 0; b < matrix.n; ++b) {
            if (a != b && matrix(a, b))
                out.set(to[static_cast<size_t>(a)], to[static_cast<size_t>(b)], true);
        }
    }
    return out;
}

// The totals against the recount, and every change against the totals, on every network of
// the case; counts must agree exactly, alternating values within the rounding of their tables.
// Returns every total and change met on the way.
template <class Store>
std::vector<double> check_row(const RowCase& c) {
    using Fixture = testing::KindFixture<Store>;
    const std::vector<Term<Store>> terms =
        make_terms<Store>(testing::single_effect_model(c.kind, c.row, c.lambda));
    const EffectDescription& about = structural_catalogue(c.kind).rows[static_cast<size_t>(c.row)];
    std::vector<double> seen;
    const auto expect_same = [&](double actual, double expected, const std::string& what) {
        seen.push_back(actual);
        if (about.alternating()) {
            EXPECT_NEAR(actual, expected, 1e-5 * std::max(1.0, std::fabs(expected))) << what;
        } else {
            EXPECT_EQ(actual, expected) << what;
        }
    };
    for (const auto& [matrix, name] : Fixture::networks(c.n)) {
        SCOPED_TRACE(name);
        Store store = Fixture::build(matrix);
        const double truth = Fixture::value(Fixture::count(matrix), c.row, c.lambda);
        expect_same(testing::totals_of(store, terms, 1)[0], truth, "total");
        // A statistic of the network does not depend on how its nodes are numbered.
        expect_same(testing::totals_of(Fixture::build(renumbered(matrix)), terms, 1)[0], truth,
                    "total after renumbering the nodes");
        if (!about.carried) {
            Workspace workspace;
            const double parameter = 1.0;
            double change = -1.0;
            change_statistics(store, terms, workspace, &parameter, &change, 0, c.n > 1 ? 1 : 0, 1);
            EXPECT_EQ(change, 0.0) << "a statistic the chain does not carry is never weighed";
            continue;
        }
        testing::check_changes_against_totals(store, terms, expect_same);
        testing::check_reads_claim(store, terms);
        testing::check_needs_claim(store, terms);
        EXPECT_EQ(check_bookkeeping(store), "");
        EXPECT_TRUE(Fixture::adjacency(store).cells == matrix.cells)
            << "the toggles restored the network";
    }
    return seen;
}

class EffectProperty : public ::testing::TestWithParam<RowCase> {};

TEST_P(EffectProperty, TotalsAndChangesAgreeWithRecounts) {
    const RowCase& c = GetParam();
    switch (c.kind) {
        // A chain's path must not depend on the store it runs on: to the last bit.
        case NetworkKind::graph:
            EXPECT_EQ(check_row<Graph>(c), check_row<SparseGraph>(c)) << "the stores disagree";
            break;
        case NetworkKind::digraph:
            EXPECT_EQ(check_row<Digraph>(c), check_row<SparseDigraph>(c)) << "the stores disagree";
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
