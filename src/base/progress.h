#pragma once
// What a long computation says while it runs: the text a person watches (run headings, the
// sample numbers of a simulation, acceptance counts), and progress bars with the share done
// and the time left. The command line and the library's entries send the text to standard
// output and draw bars on standard error when it is a terminal; an embedding can route the
// text elsewhere or drop it. Bars never touch the text's stream.

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

#include "base/compiler.h"

namespace vexa {

// The terminal that bars are drawn on, and what the text has left on it.
struct BarTerminal {
    FILE* out = nullptr;            // where bars go; none: no bars
    bool text_on_terminal = false;  // the text goes to the same terminal
    bool line_open = false;         // the text's last line has not ended
    bool shown = false;             // a bar is on the screen

    void erase();  // takes a shown bar off the screen
};

// Standard error when it is a terminal (then `text`, when it is a terminal too, is taken to be
// the same one); no bars otherwise.
BarTerminal bar_terminal_for(FILE* text);

// Hears how far a long piece of work has come: `done` of `total`, in units of its own (bytes
// read, nodes counted). An empty one hears nothing.
using WorkDone = std::function<void(double done, double total)>;

// What reading a network file tells as it goes: the bytes read of the file, then, on the sparse
// stores, the nodes whose pair counts are made. Either may be empty.
struct ReadProgress {
    WorkDone bytes;
    WorkDone nodes;
};

struct Progress {
    void* context = nullptr;
    void (*write)(void* context, const char* text) = nullptr;
    BarTerminal* bars = nullptr;  // none: no bars

    // printf-style; nothing happens without a writer. A bar on the screen is erased first.
    void say(const char* format, ...) const VEXA_PRINTF_FORMAT(2, 3);
    bool quiet() const { return write == nullptr; }
};

// Writes to `out` and flushes, so a watcher sees each line as it comes; bars on `bars`.
Progress console_progress(FILE* out, BarTerminal* bars = nullptr);

// "label [#########...........]  45%  1m20s left": a bar of `width` cells; the time left is
// left out while it is not known (below 0).
std::string bar_line(const std::string& label, double fraction, double seconds_left, int width);

// One bar for one long computation: drawn a few times a second once the computation has run
// for half a second, and erased when it ends. It draws nothing without a bar terminal, and
// nothing while the text has a line open on the same terminal (a simulation's sample numbers
// show its progress there). Cheap to call often, but meant for every few thousand steps.
class ProgressBar {
public:
    ProgressBar(const Progress& progress, std::string label, double total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void set_total(double total) { total_ = total; }
    void update(double done);
    void advance(double steps) { update(done_ + steps); }
    double done() const { return done_; }

private:
    using Clock = std::chrono::steady_clock;
    BarTerminal* terminal_;
    std::string label_;
    double total_;
    double done_ = 0.0;
    Clock::time_point start_;
    Clock::time_point last_drawn_;
    bool drawn_ = false;
};

}  // namespace vexa
