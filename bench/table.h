// Medians of repeated runs, and what is read out of them.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zyn::bench {

// One benchmark's figure.
struct Figure {
    double median; // nanoseconds of processor time
    double spread; // distance of the quartiles in parts of the median
    double octets; // that one iteration makes or reads; 0 where that says nothing
    double best;   // nanoseconds of the best repetition
};

// Collects all repetitions; a benchmark is found by the parts of its name.
class Figures : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    std::optional<Figure> find(const std::string& operation, const std::string& who, const std::string& what) const;
    std::optional<double> ns(const std::string& operation, const std::string& who, const std::string& what) const;

    // The geometric mean over several benchmarks; nothing if one is missing.
    std::optional<double> mean(const std::string& operation, const std::string& who,
                               const std::vector<std::string>& what) const;

    // The whats of an operation, in order of name.
    std::vector<std::string> whats(const std::string& operation, const std::string& who) const;

    // The middle one of all spreads.
    double noise() const;

    // One line for each benchmark: name, median, spread, octets.
    void writeCsv(std::FILE* file) const;

private:
    std::map<std::string, Figure> figures;
};

double geometricMean(const std::vector<double>& values);

// The seven, in the order of the table.
inline const std::vector<std::string> sevenNames = {"logon", "order", "amendment", "reply", "board", "book", "trade"};

// All figures with ratios, and then which goals they reach.
void printTable(const Figures& figures);
void printVerdicts(const Figures& figures);

} // namespace zyn::bench
