// Texts that are no records: where and how reading says so, and texts at random.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/json/support.h"

namespace zyn::test {
namespace {

struct Row {
    const char* type;
    std::string_view text;
    const char* error;
};

using namespace std::string_view_literals;

// "line:column path: sentence", counted from 1, columns in bytes.
const Row rows[] = {
    // What the schema does not have.
    {"ZynOrderId", R"({"orderNo":"1","speed":5})", R"(1:16 : unknown field "speed" in ZynOrderId)"},
    {"ZynOrderId", R"({"orderNo":"1","OrderNo":5})", R"(1:16 : unknown field "OrderNo" in ZynOrderId)"},
    {"ZynOrderId", "{\"a\\u0000b\\nlonger than what is shown of a name\":1}",
     R"(1:2 : unknown field "a?b?longer than what is shown of a name" in ZynOrderId)"},
    {"ZynOrderId", R"({"a name of more than forty characters, of which that many are shown":1})",
     R"(1:2 : unknown field "a name of more than forty characters, of..." in ZynOrderId)"},
    {"ZynTransReq", R"({"userId":"U","upTransMsg":{"orderEnter":{}}})",
     R"(1:29 upTransMsg: unknown alternative "orderEnter" of ZynTransReqChoice)"},
    // What it asks for.
    {"ZynOrderId", "{\n  \"speedIndex\": 5\n}", R"(3:1 orderNo: required field "orderNo" of ZynOrderId is missing)"},
    {"ZynOrderId", "{}", R"(1:2 orderNo: required field "orderNo" of ZynOrderId is missing)"},
    {"ZynTransReq", R"({"userId":"U","upTransMsg":{"order":{"order":{"secBoardId":{"boardId":"MAIN"}}}}})",
     R"(1:77 upTransMsg.order.order.secBoardId.secCode: required field "secCode" of ZynSecOptBoardId is missing)"},
    {"ZynTransReq", R"({"userId":"U","upTransMsg":{}})", "1:29 upTransMsg: no alternative is there"},
    // What is there too often.
    {"ZynOrderId", R"({"orderNo":"1","orderNo":"1"})", R"(1:16 orderNo: field "orderNo" stands twice)"},
    {"ZynTransRep", R"({"null":{},"replyOK":{}})",
     R"(1:12 null: only one alternative can be there, found "replyOK" as well)"},
    {"ZynTransRep", R"({"null":{},"null":{}})",
     R"(1:12 null: only one alternative can be there, found "null" as well)"},
    {"AsnOcts", R"({"hex":"00","hex":"01"})", R"(1:13 : "hex" stands twice)"},
    // Values of another type.
    {"AsnInt", "true", "1:1 : expected an integer, found true"},
    {"AsnInt", " \"1\"", "1:2 : expected an integer, found a string"},
    {"AsnEnum", "[1]", "1:1 : expected an integer, found an array"},
    {"AsnInt", "1.0", R"(1:1 : expected an integer, found "1.0")"},
    {"AsnInt", "1e2", R"(1:1 : expected an integer, found "1e2")"},
    {"AsnBool", "1", "1:1 : expected true or false, found a number"},
    {"AsnBool", "null", "1:1 : expected true or false, found null"},
    {"AsnReal", "false", R"(1:1 : expected a number, "NaN", "Infinity" or "-Infinity", found false)"},
    {"AsnReal", R"("Inf")", R"(1:1 : expected a number, "NaN", "Infinity" or "-Infinity", found "Inf")"},
    {"AsnOcts", "7", R"(1:1 : expected a string or {"hex": "..."}, found a number)"},
    {"AsnBits", R"("1010")", R"(1:1 : expected {"bits": "..."}, found a string)"},
    {"ZynOrderId", "[]", "1:1 : expected an object with the fields of ZynOrderId, found an array"},
    {"ZynOrderId", R"({"orderNo":null})", R"(1:12 orderNo: expected a string or {"hex": "..."}, found null)"},
    {"ZynTransRep", "1e999", "1:1 : expected an object with one alternative of ZynTransRep, found a number"},
    {"ZynIndexValRep", R"({"valuesList":{}})", "1:15 valuesList: expected an array, found an object"},
    {"ZynIndexValRepSetOf", "[\n {\"value\":{\"value\":1},\"high\":{\"value\":1},\"low\":{\"value\":1}},\n 7]",
     "3:2 [1]: expected an object with the fields of ZynIndexValRepSetOfSeq, found a number"},
    {"ZynIndexValRep", R"({"valuesList":[{"value":{"value":"x"}}]})",
     R"(1:34 valuesList[0].value.value: expected a number, "NaN", "Infinity" or "-Infinity", found "x")"},
    // Numbers out of their range.
    {"AsnInt", "2147483648", R"(1:1 : "2147483648" does not fit in 32 bits)"},
    {"AsnInt", "-2147483649", R"(1:1 : "-2147483649" does not fit in 32 bits)"},
    {"ZynOrderId", R"({"orderNo":"1", "speedIndex": 99999999999999999999})",
     R"(1:31 speedIndex: "99999999999999999999" does not fit in 32 bits)"},
    {"AsnReal", "1.8e308", R"(1:1 : "1.8e308" lies outside of what a REAL can be)"},
    {"AsnReal", "-1e400", R"(1:1 : "-1e400" lies outside of what a REAL can be)"},
    {"AsnReal", "1e-400", R"(1:1 : "1e-400" lies outside of what a REAL can be)"},
    // Octets and bits.
    {"AsnOcts", R"({"hex":"0g"})", "1:10 : expected a hexadecimal digit, found 'g'"},
    {"AsnOcts", R"({"hex":"0"})", "1:9 : an odd number of hexadecimal digits"},
    {"AsnOcts", R"({"hex":17})", "1:8 : expected a string, found a number"},
    {"AsnOcts", R"({"hex":{"hex":"00"}})", "1:8 : expected a string, found an object"},
    {"AsnOcts", "{}", R"(1:2 : "hex" is missing)"},
    {"AsnOcts", R"({"bits":"0"})", R"(1:2 : expected "hex", found "bits")"},
    {"AsnBits", R"({"bits":"0121"})", "1:12 : expected 0 or 1, found '2'"},
    {"AsnBits", R"({"spare":"0000"})", R"(1:16 : "bits" is missing)"},
    {"AsnBits", R"({"bits":"1010","spare":"001"})",
     R"(1:25 : "spare" must have the 4 bits that the last octet has left)"},
    {"AsnBits", R"({"bits":"10101010","spare":"00000000"})",
     R"(1:29 : "spare" must have the 0 bits that the last octet has left)"},
    {"AsnBits", R"({"hex":"00"})", R"(1:2 : expected "bits" or "spare", found "hex")"},
    {"ZynBoardRep", R"({"orderMethods":{"bits":"x"}})", "1:26 orderMethods: expected 0 or 1, found 'x'"},
    // Strings.
    {"AsnOcts", "\"ab\xFF\"", "1:4 : the string is not UTF-8"},
    {"AsnOcts", "\"\xED\xA0\x80\"", "1:2 : the string is not UTF-8"},
    {"ZynOrderId", "{\"orderNo\":\"\",\"\xC3\":1}", "1:16 orderNo: the string is not UTF-8"},
    {"AsnOcts", R"("\ud83d")", "1:2 : the string has a \\u escape that is half a surrogate pair"},
    {"AsnOcts", R"("\ud83d\u0041")", "1:2 : the string has a \\u escape that is half a surrogate pair"},
    {"AsnOcts", R"("a\ude00")", "1:1 : the string has a \\u escape that is half a surrogate pair"},
    {"AsnOcts", R"("a\u12g4")", "1:3 : expected four hexadecimal digits behind \\u"},
    {"AsnOcts", R"("a\x41")", "1:3 : no such escape in a string"},
    {"AsnOcts", "\"a\tb\"", "1:3 : a control character in a string has to be escaped, found byte 0x09"},
    {"AsnOcts", "\"a\x1F\"", "1:3 : a control character in a string has to be escaped, found byte 0x1f"},
    {"AsnOcts", "\"a\0b\""sv, "1:3 : a control character in a string has to be escaped, found byte 0x00"},
    {"AsnOcts", "\"abc", "1:5 : the text ends inside a string"},
    // No JSON.
    {"AsnInt", "", "1:1 : expected a value, found the end of the text"},
    {"AsnInt", " \n ", "2:2 : expected a value, found the end of the text"},
    {"AsnInt", "\0"sv, "1:1 : expected a value, found byte 0x00"},
    {"AsnInt", "7 8", "1:3 : expected nothing more behind the value, found '8'"},
    {"AsnInt", "7\n\0"sv, "2:1 : expected nothing more behind the value, found byte 0x00"},
    {"AsnInt", "07", "1:2 : expected nothing more behind the value, found '7'"},
    {"AsnInt", "+7", "1:1 : expected a value, found '+'"},
    {"AsnInt", "-", "1:2 : expected a value, found the end of the text"},
    {"AsnInt", "\xEF\xBB\xBF\x37", "1:1 : expected a value, found byte 0xef"},
    {"AsnReal", "1.", "1:3 : expected a digit behind the decimal point, found the end of the text"},
    {"AsnReal", "1e", "1:3 : expected a digit in the exponent, found the end of the text"},
    {"AsnReal", "NaN", "1:1 : expected a value, found 'N'"},
    {"AsnBool", "tru", "1:4 : expected a value, found the end of the text"},
    {"ZynOrderId", "{", "1:2 : expected a name in quotes, found the end of the text"},
    {"ZynOrderId", "{'orderNo':1}", "1:2 : expected a name in quotes, found '''"},
    {"ZynOrderId", "{\"orderNo\"\n\"1\"}", "2:1 orderNo: expected ':', found '\"'"},
    {"ZynOrderId", "{\"orderNo\":\"1\"]", "1:15 orderNo: expected ',' or '}', found ']'"},
    {"ZynOrderId", "{\"orderNo\":\"1\",}", "1:16 orderNo: expected a name in quotes, found '}'"},
    {"ZynOrderId", "{\"orderNo\":\"1\" // number", "1:16 orderNo: expected ',' or '}', found '/'"},
    {"ZynIndexValRepSetOf", "[", "1:2 : expected a value, found the end of the text"},
    {"ZynPricePointList", "[ ; ]", "1:3 : expected a value, found ';'"},
};

TEST(JsonWrong, LineColumnPathAndSentence) {
    Json json;
    for (const Row& row : rows) {
        const ZynType* type = ZynTypeByName(row.type);
        ASSERT_TRUE(type) << row.type;
        EXPECT_FALSE(json.read(type, row.text)) << row.text;
        EXPECT_EQ(json.error(), row.error) << row.type << ' ' << row.text;
    }
    EXPECT_TRUE(json.read(ZynTypeByName("AsnInt"), "1"));
    EXPECT_EQ(json.error(), "") << "the error of the read before";
}

// No text makes reading go deeper than the type: it stops where the first level too many starts.
TEST(JsonWrong, DeepTexts) {
    Json json;
    std::string lists(10'000'000, '['), objects, strings;
    for (unsigned i = 0; i < 1'000'000; ++i) objects += "{\"null\":", strings += "{\"hex\":";
    EXPECT_FALSE(json.read(ZynTypeByName("ZynIndexValRepSetOf"), lists));
    EXPECT_EQ(json.error(), "1:2 [0]: expected an object with the fields of ZynIndexValRepSetOfSeq, found an array");
    EXPECT_FALSE(json.read(ZynTypeByName("ZynTransRep"), objects));
    EXPECT_EQ(json.error(), "1:10 null: unknown field \"null\" in ZynNull");
    EXPECT_FALSE(json.read(ZynTypeByName("AsnOcts"), strings));
    EXPECT_EQ(json.error(), "1:8 : expected a string, found an object");
}

// What stands in a text, cut and changed at random, so that much of it still is JSON.
std::string damaged(const std::string& text, Random& random) {
    // clang-format off
    constexpr std::string_view pieces[] = {
        "{", "}", "[", "]", ",", ":", "\"", "\\", "-", "1e", "0", ".5", "null", "true", "\\ud", "\\u0000",
        "\n", "\x80", "\xC3", "\xFF", "\x1F", "{\"hex\":\"0", "{\"bits\":\"1"
    };
    // clang-format on
    std::string result = text;
    for (uint32_t n = 1 + below(random, 3); n > 0; --n) {
        const std::size_t at = below(random, result.size() + 1);
        switch (below(random, 5)) {
        case 0: result.erase(at, 1 + below(random, 8)); break;
        case 1: result.insert(at, pieces[below(random, std::size(pieces))]); break;
        case 2: result.insert(at, 1, static_cast<char>(random())); break;
        case 3: result.insert(at, text.substr(below(random, text.size()), below(random, 40))); break;
        default: result.resize(at); break;
        }
    }
    return result;
}

// Whatever is read is written as it was read; whatever is refused is refused at a place of the text, with a sentence.
TEST(JsonWrong, DamagedTexts) {
    Json json, again;
    Random random(7);
    unsigned taken = 0, refused = 0;
    for (const Type& type : types) {
        for (uint32_t seed = 0; seed < 3; ++seed) {
            const std::string text = json.write(describe(type), Sampler(seed, {60, 30, 2}).make(type.id), seed);
            for (unsigned i = 0; i < 100; ++i) {
                const std::string changed = damaged(text, random);
                if (const void* read = json.read(describe(type), changed)) {
                    ++taken;
                    const std::string written = json.write(describe(type), read);
                    const void* copy = again.read(describe(type), written);
                    ASSERT_TRUE(copy && ZynTreeEqual(describe(type), read, copy)) << changed << '\n' << written;
                    continue;
                }
                ++refused;
                ZynJsonError error;
                ASSERT_TRUE(json.error(error));
                ASSERT_NE(error.text[0], 0);
                const auto lines = 1 + std::count(changed.begin(), changed.end(), '\n');
                ASSERT_TRUE(error.line >= 1 && error.line <= lines) << changed << '\n' << json.error();
                std::size_t start = 0;
                for (uint32_t line = 1; line < error.line; ++line) start = changed.find('\n', start) + 1;
                const std::size_t end = std::min(changed.find('\n', start), changed.size());
                ASSERT_TRUE(error.column >= 1 && start + error.column - 1 <= end) << changed << '\n' << json.error();
            }
        }
    }
    EXPECT_GT(taken, 1000u);
    EXPECT_GT(refused, 10000u);
}

} // namespace
} // namespace zyn::test
