// OCTET STRING and BIT STRING in both forms, and the operations on their values.
#include <gtest/gtest.h>

#include "tests/support/caught.h"
#include "tests/support/hex.h"
#include "zyn/codes.h"

namespace {

class Strings : public testing::Test {
protected:
    void SetUp() override { InitNibbleMem(8192, 1024); }
    void TearDown() override { ShutdownNibbleMem(); }

    // The octets of a decoded string with the counter and the place of the reader, or the code and the message.
    std::string octets(const std::vector<uint8_t>& message) {
        auto data = message;
        SBuf b = readingBuffer(data.data(), data.size());
        AsnLen counted = 0;
        AsnOcts v{};
        const Caught result = caught([&](jmp_buf env) { BDecAsnOcts(&b, &v, &counted, env); });
        EXPECT_TRUE(result.code != ZYN_E_OCTS_CUT || b.readLoc == b.dataEnd) << "what there is has been read";
        EXPECT_EQ(b.readError, b.readError != 0) << "a flag is 0 or 1";
        if (result.code) return std::to_string(result.code) + " " + (result.messages.empty() ? "" : result.messages[0]);
        EXPECT_EQ(v.octs[v.octetLen], 0) << "closed by a 0";
        EXPECT_EQ(b.readLoc - b.dataStart, counted);
        return toHex(v.octs, v.octetLen);
    }
    std::string bits(const std::vector<uint8_t>& message) {
        auto data = message;
        SBuf b = readingBuffer(data.data(), data.size());
        AsnLen counted = 0;
        AsnBits v{};
        const Caught result = caught([&](jmp_buf env) { BDecAsnBits(&b, &v, &counted, env); });
        EXPECT_TRUE(result.code != ZYN_E_BITS_CUT || b.readLoc == b.dataEnd) << "what there is has been read";
        EXPECT_EQ(b.readError, b.readError != 0) << "a flag is 0 or 1";
        if (result.code) return std::to_string(result.code) + " " + (result.messages.empty() ? "" : result.messages[0]);
        EXPECT_EQ(b.readLoc - b.dataStart, counted);
        EXPECT_NE(v.bits, nullptr);
        return std::to_string(v.bitLen) + ": " + toHex(v.bits, (static_cast<size_t>(v.bitLen) + 7) / 8);
    }
};

struct Row {
    const char* octets;
    const char* expected;
};

constexpr const char* octsCut = "-20 BDecOctetString: ERROR - decoded past end of data\n";
constexpr const char* pieceCut = "-18 BDecConsOctetString: ERROR - attempt to decode past end of data\n";
constexpr const char* pieceTag =
    "-19 BDecConsOctetString: ERROR - decoded non-OCTET STRING tag inside a constructed OCTET STRING\n";
constexpr const char* secondOctet = "-28 ERROR - second octet of EOC not zero\n";

TEST_F(Strings, OctetStrings) {
    const Row rows[] = {
        {"04 00", ""},
        {"04 03 41 42 43", "41 42 43"},
        {"04 81 01 41", "41"},
        {"04 04 41 42 43", octsCut},
        {"04 80 41 00 00", octsCut},
        {"04 84 FF FF FF FE 41", octsCut},
        {"24 80 04 02 41 42 04 01 43 00 00", "41 42 43"},
        {"24 07 04 02 41 42 04 01 43", "41 42 43"},
        {"24 09 24 04 04 02 41 42 04 01 43", "41 42 43"},
        {"24 80 24 80 04 01 41 00 00 24 00 04 00 04 01 42 00 00", "41 42"},
        {"24 00", ""},
        {"24 80 00 00", ""},
        {"24 80 02 01 05", pieceTag},
        {"24 05 00 00 00 00 00", pieceTag},
        {"24 03 03 01 00", pieceTag},
        {"24 80 00 01", secondOctet},
        {"24 80 00", secondOctet},
        {"24 80 04 05 41 42", pieceCut},
        {"24 80 04 80 41 42", pieceCut},
        {"24 80 04 84 FF FF FF FE", pieceCut},
        {"24 80", "-26 BDecTag: ERROR - decoded past the end of data\n"},
        {"24 80 24", "-13 BDecLen: ERROR - decoded past end of data\n"},
        {"03 01 00", "-40 BDecAsnOcts: ERROR - wrong tag on OCTET STRING.\n"},
    };
    for (const Row& row : rows) EXPECT_EQ(octets(hex(row.octets)), row.expected) << row.octets;
}

TEST_F(Strings, ComponentsMayRunOverADefiniteEnd) {
    auto data = hex("24 03 04 02 41 42");
    SBuf b = readingBuffer(data.data(), data.size());
    AsnLen counted = 0;
    AsnOcts v{};
    EXPECT_EQ(caught([&](jmp_buf env) { BDecAsnOcts(&b, &v, &counted, env); }).code, 0);
    EXPECT_EQ(counted, 6u) << "the excess shows in the count";
}

TEST_F(Strings, BitStrings) {
    const char* notLast = "-1 FillBitStringStk: ERROR - a component of a constructed BIT STRING that is not the last "
                          "has non-zero unused bits\n";
    const char* cut = "-4 BDecAsnBitsContent: ERROR - decoded past end of data\n";
    const char* componentCut = "-2 FillBitStringStk: ERROR - expecting more data\n";
    const char* componentTag =
        "-3 FillBitStringStk: ERROR - decoded non-BIT STRING tag inside a constructed BIT STRING\n";
    const char* unused = "-43 BDecAsnBitsContent: ERROR - impossible count of unused bits\n";
    const Row rows[] = {
        {"03 02 04 F0", "4: F0"},
        {"03 01 00", "0: "},
        {"03 03 04 AB CF", "12: AB CF"}, // spare bits are carried along
        {"03 00", "-42 BDecAsnBitsContent: ERROR - BIT STRING without content\n"},
        {"03 02 08 F0", unused},
        {"03 01 01", unused},
        {"03 03 08 F0", cut},
        {"03 80 00 00 00", cut},
        {"03 84 FF FF FF FE 00", cut},
        {"23 80 03 02 00 AB 03 02 04 C0 00 00", "12: AB C0"},
        {"23 80 03 02 04 AB 03 02 00 C0 00 00", notLast},
        {"23 80 23 04 03 02 04 AB 03 02 00 C0 00 00", notLast},
        {"23 80 23 04 03 02 00 AB 03 02 04 C0 00 00", "12: AB C0"},
        {"23 80 03 00 03 02 04 C0 00 00", "4: C0"}, // an empty component has no count
        {"23 80 03 02 04 C0 03 00 00 00", notLast},
        {"23 80 03 02 09 C0 00 00", unused},
        {"23 80 03 01 03 00 00", unused},
        {"23 00", "0: "},
        {"23 80 00 00", "0: "},
        {"23 80 04 01 00", componentTag},
        {"23 80 00 01", secondOctet},
        {"23 80 03 05 00 AB", componentCut},
        {"23 80 03 02 09", componentCut},
        {"23 80 03 01", "-26 BDecTag: ERROR - decoded past the end of data\n"},
        {"04 01 00", "-40 BDecAsnBits: ERROR - wrong tag on BIT STRING.\n"},
    };
    for (const Row& row : rows) EXPECT_EQ(bits(hex(row.octets)), row.expected) << row.octets;
    EXPECT_EQ(bits(hex("23 80 03 02 04 C0 00 00")), "4: C0") << "each string starts its count of unused bits afresh";
}

TEST_F(Strings, Encoding) {
    uint8_t octetsAB[] = {0xAB, 0xC0};
    const auto encode = [](AsnBits v) {
        uint8_t block[16];
        SBuf b = writingBuffer(block, sizeof block);
        const AsnLen length = BEncAsnBits(&b, &v);
        return b.writeError == 1 ? std::string("writeError") : toHex(b.dataStart, length);
    };
    EXPECT_EQ(encode({12, octetsAB}), "03 03 04 AB C0");
    EXPECT_EQ(encode({8, octetsAB}), "03 02 00 AB");
    EXPECT_EQ(encode({0, octetsAB}), "03 01 00");
    EXPECT_EQ(encode({0, nullptr}), "03 01 00");
    EXPECT_EQ(encode({-1, octetsAB}), "writeError");
    EXPECT_EQ(encode({1, nullptr}), "writeError");
    uint8_t block[16];
    SBuf b = writingBuffer(block, sizeof block);
    AsnOcts empty{0, nullptr}, missing{1, nullptr};
    EXPECT_EQ(BEncAsnOcts(&b, &empty), 2u);
    EXPECT_EQ(b.writeError, 0);
    BEncAsnOcts(&b, &missing);
    EXPECT_EQ(b.writeError, 1);
}

TEST_F(Strings, WithoutAnArenaThereIsNoMemory) {
    ShutdownNibbleMem();
    EXPECT_EQ(octets(hex("04 01 41")), "-27 ");
    EXPECT_EQ(bits(hex("03 02 00 41")), "-27 ");
}

// A buffer that has failed stays so, even where octets follow.
TEST_F(Strings, AFailedBufferGivesNothing) {
    auto data = hex("00 00 04 01 41");
    const auto code = [&](auto decode) {
        SBuf b = readingBuffer(data.data(), data.size());
        b.readError = 1;
        AsnLen counted = 0;
        AsnOcts v{};
        return caught([&](jmp_buf env) { decode(&b, &v, &counted, env); }).code;
    };
    EXPECT_EQ(code([](SBuf* b, AsnOcts*, AsnLen* n, jmp_buf env) { BDecEoc(b, n, env); }), -16);
    EXPECT_EQ(
        code([](SBuf* b, AsnOcts* v, AsnLen* n, jmp_buf env) { BDecAsnOctsContent(b, 0x24000000, 5, v, n, env); }),
        -26);
    EXPECT_EQ(
        code([](SBuf* b, AsnOcts* v, AsnLen* n, jmp_buf env) { BDecAsnOctsContent(b, 0x04000000, 5, v, n, env); }),
        -20);
}

TEST_F(Strings, TheStackGrowsInStepsAndStays) {
    std::string pieces;
    for (int i = 0; i < 200; ++i) pieces += "04 01 41 ";
    const auto message = hex("24 80 " + pieces + "00 00");
    std::string expected = "41";
    for (int i = 1; i < 200; ++i) expected += " 41";
    EXPECT_EQ(octets(message), expected);
    EXPECT_EQ(strStkG.numElmts, 256u);
    EXPECT_EQ(octets(hex("24 80 04 01 42 00 00")), "42");
    EXPECT_EQ(strStkG.numElmts, 256u) << "and stays there";
}

TEST_F(Strings, AnyDepthAndAnyNumberOfPieces) {
    constexpr size_t levels = 1'000'000;
    std::vector<uint8_t> nested;
    for (size_t i = 0; i < levels; ++i) nested.insert(nested.end(), {0x24, 0x80});
    nested.insert(nested.end(), {0x04, 0x01, 0x41});
    auto cut = nested;
    nested.resize(nested.size() + 2 * levels); // 00 00 for each level
    EXPECT_EQ(octets(nested), "41");
    EXPECT_EQ(octets(cut).substr(0, 3), "-26");
    std::vector<uint8_t> many{0x24, 0x80};
    for (size_t i = 0; i < levels; ++i) many.insert(many.end(), {0x04, 0x00});
    many.insert(many.end(), {0x04, 0x01, 0x42, 0x00, 0x00});
    EXPECT_EQ(octets(many), "42");
}

TEST(BitOperations, StayInsideTheString) {
    uint8_t octets[] = {0x00, 0x0F};
    AsnBits v{12, octets};
    SetAsnBit(&v, 0);
    SetAsnBit(&v, 11);
    EXPECT_EQ(toHex(octets, 2), "80 1F");
    EXPECT_EQ(GetAsnBit(&v, 0), 0x80);
    EXPECT_EQ(GetAsnBit(&v, 11), 0x10);
    ClrAsnBit(&v, 0);
    ClrAsnBit(&v, 11);
    EXPECT_EQ(toHex(octets, 2), "00 0F");
    for (const uint32_t beyond : {12u, 15u, 4000000000u}) {
        SetAsnBit(&v, beyond);
        ClrAsnBit(&v, beyond);
        EXPECT_EQ(GetAsnBit(&v, beyond), 0) << beyond;
    }
    for (const int32_t none : {0, -1, INT32_MIN}) {
        v.bitLen = none;
        SetAsnBit(&v, 0);
        EXPECT_EQ(GetAsnBit(&v, 3), 0) << none;
    }
    FreeAsnBits(&v);
    AsnOcts text{2, octets};
    FreeAsnOcts(&text);
    EXPECT_EQ(text.octs, octets) << "what lies in an arena, or is a caller's own, is not given back one by one";
    EXPECT_EQ(toHex(octets, 2), "00 0F");
}

TEST(Equivalence, AllBitsAndNoOthers) {
    struct Pair {
        int32_t len1;
        std::vector<uint8_t> bits1;
        int32_t len2;
        std::vector<uint8_t> bits2;
        int equal;
    };
    Pair rows[] = {
        {0, {0xFF}, 0, {0x00}, 1},
        {8, {0xAB}, 8, {0xAB}, 1},
        {8, {0xAB}, 7, {0xAB}, 0},
        {4, {0xAF}, 4, {0xA0}, 1},
        {5, {0xAF}, 5, {0xA0}, 0},
        {12, {0x11, 0xAF}, 12, {0x11, 0xA0}, 1},
        {12, {0x11, 0xA0}, 12, {0x12, 0xA0}, 0},
        {12, {0x11, 0xB0}, 12, {0x11, 0xA0}, 0},
        {1, {0x80}, 1, {0x00}, 0},
    };
    for (Pair& row : rows) {
        AsnBits b1{row.len1, row.bits1.data()}, b2{row.len2, row.bits2.data()};
        EXPECT_EQ(AsnBitsEquiv(&b1, &b2), row.equal) << row.len1 << " bits of " << toHex(row.bits1);
    }
    uint8_t text[] = "ABC", other[] = "ABD";
    AsnOcts abc{3, text}, ab{2, text}, abd{3, other}, empty{0, text}, null{0, nullptr};
    EXPECT_EQ(AsnOctsEquiv(&abc, &abc), 1);
    EXPECT_EQ(AsnOctsEquiv(&abc, &ab), 0);
    EXPECT_EQ(AsnOctsEquiv(&abc, &abd), 0);
    EXPECT_EQ(AsnOctsEquiv(&empty, &null), 1);
}

} // namespace
