// Every type to JSON and back.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/json/support.h"
#include "tests/support/decoded.h"
#include "tests/support/hex.h"

namespace zyn::test {
namespace {

constexpr Taste tastes[] = {{50, 300, 4}, {100, 300, 4}, {0, 300, 4}};

// Runs check for samples of all types; it tells by an empty string that all is well.
template <typename Check> void forAllTypes(uint32_t seeds, Check&& check) {
    for (const Type& type : types) {
        ASSERT_TRUE(describe(type)) << type.name;
        for (uint32_t seed = 0; seed < seeds; ++seed) {
            Sampler sampler(seed + 1000 * static_cast<uint32_t>(type.id), tastes[seed % std::size(tastes)]);
            const std::string problem = check(type, sampler.make(type.id), seed);
            EXPECT_EQ(problem, "") << type.name << ", seed " << seed;
        }
        if (testing::Test::HasFailure()) return;
    }
}

// What differs between a record and the one that was made of its text: members, what appending to lists gives, the 0
// byte behind text, spare bits, octets on the wire. What comes back is the record as its receiver would have it.
std::string compare(const Type& type, const void* sent, const void* read) {
    const std::string found = difference(type.id, sent, read);
    if (!found.empty() || type.shape == Shape::Primitive) return found;
    Octets content = encodedContent(type.id, sent);
    if (encodedContent(type.id, read) != content) return "the octets differ";
    const Head head = takeHead(type, content);
    const Decoded received = decodedContent(type.id, head.tag, head.length, content);
    return ZynTreeEqual(describe(type), received.value, read) ? "" : "the tree differs from the one received";
}

TEST(JsonRoundTrips, AllTypes) {
    Json json;
    forAllTypes(12, [&](const Type& type, const void* value, uint32_t seed) -> std::string {
        for (const unsigned indent : {0u, seed % 5}) {
            const std::string text = json.write(describe(type), value, indent);
            const void* read = json.read(describe(type), text);
            if (!read) return json.error() + " in " + text;
            const std::string found = compare(type, value, read);
            if (!found.empty()) return found + " by " + text;
            if (json.write(describe(type), read, indent) != text) return "written otherwise the second time: " + text;
            if (indent == 0 && text.find('\n') != text.npos) return "more than a line";
        }
        return "";
    });
}

// The texts of a record's fields, each with its key.
std::vector<std::string> fieldTexts(Json& json, const ZynType* type, const void* record) {
    std::vector<std::string> texts;
    for (unsigned i = 0; i < type->fieldCount; ++i) {
        const ZynField& field = type->fields[i];
        const void* value = static_cast<const char*>(record) + field.offset;
        if (field.pointer) value = pointerIn(value);
        texts.push_back('"' + std::string(field.name) + "\":" + json.write(field.type, value));
    }
    return texts;
}

std::string objectOf(const std::vector<std::string>& fields) {
    std::string text = "{";
    for (const std::string& field : fields) text += (text.size() > 1 ? "," : "") + field;
    return text + '}';
}

TEST(JsonRoundTrips, FieldsStandInAnyOrder) {
    Json json;
    Random random(1);
    forAllTypes(2, [&](const Type& type, const void* value, uint32_t seed) -> std::string {
        if (type.shape != Shape::Sequence || seed % std::size(tastes) != 1) return "";
        std::vector<std::string> fields = fieldTexts(json, describe(type), value);
        std::shuffle(fields.begin(), fields.end(), random);
        const void* read = json.read(describe(type), objectOf(fields));
        return read ? compare(type, value, read) : json.error();
    });
}

TEST(JsonRoundTrips, EachFieldIsThereOnceOrNotAtAll) {
    Json json;
    forAllTypes(2, [&](const Type& type, const void* value, uint32_t seed) -> std::string {
        if (type.shape != Shape::Sequence || seed % std::size(tastes) != 1) return "";
        const ZynType* described = describe(type);
        const std::vector<std::string> fields = fieldTexts(json, described, value);
        for (unsigned i = 0; i < described->fieldCount; ++i) {
            const std::string name = described->fields[i].name;
            std::vector<std::string> without = fields, twice = fields;
            without.erase(without.begin() + i);
            twice.push_back(fields[i]);
            const void* read = json.read(described, objectOf(without));
            std::string expected;
            if (!described->fields[i].optional) {
                expected = "1:" + std::to_string(objectOf(without).size()) + ' ' + name + ": required field \"" + name +
                           "\" of " + type.name + " is missing";
            }
            if (json.error() != expected || (read != nullptr) != expected.empty())
                return "without " + name + ": " + json.error();
            const std::size_t column = objectOf(fields).size() + (fields.empty() ? 0 : 1);
            expected = "1:" + std::to_string(column) + ' ' + name + ": field \"" + name + "\" stands twice";
            if (json.read(described, objectOf(twice)) || json.error() != expected)
                return "twice " + name + ": " + json.error();
        }
        return "";
    });
}

} // namespace
} // namespace zyn::test
