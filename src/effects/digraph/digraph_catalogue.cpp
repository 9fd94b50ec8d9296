#include "effects/digraph/digraph_catalogue.h"

#include <array>

#include "effects/catalogue_table.h"
#include "effects/digraph/digraph_effects.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

using enum TieReads;  // the tables' reads column
using namespace needs_column;
using D = DigraphEffect;

// Labels by file: the run and update files use the run-file names ("in-3-star"), the statistics
// report the summary lines ("T9(030T)"), the estimation summary the triad-class names ("030T")
// where the configuration has one, and the sample columns, SPSS variables, goodness-of-fit rows
// and change-statistics columns the short names ("t9", "mix2star"). The two forms of the
// alternating stars print the same report text on purpose; their short names tell them apart.
// The in- and out-4-stars have no run-file entry. AT-T needs only the two-paths; where a chain
// keeps the common receivers and senders too, its walks stop early by them (its helps entry,
// the one row that gives one).
// clang-format off
template <class S>
constexpr auto table = std::to_array<CatalogueRow<DigraphEffect, S>>({
    // id               update              report          column       summary         simulation      gof          sample       spss         format   lambda integral clique carried variant                               reads    needs                        change                            total
    {D::arc,           {"arc",              "arc",          "arc",       "arc",          "arc",          "arc",       "arc",       "arc",       "F8.0", "arcs: the density of the network"}, 0.0f,  true,    0,     true,   0,                                    nothing, no_counts,                   change_arc<S>,                    total_arc<S>},
    {D::reciprocity,   {"reciprocity",      "reciprocity",  "recip",     "reciprocity",  "reciprocity",  "recip",     "recip",     "recip",     "F8.0", "mutual dyads: i->j with j->i"}, 0.0f,  true,    0,     true,   0,                                    reverse, no_counts,                   change_reciprocity<S>,            total_reciprocity<S>},
    {D::in_star2,      {"in2star",          "in-2star",     "in2star",   "2-in-star",    "in-2star",     "in2star",   "in2star",   "in2star",   "F8.0", "in-2-stars: pairs of arcs into a node (spread of popularity)"}, 0.0f,  true,    0,     true,   2,                                    network, no_counts,                   change_in_star<S>,                total_in_star<S>},
    {D::out_star2,     {"out2star",         "out-2star",    "out2star",  "2-out-star",   "out-2star",    "out2star",  "out2star",  "out2star",  "F8.0", "out-2-stars: pairs of arcs out of a node (spread of activity)"}, 0.0f,  true,    0,     true,   2,                                    network, no_counts,                   change_out_star<S>,               total_out_star<S>},
    {D::in_star3,      {"in-3-star",        "in-3star",     "in3star",   "3-in-star",    "in-3star",     "in3star",   "in3star",   "in3star",   "F8.0", "in-3-stars: triples of arcs into a node"}, 0.0f,  true,    0,     true,   3,                                    network, no_counts,                   change_in_star<S>,                total_in_star<S>},
    {D::out_star3,     {"out-3-star",       "out-3star",    "out3star",  "3-out-star",   "out-3star",    "out3star",  "out3star",  "out3star",  "F8.0", "out-3-stars: triples of arcs out of a node"}, 0.0f,  true,    0,     true,   3,                                    network, no_counts,                   change_out_star<S>,               total_out_star<S>},
    {D::in_star4,      {nullptr,            "in-4star",     "in4star",   "4-in-star",    "in-4star",     "in4star",   "in4star",   "in4star",   "F8.0", "in-4-stars, counted for the reports only"}, 0.0f,  true,    0,     true,   4,                                    network, no_counts,                   change_in_star<S>,                total_in_star<S>},
    {D::out_star4,     {nullptr,            "out-4star",    "out4star",  "4-out-star",   "out-4star",    "out4star",  "out4star",  "out4star",  "F8.0", "out-4-stars, counted for the reports only"}, 0.0f,  true,    0,     true,   4,                                    network, no_counts,                   change_out_star<S>,               total_out_star<S>},
    {D::mixed_star2,   {"path2",            "mixed-2-star", "mix2star",  "path2",        "mixed-2-star", "mix2star",  "mix2star",  "mix2star",  "F8.0", "mixed 2-stars: two-paths x->v->y with x and y apart"}, 0.0f,  true,    0,     true,   0,                                    network, no_counts,                   change_mixed_star<S>,             total_mixed_star<S>},
    {D::t1,            {"T1",               "T1",           "t1",        "300",          "T1",           "t1",        "t1",        "t1",        "F8.0", "complete triads: three mutual dyads"}, 0.0f,  true,    0,     true,   1,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t2,            {"T2",               "T2",           "t2",        "210",          "T2",           "t2",        "t2",        "t2",        "F8.0", "a<->b, a<->k and b->k"}, 0.0f,  true,    0,     true,   2,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t3,            {"T3",               "T3",           "t3",        "120C",         "T3",           "t3",        "t3",        "t3",        "F8.0", "a<->b, a->k and k->b"}, 0.0f,  true,    0,     true,   3,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t4,            {"T4",               "T4",           "t4",        "120D",         "T4",           "t4",        "t4",        "t4",        "F8.0", "a mutual dyad whose two ends both receive from a third node"}, 0.0f,  true,    0,     true,   4,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t5,            {"T5",               "T5",           "t5",        "120U",         "T5",           "t5",        "t5",        "t5",        "F8.0", "a mutual dyad whose two ends both send to a third node"}, 0.0f,  true,    0,     true,   5,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t6,            {"T6",               "T6",           "t6",        "201",          "T6",           "t6",        "t6",        "t6",        "F8.0", "two mutual dyads at one node"}, 0.0f,  true,    0,     true,   6,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t7,            {"T7",               "T7",           "t7",        "T7",           "T7",           "t7",        "t7",        "t7",        "F8.0", "a mutual dyad whose end receives from a third node"}, 0.0f,  true,    0,     true,   7,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t8,            {"T8",               "T8",           "t8",        "111U",         "T8",           "t8",        "t8",        "t8",        "F8.0", "a mutual dyad whose end sends to a third node"}, 0.0f,  true,    0,     true,   8,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t9,            {"Transitive-Triad", "T9(030T)",     "t9",        "030T",         "T9(030T)",     "t9",        "t9",        "t9",        "F8.0", "transitive triads: a->b, a->k and k->b"}, 0.0f,  true,    0,     true,   9,                                    network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::t10,           {"Cyclic-Triad",     "T10(030C)",    "t10",       "030C",         "T10(030C)",    "t10",       "t10",       "t10",       "F8.0", "cyclic triads: a->b, b->k and k->a"}, 0.0f,  true,    0,     true,   10,                                   network, paths | senders | receivers, change_triad<S>,                  total_triad<S>},
    {D::sink,          {"Sink",             "Sink",         "sink",      "sink",         "Sink",         "sink",      "sink",      "sink",      "F8.0", "nodes that receive arcs but send none"}, 0.0f,  true,    0,     true,   0,                                    network, no_counts,                   change_sink<S>,                   total_sink<S>},
    {D::source,        {"Source",           "Source",       "source",    "source",       "Source",       "source",    "source",    "source",    "F8.0", "nodes that send arcs but receive none"}, 0.0f,  true,    0,     true,   0,                                    network, no_counts,                   change_source<S>,                 total_source<S>},
    {D::isolates,      {"isolates",         "Isolates",     "iso",       "isolates",     "Isolates",     "iso",       "iso",       "iso",       "F8.0", "nodes with no arc in or out"}, 0.0f,  true,    0,     true,   0,                                    network, no_counts,                   change_isolates<S>,               total_isolates<S>},
    {D::ain_s,         {"AinS",             "AinS",         "kinstar",   "AinS",         "AinS",         "kinstar",   "kinstar",   "kinstar",   "F8.4", "alternating in-stars: spread of the in-degrees (lambda)"}, 2.0f,  false,   0,     true,   0,                                    network, no_counts,                   change_alternating_star<S>,       total_alternating_star<S>},
    {D::aout_s,        {"AoutS",            "AoutS",        "koutstar",  "AoutS",        "AoutS",        "koutstar",  "koutstar",  "koutstar",  "F8.4", "alternating out-stars: spread of the out-degrees (lambda)"}, 2.0f,  false,   0,     true,   1,                                    network, no_counts,                   change_alternating_star<S>,       total_alternating_star<S>},
    {D::ain_s2,        {"AinS2",            "AinS",         "kinstar2",  "AinS",         "AinS",         "kinstar2",  "kinstar2",  "kinstar2",  "F8.4", "alternating in-stars, a second form with its own lambda"}, 2.0f,  false,   0,     true,   0,                                    network, no_counts,                   change_alternating_star<S>,       total_alternating_star<S>},
    {D::aout_s2,       {"AoutS2",           "AoutS",        "koutstar2", "AoutS",        "AoutS",        "koutstar2", "koutstar2", "koutstar2", "F8.4", "alternating out-stars, a second form with its own lambda"}, 2.0f,  false,   0,     true,   1,                                    network, no_counts,                   change_alternating_star<S>,       total_alternating_star<S>},
    {D::ain1out_s,     {"Ain1outS",         "Ain1out-star", "konestar",  "Ain1out-star", "Ain1out-star", "konestar",  "konestar",  "konestar",  "F8.4", "alternating in-stars times out-degree: popular nodes that send (lambda)"}, 2.0f,  false,   0,     true,   0,                                    network, no_counts,                   change_mixed_alternating_star<S>, total_mixed_alternating_star<S>},
    {D::one_in_aout_s, {"1inAoutS",         "1inAout-star", "onelstar",  "1inAout-star", "1inAout-star", "onelstar",  "onelstar",  "onelstar",  "F8.4", "alternating out-stars times in-degree: active nodes that receive (lambda)"}, 2.0f,  false,   0,     true,   1,                                    network, no_counts,                   change_mixed_alternating_star<S>, total_mixed_alternating_star<S>},
    {D::ain_aout_s,    {"AinAoutS",         "AinAout-star", "klstar",    "AinAout-star", "AinAout-star", "klstar",    "klstar",    "klstar",    "F8.4", "alternating in-stars times alternating out-stars at each node (lambda)"}, 2.0f,  false,   0,     true,   2,                                    network, no_counts,                   change_mixed_alternating_star<S>, total_mixed_alternating_star<S>},
    {D::at_t,          {"AT-T",             "AT-T",         "tktri",     "AT-T",         "AT-T",         "tktri",     "tktri",     "tktri",     "F8.4", "alternating transitive triangles: arcs i->j closed by two-paths i->x->j (lambda)"}, 2.0f,  false,   0,     true,   two_path_t,                           network, paths,                       change_alternating_triangle<S>,   total_alternating_triangle<S>, senders | receivers},
    {D::at_c,          {"AT-C",             "AT-C",         "cktri",     "AT-C",         "AT-C",         "cktri",     "cktri",     "cktri",     "F8.4", "alternating cyclic triangles: arcs j->i closing two-paths i->x->j (lambda)"}, 2.0f,  false,   0,     true,   two_path_c,                           network, paths,                       change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_d,          {"AT-D",             "AT-D",         "dktri",     "AT-D",         "AT-D",         "dktri",     "dktri",     "dktri",     "F8.4", "alternating triangles of arcs i->j whose ends share senders x->i, x->j (lambda)"}, 2.0f,  false,   0,     true,   two_path_d,                           network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_u,          {"AT-U",             "AT-U",         "uktri",     "AT-U",         "AT-U",         "uktri",     "uktri",     "uktri",     "F8.4", "alternating triangles of arcs i->j whose ends share receivers i->x, j->x (lambda)"}, 2.0f,  false,   0,     true,   two_path_u,                           network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_td,         {"AT-TD",            "AT-TD",        "attd",      "AT-TD",        "AT-TD",        "attd",      "attd",      "attd",      "F8.4", "AT-T and AT-D together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_d,              network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_tu,         {"AT-TU",            "AT-TU",        "attu",      "AT-TU",        "AT-TU",        "attu",      "attu",      "attu",      "F8.4", "AT-T and AT-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_u,              network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_du,         {"AT-DU",            "AT-DU",        "atdu",      "AT-DU",        "AT-DU",        "atdu",      "atdu",      "atdu",      "F8.4", "AT-D and AT-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_d | two_path_u,              network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::at_tdu,        {"AT-TDU",           "AT-TDU",       "attdu",     "AT-TDU",       "AT-TDU",       "attdu",     "attdu",     "attdu",     "F8.4", "AT-T, AT-D and AT-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_d | two_path_u, network, paths | senders | receivers, change_alternating_triangle<S>,   total_alternating_triangle<S>},
    {D::a2p_t,         {"A2P-T",            "A2P-T",        "talt2p",    "A2P-T",        "A2P-T",        "talt2p",    "talt2p",    "talt2p",    "F8.4", "alternating two-paths: pairs by their two-paths i->x->j, tied or not (lambda)"}, 2.0f,  false,   0,     true,   two_path_t,                           network, paths,                       change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_d,         {"A2P-D",            "A2P-D",        "dalt2p",    "A2P-D",        "A2P-D",        "dalt2p",    "dalt2p",    "dalt2p",    "F8.4", "alternating shared senders: pairs by the nodes that send to both (lambda)"}, 2.0f,  false,   0,     true,   two_path_d,                           network, senders,                     change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_u,         {"A2P-U",            "A2P-U",        "ualt2p",    "A2P-U",        "A2P-U",        "ualt2p",    "ualt2p",    "ualt2p",    "F8.4", "alternating shared receivers: pairs by the nodes that receive from both (lambda)"}, 2.0f,  false,   0,     true,   two_path_u,                           network, receivers,                   change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_td,        {"A2P-TD",           "A2P-TD",       "a2ptd",     "A2P-TD",       "A2P-TD",       "a2ptd",     "a2ptd",     "a2ptd",     "F8.4", "A2P-T and A2P-D together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_d,              network, paths | senders,             change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_tu,        {"A2P-TU",           "A2P-TU",       "a2ptu",     "A2P-TU",       "A2P-TU",       "a2ptu",     "a2ptu",     "a2ptu",     "F8.4", "A2P-T and A2P-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_u,              network, paths | receivers,           change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_du,        {"A2P-DU",           "A2P-DU",       "a2pdu",     "A2P-DU",       "A2P-DU",       "a2pdu",     "a2pdu",     "a2pdu",     "F8.4", "A2P-D and A2P-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_d | two_path_u,              network, senders | receivers,         change_alternating_two_path<S>,   total_alternating_two_path<S>},
    {D::a2p_tdu,       {"A2P-TDU",          "A2P-TDU",      "a2ptdu",    "A2P-TDU",      "A2P-TDU",      "a2ptdu",    "a2ptdu",    "a2ptdu",    "F8.4", "A2P-T, A2P-D and A2P-U together, one lambda"}, 2.0f,  false,   0,     true,   two_path_t | two_path_d | two_path_u, network, paths | senders | receivers, change_alternating_two_path<S>,   total_alternating_two_path<S>},
});
// clang-format on

static_assert(ids_in_order(table<Digraph>),
              "row k is DigraphEffect k, and every enumerator has a row");
// Report names may repeat: the two forms of the alternating stars share theirs.
static_assert(meanings_given(table<Digraph>), "every row says what it counts");
static_assert(names_unique(table<Digraph>),
              "run-file names, columns and sample columns are unique");

// The run file lists arc, reciprocity, the 2- and 3-stars, the mixed 2-star, the transitive
// and cyclic triads, T1 to T8, Sink, Source, isolates, then the alternating effects, whose
// star forms come in the order AinS, AoutS, AinS2, AoutS2, AinAoutS, Ain1outS, 1inAoutS.
// clang-format off
constexpr std::array run_file_ids{
    D::arc, D::reciprocity, D::in_star2, D::out_star2, D::in_star3, D::out_star3, D::mixed_star2,
    D::t9, D::t10, D::t1, D::t2, D::t3, D::t4, D::t5, D::t6, D::t7, D::t8,
    D::sink, D::source, D::isolates,
    D::ain_s, D::aout_s, D::ain_s2, D::aout_s2, D::ain_aout_s, D::ain1out_s, D::one_in_aout_s,
    D::at_t, D::at_c, D::at_d, D::at_u, D::at_td, D::at_tu, D::at_du, D::at_tdu,
    D::a2p_t, D::a2p_d, D::a2p_u, D::a2p_td, D::a2p_tu, D::a2p_du, D::a2p_tdu};
// clang-format on

constexpr auto arrays = structural_table(table<Digraph>, run_file_ids);
static_assert(every_entry_once(table<Digraph>, arrays.run_file_order),
              "the run file lists every row with an entry once");
constexpr CatalogueView view = arrays.view();

template <class S>
constexpr auto rows = effect_rows(table<S>);

}  // namespace

const CatalogueView& digraph_structural_catalogue() { return view; }

template <>
std::span<const EffectRow<Digraph>> structural_rows<Digraph>() {
    return rows<Digraph>;
}

template <>
std::span<const EffectRow<SparseDigraph>> structural_rows<SparseDigraph>() {
    return rows<SparseDigraph>;
}

}  // namespace vexa
