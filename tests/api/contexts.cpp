// Contexts in one thread: each has an arena, a string stack, a handler and an indentation of its own.
#include <gtest/gtest.h>

#include <csetjmp>
#include <cstring>
#include <thread>

#include "tests/support/hex.h"
#include "tests/support/printed.h"
#include "zyn/zyn.h"

namespace {

std::string seen[2]; // by the two handlers below
void first(char* text, int) { seen[0] += text; }
void second(char* text, int) { seen[1] += text; }

std::string text(const AsnOcts& octs) { return {reinterpret_cast<const char*>(octs.octs), octs.octetLen}; }

int32_t decode(const char* octets, ZynTransRep& reply) {
    const auto message = hex(octets);
    return ZynTransReplyDecode(message.data(), static_cast<uint32_t>(message.size()), &reply);
}

constexpr const char* whole = "B2 04 04 02 4F 4B";
constexpr const char* pieces = "B2 0B 24 80 04 01 4F 04 02 4B 21 00 00";
constexpr const char* cut = "B2";

class Contexts : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(a && b); }
    void TearDown() override {
        ZynContextUse(nullptr);
        Asn1InstallErrorHandler(nullptr);
        stdIndentG = 4;
        seen[0] = seen[1] = "";
        ZynContextFree(a);
        ZynContextFree(b);
    }
    ZynContext* const a = ZynContextNew();
    ZynContext* const b = ZynContextNew();
};

TEST_F(Contexts, UseReturnsTheOneBefore) {
    EXPECT_EQ(ZynContextUse(a), nullptr);
    EXPECT_EQ(ZynContextUse(b), a);
    EXPECT_EQ(ZynContextUse(b), b);
    EXPECT_EQ(ZynContextUse(nullptr), b);
    EXPECT_EQ(ZynContextUse(nullptr), nullptr);
}

TEST_F(Contexts, WhatWasDecodedStaysThere) {
    ZynTransRep replies[3];
    ZynContext* const states[] = {nullptr, a, b};
    const char* const messages[] = {"B2 04 04 02 41 41", "B2 04 04 02 42 42", "B2 0A 24 80 04 01 43 04 01 43 00 00"};
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 3; ++i) {
            ZynContextUse(states[i]);
            ASSERT_EQ(decode(messages[i], replies[i]), 0);
        }
        EXPECT_EQ(text(replies[0].replyOK->infoMessage), "AA");
        EXPECT_EQ(text(replies[1].replyOK->infoMessage), "BB");
        EXPECT_EQ(text(replies[2].replyOK->infoMessage), "CC");
    }
    uint8_t buffer[8];
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, buffer, sizeof buffer), 2u);
    ZynEncodeMemReset();
    ZynShutdown();
    EXPECT_EQ(text(replies[0].replyOK->infoMessage), "AA") << "the last context was emptied, the others were not";
    EXPECT_EQ(text(replies[1].replyOK->infoMessage), "BB");
    EXPECT_EQ(decode(pieces, replies[2]), 0) << "a context comes back after its shutdown";
    EXPECT_EQ(text(replies[2].replyOK->infoMessage), "OK!");
}

TEST_F(Contexts, ExportedVariablesAreOfTheProcess) {
    ZynTransRep reply;
    ASSERT_EQ(decode(pieces, reply), 0);
    NibbleMem* const arena = nmG;
    const NibbleBuf blockBefore = *nmG->currNibbleBuf;
    const StrStk stackBefore = strStkG;
    ZynContextUse(a);
    InitNibbleMem(16, 16);
    EXPECT_NE(NibbleAlloc(8), nullptr);
    ShutdownNibbleMem();
    EXPECT_EQ(NibbleAlloc(8), nullptr);
    for (const char* message : {"B2 10 24 80 04 01 43 04 01 43 04 01 43 04 01 43 00 00", whole, cut})
        decode(message, reply);
    ZynEncodeMemAlloc(20000);
    ZynShutdown();
    EXPECT_EQ(nmG, arena);
    EXPECT_EQ(std::memcmp(nmG->currNibbleBuf, &blockBefore, sizeof blockBefore), 0);
    EXPECT_EQ(std::memcmp(&strStkG, &stackBefore, sizeof stackBefore), 0);
    EXPECT_EQ(stdIndentG, 4);
}

