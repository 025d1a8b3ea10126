// REAL: worked octets, and the bit work against what the platform's frexp and pow give.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "sbuf/asn-real.h"
#include "tests/support/caught.h"
#include "tests/support/few.h"
#include "tests/support/hex.h"

namespace {

uint64_t bitsOf(double v) { return std::bit_cast<uint64_t>(v); }

std::vector<uint8_t> encodedContent(double value) {
    uint8_t block[16];
    SBuf b = writingBuffer(block, sizeof block);
    const AsnLen length = BEncAsnRealContent(&b, &value);
    EXPECT_EQ(b.writeError, 0) << value;
    return {b.dataStart, b.dataStart + length};
}

struct Decoded {
    double value = 0;
    int code = 0;
    AsnLen counted = 0;
    size_t read = 0;
    int32_t readError = 0;
};

Decoded decodedContent(const uint8_t* octets, size_t present, AsnLen length) {
    SBuf b = readingBuffer(const_cast<uint8_t*>(octets), present);
    Decoded d;
    d.value = 5.0; // is overwritten
    jmp_buf env;
    volatile int code = setjmp(env);
    if (code == 0) BDecAsnRealContent(&b, 0, length, &d.value, &d.counted, env);
    d.code = code;
    d.read = static_cast<size_t>(b.readLoc - b.dataStart);
    d.readError = b.readError;
    return d;
}

// The encoder as it is told with frexp.
std::vector<uint8_t> referenceEncoding(double value) {
    if (value == 0.0) return {};
    int e;
    double m = std::frexp(value, &e);
    const bool negative = m < 0;
    if (negative) m = -m;
    uint8_t mantissa[8];
    int length = 0;
    for (int i = 0; i < 8; ++i) {
        m *= 256;
        mantissa[i] = static_cast<uint8_t>(m);
        m -= mantissa[i];
        if (mantissa[i] != 0) length = i + 1;
    }
    e -= 8 * length;
    const unsigned n = SignedIntOctetLen(e);
    std::vector<uint8_t> octets{static_cast<uint8_t>((negative ? 0xC0 : 0x80) + n - 1)};
    for (unsigned i = n; i-- > 0;) octets.push_back(static_cast<uint8_t>(e >> (8 * i)));
    octets.insert(octets.end(), mantissa, mantissa + length);
    return octets;
}

// The decoder as it is told with pow, octet by octet; octets beyond the data read as 1.
Decoded referenceDecoding(const std::vector<uint8_t>& octets, AsnLen length) {
    Decoded d;
    const auto next = [&]() -> uint32_t {
        if (d.read < octets.size()) return octets[d.read++];
        d.readError = 1;
        return 1;
    };
    if (length == 0) return d;
    const uint32_t first = next();
    if (length == 1) { // the infinities still hold 0.0 here
        d.counted = 1;
        if (first != 0x40 && first != 0x41) d.code = -22;
        return d;
    }
    if (!(first & 0x80)) return d.code = -24, d;
    const uint32_t octet = next();
    uint32_t exponent = octet & 0x80 ? 0xFFFFFFFF : 0;
    uint32_t counted;
    bool empty = false;
    switch (first & 3) {
    case 0: exponent = exponent << 8 | octet, counted = 1; break;
    case 1: exponent = exponent << 16 | octet << 8, exponent |= next(), counted = 2; break;
    case 2:
        exponent = exponent << 16 | octet << 8, exponent |= next(), counted = 3;
        exponent = exponent << 8 | next();
        break;
    default:
        counted = octet + 1;
        empty = octet == 0;
        exponent = static_cast<uint32_t>(static_cast<int8_t>(next()));
        for (uint32_t i = 1; i < octet; ++i) exponent = exponent << 8 | next();
    }
    double mantissa = 0;
    for (int64_t rest = int64_t{length} - 1 - counted; rest > 0; --rest) mantissa = mantissa * 256 + next();
    mantissa *= 1 << (first >> 2 & 3);
    constexpr double bases[] = {2, 8, 16};
    if ((first >> 4 & 3) == 3) return d.code = -23, d;
    if (empty) return d.code = -44, d;
    d.value = mantissa * std::pow(bases[first >> 4 & 3], static_cast<double>(static_cast<int32_t>(exponent)));
    if (first & 0x40) d.value = -d.value;
    d.counted = length;
    return d;
}

void expectAsReference(const std::vector<uint8_t>& octets, AsnLen length) {
    const Decoded is = decodedContent(octets.data(), octets.size(), length);
    const Decoded expected = referenceDecoding(octets, length);
    ASSERT_EQ(is.code, expected.code) << toHex(octets) << " length " << length;
    if (is.code != 0) return;
    ASSERT_EQ(bitsOf(is.value), bitsOf(expected.value)) << toHex(octets) << " length " << length;
    ASSERT_EQ(is.counted, expected.counted) << toHex(octets);
    ASSERT_EQ(is.read, expected.read) << toHex(octets);
    ASSERT_EQ(is.readError, expected.readError) << toHex(octets);
}

void quiet(char*, int) {}

class Real : public testing::Test {
protected:
    void SetUp() override { previous = Asn1InstallErrorHandler(quiet); }
    void TearDown() override {
        Asn1InstallErrorHandler(previous);
        PLUS_INFINITY = MINUS_INFINITY = 0.0;
    }
    Asn1ErrorHandler previous = nullptr;
};

TEST_F(Real, WorkedEncodings) {
    const std::pair<double, const char*> rows[] = {
        {0.0, ""},
        {-0.0, ""},
        {1.0, "80 F9 80"},
        {-1.0, "C0 F9 80"},
        {0.5, "80 F8 80"},
        {3.0, "80 FA C0"},
        {100.0, "80 FF C8"},
        {1234.5, "80 FB 9A 50"},
        {0.1, "80 C5 CC CC CC CC CC CC D0"},
        {1e300, "81 03 AD BF 21 E4 40 03 AC E0"},
        {1000.0, "80 02 FA"},
        {5e-324, "81 FB C7 80"},
        {1.7976931348623157e308, "81 03 C8 FF FF FF FF FF FF F8"},
    };
    for (auto [value, octets] : rows) {
        EXPECT_EQ(toHex(encodedContent(value)), octets) << value;
        AsnReal v = value;
        uint8_t block[16];
        SBuf b = writingBuffer(block, sizeof block);
        const AsnLen length = BEncAsnReal(&b, &v);
        EXPECT_EQ(b.dataStart[0], 0x09);
        EXPECT_EQ(b.dataStart[1], length - 2);
    }
}

TEST_F(Real, WorkedDecodings) {
    const struct {
        const char* octets;
        double value;
        int code;
    } rows[] = {
        {"", 0.0, 0},
        {"A0 FE 10", 0.0625, 0},
        {"90 01 03", 24.0, 0},
        {"88 00 03", 12.0, 0},
        {"83 01 FE 03", 0.75, 0},
        {"82 00 00 01 03", 6.0, 0},
        {"40", 0.0, 0},
        {"41", 0.0, 0},
        {"42", 0, -22},
        {"43", 0, -22},
        {"41 00", 0, -24},
        {"03 31 2E 45", 0, -24},
        {"B0 00 01", 0, -23},
        {"83 00 01 02", 0, -44},
        {"B3 00 01 02", 0, -23},
        {"81 FB C7 80", 0.0, 0},
    };
    for (const auto& row : rows) {
        const auto octets = hex(row.octets);
        const Decoded d = decodedContent(octets.data(), octets.size(), static_cast<AsnLen>(octets.size()));
        EXPECT_EQ(d.code, row.code) << row.octets;
        if (row.code == 0) {
            EXPECT_EQ(d.value, row.value) << row.octets;
        }
    }
    const auto octets = hex("81 00 05");
    const Decoded d = decodedContent(octets.data(), 3, 2);
    EXPECT_EQ(d.read, 3u) << "the exponent outruns the length";
    EXPECT_EQ(d.counted, 2u);
    EXPECT_EQ(decodedContent(nullptr, 0, 1).code, -22) << "the end of the data reads as 1";
}

TEST_F(Real, InfinitiesAreWhatTheVariablesHold) {
    InitAsnInfinity();
    for (const char* octet : {"40", "41"}) {
        const Decoded d = decodedContent(hex(octet).data(), 1, 1);
        EXPECT_TRUE(std::isinf(d.value));
        EXPECT_EQ(toHex(encodedContent(d.value)), octet);
    }
    PLUS_INFINITY = MINUS_INFINITY = 0.0;
    for (const double value : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
        uint8_t block[16];
        SBuf b = writingBuffer(block, sizeof block);
        AsnReal v = value;
        EXPECT_EQ(BEncAsnRealContent(&b, &v), 0u);
        EXPECT_EQ(b.writeError, 1) << "no wire form";
        EXPECT_EQ(b.dataStart, b.dataEnd);
    }
}

TEST_F(Real, MessagesAndTheTag) {
    const std::pair<const char*, const char*> rows[] = {
        {"09 01 42", "-22 BDecAsnRealContent: ERROR - unrecognized real number of length 1 octet.\n"},
        {"09 03 B0 00 01", "-23 BDecAsnRealContent: ERROR - unsupported base for a binary real number.\n"},
        {"09 02 01 31", "-24 BDecAsnRealContent: ERROR - decimal REAL form is not currently supported\n"},
        {"09 03 83 00 01", "-44 BDecAsnRealContent: ERROR - exponent without octets\n"},
        {"02 01 05", "-40 BDecAsnReal: ERROR wrong tag on REAL.\n"},
        {"09 03 80 F9 80", "0 "},
    };
    for (auto [octets, expected] : rows) {
        auto data = hex(octets);
        SBuf b = readingBuffer(data.data(), data.size());
        AsnReal value;
        AsnLen counted = 0;
        const Caught result = caught([&](jmp_buf env) { BDecAsnReal(&b, &value, &counted, env); });
        EXPECT_EQ(std::to_string(result.code) + " " + (result.messages.empty() ? "" : result.messages[0]), expected);
    }
}

TEST_F(Real, PowersOfTwoAreThoseOfThePlatform) {
    for (int64_t e = -5000; e <= 5000; ++e) {
        for (const int base : {1, 3, 4}) {
            ASSERT_EQ(bitsOf(zyn::powerOfTwo(base * e)), bitsOf(std::pow(1 << base, static_cast<double>(e)))) << e;
        }
    }
    for (const int32_t e : {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, 1 << 29, -(1 << 29)}) {
        for (const int base : {1, 3, 4}) {
            EXPECT_EQ(bitsOf(zyn::powerOfTwo(int64_t{base} * e)), bitsOf(std::pow(1 << base, static_cast<double>(e))));
        }
    }
}

TEST_F(Real, EncodesAsFrexpWould) {
    std::mt19937_64 random(1);
    const auto check = [](double value) {
        if (!std::isfinite(value)) return;
        const auto octets = encodedContent(value);
        ASSERT_EQ(toHex(octets), toHex(referenceEncoding(value))) << value;
        if (value == 0.0) return;
        // Comes back bit for bit, unless its exponent on the wire is below that of the smallest double.
        const Decoded d = decodedContent(octets.data(), octets.size(), static_cast<AsnLen>(octets.size()));
        const int32_t exponent =
            octets[0] & 1 ? static_cast<int16_t>(octets[1] << 8 | octets[2]) : static_cast<int8_t>(octets[1]);
        ASSERT_EQ(bitsOf(d.value), exponent >= -1074 ? bitsOf(value) : bitsOf(value < 0 ? -0.0 : 0.0)) << value;
    };
    for (uint64_t exponent = 0; exponent < 2047; ++exponent) {
        for (const uint64_t significand :
             {uint64_t{0}, uint64_t{1}, uint64_t{1} << 51, (uint64_t{1} << 52) - 1, random() >> 12}) {
            check(std::bit_cast<double>(exponent << 52 | significand));
            check(-std::bit_cast<double>(exponent << 52 | significand));
        }
    }
    const unsigned patterns = 1'000'000 / onePatternIn();
    for (unsigned i = 0; i < patterns; ++i) check(std::bit_cast<double>(random()));
}

TEST_F(Real, DecodesAsPowWould) {
    std::mt19937_64 random(2);
    std::vector<uint8_t> octets;
    const unsigned patterns = 2'000'000 / onePatternIn();
    for (unsigned i = 0; i < patterns && !HasFatalFailure(); ++i) {
        octets.resize(random() % 16);
        for (uint8_t& octet : octets) octet = static_cast<uint8_t>(random() >> 32);
        if (!octets.empty() && random() % 4) octets[0] |= 0x80;
        if (octets.size() > 1 && random() % 2)
            octets[1] = static_cast<uint8_t>(random() % 2 ? random() % 8 : 0xF8 + random() % 8);
        const auto lengths = random() % 8;
        const auto length = static_cast<AsnLen>(
            lengths == 0 ? random() % 300 : octets.size() - std::min<size_t>(octets.size(), lengths == 1));
        expectAsReference(octets, length);
    }
}

TEST_F(Real, ClaimsOfGigabytesEndAtOnce) {
    for (const char* start : {"80 00", "80 F9 00 00", "81 FC 00 05", "C0 80 FF", "83 02 FF"}) {
        const auto octets = hex(start);
        const Decoded is = decodedContent(octets.data(), octets.size(), 0xFFFFFFFF);
        // Beyond 2,000 octets nothing of the value changes any more: it is infinite, or nothing times infinity.
        const Decoded expected = referenceDecoding(octets, 2000);
        EXPECT_EQ(bitsOf(is.value), bitsOf(expected.value)) << start;
        EXPECT_EQ(is.counted, 0xFFFFFFFF);
        EXPECT_EQ(is.readError, 1);
        EXPECT_EQ(is.read, octets.size());
    }
}

} // namespace
