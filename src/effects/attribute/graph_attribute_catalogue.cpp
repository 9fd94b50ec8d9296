#include <array>

#include "effects/attribute/attribute_catalogue.h"
#include "effects/attribute/attribute_effects.h"
#include "effects/catalogue_table.h"
#include "network/graph.h"
#include "network/sparse_graph.h"

namespace vexa {

namespace {

using enum TieReads;  // the tables' reads column
using namespace needs_column;
using namespace attribute_terms;
using Binary = GraphBinaryEffect;
using Continuous = GraphContinuousEffect;
using Categorical = GraphCategoricalEffect;
using Covariate = GraphCovariateEffect;

// Spellings differ between files on purpose ("O2b" in the update file and the reports, "o2bu"
// in the sample columns) and are kept as they are.
// clang-format off
template <class S>
constexpr auto binary = std::to_array<CatalogueRow<Binary, S>>({
    // id                  update         report         column         summary        simulation     gof            sample         spss           format   lambda integral clique carried variant          reads    needs               change                         total
    {Binary::activity,    {"activity",    "activity",    "activity",    "activity",    "activity",    "activity",    "activity",    "activity",    "F8.0", "ties of nodes with the attribute, counted once per such end"}, 0.0f,  true,    0,     true,   dyad_sum,        nothing, no_counts,          change_tie_value<S>,           total_tie_value<S>},
    {Binary::interaction, {"interaction", "interaction", "interaction", "interaction", "interaction", "interaction", "interaction", "interaction", "F8.0", "ties between two nodes with the attribute"}, 0.0f,  true,    0,     true,   dyad_product,    nothing, no_counts,          change_tie_value<S>,           total_tie_value<S>},
    {Binary::o1au,        {"O1au",        "O1au",        "o1au",        "o1au",        "O1au",        "o1au",        "o1au",        "o1au",        "F8.0", "2-stars centred on a node with the attribute"}, 0.0f,  true,    0,     true,   node_o1au,       network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::o1bu,        {"O1bu",        "O1bu",        "o1bu",        "o1bu",        "O1bu",        "o1bu",        "o1bu",        "o1bu",        "F8.0", "2-stars, counted once per outer node with the attribute"}, 0.0f,  true,    0,     true,   node_o1bu,       network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::o2au,        {"O2au",        "O2au",        "o2au",        "o2au",        "O2au",        "o2au",        "o2au",        "o2au",        "F8.0", "2-stars centred on a node with it, once per outer node with it"}, 0.0f,  true,    0,     true,   node_o2au,       network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::o2b,         {"O2b",         "O2b",         "o2bu",        "o2b",         "O2b",         "o2bu",        "o2bu",        "o2bu",        "F8.0", "2-stars whose two outer nodes have the attribute"}, 0.0f,  true,    0,     true,   node_o2b,        network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::o3u,         {"O3u",         "O3u",         "o3u",         "o3u",         "O3u",         "o3u",         "o3u",         "o3u",         "F8.0", "2-stars whose three nodes all have the attribute"}, 0.0f,  true,    0,     true,   node_o3u,        network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::t1u,         {"T1u",         "T1u",         "t1u",         "t1u",         "T1u",         "t1u",         "t1u",         "t1u",         "F8.0", "triangles, counted once per corner with the attribute"}, 0.0f,  true,    0,     true,   triangle_single, network, partners,           change_triangle_sum<S, false>, total_triangle_sum<S, false>},
    {Binary::t2u,         {"T2u",         "T2u",         "t2u",         "t2u",         "T2u",         "t2u",         "t2u",         "t2u",         "F8.0", "triangles, counted once per pair of corners with the attribute"}, 0.0f,  true,    0,     true,   triangle_pairs,  network, partners,           change_triangle_sum<S, false>, total_triangle_sum<S, false>},
    {Binary::t3u,         {"T3u",         "T3u",         "t3u",         "t3u",         "T3u",         "t3u",         "t3u",         "t3u",         "F8.0", "triangles whose three corners have the attribute"}, 0.0f,  true,    0,     true,   triangle_all,    network, partners,           change_triangle_sum<S, false>, total_triangle_sum<S, false>},
    {Binary::et1,         {"ET1",         "ET1",         "ET1",         "ET1",         "ET1",         "ET1",         "ET1",         "ET1",         "F8.0", "1ET (a triangle with a further tie) at nodes with the attribute"}, 0.0f,  true,    0,     true,   node_et1,        network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::et2,         {"ET2",         "ET2",         "ET2",         "ET2",         "ET2",         "ET2",         "ET2",         "ET2",         "F8.0", "2ET (a triangle with two further ties) at nodes with the attribute"}, 0.0f,  true,    0,     true,   node_et2,        network, partners_triangles, change_node_statistic<S>,      total_node_statistic<S>},
    {Binary::et0,         {"ET0",         "ET0",         "ET0",         "ET0",         "ET0",         "ET0",         "ET0",         "ET0",         "F8.0", "ties in no triangle at nodes with the attribute"}, 0.0f,  true,    0,     true,   et0,             network, partners_triangles, change_edge_triangle<S>,       total_edge_triangle<S>},
    {Binary::etnt,        {"ETNT",        "ETNT",        "ETNT",        "ETNT",        "ETNT",        "ETNT",        "ETNT",        "ETNT",        "F8.0", "ETNT at nodes with the attribute"}, 0.0f,  true,    0,     true,   etnt,            network, partners_triangles, change_edge_triangle<S>,       total_edge_triangle<S>},
});

template <class S>
constexpr auto continuous = std::to_array<CatalogueRow<Continuous, S>>({
    // id                     update                report  column  summary simulation gof     sample  spss    format   lambda integral clique carried variant          reads    needs               change               total
    {Continuous::sum,        {"sum_of_Continuous",  "sum",  "sum",  "sum",  "sum",     "sum",  "sum",  "sum",  "F8.4", "ties weighted by the sum of the two ends' values"}, 0.0f,  false,   0,     true,   dyad_sum,        nothing, no_counts,          change_tie_value<S>, total_tie_value<S>},
    {Continuous::difference, {"diff_of_Continuous", "diff", "diff", "diff", "diff",    "diff", "diff", "diff", "F8.4", "ties weighted by the absolute difference of the ends' values"}, 0.0f,  false,   0,     true,   dyad_difference, nothing, no_counts,          change_tie_value<S>, total_tie_value<S>},
    {Continuous::product,    {"prod_of_Continuous", "prod", "prod", "prod", "prod",    "prod", "prod", "prod", "F8.4", "ties weighted by the product of the ends' values"}, 0.0f,  false,   0,     true,   dyad_product,    nothing, no_counts,          change_tie_value<S>, total_tie_value<S>},
});

template <class S>
constexpr auto categorical = std::to_array<CatalogueRow<Categorical, S>>({
    // id                     update                     report           column   summary     simulation       gof              sample   spss      format   lambda integral clique carried variant         reads    needs               change               total
    {Categorical::same,      {"Same_Category_edge",      "same_Category", "sameC", "matching", "same_Category", "same_Category", "sameC", "sameEC", "F8.0", "ties within a category (homophily)"}, 0.0f,  true,    0,     true,   dyad_same,      nothing, no_counts,          change_tie_value<S>, total_tie_value<S>},
    {Categorical::different, {"Different_Category_edge", "diff_Category", "diffC", "mismatch", "diff_Category", "diff_Category", "diffC", "diffEC", "F8.0", "ties between categories"}, 0.0f,  true,    0,     true,   dyad_different, nothing, no_counts,          change_tie_value<S>, total_tie_value<S>},
});

template <class S>
constexpr auto covariate = std::to_array<CatalogueRow<Covariate, S>>({
    // id              update  report  column  summary simulation gof     sample  spss    format   lambda integral clique carried variant          reads    needs               change                        total
    {Covariate::edge, {"edge", "edge", "edge", "edge", "edge",    "edge", "edge", "edge", "F8.4", "ties weighted by the covariate of their pair"}, 0.0f,  false,   0,     true,   dyad_covariate,  nothing, no_counts,          change_tie_value<S>,          total_tie_value<S>},
    {Covariate::s21,  {"S21",  "S21",  "S21",  "S21",  "S21",     "S21",  "S21",  "s21",  "F8.4", "2-stars weighted by the sum of their two ties' covariates"}, 0.0f,  false,   0,     true,   star21,          network, no_counts,          change_covariate_star<S>,     total_covariate_star<S>},
    {Covariate::s22,  {"S22",  "S22",  "S22",  "S22",  "S22",     "S22",  "S22",  "s22",  "F8.4", "2-stars weighted by the product of their two ties' covariates"}, 0.0f,  false,   0,     true,   star22,          network, no_counts,          change_covariate_star<S>,     total_covariate_star<S>},
    {Covariate::t1,   {"T1",   "t1",   "t1",   "t1",   "t1",      "t1",   "t1",   "t1",   "F8.4", "triangles weighted by the sum of their ties' covariates"}, 0.0f,  false,   0,     true,   triangle_single, network, partners,           change_triangle_sum<S, true>, total_triangle_sum<S, true>},
    {Covariate::t2,   {"T2",   "t2",   "t2",   "t2",   "t2",      "t2",   "t2",   "t2",   "F8.4", "triangles weighted by the sum of pairwise products of their ties' covariates"}, 0.0f,  false,   0,     true,   triangle_pairs,  network, partners,           change_triangle_sum<S, true>, total_triangle_sum<S, true>},
    {Covariate::t3,   {"T3",   "t3",   "t3",   "t3",   "t3",      "t3",   "t3",   "t3",   "F8.4", "triangles weighted by the product of their three ties' covariates"}, 0.0f,  false,   0,     true,   triangle_all,    network, partners,           change_triangle_sum<S, true>, total_triangle_sum<S, true>},
});
// clang-format on

static_assert(ids_in_order(binary<Graph>) && ids_in_order(continuous<Graph>) &&
                  ids_in_order(categorical<Graph>) && ids_in_order(covariate<Graph>),
              "row k of each table is enumerator k of its enum, and every enumerator has a row");
static_assert(meanings_given(binary<Graph>) && meanings_given(continuous<Graph>) &&
                  meanings_given(categorical<Graph>) && meanings_given(covariate<Graph>),
              "every row says what it counts");
static_assert(names_unique(binary<Graph>) && names_unique(continuous<Graph>) &&
                  names_unique(categorical<Graph>) && names_unique(covariate<Graph>),
              "run-file names, columns and sample columns are unique in each table");

// The parameter vector takes the binary effects in an order of its own.
// clang-format off
constexpr std::array binary_vector_order{
    Binary::t3u, Binary::t2u, Binary::t1u, Binary::o3u, Binary::o2au, Binary::o2b, Binary::o1au,
    Binary::o1bu, Binary::interaction, Binary::activity, Binary::et1, Binary::et2, Binary::et0,
    Binary::etnt};
// clang-format on
constexpr auto binary_arrays = run_file_table(binary<Graph>, binary_vector_order);
constexpr auto continuous_arrays = run_file_table(continuous<Graph>);
constexpr auto categorical_arrays = run_file_table(categorical<Graph>);
constexpr auto covariate_arrays = run_file_table(covariate<Graph>);
static_assert(every_entry_once(binary<Graph>, binary_arrays.run_file_order) &&
                  every_entry_once(continuous<Graph>, continuous_arrays.run_file_order) &&
                  every_entry_once(categorical<Graph>, categorical_arrays.run_file_order) &&
                  every_entry_once(covariate<Graph>, covariate_arrays.run_file_order),
              "every row has a run-file name");
static_assert(every_row_once(binary<Graph>, binary_arrays.vector_order) &&
                  every_row_once(continuous<Graph>, continuous_arrays.vector_order) &&
                  every_row_once(categorical<Graph>, categorical_arrays.vector_order) &&
                  every_row_once(covariate<Graph>, covariate_arrays.vector_order),
              "the parameter vector takes every row once");

constexpr std::array<CatalogueView, attribute_kind_count> views{
    binary_arrays.view(), continuous_arrays.view(), categorical_arrays.view(),
    covariate_arrays.view()};

template <class S>
std::span<const EffectRow<S>> kind_rows(AttributeKind which) {
    static constexpr auto binary_rows = effect_rows(binary<S>);
    static constexpr auto continuous_rows = effect_rows(continuous<S>);
    static constexpr auto categorical_rows = effect_rows(categorical<S>);
    static constexpr auto covariate_rows = effect_rows(covariate<S>);
    switch (which) {
        case AttributeKind::binary: return binary_rows;
        case AttributeKind::continuous: return continuous_rows;
        case AttributeKind::categorical: return categorical_rows;
        case AttributeKind::covariate: return covariate_rows;
    }
    return {};
}

}  // namespace

const CatalogueView& graph_attribute_catalogue(AttributeKind which) {
    return views[static_cast<size_t>(which)];
}

template <>
std::span<const EffectRow<Graph>> attribute_rows<Graph>(AttributeKind which) {
    return kind_rows<Graph>(which);
}

template <>
std::span<const EffectRow<SparseGraph>> attribute_rows<SparseGraph>(AttributeKind which) {
    return kind_rows<SparseGraph>(which);
}

}  // namespace vexa
