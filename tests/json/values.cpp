// How single values are written, and what else is read as the same.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "tests/json/support.h"
#include "zyn/zyn.h"

namespace zyn::test {
namespace {

struct Spelling {
    const char* type;
    const char* written;
    const char* read; // another spelling; null: there is none
    const char* why;
};

constexpr Spelling spellings[] = {
    {"AsnInt", "0", "-0", "a number has no sign of its own at 0"},
    {"AsnInt", "2147483647", " \t\r\n2147483647 ", "the highest, between blanks"},
    {"AsnInt", "-2147483648", nullptr, "the lowest"},
    {"AsnEnum", "7", nullptr, "the schema gives values of an ENUMERATED no names"},
    {"AsnBool", "true", nullptr, ""},
    {"AsnBool", "false", nullptr, ""},
    {"AsnReal", "0", "0.0", ""},
    {"AsnReal", "-0", "-0.0e5", "the sign of 0 is kept"},
    {"AsnReal", "1", "1.000", ""},
    {"AsnReal", "100000", "1e5", "no exponent where people write none"},
    {"AsnReal", "-1204.5", "-12045e-1", ""},
    {"AsnReal", "0.1", "0.1000000000000000055511151231257827", "the shortest decimal that is the same double"},
    {"AsnReal", "999999999999999", nullptr, "15 digits"},
    {"AsnReal", "1e+15", "1000000000000000", "16 digits"},
    {"AsnReal", "99999999.999999", nullptr, ""},
    {"AsnReal", "0.30000000000000004", nullptr, "17 digits are needed"},
    {"AsnReal", "1e-07", "0.0000001", "seven decimal places"},
    {"AsnReal", "5e-324", "4.9e-324", "the smallest subnormal"},
    {"AsnReal", "2.2250738585072014e-308", nullptr, "the smallest normal"},
    {"AsnReal", "1.7976931348623157e+308", "17976931348623157e292", "the largest"},
    {"AsnReal", "\"NaN\"", "\"\\u004eaN\"", "no number of JSON"},
    {"AsnReal", "\"Infinity\"", nullptr, "no number of JSON"},
    {"AsnReal", "\"-Infinity\"", nullptr, "no number of JSON"},
    {"AsnOcts", "\"\"", "{\"hex\":\"\"}", "empty"},
    {"AsnOcts", "\" !~\"", "{\"hex\":\"20217E\"}", "the ends of what prints"},
    {"AsnOcts", "\"a\\\"b\\\\c/\"", "\"a\\u0022b\\u005cc\\/\"", "what has to be escaped, and what may be"},
    {"AsnOcts", "{\"hex\":\"00ff\"}", "{ \"hex\" : \"00Ff\" }", "no text"},
    {"AsnOcts", "{\"hex\":\"00\"}", "\"\\u0000\"", "a 0 byte is an octet as any other"},
    {"AsnOcts", "{\"hex\":\"410a\"}", "\"A\\n\"", "control character"},
    {"AsnOcts", "{\"hex\":\"1f\"}", "\"\\u001f\"", "the last one"},
    {"AsnOcts", "{\"hex\":\"7f\"}", "\"\x7F\"", "and another one"},
    {"AsnOcts", "{\"hex\":\"c280\"}", "\"\\u0080\"", "a control character in UTF-8"},
    {"AsnOcts", "{\"hex\":\"c29f\"}", "\"\xC2\x9F\"", "the last one"},
    {"AsnOcts", "\"\xC2\xA0\"", "\"\\u00a0\"", "the character behind it"},
    {"AsnOcts", "\"Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80\"", "\"Z\\u00fcrich \\u20AC \\ud83d\\ude00\"",
     "characters of 2, 3 and 4 octets"},
    {"AsnOcts", "\"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF4\x8F\xBF\xBF\"", nullptr,
     "round surrogates, and the last one"},
    {"AsnOcts", "{\"hex\":\"eda080\"}", nullptr, "a surrogate is no character"},
    {"AsnOcts", "{\"hex\":\"c0af\"}", nullptr, "longer than needed"},
    {"AsnOcts", "{\"hex\":\"e0809f\"}", nullptr, "longer than needed"},
    {"AsnOcts", "{\"hex\":\"f08f8080\"}", nullptr, "longer than needed"},
    {"AsnOcts", "{\"hex\":\"f4908080\"}", nullptr, "behind the last character"},
    {"AsnOcts", "{\"hex\":\"4142e2\"}", nullptr, "cut"},
    {"AsnOcts", "{\"hex\":\"41e28241\"}", nullptr, "cut by another one"},
    {"AsnOcts", "{\"hex\":\"80\"}", nullptr, "starts in the middle"},
    {"AsnBits", "{\"bits\":\"\"}", "{\"bits\":\"\",\"spare\":\"\"}", "empty"},
    {"AsnBits", "{\"bits\":\"1010\"}", "{\"spare\":\"0000\",\"bits\":\"1010\"}", "spare bits that are 0 are not told"},
    {"AsnBits", "{\"bits\":\"1010\",\"spare\":\"0001\"}", "{\"spare\":\"0001\",\"bits\":\"1010\"}", "one is set"},
    {"AsnBits", "{\"bits\":\"10000001\"}", nullptr, "a whole octet"},
    {"AsnBits", "{\"bits\":\"100000011\",\"spare\":\"1000000\"}", nullptr, "the first behind the last bit"},
    {"ZynTransReqChoice", "{\"userLogoff\":{}}", "{ \"userLogoff\" : { } }", "an alternative without fields"},
    {"ZynPricePointList", "[]", "[ ]", "no element"},
};

TEST(JsonValues, Spellings) {
    Json json;
    for (const Spelling& row : spellings) {
        SCOPED_TRACE(std::string(row.type) + ' ' + row.written + ' ' + row.why);
        const ZynType* type = ZynTypeByName(row.type);
        ASSERT_TRUE(type);
        for (const char* text : {row.written, row.read}) {
            if (!text) continue;
            const void* value = json.read(type, text);
            ASSERT_TRUE(value) << json.error();
            EXPECT_EQ(json.write(type, value), row.written) << text;
        }
    }
}

// Each octet in front of, between and behind plain ones: text of 1 to 20 octets is looked at in words that overlap.
TEST(JsonValues, OctetsAtEveryPlaceOfAText) {
    Json json;
    const ZynType* type = ZynTypeByName("AsnOcts");
    for (std::size_t length = 1; length <= 20; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            for (unsigned octet = 0; octet < 256; ++octet) {
                std::string octets(length, 'x');
                octets[at] = static_cast<char>(octet);
                AsnOcts sent{static_cast<uint32_t>(length), reinterpret_cast<uint8_t*>(octets.data())};
                const std::string text = json.write(type, &sent);
                const bool plain = octet >= 0x20 && octet < 0x7F;
                ASSERT_EQ(text.front(), plain ? '"' : '{') << text;
                ASSERT_EQ(text.size(), plain ? length + 2 + (octet == '"' || octet == '\\') : 2 * length + 10) << text;
                const void* read = json.read(type, text);
                ASSERT_TRUE(read && ZynTreeEqual(type, &sent, read)) << text;
            }
        }
    }
}

TEST(JsonValues, RealsReadBackToTheSameBits) {
    Json json;
    const ZynType* type = ZynTypeByName("AsnReal");
    std::mt19937_64 random(1);
    for (unsigned i = 0; i < 200'000; ++i) {
        const uint64_t bits = random();
        double value = std::bit_cast<double>(bits);                                        // any
        if (i % 4 == 1) value = static_cast<double>(bits >> 40) / std::pow(10, bits % 10); // prices
        if (i % 4 == 2)
            value = std::ldexp(static_cast<double>(bits >> 54), static_cast<int>(bits % 2100) - 1080); // few bits
        if (i % 4 == 3) value = static_cast<double>(static_cast<int64_t>(bits) >> bits % 64);          // whole numbers
        const std::string text = json.write(type, &value);
        const void* read = json.read(type, text);
        ASSERT_TRUE(read) << text << ' ' << json.error();
        const double found = *static_cast<const AsnReal*>(read);
        if (std::isnan(value)) {
            ASSERT_TRUE(std::isnan(found)) << text;
            continue;
        }
        ASSERT_EQ(std::bit_cast<uint64_t>(found), std::bit_cast<uint64_t>(value)) << text;
    }
}

// Records that cannot be sent are shown as far as they go. A null or broken value is null, which no read takes.
TEST(JsonValues, UnsetPlaces) {
    Json json;
    ZynTransReq request{};
    const ZynType* type = ZynTypeByName("ZynTransReq");
    EXPECT_EQ(json.write(type, &request), R"({"userId":"","upTransMsg":null})");
    ZynTransReqChoice choice{};
    request.upTransMsg = &choice;
    choice.choiceId = 99999;
    EXPECT_EQ(json.write(type, &request), R"({"userId":"","upTransMsg":null})") << "no alternative";
    choice.choiceId = 426;
    EXPECT_EQ(json.write(type, &request), R"({"userId":"","upTransMsg":{"order":null}})");
    EXPECT_EQ(json.write(type, nullptr), "null");
    AsnBits bits{-1, nullptr};
    EXPECT_EQ(json.write(ZynTypeByName("AsnBits"), &bits), "null");
    bits.bitLen = 8;
    EXPECT_EQ(json.write(ZynTypeByName("AsnBits"), &bits), "null");
    AsnOcts octets{1, nullptr};
    EXPECT_EQ(json.write(ZynTypeByName("AsnOcts"), &octets), "null");
    AsnListNode node{};
    AsnList list{&node, &node, &node, 1, sizeof(void*)};
    EXPECT_EQ(json.write(ZynTypeByName("ZynPricePointList"), &list), "[null]");
    const AsnBool loose = 2;
    EXPECT_EQ(json.write(ZynTypeByName("AsnBool"), &loose), "true");
}

} // namespace
} // namespace zyn::test
