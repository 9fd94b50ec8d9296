#include <array>

#include "effects/attribute/attribute_catalogue.h"
#include "effects/attribute/attribute_effects.h"
#include "effects/catalogue_table.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

using enum TieReads;  // the tables' reads column
using namespace needs_column;
using namespace attribute_terms;
using Binary = DigraphBinaryEffect;
using Continuous = DigraphContinuousEffect;
using Categorical = DigraphCategoricalEffect;
using Covariate = DigraphCovariateEffect;

// Spellings differ between files on purpose ("activity_reciprocity" in the update file and the
// reports, "t1u11" in the columns and SPSS variables) and are kept as they are.
// clang-format off
template <class S>
constexpr auto binary = std::to_array<CatalogueRow<Binary, S>>({
    // id                              update                     report                     column              summary                    simulation                 gof                        sample              spss                format   lambda integral clique carried variant                reads    needs      change                  total
    {Binary::interaction,             {"interaction",             "interaction",             "interaction",      "interaction",             "interaction",             "interaction",             "interaction",      "interaction",      "F8.0", "arcs between two nodes with the attribute"}, 0.0f,  true,    0,     true,   dyad_product,          nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Binary::sender,                  {"sender",                  "sender",                  "sender",           "sender",                  "sender",                  "sender",                  "sender",           "sender",           "F8.0", "arcs sent by nodes with the attribute"}, 0.0f,  true,    0,     true,   dyad_sender,           nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Binary::receiver,                {"receiver",                "receiver",                "receiver",         "receiver",                "receiver",                "receiver",                "receiver",         "receiver",         "F8.0", "arcs received by nodes with the attribute"}, 0.0f,  true,    0,     true,   dyad_receiver,         nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Binary::sender_missing,          {"sender_missing",          "sender_missing",          "sender_missing",   "sender_missing",          "sender_missing",          "sender_missing",          "sender_missing",   "sender_missing",   "F8.0", "arcs sent by nodes whose value is missing"}, 0.0f,  true,    0,     true,   dyad_sender_missing,   nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Binary::receiver_missing,        {"receiver_missing",        "receiver_missing",        "receiver_missing", "receiver_missing",        "receiver_missing",        "receiver_missing",        "receiver_missing", "receiver_missing", "F8.0", "arcs received by nodes whose value is missing"}, 0.0f,  true,    0,     true,   dyad_receiver_missing, nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Binary::activity_reciprocity,    {"activity_reciprocity",    "activity_reciprocity",    "t1u11",            "activity_reciprocity",    "activity_reciprocity",    "activity_reciprocity",    "t1u11",            "t1u11",            "F8.0", "mutual dyads, counted once per end with the attribute"}, 0.0f,  true,    0,     true,   dyad_sum,              reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Binary::interaction_reciprocity, {"interaction_reciprocity", "interaction_reciprocity", "t2u11",            "interaction_reciprocity", "interaction_reciprocity", "interaction_reciprocity", "t2u11",            "t2u11",            "F8.0", "mutual dyads between two nodes with the attribute"}, 0.0f,  true,    0,     true,   dyad_product,          reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Binary::out2star,                {"out2star",                "out2star",                "out2star",         "out2star",                "out2star",                "out2star",                "out2star",         "out2star",         "F8.0", "out-2-stars centred on a node with the attribute"}, 0.0f,  true,    0,     true,   node_out2star,         network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
    {Binary::path2,                   {"path2",                   "path2",                   "path2",            "path2",                   "path2",                   "path2",                   "path2",            "path2",            "F8.0", "mixed 2-stars (two-paths) through a node with the attribute"}, 0.0f,  true,    0,     true,   node_path2,            network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
    {Binary::in2star,                 {"in2star",                 "in2star",                 "in2star",          "in2star",                 "in2star",                 "in2star",                 "in2star",          "in2star",          "F8.0", "in-2-stars centred on a node with the attribute"}, 0.0f,  true,    0,     true,   node_in2star,          network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
});

template <class S>
constexpr auto continuous = std::to_array<CatalogueRow<Continuous, S>>({
    // id                                 update              report              column              summary             simulation          gof                 sample              spss                format   lambda integral clique carried variant                reads    needs      change                  total
    {Continuous::sender,                 {"sender",           "sender",           "sender",           "sender",           "sender",           "sender",           "sender",           "sender",           "F8.4", "arcs weighted by the sender's value"}, 0.0f,  false,   0,     true,   dyad_sender,           nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::receiver,               {"receiver",         "receiver",         "receiver",         "receiver",         "receiver",         "receiver",         "receiver",         "receiver",         "F8.4", "arcs weighted by the receiver's value"}, 0.0f,  false,   0,     true,   dyad_receiver,         nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::sender_missing,         {"sender_missing",   "sender_missing",   "sender_missing",   "sender_missing",   "sender_missing",   "sender_missing",   "sender_missing",   "sender_missing",   "F8.4", "arcs sent by nodes whose value is missing"}, 0.0f,  false,   0,     true,   dyad_sender_missing,   nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::receiver_missing,       {"receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "F8.4", "arcs received by nodes whose value is missing"}, 0.0f,  false,   0,     true,   dyad_receiver_missing, nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::sum,                    {"sum",              "sum",              "interaction_sum",  "sum",              "sum",              "sum",              "interaction_sum",  "interaction_sum",  "F8.4", "arcs weighted by the sum of the two ends' values"}, 0.0f,  false,   0,     true,   dyad_sum,              nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::difference,             {"diff",             "diff",             "interaction_diff", "diff",             "diff",             "diff",             "interaction_diff", "interaction_diff", "F8.4", "arcs weighted by the absolute difference of the ends' values"}, 0.0f,  false,   0,     true,   dyad_difference,       nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::product,                {"prod",             "prod",             "interaction_prod", "prod",             "prod",             "prod",             "interaction_prod", "interaction_prod", "F8.4", "arcs weighted by the product of the ends' values"}, 0.0f,  false,   0,     true,   dyad_product,          nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Continuous::sum_reciprocity,        {"sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "sum_reciprocity",  "F8.4", "mutual dyads weighted by the sum of the two ends' values"}, 0.0f,  false,   0,     true,   dyad_sum,              reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Continuous::difference_reciprocity, {"diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "F8.4", "mutual dyads weighted by the absolute difference of the values"}, 0.0f,  false,   0,     true,   dyad_difference,       reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Continuous::product_reciprocity,    {"prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "F8.4", "mutual dyads weighted by the product of the two ends' values"}, 0.0f,  false,   0,     true,   dyad_product,          reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Continuous::in2star,                {"in2star",          "in2star",          "in2star",          "in2star",          "in2star",          "in2star",          "in2star",          "in2star",          "F8.4", "in-2-stars weighted by the centre's value"}, 0.0f,  false,   0,     true,   node_in2star,          network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
    {Continuous::out2star,               {"out2star",         "out2star",         "out2star",         "out2star",         "out2star",         "out2star",         "out2star",         "out2star",         "F8.4", "out-2-stars weighted by the centre's value"}, 0.0f,  false,   0,     true,   node_out2star,         network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
    {Continuous::path2,                  {"path2",            "path2",            "twomix",           "path2",            "path2",            "path2",            "twomix",           "twomix",           "F8.4", "mixed 2-stars (two-paths) weighted by the middle node's value"}, 0.0f,  false,   0,     true,   node_path2,            network, no_counts, change_digraph_node<S>, total_digraph_node<S>},
});

template <class S>
constexpr auto categorical = std::to_array<CatalogueRow<Categorical, S>>({
    // id                                 update                       report                       column                  summary                 simulation                   gof                          sample                  spss                    format   lambda integral clique carried variant         reads    needs      change                  total
    {Categorical::same,                  {"same_Category",             "same_Category",             "matching",             "matching",             "same_Category",             "same_Category",             "matching",             "matching",             "F8.0", "arcs within a category (homophily)"}, 0.0f,  true,    0,     true,   dyad_same,      nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Categorical::different,             {"diff_Category",             "diff_Category",             "mismatch",             "mismatch",             "diff_Category",             "diff_Category",             "mismatch",             "mismatch",             "F8.0", "arcs between categories"}, 0.0f,  true,    0,     true,   dyad_different, nothing, no_counts, change_tie_value<S>,    total_tie_value<S>},
    {Categorical::same_reciprocity,      {"same_Category_reciprocity", "same_Category_reciprocity", "matching_reciprocity", "matching_reciprocity", "same_Category_reciprocity", "same_Category_reciprocity", "matching_reciprocity", "matching_reciprocity", "F8.0", "mutual dyads within a category"}, 0.0f,  true,    0,     true,   dyad_same,      reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
    {Categorical::different_reciprocity, {"diff_Category_reciprocity", "diff_Category_reciprocity", "mismatch_reciprocity", "mismatch_reciprocity", "diff_Category_reciprocity", "diff_Category_reciprocity", "mismatch_reciprocity", "mismatch_reciprocity", "F8.0", "mutual dyads between categories"}, 0.0f,  true,    0,     true,   dyad_different, reverse, no_counts, change_mutual_value<S>, total_mutual_value<S>},
});

template <class S>
constexpr auto covariate = std::to_array<CatalogueRow<Covariate, S>>({
    // id             update report column summary simulation gof    sample spss   format   lambda integral clique carried variant         reads    needs      change               total
    {Covariate::arc, {"arc", "arc", "arc", "arc",  "arc",     "arc", "arc", "arc", "F8.4", "arcs weighted by the covariate of their ordered pair"}, 0.0f,  false,   0,     true,   dyad_covariate, nothing, no_counts, change_tie_value<S>, total_tie_value<S>},
});
// clang-format on

static_assert(ids_in_order(binary<Digraph>) && ids_in_order(continuous<Digraph>) &&
                  ids_in_order(categorical<Digraph>) && ids_in_order(covariate<Digraph>),
              "row k of each table is enumerator k of its enum, and every enumerator has a row");
static_assert(meanings_given(binary<Digraph>) && meanings_given(continuous<Digraph>) &&
                  meanings_given(categorical<Digraph>) && meanings_given(covariate<Digraph>),
              "every row says what it counts");
static_assert(names_unique(binary<Digraph>) && names_unique(continuous<Digraph>) &&
                  names_unique(categorical<Digraph>) && names_unique(covariate<Digraph>),
              "run-file names, columns and sample columns are unique in each table");

// The reports list the reciprocity effects and the stars in the opposite order to the run
// file.
// clang-format off
constexpr std::array binary_vector_order{
    Binary::interaction, Binary::sender, Binary::receiver, Binary::sender_missing,
    Binary::receiver_missing, Binary::interaction_reciprocity, Binary::activity_reciprocity,
    Binary::in2star, Binary::path2, Binary::out2star};
// clang-format on
constexpr auto binary_arrays = run_file_table(binary<Digraph>, binary_vector_order);
constexpr auto continuous_arrays = run_file_table(continuous<Digraph>);
constexpr auto categorical_arrays = run_file_table(categorical<Digraph>);
constexpr auto covariate_arrays = run_file_table(covariate<Digraph>);
static_assert(every_entry_once(binary<Digraph>, binary_arrays.run_file_order) &&
                  every_entry_once(continuous<Digraph>, continuous_arrays.run_file_order) &&
                  every_entry_once(categorical<Digraph>, categorical_arrays.run_file_order) &&
                  every_entry_once(covariate<Digraph>, covariate_arrays.run_file_order),
              "every row has a run-file name");
static_assert(every_row_once(binary<Digraph>, binary_arrays.vector_order) &&
                  every_row_once(continuous<Digraph>, continuous_arrays.vector_order) &&
                  every_row_once(categorical<Digraph>, categorical_arrays.vector_order) &&
                  every_row_once(covariate<Digraph>, covariate_arrays.vector_order),
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

const CatalogueView& digraph_attribute_catalogue(AttributeKind which) {
    return views[static_cast<size_t>(which)];
}

template <>
std::span<const EffectRow<Digraph>> attribute_rows<Digraph>(AttributeKind which) {
    return kind_rows<Digraph>(which);
}

template <>
std::span<const EffectRow<SparseDigraph>> attribute_rows<SparseDigraph>(AttributeKind which) {
    return kind_rows<SparseDigraph>(which);
}

}  // namespace vexa
