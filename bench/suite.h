// What is measured. Every benchmark has a name of the form operation/who/what, by which the table finds its figure.
#pragma once

#include <benchmark/benchmark.h>

#include "bench/message.h"

namespace zyn::bench {

// The messages of a run; they outlive all benchmarks.
struct Traffic {
    std::vector<Message> seven;
    std::vector<Message> forms;   // the seven in each other form
    std::vector<Message> refused; // what is made of the seven to be refused
    std::vector<Message> mixed;
};

// A format or a codec that is measured: add proves that it carries the seven messages' values and registers its
// benchmarks. Those whose packages are missing are not among the suites.
struct Suite {
    const char* who;
    void (*add)(const Traffic&);
};
std::vector<Suite>& suites();

// For one static object in the unit of each suite.
struct Enlist {
    explicit Enlist(Suite suite) { suites().push_back(suite); }
};

inline std::string benchmarkName(const char* operation, const char* who, const std::string& what) {
    return std::string(operation) + "/" + who + "/" + what;
}

template <typename Loop> void add(const char* operation, const char* who, const std::string& what, Loop loop) {
    benchmark::RegisterBenchmark(benchmarkName(operation, who, what).c_str(), loop);
}

// The size in octets of what one iteration makes or reads, for the table.
inline void setOctets(benchmark::State& state, std::size_t octets) {
    state.counters["octets"] = static_cast<double>(octets);
}

} // namespace zyn::bench
