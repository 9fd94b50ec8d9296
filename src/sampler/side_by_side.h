#pragma once
// Chains side by side: a task that draws from K chains runs them on up to N threads and gets
// the same results for every N. Each chain owns its store and generator, so the chains share
// nothing while they run; what they hand the task's observer (a sample drawn, steps taken)
// goes through a Relay to the thread that started them, the only one that ever calls the
// observer: a host's callbacks (an R session, a console) need not be thread-safe, and the
// samples reach it in one fixed order whatever the threads' timing.
//
// The work is cut in rounds: round j of chain k is its j-th piece (a burn-in, a sample, a
// parameter set's draw). A thread owns the chains k = t, t + N, t + 2N, ... and takes their
// rounds in the order (j, k); a piece that tells the observer does so under its ticket
// j * K + k, and tickets are served in increasing order. Every thread's tickets rise, so the
// lowest ticket not yet served always belongs to a thread that is at it or before it: no
// thread waits for one that waits for it.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>

#include "sampler/observer.h"

namespace vexa {

// How many chains a task draws from, and how many threads run them.
struct ChainPlan {
    int32_t chains = 1;
    int32_t threads = 1;
};

// The threads to run `chains` chains on when `asked` (0: the cores available) is given.
int32_t threads_for(int32_t chains, int32_t asked);

// The cores the machine offers this process (at least 1).
int32_t available_cores();

// Where the chains' events meet the calling thread.
struct Relay {
    const Observer* observer = nullptr;
    Stage stage = Stage::sampling;
    double base_done = 0.0;  // steps of the stage done before the chains started
    double total = 0.0;      // the stage's steps, as its progress counts them
    bool threaded = false;

    std::atomic<uint64_t> steps_done{0};  // by every chain, since they started
    std::mutex lock;
    std::condition_variable changed;
    uint64_t next_ticket = 0;
    const std::function<void()>* posted = nullptr;  // the event waiting for the caller
    std::atomic<bool> stopped{false};               // a chain or the caller failed
    int32_t running = 0;                            // threads still at work
    std::exception_ptr failure;

    // Counts steps taken by a chain; told to the observer by the calling thread.
    void advance(uint64_t steps);
    // Runs `tell` on the calling thread as the event of `ticket`, after every lower ticket's;
    // returns once it ran. Throws (to unwind the chain) when the run has stopped.
    void deliver(uint64_t ticket, const std::function<void()>& tell);
};

// Thrown inside a chain whose run stopped for another chain's failure: unwinds it quietly.
struct ChainsStopped {};

// Runs `rounds` rounds of every chain of the plan: round(k, j) for chain k, round j. With one
// thread they run in the calling thread in the order (j, k); otherwise on plan.threads
// threads, the calling thread relaying their events to the relay's observer until every
// chain is done. A failure in any chain stops the others and is thrown here.
void run_rounds(const ChainPlan& plan, int32_t rounds, Relay& relay,
                const std::function<void(int32_t chain, int32_t round)>& round);

}  // namespace vexa
