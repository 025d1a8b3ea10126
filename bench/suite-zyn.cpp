// The codec itself through its entry points: message by message, mixed, in other forms, refused, and printed.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "bench/suite.h"
#include "zyn/zyn.h"

namespace zyn::bench {
namespace {

constexpr const char* who = "zyn";
constexpr std::size_t bufferSize = 65536;
constexpr std::size_t rounds = 64;      // of the mixed traffic, each in another order
constexpr std::size_t turns = 10;       // of all rounds in a repetition
constexpr std::size_t hotRepeats = 256; // of one message in a row, for what it costs alone

uint8_t buffer[bufferSize];

template <typename Points> void decodeLoop(benchmark::State& state, const Message& message) {
    typename Points::Envelope envelope;
    const uint8_t* octets = message.octets.data();
    const auto size = static_cast<uint32_t>(message.octets.size());
    for (auto _ : state) benchmark::DoNotOptimize(Points::decode(octets, size, &envelope));
    setOctets(state, size);
}

template <typename Points> void encodeLoop(benchmark::State& state, const Message& message) {
    void* record = message.record;
    const uint32_t choiceId = message.choiceId;
    for (auto _ : state) benchmark::DoNotOptimize(Points::encode(record, choiceId, buffer, bufferSize));
    setOctets(state, message.octets.size());
}

template <typename Points> void turnLoop(benchmark::State& state, const Message& message) {
    typename Points::Envelope envelope;
    const uint8_t* octets = message.octets.data();
    const auto size = static_cast<uint32_t>(message.octets.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(Points::decode(octets, size, &envelope));
        benchmark::DoNotOptimize(
            Points::encode(Points::record(envelope), Points::choiceId(envelope), buffer, bufferSize));
    }
    setOctets(state, size);
}

// The octets counted here are those of the text.
template <typename Points> void printLoop(benchmark::State& state, const Message& message) {
    TreeMemory memory;
    auto* envelope = static_cast<Points::Envelope*>(const_cast<void*>(envelopeOf(message, memory)));
    char* text = nullptr;
    std::size_t size = 0;
    FILE* stream = open_memstream(&text, &size);
    for (auto _ : state) {
        Points::print(stream, envelope, 0);
        std::fflush(stream);
        std::rewind(stream);
    }
    Points::print(stream, envelope, 0);
    setOctets(state, static_cast<std::size_t>(std::ftell(stream)));
    std::fclose(stream);
    std::free(text);
}

union AnyEnvelope {
    ZynTransReq transRequest;
    ZynQueryReq queryRequest;
    ZynTransRep transReply;
    ZynQueryRep queryReply;
};

// What mixed traffic needs of a message, close together, so that the loop itself adds as little as can be to what the
// machine has not at hand and cannot foresee. The octets of all messages lie behind each other, as in a receiver's block.
struct Arrival {
    const uint8_t* octets;
    uint32_t size;
    ZynChannel channel;
};

struct Departure {
    uint32_t (*encode)(const Departure& departure);
    void* record;
    uint32_t choiceId;
};

template <typename Points> int32_t decodeArrival(const Arrival& arrival, AnyEnvelope* envelope) {
    return Points::decode(arrival.octets, arrival.size, reinterpret_cast<typename Points::Envelope*>(envelope));
}

template <typename Points> uint32_t encodeDeparture(const Departure& departure) {
    return Points::encode(departure.record, departure.choiceId, buffer, bufferSize);
}

using Order = std::vector<uint16_t>;

// All messages, shuffled anew each round.
Order shuffled(std::size_t count) {
    std::mt19937 random(7);
    Order order;
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < count; ++i) order.push_back(static_cast<uint16_t>(i));
        const auto now = order.end() - static_cast<std::ptrdiff_t>(count);
        std::shuffle(now, order.end(), random);
    }
    return order;
}

Order oneByOne(std::size_t count) {
    Order order;
    for (std::size_t i = 0; i < count; ++i) order.insert(order.end(), hotRepeats, static_cast<uint16_t>(i));
    return order;
}

