#include "effects/attribute_catalogue.h"

#include <array>

namespace vexa {

namespace {

using Row = AttributeEffectRow;

// Graph binary attributes. Spellings differ between files on purpose ("O2b" in the update
// file and the reports, "o2bu" in the sample columns) and are kept as they are.
constexpr std::array<Row, 14> graph_binary{{
    {"activity", "activity", "activity", "activity", "activity", "activity", "F8.0", true},
    {"interaction", "interaction", "interaction", "interaction", "interaction", "interaction", "F8.0", true},
    {"O1au", "o1au", "O1au", "o1au", "o1au", "o1au", "F8.0", true},
    {"O1bu", "o1bu", "O1bu", "o1bu", "o1bu", "o1bu", "F8.0", true},
    {"O2au", "o2au", "O2au", "o2au", "o2au", "o2au", "F8.0", true},
    {"O2b", "o2b", "O2b", "o2bu", "o2bu", "o2bu", "F8.0", true},
    {"O3u", "o3u", "O3u", "o3u", "o3u", "o3u", "F8.0", true},
    {"T1u", "t1u", "T1u", "t1u", "t1u", "t1u", "F8.0", true},
    {"T2u", "t2u", "T2u", "t2u", "t2u", "t2u", "F8.0", true},
    {"T3u", "t3u", "T3u", "t3u", "t3u", "t3u", "F8.0", true},
    {"ET1", "ET1", "ET1", "ET1", "ET1", "ET1", "F8.0", true},
    {"ET2", "ET2", "ET2", "ET2", "ET2", "ET2", "F8.0", true},
    {"ET0", "ET0", "ET0", "ET0", "ET0", "ET0", "F8.0", true},
    {"ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "F8.0", true},
}};
constexpr std::array<int32_t, 14> graph_binary_order{9, 8, 7, 6, 4, 5, 2, 3, 1, 0, 10, 11, 12, 13};

constexpr std::array<Row, 3> graph_continuous{{
    {"sum_of_Continuous", "sum", "sum", "sum", "sum", "sum", "F8.4", false},
    {"diff_of_Continuous", "diff", "diff", "diff", "diff", "diff", "F8.4", false},
    {"prod_of_Continuous", "prod", "prod", "prod", "prod", "prod", "F8.4", false},
}};
constexpr std::array<int32_t, 3> graph_continuous_order{0, 1, 2};

constexpr std::array<Row, 2> graph_categorical{{
    {"Same_Category_edge", "matching", "same_Category", "same_Category", "sameC", "sameEC", "F8.0", true},
    {"Different_Category_edge", "mismatch", "diff_Category", "diff_Category", "diffC", "diffEC", "F8.0", true},
}};
constexpr std::array<int32_t, 2> graph_categorical_order{0, 1};

constexpr std::array<Row, 6> graph_covariate{{
    {"edge", "edge", "edge", "edge", "edge", "edge", "F8.4", true},
    {"S21", "S21", "S21", "S21", "S21", "s21", "F8.4", true},
    {"S22", "S22", "S22", "S22", "S22", "s22", "F8.4", true},
    {"T1", "t1", "t1", "t1", "t1", "t1", "F8.4", true},
    {"T2", "t2", "t2", "t2", "t2", "t2", "F8.4", true},
    {"T3", "t3", "t3", "t3", "t3", "t3", "F8.4", true},
}};
constexpr std::array<int32_t, 6> graph_covariate_order{0, 1, 2, 3, 4, 5};

constexpr std::array<Row, 10> digraph_binary{{
    {"interaction", "interaction", "interaction", "interaction", "interaction", "interaction", "F8.0", true},
    {"sender", "sender", "sender", "sender", "sender", "sender", "F8.0", true},
    {"receiver", "receiver", "receiver", "receiver", "receiver", "receiver", "F8.0", true},
    {"sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing", "F8.0", true},
    {"receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "F8.0", true},
    {"activity_reciprocity", "activity_reciprocity", "activity_reciprocity", "activity_reciprocity", "t1u11", "t1u11", "F8.0", true},
    {"interaction_reciprocity", "interaction_reciprocity", "interaction_reciprocity", "interaction_reciprocity", "t2u11", "t2u11", "F8.0", true},
    {"out2star", "out2star", "out2star", "out2star", "out2star", "out2star", "F8.0", true},
    {"path2", "path2", "path2", "path2", "path2", "path2", "F8.0", true},
    {"in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "F8.0", true},
}};
// The reports list the reciprocity effects and the stars in the opposite order to the run file.
constexpr std::array<int32_t, 10> digraph_binary_order{0, 1, 2, 3, 4, 6, 5, 9, 8, 7};

constexpr std::array<Row, 13> digraph_continuous{{
    {"sender", "sender", "sender", "sender", "sender", "sender", "F8.4", false},
    {"receiver", "receiver", "receiver", "receiver", "receiver", "receiver", "F8.4", false},
    {"sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing", "F8.4", false},
    {"receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "F8.4", false},
    {"sum", "sum", "sum", "sum", "interaction_sum", "interaction_sum", "F8.4", false},
    {"diff", "diff", "diff", "diff", "interaction_diff", "interaction_diff", "F8.4", false},
    {"prod", "prod", "prod", "prod", "interaction_prod", "interaction_prod", "F8.4", false},
    {"sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "F8.4", false},
    {"diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "F8.4", false},
    {"prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "F8.4", false},
    {"in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "F8.4", false},
    {"out2star", "out2star", "out2star", "out2star", "out2star", "out2star", "F8.4", false},
    {"path2", "path2", "path2", "path2", "twomix", "twomix", "F8.4", false},
}};
constexpr std::array<int32_t, 13> digraph_continuous_order{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

constexpr std::array<Row, 4> digraph_categorical{{
    {"same_Category", "matching", "same_Category", "same_Category", "matching", "matching", "F8.0", true},
    {"diff_Category", "mismatch", "diff_Category", "diff_Category", "mismatch", "mismatch", "F8.0", true},
    {"same_Category_reciprocity", "matching_reciprocity", "same_Category_reciprocity", "same_Category_reciprocity", "matching_reciprocity", "matching_reciprocity", "F8.0", true},
    {"diff_Category_reciprocity", "mismatch_reciprocity", "diff_Category_reciprocity", "diff_Category_reciprocity", "mismatch_reciprocity", "mismatch_reciprocity", "F8.0", true},
}};
constexpr std::array<int32_t, 4> digraph_categorical_order{0, 1, 2, 3};

constexpr std::array<Row, 1> digraph_covariate{{
    {"arc", "arc", "arc", "arc", "arc", "arc", "F8.4", true},
}};
constexpr std::array<int32_t, 1> digraph_covariate_order{0};

// Every vector order must be a permutation of its rows.
template <size_t N>
constexpr bool is_permutation(const std::array<int32_t, N>& order) {
    std::array<bool, N> seen{};
    for (const int32_t k : order) {
        if (k < 0 || static_cast<size_t>(k) >= N || seen[static_cast<size_t>(k)]) return false;
        seen[static_cast<size_t>(k)] = true;
    }
    return true;
}
static_assert(is_permutation(graph_binary_order) && is_permutation(graph_continuous_order) &&
              is_permutation(graph_categorical_order) && is_permutation(graph_covariate_order));
static_assert(is_permutation(digraph_binary_order) && is_permutation(digraph_continuous_order) &&
              is_permutation(digraph_categorical_order) && is_permutation(digraph_covariate_order));

const std::array<AttributeCatalogue, 4> graph_catalogues{{
    {graph_binary, graph_binary_order},
    {graph_continuous, graph_continuous_order},
    {graph_categorical, graph_categorical_order},
    {graph_covariate, graph_covariate_order},
}};
const std::array<AttributeCatalogue, 4> digraph_catalogues{{
    {digraph_binary, digraph_binary_order},
    {digraph_continuous, digraph_continuous_order},
    {digraph_categorical, digraph_categorical_order},
    {digraph_covariate, digraph_covariate_order},
}};

}  // namespace

const AttributeCatalogue& attribute_catalogue(NetworkKind network, AttributeKind kind) {
    const auto& catalogues = network == NetworkKind::digraph ? digraph_catalogues : graph_catalogues;
    return catalogues[static_cast<size_t>(kind)];
}

}  // namespace vexa
