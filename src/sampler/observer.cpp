#include "sampler/observer.h"

#include <memory>
#include <utility>

namespace vexa {

namespace {

using Parts = std::shared_ptr<const std::vector<Observer>>;

// A callback that calls the member `member` of every part that has it; none when no part has.
template <class Event>
std::function<void(const Event&)> each(const Parts& parts,
                                       std::function<void(const Event&)> Observer::*member) {
    bool any = false;
    for (const Observer& part : *parts) any = any || static_cast<bool>(part.*member);
    if (!any) return {};
    return [parts, member](const Event& e) {
        for (const Observer& part : *parts) {
            if (part.*member) (part.*member)(e);
        }
    };
}

}  // namespace

Observer observe_all(std::vector<Observer> parts) {
    const auto shared = std::make_shared<const std::vector<Observer>>(std::move(parts));
    Observer o;
    o.stage_started = each(shared, &Observer::stage_started);
    o.steps_done = each(shared, &Observer::steps_done);
    o.sample_drawn = each(shared, &Observer::sample_drawn);
    o.sampling_ended = each(shared, &Observer::sampling_ended);
    o.run_started = each(shared, &Observer::run_started);
    o.run_ended = each(shared, &Observer::run_ended);
    o.check_ended = each(shared, &Observer::check_ended);
    return o;
}

}  // namespace vexa
