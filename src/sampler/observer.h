#pragma once
// What a task tells whoever watches it while it runs: a stage started, so many steps done, a
// sample drawn, an estimation run started or ended. A task computes and returns a record of
// its results; these events are how a console prints its lines, a progress bar moves, the
// per-sample files are written as the samples come, and a host (the R package) follows a run.
//
// An Observer is a set of optional callbacks; a task calls each at most a few times per
// thousand steps, never inside a sampler step. Records named here by declaration only belong
// to the layers that compute them (estimation/, describe/): a listener that reads one includes
// its header.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

struct DescribeScratch;
struct DigraphScratch;
struct EstimationRun;
struct ConvergenceCheck;
struct Confirmation;

// What a chain is doing.
enum class Stage : int32_t {
    burn_in,         // running toward the model's distribution before anything is read
    phase1,          // an estimation run: the covariance of the statistics at the start
    phase2,          // an estimation run: a sub-phase of parameter updates
    phase3,          // an estimation run: the draws at the estimate
    sampling,        // a simulation or goodness of fit keeping every so many networks
    parameter_sets,  // a goodness of fit over parameter sets: one burn-in per set
    check_burn_in,   // the long-chain check of an estimate: its burn-in
    check,           // the long-chain check: its draws
    reading,         // a large network file: its bytes read (only files that take a while)
    counting,        // the network just read: its nodes whose pair counts are made
};

struct StageStarted {
    Stage stage = Stage::burn_in;
    int32_t subphase = -1;        // phase 2: its sub-phase, from 0
    float gain = 0.0f;            // phase 2: the sub-phase's gain
    int32_t draws = 0;            // phases 1 and 3 and the check: draws to take
    double steps_per_draw = 0.0;  // the same: steps between two draws
    double steps = 0.0;           // steps the stage takes (the check: its burn-in)
};

// Progress within a stage; an estimation run counts its three phases as one stretch of work
// whose planned total shrinks as sub-phases end early.
struct StepsDone {
    Stage stage = Stage::burn_in;
    double done = 0.0;
    double total = 0.0;
};

// The network a sample was read from, whichever store holds it.
using NetworkRef =
    std::variant<const Graph*, const SparseGraph*, const Digraph*, const SparseDigraph*>;
// The scratch whose geodesic pass has just measured that network, when the task measured it.
using MeasuredScratch = std::variant<std::monostate, DescribeScratch*, DigraphScratch*>;

struct SampleDrawn {
    double number = 0.0;  // the proposal it was taken at; a parameter set's number from 1
    std::span<const double> statistics;  // by slot, uncarried ones recounted
    double accepted = 0.0;               // steps accepted since the last sample
    NetworkRef network;
    MeasuredScratch measured;
};

// The samples of a stage are all drawn.
struct SamplingEnded {
    Stage stage = Stage::sampling;
    double samples = 0.0;
    double accepted = 0.0;  // over the stage
    // The network the stage ended at, where one chain's network is it: a simulation's final
    // network, whose statistics are its end statistics (of K chains, that of the chain that drew
    // the last sample). Told by every simulation.
    std::optional<NetworkRef> network;
};

struct RunStarted {
    int32_t run = 0;  // from 1
    int32_t runs = 0;
};

struct RunEnded {
    int32_t run = 0;  // from 1
    const EstimationRun& record;
    const ConvergenceCheck& check;  // its verdict
};

struct CheckEnded {
    const Confirmation& confirmation;
};

struct Observer {
    std::function<void(const StageStarted&)> stage_started;
    std::function<void(const StepsDone&)> steps_done;
    std::function<void(const SampleDrawn&)> sample_drawn;
    std::function<void(const SamplingEnded&)> sampling_ended;
    std::function<void(const RunStarted&)> run_started;
    std::function<void(const RunEnded&)> run_ended;
    std::function<void(const CheckEnded&)> check_ended;

    void tell(const StageStarted& e) const { call(stage_started, e); }
    void tell(const StepsDone& e) const { call(steps_done, e); }
    void tell(const SampleDrawn& e) const { call(sample_drawn, e); }
    void tell(const SamplingEnded& e) const { call(sampling_ended, e); }
    void tell(const RunStarted& e) const { call(run_started, e); }
    void tell(const RunEnded& e) const { call(run_ended, e); }
    void tell(const CheckEnded& e) const { call(check_ended, e); }

private:
    template <class Event>
    static void call(const std::function<void(const Event&)>& f, const Event& e) {
        if (f) f(e);
    }
};

// An observer that tells each of `parts` every event, in order.
Observer observe_all(std::vector<Observer> parts);

// Counts the steps of a stage and tells the observer as they are taken.
struct StepCount {
    const Observer* observer = nullptr;
    Stage stage = Stage::burn_in;
    double total = 0.0;
    double done = 0.0;

    void advance(double steps) { reach(done + steps); }
    void reach(double steps) {
        done = steps;
        if (observer != nullptr) observer->tell(StepsDone{stage, done, total});
    }
};

}  // namespace vexa
