#include <array>

#include "effects/attribute/attribute_effects.h"
#include "effects/catalogue.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

using namespace attribute_terms;

// Graph binary attributes. Spellings differ between files on purpose ("O2b" in the update
// file and the reports, "o2bu" in the sample columns) and are kept as they are.
template <class G>
constexpr std::array<EffectRow<G>, 14> graph_binary{{
    {{{"activity", "activity", "activity", "activity", "activity", "activity", "activity",
       "activity", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_sum},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"interaction", "interaction", "interaction", "interaction", "interaction", "interaction",
       "interaction", "interaction", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_product},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"O1au", "O1au", "o1au", "o1au", "O1au", "o1au", "o1au", "o1au", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_o1au},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"O1bu", "O1bu", "o1bu", "o1bu", "O1bu", "o1bu", "o1bu", "o1bu", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_o1bu},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"O2au", "O2au", "o2au", "o2au", "O2au", "o2au", "o2au", "o2au", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_o2au},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"O2b", "O2b", "o2bu", "o2b", "O2b", "o2bu", "o2bu", "o2bu", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_o2b},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"O3u", "O3u", "o3u", "o3u", "O3u", "o3u", "o3u", "o3u", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_o3u},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"T1u", "T1u", "t1u", "t1u", "T1u", "t1u", "t1u", "t1u", "F8.0"},
      0.0f,
      true,
      0,
      true,
      triangle_single},
     change_triangle_sum<G, false>,
     total_triangle_sum<G, false>},
    {{{"T2u", "T2u", "t2u", "t2u", "T2u", "t2u", "t2u", "t2u", "F8.0"},
      0.0f,
      true,
      0,
      true,
      triangle_pairs},
     change_triangle_sum<G, false>,
     total_triangle_sum<G, false>},
    {{{"T3u", "T3u", "t3u", "t3u", "T3u", "t3u", "t3u", "t3u", "F8.0"},
      0.0f,
      true,
      0,
      true,
      triangle_all},
     change_triangle_sum<G, false>,
     total_triangle_sum<G, false>},
    {{{"ET1", "ET1", "ET1", "ET1", "ET1", "ET1", "ET1", "ET1", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_et1},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"ET2", "ET2", "ET2", "ET2", "ET2", "ET2", "ET2", "ET2", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_et2},
     change_node_statistic<G>,
     total_node_statistic<G>},
    {{{"ET0", "ET0", "ET0", "ET0", "ET0", "ET0", "ET0", "ET0", "F8.0"}, 0.0f, true, 0, true, et0},
     change_edge_triangle<G>,
     total_edge_triangle<G>},
    {{{"ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "ETNT", "F8.0"},
      0.0f,
      true,
      0,
      true,
      etnt},
     change_edge_triangle<G>,
     total_edge_triangle<G>},
}};
constexpr std::array<int32_t, 14> graph_binary_order{9, 8, 7, 6, 4, 5, 2, 3, 1, 0, 10, 11, 12, 13};

template <class G>
constexpr std::array<EffectRow<G>, 3> graph_continuous{{
    {{{"sum_of_Continuous", "sum", "sum", "sum", "sum", "sum", "sum", "sum", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_sum},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"diff_of_Continuous", "diff", "diff", "diff", "diff", "diff", "diff", "diff", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_difference},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"prod_of_Continuous", "prod", "prod", "prod", "prod", "prod", "prod", "prod", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_product},
     change_tie_value<G>,
     total_tie_value<G>},
}};
constexpr std::array<int32_t, 3> graph_continuous_order{0, 1, 2};

template <class G>
constexpr std::array<EffectRow<G>, 2> graph_categorical{{
    {{{"Same_Category_edge", "same_Category", "sameC", "matching", "same_Category", "same_Category",
       "sameC", "sameEC", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_same},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"Different_Category_edge", "diff_Category", "diffC", "mismatch", "diff_Category",
       "diff_Category", "diffC", "diffEC", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_different},
     change_tie_value<G>,
     total_tie_value<G>},
}};
constexpr std::array<int32_t, 2> graph_categorical_order{0, 1};

