#include "base/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <utility>
#include <vector>

#if defined(__unix__) || defined(__APPLE__)
#include <unistd.h>
#endif

namespace vexa {

namespace {

bool is_terminal(FILE* file) {
#if defined(__unix__) || defined(__APPLE__)
    return file != nullptr && isatty(fileno(file)) == 1;
#else
    (void)file;
    return false;
#endif
}

std::string time_text(double seconds) {
    char text[32];
    const auto whole = static_cast<long long>(std::ceil(seconds));
    if (whole < 60) {
        std::snprintf(text, sizeof text, "%llds", whole);
    } else if (whole < 3600) {
        std::snprintf(text, sizeof text, "%lldm%02llds", whole / 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lldh%02lldm", whole / 3600, whole / 60 % 60);
    }
    return text;
}

}  // namespace

void BarTerminal::erase() {
    if (!shown || out == nullptr) return;
    std::fputs("\r\033[K", out);
    std::fflush(out);
    shown = false;
}

BarTerminal bar_terminal_for(FILE* text) {
    BarTerminal terminal;
    if (is_terminal(stderr)) {
        terminal.out = stderr;
        terminal.text_on_terminal = is_terminal(text);
    }
    return terminal;
}

void Progress::say(const char* format, ...) const {
    if (write == nullptr) return;
    char buffer[512];
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    if (length < 0) return;
    std::vector<char> longer;
    const char* text = buffer;
    if (static_cast<size_t>(length) >= sizeof buffer) {
        longer.resize(static_cast<size_t>(length) + 1);
        va_start(args, format);
        std::vsnprintf(longer.data(), longer.size(), format, args);
        va_end(args);
        text = longer.data();
    }
    // Text on the bar's terminal would land on the bar's line.
    if (bars != nullptr && bars->text_on_terminal) bars->erase();
    write(context, text);
    if (bars != nullptr && length > 0) bars->line_open = text[length - 1] != '\n';
}

Progress console_progress(FILE* out, BarTerminal* bars) {
    Progress progress;
    progress.context = out;
    progress.bars = bars;
    progress.write = [](void* context, const char* text) {
        FILE* file = static_cast<FILE*>(context);
        std::fputs(text, file);
        std::fflush(file);
    };
    return progress;
}

std::string bar_line(const std::string& label, double fraction, double seconds_left, int width) {
    fraction = std::clamp(std::isfinite(fraction) ? fraction : 0.0, 0.0, 1.0);
    const int filled = static_cast<int>(fraction * width);
    std::string line = label + " [";
    line.append(static_cast<size_t>(filled), '#');
    line.append(static_cast<size_t>(width - filled), '.');
    char tail[64];
    std::snprintf(tail, sizeof tail, "] %3d%%", static_cast<int>(fraction * 100.0));
    line += tail;
    if (seconds_left >= 0.0 && std::isfinite(seconds_left))
        line += "  " + time_text(seconds_left) + " left";
    return line;
}

ProgressBar::ProgressBar(const Progress& progress, std::string label, double total)
    : terminal_(progress.bars != nullptr && progress.bars->out != nullptr ? progress.bars
                                                                          : nullptr),
      label_(std::move(label)),
      total_(total),
      start_(Clock::now()),
      last_drawn_(start_) {}

ProgressBar::~ProgressBar() {
    if (terminal_ != nullptr) terminal_->erase();
}

void ProgressBar::update(double done) {
    done_ = done;
    if (terminal_ == nullptr) return;
    if (terminal_->text_on_terminal && terminal_->line_open) return;
    const Clock::time_point now = Clock::now();
    const double running = std::chrono::duration<double>(now - start_).count();
    const double since = std::chrono::duration<double>(now - last_drawn_).count();
    if (running < 0.5 || (drawn_ && since < 0.2)) return;
    drawn_ = true;
    last_drawn_ = now;
    const double fraction = total_ > 0.0 ? done_ / total_ : 0.0;
    const double left = fraction > 0.0 ? running * (1.0 - fraction) / fraction : -1.0;
    std::fprintf(terminal_->out, "\r%s\033[K", bar_line(label_, fraction, left, 30).c_str());
    std::fflush(terminal_->out);
    terminal_->shown = true;
}

}  // namespace vexa
