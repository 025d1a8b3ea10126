#include "json/read.h"

#include "json/handler.h"

namespace zyn::json {
namespace {

// Numbers come as they are spelled, and strings are decoded where they stand.
constexpr unsigned flags = rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag;

// The parser counts digits in 32 bits.
constexpr std::size_t longestText = std::size_t{1} << 30;

// The 0 byte that ends the text for the parser, and what is read behind it in words.
constexpr std::size_t padding = 8;

// What the parser itself refuses, at a place of the text.
std::string sentenceFor(rapidjson::ParseErrorCode code, std::string_view text, std::size_t offset) {
    const std::string found = ", found " + foundAt(text, offset);
    switch (code) {
    case rapidjson::kParseErrorDocumentRootNotSingular: return "expected nothing more behind the value" + found;
    case rapidjson::kParseErrorDocumentEmpty:
    case rapidjson::kParseErrorValueInvalid: return "expected a value" + found;
    case rapidjson::kParseErrorObjectMissName: return "expected a name in quotes" + found;
    case rapidjson::kParseErrorObjectMissColon: return "expected ':'" + found;
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket: return "expected ',' or '}'" + found;
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket: return "expected ',' or ']'" + found;
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex: return "expected four hexadecimal digits behind \\u";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
        return "the string has a \\u escape that is half a surrogate pair";
    case rapidjson::kParseErrorStringEscapeInvalid:
        return text[offset] == '\\' ? "no such escape in a string"
                                    : "a control character in a string has to be escaped" + found;
    case rapidjson::kParseErrorStringMissQuotationMark:
        return offset < text.size() ? "a control character in a string has to be escaped" + found
                                    : "the text ends inside a string";
    case rapidjson::kParseErrorNumberMissFraction: return "expected a digit behind the decimal point" + found;
    case rapidjson::kParseErrorNumberMissExponent: return "expected a digit in the exponent" + found;
    default: return "this is no JSON";
    }
}

} // namespace

void* Reading::read(const Plan& plan, std::string_view text) {
    arena.reset();
    if (frames.size() < plan.depth) frames.resize(plan.depth);
    wrong.reset();
    if (text.size() > longestText) {
        wrong = Wrong{0, "", "the text has more than " + std::to_string(longestText) + " bytes"};
        return nullptr;
    }
    if (copySize < text.size() + padding) {
        copySize = 0;
        copy = std::make_unique_for_overwrite<char[]>(2 * text.size() + padding);
        copySize = 2 * text.size() + padding;
    }
    std::memcpy(copy.get(), text.data(), text.size());
    std::memset(copy.get() + text.size(), 0, padding);

    const auto* octets = reinterpret_cast<const uint8_t*>(text.data());
    const TextFacts facts = {utf8Prefix(octets, text.size()), text.find('\\') != text.npos};
    Stream stream(copy.get());
    Handler handler(*this, plan, text, facts, stream);
    rapidjson::GenericReader<Characters, Characters> parser;
    const rapidjson::ParseResult result = parser.Parse<flags>(stream, handler);
    if (result.IsError()) {
        if (result.Code() == rapidjson::kParseErrorNumberTooBig) handler.refuseHugeNumber(result.Offset());
        else if (!wrong) handler.fail(result.Offset(), sentenceFor(result.Code(), text, result.Offset()));
        return nullptr;
    }
    // A 0 byte ends the text for the parser.
    if (stream.Tell() < text.size()) {
        handler.fail(stream.Tell(), sentenceFor(rapidjson::kParseErrorDocumentRootNotSingular, text, stream.Tell()));
        return nullptr;
    }
    return handler.rootValue;
}

} // namespace zyn::json
