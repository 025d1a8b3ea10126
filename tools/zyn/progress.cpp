#include "progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

#include "output/out.h"

namespace zyn::tool {
namespace {

constexpr std::chrono::milliseconds untilFirst{300}, untilNext{100};

unsigned terminalColumns() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// Three digits or so, with the prefix of a thousand, a million, ...
std::string scaled(double number, const std::string& unit) {
    constexpr const char* prefixes[] = {"", "k", "M", "G", "T"};
    std::size_t i = 0;
    for (; number >= 1000 && i + 1 < std::size(prefixes); ++i) number /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, i > 0 && number < 10 ? "%.1f %s" : "%.0f %s", number, prefixes[i]);
    return text + unit;
}

std::string duration(double seconds) {
    char text[32];
    const auto whole = static_cast<unsigned long>(std::llround(seconds));
    if (whole < 60) std::snprintf(text, sizeof text, "%lu s", whole);
    else if (whole < 3600) std::snprintf(text, sizeof text, "%lu:%02lu min", whole / 60, whole % 60);
    else std::snprintf(text, sizeof text, "%lu:%02lu h", whole / 3600, whole / 60 % 60);
    return text;
}

} // namespace

Progress::Progress(std::string what, uint64_t all, std::string ofWhat)
    : title(std::move(what)), unit(std::move(ofWhat)), total(all),
      wanted(isatty(STDERR_FILENO) && !isatty(STDOUT_FILENO)) {}

void Progress::show(uint64_t done) {
    if (!wanted) return;
    const auto now = Clock::now();
    if (now - start < untilFirst || (visible && now - shownAt < untilNext)) return;
    shownAt = now;
    const double seconds = std::chrono::duration<double>(now - start).count();
    const double rate = static_cast<double>(done) / seconds;
    std::string right = "  " + scaled(rate, unit) + "/s";
    std::string line = title + "  ";
    if (total > 0) {
        const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
        right = std::to_string(static_cast<unsigned>(100 * part)) + " %" + right;
        if (done > 0) right += "  " + duration(std::max(0.0, static_cast<double>(total) / rate - seconds)) + " left";
        const std::size_t columns = terminalColumns(), others = line.size() + right.size() + 5;
        const std::size_t width = std::min<std::size_t>(columns > others ? columns - others : 0, 40);
        const auto full = static_cast<std::size_t>(part * static_cast<double>(width));
        if (width >= 5) line += "[" + std::string(full, '=') + std::string(width - full, ' ') + "]  ";
    } else {
        right = scaled(static_cast<double>(done), unit) + right;
    }
    line += right;
    visible = true;
    writeAll(STDERR_FILENO, "\r\033[K" + line.substr(0, terminalColumns() - 1));
}

void Progress::clear() {
    if (visible) writeAll(STDERR_FILENO, "\r\033[K");
    visible = false;
}

} // namespace zyn::tool
