// Every attribute and covariate effect of both network kinds against a recount written
// straight from its definition, on seeded random networks with random attribute values, some
// of them missing: the totals pass equals the recount; for every dyad, in the addition and
// the removal state of the store, the change statistic equals the difference of the totals;
// and the toggles leave the store as it was (graphs on both stores). Values are multiples of a
// quarter, so sums and products are exact and the comparisons are too.

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "numeric/rng.h"
#include "support/kinds.h"

namespace vexa {
namespace {

using testing::AdjacencyMatrix;
using testing::ArcMatrix;

// The attribute of a case: per node a value and a missing flag; a covariate n x n values.
struct Values {
    std::vector<double> data;
    std::vector<uint8_t> missing;
};

Values random_values(AttributeKind kind, int n, uint32_t seed) {
    Rng rng;
    rng.seed(seed);
    Values v;
    const size_t count = static_cast<size_t>(n) * (kind == AttributeKind::covariate ? n : 1);
    for (size_t k = 0; k < count; ++k) {
        const auto draw = static_cast<uint32_t>(rng.next());
        double value = 0.0;
        switch (kind) {
            case AttributeKind::binary: value = static_cast<double>(draw % 2); break;
            case AttributeKind::categorical: value = static_cast<double>(1 + draw % 3); break;
            case AttributeKind::continuous:
            case AttributeKind::covariate:
                value = static_cast<double>(static_cast<int>(draw % 21) - 8) / 4.0;
                break;
        }
        const bool missing = kind != AttributeKind::covariate && rng.next() % 5 == 0;
        v.data.push_back(missing ? 0.0 : value);
        v.missing.push_back(missing ? 1 : 0);
    }
    return v;
}

double choose2(double m) { return m >= 2 ? m * (m - 1) / 2 : 0.0; }

// The graph effects from their definitions, by the name the run file gives them.
double graph_recount(const AdjacencyMatrix& m, AttributeKind kind, const std::string& name,
                     const Values& a) {
    const int n = m.n;
    auto z = [&](int v) { return a.data[static_cast<size_t>(v)]; };
    auto known = [&](int v) { return a.missing[static_cast<size_t>(v)] == 0; };
    auto w = [&](int u, int v) {
        return a
            .data[static_cast<size_t>(std::min(u, v)) * n + static_cast<size_t>(std::max(u, v))];
    };
    std::vector<double> d(n), t(n), labelled(n), e(n), alone(n), star22(n);
    for (int v = 0; v < n; ++v) {
        for (int u = 0; u < n; ++u) {
            if (u == v || !m(v, u)) continue;
            d[v] += 1;
            labelled[v] += z(u);
            e[v] += kind == AttributeKind::covariate ? w(v, u) : 0.0;
            bool in_triangle = false;
            for (int k = 0; k < n; ++k) {
                if (k != u && k != v && m(v, k) && m(u, k)) {
                    in_triangle = true;
                    if (u < k) t[v] += 1;
                }
            }
            if (!in_triangle) alone[v] += 1;
            for (int b = u + 1; b < n; ++b) {
                if (b != v && m(v, b) && kind == AttributeKind::covariate)
                    star22[v] += w(v, u) * w(v, b);
            }
        }
    }
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            if (!m(i, j)) continue;
            const bool same = known(i) && known(j) && z(i) == z(j);
            if (name == "activity" || name == "sum_of_Continuous") sum += z(i) + z(j);
            if (name == "interaction" || name == "prod_of_Continuous") sum += z(i) * z(j);
            if (name == "diff_of_Continuous") sum += std::fabs(z(i) - z(j));
            if (name == "Same_Category_edge") sum += same ? 1 : 0;
            if (name == "Different_Category_edge") sum += same ? 0 : 1;
            if (name == "edge") sum += w(i, j);
            for (int k = j + 1; k < n; ++k) {
                if (!m(i, k) || !m(j, k)) continue;
                const bool cov = kind == AttributeKind::covariate;
                const double p = cov ? w(i, j) : z(i), q = cov ? w(i, k) : z(j),
                             r = cov ? w(j, k) : z(k);
                if (name == "T1u" || name == "T1") sum += p + q + r;
                if (name == "T2u" || name == "T2") sum += p * q + p * r + q * r;
                if (name == "T3u" || name == "T3") sum += p * q * r;
            }
        }
    }
    for (int v = 0; v < n; ++v) {
        const double zv = kind == AttributeKind::covariate ? 0.0 : z(v);
        if (name == "O1au") sum += zv * choose2(d[v]);
        if (name == "O1bu") sum += labelled[v] * (d[v] - 1);
        if (name == "O2au") sum += zv * labelled[v] * (d[v] - 1);
        if (name == "O2b") sum += choose2(labelled[v]);
        if (name == "O3u") sum += zv * choose2(labelled[v]);
        if (name == "ET1") sum += zv * t[v] * (d[v] - 2);
        if (name == "ET2") sum += zv * t[v] * choose2(d[v] - 2);
        if (name == "ET0") sum += zv * alone[v];
        if (name == "ETNT") sum += zv * t[v] * alone[v];
        if (name == "S21") sum += e[v] * (d[v] - 1);
        if (name == "S22") sum += star22[v];
    }
    return sum;
}

