#include "effects/digraph/digraph_catalogue.h"

#include <array>

#include "effects/digraph/digraph_effects.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

// Labels by file: the run and update files use the run-file names ("in-3-star"), the statistics
// report the summary lines ("T9(030T)"), the estimation summary the triad-class names ("030T")
// where the configuration has one, and the sample columns, SPSS variables, goodness-of-fit rows
// and change-statistics columns the short names ("t9", "mix2star"). The two forms of the
// alternating stars print the same report text on purpose; their short names tell them apart.
// The in- and out-4-stars have no run-file entry.
// clang-format off
#define LABELS(update, report, summary, simulation, shortname, format) \
    {update, report, shortname, summary, simulation, shortname, shortname, shortname, format}
#define FAMILY(name) &change_##name<D>, &total_##name<D>
template <class D>
constexpr std::array<EffectRow<D>, digraph_effect_count> rows{{
    //   update              report           summary          simulation       short        format      lambda integral clique carried variant
    {{LABELS("arc",              "arc",           "arc",           "arc",           "arc",       "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(arc)},
    {{LABELS("reciprocity",      "reciprocity",   "reciprocity",   "reciprocity",   "recip",     "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(reciprocity)},
    {{LABELS("in2star",          "in-2star",      "2-in-star",     "in-2star",      "in2star",   "F8.0"), 0.0f, true,  0, true, 2},  FAMILY(in_star)},
    {{LABELS("out2star",         "out-2star",     "2-out-star",    "out-2star",     "out2star",  "F8.0"), 0.0f, true,  0, true, 2},  FAMILY(out_star)},
    {{LABELS("in-3-star",        "in-3star",      "3-in-star",     "in-3star",      "in3star",   "F8.0"), 0.0f, true,  0, true, 3},  FAMILY(in_star)},
    {{LABELS("out-3-star",       "out-3star",     "3-out-star",    "out-3star",     "out3star",  "F8.0"), 0.0f, true,  0, true, 3},  FAMILY(out_star)},
    {{LABELS(nullptr,            "in-4star",      "4-in-star",     "in-4star",      "in4star",   "F8.0"), 0.0f, true,  0, true, 4},  FAMILY(in_star)},
    {{LABELS(nullptr,            "out-4star",     "4-out-star",    "out-4star",     "out4star",  "F8.0"), 0.0f, true,  0, true, 4},  FAMILY(out_star)},
    {{LABELS("path2",            "mixed-2-star",  "path2",         "mixed-2-star",  "mix2star",  "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(mixed_star)},
    {{LABELS("T1",               "T1",            "300",           "T1",            "t1",        "F8.0"), 0.0f, true,  0, true, 1},  FAMILY(triad)},
    {{LABELS("T2",               "T2",            "210",           "T2",            "t2",        "F8.0"), 0.0f, true,  0, true, 2},  FAMILY(triad)},
    {{LABELS("T3",               "T3",            "120C",          "T3",            "t3",        "F8.0"), 0.0f, true,  0, true, 3},  FAMILY(triad)},
    {{LABELS("T4",               "T4",            "120D",          "T4",            "t4",        "F8.0"), 0.0f, true,  0, true, 4},  FAMILY(triad)},
    {{LABELS("T5",               "T5",            "120U",          "T5",            "t5",        "F8.0"), 0.0f, true,  0, true, 5},  FAMILY(triad)},
    {{LABELS("T6",               "T6",            "201",           "T6",            "t6",        "F8.0"), 0.0f, true,  0, true, 6},  FAMILY(triad)},
    {{LABELS("T7",               "T7",            "T7",            "T7",            "t7",        "F8.0"), 0.0f, true,  0, true, 7},  FAMILY(triad)},
    {{LABELS("T8",               "T8",            "111U",          "T8",            "t8",        "F8.0"), 0.0f, true,  0, true, 8},  FAMILY(triad)},
    {{LABELS("Transitive-Triad", "T9(030T)",      "030T",          "T9(030T)",      "t9",        "F8.0"), 0.0f, true,  0, true, 9},  FAMILY(triad)},
    {{LABELS("Cyclic-Triad",     "T10(030C)",     "030C",          "T10(030C)",     "t10",       "F8.0"), 0.0f, true,  0, true, 10}, FAMILY(triad)},
    {{LABELS("Sink",             "Sink",          "sink",          "Sink",          "sink",      "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(sink)},
    {{LABELS("Source",           "Source",        "source",        "Source",        "source",    "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(source)},
    {{LABELS("isolates",         "Isolates",      "isolates",      "Isolates",      "iso",       "F8.0"), 0.0f, true,  0, true, 0},  FAMILY(isolates)},
    {{LABELS("AinS",             "AinS",          "AinS",          "AinS",          "kinstar",   "F8.4"), 2.0f, false, 0, true, 0},  FAMILY(alternating_star)},
    {{LABELS("AoutS",            "AoutS",         "AoutS",         "AoutS",         "koutstar",  "F8.4"), 2.0f, false, 0, true, 1},  FAMILY(alternating_star)},
    {{LABELS("AinS2",            "AinS",          "AinS",          "AinS",          "kinstar2",  "F8.4"), 2.0f, false, 0, true, 0},  FAMILY(alternating_star)},
    {{LABELS("AoutS2",           "AoutS",         "AoutS",         "AoutS",         "koutstar2", "F8.4"), 2.0f, false, 0, true, 1},  FAMILY(alternating_star)},
    {{LABELS("Ain1outS",         "Ain1out-star",  "Ain1out-star",  "Ain1out-star",  "konestar",  "F8.4"), 2.0f, false, 0, true, 0},  FAMILY(mixed_alternating_star)},
    {{LABELS("1inAoutS",         "1inAout-star",  "1inAout-star",  "1inAout-star",  "onelstar",  "F8.4"), 2.0f, false, 0, true, 1},  FAMILY(mixed_alternating_star)},
    {{LABELS("AinAoutS",         "AinAout-star",  "AinAout-star",  "AinAout-star",  "klstar",    "F8.4"), 2.0f, false, 0, true, 2},  FAMILY(mixed_alternating_star)},
    {{LABELS("AT-T",             "AT-T",          "AT-T",          "AT-T",          "tktri",     "F8.4"), 2.0f, false, 0, true, two_path_t}, FAMILY(alternating_triangle)},
    {{LABELS("AT-C",             "AT-C",          "AT-C",          "AT-C",          "cktri",     "F8.4"), 2.0f, false, 0, true, two_path_c}, FAMILY(alternating_triangle)},
    {{LABELS("AT-D",             "AT-D",          "AT-D",          "AT-D",          "dktri",     "F8.4"), 2.0f, false, 0, true, two_path_d}, FAMILY(alternating_triangle)},
    {{LABELS("AT-U",             "AT-U",          "AT-U",          "AT-U",          "uktri",     "F8.4"), 2.0f, false, 0, true, two_path_u}, FAMILY(alternating_triangle)},
    {{LABELS("AT-TD",            "AT-TD",         "AT-TD",         "AT-TD",         "attd",      "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_d}, FAMILY(alternating_triangle)},
    {{LABELS("AT-TU",            "AT-TU",         "AT-TU",         "AT-TU",         "attu",      "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_u}, FAMILY(alternating_triangle)},
    {{LABELS("AT-DU",            "AT-DU",         "AT-DU",         "AT-DU",         "atdu",      "F8.4"), 2.0f, false, 0, true, two_path_d | two_path_u}, FAMILY(alternating_triangle)},
    {{LABELS("AT-TDU",           "AT-TDU",        "AT-TDU",        "AT-TDU",        "attdu",     "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_d | two_path_u}, FAMILY(alternating_triangle)},
    {{LABELS("A2P-T",            "A2P-T",         "A2P-T",         "A2P-T",         "talt2p",    "F8.4"), 2.0f, false, 0, true, two_path_t}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-D",            "A2P-D",         "A2P-D",         "A2P-D",         "dalt2p",    "F8.4"), 2.0f, false, 0, true, two_path_d}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-U",            "A2P-U",         "A2P-U",         "A2P-U",         "ualt2p",    "F8.4"), 2.0f, false, 0, true, two_path_u}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-TD",           "A2P-TD",        "A2P-TD",        "A2P-TD",        "a2ptd",     "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_d}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-TU",           "A2P-TU",        "A2P-TU",        "A2P-TU",        "a2ptu",     "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_u}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-DU",           "A2P-DU",        "A2P-DU",        "A2P-DU",        "a2pdu",     "F8.4"), 2.0f, false, 0, true, two_path_d | two_path_u}, FAMILY(alternating_two_path)},
    {{LABELS("A2P-TDU",          "A2P-TDU",       "A2P-TDU",       "A2P-TDU",       "a2ptdu",    "F8.4"), 2.0f, false, 0, true, two_path_t | two_path_d | two_path_u}, FAMILY(alternating_two_path)},
}};
#undef LABELS
#undef FAMILY
// clang-format on

// The run file lists arc, reciprocity, the 2- and 3-stars, the mixed 2-star, the transitive
// and cyclic triads, T1 to T8, Sink, Source, isolates, then the alternating effects, whose
// star forms come in the order AinS, AoutS, AinS2, AoutS2, AinAoutS, Ain1outS, 1inAoutS.
constexpr std::array<int32_t, 42> run_file_order{
    0,  1,  2,  3,  4,  5,  8,  17, 18, 9,  10, 11, 12, 13, 14, 15, 16, 19, 20, 21, 22,
    23, 24, 25, 28, 26, 27, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43};
constexpr std::array<int32_t, digraph_effect_count> catalogue_order = [] {
    std::array<int32_t, digraph_effect_count> order{};
    for (int32_t k = 0; k < digraph_effect_count; ++k) order[static_cast<size_t>(k)] = k;
    return order;
}();

constexpr bool names_unique() {
    const auto& all = rows<Digraph>;
    for (size_t k = 0; k < all.size(); ++k) {
        for (size_t m = k + 1; m < all.size(); ++m) {
            if (same_text(all[k].about.labels.sample_column, all[m].about.labels.sample_column))
                return false;
            if (all[k].about.labels.update_name != nullptr &&
                same_text(all[k].about.labels.update_name, all[m].about.labels.update_name)) {
                return false;
            }
        }
    }
    return true;
}
static_assert(names_unique(), "short names and run-file names are unique");
static_assert(valid_order<digraph_effect_count>(run_file_order),
              "every run-file entry sets one row once");

constexpr auto descriptions = descriptions_of(rows<Digraph>);
const CatalogueView view{descriptions, run_file_order, catalogue_order};

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
