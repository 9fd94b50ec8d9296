#include "entry/run_file_labels.h"

#include <cctype>

namespace vexa {

namespace {

struct RowLabels {
    const char* setting;  // the setting's name in the reader's messages
    std::vector<std::string> labels;
};

// The first label of each row is the one a template writes; the others are spellings that run
// files in use give the same row.
const std::vector<RowLabels>& rows() {
    static const std::vector<RowLabels> table{
        {"network_name", {"network_name"}},
        {"output_directory", {"output_directory"}},
        {"sampler_variant", {"sampler_variant"}},
        {"task", {"task_and_network_kind", "task_and_kind"}},
        {"node_count", {"node_count", "number_of_nodes"}},
        {"initial_density", {"initial_density"}},
        {"network_file", {"network_file"}},
        {"degree_cap_given", {"degree_cap_given"}},
        {"degree_cap", {"degree_cap", "maximum_degree"}},
        {"structural_section", {"structural_effects", "structural"}},
        {"attribute_block", {"attribute_effects", "attributes"}},
        {"binary_attributes", {"binary_attributes"}},
        {"continuous_attributes", {"continuous_attributes"}},
        {"categorical_attributes", {"categorical_attributes"}},
        {"binary_attribute_file", {"binary_attribute_file"}},
        {"continuous_attribute_file", {"continuous_attribute_file"}},
        {"categorical_attribute_file", {"categorical_attribute_file"}},
        {"covariate_section", {"covariate_effects", "covariates", "dyadic_covariate"}},
        {"covariate_file", {"covariate_file"}},
        {"parameter_sets_file", {"parameter_sets_file"}},
        {"constraint_given", {"constraint_given"}},
        {"constraint_file", {"constraint_file"}},
        {"subphase_count", {"subphase_count", "subphases"}},
        {"start_a_value", {"start_a_value", "gain"}},
        {"multiplication_factor", {"multiplication_factor", "factor"}},
        {"phase3_steps", {"phase3_steps", "phase3"}},
        {"estimation_runs", {"estimation_runs", "runs"}},
        {"gof_after_estimation", {"gof_after_estimation", "gof_after"}},
        {"pajek_output", {"pajek_output", "pajek"}},
        {"degree_distribution_output", {"degree_distribution_output", "degree"}},
        {"geodesic_output", {"geodesic_output", "geodesic", "geodesics_output"}},
        {"cluster_giant_output", {"cluster_giant_output", "cluster", "clustering_giant_output"}},
        {"triangle_distribution_output", {"triangle_distribution_output", "triangle"}},
        {"twopath_distribution_output", {"twopath_distribution_output", "twopath"}},
        {"et0nt_distribution_output", {"et0nt_distribution_output", "et0nt"}},
        {"burn_in", {"burn_in"}},
        {"iterations", {"iterations"}},
        {"sample_count",
         {"sample_count", "samples", "number_of_samples", "number_of_parameter_sets"}},
    };
    return table;
}

std::string folded(const std::string& word) {
    std::string out;
    for (const char c : word) {
        if (c == '_' || c == '-') continue;
        out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

}  // namespace

std::vector<std::string> accepted_labels(const std::string& setting) {
    for (const RowLabels& row : rows()) {
        if (setting == row.setting) return row.labels;
    }
    return {setting};
}

const std::vector<std::string>& fixed_row_labels() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> labels;
        for (const RowLabels& row : rows())
            labels.insert(labels.end(), row.labels.begin(), row.labels.end());
        return labels;
    }();
    return all;
}

bool label_matches(const std::string& label, const std::vector<std::string>& accepted) {
    const std::string word = folded(label);
    for (const std::string& candidate : accepted) {
        if (word == folded(candidate)) return true;
    }
    return false;
}

}  // namespace vexa
