// Any envelope through one pair of entry points, and the channel that octets belong to.
#include <gtest/gtest.h>

#include "tests/support/hex.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

// Each alternative of each channel: what the entry point of the channel writes, ZynEncode writes, and ZynDecode reads.
TEST(Messages, GoThroughOnePairOfEntryPoints) {
    for (const Channel& channel : channels) {
        const ZynChannel number = channel.number;
        EXPECT_STREQ(ZynMessageChoice(number)->name, typeOf(channel.choice).name);
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            SCOPED_TRACE(row.name);
            Sampler sampler(row.number);
            ChoiceRecord* choice = sampler.make(channel.choice, row);
            uint8_t own[1 << 16], any[1 << 16];
            const uint32_t length = channel.encode("TRADER01    ", choice->slot, choice->choiceId, own, sizeof own);
            ASSERT_GT(length, 0u);
            alignas(8) uint8_t envelope[64] = {};
            ASSERT_EQ(ZynDecode(number, own, length, envelope), 0);
            EXPECT_EQ(choiceIn(channel, envelope)->choiceId, choice->choiceId);
            const ZynType* type = ZynEnvelopeType(number);
            std::vector<uint64_t> block(ZynTreeSize(type, envelope) / 8 + 1);
            void* copy = ZynTreeCopy(type, envelope, block.data(), block.size() * 8);
            ASSERT_EQ(ZynEncode(number, copy, any, sizeof any), length);
            EXPECT_EQ(Octets(any, any + length), Octets(own, own + length));
            EXPECT_EQ(ZynEncode(number, copy, any, length - 1), 0u) << "no room";
        }
    }
}

TEST(Messages, UserIdIsTheWholeTextOfItsField) {
    for (const std::string& user : {std::string(), std::string("A"), std::string("blanks   "), std::string(200, 'x')}) {
        ZynTransReqChoice choice = {};
        choice.choiceId = 0;
        ZynTransReq request = {};
        request.userId = {static_cast<uint32_t>(user.size()),
                          reinterpret_cast<uint8_t*>(const_cast<char*>(user.data()))};
        request.upTransMsg = &choice;
        uint8_t octets[512];
        const uint32_t length = ZynEncode(ZYN_TRANS_REQUEST, &request, octets, sizeof octets);
        ZynTransReq decoded;
        ASSERT_EQ(ZynDecode(ZYN_TRANS_REQUEST, octets, length, &decoded), 0);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(decoded.userId.octs), decoded.userId.octetLen), user);
    }
}

TEST(Messages, OfNoChannel) {
    const auto none = static_cast<ZynChannel>(ZYN_CHANNELS);
    uint8_t octets[8] = {};
    ZynTransRep reply = {};
    EXPECT_EQ(ZynEncode(none, &reply, octets, sizeof octets), 0u);
    ZynFailure failure = {};
    EXPECT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, octets, sizeof octets), 2u);
    EXPECT_EQ(ZynDecode(none, octets, sizeof octets, &reply), ZYN_E_NO_ALTERNATIVE);
    EXPECT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_EQ(failure.code, ZYN_E_NO_ALTERNATIVE);
    EXPECT_EQ(ZynEnvelopeType(none), nullptr);
    EXPECT_EQ(ZynMessageChoice(none), nullptr);
}

// Whatever the form, and as soon as the alternative's tag is there. A request without a message could be either.
TEST(Messages, TellTheirChannel) {
    const Forms all[] = {{}, {.indefinite = 60, .longLength = 60, .cutStrings = 60}};
    for (const Channel& channel : channels) {
        const int number = channel.number;
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            for (const Forms& forms : all) {
                Sampler sampler(row.number, {.longestText = 40});
                const ChoiceRecord* choice = sampler.make(channel.choice, row);
                const Octets octets = messageOf(channel, "TRADER01    ", choice, Writer(forms, row.number));
                const int expected = row.number > 0        ? number
                                     : channel.isRequest() ? ZYN_TRANS_REQUEST
                                                           : ZYN_TRANS_REPLY;
                int last = -1;
                for (std::size_t count = 0; count <= octets.size(); ++count) {
                    const std::unique_ptr<uint8_t[]> copy(new uint8_t[count]);
                    std::copy_n(octets.begin(), count, copy.get());
                    const int told = ZynChannelOf(copy.get(), count);
                    ASSERT_TRUE(told == expected || (told == -1 && last == -1))
                        << row.name << ", " << count << " octets";
                    last = told;
                }
                EXPECT_EQ(last, expected) << row.name;
            }
        }
    }
    for (const char* none :
         {"", "30 05 02 01 00 A0 00", "30 03 04 01 41", "30 04 04 00 BE 00", "BE 00", "31 00", "04 00", "00 00"}) {
        const Octets octets = hex(none);
        EXPECT_EQ(ZynChannelOf(octets.data(), octets.size()), -1) << none;
    }
}

} // namespace
} // namespace zyn::test
