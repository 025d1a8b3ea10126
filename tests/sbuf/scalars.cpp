// Tags, lengths, INTEGER, BOOLEAN and the buffer operations: octets against values, codes and messages.
#include <gtest/gtest.h>

#include "tests/support/caught.h"
#include "tests/support/hex.h"

namespace {

// What a decoder read, or how it failed: "value 5, counted 3, at 3" or "-26 message".
template <typename Decode> std::string outcome(const char* octets, Decode decode) {
    auto data = hex(octets);
    SBuf b = readingBuffer(data.data(), data.size());
    AsnLen counted = 0;
    long long value = 0;
    const Caught result = caught([&](jmp_buf env) { value = decode(&b, &counted, env); });
    EXPECT_EQ(b.readError, b.readError != 0) << "a flag is 0 or 1";
    if (result.code != 0)
        return std::to_string(result.code) + " " + (result.messages.empty() ? "" : result.messages[0]);
    return std::to_string(value) + " counted " + std::to_string(counted) + " at " +
           std::to_string(b.readLoc - b.dataStart);
}

struct Row {
    const char* octets;
    const char* expected;
};

TEST(Length, Decoding) {
    const Row rows[] = {
        {"05", "5 counted 1 at 1"},
        {"7F", "127 counted 1 at 1"},
        {"81 05", "5 counted 2 at 2"},
        {"84 00 00 00 05", "5 counted 5 at 5"},
        {"82 01 00", "256 counted 3 at 3"},
        {"80", "4294967295 counted 1 at 1"},
        {"84 FF FF FF FF", "4294967295 counted 5 at 5"},
        {"", "-13 BDecLen: ERROR - decoded past end of data\n"},
        {"81", "-15 BDecLen: ERROR - decoded past end of data\n"},
        {"84 01 02 03", "-15 BDecLen: ERROR - decoded past end of data\n"},
        {"85 00 00 00 00 05", "-14 BDecLen: ERROR - length overflow\n"},
        {"FF", "-14 BDecLen: ERROR - length overflow\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets, [](SBuf* b, AsnLen* n, jmp_buf env) { return BDecLen(b, n, env); }), row.expected)
            << row.octets;
    }
}

TEST(Tag, Decoding) {
    const Row rows[] = {
        {"30", "805306368 counted 1 at 1"},
        {"BF 82 00", "3212967936 counted 3 at 3"}, // 0xBF820000
        {"9F 1F", "2669608960 counted 2 at 2"},    // 0x9F1F0000
        {"BF 82 80", "-25 BDecTag: ERROR - tag value overflow\n"},
        {"BF", "-26 BDecTag: ERROR - decoded past the end of data\n"},
        {"", "-26 BDecTag: ERROR - decoded past the end of data\n"},
        {"BF 82", "-26 BDecTag: ERROR - decoded past the end of data\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets, [](SBuf* b, AsnLen* n, jmp_buf env) { return BDecTag(b, n, env); }), row.expected)
            << row.octets;
    }
}

TEST(EndOfContents, Decoding) {
    const char* message = "-16 BDecEoc: ERROR - non zero byte in EOC or end of data reached\n";
    const Row rows[] = {
        {"00 00", "0 counted 2 at 2"}, {"00 01", message}, {"01 00", message}, {"00", message}, {"", message}};
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets, [](SBuf* b, AsnLen* n, jmp_buf env) { return BDecEoc(b, n, env), 0; }),
                  row.expected)
            << row.octets;
    }
}

TEST(Integer, Decoding) {
    const Row rows[] = {
        {"02 01 05", "5 counted 3 at 3"},
        {"02 04 00 00 00 05", "5 counted 6 at 6"},
        {"02 04 FF FF FF FF", "-1 counted 6 at 6"},
        {"02 02 FF 7F", "-129 counted 4 at 4"},
        {"02 04 80 00 00 00", "-2147483648 counted 6 at 6"},
        {"02 05 00 FF FF FF FF", "-7 BDecAsnIntContent: ERROR - integer to big to decode.\n"},
        {"02 02 01", "-8 BDecAsnIntContent: ERROR - decoded past end of data \n"},
        {"02 00", "-41 BDecAsnIntContent: ERROR - INTEGER without content\n"},
        {"0A 01 05", "-40 BDecAsnInt: ERROR wrong tag on INTEGER.\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets,
                          [](SBuf* b, AsnLen* n, jmp_buf env) {
                              AsnInt v;
                              return BDecAsnInt(b, &v, n, env), v;
                          }),
                  row.expected)
            << row.octets;
    }
}

