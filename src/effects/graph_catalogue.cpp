#include "effects/graph_catalogue.h"

#include <cstddef>

#include "effects/graph_effects.h"

namespace vexa {

namespace {

using Row = GraphEffectRow;
using E = GraphEffect;

// Labels differ between files on purpose ("4Cycle" in the statistics report, "cycle4" in the
// run file, "D3" for 3Path in the estimation summary, "triangles" in the goodness-of-fit table);
// each file keeps its own. 2_3star, 1_2triangle and 1_2et weigh their configurations by 1/2,
// so they are printed like weighted statistics, not like counts.
// clang-format off
constexpr std::array<Row, graph_effect_count> rows{{
    // id            update          report          column          summary         simulation      gof             sample          spss            fmt     lambda integral change                 total
    {E::edge,        "edge",         "edge",         "edge",         "edge",         "edge",         "edge",         "edge",         "edge",         "F8.0", 0.0f, true,  change_edge, total_edge},
    {E::star2,       "2-star",       "2-star",       "star2",        "2-star",       "2-star",       "2-star",       "star2",        "star2",        "F8.0", 0.0f, true,  change_star2, total_star2},
    {E::star3,       "3-star",       "3-star",       "star3",        "3-star",       "3-star",       "3-star",       "star3",        "star3",        "F8.0", 0.0f, true,  change_star3, total_star3},
    {E::star4,       "4-star",       "4-star",       "star4",        "4-star",       "4-star",       "4-star",       "star4",        "star4",        "F8.0", 0.0f, true,  change_star4, total_star4},
    {E::star5,       "5-star",       "5-star",       "star5",        "5-star",       "5-star",       "5-star",       "star5",        "star5",        "F8.0", 0.0f, true,  change_star5, total_star5},
    {E::triangle,    "Triangle",     "Triangle",     "tri",          "Triangle",     "Triangle",     "triangles",    "triangle",     "triangle",     "F8.4", 0.0f, true,  change_triangle, total_triangle},
    {E::clique4,     "4-clique",     "4-clique",     "clique4",      "4-clique",     "4-clique",     "4-clique",     "clique4",      "clique4",      "F8.4", 0.0f, true,  change_clique4, total_clique4},
    {E::clique5,     "5-clique",     "5-clique",     "clique5",      "5-clique",     "5-clique",     "5-clique",     "clique5",      "clique5",      "F8.4", 0.0f, true,  change_clique5, total_clique5},
    {E::clique6,     "6-clique",     "6-clique",     "clique6",      "6-clique",     "6-clique",     "6-clique",     "clique6",      "clique6",      "F8.4", 0.0f, true,  change_clique6, total_clique6},
    {E::clique7,     "7-clique",     "7-clique",     "clique7",      "7-clique",     "7-clique",     "7-clique",     "clique7",      "clique7",      "F8.4", 0.0f, true,  change_clique7, total_clique7},
    {E::isolates,    "Isolates",     "Isolates",     "iso",          "Isolates",     "Isolates",     "Isolates",     "iso",          "iso",          "F8.4", 0.0f, true,  change_isolates, total_isolates},
    {E::p0,          nullptr,        "P0",           "p0",           "P0",           "P0",           "P0",           "p0",           "p0",           "F8.0", 0.0f, true,  change_triangle, total_triangle},
    {E::triangle2,   "Triangle2",    "Triangle2",    "triangle2",    "Triangle2",    "triangle2",    "triangle2",    "triangle2",    "triangle2",    "F8.0", 0.0f, true,  change_triangle2, total_triangle2},
    {E::bow_tie,     "Bow_tie",      "Bow_tie",      "bow_tie",      "Bow_tie",      "Bow_tie",      "Bow_tie",      "bow_tie",      "bow_tie",      "F8.0", 0.0f, true,  change_bow_tie, total_bow_tie},
    {E::p3,          "P3",           "P3",           "p3",           "P3",           "P3",           "P3",           "p3",           "p3",           "F8.0", 0.0f, true,  change_p3, total_p3},
    {E::q10,         "Q10",          "Q10",          "q10",          "Q10",          "Q10",          "Q10",          "q10",          "q10",          "F8.0", 0.0f, true,  change_q10, total_q10},
    {E::q20,         "Q20",          "Q20",          "q20",          "Q20",          "Q20",          "Q20",          "q20",          "q20",          "F8.0", 0.0f, true,  change_q20, total_q20},
    {E::q30,         "Q30",          "Q30",          "q30",          "Q30",          "Q30",          "Q30",          "q30",          "q30",          "F8.0", 0.0f, true,  change_q30, total_q30},
    {E::q31,         "Q31",          "Q31",          "q31",          "Q31",          "Q31",          "Q31",          "q31",          "q31",          "F8.0", 0.0f, true,  change_q31, total_q31},
    {E::path3,       "3Path",        "3Path",        "path3",        "D3",           "3Path",        "3Path",        "path3",        "path3",        "F8.0", 0.0f, true,  change_path3, total_path3},
    {E::cycle4,      "cycle4",       "4Cycle",       "cycle4",       "cycle4",       "cycle4",       "cycle4",       "cycle4",       "cycle4",       "F8.0", 0.0f, true,  change_cycle4, total_cycle4},
    {E::et1,         "1ET",          "1ET",          "et1",          "1ET",          "1ET",          "1ET",          "et1",          "et1",          "F8.0", 0.0f, true,  change_et1, total_et1},
    {E::et2,         "2ET",          "2ET",          "et2",          "2ET",          "2ET",          "2ET",          "et2",          "et2",          "F8.0", 0.0f, true,  change_et2, total_et2},
    {E::et0,         "0ET",          "0ET",          "et0",          "0ET",          "0ET",          "0ET",          "et0",          "et0",          "F8.0", 0.0f, true,  change_unweighted, total_et0},
    {E::etnt,        "ETNT",         "ETNT",         "etnt",         "ETNT",         "ETNT",         "ETNT",         "etnt",         "etnt",         "F8.0", 0.0f, true,  change_unweighted, total_etnt},
    {E::two3star,    "two3star",     "2_3star",      "two3star",     "2_3star",      "2_3star",      "2_3star",      "two3star",     "two3star",     "F8.0", 0.0f, false, change_two3star, total_two3star},
    {E::one2triangle,"one2triangle", "1_2triangle",  "one2triangle", "1_2Triangle",  "1_2triangle",  "1_2triangle",  "one2triangle", "one2triangle", "F8.0", 0.0f, false, change_one2triangle, total_one2triangle},
    {E::one2et,      "one2et",       "1_2et",        "one2et",       "1_2ET",        "1_2et",        "1_2et",        "one2et",       "one2et",       "F8.0", 0.0f, false, change_one2et, total_one2et},
    {E::as,          "AS",           "AS",           "as",           "AS",           "AS",           "AS",           "as",           "as",           "F8.4", 2.0f, false, change_as, total_as},
    {E::as2,         "AS2",          "AS2",          "as2",          "AS2",          "AS2",          "AS2",          "as2",          "as2",          "F8.4", 1.0f, false, change_as, total_as},
    {E::at,          "AT",           "AT",           "at",           "AT",           "AT",           "AT",           "at",           "at",           "F8.4", 2.0f, false, change_at, total_at},
    {E::at2,         "AT2",          "AT2",          "at2",          "AT2",          "AT2",          "AT2",          "at2",          "at2",          "F8.4", 1.0f, false, change_at, total_at},
    {E::a2p,         "A2P",          "A2P",          "a2p",          "A2P",          "A2P",          "A2P",          "a2p",          "a2p",          "F8.0", 2.0f, false, change_a2p, total_a2p},
    {E::ac,          "AC",           "AC",           "ac",           "AC",           "AC",           "AC",           "ac",           "ac",           "F8.0", 2.0f, false, change_ac, total_ac},
    {E::aet,         "AET",          "AET",          "aet",          "AET",          "AET",          "AET",          "aet",          "aet",          "F8.0", 2.0f, false, change_aet, total_aet},
}};
// clang-format on

constexpr bool same_text(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) return a == b;
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

constexpr bool ids_dense_and_names_unique() {
    for (size_t k = 0; k < rows.size(); ++k) {
        if (static_cast<size_t>(rows[k].id) != k) return false;
        for (size_t m = k + 1; m < rows.size(); ++m) {
            if (same_text(rows[k].report_name, rows[m].report_name)) return false;
            if (same_text(rows[k].sample_column, rows[m].sample_column)) return false;
            if (rows[k].update_name != nullptr && same_text(rows[k].update_name, rows[m].update_name)) {
                return false;
            }
        }
    }
    return true;
}
static_assert(ids_dense_and_names_unique(), "catalogue ids follow the row order and names are unique");

}  // namespace

const std::array<GraphEffectRow, graph_effect_count>& graph_catalogue() { return rows; }

}  // namespace vexa
