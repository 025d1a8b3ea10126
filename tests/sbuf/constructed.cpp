// Constructed strings of every shape against the rule as it is told, by recursion; and what is very deep or very long.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <cstring>
#include <random>

#include "sbuf/state.h"
#include "tests/support/caught.h"
#include "tests/support/few.h"
#include "tests/support/hex.h"

namespace {

class Constructed : public testing::Test {
protected:
    void SetUp() override { InitNibbleMem(8192, 1024); }
    void TearDown() override { zyn::releaseRuntime(); }
};

// The walk over the components with a cursor of its own. A failure is thrown as its code.
struct Reference {
    const std::vector<uint8_t>& in;
    const uint8_t type; // 3: BIT STRING, 4: OCTET STRING
    std::size_t at = 0;
    bool error = false;
    unsigned unused = 0;
    std::vector<uint8_t> out = {};

    uint8_t next() {
        if (at < in.size()) return in[at++];
        error = true;
        return 1;
    }
    // Tags of more than one octet match nothing here, so that only the first octet is told.
    uint8_t tag(uint32_t& count) {
        const uint8_t octet = next();
        ++count;
        for (int i = 0; i < 2 && (octet & 0x1F) == 0x1F; ++i) {
            ++count;
            if (!(next() & 0x80)) break;
            if (i == 1) throw -25;
        }
        if (error) throw -26;
        return octet;
    }
    uint32_t length(uint32_t& count) {
        const uint8_t first = next();
        if (error) throw -13;
        ++count;
        if (first < 0x80) return first;
        if (first == 0x80) return IndefiniteLen;
        if (first > 0x84) throw -14;
        uint32_t value = 0;
        for (int i = first & 0x7F; i > 0; --i) value = value << 8 | next();
        count += first & 0x7F;
        if (error) throw -15;
        return value;
    }
    void fill(uint32_t whole, uint32_t& total) {
        if (whole == 0) return;
        uint32_t count = 0;
        do {
            const uint8_t octet = tag(count);
            if (octet == 0 && whole == IndefiniteLen) {
                if (next() != 0 || error) throw -28;
                ++count;
                break;
            }
            const uint32_t size = length(count);
            if (octet == type) {
                uint32_t wanted = size;
                if (type == 3 && unused != 0) throw -1;
                if (type == 3 && size != 0) {
                    unused = next();
                    --wanted;
                }
                for (; wanted > 0 && at < in.size(); --wanted) out.push_back(in[at++]);
                if (wanted > 0) throw type == 3 ? -2 : -18;
                count += size;
            } else if (octet == (type | 0x20)) {
                fill(size, count);
            } else {
                throw type == 3 ? -3 : -19;
            }
        } while (whole == IndefiniteLen || count < whole);
        total += count;
    }
};

// Octets that often fit together: tags and lengths of few values.
std::vector<uint8_t> randomComponents(std::mt19937& random, uint8_t type) {
    const uint8_t nested = type | 0x20;
    const uint8_t choice[] = {type, type, type, nested, nested, 0x80, 0,    0,    0,    1,   1,
                              2,    3,    4,    5,      8,      0x81, 0x84, 0x85, 0xFF, 0xBF};
    std::vector<uint8_t> octets(random() % 24);
    for (uint8_t& octet : octets) octet = choice[random() % std::size(choice)];
    octets.shrink_to_fit();
    return octets;
}

TEST_F(Constructed, SweepAgreesWithTheRecursiveRule) {
    std::mt19937 random(1);
    std::array<unsigned, 50> reached{};
    for (unsigned round = 0; round < 200'000 / onePatternIn(); ++round) {
        const bool isBits = round % 2;
        std::vector<uint8_t> octets = randomComponents(random, isBits ? 3 : 4);
        const AsnLen length = random() % 3 ? IndefiniteLen : static_cast<AsnLen>(random() % 24);
        SCOPED_TRACE((isBits ? "BIT STRING " : "OCTET STRING ") + toHex(octets) + ", length " + std::to_string(length));

        Reference expected{.in = octets, .type = static_cast<uint8_t>(isBits ? 3 : 4)};
        AsnLen expectedCount = 0;
        int expectedCode = 0;
        try {
            expected.fill(length, expectedCount);
            if (expected.error && expected.out.empty()) expected.unused = 0; // was not there
            if (expected.unused > 7 || expected.unused > 8 * expected.out.size()) expectedCode = -43;
        } catch (int code) {
            expectedCode = code;
        }
        ++reached[static_cast<std::size_t>(-expectedCode)];

        ResetNibbleMem();
        SBuf b = readingBuffer(octets.data(), octets.size());
        AsnLen count = 0;
        AsnOcts octs{};
        AsnBits bits{};
        const Caught end = caught([&](jmp_buf env) {
            if (isBits) BDecAsnBitsContent(&b, 0x23000000, length, &bits, &count, env);
            else BDecAsnOctsContent(&b, 0x24000000, length, &octs, &count, env);
        });
        ASSERT_EQ(end.code, expectedCode);
        ASSERT_EQ(static_cast<std::size_t>(b.readLoc - b.dataStart), expected.at);
        ASSERT_EQ(b.readError, expected.error);
        if (end.code != 0) continue;
        ASSERT_EQ(count, expectedCount);
        const std::size_t bitLength = isBits ? static_cast<std::size_t>(bits.bitLen) : 8 * octs.octetLen;
        ASSERT_EQ(bitLength, 8 * expected.out.size() - expected.unused);
        ASSERT_EQ(toHex(isBits ? bits.bits : octs.octs, expected.out.size()), toHex(expected.out));
    }
    for (const int code : {0, -1, -2, -3, -13, -14, -15, -18, -19, -25, -26, -28, -43}) {
        EXPECT_GT(reached[static_cast<std::size_t>(-code)], 50u / onePatternIn())
            << "the sweep hardly meets code " << code;
    }
}

// A million strings of definite length inside each other, the innermost one empty.
TEST_F(Constructed, DefiniteLengthsToAnyDepth) {
    constexpr std::size_t depth = 1'000'000;
    std::vector<uint8_t> octets;
    for (std::size_t left = depth; left-- > 0;) {
        octets.insert(octets.end(), {0x24, 0x84});
        for (int shift = 24; shift >= 0; shift -= 8) octets.push_back(static_cast<uint8_t>(6 * left >> shift));
    }
    SBuf b = readingBuffer(octets.data(), octets.size());
    AsnLen count = 0;
    AsnOcts value{};
    EXPECT_EQ(caught([&](jmp_buf env) { BDecAsnOcts(&b, &value, &count, env); }).code, 0);
    EXPECT_EQ(value.octetLen, 0u);
    EXPECT_EQ(count, octets.size());
}

// What stands for the count is the 1 that a read behind the end gives; whatever is read next fails.
TEST_F(Constructed, TheCountOfUnusedBitsIsMissingBehindOtherBits) {
    std::vector<uint8_t> octets = {0x03, 0x02, 0x00, 0xF0, 0x03, 0x01};
    SBuf b = readingBuffer(octets.data(), octets.size());
    AsnLen count = 0;
    AsnBits bits{};
    EXPECT_EQ(caught([&](jmp_buf env) { BDecAsnBitsContent(&b, 0x23000000, 6, &bits, &count, env); }).code, 0);
    EXPECT_EQ(bits.bitLen, 7);
    EXPECT_EQ(bits.bits[0], 0xF0);
    EXPECT_EQ(b.readError, 1);
}

TEST_F(Constructed, TheStackGrowsOnePieceBeyondEachStep) {
    struct Row {
        unsigned pieces;
        uint32_t elements;
        uint32_t step = 64; // of 0, the least there can be is taken
    };
    const Row rows[] = {{1, 128},   {128, 128}, {129, 192},   {192, 192},
                        {193, 256}, {1, 256},   {1000, 1024}, {1026, 1026, 0}};
    for (const Row& row : rows) {
        strStkG.growElmts = row.step;
        std::vector<uint8_t> octets = {0x24, 0x80};
        for (unsigned i = 0; i < row.pieces; ++i) octets.insert(octets.end(), {0x04, 0x01, static_cast<uint8_t>(i)});
        octets.insert(octets.end(), {0, 0});
        SBuf b = readingBuffer(octets.data(), octets.size());
        AsnLen count = 0;
        AsnOcts value{};
        ASSERT_EQ(caught([&](jmp_buf env) { BDecAsnOcts(&b, &value, &count, env); }).code, 0);
        ASSERT_EQ(value.octetLen, row.pieces);
        for (unsigned i = 0; i < row.pieces; ++i) ASSERT_EQ(value.octs[i], static_cast<uint8_t>(i));
        EXPECT_EQ(strStkG.numElmts, row.elements) << row.pieces;
        EXPECT_EQ(strStkG.nextFreeElmt, row.pieces);
        EXPECT_EQ(strStkG.totalByteLen, row.pieces);
    }
    strStkG.growElmts = 64;
    zyn::releaseRuntime();
    EXPECT_EQ(strStkG.stk, nullptr);
    EXPECT_EQ(strStkG.numElmts, 0u);
}

// Octets that are 0 and take no memory until they are written.
struct Zeros {
    explicit Zeros(std::size_t wanted) : size(wanted) {
        void* place = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (place != MAP_FAILED) octets = static_cast<uint8_t*>(place);
    }
    ~Zeros() { munmap(octets, size); }

