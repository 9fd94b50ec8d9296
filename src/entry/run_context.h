#pragma once
// One run: its settings as the run file gives them, the model, the output file names, and the
// random generator with its seed source. A run context lives on the driver's stack and is
// passed to the task functions; nothing of a run lives anywhere else, so runs can go side by
// side in one process.

#include <cstdint>
#include <cstdio>
#include <string>

#include "base/progress.h"
#include "model/model.h"
#include "numeric/rng.h"

namespace vexa {

struct Embedding;

// Every setting of the run file, with the defaults that apply when a row is optional.
struct RunSettings {
    std::string run_file;  // the path the run was started with, for messages

    // Head, every task.
    std::string network_name;
    std::string output_directory;
    int32_t sampler_variant = 0;  // 1: the edge-preserving step in simulation and goodness of fit
    int32_t task = 0;             // 1 simulation, 2 estimation, 3 goodness of fit, 4 Bayesian
    int32_t network_kind = 0;     // 1 graph, 2 digraph

    int32_t node_count = 0;
    float initial_density = 0.0f;  // task 1
    std::string network_file;      // tasks 2 to 4
    int32_t degree_cap_given = 0;
    int32_t degree_cap = 9999;
    int32_t degree_cap_line = 0;  // where the run file gives the cap, for messages
    int32_t constraint_given = 0;
    std::string constraint_file;
    std::string parameter_sets_file;  // task 4

    // The seven output flags of tasks 1, 3 and 4; each is on when exactly 1.
    int32_t pajek_output = 0;
    int32_t degree_distribution_output = 0;
    int32_t geodesic_output = 0;
    int32_t cluster_giant_output = 0;
    int32_t triangle_distribution_output = 0;
    int32_t twopath_distribution_output = 0;
    int32_t et0nt_distribution_output = 0;

    double burn_in = 0.0;
    double iterations = 0.0;         // tasks 1 and 3
    int32_t sample_count = 0;        // as read: networks to keep (task 4: parameter sets to use)
    double thinning_interval = 0.0;  // tasks 1 and 3: trunc(iterations / sample_count)

    // Estimation, task 2.
    int32_t subphase_count = 5;
    float start_a_value = 0.1f;
    int32_t multiplication_factor = 2;
    int32_t phase3_steps = 500;
    int32_t estimation_runs = 1;
    int32_t gof_after_estimation = 0;
};

// The twenty output names, formed right after the head of the run file, whether or not the
// task writes them: directory, separator, suffix word, '_', network name, extension.
struct OutputNames {
    std::string start_statistics;
    std::string end_statistics;
    std::string parameter;
    std::string sample_statistics;  // a prefix: writers append the sample number and ".txt"
    std::string accept;
    std::string simulation;
    std::string estimation;
    std::string gof;
    std::string sim;  // the SPSS syntax file, ".sps"
    std::string degree_distribution;
    std::string cluster_giant;
    std::string geodesic_distribution;
    std::string geodesic_quartiles;
    std::string pajek;  // ".paj"
    std::string covariance;
    std::string logodds;
    std::string change_statistics;
    std::string triangle_distribution;
    std::string twopath_distribution;
    std::string et0nt_distribution;
    std::string convergence;  // the verdict on each estimation run
};

// '/' on POSIX systems, '\' on Windows: the files land inside the output directory.
#ifdef _WIN32
inline constexpr char path_separator = '\\';
#else
inline constexpr char path_separator = '/';
#endif

// Forms every name from the directory and the network name. An empty directory means the
// working directory.
OutputNames form_output_names(const std::string& directory, const std::string& network_name);

// How a run is started: by the entries, the command line or a test.
struct RunOptions {
    bool fixed_seed = false;  // every seeding of the run derives from `seed` (else from the clock)
    uint32_t seed = 0;
    bool confirm = false;  // after a converged estimation, check the estimate with a long chain
    int32_t sampler_variant = -1;  // when 0 or more, overrides the run file's sampler variant
    // The network store (graphs and digraphs): 0 chosen by the network's size, 1 the dense
    // store, 2 the sparse store.
    int32_t store = 0;
    FILE* console = stdout;              // progress and messages
    const Progress* progress = nullptr;  // what computations say; null: the console
};

struct RunContext {
    RunSettings settings;
    Model model;
    OutputNames names;
    Rng rng;
    SeedSource seeds;
    FILE* console = stdout;  // the run's messages
    BarTerminal bars;        // where progress bars go (standard error when it is a terminal)
    Progress progress;       // what the computations say while they run
    bool confirm = false;    // check a converged estimate with a long chain
    // A host's in-memory network and the results it takes back; null for a run from files.
    Embedding* embedding = nullptr;
    // The network store: StoreChoice (automatic, dense, sparse) as RunOptions::store.
    int32_t store = 0;
};

}  // namespace vexa