// The digraph effects from their definitions.
double digraph_recount(const ArcMatrix& m, const std::string& name, const Values& a) {
    const int n = m.n;
    auto x = [&](int v) { return a.data[static_cast<size_t>(v)]; };
    auto lost = [&](int v) { return a.missing[static_cast<size_t>(v)] != 0 ? 1.0 : 0.0; };
    auto w = [&](int u, int v) {
        return a.data[static_cast<size_t>(u) * n + static_cast<size_t>(v)];
    };
    const bool reciprocity = name.find("reciprocity") != std::string::npos;
    const std::string base = reciprocity ? name.substr(0, name.size() - 12) : name;
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            if (i == j || !m(i, j)) continue;
            if (reciprocity && !(i < j && m(j, i))) continue;
            const bool same = lost(i) == 0 && lost(j) == 0 && x(i) == x(j);
            if (base == "interaction" || base == "prod") sum += x(i) * x(j);
            if (base == "activity" || base == "sum") sum += x(i) + x(j);
            if (base == "diff") sum += std::fabs(x(i) - x(j));
            if (base == "sender") sum += x(i);
            if (base == "receiver") sum += x(j);
            if (base == "sender_missing") sum += lost(i);
            if (base == "receiver_missing") sum += lost(j);
            if (base == "same_Category") sum += same ? 1 : 0;
            if (base == "diff_Category") sum += same ? 0 : 1;
            if (base == "arc") sum += w(i, j);
        }
    }
    for (int v = 0; v < n; ++v) {
        double in = 0, out = 0, mutual = 0;
        for (int u = 0; u < n; ++u) {
            if (u == v) continue;
            in += m(u, v) ? 1 : 0;
            out += m(v, u) ? 1 : 0;
            mutual += m(u, v) && m(v, u) ? 1 : 0;
        }
        if (name == "out2star") sum += x(v) * choose2(out);
        if (name == "in2star") sum += x(v) * choose2(in);
        if (name == "path2") sum += x(v) * (in * out - mutual);
    }
    return sum;
}

struct AttributeCase {
    NetworkKind network;
    AttributeKind kind;
    int row;
};

// Short names in test listings instead of the bytes of the case.
void PrintTo(const AttributeCase& c, std::ostream* out) {
    *out << (c.network == NetworkKind::graph ? "graph" : "digraph") << " kind "
         << static_cast<int>(c.kind) << " row " << c.row;
}

template <class Store>
void check_case(const AttributeCase& c) {
    using Fixture = testing::KindFixture<Store>;
    const CatalogueView& catalogue = attribute_catalogue(c.network, c.kind);
    const std::string name = catalogue.rows[static_cast<size_t>(c.row)].labels.update_name;
    uint32_t seed = 17;
    for (const int n : {1, 2, 3, 5, 12}) {
        for (const auto& [matrix, description] : Fixture::networks(n)) {
            SCOPED_TRACE(description);
            const Values values = random_values(c.kind, n, seed++);
            const Model model = testing::with_attribute_effect(empty_model(c.network), c.kind,
                                                               c.row, values.data, values.missing);
            const std::vector<Term<Store>> terms = make_terms<Store>(model);
            Store store = Fixture::build(matrix);
            double truth = 0.0;
            if constexpr (Store::kind == NetworkKind::graph) {
                truth = graph_recount(matrix, c.kind, name, values);
            } else {
                truth = digraph_recount(matrix, name, values);
            }
            ASSERT_EQ(testing::totals_of(store, terms, 1)[0], truth) << name << " total";
            testing::check_changes_against_totals(
                store, terms, [&](double change, double difference, const std::string& what) {
                    EXPECT_EQ(change, difference) << name << " " << what;
                });
            testing::check_reads_claim(store, terms);
            testing::check_needs_claim(store, terms);
            EXPECT_EQ(check_bookkeeping(store), "");
            EXPECT_TRUE(Fixture::adjacency(store).cells == matrix.cells);
        }
    }
}

std::vector<AttributeCase> attribute_cases() {
    std::vector<AttributeCase> cases;
    for (const NetworkKind network : {NetworkKind::graph, NetworkKind::digraph}) {
        for (int k = 0; k < attribute_kind_count; ++k) {
            const auto kind = static_cast<AttributeKind>(k);
            const int rows = static_cast<int>(attribute_catalogue(network, kind).rows.size());
            for (int row = 0; row < rows; ++row) cases.push_back({network, kind, row});
        }
    }
    return cases;
}

class AttributeProperty : public ::testing::TestWithParam<AttributeCase> {};

TEST_P(AttributeProperty, TotalsAndChangesAgreeWithRecounts) {
    const AttributeCase& c = GetParam();
    if (c.network == NetworkKind::graph) {
        check_case<Graph>(c);
        check_case<SparseGraph>(c);
    } else {
        check_case<Digraph>(c);
        check_case<SparseDigraph>(c);
    }
}

std::string case_name(const ::testing::TestParamInfo<AttributeCase>& info) {
    const AttributeCase& c = info.param;
    static const char* const kinds[] = {"binary", "continuous", "categorical", "covariate"};
    std::string name =
        std::string(c.network == NetworkKind::graph ? "graph_" : "digraph_") +
        kinds[static_cast<int>(c.kind)] + "_" +
        attribute_catalogue(c.network, c.kind).rows[static_cast<size_t>(c.row)].labels.update_name;
    for (char& ch : name) {
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(EveryRow, AttributeProperty, ::testing::ValuesIn(attribute_cases()),
                         case_name);

}  // namespace
}  // namespace vexa
