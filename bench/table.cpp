#include "bench/table.h"

#include <algorithm>
#include <cmath>

namespace zyn::bench {
namespace {

double quantile(const std::vector<double>& sorted, double part) {
    const double place = part * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

const std::vector<std::string> peers = {"floor", "protobuf", "flatbuffers", "asn1c"};

// A time, and how many times ours it is.
void printPeer(std::optional<double> peer, std::optional<double> ours) {
    if (peer && ours) std::printf("%10.1f %5.2f", *peer, *peer / *ours);
    else std::printf("%10s %5s", "-", "");
}

void printOperation(const Figures& figures, const std::string& operation) {
    std::printf("\n%-14s %7s %9s", operation.c_str(), "octets", "zyn, ns");
    for (const std::string& peer : peers) std::printf("%16s", (peer + ", x").c_str());
    std::printf("\n");
    for (const std::string& message : sevenNames) {
        const auto ours = figures.find(operation, "zyn", message);
        if (!ours) continue;
        std::printf("  %-12s %7.0f %9.1f", message.c_str(), ours->octets, ours->median);
        for (const std::string& peer : peers) printPeer(figures.ns(operation, peer, message), ours->median);
        std::printf("\n");
    }
    const auto ours = figures.mean(operation, "zyn", sevenNames);
    if (!ours) return;
    std::printf("  %-12s %7s %9.1f", "geom. mean", "", *ours);
    for (const std::string& peer : peers) printPeer(figures.mean(operation, peer, sevenNames), ours);
    std::printf("\n");
}

void printTurnAndPrint(const Figures& figures) {
    std::printf("\n%-14s %9s %12s %12s %9s\n", "", "turn, ns", "print, ns", "text octets", "MB/s");
    for (const std::string& message : sevenNames) {
        const auto turn = figures.ns("turn", "zyn", message);
        const auto print = figures.find("print", "zyn", message);
        if (!turn || !print) continue;
        std::printf("  %-12s %9.1f %12.1f %12.0f %9.0f\n", message.c_str(), *turn, print->median, print->octets,
                    print->octets / print->median * 1000);
    }
}

void printValues(const Figures& figures) {
    std::printf("\n%-14s %10s %10s\n", "one value", "decode, ns", "encode, ns");
    for (const std::string& what : figures.whats("decode-value", "zyn")) {
        std::printf("  %-12s %10.1f %10.1f\n", what.c_str(), figures.ns("decode-value", "zyn", what).value_or(0),
                    figures.ns("encode-value", "zyn", what).value_or(0));
    }
}

void printMixed(const Figures& figures) {
    std::printf("\n%-14s %10s %10s\n", "mixed traffic", "decode, ns", "encode, ns");
    for (const char* what : {"alone", "fixed", "channels", "random", "apart"}) {
        const auto decode = figures.ns("mixed-decode", "zyn", what);
        const auto encode = figures.ns("mixed-encode", "zyn", what);
        if (decode) std::printf("  %-12s %10.1f", what, *decode);
        if (encode) std::printf(" %10.1f", *encode);
        if (decode || encode) std::printf("\n");
    }
}

void printForms(const Figures& figures) {
    std::printf("\n%-24s %7s %9s %9s %10s %9s\n", "other forms, refusals", "octets", "zyn, ns", "x direct", "asn1c, ns",
                "zyn/asn1c");
    for (const char* operation : {"form", "refuse"}) {
        for (const std::string& what : figures.whats(operation, "zyn")) {
            const Figure ours = *figures.find(operation, "zyn", what);
            const auto direct = figures.ns("decode", "zyn", what.substr(0, what.find('/')));
            const auto peer = figures.ns(operation, "asn1c", what);
            std::printf("  %-22s %7.0f %9.1f %9.2f", what.c_str(), ours.octets, ours.median,
                        direct ? ours.median / *direct : 0.0);
            if (peer) std::printf(" %10.1f %9.2f", *peer, ours.median / *peer);
            std::printf("\n");
        }
    }
}

} // namespace

double geometricMean(const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values) sum += std::log(value);
    return values.empty() ? 0 : std::exp(sum / static_cast<double>(values.size()));
}

void Figures::ReportRuns(const std::vector<Run>& runs) {
    std::vector<double> times;
    double octets = 0;
    std::string name;
    for (const Run& run : runs) {
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
            std::exit(1);
        }
        if (run.run_type != Run::RT_Iteration) continue;
        name = run.run_name.function_name;
        times.push_back(run.GetAdjustedCPUTime());
        const auto counter = run.counters.find("octets");
        if (counter != run.counters.end()) octets = counter->second.value;
    }
    if (times.empty()) return;
    std::sort(times.begin(), times.end());
    const double median = quantile(times, 0.5);
    figures[name] = {median, (quantile(times, 0.75) - quantile(times, 0.25)) / median, octets, times.front()};
}

std::optional<Figure> Figures::find(const std::string& operation, const std::string& who,
                                    const std::string& what) const {
    const auto found = figures.find(operation + "/" + who + "/" + what);
    return found == figures.end() ? std::nullopt : std::optional(found->second);
}

std::optional<double> Figures::ns(const std::string& operation, const std::string& who, const std::string& what) const {
    const auto figure = find(operation, who, what);
    return figure ? std::optional(figure->median) : std::nullopt;
}

std::optional<double> Figures::mean(const std::string& operation, const std::string& who,
                                    const std::vector<std::string>& what) const {
    std::vector<double> values;
    for (const std::string& one : what) {
        const auto value = ns(operation, who, one);
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    return geometricMean(values);
}

std::vector<std::string> Figures::whats(const std::string& operation, const std::string& who) const {
    const std::string prefix = operation + "/" + who + "/";
    std::vector<std::string> result;
    for (const auto& [name, figure] : figures) {
        if (name.starts_with(prefix)) result.push_back(name.substr(prefix.size()));
    }
    return result;
}

double Figures::noise() const {
    std::vector<double> spreads;
    for (const auto& [name, figure] : figures) spreads.push_back(figure.spread);
    std::sort(spreads.begin(), spreads.end());
    return spreads.empty() ? 0 : quantile(spreads, 0.5);
}

void Figures::writeCsv(std::FILE* file) const {
    std::fprintf(file, "name,median_ns,spread,octets\n");
    for (const auto& [name, figure] : figures) {
        std::fprintf(file, "%s,%.2f,%.4f,%.0f\n", name.c_str(), figure.median, figure.spread, figure.octets);
    }
}

void printTable(const Figures& figures) {
    std::printf(
        "Medians of processor time; x: how many times ours. Half of all repetitions lie within %.1f %% of each other "
        "(the median over all benchmarks).\n",
        100 * figures.noise());
    printOperation(figures, "decode");
    printOperation(figures, "encode");
    printTurnAndPrint(figures);
    printValues(figures);
    printMixed(figures);
    printForms(figures);
}

} // namespace zyn::bench
