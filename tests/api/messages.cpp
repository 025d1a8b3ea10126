// The entry points: whole messages, and what a call does to the arena.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>

#include "api/way.h"
#include "tests/support/hex.h"
#include "zyn/zyn.h"

namespace {

class Messages : public testing::Test {
protected:
    void SetUp() override {
        previous = Asn1InstallErrorHandler([](char*, int) {});
        ZynEncodeMemReset();
    }
    void TearDown() override {
        zyn::directAllowed = true;
        Asn1InstallErrorHandler(previous);
    }
    Asn1ErrorHandler previous = nullptr;
    uint8_t buffer[1024] = {};
};

constexpr const char* user = "U1          ";

TEST_F(Messages, WorkedRequests) {
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        uint32_t length = ZynTransRequestEncode(user, nullptr, 456, buffer, sizeof buffer);
        EXPECT_EQ(toHex(buffer, length), "30 08 04 02 55 31 BF 83 48 00");
        ZynTransReq request;
        ASSERT_EQ(ZynTransRequestDecode(buffer, length, &request), 0);
        EXPECT_EQ(request.upTransMsg->choiceId, 456u);
        EXPECT_NE(request.upTransMsg->slot, nullptr) << "an empty record is there after a decode";
        EXPECT_EQ(std::string(reinterpret_cast<char*>(request.userId.octs)), "U1") << "text is closed by a 0";

        ZynUserLogon logon{};
        ZynTextStrSet(&logon.loginPassword, "secret", 0);
        length = ZynTransRequestEncode("            ", &logon, 455, buffer, sizeof buffer);
        EXPECT_EQ(toHex(buffer, length), "30 0E 04 00 BF 83 47 08 04 06 73 65 63 72 65 74") << "blanks are present";

        length = ZynQueryRequestEncode(user, nullptr, 400, buffer, sizeof buffer);
        EXPECT_EQ(toHex(buffer, length), "30 04 04 02 55 31") << "an unknown number is not noticed on a request";
        ZynQueryReq query;
        EXPECT_EQ(ZynQueryRequestDecode(buffer, length, &query), -26);
    }
}

TEST_F(Messages, WorkedReplies) {
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        ZynReplyOK good{};
        ZynTextStrSet(&good.infoMessage, "OK", 0);
        uint32_t length = ZynTransReplyEncode(&good, 18, buffer, sizeof buffer);
        EXPECT_EQ(toHex(buffer, length), "B2 04 04 02 4F 4B");
        length = ZynTransReplyEncode(nullptr, 0, buffer, sizeof buffer);
        EXPECT_EQ(toHex(buffer, length), "A0 00");
        EXPECT_EQ(ZynTransReplyEncode(&good, 19, buffer, sizeof buffer), 0u) << "no alternative of a reply";

        ZynTransRep reply;
        const auto octets = hex("B2 0A 04 02 4F 4B 0A 01 05 FF FF FF");
        ASSERT_EQ(ZynTransReplyDecode(octets.data(), 9, &reply), -211) << "the last field ends before the record does";
        const auto whole = hex("B2 07 04 02 4F 4B 0A 01 05 FF FF FF");
        ASSERT_EQ(ZynTransReplyDecode(whole.data(), 12, &reply), 0) << "octets behind the message are ignored";
        EXPECT_EQ(reply.choiceId, 18u);
        EXPECT_EQ(reply.replyOK->extraInfo.octs, nullptr);
        EXPECT_EQ(*reply.replyOK->replyHint, 5);
    }
}

TEST_F(Messages, EmptyBlocks) {
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        ZynTransRep reply;
        EXPECT_EQ(ZynTransReplyDecode(nullptr, 0, &reply), -26);
        EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, nullptr, 0), 0u);
        AsnOcts text;
        EXPECT_EQ(ZynTextStrDecode(nullptr, 0, &text), -26);
    }
}

TEST_F(Messages, RoomIsNeededToTheOctet) {
    ZynReplyOK good{};
    ZynTextStrSet(&good.infoMessage, "OK", 0);
    EXPECT_EQ(ZynTransReplyEncode(&good, 18, buffer, 6), 6u);
    EXPECT_EQ(ZynTransReplyEncode(&good, 18, buffer, 5), 0u);
    EXPECT_EQ(ZynTextStrEncode(&good.infoMessage, buffer, 4), 4u);
    EXPECT_EQ(ZynTextStrEncode(&good.infoMessage, buffer, 3), 0u);
}

// The block is never touched behind its head, as the bits are refused before they are copied.
TEST_F(Messages, MoreBitsThan31BitsCount) {
    const auto head = hex("BF 82 05 84 10 00 00 0E 30 00 04 00 0A 01 01 03 84 10 00 00 01 00");
    const std::size_t length = head.size() + (1u << 28);
    const std::unique_ptr<void, void (*)(void*)> block(std::calloc(length, 1), std::free);
    ASSERT_NE(block, nullptr);
    auto* octets = static_cast<uint8_t*>(block.get());
    std::copy(head.begin(), head.end(), octets);
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        ZynQueryRep reply;
        EXPECT_EQ(ZynQueryReplyDecode(octets, static_cast<uint32_t>(length), &reply), ZYN_E_BITS_TOO_MANY);
    }
}

