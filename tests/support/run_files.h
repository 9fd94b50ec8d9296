#pragma once
// Graph run files for end-to-end tests, built from a few settings, and a guard that runs a
// test in its own working directory (update files land there).

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "entry/run_context.h"
#include "network/network_kind.h"

namespace vexa::testing {

// A run file of either network kind (the name keeps the kind it first had).
struct GraphRunFile {
    NetworkKind kind = NetworkKind::graph;
    std::string name = "net";
    std::string directory = "out";
    std::string network_file;  // tasks 2 to 4
    int task = 2;
    int nodes = 16;
    double initial_density = 0.1;  // task 1
    int sampler_variant = 0;
    int degree_cap = -1;  // -1: no cap row (any other value, negative ones too, is written)
    std::string constraint_file;
    std::string parameter_sets_file;  // task 4
    // Included effects by their run-file name: starting value and lambda.
    std::map<std::string, std::pair<double, double>> effects;
    // The attribute and covariate sections as they stand in the file; empty: both flags 0.
    std::string attribute_sections;
    // Estimation.
    int subphases = 5;
    double gain = 0.1;
    int factor = 2;
    int phase3 = 500;
    int runs = 1;
    int gof_after = 0;
    // Simulation and goodness of fit: Pajek, degree, geodesic, cluster, triangle, two-path, et0nt.
    int flags[7] = {0, 0, 0, 0, 0, 0, 0};
    double burn_in = 0;
    double iterations = 0;  // not in task 4
    int samples = 1;        // task 4: the parameter sets to use

    std::string text() const;
    // Writes the run file into dir and returns its path.
    std::string write(const std::string& dir, const std::string& file = "run.txt") const;
};

// A run file on a network of tests/data, copied into `dir`.
GraphRunFile on_network(const std::string& dir, const std::string& network,
                        NetworkKind kind = NetworkKind::graph, int nodes = 16);

// A run file on the school network (faux.mesa.high, 205 nodes) with Grade's same-category
// effect included and no structural effect yet; the network and its attributes are copied into
// `dir`.
GraphRunFile on_school_network(const std::string& dir);

// The maximum likelihood estimates of arc and reciprocity on samplike: with M mutual, A
// asymmetric and N null dyads, log(A / 2N) and log(4MN / A^2).
std::vector<double> samplike_reciprocity_estimates();

// The maximum likelihood estimates of edge and Grade's same-category effect on the school
// network, counted from its files: the log-odds of a tie between grades, and the log odds
// ratio of a tie within a grade.
std::vector<double> school_homophily_estimates();
// The same counted from a matrix and an attribute file's texts, leaving out the dyads not
// observed ("NA" or "."); a node whose grade is "NA" shares it with nobody.
std::vector<double> homophily_estimates(const std::string& matrix_text,
                                        const std::string& attribute_text);

// Runs a run file through the entry with a pinned seed, in `dir` as the working directory
// (creating the run file's output directory); returns what the run printed.
// With `confirm`, a converged estimation is checked with a long chain.
// `status`, when given, receives what the entry returned (0 after a complete run). With
// `automatic`, the run takes the automatic mode.
std::string run_vexa(const std::string& dir, const GraphRunFile& file, uint32_t seed,
                     bool confirm = false, int* status = nullptr, bool automatic = false);

// The same with every option of the run given (its console is the capture's).
std::string run_vexa_with(const std::string& dir, const GraphRunFile& file, RunOptions options,
                          int* status = nullptr);

// The attribute and covariate sections of the school network (faux.mesa.high_attributes.txt:
// Grade, Race and Sex as categories) with only Grade's same-category effect included.
std::string grade_same_category_sections();

// The line (from 1) of the value that follows the first label line `label` of a run file's
// text (0 when there is none).
int value_line(const std::string& text, const std::string& label);

std::vector<std::string> lines_of(const std::string& text);
std::vector<std::string> tab_fields(const std::string& line);

// The rows of a report's tab-separated table under the line `header`: label, then numbers.
std::map<std::string, std::vector<double>> report_table(const std::string& report,
                                                        const std::string& header);

struct SummaryRow {
    std::string label;
    double estimate = 0, se = 0, t = 0;
    bool starred = false;
};
// The rows of the last summary table of an estimation report (empty when there is none).
std::vector<SummaryRow> last_summary(const std::string& report);

struct WorkingDirectory {
    std::filesystem::path saved = std::filesystem::current_path();
    explicit WorkingDirectory(const std::string& dir) { std::filesystem::current_path(dir); }
    ~WorkingDirectory() { std::filesystem::current_path(saved); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
};

}  // namespace vexa::testing
