#include "sampler/side_by_side.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#if defined(__linux__)
#include <sched.h>
#endif

namespace vexa {

int32_t available_cores() {
#if defined(__linux__)
    // The cores this process may run on, which a container or a batch system may restrict.
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) == 0) return std::max(1, CPU_COUNT(&set));
#endif
    return std::max(1, static_cast<int32_t>(std::thread::hardware_concurrency()));
}

int32_t threads_for(int32_t chains, int32_t asked) {
    const int32_t wanted = asked > 0 ? asked : available_cores();
    return std::max(1, std::min(wanted, chains));
}

void Relay::advance(uint64_t steps) {
    const uint64_t done = steps_done.fetch_add(steps) + steps;
    if (!threaded && observer != nullptr)
        observer->tell(StepsDone{stage, base_done + static_cast<double>(done), total});
}

namespace {

void stop_with(Relay& relay, std::exception_ptr failure) {
    if (!relay.failure) relay.failure = std::move(failure);
    relay.stopped = true;
    relay.changed.notify_all();
    relay.caller.notify_all();
}

// Whether the next event to tell has been left.
bool next_is_pending(const Relay& relay) {
    return !relay.pending.empty() && relay.pending.begin()->first == relay.next_ticket;
}

// Marks the event told, so that its chain may go on.
void told(Relay& relay, int32_t chain) {
    relay.waiting[static_cast<size_t>(chain)] = 0;
    ++relay.next_ticket;
    relay.changed.notify_all();
}

// Tells, in the thread that holds the lock, every event whose turn has come.
void tell_in_turn(Relay& relay) {
    while (next_is_pending(relay)) {
        auto event = relay.pending.extract(relay.pending.begin());
        event.mapped().second();
        told(relay, event.mapped().first);
    }
}

}  // namespace

void Relay::deliver(int32_t chain, uint64_t ticket, std::function<void()> tell) {
    if (!threaded) {
        tell();
        return;
    }
    const std::lock_guard<std::mutex> held(lock);
    if (stopped) throw ChainsStopped{};
    pending.emplace(ticket, std::make_pair(chain, std::move(tell)));
    waiting[static_cast<size_t>(chain)] = 1;
    if (any_thread) {
        tell_in_turn(*this);  // a failure unwinds the chain, which records it
    } else if (next_is_pending(*this)) {
        caller.notify_all();
    }
}

void Relay::ready(int32_t chain) {
    if (!threaded) return;
    std::unique_lock<std::mutex> held(lock);
    changed.wait(held, [&] { return stopped || waiting[static_cast<size_t>(chain)] == 0; });
    if (stopped) throw ChainsStopped{};
}

namespace {

// The calling thread's part: tells a host the events in ticket order, and the observer the
// steps taken, until every chain thread has ended and every event is told.
void serve(Relay& relay) {
    double steps_told = -1.0;
    std::unique_lock<std::mutex> held(relay.lock);
    for (;;) {
        // Once stopped, only the threads' end is awaited.
        relay.caller.wait_for(held, std::chrono::milliseconds(100), [&] {
            return relay.running == 0 ||
                   (!relay.stopped && !relay.any_thread && next_is_pending(relay));
        });
        if (!relay.any_thread && !relay.stopped && next_is_pending(relay)) {
            auto event = relay.pending.extract(relay.pending.begin());
            held.unlock();
            std::exception_ptr failure;
            try {
                event.mapped().second();
            } catch (...) {
                failure = std::current_exception();
            }
            held.lock();
            told(relay, event.mapped().first);
            if (failure) stop_with(relay, failure);
            continue;
        }
        const double done = static_cast<double>(relay.steps_done.load());
        if (relay.observer != nullptr && done != steps_told) {
            steps_told = done;
            // Threads that tell events do so under the lock: keep it, so that the observer
            // hears one event at a time.
            if (!relay.any_thread) held.unlock();
            relay.observer->tell(StepsDone{relay.stage, relay.base_done + done, relay.total});
            if (!relay.any_thread) held.lock();
        }
        if (relay.running == 0 && (relay.stopped || relay.pending.empty())) return;
    }
}

}  // namespace

void run_rounds(const ChainPlan& plan, int32_t rounds, Relay& relay,
                const std::function<void(int32_t chain, int32_t round)>& round) {
    const int32_t chains = plan.chains;
    const int32_t threads = std::max(1, std::min(plan.threads, chains));
    if (threads == 1) {
        relay.threaded = false;
        for (int32_t j = 0; j < rounds; ++j)
            for (int32_t k = 0; k < chains; ++k) round(k, j);
        return;
    }
    relay.threaded = true;
    relay.any_thread = !plan.calling_thread_events;
    relay.waiting.assign(static_cast<size_t>(chains), 0);
    relay.running = threads;
    std::vector<std::thread> pool;
    pool.reserve(static_cast<size_t>(threads));
    for (int32_t t = 0; t < threads; ++t) {
        pool.emplace_back([&relay, &round, t, threads, chains, rounds] {
            try {
                for (int32_t j = 0; j < rounds && !relay.stopped; ++j) {
                    for (int32_t k = t; k < chains && !relay.stopped; k += threads) {
                        relay.ready(k);
                        round(k, j);
                    }
                }
            } catch (const ChainsStopped&) {
            } catch (...) {
                const std::lock_guard<std::mutex> held(relay.lock);
                stop_with(relay, std::current_exception());
            }
            const std::lock_guard<std::mutex> held(relay.lock);
            --relay.running;
            relay.caller.notify_all();
        });
    }
    serve(relay);
    for (std::thread& thread : pool) thread.join();
    if (relay.failure) std::rethrow_exception(relay.failure);
}

}  // namespace vexa
