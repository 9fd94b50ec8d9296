#pragma once
// The catalogue of digraph structural effects, in report order, as far as the run file, the
// parameter vector and the update files need it. The statistics themselves come with the
// digraph store.

#include <array>
#include <cstdint>

namespace vexa {

inline constexpr int digraph_effect_count = 44;

struct DigraphEffectRow {
    const char* update_name;   // run-file and update-file name; nullptr: no run-file entry
    const char* report_name;   // statistics report ("T9(030T)", "AT-T")
    float lambda_default;      // 0 for effects without lambda
    bool alternating() const { return lambda_default != 0.0f; }
};

const std::array<DigraphEffectRow, digraph_effect_count>& digraph_catalogue();

// The run file's digraph section: 42 entries, each the catalogue row it sets.
inline constexpr int digraph_run_file_entries = 42;
const std::array<int32_t, digraph_run_file_entries>& digraph_run_file_rows();

}  // namespace vexa