TEST(UnsignedInteger, Decoding) {
    const Row rows[] = {
        {"02 05 00 FF FF FF FF", "4294967295 counted 7 at 7"},
        {"02 02 00 80", "128 counted 4 at 4"},
        {"02 06 00 00 00 00 00 01", "-9 BDecUAsnIntContent: ERROR - integer to big to decode.\n"},
        {"02 04 80 00 00 00", "-10 BDecUAsnIntContent: ERROR - integer is negative.\n"},
        {"02 05 01 00 00 00 00", "-11 BDecUAsnIntContent: ERROR - integer is negative.\n"},
        {"02 03 01", "-12 BDecUIntegerContent: ERROR - decoded past end of data\n"},
        {"02 00", "-41 BDecUAsnIntContent: ERROR - INTEGER without content\n"},
        {"04 00", "-40 BDecAsnInt: ERROR wrong tag on INTGER.\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets,
                          [](SBuf* b, AsnLen* n, jmp_buf env) {
                              UAsnInt v;
                              return BDecUAsnInt(b, &v, n, env), v;
                          }),
                  row.expected)
            << row.octets;
    }
}

TEST(Boolean, Decoding) {
    const Row rows[] = {
        {"01 01 00", "0 counted 3 at 3"},
        {"01 01 01", "1 counted 3 at 3"},
        {"01 01 FF", "1 counted 3 at 3"},
        {"01 02 00 00", "-5 BDecAsnBoolContent: ERROR - BOOLEAN length must be 1\n"},
        {"01 00", "-5 BDecAsnBoolContent: ERROR - BOOLEAN length must be 1\n"},
        {"01 01", "-6 BDecAsnBoolContent: ERROR - decoded past end of data\n"},
        {"02 01 00", "-40 BDecAsnBool: ERROR - wrong tag on BOOLEAN.\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.octets,
                          [](SBuf* b, AsnLen* n, jmp_buf env) {
                              AsnBool v;
                              return BDecAsnBool(b, &v, n, env), v;
                          }),
                  row.expected)
            << row.octets;
    }
}

// The octets that an encoder leaves, and in a block that is a byte too small still the same count, with writeError.
template <typename Encode> std::string encoded(Encode encode) {
    uint8_t block[16];
    SBuf b = writingBuffer(block, sizeof block);
    const AsnLen length = encode(&b);
    EXPECT_EQ(b.writeError, 0);
    const std::string octets = toHex(b.dataStart, length);
    SBuf exact = writingBuffer(block, length);
    EXPECT_EQ(encode(&exact), length);
    EXPECT_EQ(exact.writeError, 0) << "a block exactly as long as the data takes them";
    SBuf small = writingBuffer(block, length - 1);
    EXPECT_EQ(encode(&small), length);
    EXPECT_EQ(small.writeError, 1);
    return octets;
}

TEST(Scalars, Encoding) {
    const std::pair<int64_t, const char*> integers[] = {
        {0, "02 01 00"},
        {127, "02 01 7F"},
        {128, "02 02 00 80"},
        {256, "02 02 01 00"},
        {-128, "02 01 80"},
        {-129, "02 02 FF 7F"},
        {32767, "02 02 7F FF"},
        {32768, "02 03 00 80 00"},
        {8388608, "02 04 00 80 00 00"},
        {INT32_MAX, "02 04 7F FF FF FF"},
        {INT32_MIN, "02 04 80 00 00 00"},
    };
    for (auto [value, octets] : integers) {
        auto v = static_cast<AsnInt>(value);
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncAsnInt(b, &v); }), octets);
        if (value < 0) continue;
        auto u = static_cast<UAsnInt>(value);
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncUAsnInt(b, &u); }), octets);
    }
    for (auto [value, octets] :
         {std::pair{0x80000000u, "02 05 00 80 00 00 00"}, {0xFFFFFFFFu, "02 05 00 FF FF FF FF"}}) {
        UAsnInt u = value;
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncUAsnInt(b, &u); }), octets);
    }
    for (auto [value, octets] : {std::pair<AsnBool, const char*>{0, "01 01 00"}, {1, "01 01 FF"}, {2, "01 01 FF"}}) {
        AsnBool v = value;
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncAsnBool(b, &v); }), octets);
    }
    const std::pair<AsnLen, const char*> lengths[] = {
        {0, "00"},
        {127, "7F"},
        {128, "81 80"},
        {255, "81 FF"},
        {256, "82 01 00"},
        {65535, "82 FF FF"},
        {65536, "83 01 00 00"},
        {16777215, "83 FF FF FF"},
        {16777216, "84 01 00 00 00"},
        {0x7FFFFFFF, "84 7F FF FF FF"},
        {0xFFFFFFFF, "84 FF FF FF FF"},
    };
    for (auto [length, octets] : lengths) {
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncDefLen(b, length); }), octets);
        if (length > INT32_MAX) continue;
        EXPECT_EQ(encoded([&](SBuf* b) { return BEncDefLen2(b, static_cast<int32_t>(length)); }), octets);
    }
}

