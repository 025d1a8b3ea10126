// The value codecs alone, by the operations that are exported for them: times are for one value, or one list.
#include <array>
#include <csetjmp>

#include "bench/suite.h"
#include "zyn/zyn.h"

namespace zyn::bench {
namespace {

constexpr const char* who = "zyn";
constexpr std::size_t valueCount = 256;

uint8_t block[65536];

SBuf writer() {
    return {block + sizeof block, block + sizeof block, block, block + sizeof block, block + sizeof block, 0, 1};
}

// Values, and their contents one behind the other.
template <typename Value> struct Sample {
    TypeId type;
    std::vector<Value> values;
    std::vector<AsnLen> lengths;
    std::vector<uint8_t> octets;
};

template <auto encode, typename Value> Sample<Value>& sample(TypeId type) {
    static Sample<Value> sample{type, {}, {}, {}};
    static TreeMemory memory;
    std::mt19937 random(11);
    sample.values.resize(valueCount);
    for (Value& value : sample.values) {
        randomTree(type, &value, random, memory);
        SBuf b = writer();
        sample.lengths.push_back(encode(&b, &value));
        sample.octets.insert(sample.octets.end(), b.dataStart, b.dataEnd);
    }
    return sample;
}

template <auto encode, typename Value> void encodeValues(benchmark::State& state, Sample<Value>& sample) {
    while (state.KeepRunningBatch(valueCount)) {
        SBuf b = writer();
        AsnLen size = 0;
        for (Value& value : sample.values) size += encode(&b, &value);
        benchmark::DoNotOptimize(size);
    }
}

template <auto decode, typename Value> void decodeValues(benchmark::State& state, Sample<Value>& sample) {
    const AsnTag tag = universalTag(sample.type, kindOf<Value>());
    jmp_buf env;
    if (setjmp(env)) return state.SkipWithError("a value cannot be decoded");
    uint8_t* start = sample.octets.data();
    uint8_t* end = start + sample.octets.size();
    while (state.KeepRunningBatch(valueCount)) {
        SBuf b{start, end, start, end, start, 1, 0};
        AsnLen count = 0;
        Value value{};
        for (const AsnLen length : sample.lengths) {
            decode(&b, tag, length, &value, &count, env);
            benchmark::DoNotOptimize(value);
        }
        ResetNibbleMem();
    }
}

template <auto encode, auto decode, typename Value> void addCodec(const char* name, TypeId type) {
    Sample<Value>& values = sample<encode, Value>(type);
    add("encode-value", who, name, [&values](benchmark::State& state) { encodeValues<encode>(state, values); });
    add("decode-value", who, name, [&values](benchmark::State& state) { decodeValues<decode>(state, values); });
}

// One side of the order book: ten elements.
void addList(const Message& book) {
    static AsnList* list = static_cast<ZynOrderbookByPriceRep*>(book.record)->bidList;
    static std::vector<uint8_t> octets;
    SBuf b = writer();
    BEncZynPricePointListContent(&b, list);
    octets.assign(b.dataStart, b.dataEnd);
    add("encode-value", who, "list", [](benchmark::State& state) {
        for (auto _ : state) {
            SBuf to = writer();
            benchmark::DoNotOptimize(BEncZynPricePointListContent(&to, list));
        }
    });
    add("decode-value", who, "list", [](benchmark::State& state) {
        jmp_buf env;
        if (setjmp(env)) return state.SkipWithError("the list cannot be decoded");
        uint8_t* end = octets.data() + octets.size();
        for (auto _ : state) {
            SBuf from{octets.data(), end, octets.data(), end, octets.data(), 1, 0};
            AsnList result;
            AsnListInit(&result, sizeof(void*));
            AsnLen count = 0;
            BDecZynPricePointListContent(&from, 0, static_cast<AsnLen>(octets.size()), &result, &count, env);
            benchmark::DoNotOptimize(result);
            ResetNibbleMem();
        }
    });
}

void addAll(const Traffic& traffic) {
    addCodec<BEncAsnIntContent, BDecAsnIntContent, AsnInt>("INTEGER", TypeId::AsnInt);
    addCodec<BEncAsnRealContent, BDecAsnRealContent, AsnReal>("REAL", TypeId::AsnReal);
    addCodec<BEncAsnOctsContent, BDecAsnOctsContent, AsnOcts>("string", TypeId::AsnOcts);
    for (const Message& message : traffic.seven) {
        if (message.name == "book") addList(message);
    }
}

const Enlist enlist({"values", addAll});

} // namespace
} // namespace zyn::bench
