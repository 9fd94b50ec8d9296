#pragma once
// One run: its settings as the run file gives them, the model, the output file names, and the
// random generator with its seed source. A run context lives on the driver's stack and is
// passed to the task functions; nothing of a run lives anywhere else, so runs can go side by
// side in one process.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "base/progress.h"
#include "describe/network_profile.h"
#include "estimation/estimate_model.h"
#include "model/model.h"
#include "network/network_kind.h"
#include "numeric/rng.h"
#include "report/output_names.h"
#include "sampler/chain.h"
#include "sampler/observer.h"
#include "sampler/side_by_side.h"
#include "simulation/gof_task.h"
#include "simulation/simulate.h"

namespace vexa {

// What a run does.
enum class Task : int32_t {
    simulation,
    estimation,
    goodness_of_fit,
    bayesian_goodness_of_fit,  // goodness of fit over a file of parameter sets
};

// "simulation", "estimation", "goodness of fit", "Bayesian goodness of fit".
const char* task_name(Task task);

// The task a run file's code selects (1 to 4); false for any other code.
bool task_of(int32_t code, Task& task);
// The network kind a run file's code selects (1 graph, 2 digraph); false for any other code.
bool network_kind_of(int32_t code, NetworkKind& kind);

// Every setting of the run file, with the defaults that apply when a row is optional.
struct RunSettings {
    std::string run_file;  // the path the run was started with, for messages

    // Head, every task.
    std::string network_name;
    std::string output_directory;
    Proposal proposal = Proposal::toggle;
    Task task = Task::simulation;
    NetworkKind network_kind = NetworkKind::graph;

    int32_t node_count = 0;
    float initial_density = 0.0f;  // simulation
    std::string network_file;      // every task but simulation
    bool degree_cap_given = false;
    int32_t degree_cap = 9999;
    int32_t degree_cap_line = 0;  // where the run file gives the cap, for messages
    bool constraint_given = false;
    std::string constraint_file;
    std::string parameter_sets_file;  // Bayesian goodness of fit

    // The per-sample files of simulation and both goodness-of-fit tasks.
    SampleOutputs outputs;

    double burn_in = 0.0;
    double iterations = 0.0;         // simulation and goodness of fit
    int32_t sample_count = 0;        // networks to keep (Bayesian: parameter sets to use)
    double thinning_interval = 0.0;  // simulation and goodness of fit: trunc(iterations / count)

    // Estimation.
    int32_t subphase_count = 5;
    float start_a_value = 0.1f;
    int32_t multiplication_factor = 2;
    int32_t phase3_steps = 500;
    int32_t estimation_runs = 1;
    bool gof_after_estimation = false;
};

// Which store a run takes, for graphs and digraphs alike: the dense one unless its n x n
// arrays would not fit comfortably (above 20,000 nodes, or more than half the machine's
// memory), or as asked.
enum class StoreChoice : int32_t { automatic, dense, sparse };

// How a run is started: by the entries, the command line or a test.
struct RunOptions {
    bool fixed_seed = false;  // every seeding of the run derives from `seed` (else from the clock)
    uint32_t seed = 0;
    bool confirm = false;  // after a converged estimation, check the estimate with a long chain
    // The automatic mode: starting values, proposal, steps between draws and phase-3 length
    // chosen for the network (see estimation/automatic.h).
    bool automatic = false;
    // How an estimation's phase 2 finds the estimate; the run file has no say in it.
    EstimationMethod method = EstimationMethod::stochastic_approximation;
    // A sampler code (as a run file gives it) that overrides the run file's; -1: none.
    int32_t sampler_code = -1;
    StoreChoice store = StoreChoice::automatic;
    // Chains every task draws from (0: one, or automatic_chains in the automatic mode; a fixed
    // number, so that no result depends on the machine), and the threads that run them (0: the
    // cores available). The results depend on the chains, never on the threads.
    int32_t chains = 0;
    int32_t threads = 0;
    // Where a simulation saves its final network as a tie list (the form a network file may
    // take, so that it reads back as the same network); "": nowhere. Other tasks save none.
    std::string save_network;
    // An earlier run's estimation report or update file whose estimates, matched by label, the
    // model's effects take before the task; "": the run file's values.
    std::string start_from;
    // Write the HTML report (report_NAME.html) beside the text ones.
    bool html = false;
    FILE* console = stdout;              // progress and messages
    const Observer* observer = nullptr;  // a host's listener to the task's events, if any
};

// The chains of the automatic mode.
inline constexpr int32_t automatic_chains = 8;
// More chains than this are refused: each holds a copy of the network.
inline constexpr int32_t max_chains = 1024;

// What a task computed, for a host that takes its results in memory.
struct TaskRecords {
    std::optional<SimulationRecord> simulation;
    std::optional<EstimationRecord> estimation;
    std::optional<GofRecord> gof;  // a goodness of fit, alone or after an estimation
};

// How a run that ran to its end came out: an estimation may end without a converged run.
enum class RunOutcome : int32_t { complete, not_converged };

struct RunContext {
    RunSettings settings;
    Model model;
    OutputNames names;
    Rng rng;
    SeedSource seeds;
    FILE* console = stdout;  // the run's messages
    BarTerminal bars;        // where progress bars go (standard error when it is a terminal)
    bool confirm = false;    // check a converged estimate with a long chain
    bool automatic = false;  // the automatic mode
    EstimationMethod method = EstimationMethod::stochastic_approximation;
    bool sampler_named = false;  // the options named the proposal: the automatic mode keeps it
    StoreChoice store = StoreChoice::automatic;
    ChainPlan chains;          // the chains every task draws from, and their threads
    std::string save_network;  // where a simulation saves its final network; "": nowhere
    std::string start_from;    // the file the model's values came from; "": the run file
    // A host's in-memory network, n x n row by row, in place of the network file (a
    // simulation starts from it in place of a random network); null: the file.
    const std::vector<double>* adjacency = nullptr;
    // A host's constraint, n x n row by row as the constraint file would hold it; null: the
    // run file's, if any.
    const std::vector<double>* constraint = nullptr;
    // A host's parameter sets for a Bayesian goodness of fit, each in parameter-vector order,
    // in place of the sets file; null: the file.
    const std::vector<std::vector<double>>* parameter_sets = nullptr;
    const Observer* observer = nullptr;  // a host's listener, beside the console
    TaskRecords* records = nullptr;      // where a host takes the records; null: nowhere
    // Where a task leaves the profile of the network it starts from, the observed one but in a
    // simulation (for the HTML report); null: nowhere.
    NetworkProfile* observed_profile = nullptr;
    bool write_files = true;  // write the reports (a host may not want them)
    // Where the update files go: "" the working directory, as a front end expects.
    std::string update_directory;
    RunOutcome outcome = RunOutcome::complete;  // set by the task
};

// Takes the options that shape a run (seed, confirmation, automatic mode, proposal, store) into
// a context whose settings the run file or request already gave.
void take_options(RunContext& context, const RunOptions& options);

}  // namespace vexa
