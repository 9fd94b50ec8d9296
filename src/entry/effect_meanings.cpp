// What each vexa effect counts, in one line, for the list of effects a host shows. Keyed by
// the run-file name (an attribute effect by its suffix), so that the catalogues stay the one
// place that orders and labels the effects.
#include <span>
#include <string>

#include "entry/effect_aliases.h"

namespace vexa {

namespace {

struct Meaning {
    const char* name;
    const char* text;
};

// Degrees d, shared partners L of a pair, triangles t at a node; lambda the decay with
// weight q = 1 - 1/lambda.
constexpr Meaning graph_meanings[] = {
    {"edge", "the number of edges"},
    {"2-star", "the sum over nodes of C(d, 2)"},
    {"3-star", "the sum over nodes of C(d, 3)"},
    {"4-star", "the sum over nodes of C(d, 4)"},
    {"5-star", "the sum over nodes of C(d, 5)"},
    {"Triangle", "the number of triangles"},
    {"4-clique", "complete subgraphs of 4 nodes"},
    {"5-clique", "complete subgraphs of 5 nodes"},
    {"6-clique", "complete subgraphs of 6 nodes"},
    {"7-clique", "complete subgraphs of 7 nodes"},
    {"Isolates", "nodes of degree 0"},
    {"Triangle2", "pairs of triangles sharing an edge: the sum over edges of C(L, 2)"},
    {"Bow_tie", "pairs of triangles sharing exactly one node"},
    {"P3", "simple paths on four distinct nodes"},
    {"Q10", "the sum over untied pairs of L"},
    {"Q20", "the sum over untied pairs of C(L, 2)"},
    {"Q30", "the sum over untied pairs of C(L, 3)"},
    {"Q31", "the sum over tied pairs of C(L, 3)"},
    {"3Path", "3-trails: the sum over edges uv of (d_u - 1)(d_v - 1)"},
    {"cycle4", "the number of 4-cycles"},
    {"1ET", "a triangle with one further tie at a corner: the sum over v of t_v (d_v - 2)"},
    {"2ET", "a triangle with two further ties at a corner: the sum over v of t_v C(d_v - 2, 2)"},
    {"0ET", "edges in no triangle"},
    {"ETNT", "the sum over v of t_v times v's edges in no triangle"},
    {"two3star", "2-stars minus half the 3-stars"},
    {"one2triangle", "three times Triangle minus half Triangle2"},
    {"one2et", "1ET minus half 2ET"},
    {"AS", "alternating stars: lambda^2 times the sum over v of q^d - 1 + d / lambda"},
    {"AS2", "alternating stars, a second lambda"},
    {"AT", "alternating triangles: lambda times the sum over edges of 1 - q^L"},
    {"AT2", "alternating triangles, a second lambda"},
    {"A2P", "alternating two-paths: lambda times the sum over pairs of 1 - q^L"},
    {"AC", "alternating cliques: the 4- to 8-cliques with alternating signs, ratio 1/lambda"},
    {"AET", "alternating edge triangles: lambda times the sum over v of t_v (1 - q^(d_v - 2))"},
};

// In- and out-degrees, the two-paths P(i,j) (i->k->j), common senders S and receivers R.
constexpr Meaning digraph_meanings[] = {
    {"arc", "the number of arcs"},
    {"reciprocity", "the number of mutual dyads"},
    {"in2star", "the sum over nodes of C(in-degree, 2)"},
    {"out2star", "the sum over nodes of C(out-degree, 2)"},
    {"in-3-star", "the sum over nodes of C(in-degree, 3)"},
    {"out-3-star", "the sum over nodes of C(out-degree, 3)"},
    {"path2", "mixed 2-stars: two-paths i->k->j with i != j"},
    {"Transitive-Triad", "transitive triples: arcs i->j with a two-path i->k->j (030T)"},
    {"Cyclic-Triad", "cycles i->j->k->i, each once (030C)"},
    {"T1", "complete triads, all three dyads mutual (300)"},
    {"T2", "a<->b, a<->k, b->k (210)"},
    {"T3", "a<->b, a->k, k->b (120C)"},
    {"T4", "a<->b, k->a, k->b (120D)"},
    {"T5", "a<->b, a->k, b->k (120U)"},
    {"T6", "a<->b, a<->k, once per centre a (201)"},
    {"T7", "a mutual dyad a<->b and an arc k->a"},
    {"T8", "a mutual dyad a<->b and an arc a->k (111U)"},
    {"Sink", "nodes that receive but send no arc"},
    {"Source", "nodes that send but receive no arc"},
    {"isolates", "nodes without arcs"},
    {"AinS", "alternating in-stars: lambda^2 times the sum over v of q^in - 1 + in / lambda"},
    {"AoutS", "alternating out-stars: the same over the out-degrees"},
    {"AinS2", "alternating in-stars, a second lambda"},
    {"AoutS2", "alternating out-stars, a second lambda"},
    {"AinAoutS", "alternating in-stars and out-stars at one node"},
    {"Ain1outS", "alternating in-stars with one arc out"},
    {"1inAoutS", "alternating out-stars with one arc in"},
    {"AT-T",
     "alternating transitive triangles: lambda times the sum over arcs i->j of 1 - q^P(i,j)"},
    {"AT-C", "alternating cyclic triangles: the same over arcs i->j with L = P(j,i)"},
    {"AT-D", "alternating triangles of common senders: L = S(i,j)"},
    {"AT-U", "alternating triangles of common receivers: L = R(i,j)"},
    {"AT-TD", "AT-T plus AT-D"},
    {"AT-TU", "AT-T plus AT-U"},
    {"AT-DU", "AT-D plus AT-U"},
    {"AT-TDU", "AT-T plus AT-D plus AT-U"},
    {"A2P-T", "alternating two-paths: lambda times the sum over ordered pairs of 1 - q^P(i,j)"},
    {"A2P-D", "alternating shared senders: the same over pairs with L = S(i,j)"},
    {"A2P-U", "alternating shared receivers: the same over pairs with L = R(i,j)"},
    {"A2P-TD", "A2P-T plus A2P-D"},
    {"A2P-TU", "A2P-T plus A2P-U"},
    {"A2P-DU", "A2P-D plus A2P-U"},
    {"A2P-TDU", "A2P-T plus A2P-D plus A2P-U"},
};

// Attribute effects: z a binary value, x a continuous one, c a category, w a covariate.
constexpr Meaning graph_binary[] = {
    {"activity", "the sum over edges of z_i + z_j"},
    {"interaction", "the sum over edges of z_i z_j"},
    {"O1au", "the sum over v of z_v C(d_v, 2)"},
    {"O1bu", "the sum over v of D_v (d_v - 1), D_v the neighbours with z = 1"},
    {"O2au", "the sum over v of z_v D_v (d_v - 1)"},
    {"O2b", "the sum over v of C(D_v, 2)"},
    {"O3u", "the sum over v of z_v C(D_v, 2)"},
    {"T1u", "the sum over triangles of their corners' z"},
    {"T2u", "the sum over triangles of the products of two corners' z"},
    {"T3u", "triangles whose three corners have z = 1"},
    {"ET1", "the sum over v of z_v t_v (d_v - 2)"},
    {"ET2", "the sum over v of z_v t_v C(d_v - 2, 2)"},
    {"ET0", "the sum over v of z_v times v's edges in no triangle"},
    {"ETNT", "the sum over v of z_v t_v times v's edges in no triangle"},
};
constexpr Meaning graph_continuous[] = {
    {"sum_of_Continuous", "the sum over edges of x_i + x_j"},
    {"diff_of_Continuous", "the sum over edges of |x_i - x_j|"},
    {"prod_of_Continuous", "the sum over edges of x_i x_j"},
};
constexpr Meaning graph_categorical[] = {
    {"Same_Category_edge", "edges whose ends share a category"},
    {"Different_Category_edge", "edges whose ends differ in category"},
};
constexpr Meaning graph_covariate[] = {
    {"edge", "the sum over edges of w_ij"},
    {"S21", "the sum over 2-stars of their two ties' w"},
    {"S22", "the sum over 2-stars of the product of their two ties' w"},
    {"T1", "the sum over triangles of their ties' w"},
    {"T2", "the sum over triangles of the products of two ties' w"},
    {"T3", "the sum over triangles of the product of their three ties' w"},
};
constexpr Meaning digraph_binary[] = {
    {"interaction", "the sum over arcs i->j of z_i z_j"},
    {"sender", "the sum over arcs i->j of z_i"},
    {"receiver", "the sum over arcs i->j of z_j"},
    {"sender_missing", "arcs sent by nodes whose value is missing"},
    {"receiver_missing", "arcs received by nodes whose value is missing"},
    {"activity_reciprocity", "the sum over mutual dyads of z_i + z_j"},
    {"interaction_reciprocity", "the sum over mutual dyads of z_i z_j"},
    {"out2star", "the sum over v of z_v C(out_v, 2)"},
    {"path2", "the sum over v of z_v times the two-paths through v"},
    {"in2star", "the sum over v of z_v C(in_v, 2)"},
};
constexpr Meaning digraph_continuous[] = {
    {"sender", "the sum over arcs i->j of x_i"},
    {"receiver", "the sum over arcs i->j of x_j"},
    {"sender_missing", "arcs sent by nodes whose value is missing"},
    {"receiver_missing", "arcs received by nodes whose value is missing"},
    {"sum", "the sum over arcs of x_i + x_j"},
    {"diff", "the sum over arcs of |x_i - x_j|"},
    {"prod", "the sum over arcs of x_i x_j"},
    {"sum_reciprocity", "the sum over mutual dyads of x_i + x_j"},
    {"diff_reciprocity", "the sum over mutual dyads of |x_i - x_j|"},
    {"prod_reciprocity", "the sum over mutual dyads of x_i x_j"},
    {"in2star", "the sum over v of x_v C(in_v, 2)"},
    {"out2star", "the sum over v of x_v C(out_v, 2)"},
    {"path2", "the sum over v of x_v times the two-paths through v"},
};
constexpr Meaning digraph_categorical[] = {
    {"same_Category", "arcs whose ends share a category"},
    {"diff_Category", "arcs whose ends differ in category"},
    {"same_Category_reciprocity", "mutual dyads whose ends share a category"},
    {"diff_Category_reciprocity", "mutual dyads whose ends differ in category"},
};
constexpr Meaning digraph_covariate[] = {
    {"arc", "the sum over arcs i->j of w_ij"},
};

std::string find(std::span<const Meaning> table, const std::string& name) {
    for (const Meaning& m : table) {
        if (name == m.name) return m.text;
    }
    return "";
}

}  // namespace

std::string effect_meaning(NetworkKind kind, const std::string& name) {
    return kind == NetworkKind::digraph ? find(digraph_meanings, name) : find(graph_meanings, name);
}

std::string attribute_effect_meaning(NetworkKind kind, AttributeKind which,
                                     const std::string& name) {
    const bool graph = kind == NetworkKind::graph;
    switch (which) {
        case AttributeKind::binary:
            return graph ? find(graph_binary, name) : find(digraph_binary, name);
        case AttributeKind::continuous:
            return graph ? find(graph_continuous, name) : find(digraph_continuous, name);
        case AttributeKind::categorical:
            return graph ? find(graph_categorical, name) : find(digraph_categorical, name);
        case AttributeKind::covariate:
            return graph ? find(graph_covariate, name) : find(digraph_covariate, name);
    }
    return "";
}

}  // namespace vexa
