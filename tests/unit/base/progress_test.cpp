// Progress bars: their line, and how they keep out of the text's way.
#include "base/progress.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vexa {
namespace {

TEST(Progress, BarLinesShowTheShareAndTheTimeLeft) {
    EXPECT_EQ(bar_line("sampling", 0.45, 80.0, 10), "sampling [####......]  45%  1m20s left");
    EXPECT_EQ(bar_line("burn-in", 0.0, -1.0, 4), "burn-in [....]   0%");
    EXPECT_EQ(bar_line("x", 1.5, 0.2, 4), "x [####] 100%  1s left");  // clamped; time rounded up
    EXPECT_EQ(bar_line("x", 0.999, 7265.0, 4), "x [###.]  99%  2h01m left");
    EXPECT_EQ(bar_line("x", NAN, 3.0, 2), "x [..]   0%  3s left");
}

TEST(Progress, TextEndsAShownBarOnlyOnItsOwnTerminalAndBarsNeedATerminal) {
    // Temporary files, not memory streams: the suite also runs on Windows.
    FILE* terminal_stream = std::tmpfile();
    FILE* text_stream = std::tmpfile();
    ASSERT_TRUE(terminal_stream != nullptr && text_stream != nullptr);
    BarTerminal terminal{terminal_stream, true, false, true};
    const Progress progress = console_progress(text_stream, &terminal);
    progress.say("%d\t", 1000);  // the bar is erased, and the line stays open
    EXPECT_FALSE(terminal.shown);
    EXPECT_TRUE(terminal.line_open);
    progress.say("\n");
    EXPECT_FALSE(terminal.line_open);
    terminal.shown = true;
    terminal.text_on_terminal = false;  // text elsewhere: the bar may stay
    progress.say("x\n");
    EXPECT_TRUE(terminal.shown);
    auto contents = [](FILE* f) {
        std::fflush(f);
        std::rewind(f);
        std::string out;
        for (int c = std::fgetc(f); c != EOF; c = std::fgetc(f))
            out.push_back(static_cast<char>(c));
        std::fclose(f);
        return out;
    };
    EXPECT_EQ(contents(terminal_stream), "\r\033[K");
    EXPECT_EQ(contents(text_stream), "1000\t\nx\n");  // the text is the text, only

    // Without a terminal no bar is drawn, however long the work.
    const BarTerminal none = bar_terminal_for(stdout);
    EXPECT_EQ(none.out, isatty(STDERR_FILENO) == 1 ? stderr : nullptr);
    BarTerminal absent;
    ProgressBar bar(console_progress(stdout, &absent), "work", 10.0);
    bar.update(5.0);
    EXPECT_EQ(bar.done(), 5.0);
    EXPECT_FALSE(absent.shown);
}

}  // namespace
}  // namespace vexa
