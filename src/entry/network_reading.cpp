#include "entry/network_reading.h"

#include <string>
#include <utility>
#include <vector>

#include "base/text_file.h"

namespace vexa {

NetworkReading::NetworkReading(RunContext& context)
    : context_(context), start_(std::chrono::steady_clock::now()) {
    const std::string& path = context.settings.network_file;
    const double size = file_size(path);
    large_ = size >= large_network_file_bytes;
    if (!large_) return;
    console_.text = console_progress(context.console, &context.bars);
    console_.kind = context.settings.network_kind;
    std::vector<Observer> parts{console_observer(console_)};
    if (context.observer != nullptr) parts.push_back(*context.observer);
    observer_ = observe_all(std::move(parts));
    progress_.bytes = [this](double done, double total) {
        observer_.tell(StepsDone{Stage::reading, done, total});
    };
    progress_.nodes = [this](double done, double total) {
        if (!counting_) {
            counting_ = true;
            observer_.tell(StageStarted{.stage = Stage::counting, .steps = total});
        }
        observer_.tell(StepsDone{Stage::counting, done, total});
    };
    console_.text.say("vexa: reading network file '%s' (%.0f MB)\n", path.c_str(),
                      size / 1048576.0);
    observer_.tell(StageStarted{.stage = Stage::reading, .steps = size});
}

void NetworkReading::done(int64_t ties) {
    if (!large_) return;
    console_.bar.reset();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const bool digraph = context_.settings.network_kind == NetworkKind::digraph;
    console_.text.say("vexa: network file '%s' read: %lld %s in %.1f s\n",
                      context_.settings.network_file.c_str(), static_cast<long long>(ties),
                      digraph ? "arcs" : "edges", seconds);
}

}  // namespace vexa
