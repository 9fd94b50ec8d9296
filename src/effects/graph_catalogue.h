#pragma once
// The catalogue of graph structural effects: one row per effect in the fixed order that the
// parameter vector, the reports and the change-statistics combiner follow. A row carries
// every label the system prints for the effect, its lambda default and its two functions
// (the total over a graph and the change for one dyad). Adding an effect is one row and two
// functions; every reader, writer and report walks this table.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "effects/model.h"
#include "network/graph.h"

namespace vexa {

enum class GraphEffect : int32_t {
    edge, star2, star3, star4, star5, triangle, clique4, clique5, clique6, clique7, isolates,
    p0, triangle2, bow_tie, p3, q10, q20, q30, q31, path3, cycle4, et1, et2, et0, etnt,
    two3star, one2triangle, one2et, as, as2, at, at2, a2p, ac, aet,
};
inline constexpr int graph_effect_count = 35;
inline constexpr int weight_table_cap = 100;

struct Term;

// Increase of the statistic when {i,j} is added, evaluated with the edge absent from the
// adjacency and degrees. `added` is 1 for a proposed addition; 0 for a removal, when the
// shared partners and triangles still count the edge.
using GraphChangeFn = double (*)(const Graph& graph, const Term& term, int i, int j, int added);
// The statistic of the whole graph.
using GraphTotalFn = double (*)(const Graph& graph, const Term& term);

struct GraphEffectRow {
    GraphEffect id;
    const char* update_name;       // run-file and update-file name ("cycle4"); nullptr: no entry
    const char* report_name;       // statistics report ("4Cycle"); "(%.2f)" is added when alternating
    const char* column_name;       // log-odds and change-statistics columns ("cycle4")
    const char* summary_label;     // estimation summary and covariance rows ("D3")
    const char* simulation_label;  // simulation and goodness-of-fit parameter lines ("triangle2")
    const char* gof_label;         // goodness-of-fit table ("triangles")
    const char* sample_column;     // sample statistics and simulation columns ("triangle")
    const char* spss_name;         // SPSS variable ("triangle")
    const char* spss_format;       // "F8.0" or "F8.4", as each variable has it
    float lambda_default;          // 0 for effects without lambda
    bool integral;                 // a count: printed with %.0f where counts are
    GraphChangeFn change;
    GraphTotalFn total;

    bool alternating() const { return lambda_default != 0.0f; }
};

const std::array<GraphEffectRow, graph_effect_count>& graph_catalogue();
inline const GraphEffectRow& graph_row(GraphEffect id) {
    return graph_catalogue()[static_cast<size_t>(id)];
}

// One included effect of a run, ready for the combiner.
struct Term {
    GraphEffect effect = GraphEffect::edge;
    int32_t slot = -1;
    float lambda = 0.0f;
    std::array<float, weight_table_cap + 1> weights{};  // (1 - 1/lambda)^m, m = 0..100
    GraphChangeFn change = nullptr;
    GraphTotalFn total = nullptr;
};

// w(m): 0 below 0, 1 at 0, the table entry up to the cap and the cap's entry beyond it.
inline float weight(const Term& term, int m) {
    if (m < 0) return 0.0f;
    if (m > weight_table_cap) m = weight_table_cap;
    return term.weights[static_cast<size_t>(m)];
}

// (1 - 1/lambda)^m for m = 1..100 computed in double and stored in single precision; entry 0 is 1.
std::array<float, weight_table_cap + 1> weight_table(float lambda);

// The included structural effects of a graph model, in catalogue order, with their tables.
std::vector<Term> graph_terms(const Model& model);

// A label with its lambda where the effect has one: "AS(2.00)".
std::string effect_label(const char* name, bool alternating, float lambda);

// Fills graph.statistics at every term's slot with the term's total (and the clique census
// when the store keeps cliques).
void compute_totals(Graph& graph, const std::vector<Term>& terms);

// The combiner: fills the graph's clique changes for {i,j}, writes every term's change at its
// slot of `changes`, and returns the sum of parameter x change over the terms, where a
// parameter of exactly 0 adds nothing. 0ET and ETNT write 0 and add nothing. No allocation.
double change_statistics(Graph& graph, const std::vector<Term>& terms, const double* parameters,
                         double* changes, int i, int j, int added);

// The clique census: clique_counts[k-1] = number of k-cliques for k = 1..clique_depth.
void count_cliques(Graph& graph);
// clique_changes[k-1] = k-cliques that adding {i,j} would create, for k = 1..clique_depth.
void fill_clique_changes(Graph& graph, int i, int j);

}  // namespace vexa