// All twelve characters, or fewer with blanks behind them; blanks in front and in the middle are the sender's.
TEST_F(Messages, SendersOfEveryLength) {
    const std::string name = "A BCDEFGHIJK";
    for (std::size_t length = 0; length <= name.size(); ++length) {
        std::string sender = name.substr(0, length);
        while (!sender.empty() && sender.back() == ' ') sender.pop_back();
        std::string padded = sender + std::string(12 - sender.size(), ' ');
        ZynTransReq request;
        const uint32_t octets = ZynTransRequestEncode(padded.data(), nullptr, 456, buffer, sizeof buffer);
        ASSERT_EQ(ZynTransRequestDecode(buffer, octets, &request), 0);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(request.userId.octs), request.userId.octetLen), sender);
    }
}

TEST_F(Messages, ValuesWithoutWireFormSendNothing) {
    zyn::directAllowed = true;
    ZynOrderSingleReq unset{};
    EXPECT_EQ(ZynQueryRequestEncode(user, &unset, 286, buffer, sizeof buffer), 0u) << "a required pointer is not set";
    EXPECT_EQ(ZynTransRequestEncode(user, nullptr, 426, buffer, sizeof buffer), 0u) << "no record for the alternative";
}

TEST_F(Messages, WhatACallDoesToTheArena) {
    const auto request = hex("30 08 04 02 55 31 BF 83 48 00");
    ZynTransReq decoded;
    const auto free = [] { return static_cast<size_t>(nmG->currNibbleBuf->curr - nmG->currNibbleBuf->start); };

    ASSERT_EQ(ZynTransRequestDecode(request.data(), 10, &decoded), 0);
    EXPECT_GT(free(), 0u);
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, buffer, 1), 0u);
    EXPECT_GT(free(), 0u) << "a failed Encode leaves the arena alone";
    AsnOcts text;
    ZynTextStrSet(&text, "AB", 0);
    EXPECT_EQ(ZynTextStrEncode(&text, buffer, sizeof buffer), 4u);
    EXPECT_EQ(toHex(buffer, 4), "04 02 41 42");
    EXPECT_GT(free(), 0u) << "so does the text encoder";
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, buffer, 2), 2u);
    EXPECT_EQ(free(), 0u) << "a successful Encode resets it";
    ServiceNibbleFault(1);
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, buffer, 2), 2u);
    EXPECT_EQ(nmG->firstNibbleBuf->next, nullptr) << "and gives back a block from which nothing was taken";
    ZynEncodeMemAlloc(100);
    EXPECT_EQ(ZynTextStrDecode(buffer, 0, &text), -26);
    EXPECT_EQ(free(), 0u) << "any Decode resets it first, whether it succeeds or not";
    EXPECT_EQ(ZynTextStrDecode(hex("24 80 04 01 41 04 01 42 00 00").data(), 10, &text), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(text.octs)), "AB");
}

TEST_F(Messages, ShutdownAndComeBack) {
    ZynShutdown();
    EXPECT_EQ(nmG, nullptr);
    ZynEncodeMemReset();
    ZynShutdown();
    EXPECT_EQ(nmG, nullptr) << "nothing is set up by dropping";
    EXPECT_NE(ZynEncodeMemAlloc(8), nullptr);
    ShutdownNibbleMem();
    ZynTransRep reply;
    EXPECT_EQ(ZynTransReplyDecode(hex("A0 00").data(), 2, &reply), 0);
    EXPECT_EQ(nmG->firstNibbleBuf->end - nmG->firstNibbleBuf->start, 8192);
    EXPECT_EQ(nmG->incrementSize, 1024u);
}

TEST_F(Messages, InfinitiesGoOutAsTheVariablesSay) {
    const AsnReal plus = PLUS_INFINITY, minus = MINUS_INFINITY;
    AsnFixedReal price{std::numeric_limits<double>::infinity(), nullptr};
    ZynSecOptBoardId board{};
    ZynTextStrSet(&board.secCode, "S", 0);
    ZynOrderEntry entry{};
    entry.secBoardId = &board;
    entry.price = &price;
    ZynOrder order{&entry};
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        PLUS_INFINITY = MINUS_INFINITY = 0.0;
        EXPECT_EQ(ZynTransRequestEncode(user, &order, 426, buffer, sizeof buffer), 0u) << "no wire form before set-up";
        InitAsnInfinity();
        uint32_t length = ZynTransRequestEncode(user, &order, 426, buffer, sizeof buffer);
        EXPECT_NE(toHex(buffer, length).find("A2 03 09 01 40"), std::string::npos);
        ZynTransReq request;
        ASSERT_EQ(ZynTransRequestDecode(buffer, length, &request), 0);
        EXPECT_EQ(request.upTransMsg->order->order->price->value, PLUS_INFINITY);
        PLUS_INFINITY = 1.5; // the variables are read at each use, whatever they hold
        price.value = 1.5;
        length = ZynTransRequestEncode(user, &order, 426, buffer, sizeof buffer);
        EXPECT_NE(toHex(buffer, length).find("A2 03 09 01 40"), std::string::npos);
        price.value = std::numeric_limits<double>::infinity();
        InitAsnInfinity();
        MINUS_INFINITY = PLUS_INFINITY; // of two that are the same the lower one is asked first
        length = ZynTransRequestEncode(user, &order, 426, buffer, sizeof buffer);
        EXPECT_NE(toHex(buffer, length).find("A2 03 09 01 41"), std::string::npos);
    }
    PLUS_INFINITY = plus;
    MINUS_INFINITY = minus;
}

} // namespace
