#pragma once
// What a run says while it reads a large network file: a line when it starts, a progress bar
// (the bytes read, then the nodes whose pair counts are made), and a line when it is done,
// told to the console and to a host's listener as the task's events are. A file small enough
// to read in a blink says nothing.

#include <chrono>
#include <cstdint>

#include "base/progress.h"
#include "entry/console.h"
#include "entry/run_context.h"

namespace vexa {

// Files from this size on are large enough to take a noticeable time.
inline constexpr double large_network_file_bytes = 8.0 * 1048576.0;

class NetworkReading {
public:
    // For the context's network file, which is about to be read.
    explicit NetworkReading(RunContext& context);
    NetworkReading(const NetworkReading&) = delete;
    NetworkReading& operator=(const NetworkReading&) = delete;

    // What the reader tells as it goes; null for a small file.
    const ReadProgress* progress() const { return large_ ? &progress_ : nullptr; }
    // The file is read: `ties` edges or arcs.
    void done(int64_t ties);

private:
    const RunContext& context_;
    bool large_ = false;
    Console console_;
    Observer observer_;
    ReadProgress progress_;
    bool counting_ = false;  // the counting stage was announced
    std::chrono::steady_clock::time_point start_;
};

}  // namespace vexa