    // The same head in front of two pieces of that length.
    void putHeads(const std::vector<uint8_t>& head, std::size_t length) {
        std::memcpy(octets, head.data(), head.size());
        std::memcpy(octets + head.size() + length, head.data(), head.size());
    }

    template <typename Value>
    std::string failure(void (*decode)(SBuf*, AsnTag, AsnLen, Value*, AsnLen*, jmp_buf), AsnTag tag, AsnLen length) {
        Value value{};
        AsnLen count = 0;
        SBuf b = readingBuffer(octets, size);
        const Caught end = caught([&](jmp_buf env) { decode(&b, tag, length, &value, &count, env); });
        return std::to_string(end.code) + " " + (end.messages.empty() ? "" : end.messages[0]);
    }

    uint8_t* octets = nullptr;
    std::size_t size;
};

TEST_F(Constructed, MoreBitsThan31BitsCount) {
    constexpr uint32_t most = 1u << 28; // octets; with no unused bit they hold one bit too many
    Zeros zeros(most + 64);
    ASSERT_NE(zeros.octets, nullptr);
    const char* tooMany = "-45 BDecAsnBitsContent: ERROR - too many bits to decode\n";
    EXPECT_EQ(zeros.failure(BDecAsnBitsContent, 0x03000000, most + 1), tooMany);
    zeros.octets[0] = 8;
    EXPECT_EQ(zeros.failure(BDecAsnBitsContent, 0x03000000, most + 1).substr(0, 3), "-43") << "unused bits come first";
    zeros.putHeads(hex("03 84 08 00 00 01 00"), most / 2);
    EXPECT_EQ(zeros.failure(BDecAsnBitsContent, 0x23000000, most + 14), tooMany);
}

// No message is that long, but a caller's own SBuf may be: sizes of 32 bits must not wrap round.
TEST_F(Constructed, MoreOctetsThan32BitsCount) {
    if (sizeof(std::size_t) == 4) GTEST_SKIP() << "there is no such block";
    Zeros zeros(static_cast<std::size_t>((uint64_t{1} << 32) + 4096));
    ASSERT_NE(zeros.octets, nullptr);
    EXPECT_EQ(zeros.failure(BDecAsnOctsContent, 0x04000000, IndefiniteLen).substr(0, 3), "-20");
    EXPECT_EQ(zeros.failure(BDecAsnBitsContent, 0x03000000, IndefiniteLen).substr(0, 2), "-4");
    zeros.putHeads(hex("04 84 80 00 00 00"), std::size_t{1} << 31);
    EXPECT_EQ(zeros.failure(BDecAsnOctsContent, 0x24000000, IndefiniteLen), "-27 ");
}

} // namespace
