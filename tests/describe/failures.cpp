// Messages of every alternative, broken at every element in every way that has a known outcome: code, place in the schema,
// path and offset of the failure have to be right, by both ways to call a Decode.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/describe/located.h"
#include "tests/support/hex.h"
#include "zyn/zyn.h"

namespace zyn::test {
namespace {

void ignore(char*, int) {}

struct Expected {
    int32_t code;
    const Type* record;
    std::string field;
    std::string path;
    std::size_t offset;
    std::string text; // part of it
};

struct Message {
    const Channel& channel;
    const Alternative& alternative;
    Octets octets;
    std::vector<Located> elements;
};

std::vector<Message> messages(unsigned presentPercent = 100) {
    std::vector<Message> all;
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            Sampler sampler(row.number, {.presentPercent = presentPercent, .longestText = 12, .longestList = 2});
            const Octets octets = messageOf(channel, "TRADER01    ", sampler.make(channel.choice, row));
            all.push_back({channel, row, octets, elementsOf(channel.message, octets)});
        }
    }
    return all;
}

class Failures : public testing::Test {
protected:
    void SetUp() override { handler = Asn1InstallErrorHandler(ignore); }
    void TearDown() override { Asn1InstallErrorHandler(handler); }

    void expect(const Message& message, const Octets& octets, const Expected& expected, const std::string& what) {
        alignas(8) uint8_t envelope[64];
        const std::unique_ptr<uint8_t[]> copy(new uint8_t[octets.size()]);
        std::copy(octets.begin(), octets.end(), copy.get());
        const int32_t code = message.channel.decode(copy.get(), static_cast<uint32_t>(octets.size()), envelope);
        ZynFailure failure = {};
        const int told = ZynLastFailure(&failure);
        ++tried;
        const bool same = told == 1 && code == expected.code && failure.code == code && failure.path == expected.path &&
                          failure.record == std::string(expected.record->name) && failure.field == expected.field &&
                          failure.module == std::string(expected.record->module) && failure.offset == expected.offset &&
                          std::string(failure.text).find(expected.text) != std::string::npos;
        if (same || ++problems > 20) return;
        ADD_FAILURE() << message.alternative.name << ", " << what << ": code " << code << ", told " << told << ", "
                      << failure.module << "." << failure.record << "." << failure.field << " at " << failure.offset
                      << ", path " << failure.path << ": " << failure.text << "\ninstead of " << expected.code << ", "
                      << expected.record->name << "." << expected.field << " at " << expected.offset << ", path "
                      << expected.path << ": " << expected.text << "\n"
                      << toHex(octets);
    }

    std::size_t tried = 0, problems = 0;
    Asn1ErrorHandler handler = nullptr;
};

// The path without its last part.
std::string above(const Located& e) {
    const std::size_t cut = e.path.find_last_of(".[");
    return cut == std::string::npos ? "" : e.path.substr(0, cut);
}

// What a code of the run-time in a value names: the field or alternative; for an element of a list, which is no record, the
// field that the list stands in.
Expected inValue(int32_t code, const Message& message, const Located& e, std::size_t offset, const std::string& text) {
    if (e.record->shape != Shape::SetOf) return {code, e.record, e.name(), e.path, offset, text};
    const auto owner = std::ranges::find(message.elements, above(e), &Located::path);
    return {code, owner->record, owner->name(), e.path, offset, text};
}

// The same in a tag or length. As long as these are read, an alternative is not known to be that one: the field is named that
// it stands in, or the alternative round it, or the message alone.
Expected inHeader(int32_t code, const Message& message, const Located& e, std::size_t offset, const std::string& text) {
    if (e.record->shape != Shape::Choice) return inValue(code, message, e, offset, text);
    if (e.start == 0) return {code, e.record, "", "", offset, text};
    return inValue(code, message, *std::ranges::find(message.elements, above(e), &Located::path), offset, text);
}

// Where the length of an element stands.
std::size_t lengthOf(const Message& message, const Located& e) {
    return e.start + tagOctets(headerAt(message.octets, e.start).tag);
}

