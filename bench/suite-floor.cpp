// The floors of the order and the order book, timed as the entry points are.
#include "bench/floor.h"
#include "bench/suite.h"
#include "records/members.h"

namespace zyn::bench {
namespace {

constexpr const char* who = "floor";

uint8_t buffer[65536];

struct Order {
    using Envelope = ZynTransReq;
    static constexpr auto decode = floor::decodeOrder;
    static uint32_t encode(void* record) {
        return floor::encodeOrder(sender, static_cast<ZynOrder*>(record), buffer, sizeof buffer);
    }
};

struct Book {
    using Envelope = ZynQueryRep;
    static constexpr auto decode = floor::decodeBook;
    static uint32_t encode(void* record) {
        return floor::encodeBook(static_cast<ZynOrderbookByPriceRep*>(record), buffer, sizeof buffer);
    }
};

template <typename Floor> void proveOne(const Message& message) {
    TreeMemory memory;
    typename Floor::Envelope envelope;
    if (!Floor::decode(message.octets.data(), message.octets.size(), &envelope) ||
        !sameTree(envelopes[message.channel], envelopeOf(message, memory), &envelope)) {
        stop("the floor does not decode " + message.name);
    }
    for (std::size_t size = 0; size < message.octets.size(); ++size) {
        if (Floor::decode(message.octets.data(), size, &envelope)) stop("the floor takes a part of " + message.name);
    }
    const uint32_t size = Floor::encode(message.record);
    if (std::vector<uint8_t>(buffer, buffer + size) != message.octets)
        stop("the floor does not encode " + message.name);
}

// The floor handles every message of its record type, not only the one that is timed.
template <typename Floor> void prove(const Message& message) {
    proveOne<Floor>(message);
    std::mt19937 random(5);
    const TypeId type = alternativeOf(typeOf(choiceType(message.channel)), message.choiceId)->type;
    for (int i = 0; i < 200; ++i) {
        TreeMemory memory;
        void* record = memory.take(typeOf(type).size);
        randomTree(type, record, random, memory);
        proveOne<Floor>(makeMessage("a random " + message.name, message.channel, message.choiceId, record));
    }
}

template <typename Floor> void addFloor(const Message& message) {
    prove<Floor>(message);
    add("decode", who, message.name, [&message](benchmark::State& state) {
        typename Floor::Envelope envelope;
        const uint8_t* octets = message.octets.data();
        const std::size_t size = message.octets.size();
        for (auto _ : state) benchmark::DoNotOptimize(Floor::decode(octets, size, &envelope));
    });
    add("encode", who, message.name, [&message](benchmark::State& state) {
        void* record = message.record;
        for (auto _ : state) benchmark::DoNotOptimize(Floor::encode(record));
    });
}

void addAll(const Traffic& traffic) {
    for (const Message& message : traffic.seven) {
        if (message.name == "order") addFloor<Order>(message);
        if (message.name == "book") addFloor<Book>(message);
    }
}

const Enlist enlist({who, addAll});

} // namespace
} // namespace zyn::bench
