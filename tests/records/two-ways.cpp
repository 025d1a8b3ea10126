// The direct way against the exact way, through the entry points: the same result, tree, arena, list cursors
// and octets over everything that is sent and received, sound or damaged.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/elements.h"
#include "tests/support/few.h"
#include "tests/support/hex.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

const std::string user = "TRADER01    ";
constexpr uint32_t spareRoom = 256; // octets; the direct way wants some to spare

template <typename Check> void forAllMessages(uint32_t seeds, std::initializer_list<Taste> tastes, Check&& check) {
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            for (uint32_t seed = 0; seed < seeds; ++seed) {
                Sampler sampler(seed * 1000 + row.number, tastes.begin()[seed % tastes.size()]);
                const ChoiceRecord* choice = sampler.make(channel.choice, row);
                SCOPED_TRACE(std::string(channel.name) + " " + row.name + ", seed " + std::to_string(seed));
                check(channel, choice, messageOf(channel, user, choice));
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

std::string beginning(const Octets& octets) { return toHex(octets.data(), std::min<std::size_t>(octets.size(), 2000)); }

class TwoWaysTest : public testing::Test {
protected:
    // A message that has to go the direct way in both directions.
    void sendDirectly(const Channel& channel, const ChoiceRecord* choice, const Octets& octets) {
        const auto length = static_cast<uint32_t>(octets.size());
        ASSERT_EQ(ways.encode(channel, user, choice, length + spareRoom), octets);
        EXPECT_TRUE(ways.direct) << "encode";
        receive(channel, choice, octets);
        EXPECT_TRUE(ways.direct) << "decode of " << beginning(octets);
    }

    void receive(const Channel& channel, const ChoiceRecord* choice, const Octets& octets) {
        const void* message = ways.decode(channel, octets);
        ASSERT_EQ(ways.code, 0) << ways.reported << beginning(octets);
        EXPECT_EQ(difference(channel.choice, choice, choiceIn(channel, message)), "");
        if (channel.isRequest()) {
            EXPECT_EQ(userIn(channel, message), user);
        }
        ASSERT_EQ(ways.problem, "") << beginning(octets);
    }

    // Octets of any kind; what is taken is sent back.
    void receiveAnything(const Channel& channel, const Octets& octets) {
        const void* message = ways.decode(channel, octets);
        ++(ways.code == 0 ? accepted : refused);
        if (ways.code == 0) {
            const auto room = static_cast<uint32_t>(4 * octets.size() + 1024);
            ways.encode(channel, userIn(channel, message), choiceIn(channel, message), room);
        }
        ASSERT_EQ(ways.problem, "") << channel.name << ": " << beginning(octets);
    }

    TwoWays ways;
    uint64_t accepted = 0, refused = 0;
};

TEST_F(TwoWaysTest, CanonicalMessagesGoTheDirectWay) {
    forAllMessages(9, {{50, 300, 4}, {100, 300, 4}, {0, 300, 4}},
                   [&](auto& channel, auto* choice, const Octets& octets) {
                       sendDirectly(channel, choice, octets);
                       Octets two = octets;
                       append(two, octets);
                       receive(channel, choice, two);
                       EXPECT_TRUE(ways.direct) << "octets behind the message do not count";
                   });
}

TEST_F(TwoWaysTest, RoomIsUsedToTheLastOctet) {
    forAllMessages(4, {{50, 40, 3}, {100, 300, 4}}, [&](auto& channel, auto* choice, const Octets& octets) {
        const auto length = static_cast<uint32_t>(octets.size());
        for (uint32_t spare = 0; spare < 150; spare += spare < 20 ? 1 : 13) {
            ASSERT_EQ(ways.encode(channel, user, choice, length + spare), octets) << spare << " octets to spare";
        }
        for (uint32_t room = 0; room < length; room += length < 100 || room + 20 > length ? 1 : length / 20) {
            ASSERT_TRUE(ways.encode(channel, user, choice, room).empty()) << "room for " << room << " of " << length;
        }
        ASSERT_EQ(ways.problem, "");
    });
}

TEST_F(TwoWaysTest, OtherForms) {
    constexpr Forms forms[] = {{100, 0, 0, 0, 0}, {0, 100, 0, 0, 0}, {0, 0, 100, 0, 0}, {50, 50, 50, 100, 0},
                               {2, 2, 2, 5, 0},   {3, 0, 0, 0, 0},   {0, 0, 10, 0, 0},  {0, 10, 0, 20, 0}};
    uint32_t seed = 0, directly = 0;
    forAllMessages(16, {{50, 60, 3}, {100, 20, 2}}, [&](auto& channel, auto* choice, const Octets&) {
        ++seed;
        receive(channel, choice, messageOf(channel, user, choice, Writer(forms[seed % std::size(forms)], seed)));
        directly += ways.direct;
    });
    EXPECT_GT(directly, 100u) << "long lengths alone do not keep a message from the direct way";
}

TEST_F(TwoWaysTest, MessagesThatLackOctets) {
    forAllMessages(4, {{50, 20, 2}, {100, 10, 2}}, [&](auto& channel, auto* choice, const Octets& octets) {
        for (std::size_t length = octets.size() % onePatternIn(); length < octets.size(); length += onePatternIn()) {
            receiveAnything(channel, Octets(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(length)));
        }
        receive(channel, choice, octets);
    });
    EXPECT_GT(refused, 10000u / onePatternIn());
}

TEST_F(TwoWaysTest, MessagesWithOneOctetChanged) {
    Random random(1);
    forAllMessages(3, {{60, 12, 2}, {100, 5, 1}, {30, 20, 3}}, [&](auto& channel, auto* choice, const Octets& octets) {
        Octets changed = octets;
        for (std::size_t i = below(random, onePatternIn()); i < octets.size(); i += onePatternIn()) {
            const uint8_t was = octets[i];
            for (const unsigned now : {was ^ 0x01u, was ^ 0x20u, was ^ 0x80u, was + 1u, was - 1u, 0x00u, 0x80u, 0x84u,
                                       0xFFu, below(random, 256)}) {
                changed[i] = static_cast<uint8_t>(now);
                receiveAnything(channel, changed);
            }
            changed[i] = was;
        }
        receive(channel, choice, octets);
    });
    EXPECT_GT(accepted, 10000u / onePatternIn());
    EXPECT_GT(refused, 10000u / onePatternIn());
}

// Lengths fit, and elements are missing, doubled or unknown at any depth.
TEST_F(TwoWaysTest, MessagesWithWrongElements) {
    uint32_t seed = 0;
    forAllMessages(120 / onePatternIn(), {{50, 12, 2}, {100, 12, 2}, {10, 12, 2}},
                   [&](auto& channel, auto* choice, const Octets& octets) {
                       const Forms forms = ++seed % 4 == 0 ? Forms{5, 5, 5, 5, 20} : Forms{0, 0, 0, 0, 20};
                       receiveAnything(channel, messageOf(channel, user, choice, Writer(forms, seed)));
                       if (seed % 16 == 0) receive(channel, choice, octets);
                   });
    EXPECT_GT(accepted, 1000u / onePatternIn());
    EXPECT_GT(refused, 1000u / onePatternIn());
}

// One element after the other holds something else, and all lengths fit.
TEST_F(TwoWaysTest, MessagesWithTheContentOfOneElementChanged) {
    const Octets contents[] = {{},
                               {0x01},
                               {0x80},
                               {0x30, 0x00},
                               {0x02, 0x00},
                               {0x02, 0x01, 0x07},
                               {0x04, 0x01, 0x07},
                               {0x02, 0x02, 0x07},
                               {0x02, 0x04, 0x01, 0x02, 0x03, 0x04},
                               {0x80, 0x01, 0x02, 0x03, 0x04},
                               {0x02, 0x01, 0x07, 0x05, 0x00},
                               {0x02, 0x05, 0x01, 0x02, 0x03, 0x04, 0x05}};
    const auto changeEach = [&](auto& self, const Channel& channel, Elements& message, Elements& level) -> void {
        for (Element& element : level) {
            const Element was = element;
            for (const Octets& content : contents) {
                element.constructed = false; // of what is written; the tag stays
                element.parts.clear();
                element.content = content;
                receiveAnything(channel, written(message));
                element = was;
            }
            self(self, channel, message, element.parts);
        }
    };
    forAllMessages(2, {{50, 12, 2}, {100, 5, 1}}, [&](auto& channel, auto* choice, const Octets& octets) {
        Elements message = parse(octets);
        changeEach(changeEach, channel, message, message);
        receive(channel, choice, octets);
    });
    EXPECT_GT(accepted, 10000u);
    EXPECT_GT(refused, 10000u);
}

// Lengths fit, and each record in turn ends behind one of its elements or inside it: in the tag, the length, the value, or
// behind a value without octets. What stands round the record goes on, or ends there too: then no octet may be read behind it.
TEST_F(TwoWaysTest, RecordsThatEndInAnElement) {
    const auto endEach = [&](auto& self, const Channel& channel, Elements& message, Elements& level, bool all) -> void {
        for (std::size_t i = 0; i < level.size(); ++i) {
            const Elements was = level;
            const Octets last = written({level[i]});
            std::vector<Octets> ends{last, level[i].tag};
            ends.back().push_back(0);
            for (std::size_t length = 1; length < std::min<std::size_t>(last.size(), 5); ++length) {
                ends.emplace_back(last.begin(), last.begin() + static_cast<std::ptrdiff_t>(length));
            }
            level.resize(i + 1);
            for (const Octets& end : ends) {
                level[i] = {};
                level[i].content = end;
                receiveAnything(channel, written(message));
            }
            level[i] = was[i];
            if (!all) level = was;
            self(self, channel, message, level[i].parts, all);
            level = was;
        }
    };
    forAllMessages(2, {{50, 12, 2}, {100, 5, 1}}, [&](auto& channel, auto* choice, const Octets& octets) {
        Elements message = parse(octets);
        for (const bool all : {false, true}) endEach(endEach, channel, message, message, all);
        receive(channel, choice, octets);
    });
    EXPECT_GT(accepted, 1000u);
    EXPECT_GT(refused, 10000u);
}

TEST_F(TwoWaysTest, MessagesPutTogetherFromPartsOfOthers) {
    Random random(2);
    Octets previous{0x30, 0x80, 0x00};
    forAllMessages(20, {{50, 20, 2}}, [&](auto& channel, auto* choice, const Octets& octets) {
        for (int i = 0; i < 4; ++i) {
            Octets spliced(octets.begin(), octets.begin() + below(random, octets.size() + 1));
            const uint32_t from = below(random, previous.size());
            spliced.insert(spliced.end(), previous.begin() + from, previous.end());
            receiveAnything(channel, spliced);
        }
        receive(channel, choice, octets);
        previous = octets;
    });
    EXPECT_GT(refused, 1000u);
}

// A full message breaks off, in a constructed string often; the sparse one behind it has the same record in the same place,
// and would show what was left there. So would a string behind pieces that were left.
TEST_F(TwoWaysTest, NothingOfAFailedDecodeReachesTheNext) {
    Random random(3);
    forAllMessages(6, {{0, 20, 2}, {30, 20, 2}}, [&](auto& channel, auto* choice, const Octets& octets) {
        const Alternative& row = *alternativeOf(typeOf(channel.choice), choice->choiceId);
        Sampler full(random(), {100, 300, 8});
        for (const Forms& forms : {Forms{}, Forms{30, 30, 60, 0, 0}, Forms{30, 30, 60, 0, 50}}) {
            Octets broken = messageOf(channel, user, full.make(channel.choice, row), Writer(forms, random()));
            if (forms.damage == 0) broken.resize(broken.size() - 1 - below(random, broken.size() / 2));
            receiveAnything(channel, broken);
            receive(channel, choice, octets);
            receiveAnything(channel, broken);
            receive(channel, choice, messageOf(channel, user, choice, Writer({0, 0, 100, 0, 0}, random())));
        }
    });
    EXPECT_GT(refused, 5000u);
}

// More arena than its first block has, and strings at the edges of the forms of a length and of the blocks.
TEST_F(TwoWaysTest, LargeMessages) {
    std::size_t longest = 0;
    constexpr Taste tastes[] = {{60, 300, 120}, {100, 64, 300}, {20, 300, 300}};
    forAllMessages(6, {tastes[0], tastes[1], tastes[2]}, [&](auto& channel, auto* choice, const Octets& octets) {
        if (octets.size() < 1000) return;
        sendDirectly(channel, choice, octets);
        longest = std::max(longest, octets.size());
    });
    EXPECT_GT(longest, 100'000u);
}

TEST_F(TwoWaysTest, LongTexts) {
    std::vector<std::size_t> lengths{126, 127,   128,   129,   254,   255,      256,
                                     257, 65534, 65535, 65536, 65537, 0xFFFFFF, 0x1000000};
    for (std::size_t length = 960; length < 1100; ++length) lengths.push_back(length);
    for (std::size_t length = 7990; length < 8210; ++length) lengths.push_back(length);
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        std::vector<uint8_t> text(length, 'x');
        ZynReplyOK record{};
        AsnInt hint = 5;
        record.infoMessage = {static_cast<uint32_t>(length), text.data()};
        record.extraInfo = {2, text.data()};
        record.replyHint = &hint;
        const ChoiceRecord choice{18, {.slot = &record}};
        const Octets octets = messageOf(channels[2], user, &choice);
        sendDirectly(channels[2], &choice, octets);
        EXPECT_EQ(ways.encode(channels[2], user, &choice, static_cast<uint32_t>(octets.size())), octets);
        EXPECT_TRUE(ways.encode(channels[2], user, &choice, static_cast<uint32_t>(octets.size()) - 1).empty());
        ASSERT_EQ(ways.problem, "");
        if (HasFailure()) return;
    }
}

// The first octet of a length that is indefinite, 80, is no count of 128, even where 128 octets follow.
TEST_F(TwoWaysTest, AnIndefiniteLengthInFrontOf128Octets) {
    const uint8_t text[128] = {'x'};
    ZynReplyOK record{};
    unsigned tried = 0;
    for (uint32_t length = 90; length <= 128; ++length) {
        record.infoMessage = {length, const_cast<uint8_t*>(text)};
        const ChoiceRecord choice{18, {.slot = &record}};
        Octets octets = messageOf(channels[2], user, &choice);
        for (std::size_t i = 1; i < octets.size() - 1; ++i) {
            if (octets[i] != 0x81 || octets[i + 1] != 0x80) continue;
            Octets changed = octets;
            changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(i));
            receiveAnything(channels[2], changed);
            ++tried;
            break;
        }
    }
    EXPECT_EQ(accepted, 0u);
    EXPECT_GE(tried, 2u) << "the record's own length, and the text's";
}

// The alternative stands behind the userId and nowhere else. Here the userId is full of the tag of orderActivate, whose
// content may be that of the orderDeactivate which follows.
TEST_F(TwoWaysTest, UserIdsOfAllLengths) {
    const Channel& channel = channelOf(TypeId::ZynTransReq);
    Sampler sampler(1);
    ChoiceRecord* choice = sampler.make(channel.choice, *alternativeOf(typeOf(channel.choice), 480));
    Elements message = parse(messageOf(channel, user, choice));
    Octets& userId = message[0].parts[0].content;
    const uint8_t tag[] = {0xBF, 0x83, 0x5F};
    for (std::size_t length = 0; length < 300; ++length) {
        for (std::size_t shift = 0; shift < sizeof tag; ++shift) {
            userId.resize(length);
            for (std::size_t i = 0; i < length; ++i) userId[i] = tag[(i + shift) % sizeof tag];
            ways.decode(channel, written(message));
            ASSERT_EQ(ways.code, 0) << length;
            EXPECT_EQ(ways.direct, length < 128) << length;
            ASSERT_EQ(ways.problem, "") << length;
        }
    }
}

// The wrapper round an alternative that is itself a CHOICE claims fewer octets than there are, or more.
TEST_F(TwoWaysTest, WrappersThatClaimOtherLengths) {
    const Channel& channel = channelOf(TypeId::ZynTransReq);
    for (const char* inner : {"80 01 05", "80 01", "80", "82 04 01 02 03", "82 02 01 02", "A1 03 30 01"}) {
        for (uint8_t claimed = 0; claimed < 12; ++claimed) {
            Octets wrapped = hex("04 02 55 31 BF 83 21");
            const Octets octets = hex(inner);
            wrapped.push_back(claimed);
            wrapped.insert(wrapped.end(), octets.begin(), octets.end());
            Octets message = {0x30, static_cast<uint8_t>(wrapped.size())};
            message.insert(message.end(), wrapped.begin(), wrapped.end());
            receiveAnything(channel, message);
        }
    }
    EXPECT_GT(accepted, 5u);
    EXPECT_GT(refused, 40u);
}

TEST_F(TwoWaysTest, LongBitStrings) {
    const Channel& channel = channelOf(TypeId::ZynQueryRep);
    Sampler sampler(1);
    ChoiceRecord* choice = sampler.make(channel.choice, *alternativeOf(typeOf(channel.choice), 261));
    for (const int32_t bitLen : {0, 1007, 1008, 1009, 1016, 1017, 20000}) {
        SCOPED_TRACE(bitLen);
        std::vector<uint8_t> bits(2500, 0xB7);
        static_cast<ZynBoardRep*>(choice->slot)->orderMethods = {bitLen, bits.data()};
        const Octets octets = messageOf(channel, user, choice);
        sendDirectly(channel, choice, octets);
        for (std::size_t room = 0; room < octets.size(); ++room) {
            ASSERT_TRUE(ways.encode(channel, user, choice, static_cast<uint32_t>(room)).empty()) << room;
        }
        ASSERT_EQ(ways.problem, "");
    }
}

// Words are loaded that end with a short text; none may begin before the message.
TEST_F(TwoWaysTest, ShortTextsAtTheStart) {
    uint8_t text[10] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j'};
    for (uint32_t first = 0; first < 10; ++first) {
        for (uint32_t second = 0; second < 10; ++second) {
            ZynReplyOK record{};
            record.infoMessage = {first, text};
            record.extraInfo = {second, text};
            const ChoiceRecord choice{18, {.slot = &record}};
            sendDirectly(channels[2], &choice, messageOf(channels[2], user, &choice));
        }
    }
}

TEST_F(TwoWaysTest, WhatCannotBeSent) {
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            const Type& type = typeOf(row.type);
            Sampler sampler(row.number, {100, 12, 2});
            const auto expectNothing = [&](const ChoiceRecord* choice, const char* why) {
                EXPECT_TRUE(ways.encode(channel, user, choice, 1 << 16).empty())
                    << channel.name << " " << row.name << " " << why;
            };
            for (const Field& field : type.fields) {
                const bool set = field.kind == Kind::Sequence || field.kind == Kind::Choice;
                const ChoiceRecord* choice = sampler.make(channel.choice, row);
                void* member = memberOf(choice->slot, field);
                if (set && !field.optional) std::memset(member, 0, sizeof(void*));
                else if (field.kind == Kind::Octs && !field.optional) *static_cast<AsnOcts*>(member) = {1, nullptr};
                else if (field.kind == Kind::Bits) static_cast<AsnBits*>(member)->bitLen = -1;
                else if (field.kind == Kind::Real) *static_cast<AsnReal*>(member) = std::nan("");
                else if (field.type == TypeId::AsnFixedReal || field.type == TypeId::AsnLongInt) {
                    *static_cast<AsnReal*>(const_cast<void*>(valueOf(choice->slot, field))) = HUGE_VAL;
                } else {
                    continue;
                }
                expectNothing(choice, field.name);
                if (field.kind == Kind::Bits && !field.optional) {
                    *static_cast<AsnBits*>(member) = {8, nullptr};
                    expectNothing(choice, field.name);
                }
            }
            ChoiceRecord unset{row.number, {.slot = nullptr}};
            if (!type.fields.empty()) expectNothing(&unset, "unset");
        }
        for (uint32_t number = 0; number < 700; ++number) {
            if (alternativeOf(typeOf(channel.choice), number)) continue;
            const ChoiceRecord unknown{number, {.slot = nullptr}};
            const Octets sent = ways.encode(channel, user, &unknown, 100);
            EXPECT_EQ(toHex(sent), channel.isRequest() ? "30 0A 04 08 54 52 41 44 45 52 30 31" : "");
        }
    }
    EXPECT_EQ(ways.problem, "");
}