// A tag that no record has: the next required field is missing, or nothing may stand there any more.
TEST_F(Failures, OfAWrongTag) {
    for (const Message& message : messages()) {
        for (const Located& e : message.elements) {
            Octets broken = message.octets;
            broken[e.start] = 0x1E;
            const Type& record = *e.record;
            const std::string found = "found [UNIVERSAL 30] (1E)";
            // The octets of a longer tag that are left behind it are not looked at: only the first one is read.
            if (record.shape == Shape::SetOf) {
                expect(message, broken, {siteCode(record, Site::Only), &record, "", e.path, e.start, found}, "tag");
            } else if (record.shape == Shape::Choice) {
                // The alternative of a field: the field itself is not there. Otherwise the CHOICE refuses it.
                const auto field = std::ranges::find_if(message.elements, [&](const Located& other) {
                    return other.start == e.start && other.kind == Kind::Choice &&
                           other.record->shape == Shape::Sequence;
                });
                if (field != message.elements.end()) continue; // tested as that field
                expect(message, broken, {siteCode(record, Site::Only), &record, "", above(e), e.start, found}, "tag");
            } else {
                std::size_t next = e.index;
                while (next < record.fields.size() && record.fields[next].optional) ++next;
                if (next == record.fields.size()) {
                    expect(message, broken, {siteCode(record, Site::Stray), &record, "", above(e), e.start, found},
                           "tag");
                } else {
                    const Field& required = record.fields[next];
                    const std::string path = (above(e).empty() ? "" : above(e) + ".") + required.name;
                    expect(message, broken,
                           {siteCode(record, Site::FieldTag, next), &record, required.name, path, e.start,
                            "for " + std::string(required.name) + ", " + found},
                           "tag");
                }
                if (record.fields[e.index].wrapped) {
                    broken = message.octets;
                    broken[e.content] = 0x1E;
                    expect(message, broken,
                           {siteCode(record, Site::InnerTag, e.index), &record, e.name(), e.path, e.content,
                            "expected INTEGER (02) inside " + e.name() + ", " + found},
                           "inner tag");
                }
            }
        }
    }
    EXPECT_GT(tried, 2000u);
}

// A record that says one octet less or more than its fields take.
TEST_F(Failures, OfALengthThatDoesNotAddUp) {
    const auto tryLength = [&](const Message& message, const Type& type, const std::string& path, std::size_t content,
                               std::size_t end) {
        if (type.shape != Shape::Sequence || type.fields.empty()) return;
        for (const int change : {-1, 1}) {
            Octets broken = message.octets;
            uint8_t& low = broken[content - 1]; // the last octet of the length
            const bool shortForm = end - content < 0x80;
            if ((change > 0 && low == (shortForm ? 0x7F : 0xFF)) || (change < 0 && low == 0)) continue;
            low = static_cast<uint8_t>(low + change);
            const std::size_t length = end - content;
            const std::size_t offset = std::min(end + static_cast<std::size_t>(change), broken.size());
            expect(message, broken,
                   {siteCode(type, Site::Length), &type, "", path, offset,
                    "to take " + std::to_string(length + static_cast<std::size_t>(change)) +
                        " octets, as its length says, found " + std::to_string(length)},
                   change > 0 ? "longer" : "shorter");
        }
    };
    for (const Message& message : messages()) {
        if (message.channel.isRequest()) {
            const Header header = headerAt(message.octets, 0);
            tryLength(message, typeOf(message.channel.message), "", header.content, header.end);
        }
        for (const Located& e : message.elements) {
            if (e.kind == Kind::Sequence) tryLength(message, *e.type, e.path, e.content, e.end);
        }
    }
    EXPECT_GT(tried, 1000u);
}

// A record without fields that has some content: the octet is taken from what follows.
TEST_F(Failures, OfContentInAnEmptyRecord) {
    for (const Message& message : messages()) {
        const Located& last = message.elements.back();
        if (last.kind != Kind::Sequence || !last.type->fields.empty()) continue;
        Octets broken = message.octets;
        broken[last.content - 1] = 1;
        expect(message, broken,
               {siteCode(*last.type, Site::Only), last.type, "", last.path, last.start, "expected no content in"},
               "content");
    }
    EXPECT_GT(tried, 5u);
}