TEST_F(Contexts, EachHasAHandler) {
    Asn1InstallErrorHandler(second);
    ZynContextUse(a);
    EXPECT_EQ(Asn1InstallErrorHandler(first), Asn1DefaultErrorHandler) << "whatever the process has installed";
    ZynTransRep reply;
    EXPECT_LT(decode(cut, reply), 0);
    EXPECT_NE(seen[0], "");
    EXPECT_EQ(seen[1], "");
    const std::string once = seen[0];
    ZynContextUse(nullptr);
    EXPECT_LT(decode(cut, reply), 0);
    EXPECT_EQ(seen[0], once);
    EXPECT_EQ(seen[1], once);
    ZynContextUse(b);
    EXPECT_EQ(Asn1InstallErrorHandler(nullptr), Asn1DefaultErrorHandler);
    ZynContextUse(a);
    EXPECT_EQ(Asn1InstallErrorHandler(nullptr), first);
}

std::string indentation() {
    ZynReplyOK good = {};
    const std::string printed = zyn::test::printed(zyn::TypeId::ZynReplyOK, &good);
    const std::size_t line = printed.find('\n') + 1;
    return printed.substr(line, printed.find('i') - line);
}

TEST_F(Contexts, EachHasAnIndentation) {
    stdIndentG = 7;
    ZynContextSetIndent(b, 0);
    ZynContextUse(a);
    EXPECT_EQ(indentation(), std::string(4, ' '));
    ZynContextSetIndent(a, 2);
    EXPECT_EQ(indentation(), std::string(2, ' '));
    ZynContextUse(b);
    EXPECT_EQ(indentation(), "");
    ZynContextSetIndent(nullptr, 5);
    EXPECT_EQ(stdIndentG, 5);
    EXPECT_EQ(indentation(), "");
    ZynContextUse(nullptr);
    EXPECT_EQ(indentation(), std::string(5, ' '));
}

jmp_buf outside;

TEST_F(Contexts, AHandlerThatJumpsOutLeavesTheContextBound) {
    ZynContextUse(a);
    Asn1InstallErrorHandler([](char*, int) { std::longjmp(outside, 1); });
    static ZynTransRep reply;
    static const uint8_t message[] = {0xB2};
    if (setjmp(outside) == 0) {
        ZynTransReplyDecode(message, sizeof message, &reply);
        FAIL() << "the handler was not called";
    }
    EXPECT_EQ(ZynContextUse(a), a);
    EXPECT_EQ(decode(whole, reply), 0);
    EXPECT_EQ(nmG ? nmG->currNibbleBuf->curr : nullptr, nmG ? nmG->currNibbleBuf->start : nullptr)
        << "not decoded there";
}

TEST_F(Contexts, AThreadStartsWithoutOneAndMayTakeOneOver) {
    ZynTransRep reply, other;
    ZynContextUse(a);
    ASSERT_EQ(decode(whole, reply), 0);
    ZynContextUse(nullptr);
    std::thread([&] {
        EXPECT_EQ(ZynContextUse(a), nullptr);
        EXPECT_EQ(text(reply.replyOK->infoMessage), "OK");
        EXPECT_EQ(decode(pieces, other), 0);
    }).join();
    EXPECT_EQ(ZynContextUse(a), nullptr) << "what another thread binds is not bound here";
    EXPECT_EQ(text(other.replyOK->infoMessage), "OK!") << "the end of a thread releases nothing";
    std::thread([&] { EXPECT_EQ(ZynContextUse(nullptr), nullptr); }).join();
}

// A sanitizer tells what is not released.
TEST(ContextFree, ReleasesEverythingOfIt) {
    ZynContextFree(nullptr);
    ZynTransRep reply;
    ZynContext* context = ZynContextNew();
    ZynContext* before = ZynContextUse(context);
    ZynEncodeMemAlloc(20000);
    EXPECT_EQ(decode(pieces, reply), 0);
    ZynContextUse(before);
    ASSERT_EQ(decode(pieces, reply), 0);
    ZynContextFree(context);
    EXPECT_EQ(text(reply.replyOK->infoMessage), "OK!") << "another one's";
    EXPECT_EQ(ZynContextUse(nullptr), nullptr);
}

} // namespace
