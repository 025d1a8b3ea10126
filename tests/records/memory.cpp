// What a decode holds, byte for byte of the message: over the worst messages that the field tables allow, over every
// beginning of a message, and over messages that claim more than they have.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

#include "records/direct.h"
#include "sbuf/state.h"
#include "tests/support/elements.h"
#include "tests/support/footprint.h"
#include "tests/support/golden.h"
#include "tests/support/walk.h"

namespace zyn::test {
namespace {

// What is promised. Change docs/guarantees.md along with these.
constexpr double promisedPerOctet = 14;     // bytes of arena
constexpr double promisedOnce = 10'240;     // bytes of arena beside them
constexpr double promisedStringTables = 24; // bytes for each octet of the largest message so far
constexpr double promisedStringTablesOnce = 4'096;

class Memory : public testing::Test {
protected:
    Memory() {
        ZynEncodeMemAlloc(0); // an arena is there
        handler = Asn1InstallErrorHandler([](char*, int) {});
    }
    ~Memory() override {
        Asn1InstallErrorHandler(handler);
        ZynEncodeMemReset();
    }

    // The arena's most bytes, of the direct way and of what the Decode comes to in the end.
    std::size_t held(const Channel& channel, const Octets& octets) {
        alignas(8) uint8_t record[64];
        ResetNibbleMem();
        direct::decode(channel.number, octets.data(), octets.size(), record); // given up or not
        const std::size_t directly = heldByArena(nmG);
        code = channel.decode(octets.data(), static_cast<uint32_t>(octets.size()), record);
        return std::max(directly, heldByArena(nmG));
    }

    void expectWithin(const Channel& channel, const Octets& octets) {
        ASSERT_LE(static_cast<double>(held(channel, octets)), arenaBound().over(octets.size()))
            << channel.name << ", " << octets.size()
            << " octets: " << toHex(octets.data(), std::min<std::size_t>(octets.size(), 64));
    }

    int32_t code = 0;
    Asn1ErrorHandler handler;
};

Element* elementOfList(Elements& elements) {
    for (Element& element : elements) {
        if (element.tag == Octets{0x31}) return &element;
        if (Element* found = elementOfList(element.parts)) return found;
    }
    return nullptr;
}

// A message with a list of many elements, all of them the smallest that the taste allows. Empty: it has no list.
Octets messageOfList(const Channel& channel, const Alternative& row, uint32_t seed, std::size_t count) {
    Sampler sampler(seed, {seed * 50 % 150, 0, 1});
    ChoiceRecord* choice = sampler.make(channel.choice, row);
    forEachValue(channel.choice, choice, [](TypeId type, void* value) {
        if (typeOf(type).shape == Shape::Primitive && type != TypeId::AsnOcts && type != TypeId::AsnBits) {
            std::memset(value, 0, typeOf(type).size);
        }
    });
    Elements message = parse(messageOf(channel, "            ", choice));
    Element* list = elementOfList(message);
    if (!list || list->parts.empty()) return {};
    list->parts.resize(count, list->parts[0]);
    return written(message);
}

TEST_F(Memory, TheTablesAllowNoMoreThanIsPromised) {
    EXPECT_LE(arenaBound().perOctet, promisedPerOctet);
    EXPECT_LE(arenaBound().once, promisedOnce);
}

// The search found a bound; real messages come close to it, so it is none that means nothing.
TEST_F(Memory, TheWorstMessagesReachTheBound) {
    double worst = 0;
    std::string which;
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            for (uint32_t seed = 0; seed < 60; ++seed) {
                for (const std::size_t count : {std::size_t{20}, std::size_t{1000}}) {
                    const Octets octets = messageOfList(channel, row, seed, count);
                    if (octets.empty()) continue;
                    ASSERT_NO_FATAL_FAILURE(expectWithin(channel, octets));
                    ASSERT_EQ(code, 0) << row.name;
                    const double perOctet = static_cast<double>(heldByArena(nmG)) / static_cast<double>(octets.size());
                    if (count < 1000 || perOctet <= worst) continue;
                    worst = perOctet;
                    which = row.name;
                }
            }
        }
    }
    std::cout << "arena: at most " << arenaBound().perOctet << " bytes an octet (" << typeOf(worstList()).name
              << ") and " << arenaBound().once << " once; seen: " << worst << " an octet, by " << which << "\n";
    EXPECT_GE(worst, 0.9 * arenaBound().perOctet);
}

TEST_F(Memory, NothingIsHeldBeforeItsOctetsAreThere) {
    for (const auto& path : goldenPaths(ZYN_TEST_DATA "/messages")) {
        const Golden golden = readGolden(path);
        for (std::size_t length = 0; length <= golden.octets.size(); ++length) {
            const Octets beginning(golden.octets.begin(), golden.octets.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_NO_FATAL_FAILURE(expectWithin(*golden.channel, beginning));
        }
        ASSERT_EQ(code, 0) << path;
    }
}

template <typename Visit> void forEachElement(Elements& elements, Visit&& visit) {
    for (Element& element : elements) {
        visit(element);
        forEachElement(element.parts, visit);
    }
}

// Each length of each message in turn, those of all that stands round it too.
TEST_F(Memory, ClaimsAreNoReasonToHoldAnything) {
    int claims = 0;
    for (const auto& path : goldenPaths(ZYN_TEST_DATA "/messages")) {
        const Golden golden = readGolden(path);
        Elements message = parse(golden.octets);
        for (const bool outerToo : {false, true}) {
            forEachElement(message, [&](Element& element) {
                for (const uint32_t claim : {0x00FFFFFFu, 0x7FFFFFFFu, 0xFFFFFFF8u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
                    element.claimed = claim;
                    expectWithin(*golden.channel, written(message));
                    ++claims;
                }
                if (!outerToo || !element.constructed) element.claimed.reset();
            });
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GT(claims, 10'000);
}

Octets repeated(Octets front, const Octets& piece, std::size_t size, const Octets& back) {
    while (front.size() + piece.size() + back.size() <= size) append(front, piece);
    append(front, back);
    return front;
}

TEST_F(Memory, StringTablesFollowTheLargestMessage) {
    constexpr std::size_t justGrown = 2 * ((1 << 20) + 4); // octets: a piece more than a table had room for
    double worst = 0;
    std::size_t largest = 0;
    AsnOcts text;
    ZynShutdown();
    for (const std::size_t size :
         {std::size_t{10}, std::size_t{100}, std::size_t{300}, std::size_t{5000}, justGrown, std::size_t{400}}) {
        for (const Octets& octets : {repeated({0x24, 0x80}, {0x04, 0x00}, size, {0x00, 0x00}), // empty pieces
                                     repeated({}, {0x24, 0x80}, size, {0x04, 0x00}),           // nested, never closed
                                     repeated({0x24, 0x80}, {0x24, 0x80, 0x04, 0x00}, size, {})}) { // both
            largest = std::max(largest, octets.size());
            ZynTextStrDecode(octets.data(), static_cast<uint32_t>(octets.size()), &text);
            const auto held = static_cast<double>(heldByStringTables());
            ASSERT_LE(held, promisedStringTables * static_cast<double>(largest) + promisedStringTablesOnce);
            if (octets.size() > 50'000) worst = std::max(worst, held / static_cast<double>(largest));
        }
    }
    std::cout << "string tables: seen " << worst << " bytes an octet of the largest message\n";
    if (sizeof(void*) == 8) {
        EXPECT_GE(worst, 0.9 * promisedStringTables);
    }
    ZynShutdown();
    EXPECT_EQ(heldByStringTables(), 0u);
}

} // namespace
} // namespace zyn::test
