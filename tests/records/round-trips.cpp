// Every record type out and back in, in the form that encoders write and in the others.
#include <gtest/gtest.h>

#include "tests/support/decoded.h"
#include "tests/support/hex.h"
#include "zyn/zyn.h"

namespace zyn::test {
namespace {

constexpr Taste tastes[] = {{50, 300, 4}, {100, 300, 4}, {0, 300, 4}};

// Runs check for samples of all types that are no primitives; it tells by an empty string that all is well.
template <typename Check> void forAllTypes(uint32_t seeds, Check&& check) {
    for (const Type& type : types) {
        if (type.shape == Shape::Primitive) continue;
        for (uint32_t seed = 0; seed < seeds; ++seed) {
            Sampler sampler(seed + 1000 * static_cast<uint32_t>(type.id), tastes[seed % std::size(tastes)]);
            const std::string problem = check(type, sampler.make(type.id), seed);
            EXPECT_EQ(problem, "") << type.name << ", seed " << seed;
        }
        if (testing::Test::HasFailure()) return;
    }
}

std::string decodesTo(const Type& type, Octets content, const void* sent) {
    const Head head = takeHead(type, content);
    const Decoded decoded = decodedContent(type.id, head.tag, head.length, content);
    if (decoded.code != 0) return "code " + std::to_string(decoded.code) + " of " + toHex(content);
    if (decoded.read != content.size()) return "count " + std::to_string(decoded.read) + " of " + toHex(content);
    return difference(type.id, sent, decoded.value);
}

TEST(RoundTrips, CanonicalForm) {
    forAllTypes(12, [](const Type& type, const void* value, uint32_t) -> std::string {
        const Octets octets = encodedContent(type.id, value);
        const Octets expected = Writer().content(type.id, value);
        if (octets != expected) return "wrote " + toHex(octets) + " for " + toHex(expected);
        return decodesTo(type, octets, value);
    });
}

TEST(RoundTrips, OtherForms) {
    constexpr Forms forms[] = {{100, 0, 0, 0, 0},   {0, 100, 0, 0, 0},    {0, 0, 100, 0, 0},
                               {100, 0, 100, 0, 0}, {50, 50, 50, 100, 0}, {20, 20, 20, 20, 0}};
    forAllTypes(36, [&](const Type& type, const void* value, uint32_t seed) {
        Writer writer(forms[seed / 3 % std::size(forms)], seed);
        return decodesTo(type, writer.content(type.id, value), value);
    });
}

TEST(RoundTrips, FullBuffer) {
    std::vector<uint8_t> block;
    forAllTypes(2, [&](const Type& type, const void* value, uint32_t) -> std::string {
        const std::size_t length = Writer().content(type.id, value).size();
        for (const std::size_t room : {length, length - 1, length / 2, std::size_t{0}}) {
            if (length == 0) return "";
            block.assign(room, 0);
            SBuf b = writingBuffer(block.data(), room);
            const AsnLen written = encodeContent(&b, type.id, value);
            if (written != length)
                return "returned " + std::to_string(written) + " with room for " + std::to_string(room);
            if (b.writeError != (room < length)) return "writeError with room for " + std::to_string(room);
        }
        return "";
    });
}

// A pointer that the caller left unset, in each place where there must be something behind it.
TEST(RoundTrips, UnsetPointersCannotBeSent) {
    std::vector<uint8_t> block(1 << 16);
    const auto flagOf = [&](const Type& type, const void* record) {
        SBuf b = writingBuffer(block.data(), block.size());
        encodeContent(&b, type.id, record);
        return b.writeError;
    };
    Sampler sampler(1, {50, 12, 2});
    for (const Type& type : types) {
        for (const Field& field : type.fields) {
            if (!field.pointer || mayBeNull(field)) continue;
            void* record = sampler.make(type.id);
            EXPECT_EQ(flagOf(type, record), 0) << type.name;
            std::memset(memberOf(record, field), 0, sizeof(void*));
            EXPECT_EQ(flagOf(type, record), 1) << type.name << "." << field.name;
        }
        for (const Alternative& row : type.alternatives) {
            if (row.kind == Kind::Int) continue;
            const ChoiceRecord unset{row.number, {.slot = nullptr}};
            EXPECT_EQ(flagOf(type, &unset), !isEmpty(row)) << type.name << "." << row.name;
        }
    }
}

// The exported operations of some types, of each shape, are the walkers that the other tests call.
template <typename T>
void expectExported(TypeId type, AsnLen (*encode)(SBuf*, T*),
                    void (*decode)(SBuf*, AsnTag, AsnLen, T*, AsnLen*, jmp_buf),
                    void (*print)(FILE*, T*, unsigned short), void (*release)(T*)) {
    Sampler sampler(7, {100, 20, 3});
    auto* sent = static_cast<T*>(sampler.make(type));
    uint8_t block[4096];
    SBuf out = writingBuffer(block, sizeof block);
    const AsnLen length = encode(&out, sent);
    Octets octets(out.dataStart, out.dataEnd);
    EXPECT_EQ(octets, Writer().content(type, sent));
    const Head head = takeHead(typeOf(type), octets);
    auto* decoded = static_cast<T*>(valueInArena(typeOf(type)));
    AsnLen read = 0;
    SBuf in = readingBuffer(octets.data(), octets.size());
    EXPECT_EQ(caught([&](jmp_buf env) { decode(&in, head.tag, head.length, decoded, &read, env); }).code, 0);
    EXPECT_EQ(read, octets.size());
    EXPECT_LE(read, length);
    EXPECT_EQ(difference(type, sent, decoded), "") << typeOf(type).name;
    char* text = nullptr;
    size_t size = 0;
    FILE* stream = open_memstream(&text, &size);
    print(stream, decoded, 0);
    std::fclose(stream);
    EXPECT_GT(size, 0u);
    std::free(text);
    release(decoded);
    EXPECT_EQ(encodedContent(type, decoded), encodedContent(type, sent)) << "release changes nothing";
    release(nullptr);
}

TEST(RoundTrips, ExportedOperations) {
    ZynEncodeMemReset();
#define EXPECT_EXPORTED(T) expectExported<T>(TypeId::T, BEnc##T##Content, BDec##T##Content, Print##T, Free##T)
    EXPECT_EXPORTED(ZynOrderId);
    EXPECT_EXPORTED(AsnSequenceContext);
    EXPECT_EXPORTED(ZynOrderEntry);
    EXPECT_EXPORTED(ZynOrderMultiLeg);
    EXPECT_EXPORTED(ZynPricePointList);
    EXPECT_EXPORTED(ZynPermissionChoice);
    EXPECT_EXPORTED(ZynTransLogStepThrough);
    EXPECT_EXPORTED(ZynTransReqChoice);
    EXPECT_EXPORTED(ZynQueryRep);
#undef EXPECT_EXPORTED
}

// The exported operations of a message: with tag and length, which the decoder reads itself.
template <typename T>
void expectMessageExported(TypeId type, AsnLen (*encode)(SBuf*, T*), void (*decode)(SBuf*, T*, AsnLen*, jmp_buf)) {
    Sampler sampler(7, {100, 20, 3});
    auto* sent = static_cast<T*>(sampler.make(type));
    std::vector<uint8_t> block(1 << 16);
    SBuf out = writingBuffer(block.data(), block.size());
    const AsnLen length = encode(&out, sent);
    const Octets octets(out.dataStart, out.dataEnd);
    EXPECT_EQ(length, octets.size());
    EXPECT_EQ(octets, Writer().message(type, sent));
    for (const std::size_t given : {octets.size(), octets.size() - 1}) {
        T decoded = {};
        AsnLen read = 0;
        SBuf in = readingBuffer(out.dataStart, given);
        const int code = caught([&](jmp_buf env) { decode(&in, &decoded, &read, env); }).code;
        EXPECT_EQ(code == 0, given == octets.size()) << typeOf(type).name << ", " << code;
        if (code != 0) continue;
        EXPECT_EQ(read, octets.size());
        EXPECT_EQ(difference(type, sent, &decoded), "") << typeOf(type).name;
    }
}

TEST(RoundTrips, ExportedOperationsOfMessages) {
    ZynEncodeMemAlloc(1); // makes the arena
    expectMessageExported(TypeId::ZynTransReq, BEncZynTransReq, BDecZynTransReq);
    expectMessageExported(TypeId::ZynQueryReq, BEncZynQueryReq, BDecZynQueryReq);
    expectMessageExported(TypeId::ZynTransRep, BEncZynTransRep, BDecZynTransRep);
    expectMessageExported(TypeId::ZynQueryRep, BEncZynQueryRep, BDecZynQueryRep);
}

} // namespace
} // namespace zyn::test