// A node whose data word is null ends the walk; the elements behind it go out.
TEST_F(TwoWaysTest, ListsWithAGap) {
    const Alternative* row = alternativeOf(typeOf(TypeId::ZynTransReqChoice), 491);
    int lists = 0;
    for (uint32_t seed = 0; seed < 50; ++seed) {
        Sampler sampler(seed, {50, 12, 6});
        const ChoiceRecord* choice = sampler.make(TypeId::ZynTransReqChoice, *row);
        AsnList* list = static_cast<ZynOrderMultiLeg*>(choice->slot)->legList;
        if (!list || list->count < 3) continue;
        AsnListNode* gap = list->first->next;
        const Octets whole = ways.encode(channels[0], user, choice, 1 << 16);
        gap->data = nullptr;
        const Octets cut = ways.encode(channels[0], user, choice, 1 << 16);
        EXPECT_EQ(list->curr, gap);
        EXPECT_LT(cut.size(), whole.size());
        const void* message = ways.decode(channels[0], cut);
        ASSERT_EQ(ways.code, 0);
        const auto* decoded = static_cast<const ZynOrderMultiLeg*>(choiceIn(channels[0], message)->slot);
        EXPECT_EQ(decoded->legList->count, list->count - 2);
        ASSERT_EQ(ways.problem, "");
        ++lists;
    }
    EXPECT_GT(lists, 5);
}

} // namespace
} // namespace zyn::test