// Calls what for each place in the order, so often that what ran before, and has to be driven out of all caches, is of no
// account.
template <typename What> void inOrder(benchmark::State& state, const Order& order, What&& what) {
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(turns * order.size()))) {
        for (std::size_t turn = 0; turn < turns; ++turn) {
            for (const uint16_t i : order) benchmark::DoNotOptimize(what(i));
        }
    }
}

// The same loop over four orders, so that they differ in nothing else. "channels" is the random order with the
// messages of a channel together. "fixed" has one order in all rounds, which the machine learns: what it takes beyond
// "alone" is for code that is not at hand. Decodes are told the channel; "apart" is the random order for a caller that goes
// to the four entry points by itself, which is a jump more that the machine cannot foresee. Encodes are all like that.
void addMixed(const std::vector<Message>& mixed) {
    static std::vector<uint8_t> block;
    static std::vector<Arrival> arrivals;
    static int32_t (*entryPoints[ZYN_CHANNELS])(const Arrival&, AnyEnvelope*);
    static std::vector<Departure> departures;
    static AnyEnvelope envelope;
    for (const Message& message : mixed) block.insert(block.end(), message.octets.begin(), message.octets.end());
    const uint8_t* next = block.data();
    for (const Message& message : mixed) {
        const ZynChannel channel = message.channel;
        onChannel(message.channel, [&]<typename Points>(Points) {
            entryPoints[channel] = decodeArrival<Points>;
            departures.push_back({encodeDeparture<Points>, message.record, message.choiceId});
        });
        arrivals.push_back({next, static_cast<uint32_t>(message.octets.size()), channel});
        next += message.octets.size();
    }
    const auto count = static_cast<std::ptrdiff_t>(mixed.size());
    static const Order random = shuffled(mixed.size());
    static const Order alone = oneByOne(mixed.size());
    static const Order fixed(random.begin(), random.begin() + count);
    static const Order channels = [&] {
        Order order = random;
        for (auto start = order.begin(); start != order.end(); start += count) {
            std::stable_sort(start, start + count,
                             [&](uint16_t a, uint16_t b) { return mixed[a].channel < mixed[b].channel; });
        }
        return order;
    }();
    for (const auto& [name, order] : {std::pair("random", &random), std::pair("alone", &alone),
                                      std::pair("channels", &channels), std::pair("fixed", &fixed)}) {
        const Order& sequence = *order;
        add("mixed-decode", who, name, [&sequence](benchmark::State& state) {
            inOrder(state, sequence, [](std::size_t i) {
                return ZynDecode(arrivals[i].channel, arrivals[i].octets, arrivals[i].size, &envelope);
            });
        });
        add("mixed-encode", who, name, [&sequence](benchmark::State& state) {
            inOrder(state, sequence, [](std::size_t i) { return departures[i].encode(departures[i]); });
        });
    }
    add("mixed-decode", who, "apart", [](benchmark::State& state) {
        inOrder(state, random, [](std::size_t i) { return entryPoints[arrivals[i].channel](arrivals[i], &envelope); });
    });
}

void addDecode(const char* operation, const Message& message) {
    onChannel(message.channel, [&]<typename Points>(Points) {
        add(operation, who, message.name, [&message](benchmark::State& state) { decodeLoop<Points>(state, message); });
    });
}

void addAll(const Traffic& traffic) {
    for (const Message& message : traffic.seven) {
        addDecode("decode", message);
        onChannel(message.channel, [&]<typename Points>(Points) {
            add("encode", who, message.name,
                [&message](benchmark::State& state) { encodeLoop<Points>(state, message); });
            add("turn", who, message.name, [&message](benchmark::State& state) { turnLoop<Points>(state, message); });
            add("print", who, message.name, [&message](benchmark::State& state) { printLoop<Points>(state, message); });
        });
    }
    for (const Message& message : traffic.forms) addDecode("form", message);
    for (const Message& message : traffic.refused) addDecode("refuse", message);
    addMixed(traffic.mixed);
}

const Enlist enlist({who, addAll});

} // namespace
} // namespace zyn::bench
