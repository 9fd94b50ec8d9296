#include "effects/graph/graph_catalogue.h"

#include <array>

#include "effects/catalogue_table.h"
#include "effects/graph/graph_alternating.h"
#include "effects/graph/graph_counts.h"
#include "effects/graph/graph_edge_triangles.h"
#include "effects/graph/graph_paths.h"

namespace vexa {

namespace {

using enum TieReads;  // the tables' reads column
using namespace needs_column;
using namespace graph_terms;
using E = GraphEffect;

// Labels differ between files on purpose ("4Cycle" in the statistics report, "cycle4" in the
// run file, "D3" for 3Path in the estimation summary, "triangles" in the goodness-of-fit
// table); each file keeps its own. 2_3star, 1_2triangle and 1_2et weigh their configurations
// by 1/2, so they are printed like weighted statistics, not like counts. P0 has no run-file
// entry. Families share a function: the k-stars and k-cliques switch on k, the Q statistics
// on 10 m (plus 1 for tied pairs).
// clang-format off
template <class G>
constexpr auto table = std::to_array<CatalogueRow<GraphEffect, G>>({
    // id              update          report         column          summary        simulation     gof            sample          spss            format   lambda integral clique carried variant reads    needs               change                  total
    {E::edge,         {"edge",         "edge",        "edge",         "edge",        "edge",        "edge",        "edge",         "edge",         "F8.0", "ties: the density of the network"}, 0.0f,  true,    0,     true,   0,      nothing, no_counts,          change_edge<G>,         total_edge<G>},
    {E::star2,        {"2-star",       "2-star",      "star2",        "2-star",      "2-star",      "2-star",      "star2",        "star2",        "F8.0", "2-stars: pairs of ties at a node (spread of the degrees)"}, 0.0f,  true,    0,     true,   2,      network, no_counts,          change_star<G>,         total_star<G>},
    {E::star3,        {"3-star",       "3-star",      "star3",        "3-star",      "3-star",      "3-star",      "star3",        "star3",        "F8.0", "3-stars: triples of ties at a node"}, 0.0f,  true,    0,     true,   3,      network, no_counts,          change_star<G>,         total_star<G>},
    {E::star4,        {"4-star",       "4-star",      "star4",        "4-star",      "4-star",      "4-star",      "star4",        "star4",        "F8.0", "4-stars: four ties at a node"}, 0.0f,  true,    0,     true,   4,      network, no_counts,          change_star<G>,         total_star<G>},
    {E::star5,        {"5-star",       "5-star",      "star5",        "5-star",      "5-star",      "5-star",      "star5",        "star5",        "F8.0", "5-stars: five ties at a node"}, 0.0f,  true,    0,     true,   5,      network, no_counts,          change_star<G>,         total_star<G>},
    {E::triangle,     {"Triangle",     "Triangle",    "tri",          "Triangle",    "Triangle",    "triangles",   "triangle",     "triangle",     "F8.4", "triangles: three nodes all tied (closure)"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_triangle<G>,     total_triangle<G>},
    {E::clique4,      {"4-clique",     "4-clique",    "clique4",      "4-clique",    "4-clique",    "4-clique",    "clique4",      "clique4",      "F8.4", "4-cliques: four nodes all tied"}, 0.0f,  true,    4,     true,   4,      network, partners,           change_clique<G>,       total_clique<G>},
    {E::clique5,      {"5-clique",     "5-clique",    "clique5",      "5-clique",    "5-clique",    "5-clique",    "clique5",      "clique5",      "F8.4", "5-cliques: five nodes all tied"}, 0.0f,  true,    5,     true,   5,      network, partners,           change_clique<G>,       total_clique<G>},
    {E::clique6,      {"6-clique",     "6-clique",    "clique6",      "6-clique",    "6-clique",    "6-clique",    "clique6",      "clique6",      "F8.4", "6-cliques: six nodes all tied"}, 0.0f,  true,    6,     true,   6,      network, partners,           change_clique<G>,       total_clique<G>},
    {E::clique7,      {"7-clique",     "7-clique",    "clique7",      "7-clique",    "7-clique",    "7-clique",    "clique7",      "clique7",      "F8.4", "7-cliques: seven nodes all tied"}, 0.0f,  true,    7,     true,   7,      network, partners,           change_clique<G>,       total_clique<G>},
    {E::isolates,     {"Isolates",     "Isolates",    "iso",          "Isolates",    "Isolates",    "Isolates",    "iso",          "iso",          "F8.4", "nodes without a tie"}, 0.0f,  true,    0,     true,   0,      network, no_counts,          change_isolates<G>,     total_isolates<G>},
    {E::p0,           {nullptr,        "P0",          "p0",           "P0",          "P0",          "P0",          "p0",           "p0",           "F8.0", "triangles, counted for the reports only"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_triangle<G>,     total_triangle<G>},
    {E::triangle2,    {"Triangle2",    "Triangle2",   "triangle2",    "Triangle2",   "triangle2",   "triangle2",   "triangle2",    "triangle2",    "F8.0", "pairs of triangles that share a tie"}, 0.0f,  true,    0,     true,   0,      network, partners,           change_triangle2<G>,    total_triangle2<G>},
    {E::bow_tie,      {"Bow_tie",      "Bow_tie",     "bow_tie",      "Bow_tie",     "Bow_tie",     "Bow_tie",     "bow_tie",      "bow_tie",      "F8.0", "pairs of triangles that share exactly one node"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_bow_tie<G>,      total_bow_tie<G>},
    {E::p3,           {"P3",           "P3",          "p3",           "P3",          "P3",          "P3",          "p3",           "p3",           "F8.0", "paths over four distinct nodes (3Path less three per triangle)"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_p3<G>,           total_p3<G>},
    {E::q10,          {"Q10",          "Q10",         "q10",          "Q10",         "Q10",         "Q10",         "q10",          "q10",          "F8.0", "two-paths that join untied pairs"}, 0.0f,  true,    0,     true,   10,     network, partners,           change_q<G>,            total_q<G>},
    {E::q20,          {"Q20",          "Q20",         "q20",          "Q20",         "Q20",         "Q20",         "q20",          "q20",          "F8.0", "pairs of two-paths that join the same untied pair"}, 0.0f,  true,    0,     true,   20,     network, partners,           change_q<G>,            total_q<G>},
    {E::q30,          {"Q30",          "Q30",         "q30",          "Q30",         "Q30",         "Q30",         "q30",          "q30",          "F8.0", "triples of two-paths that join the same untied pair"}, 0.0f,  true,    0,     true,   30,     network, partners,           change_q<G>,            total_q<G>},
    {E::q31,          {"Q31",          "Q31",         "q31",          "Q31",         "Q31",         "Q31",         "q31",          "q31",          "F8.0", "triples of two-paths that join the same tied pair"}, 0.0f,  true,    0,     true,   31,     network, partners,           change_q<G>,            total_q<G>},
    {E::path3,        {"3Path",        "3Path",       "path3",        "D3",          "3Path",       "3Path",       "path3",        "path3",        "F8.0", "3-trails: chains of three ties (a triangle counts three times)"}, 0.0f,  true,    0,     true,   0,      network, no_counts,          change_path3<G>,        total_path3<G>},
    {E::cycle4,       {"cycle4",       "4Cycle",      "cycle4",       "cycle4",      "cycle4",      "cycle4",      "cycle4",       "cycle4",       "F8.0", "4-cycles: four nodes tied in a ring"}, 0.0f,  true,    0,     true,   0,      network, partners,           change_cycle4<G>,       total_cycle4<G>},
    {E::et1,          {"1ET",          "1ET",         "et1",          "1ET",         "1ET",         "1ET",         "et1",          "et1",          "F8.0", "triangles with one further tie at a corner"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_et1<G>,          total_et1<G>},
    {E::et2,          {"2ET",          "2ET",         "et2",          "2ET",         "2ET",         "2ET",         "et2",          "et2",          "F8.0", "triangles with two further ties at a corner"}, 0.0f,  true,    0,     true,   0,      network, partners_triangles, change_et2<G>,          total_et2<G>},
    {E::et0,          {"0ET",          "0ET",         "et0",          "0ET",         "0ET",         "0ET",         "et0",          "et0",          "F8.0", "ties that lie in no triangle"}, 0.0f,  true,    0,     false,  0,      network, partners_triangles, change_unweighted<G>,   total_et0<G>},
    {E::etnt,         {"ETNT",         "ETNT",        "etnt",         "ETNT",        "ETNT",        "ETNT",        "etnt",         "etnt",         "F8.0", "triangles at a node times its ties that lie in no triangle"}, 0.0f,  true,    0,     false,  0,      network, partners_triangles, change_unweighted<G>,   total_etnt<G>},
    {E::two3star,     {"two3star",     "2_3star",     "two3star",     "2_3star",     "2_3star",     "2_3star",     "two3star",     "two3star",     "F8.0", "2-stars less half the 3-stars"}, 0.0f,  false,   0,     true,   0,      network, no_counts,          change_two3star<G>,     total_two3star<G>},
    {E::one2triangle, {"one2triangle", "1_2triangle", "one2triangle", "1_2Triangle", "1_2triangle", "1_2triangle", "one2triangle", "one2triangle", "F8.0", "three times the triangles less half of Triangle2"}, 0.0f,  false,   0,     true,   0,      network, partners_triangles, change_one2triangle<G>, total_one2triangle<G>},
    {E::one2et,       {"one2et",       "1_2et",       "one2et",       "1_2ET",       "1_2et",       "1_2et",       "one2et",       "one2et",       "F8.0", "1ET less half of 2ET"}, 0.0f,  false,   0,     true,   0,      network, partners_triangles, change_one2et<G>,       total_one2et<G>},
    {E::as,           {"AS",           "AS",          "as",           "AS",          "AS",          "AS",          "as",           "as",           "F8.4", "alternating stars: spread of the degrees, each further tie worth less (lambda)"}, 2.0f,  false,   0,     true,   0,      network, no_counts,          change_as<G>,           total_as<G>},
    {E::as2,          {"AS2",          "AS2",         "as2",          "AS2",         "AS2",         "AS2",         "as2",          "as2",          "F8.4", "alternating stars, a second form (lambda 1 by default)"}, 1.0f,  false,   0,     true,   0,      network, no_counts,          change_as<G>,           total_as<G>},
    {E::at,           {"AT",           "AT",          "at",           "AT",          "AT",          "AT",          "at",           "at",           "F8.4", "alternating triangles: closure, each further shared partner worth less (lambda)"}, 2.0f,  false,   0,     true,   0,      network, partners,           change_at<G>,           total_at<G>},
    {E::at2,          {"AT2",          "AT2",         "at2",          "AT2",         "AT2",         "AT2",         "at2",          "at2",          "F8.4", "alternating triangles, a second form (lambda 1 by default)"}, 1.0f,  false,   0,     true,   0,      network, partners,           change_at<G>,           total_at<G>},
    {E::a2p,          {"A2P",          "A2P",         "a2p",          "A2P",         "A2P",         "A2P",         "a2p",          "a2p",          "F8.0", "alternating two-paths: pairs by their shared partners, tied or not (lambda)"}, 2.0f,  false,   0,     true,   0,      network, partners,           change_a2p<G>,          total_a2p<G>},
    {E::ac,           {"AC",           "AC",          "ac",           "AC",          "AC",          "AC",          "ac",           "ac",           "F8.0", "alternating cliques: 4- to 8-cliques with alternating signs (lambda)"}, 2.0f,  false,   8,     true,   0,      network, partners,           change_ac<G>,           total_ac<G>},
    {E::aet,          {"AET",          "AET",         "aet",          "AET",         "AET",         "AET",         "aet",          "aet",          "F8.0", "alternating edge-triangles: triangles at a node, weighted by its degree (lambda)"}, 2.0f,  false,   0,     true,   0,      network, partners_triangles, change_aet<G>,          total_aet<G>},
});
// clang-format on

static_assert(ids_in_order(table<Graph>), "row k is GraphEffect k, and every enumerator has a row");
static_assert(meanings_given(table<Graph>), "every row says what it counts");
static_assert(names_unique(table<Graph>) && unique_labels(table<Graph>, &EffectLabels::report_name),
              "run-file names, columns, sample columns and report names are unique");

// The run file and the parameter vector follow the table (the run file without P0).
constexpr auto arrays = structural_table<table<Graph>>();
constexpr CatalogueView view = arrays.view();

template <class G>
constexpr auto rows = effect_rows(table<G>);

}  // namespace

const CatalogueView& graph_structural_catalogue() { return view; }

template <>
std::span<const EffectRow<Graph>> structural_rows<Graph>() {
    return rows<Graph>;
}

template <>
std::span<const EffectRow<SparseGraph>> structural_rows<SparseGraph>() {
    return rows<SparseGraph>;
}

}  // namespace vexa
