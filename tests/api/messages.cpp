// The entry points: whole messages, what a call does to the arena, and memory that is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "api/way.h"
#include "tests/support/hex.h"
#include "zyn/zyn.h"

// The test executable routes the library's allocations through here (linker option --wrap).
extern "C" {
void* __real_malloc(size_t);
void* __real_calloc(size_t, size_t);
void* __real_realloc(void*, size_t);
}

namespace {

int allocationsBeforeRefusal = -1; // -1: none is refused
bool refuseAllAfter = false;

bool refuses() {
    if (allocationsBeforeRefusal < 0) return false;
    if (allocationsBeforeRefusal == 0) {
        if (!refuseAllAfter) allocationsBeforeRefusal = -1;
        return true;
    }
    --allocationsBeforeRefusal;
    return false;
}

int errorsReported = 0;
void countError(char*, int) { ++errorsReported; }

class Messages : public testing::Test {
protected:
    void SetUp() override {
        errorsReported = 0;
        previous = Asn1InstallErrorHandler(countError);
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
    }
    PLUS_INFINITY = plus;
    MINUS_INFINITY = minus;
}

// Every kind of allocation there is, in one go; true if all of it went well.
bool useEverything() {
    bool good = true;
    AsnList* list = ZynListNew();
    if (list) {
        for (int i = 0; i < 200; ++i) {
            const AsnList before = *list;
            if (ZynListAppend(list, 64)) continue;
            good = false;
            EXPECT_EQ(list->count, before.count);
            EXPECT_EQ(list->last, before.last);
            if (list->last) { EXPECT_EQ(list->last->next, nullptr); }
        }
    }
    good = good && list;
    AsnFixedReal price;
    ZynFixedRealSetWithDecimals(&price, 1.5, 2);
    EXPECT_EQ(price.decimals == nullptr, std::isnan(price.value)) << "no price turns silently into another";
    good = good && price.decimals;

    // A string in 200 pieces, one of 5,000 octets, and a list: the string stack and later blocks.
    std::string pieces = "30 82 17 A1 04 02 55 31 BF 83 47 82 17 97 24 80";
    std::string cut;
    for (int i = 0; i < 200; ++i) cut += " 04 01 41";
    const auto text = hex("24 80" + cut + " 00 00");
    AsnOcts decoded;
    const int32_t code = ZynTextStrDecode(text.data(), static_cast<uint32_t>(text.size()), &decoded);
    EXPECT_TRUE(code == 0 || code == ZYN_E_NO_MEMORY) << code;
    good = good && code == 0;

    std::vector<uint8_t> large = hex("B2 82 4E 24 04 82 4E 20");
    large.resize(large.size() + 20000, 'x');
    for (const bool direct : {true, false}) {
        zyn::directAllowed = direct;
        ZynTransRep reply;
        const int32_t result = ZynTransReplyDecode(large.data(), static_cast<uint32_t>(large.size()), &reply);
        EXPECT_TRUE(result == 0 || result == ZYN_E_NO_MEMORY) << result;
        good = good && result == 0;
        uint8_t out[8];
        const uint32_t length = ZynTransReplyEncode(nullptr, 0, out, sizeof out);
        EXPECT_TRUE(length == 0 || length == 2);
        good = good && length == 2;
    }
    return good;
}

TEST_F(Messages, RefusedMemoryFailsThatCallAndNoOther) {
    for (const bool all : {false, true}) {
        bool done = false;
        for (int n = 0; !done; ++n) {
            ASSERT_LT(n, 500) << "the sequence must come to an end without a refusal";
            ZynShutdown();
            refuseAllAfter = all;
            allocationsBeforeRefusal = n;
            const bool good = useEverything();
            done = allocationsBeforeRefusal > 0 || (n > 0 && good);
            allocationsBeforeRefusal = -1;
            EXPECT_TRUE(useEverything()) << "memory is back after refusal " << n;
        }
    }
    EXPECT_EQ(errorsReported, 0) << "refused memory is no message's fault";
}

} // namespace

extern "C" {
void* __wrap_malloc(size_t size) { return refuses() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(size_t count, size_t size) { return refuses() ? nullptr : __real_calloc(count, size); }
void* __wrap_realloc(void* block, size_t size) { return refuses() ? nullptr : __real_realloc(block, size); }
}
