// Text as callers have it against text as it travels.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "zyn/zyn.h"

namespace {

TEST(TextSet, TrimsBlanksAtTheEndAndNothingElse) {
    struct Row {
        const char* text;
        int32_t length;
        uint32_t expected;
        const char* reason;
    };
    const Row rows[] = {
        {"", 0, 0, "an empty text is present"},
        {"AB  ", 0, 2, "length 0 looks for the closing 0, then trims"},
        {"            ", 12, 0, "blanks alone end up present and empty"},
        {"A B C", 5, 5, "a blank in the middle stays"},
        {"  AB", 4, 4, "leading blanks stay"},
        {"AB\t", 3, 3, "a tab is no blank"},
        {"ABCDEFGHIJKLMNOP", 12, 12, "exactly length bytes are looked at"},
        {"AB", 1, 1, "one of them too"},
        {"AB\0\0  ", 6, 4, "a 0 byte inside the length is a character"},
    };
    for (const Row& row : rows) {
        AsnOcts v{99, nullptr};
        ZynTextStrSet(&v, row.text, row.length);
        EXPECT_EQ(ZynTextStrGetLen(&v), row.expected) << row.reason;
        EXPECT_EQ(static_cast<const void*>(v.octs), row.text) << row.reason << ": the text is pointed at, not copied";
        EXPECT_EQ(ZynTextStrIsNull(&v), 0) << row.reason;
    }
}

TEST(TextGet, CutsAndPads) {
    struct Row {
        const char* text;
        int32_t width;
        const char* expected;
    };
    const Row rows[] = {
        {"ABCDEF", 4, "ABCD"}, {"AB", 1, "A"},   {"AB", 4, "AB  "}, {"ABCDEF", 0, "ABCDEF"}, {"ABCDEF", -1, "ABCDEF"},
        {nullptr, 3, "   "},   {nullptr, 0, ""}, {"", 2, "  "},     {"ABCD", 4, "ABCD"},
    };
    for (const Row& row : rows) {
        uint8_t other = 'X';
        AsnOcts v{1, &other};
        if (row.text) ZynTextStrSet(&v, row.text, 0);
        else ZynTextStrSetNull(&v);
        EXPECT_EQ(ZynTextStrIsNull(&v), row.text == nullptr);
        EXPECT_EQ(ZynTextStrGetLen(&v), row.text ? std::strlen(row.text) : 0);
        const std::string expected = row.expected;
        std::string dest(16, '#');
        EXPECT_EQ(ZynTextStrGet(&v, dest.data(), row.width), static_cast<int32_t>(expected.size()));
        EXPECT_EQ(dest, expected + std::string(16 - expected.size(), '#')) << "no byte behind the text is touched";
    }
}

TEST(TextGet, TheLengthOfAnAbsentTextDoesNotCount) {
    AsnOcts v{7, nullptr};
    char dest[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(ZynTextStrGet(&v, dest, 2), 2);
    EXPECT_EQ(std::string(dest, 4), "  ##");
    EXPECT_EQ(ZynTextStrGet(&v, dest, 0), 0);
}

} // namespace