// The message ends: inside each tag, length and value. Only a REAL that is cut is noticed later.
TEST_F(Failures, OfDataThatEnd) {
    for (const Message& message : messages()) {
        for (const Located& e : message.elements) {
            for (std::size_t cut = e.start; cut < e.end; ++cut) {
                const bool constructed = isConstructed(e.kind) || (e.field() && e.field()->wrapped);
                if (cut >= e.content && (constructed || e.kind == Kind::Real)) continue;
                const Octets broken(message.octets.begin(), message.octets.begin() + static_cast<std::ptrdiff_t>(cut));
                const std::string what = "cut at " + std::to_string(cut), found = "the end of the data";
                if (cut >= e.content) {
                    const int32_t code = e.kind == Kind::Int    ? ZYN_E_INT_CUT
                                         : e.kind == Kind::Bool ? ZYN_E_BOOL_CUT
                                         : e.kind == Kind::Bits ? ZYN_E_BITS_CUT
                                                                : ZYN_E_OCTS_CUT;
                    expect(message, broken, inValue(code, message, e, cut, found), what);
                } else {
                    const std::size_t length = lengthOf(message, e);
                    const int32_t code = cut < length    ? ZYN_E_TAG_MISSING
                                         : cut == length ? ZYN_E_LENGTH_MISSING
                                                         : ZYN_E_LENGTH_CUT;
                    expect(message, broken, inHeader(code, message, e, cut, found), what);
                }
            }
        }
    }
    EXPECT_GT(tried, 10'000u);
}

// Contents and lengths that the run-time refuses, whatever stands round them.
TEST_F(Failures, OfValues) {
    std::vector<Message> all = messages();
    const std::size_t whole = all.size();
    std::ranges::move(messages(50), std::back_inserter(all));
    for (const Message& message : all) {
        const bool isWhole = &message < &all[whole];
        for (const Located& e : message.elements) {
            const std::size_t lengthAt = lengthOf(message, e);
            const auto broken = [&](std::size_t place, uint8_t octet, int32_t code, std::size_t offset,
                                    const char* what) {
                Octets octets = message.octets;
                octets[place] = octet;
                const auto& expected = code == ZYN_E_LENGTH_TOO_LONG ? inHeader : inValue;
                expect(message, octets, expected(code, message, e, offset, ZynFailureText(nullptr, code)), what);
            };
            broken(lengthAt, 0x85, ZYN_E_LENGTH_TOO_LONG, e.start, "length of five octets");
            if (isWhole && e.end - e.start >= 3) { // else the field might be one of those left out before it
                Octets octets = message.octets;
                std::fill_n(octets.begin() + static_cast<std::ptrdiff_t>(e.start), 3, uint8_t{0xFF});
                const char* found = "found octets FF FF FF";
                expect(message, octets, inHeader(ZYN_E_TAG_TOO_LONG, message, e, e.start, found), "tag");
            }
            const bool wrapped = e.field() && e.field()->wrapped;
            const std::size_t start = wrapped ? e.content : e.start;
            if (e.kind == Kind::Int) {
                const std::size_t length = wrapped ? e.content + 1 : lengthAt;
                broken(length, 0, ZYN_E_INT_EMPTY, start, "empty");
                broken(length, 5, ZYN_E_INT_LENGTH, start, "too long");
            }
            if (e.kind == Kind::Bool) broken(lengthAt, 2, ZYN_E_BOOL_LENGTH, start, "two octets");
            if (e.kind == Kind::Bits) {
                broken(lengthAt, 0, ZYN_E_BITS_EMPTY, start, "empty");
                broken(e.content, 8, ZYN_E_BITS_UNUSED, start, "unused bits");
            }
            if (e.kind == Kind::Real && e.end - e.content > 1) {
                broken(e.content, 0x01, ZYN_E_REAL_DECIMAL, start, "decimal");
                broken(e.content, 0xB0, ZYN_E_REAL_BASE, start, "base");
                broken(lengthAt, 1, ZYN_E_REAL_SPECIAL, start, "one octet");
            }
        }
    }
    EXPECT_GT(tried, 5'000u);
}

// Every code of the list that other tests check has a place, which says the same as the failure, and no others have.
TEST_F(Failures, PlacesOfAllCodes) {
    std::size_t reported = 0;
    for (uint32_t m = 0; m < ZynModuleCount(); ++m) {
        const char* module = ZynModuleName(m);
        for (int32_t code = -1; code > -700; --code) {
            ZynPlace place = {};
            const char* text = ZynFailureText(module, code);
            if (code > -100) {
                EXPECT_EQ(ZynFailurePlace(module, code, &place), 0);
                continue;
            }
            if (ZynFailurePlace(module, code, &place) == 0) {
                EXPECT_EQ(text, nullptr) << module << " " << code;
                EXPECT_EQ(place.type, nullptr);
                continue;
            }
            ++reported;
            EXPECT_STREQ(place.type->module, module);
            EXPECT_NE(std::string(text).find(place.type->name), std::string::npos) << text;
            const Type& type = typeOf(static_cast<TypeId>(place.type->number));
            constexpr Site sites[] = {Site::OuterTag, Site::InnerTag, Site::Length,
                                      Site::FieldTag, Site::Stray,    Site::Only};
            const auto field = place.field ? static_cast<std::size_t>(place.field - place.type->fields) : 0;
            EXPECT_EQ(siteCode(type, sites[place.kind], field), code) << module;
            EXPECT_LE(code, place.type->firstCode);
            EXPECT_GT(code, place.type->firstCode - place.type->codes);
        }
    }
    EXPECT_GT(reported, 1000u);
    EXPECT_EQ(ZynFailureText("NoModule", -100), nullptr);
    EXPECT_EQ(ZynFailureText(nullptr, -100), nullptr);
    EXPECT_EQ(ZynFailureText(nullptr, 0), nullptr);
    EXPECT_EQ(ZynFailureText("Order", INT32_MIN), nullptr);
    EXPECT_STREQ(ZynFailureText("Order", -7), "an INTEGER has more than 4 octets");
}

} // namespace
} // namespace zyn::test
