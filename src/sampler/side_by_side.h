#pragma once
// Chains side by side: a task that draws from K chains runs them on up to N threads and gets
// the same results for every N. Each chain owns its store and generator, so the chains share
// nothing while they run; what they hand the task's observer (a sample drawn, steps taken)
// goes through a Relay, which calls the observer one event at a time and the samples in one
// fixed order whatever the threads' timing. A host's observer (an R session) is called only
// on the thread that started the chains; the engine's own (the console, the per-sample files)
// may be called from any chain's thread.
//
// The work is cut in rounds: round j of chain k is its j-th piece (a burn-in, a sample, a
// parameter set's draw). A thread owns the chains k = t, t + N, t + 2N, ... and takes their
// rounds in the order (j, k). A piece that tells the observer leaves its event under its
// ticket j * K + k, and its chain waits, untouched, until the event is told; the thread goes
// on with its other chains meanwhile. Events are told in ticket order as soon as each lower
// one has been: every thread's tickets rise, so the lowest ticket not yet told always
// belongs to a piece that is done or that a thread can still take, and no thread waits for
// one that waits for it.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "sampler/cluster.h"
#include "sampler/observer.h"

namespace vexa {

// How many chains a task draws from, and how many threads run them.
struct ChainPlan {
    int32_t chains = 1;
    int32_t threads = 1;
    bool calling_thread_events = true;  // the observer must be called on the calling thread
    // The processes the chains are spread over, and whether process 0 needs each sample's
    // network (for the files written per sample) from the process that drew it.
    Cluster cluster;
    bool networks_to_root = false;
};

inline ChainPlan chain_plan(int32_t chains, int32_t threads, bool calling_thread_events = true) {
    ChainPlan plan;
    plan.chains = chains;
    plan.threads = threads;
    plan.calling_thread_events = calling_thread_events;
    return plan;
}

// The threads to run `chains` chains on when `asked` (0: the cores available) is given.
int32_t threads_for(int32_t chains, int32_t asked);

// The cores the machine offers this process (at least 1).
int32_t available_cores();

// Where the chains' events meet the observer.
struct Relay {
    const Observer* observer = nullptr;
    Stage stage = Stage::sampling;
    double base_done = 0.0;  // steps of the stage done before the chains started
    double total = 0.0;      // the stage's steps, as its progress counts them
    bool threaded = false;
    bool any_thread = false;  // any thread may tell the events (under the lock)

    std::atomic<uint64_t> steps_done{0};  // by every chain, since they started
    std::mutex lock;
    std::condition_variable changed;  // the chains wait on it for their events to be told
    std::condition_variable caller;   // the calling thread waits on it: a host's event to
                                      // tell, a thread ended, the run stopped
    uint64_t next_ticket = 0;
    // Events left by the chains and not yet told, by ticket, with the chain that waits on each.
    std::map<uint64_t, std::pair<int32_t, std::function<void()>>> pending;
    std::vector<uint8_t> waiting;      // per chain: its event is not told yet
    std::atomic<bool> stopped{false};  // a chain or the observer failed
    int32_t running = 0;               // threads still at work
    std::exception_ptr failure;

    // Counts steps taken by a chain, told to the observer as they come.
    void advance(uint64_t steps);
    // Leaves `tell` as the event of `ticket`, drawn by `chain`; it is told after every lower
    // ticket's, and the chain must not change before (see ready). With one thread it is told
    // at once. Throws (to unwind the chain) when the run has stopped.
    void deliver(int32_t chain, uint64_t ticket, std::function<void()> tell);
    // Waits until `chain`'s event, if any, has been told. Throws when the run has stopped.
    void ready(int32_t chain);
};

// Thrown inside a chain whose run stopped for another chain's failure: unwinds it quietly.
struct ChainsStopped {};

// Runs `rounds` rounds of every chain of the plan: round(k, j) for chain k, round j. With one
// thread they run in the calling thread in the order (j, k); otherwise on plan.threads
// threads, the calling thread telling the observer the steps taken (and, for a host, the
// events) until every chain is done and every event told. A failure in any chain or in the
// observer stops the others and is thrown here.
void run_rounds(const ChainPlan& plan, int32_t rounds, Relay& relay,
                const std::function<void(int32_t chain, int32_t round)>& round);

}  // namespace vexa