template <class G>
constexpr std::array<EffectRow<G>, 6> graph_covariate{{
    {{{"edge", "edge", "edge", "edge", "edge", "edge", "edge", "edge", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_covariate},
     change_tie_value<G>,
     total_tie_value<G>},
    {{{"S21", "S21", "S21", "S21", "S21", "S21", "S21", "s21", "F8.4"},
      0.0f,
      false,
      0,
      true,
      star21},
     change_covariate_star<G>,
     total_covariate_star<G>},
    {{{"S22", "S22", "S22", "S22", "S22", "S22", "S22", "s22", "F8.4"},
      0.0f,
      false,
      0,
      true,
      star22},
     change_covariate_star<G>,
     total_covariate_star<G>},
    {{{"T1", "t1", "t1", "t1", "t1", "t1", "t1", "t1", "F8.4"},
      0.0f,
      false,
      0,
      true,
      triangle_single},
     change_triangle_sum<G, true>,
     total_triangle_sum<G, true>},
    {{{"T2", "t2", "t2", "t2", "t2", "t2", "t2", "t2", "F8.4"},
      0.0f,
      false,
      0,
      true,
      triangle_pairs},
     change_triangle_sum<G, true>,
     total_triangle_sum<G, true>},
    {{{"T3", "t3", "t3", "t3", "t3", "t3", "t3", "t3", "F8.4"}, 0.0f, false, 0, true, triangle_all},
     change_triangle_sum<G, true>,
     total_triangle_sum<G, true>},
}};
constexpr std::array<int32_t, 6> graph_covariate_order{0, 1, 2, 3, 4, 5};

template <class D>
constexpr std::array<EffectRow<D>, 10> digraph_binary{{
    {{{"interaction", "interaction", "interaction", "interaction", "interaction", "interaction",
       "interaction", "interaction", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_product},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"sender", "sender", "sender", "sender", "sender", "sender", "sender", "sender", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_sender},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"receiver", "receiver", "receiver", "receiver", "receiver", "receiver", "receiver",
       "receiver", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_receiver},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing",
       "sender_missing", "sender_missing", "sender_missing", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_sender_missing},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing",
       "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_receiver_missing},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"activity_reciprocity", "activity_reciprocity", "t1u11", "activity_reciprocity",
       "activity_reciprocity", "activity_reciprocity", "t1u11", "t1u11", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_sum},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"interaction_reciprocity", "interaction_reciprocity", "t2u11", "interaction_reciprocity",
       "interaction_reciprocity", "interaction_reciprocity", "t2u11", "t2u11", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_product},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"out2star", "out2star", "out2star", "out2star", "out2star", "out2star", "out2star",
       "out2star", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_out2star},
     change_digraph_node<D>,
     total_digraph_node<D>},
    {{{"path2", "path2", "path2", "path2", "path2", "path2", "path2", "path2", "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_path2},
     change_digraph_node<D>,
     total_digraph_node<D>},
    {{{"in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "in2star",
       "F8.0"},
      0.0f,
      true,
      0,
      true,
      node_in2star},
     change_digraph_node<D>,
     total_digraph_node<D>},
}};
// The reports list the reciprocity effects and the stars in the opposite order to the run file.
constexpr std::array<int32_t, 10> digraph_binary_order{0, 1, 2, 3, 4, 6, 5, 9, 8, 7};

