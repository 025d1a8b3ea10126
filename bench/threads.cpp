// zyn-bench-threads: threads with contexts of their own, how much more two of them do than one, and what binding costs.
// All figures are the best of many short runs, as other programs share the machine. Takes the usual options of Google
// Benchmark.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <thread>

#include "bench/message.h"
#include "zyn/zyn.h"

namespace zyn::bench {
namespace {

constexpr std::size_t bufferSize = 65536;

// A context that is bound as long as this lives.
class Binding {
public:
    Binding() : context(ZynContextNew()) {
        if (!context) stop("no memory for a context");
        before = ZynContextUse(context);
        Asn1InstallErrorHandler([](char*, int) {});
    }
    ~Binding() {
        ZynContextUse(before);
        ZynContextFree(context);
    }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

private:
    ZynContext* context;
    ZynContext* before;
};

// Decodes all messages and encodes what came of it, so that no record is in two threads' hands.
void mixedLoop(benchmark::State& state, const std::vector<Message>& messages) {
    const Binding binding;
    std::vector<uint8_t> buffer(bufferSize);
    for (auto _ : state) {
        for (const Message& message : messages) {
            onChannel(message.channel, [&]<typename Points>(Points) {
                typename Points::Envelope envelope;
                Points::decode(message.octets.data(), static_cast<uint32_t>(message.octets.size()), &envelope);
                benchmark::DoNotOptimize(
                    Points::encode(Points::record(envelope), Points::choiceId(envelope), buffer.data(), bufferSize));
            });
        }
    }
}

void bindLoop(benchmark::State& state) {
    ZynContext* contexts[] = {ZynContextNew(), nullptr};
    std::size_t next = 0;
    for (auto _ : state) benchmark::DoNotOptimize(ZynContextUse(contexts[next ^= 1]));
    ZynContextUse(nullptr);
    ZynContextFree(contexts[0]);
}

void decodeLoop(benchmark::State& state, const Message& message) {
    ZynTransRep reply;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            ZynTransReplyDecode(message.octets.data(), static_cast<uint32_t>(message.octets.size()), &reply));
    }
}

// Shows nothing but keeps the best time of each benchmark. With several threads the time of an iteration is the elapsed
// one, divided by the iterations of all of them.
class Best : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double ns = run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations);
            const auto [place, isNew] = times.try_emplace(run.benchmark_name(), ns);
            if (!isNew) place->second = std::min(place->second, ns);
        }
    }
    double ns(const std::string& start) const {
        const auto place = times.lower_bound(start);
        if (place == times.end() || !place->first.starts_with(start)) stop("not measured: " + start);
        return place->second;
    }

private:
    std::map<std::string, double> times;
};

bool tell(const char* what, double measured, bool reached, const char* goal) {
    std::printf("  %-52s %8.2f   %s: %s\n", what, measured, goal, reached ? "yes" : "NO");
    return reached;
}

int measure(std::vector<char*> arguments) {
    std::string usual[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=60",
                           "--benchmark_min_time=0.01"};
    for (std::string& argument : usual) arguments.insert(arguments.begin() + 1, argument.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    TreeMemory memory;
    const std::vector<Message> seven = sevenMessages(memory), mixed = mixedMessages(ZYN_BENCH_MESSAGES, memory);
    const auto reply = std::find_if(seven.begin(), seven.end(), [](const Message& m) { return m.name == "reply"; });
    if (reply == seven.end()) stop("no reply among the seven");
    benchmark::RegisterBenchmark("mixed", [&](benchmark::State& state) { mixedLoop(state, mixed); })
        ->Threads(1)
        ->Threads(2)
        ->UseRealTime();
    benchmark::RegisterBenchmark("bind", bindLoop);
    benchmark::RegisterBenchmark("decode", [&](benchmark::State& state) { decodeLoop(state, *reply); });
    Best best;
    benchmark::RunSpecifiedBenchmarks(&best);
    const double one = best.ns("mixed/real_time/threads:1"), two = best.ns("mixed/real_time/threads:2");
    std::printf("Threads with contexts of their own, on %u processors\n", std::thread::hardware_concurrency());
    std::printf("  %-52s %8.1f\n", "decode and encode in mixed traffic, one thread, ns",
                one / static_cast<double>(mixed.size()));
    bool good = tell("two threads: times the messages of one", one / two, one / two >= 1.8, "at least 1.8");
    const double bind = best.ns("bind"), decode = best.ns("decode");
    std::printf("  %-52s %8.2f\n", "decode of a reply, ns", decode);
    good = tell("binding a context, ns", bind, bind < decode, "less than that decode") && good;
    return good ? 0 : 1;
}

} // namespace
} // namespace zyn::bench

int main(int argc, char** argv) { return zyn::bench::measure({argv, argv + argc}); }
