#include "effects/digraph_catalogue.h"

#include <cstddef>

namespace vexa {

namespace {

constexpr std::array<DigraphEffectRow, digraph_effect_count> rows{{
    {"arc", "arc", 0.0f},
    {"reciprocity", "reciprocity", 0.0f},
    {"in2star", "in-2star", 0.0f},
    {"out2star", "out-2star", 0.0f},
    {"in-3-star", "in-3star", 0.0f},
    {"out-3-star", "out-3star", 0.0f},
    {nullptr, "in-4star", 0.0f},
    {nullptr, "out-4star", 0.0f},
    {"path2", "mixed-2-star", 0.0f},
    {"T1", "T1", 0.0f},
    {"T2", "T2", 0.0f},
    {"T3", "T3", 0.0f},
    {"T4", "T4", 0.0f},
    {"T5", "T5", 0.0f},
    {"T6", "T6", 0.0f},
    {"T7", "T7", 0.0f},
    {"T8", "T8", 0.0f},
    {"Transitive-Triad", "T9(030T)", 0.0f},
    {"Cyclic-Triad", "T10(030C)", 0.0f},
    {"Sink", "Sink", 0.0f},
    {"Source", "Source", 0.0f},
    {"isolates", "Isolates", 0.0f},
    {"AinS", "AinS", 2.0f},
    {"AoutS", "AoutS", 2.0f},
    {"AinS2", "AinS", 2.0f},
    {"AoutS2", "AoutS", 2.0f},
    {"Ain1outS", "Ain1out-star", 2.0f},
    {"1inAoutS", "1inAout-star", 2.0f},
    {"AinAoutS", "AinAout-star", 2.0f},
    {"AT-T", "AT-T", 2.0f},
    {"AT-C", "AT-C", 2.0f},
    {"AT-D", "AT-D", 2.0f},
    {"AT-U", "AT-U", 2.0f},
    {"AT-TD", "AT-TD", 2.0f},
    {"AT-TU", "AT-TU", 2.0f},
    {"AT-DU", "AT-DU", 2.0f},
    {"AT-TDU", "AT-TDU", 2.0f},
    {"A2P-T", "A2P-T", 2.0f},
    {"A2P-D", "A2P-D", 2.0f},
    {"A2P-U", "A2P-U", 2.0f},
    {"A2P-TD", "A2P-TD", 2.0f},
    {"A2P-TU", "A2P-TU", 2.0f},
    {"A2P-DU", "A2P-DU", 2.0f},
    {"A2P-TDU", "A2P-TDU", 2.0f},
}};

// The run file lists arc, reciprocity, the 2- and 3-stars, the mixed 2-star, the transitive
// and cyclic triads, T1 to T8, Sink, Source, isolates, then the alternating effects, whose
// star forms come in the order AinS, AoutS, AinS2, AoutS2, AinAoutS, Ain1outS, 1inAoutS.
constexpr std::array<int32_t, digraph_run_file_entries> run_file_rows{
    0, 1, 2, 3, 4, 5, 8, 17, 18, 9, 10, 11, 12, 13, 14, 15, 16, 19, 20, 21,
    22, 23, 24, 25, 28, 26, 27, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43};

constexpr bool run_file_rows_valid() {
    std::array<int, digraph_effect_count> seen{};
    for (const int32_t row : run_file_rows) {
        if (row < 0 || row >= digraph_effect_count || rows[static_cast<std::size_t>(row)].update_name == nullptr) {
            return false;
        }
        if (++seen[static_cast<std::size_t>(row)] > 1) return false;
    }
    return true;
}
static_assert(run_file_rows_valid(), "every digraph run-file entry sets one catalogue row once");

}  // namespace

const std::array<DigraphEffectRow, digraph_effect_count>& digraph_catalogue() { return rows; }
const std::array<int32_t, digraph_run_file_entries>& digraph_run_file_rows() { return run_file_rows; }

}  // namespace vexa
