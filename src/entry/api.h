#pragma once
// Running a task from an in-memory description, for hosts that hold their networks and
// attributes as data (the R package): no run file, no network or attribute file, and the
// results handed back as the records the tasks computed, with the run's events told to the
// host as they happen. No file is written unless the request asks for the reports; then they
// go to the request's output directory (update files too), exactly as a run file's would.

#include <cstdint>
#include <string>
#include <vector>

#include "effects/catalogue.h"
#include "entry/embedding.h"
#include "entry/run_context.h"
#include "model/parameter_labels.h"

namespace vexa {

// One effect of the model. Structural effects are named as in the run file ("edge",
// "2-star", "AS"); an attribute or covariate effect as its attribute's name, '_' and the
// effect's run-file name ("Grade_Same_Category_edge"). A lambda of 0 takes the default; an
// effect without lambda must have 0.
struct EffectChoice {
    std::string name;
    double value = 0.0;
    float lambda = 0.0f;
};

// One attribute: a value per node, 0 where the value is missing. Categories are numbers, one
// per category.
struct AttributeColumn {
    std::string name;
    AttributeKind kind = AttributeKind::binary;
    std::vector<double> values;
    std::vector<uint8_t> missing;  // per node; empty: none missing
};

struct TaskRequest {
    // Head and task rows as a run file gives them: task, network_kind, node_count,
    // initial_density (simulation), network_name, output_directory, sampler and estimation
    // settings, burn_in, iterations and sample_count. run_file names the run in messages.
    RunSettings settings;
    // n x n, row by row: the observed network of an estimation or goodness of fit; the start
    // of a simulation when given (else a random network of the initial density).
    std::vector<double> adjacency;
    // The dyads the samplers may change, n x n row by row (1 allows a dyad, as in a constraint
    // file); empty: every dyad.
    std::vector<double> constraint;
    std::vector<EffectChoice> effects;
    std::vector<AttributeColumn> attributes;
    bool covariate_given = false;
    std::string covariate_name;
    std::vector<double> covariate;  // n x n, row by row
    RunOptions options;             // seed, confirmation, sampler override
    Observer observer;              // the host's listener: a progress bar, an interrupt check
    // A Bayesian goodness of fit: its parameter sets, each in parameter-vector order.
    std::vector<std::vector<double>> parameter_sets;
    bool keep_networks = false;  // keep the sampled networks of a simulation
    bool write_files = false;    // write the reports into settings.output_directory
};

struct TaskResult {
    std::string error;    // the one-line message of a failed run; empty after a complete run
    std::string console;  // what the run said on its console
    std::vector<ParameterLabel> labels;  // summary labels, in parameter-vector order
    // Per effect of the request, in its order: the effect's place in the parameter vector
    // (which follows the run file's order of the effects, not the request's).
    std::vector<int32_t> slots;
    std::vector<std::string> gof_labels;
    std::vector<std::string> sample_columns;
    std::vector<std::string> measure_names;  // of the goodness of fit's descriptive measures
    TaskRecords records;
    // A simulation's sampled networks (n x n, row by row), when the request kept them.
    std::vector<std::vector<uint8_t>> networks;
    // A goodness of fit: the observed network's distributions and each sample's.
    NetworkProfile observed_profile;
    std::vector<NetworkProfile> sample_profiles;
};

// The model a request describes, slots given in the order a run file would give them.
// Throws SettingError naming an unknown, repeated or malformed effect or attribute.
Model request_model(const TaskRequest& request);

// Per effect of the request, its position in the parameter vector of `model` (the
// request's).
std::vector<int32_t> effect_slots(const TaskRequest& request, const Model& model);

// Runs the request. Never throws: a failure leaves its one line in `error`, and the files
// written so far stay.
TaskResult run_request(const TaskRequest& request) noexcept;

// Runs a run file as the library's entry does, but catching the console in `console` and
// failures in `error`. `output_directory` and `network_name` say where its files went.
struct FileRunResult {
    std::string error;
    std::string console;
    std::string output_directory;
    std::string network_name;
    bool not_converged = false;  // an estimation ended without a converged run
};
FileRunResult run_file_request(const std::string& run_file, const RunOptions& options) noexcept;

}  // namespace vexa
