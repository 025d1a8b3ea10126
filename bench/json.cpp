// zyn-bench-json: how fast records become JSON and JSON records, for the seven messages and the mixed traffic. Rates
// are those of the best of many short runs, in processor time.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "bench/message.h"
#include "zyn/json.h"

namespace zyn::bench {
namespace {

constexpr double secondsPerRun = 0.02;
constexpr unsigned runs = 25;

double processorSeconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Seconds that one call takes.
template <typename Call> double timeOf(Call&& call) {
    double best = std::numeric_limits<double>::infinity();
    std::size_t calls = 1;
    for (unsigned run = 0; run < runs;) {
        const double start = processorSeconds();
        for (std::size_t i = 0; i < calls; ++i) call();
        const double seconds = processorSeconds() - start;
        if (seconds < secondsPerRun && run == 0) {
            calls *= 2;
            continue;
        }
        best = std::min(best, seconds / static_cast<double>(calls));
        ++run;
    }
    return best;
}

// A message as it is written, read and decoded here.
struct Traveller {
    const Message& message;
    const ZynType* type;
    const void* envelope;
    std::string text;
};

void measure(ZynJson* json, const std::string& name, const std::vector<Traveller>& travellers) {
    std::size_t octets = 0, bytes = 0;
    for (const Traveller& t : travellers) {
        octets += t.message.octets.size();
        bytes += t.text.size();
    }
    std::size_t length;
    const double writing = timeOf([&] {
        for (const Traveller& t : travellers) ZynJsonWrite(json, t.type, t.envelope, &length);
    });
    const double reading = timeOf([&] {
        for (const Traveller& t : travellers) ZynJsonRead(json, t.type, t.text.data(), t.text.size());
    });
    const double decoding = timeOf([&] {
        for (const Traveller& t : travellers) {
            alignas(std::max_align_t) char envelope[64];
            ZynDecode(t.message.channel, t.message.octets.data(), static_cast<uint32_t>(t.message.octets.size()),
                      envelope);
            ZynJsonWrite(json, t.type, envelope, &length);
        }
    });
    const auto rate = [](std::size_t count, double seconds) { return static_cast<double>(count) / seconds / 1e6; };
    std::printf("%-12s %7zu %8zu %8.0f %8.0f %8.0f %8.0f %14.0f\n", name.c_str(), octets, bytes, rate(bytes, writing),
                rate(octets, writing), rate(bytes, reading), rate(octets, reading), rate(octets, decoding));
}

int run() {
    TreeMemory memory;
    ZynJson* json = ZynJsonNew();
    const auto traveller = [&](const Message& message) {
        const ZynType* type = ZynEnvelopeType(message.channel);
        const void* envelope = envelopeOf(message, memory);
        std::size_t length;
        const char* text = ZynJsonWrite(json, type, envelope, &length);
        const std::string copy(text, length);
        const void* read = ZynJsonRead(json, type, copy.data(), copy.size());
        if (!read || !ZynTreeEqual(type, envelope, read)) stop(message.name + ": comes back as another record");
        return Traveller{message, type, envelope, copy};
    };
    std::printf("MB/s of JSON and of message octets\n%-12s %7s %8s %17s %17s %14s\n", "message", "octets", "JSON",
                "write", "read", "decode, write");
    std::vector<Traveller> all;
    const std::vector<Message> seven = sevenMessages(memory), mixed = mixedMessages(ZYN_BENCH_MESSAGES, memory);
    for (const Message& message : seven) {
        all.push_back(traveller(message));
        measure(json, message.name, {all.back()});
    }
    measure(json, "all seven", all);
    all.clear();
    for (const Message& message : mixed) all.push_back(traveller(message));
    measure(json, "mixed", all);
    ZynJsonFree(json);
    return 0;
}

} // namespace
} // namespace zyn::bench

int main() { return zyn::bench::run(); }