template <class D>
constexpr std::array<EffectRow<D>, 13> digraph_continuous{{
    {{{"sender", "sender", "sender", "sender", "sender", "sender", "sender", "sender", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_sender},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"receiver", "receiver", "receiver", "receiver", "receiver", "receiver", "receiver",
       "receiver", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_receiver},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"sender_missing", "sender_missing", "sender_missing", "sender_missing", "sender_missing",
       "sender_missing", "sender_missing", "sender_missing", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_sender_missing},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing",
       "receiver_missing", "receiver_missing", "receiver_missing", "receiver_missing", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_receiver_missing},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"sum", "sum", "interaction_sum", "sum", "sum", "sum", "interaction_sum", "interaction_sum",
       "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_sum},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"diff", "diff", "interaction_diff", "diff", "diff", "diff", "interaction_diff",
       "interaction_diff", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_difference},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"prod", "prod", "interaction_prod", "prod", "prod", "prod", "interaction_prod",
       "interaction_prod", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_product},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "sum_reciprocity",
       "sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "sum_reciprocity", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_sum},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity",
       "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "diff_reciprocity", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_difference},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity",
       "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "prod_reciprocity", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_product},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "in2star", "in2star",
       "F8.4"},
      0.0f,
      false,
      0,
      true,
      node_in2star},
     change_digraph_node<D>,
     total_digraph_node<D>},
    {{{"out2star", "out2star", "out2star", "out2star", "out2star", "out2star", "out2star",
       "out2star", "F8.4"},
      0.0f,
      false,
      0,
      true,
      node_out2star},
     change_digraph_node<D>,
     total_digraph_node<D>},
    {{{"path2", "path2", "twomix", "path2", "path2", "path2", "twomix", "twomix", "F8.4"},
      0.0f,
      false,
      0,
      true,
      node_path2},
     change_digraph_node<D>,
     total_digraph_node<D>},
}};
constexpr std::array<int32_t, 13> digraph_continuous_order{0, 1, 2, 3,  4,  5, 6,
                                                           7, 8, 9, 10, 11, 12};

