// Values as text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "zyn/asn.h"

namespace {

template <typename Value> std::string printed(void (*print)(FILE*, Value*, unsigned short), Value value) {
    char* text = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&text, &size);
    print(f, &value, 7);
    std::fclose(f);
    std::string result(text, size);
    std::free(text);
    return result;
}

AsnOcts octets(std::string_view text) {
    return {static_cast<uint32_t>(text.size()), reinterpret_cast<uint8_t*>(const_cast<char*>(text.data()))};
}

TEST(Print, Values) {
    EXPECT_EQ(printed(PrintAsnInt, -5), "-5");
    EXPECT_EQ(printed(PrintAsnInt, INT32_MIN), "-2147483648");
    EXPECT_EQ(printed(PrintUAsnInt, 0xFFFFFFFFu), "4294967295");
    EXPECT_EQ(printed<AsnBool>(PrintAsnBool, 0), "FALSE");
    EXPECT_EQ(printed<AsnBool>(PrintAsnBool, 2), "TRUE");
    EXPECT_EQ(printed(PrintAsnReal, 1.5), "1.5");
    EXPECT_EQ(printed(PrintAsnReal, 1234567.0), "1.23457e+06");
    EXPECT_EQ(printed(PrintAsnReal, -0.0), "-0");
    EXPECT_EQ(printed(PrintAsnOcts, octets("")), "''H  -- \"\" --");
    EXPECT_EQ(printed<AsnOcts>(PrintAsnOcts, {9, nullptr}), "''H  -- \"\" --") << "an absent text has no octets";
    EXPECT_EQ(printed(PrintAsnOcts, octets("abc")), "'616263'H  -- \"abc\" --");
    using namespace std::string_view_literals;
    EXPECT_EQ(printed(PrintAsnOcts, octets("\0A"sv)), "'0041'H  -- \".A\" --");
    EXPECT_EQ(printed(PrintAsnOcts, octets("\n\x7f\x80\xff\"\\")), "'0a7f80ff225c'H  -- \"....\"\\\" --");
    uint8_t bits[] = {0xAB, 0xCF};
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {12, bits}), "'abcf'H") << "spare bits as they stand";
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {1, bits}), "'ab'H");
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {0, bits}), "''H");
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {-8, bits}), "''H");
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {8, nullptr}), "''H") << "an absent string has no bits";
    EXPECT_EQ(printed<AsnBits>(PrintAsnBits, {8, bits}), "'ab'H");
}

TEST(Print, LongStringsGoOutWhole) {
    std::string text, expected = "'";
    for (int i = 0; i < 10'000; ++i) {
        text += static_cast<char>('a' + i % 6);
        expected += "6" + std::to_string(1 + i % 6);
    }
    EXPECT_EQ(printed(PrintAsnOcts, octets(text)), expected + "'H  -- \"" + text + "\" --");
}

TEST(Print, DigitsAreReadAtEachUse) {
    char before[16];
    std::memcpy(before, numToHexCharTblG, 16);
    numToHexCharTblG[10] = 'A';
    EXPECT_EQ(printed(PrintAsnOcts, octets("\xaa")), "'AA'H  -- \".\" --");
    std::memcpy(numToHexCharTblG, before, 16);
    EXPECT_EQ(printed(PrintAsnOcts, octets("\xaa")), "'aa'H  -- \".\" --");
}

TEST(Print, Indentation) {
    for (const unsigned short width : {0, 1, 4, 65535}) {
        char* text = nullptr;
        size_t size = 0;
        FILE* f = open_memstream(&text, &size);
        Indent(f, width);
        std::fclose(f);
        EXPECT_EQ(std::string(text, size), std::string(width, ' '));
        std::free(text);
    }
}

} // namespace
