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

void Relay::deliver(uint64_t ticket, const std::function<void()>& tell) {
    if (!threaded) {
        tell();
        return;
    }
    std::unique_lock<std::mutex> held(lock);
    changed.wait(held, [&] { return stopped || (next_ticket == ticket && posted == nullptr); });
    if (stopped) throw ChainsStopped{};
    posted = &tell;
    changed.notify_all();
    changed.wait(held, [&] { return stopped || next_ticket > ticket; });
    if (next_ticket <= ticket) throw ChainsStopped{};
}

namespace {

void stop_with(Relay& relay, std::exception_ptr failure) {
    if (!relay.failure) relay.failure = std::move(failure);
    relay.stopped = true;
    relay.changed.notify_all();
}

// The calling thread's part: runs the events the chains post, in ticket order, and tells the
// observer the steps taken, until every chain thread has ended.
void serve(Relay& relay) {
    double told = -1.0;
    std::unique_lock<std::mutex> held(relay.lock);
    for (;;) {
        relay.changed.wait_for(held, std::chrono::milliseconds(100),
                               [&] { return relay.posted != nullptr || relay.running == 0; });
        if (relay.posted != nullptr) {
            const std::function<void()>* tell = relay.posted;
            held.unlock();
            std::exception_ptr failure;
            try {
                (*tell)();
            } catch (...) {
                failure = std::current_exception();
            }
            held.lock();
            relay.posted = nullptr;
            ++relay.next_ticket;
            if (failure) stop_with(relay, failure);
            relay.changed.notify_all();
        }
        const double done = static_cast<double>(relay.steps_done.load());
        if (relay.observer != nullptr && done != told) {
            told = done;
            held.unlock();
            relay.observer->tell(StepsDone{relay.stage, relay.base_done + done, relay.total});
            held.lock();
        }
        if (relay.running == 0 && relay.posted == nullptr) return;
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
    relay.running = threads;
    std::vector<std::thread> pool;
    pool.reserve(static_cast<size_t>(threads));
    for (int32_t t = 0; t < threads; ++t) {
        pool.emplace_back([&relay, &round, t, threads, chains, rounds] {
            try {
                for (int32_t j = 0; j < rounds && !relay.stopped; ++j)
                    for (int32_t k = t; k < chains && !relay.stopped; k += threads) round(k, j);
            } catch (const ChainsStopped&) {
            } catch (...) {
                const std::lock_guard<std::mutex> held(relay.lock);
                stop_with(relay, std::current_exception());
            }
            const std::lock_guard<std::mutex> held(relay.lock);
            --relay.running;
            relay.changed.notify_all();
        });
    }
    serve(relay);
    for (std::thread& thread : pool) thread.join();
    if (relay.failure) std::rethrow_exception(relay.failure);
}

}  // namespace vexa
