// zyn-bench-worst: the worst cases. Prints for each kind of attack the nanoseconds an octet at 1 KiB and at 16 MiB, and how
// long short messages take that claim gigabytes. Ends with 1 where a goal is missed.
//
// The short messages meet a library that has worked before. Each of the long ones meets one that has nothing yet and has to
// give back all it gets, so that no cost of growing is left out.
#include <algorithm>
#include <chrono>
#include <cstring>

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
    for (auto _ : state) {
        benchmark::DoNotOptimize(attack.decode(octets.data(), length));
        if (size == large) ZynShutdown();
    }
    ZynShutdown();
    setOctets(state, octets.size());
}

bool printAttacks(const std::vector<Attack>& all, const Figures& figures) {
    double worst = 0, slowest = 0;
    std::printf("%-56s %12s %12s %8s\n", "ns an octet", "1 KiB", "16 MiB", "ratio");
    for (const Attack& attack : all) {
        const Figure few = *figures.find("small", "zyn", attack.name), many = *figures.find("large", "zyn", attack.name);
        const double before = few.median / few.octets, after = many.median / many.octets;
        std::printf("%-56s %12.3f %12.3f %8.2f%s\n", attack.name.c_str(), before, after, after / before,
                    after > mostGrowth * before ? "  NO" : "");
        worst = std::max(worst, after / before);
        slowest = std::max({slowest, before, after});
    }
    std::printf("\nworst ratio %.2f, at most %.0f: %s; slowest %.1f ns an octet\n", worst, mostGrowth,
                worst <= mostGrowth ? "yes" : "NO", slowest);
    return worst <= mostGrowth;
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
    std::printf("%zu messages of up to %zu octets that claim gigabytes: slowest %.0f ns, at most %.0f: %s\n", all.size(), octets,
                longest, mostForClaim, longest <= mostForClaim ? "yes" : "NO");
    std::printf("  %s: %s\n", which->name.c_str(), toHex(which->octets).c_str());
    return longest <= mostForClaim;
}

int run(int argc, char** argv) {
    Asn1InstallErrorHandler([](char*, int) {});
    const std::vector<Attack> all = attacks();
    for (const Attack& attack : all) {
        add("small", "zyn", attack.name, [&attack](benchmark::State& state) { measure(state, attack, small); });
        add("large", "zyn", attack.name, [&attack](benchmark::State& state) { measure(state, attack, large); });
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
