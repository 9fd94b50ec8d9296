#pragma once
// What a run prints while it works: the lines of standard output a person (or a front end that
// reads them) follows, and progress bars on standard error when it is a terminal. Both come
// from the tasks' events; nothing a task computes depends on them.

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "base/progress.h"
#include "model/parameter_labels.h"
#include "network/network_kind.h"
#include "sampler/observer.h"

namespace vexa {

struct Console {
    Progress text;  // the lines, flushed as they are written
    NetworkKind kind = NetworkKind::graph;
    std::vector<ParameterLabel> labels;  // the model's, in summary style
    std::optional<ProgressBar> bar;
    std::string bar_label;

    // The bar for `label`, a new one when the stage of work changed.
    ProgressBar& bar_for(const std::string& label, double total);
};

// An observer that prints what a run says and moves its bars. `console` must outlive it.
Observer console_observer(Console& console);

}  // namespace vexa