template <class D>
constexpr std::array<EffectRow<D>, 4> digraph_categorical{{
    {{{"same_Category", "same_Category", "matching", "matching", "same_Category", "same_Category",
       "matching", "matching", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_same},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"diff_Category", "diff_Category", "mismatch", "mismatch", "diff_Category", "diff_Category",
       "mismatch", "mismatch", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_different},
     change_tie_value<D>,
     total_tie_value<D>},
    {{{"same_Category_reciprocity", "same_Category_reciprocity", "matching_reciprocity",
       "matching_reciprocity", "same_Category_reciprocity", "same_Category_reciprocity",
       "matching_reciprocity", "matching_reciprocity", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_same},
     change_mutual_value<D>,
     total_mutual_value<D>},
    {{{"diff_Category_reciprocity", "diff_Category_reciprocity", "mismatch_reciprocity",
       "mismatch_reciprocity", "diff_Category_reciprocity", "diff_Category_reciprocity",
       "mismatch_reciprocity", "mismatch_reciprocity", "F8.0"},
      0.0f,
      true,
      0,
      true,
      dyad_different},
     change_mutual_value<D>,
     total_mutual_value<D>},
}};
constexpr std::array<int32_t, 4> digraph_categorical_order{0, 1, 2, 3};

template <class D>
constexpr std::array<EffectRow<D>, 1> digraph_covariate{{
    {{{"arc", "arc", "arc", "arc", "arc", "arc", "arc", "arc", "F8.4"},
      0.0f,
      false,
      0,
      true,
      dyad_covariate},
     change_tie_value<D>,
     total_tie_value<D>},
}};
constexpr std::array<int32_t, 1> digraph_covariate_order{0};

static_assert(valid_order<14>(graph_binary_order) && valid_order<3>(graph_continuous_order) &&
              valid_order<2>(graph_categorical_order) && valid_order<6>(graph_covariate_order));
static_assert(valid_order<10>(digraph_binary_order) && valid_order<13>(digraph_continuous_order) &&
              valid_order<4>(digraph_categorical_order) && valid_order<1>(digraph_covariate_order));

// Attribute effects are listed in run-file order.
template <size_t N>
constexpr std::array<int32_t, N> in_order() {
    std::array<int32_t, N> order{};
    for (size_t k = 0; k < N; ++k) order[k] = static_cast<int32_t>(k);
    return order;
}

#define VIEW(table, store, order) \
    CatalogueView { descriptions_##table, run_order_##table, order }
constexpr auto descriptions_graph_binary = descriptions_of(graph_binary<Graph>);
constexpr auto descriptions_graph_continuous = descriptions_of(graph_continuous<Graph>);
constexpr auto descriptions_graph_categorical = descriptions_of(graph_categorical<Graph>);
constexpr auto descriptions_graph_covariate = descriptions_of(graph_covariate<Graph>);
constexpr auto descriptions_digraph_binary = descriptions_of(digraph_binary<Digraph>);
constexpr auto descriptions_digraph_continuous = descriptions_of(digraph_continuous<Digraph>);
constexpr auto descriptions_digraph_categorical = descriptions_of(digraph_categorical<Digraph>);
constexpr auto descriptions_digraph_covariate = descriptions_of(digraph_covariate<Digraph>);
constexpr auto run_order_graph_binary = in_order<14>();
constexpr auto run_order_graph_continuous = in_order<3>();
constexpr auto run_order_graph_categorical = in_order<2>();
constexpr auto run_order_graph_covariate = in_order<6>();
constexpr auto run_order_digraph_binary = in_order<10>();
constexpr auto run_order_digraph_continuous = in_order<13>();
constexpr auto run_order_digraph_categorical = in_order<4>();
constexpr auto run_order_digraph_covariate = in_order<1>();

const std::array<CatalogueView, 4> graph_views{{
    VIEW(graph_binary, Graph, graph_binary_order),
    VIEW(graph_continuous, Graph, graph_continuous_order),
    VIEW(graph_categorical, Graph, graph_categorical_order),
    VIEW(graph_covariate, Graph, graph_covariate_order),
}};
const std::array<CatalogueView, 4> digraph_views{{
    VIEW(digraph_binary, Digraph, digraph_binary_order),
    VIEW(digraph_continuous, Digraph, digraph_continuous_order),
    VIEW(digraph_categorical, Digraph, digraph_categorical_order),
    VIEW(digraph_covariate, Digraph, digraph_covariate_order),
}};
#undef VIEW

}  // namespace

const CatalogueView& attribute_catalogue(NetworkKind network, AttributeKind which) {
    const auto& views = network == NetworkKind::digraph ? digraph_views : graph_views;
    return views[static_cast<size_t>(which)];
}

template <>
std::span<const EffectRow<Graph>> attribute_rows<Graph>(AttributeKind which) {
    switch (which) {
        case AttributeKind::binary: return graph_binary<Graph>;
        case AttributeKind::continuous: return graph_continuous<Graph>;
        case AttributeKind::categorical: return graph_categorical<Graph>;
        case AttributeKind::covariate: return graph_covariate<Graph>;
    }
    return {};
}

template <>
std::span<const EffectRow<SparseGraph>> attribute_rows<SparseGraph>(AttributeKind which) {
    switch (which) {
        case AttributeKind::binary: return graph_binary<SparseGraph>;
        case AttributeKind::continuous: return graph_continuous<SparseGraph>;
        case AttributeKind::categorical: return graph_categorical<SparseGraph>;
        case AttributeKind::covariate: return graph_covariate<SparseGraph>;
    }
    return {};
}

template <>
std::span<const EffectRow<Digraph>> attribute_rows<Digraph>(AttributeKind which) {
    switch (which) {
        case AttributeKind::binary: return digraph_binary<Digraph>;
        case AttributeKind::continuous: return digraph_continuous<Digraph>;
        case AttributeKind::categorical: return digraph_categorical<Digraph>;
        case AttributeKind::covariate: return digraph_covariate<Digraph>;
    }
    return {};
}

template <>
std::span<const EffectRow<SparseDigraph>> attribute_rows<SparseDigraph>(AttributeKind which) {
    switch (which) {
        case AttributeKind::binary: return digraph_binary<SparseDigraph>;
        case AttributeKind::continuous: return digraph_continuous<SparseDigraph>;
        case AttributeKind::categorical: return digraph_categorical<SparseDigraph>;
        case AttributeKind::covariate: return digraph_covariate<SparseDigraph>;
    }
    return {};
}

}  // namespace vexa
