// A bar for a person at a terminal, while long work goes on: how much is done, at what rate, and how long it will take.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zyn::tool {

class Progress {
public:
    // Shows nothing unless the standard error stream is a terminal and the standard output is none. total 0: unknown.
    Progress(std::string title, uint64_t total, std::string unit);
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;

    // Shows the bar again, if some time has gone by.
    void show(uint64_t done);
    // Takes the bar away, so that other text can be written; show brings it back.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    std::string title, unit;
    uint64_t total;
    Clock::time_point start = Clock::now(), shownAt = start;
    bool wanted, visible = false;
};

} // namespace zyn::tool