TEST(Buffer, ReadsStopAtTheEndOfTheData) {
    auto data = hex("01 02 03");
    SBuf b = readingBuffer(data.data(), 3);
    AsnLen len = 2;
    EXPECT_EQ(SBufTakeSeg(&b, &len), data.data());
    EXPECT_EQ(len, 2u);
    len = 5;
    EXPECT_EQ(SBufTakeSeg(&b, &len), data.data() + 2);
    EXPECT_EQ(len, 1u);
    EXPECT_EQ(b.readError, 0) << "taking less than asked for is no error";
    EXPECT_EQ(SBufNextByte(&b), 1);
    EXPECT_EQ(b.readError, 1);
    EXPECT_EQ(b.readLoc, b.dataEnd);

    b = readingBuffer(data.data(), 3);
    uint8_t target[4] = {9, 9, 9, 9};
    SBufCopySeg(&b, target, 4);
    EXPECT_EQ(toHex(target, 4), "01 02 03 09");
    EXPECT_EQ(b.readError, 1);
}

TEST(Buffer, ASegmentThatDoesNotFitLeavesNothing) {
    uint8_t block[4] = {9, 9, 9, 9};
    SBuf b = writingBuffer(block, 4);
    SBufPushSeg(&b, hex("01 02 03").data(), 3);
    SBufPushSeg(&b, hex("04 05").data(), 2);
    EXPECT_EQ(b.writeError, 1);
    EXPECT_EQ(toHex(block, 4), "09 01 02 03");
    SBufPushByte(&b, 7);
    EXPECT_EQ(toHex(block, 4), "07 01 02 03") << "what is smaller still goes in";
}

TEST(ErrorChannel, HandlersAreReplacedAndPutBack) {
    static int calls, severities;
    calls = severities = 0;
    const Asn1ErrorHandler counting = [](char*, int severity) { ++calls, severities += severity; };
    const Asn1ErrorHandler before = Asn1InstallErrorHandler(counting);
    EXPECT_EQ(before, &Asn1DefaultErrorHandler);
    char text[] = "text\n";
    Asn1Error(text);
    Asn1Warning(text);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(severities, 1) << "1 for an error, 0 for a warning";
    EXPECT_EQ(Asn1InstallErrorHandler(nullptr), counting);
    testing::internal::CaptureStderr();
    Asn1Error(text);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "text\n");
    EXPECT_EQ(Asn1InstallErrorHandler(before), &Asn1DefaultErrorHandler) << "null installs the default handler";
}

// Handlers have a char*: they may cut off the line feed, say, and keep the text until the next message.
TEST(ErrorChannel, HandlersMayWriteToTheText) {
    static char* kept;
    const Asn1ErrorHandler before = Asn1InstallErrorHandler([](char* text, int) {
        text[7] = 0;
        kept = text;
    });
    for (int i = 0; i < 2; ++i) {
        SBuf b = readingBuffer(nullptr, 0);
        AsnLen count = 0;
        jmp_buf env;
        if (setjmp(env) == 0) BDecTag(&b, &count, env);
        EXPECT_STREQ(kept, "BDecTag");
    }
    Asn1InstallErrorHandler(before);
}

} // namespace
