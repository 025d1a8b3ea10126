// The length of a message from its first octets.
#include <gtest/gtest.h>

#include <numeric>

#include "tests/support/hex.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

constexpr std::size_t untouched = 12345;

struct Told {
    int result;
    std::size_t length = untouched;
};

// From a copy of exactly that size, so that a sanitizer sees any octet that is looked at behind it.
Told told(const Octets& octets, std::size_t count) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[count]);
    std::copy_n(octets.begin(), count, copy.get());
    Told t{};
    t.result = ZynMessageLength(copy.get(), count, &t.length);
    return t;
}

// Every prefix asks for more octets than it has, never for more than there are, or knows the length already.
void expectLength(const Octets& octets, const std::string& what) {
    Octets more = octets;
    more.insert(more.end(), {0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    ASSERT_EQ(told(octets, octets.size()).result, 1) << what;
    ASSERT_EQ(told(octets, octets.size()).length, octets.size()) << what;
    ASSERT_EQ(told(more, more.size()).length, octets.size()) << what << " with more behind it";
    std::size_t calls = 0;
    for (std::size_t count = 0; count < octets.size(); ++calls) {
        const Told t = told(octets, count);
        ASSERT_GE(t.result, 0) << what << ", " << count << " octets";
        if (t.result == 1) {
            ASSERT_EQ(t.length, octets.size()) << what << ", " << count << " octets";
            break;
        }
        ASSERT_GT(t.length, count) << what;
        ASSERT_LE(t.length, octets.size()) << what;
        count = octets.size() < 500 ? count + 1 : t.length; // long ones as a reader would, asking for what it is told
    }
}

TEST(MessageLength, OfEveryMessageInEveryForm) {
    const Forms all[] = {
        {}, {.indefinite = 100}, {.indefinite = 50, .longLength = 50, .cutStrings = 50, .looseValues = 50}};
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            for (uint32_t form = 0; form < std::size(all); ++form) {
                Sampler sampler(row.number + form, {.longestText = 40});
                const ChoiceRecord* choice = sampler.make(channel.choice, row);
                const Octets octets = messageOf(channel, "TRADER01    ", choice, Writer(all[form], row.number));
                expectLength(octets, std::string(row.name) + ", form " + std::to_string(form));
            }
        }
    }
}

TEST(MessageLength, OfOctetsThatAreNoMessageYet) {
    struct {
        const char* octets;
        int result;
        std::size_t length;
        const char* why;
    } const rows[] = {
        {"", 0, 2, "an element has two octets at least"},
        {"30", 0, 2, "a length is due"},
        {"BF", 0, 3, "a tag of two octets or more, and a length"},
        {"BF 83", 0, 4, "a tag of three octets"},
        {"BF 83 47", 0, 4, "a length is due"},
        {"30 82", 0, 4, "two octets of length"},
        {"30 82 01", 0, 4, "one of them is there"},
        {"30 82 01 00", 1, 260, "the content need not be there"},
        {"30 00", 1, 2, "no content"},
        {"30 84 FF FF FF F9", 1, UINT32_MAX, "the longest message"},
        {"30 84 FF FF FF FA", ZYN_E_LENGTH_TOO_LONG, untouched, "no Decode can be told of more octets"},
        {"30 85", ZYN_E_LENGTH_TOO_LONG, untouched, "a length of five octets"},
        {"30 FF", ZYN_E_LENGTH_TOO_LONG, untouched, "reserved (X.690 8.1.3.5 c)"},
        {"BF FF FF 01", ZYN_E_TAG_TOO_LONG, untouched, "a tag of four octets"},
        {"00 00", ZYN_E_WRONG_TAG, untouched, "a marker that closes nothing"},
        {"04 80 00 00", ZYN_E_LENGTH_PRIMITIVE, untouched, "indefinite, but primitive (X.690 8.1.3.2)"},
        {"30 80", 0, 4, "the marker"},
        {"30 80 00", 0, 4, "its second octet"},
        {"30 80 00 00", 1, 4, "nothing in it"},
        {"30 80 00 01", ZYN_E_EOC_SECOND_OCTET, untouched, "no marker"},
        {"30 80 04", 0, 6, "an element and the marker"},
        {"30 80 04 03", 0, 9, "an element of three octets and the marker"},
        {"30 80 04 03 00 00", 0, 9, "zeros in it are no marker"},
        {"30 80 30 80 30 80", 0, 12, "three markers"},
        {"30 80 30 80 00 00", 0, 8, "the outer marker"},
        {"30 80 30 84 FF FF FF FF", ZYN_E_LENGTH_TOO_LONG, untouched, "an element of 4 GiB in a message"},
        {"30 80 05 85", ZYN_E_LENGTH_TOO_LONG, untouched, "inside as well"},
        {"30 80 04 80", ZYN_E_LENGTH_PRIMITIVE, untouched, "inside as well"},
    };
    for (const auto& row : rows) {
        const Octets octets = hex(row.octets);
        const Told t = told(octets, octets.size());
        EXPECT_EQ(t.result, row.result) << row.octets << ": " << row.why;
        EXPECT_EQ(t.length, row.length) << row.octets << ": " << row.why;
    }
}

TEST(MessageLength, CountsOpenLevelsOfAnyNumber) {
    Octets octets;
    constexpr std::size_t levels = 1'000'000;
    for (std::size_t i = 0; i < levels; ++i) append(octets, {0x30, 0x80});
    EXPECT_EQ(told(octets, octets.size()).result, 0);
    EXPECT_EQ(told(octets, octets.size()).length, 4 * levels);
    octets.resize(4 * levels);
    EXPECT_EQ(told(octets, octets.size()).result, 1);
    EXPECT_EQ(told(octets, octets.size()).length, 4 * levels);
}

TEST(MessageLength, OfJunk) {
    Random random(1);
    std::size_t results[3] = {};
    for (int i = 0; i < 100'000; ++i) {
        Octets junk(below(random, 40));
        for (uint8_t& octet : junk) octet = static_cast<uint8_t>(below(random, 4) == 0 ? 0 : random());
        if (junk.size() > 1 && i % 2) junk[0] = 0x30, junk[1] = 0x80;
        const Told t = told(junk, junk.size());
        ASSERT_LE(t.result, 1);
        ++results[t.result < 0 ? 0 : 1 + t.result];
        if (t.result < 0) {
            ASSERT_EQ(t.length, untouched);
        } else {
            ASSERT_GT(t.length, t.result == 0 ? junk.size() : 1);
        }
        ZynChannelOf(junk.data(), junk.size());
    }
    for (const std::size_t count : results) EXPECT_GT(count, 1000u) << "the junk is not of every kind";
}

} // namespace
} // namespace zyn::test
