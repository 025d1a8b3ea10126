// zyn-bench-worst: the worst cases. Prints for each kind of attack the nanoseconds an octet at 1 KiB and at 16 MiB, and how
// long short messages take that claim gigabytes. Ends with 1 where a goal is missed.
//
// Large or small, each message meets a library that has nothing yet and then has to give back all it got: no cost of growing
// is left out. The process has seen the same once before, so that it is not the one to ask the system for pages first: that
// costs more than most decodes, and would show in what is measured once and not in what is measured often. "memory" is what the system takes to give, clear and take back the same blocks when nothing is decoded: 1 KiB
// lives in the processor's caches, the trees of 16 MiB do not, whoever makes them. The ratio is that of all the time, and
// "net" the ratio without that of the memory.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

#include "bench/attacks.h"
#include "bench/suite.h"
#include "bench/table.h"
#include "tests/support/hex.h"

namespace zyn::bench {
namespace {

constexpr std::size_t small = 1 << 10, large = 16 << 20; // octets
constexpr double mostGrowth = 3;
constexpr double mostForClaim = 2000; // nanoseconds

void measure(benchmark::State& state, const Attack& attack, std::size_t size) {
    const std::vector<uint8_t> octets = attack.make(size);
    const auto length = static_cast<uint32_t>(octets.size());
    const auto decodeAndGiveBack = [&] {
        benchmark::DoNotOptimize(attack.decode(octets.data(), length));
        ZynShutdown();
    };
    decodeAndGiveBack();
    for (auto _ : state) decodeAndGiveBack();
    setOctets(state, octets.size());
}

// The system's part of what a decode comes to, in blocks of the same sizes: those of the arena and of the string tables.
std::vector<std::size_t> blocksOf(const Attack& attack, const std::vector<uint8_t>& octets) {
    attack.decode(octets.data(), static_cast<uint32_t>(octets.size()));
    std::vector<std::size_t> sizes;
    for (const NibbleBuf* block = nmG->firstNibbleBuf; block; block = block->next) {
        sizes.push_back(sizeof(NibbleBuf));
        sizes.push_back(static_cast<std::size_t>(block->end - block->start));
    }
    if (strStkG.stk) sizes.push_back(strStkG.numElmts * sizeof(StrStkElmt));
    ZynShutdown();
    return sizes;
}

void measureMemory(benchmark::State& state, const Attack& attack, std::size_t size) {
    constexpr std::size_t cacheLine = 64;
    const std::vector<uint8_t> octets = attack.make(size);
    const std::vector<std::size_t> sizes = blocksOf(attack, octets);
    std::vector<char*> blocks(sizes.size());
    const auto takeAndGiveBack = [&] {
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            blocks[i] = static_cast<char*>(std::calloc(sizes[i], 1));
            for (std::size_t at = 0; at < sizes[i]; at += cacheLine) benchmark::DoNotOptimize(blocks[i][at] = 1);
        }
        for (char* block : blocks) std::free(block);
    };
    takeAndGiveBack();
    for (auto _ : state) takeAndGiveBack();
    setOctets(state, octets.size());
}

double perOctet(const Figures& figures, const char* operation, const Attack& attack) {
    const auto figure = figures.find(operation, "zyn", attack.name);
    return figure ? figure->best / figure->octets : NAN;
}

bool printAttacks(const std::vector<Attack>& all, const Figures& figures) {
    double worst = 0, worstNet = 0, slowest = 0;
    std::printf("%-56s %9s %9s %9s %6s %6s\n", "ns an octet", "1 KiB", "16 MiB", "memory", "ratio", "net");
    for (const Attack& attack : all) {
        const double few = perOctet(figures, "small", attack), many = perOctet(figures, "large", attack),
                     memory = perOctet(figures, "memory", attack);
        if (std::isnan(memory)) continue; // left out by a filter
        const double net = std::max(0.0, many - memory) / few;
        std::printf("%-56s %9.3f %9.3f %9.3f %6.2f %6.2f%s\n", attack.name.c_str(), few, many, memory, many / few, net,
                    net > mostGrowth ? "  NO" : "");
        worst = std::max(worst, many / few);
        worstNet = std::max(worstNet, net);
        slowest = std::max({slowest, few, many});
    }
    std::printf("\nworst ratio %.2f; net %.2f, at most %.0f: %s; slowest %.1f ns an octet\n", worst, worstNet,
                mostGrowth, worstNet <= mostGrowth ? "yes" : "NO", slowest);
    return worstNet <= mostGrowth;
}

// Of several rounds the best, as anything else on the machine only adds to it.
double nanoseconds(const Claim& claim) {
    constexpr int rounds = 7, repeats = 20;
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < repeats; ++i) {
            benchmark::DoNotOptimize(claim.decode(claim.octets.data(), static_cast<uint32_t>(claim.octets.size())));
        }
        const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
        best = std::min(best, time.count() / repeats);
    }
    return best;
}

bool printClaims() {
    const std::vector<Claim> all = claims();
    double longest = 0;
    const Claim* which = nullptr;
    std::size_t octets = 0;
    for (const Claim& claim : all) {
        octets = std::max(octets, claim.octets.size());
        const double time = nanoseconds(claim);
        if (time <= longest) continue;
        longest = time;
        which = &claim;
    }
    std::printf("%zu messages of up to %zu octets that claim gigabytes: slowest %.0f ns, at most %.0f: %s\n",
                all.size(), octets, longest, mostForClaim, longest <= mostForClaim ? "yes" : "NO");
    std::printf("  %s: %s\n", which->name.c_str(), toHex(which->octets).c_str());
    return longest <= mostForClaim;
}

int run(int argc, char** argv) {
    Asn1InstallErrorHandler([](char*, int) {});
    const std::vector<Attack> all = attacks();
    for (const Attack& attack : all) {
        add("small", "zyn", attack.name, [&](benchmark::State& state) { measure(state, attack, small); });
        add("large", "zyn", attack.name, [&](benchmark::State& state) { measure(state, attack, large); });
        add("memory", "zyn", attack.name, [&](benchmark::State& state) { measureMemory(state, attack, large); });
    }
    std::string usual[] = {"--benchmark_repetitions=5", "--benchmark_min_time=0.01"};
    std::vector<char*> arguments(argv, argv + argc);
    for (std::string& argument : usual) arguments.insert(arguments.begin() + 1, argument.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    Figures figures;
    benchmark::RunSpecifiedBenchmarks(&figures);
    const bool linear = printAttacks(all, figures);
    return printClaims() && linear ? 0 : 1;
}

} // namespace
} // namespace zyn::bench

int main(int argc, char** argv) { return zyn::bench::run(argc, argv); }
