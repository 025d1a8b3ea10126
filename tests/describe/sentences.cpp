// Failures told in full, one of each kind, and how long they are told.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/caught.h"
#include "tests/support/hex.h"
#include "zyn/zyn.h"

extern "C" {
void* __real_malloc(size_t);
void* __real_calloc(size_t, size_t);
void* __real_realloc(void*, size_t);
}

namespace {

bool refuseMemory = false;

void ignore(char*, int) {}

class Sentences : public testing::Test {
protected:
    void SetUp() override { handler = Asn1InstallErrorHandler(ignore); }
    void TearDown() override { Asn1InstallErrorHandler(handler); }

    // A decode, and all that is told of it in one line.
    std::string told(ZynChannel channel, const std::vector<uint8_t>& octets) {
        alignas(8) uint8_t envelope[64];
        const int32_t code = ZynDecode(channel, octets.data(), static_cast<uint32_t>(octets.size()), envelope);
        return lastFailure(code);
    }

    static std::string lastFailure(int32_t code) {
        ZynFailure f;
        if (ZynLastFailure(&f) == 0) return "none";
        EXPECT_EQ(f.code, code);
        return std::to_string(f.code) + " " + f.module + "." + f.record + "." + f.field + " " + f.path + " @" +
               std::to_string(f.offset) + ": " + f.text;
    }

    Asn1ErrorHandler handler = nullptr;
};

TEST_F(Sentences, OfDecodes) {
    constexpr ZynChannel request = ZYN_TRANS_REQUEST, reply = ZYN_TRANS_REPLY, query = ZYN_QUERY_REPLY,
                         queryRequest = ZYN_QUERY_REQUEST;
    struct {
        ZynChannel channel;
        const char* octets;
        const char* told;
    } const rows[] = {
        // Tags.
        {request, "30 0E 04 02 55 31 BF 83 47 07 02 05 61 62 63 64 65",
         "-126 User.ZynUserLogon.loginPassword upTransMsg.userLogon.loginPassword @10: "
         "expected OCTET STRING (04) for loginPassword, found INTEGER (02) of 5 octets"},
        {request, "30 08 04 02 55 31 BF 83 47 00 05 00",
         "-126 User.ZynUserLogon.loginPassword upTransMsg.userLogon.loginPassword @10: "
         "expected OCTET STRING (04) for loginPassword, found the end of ZynUserLogon"},
        {request, "30 04 04 02 55 31 A1 00",
         "-111 Main.ZynTransReq.upTransMsg upTransMsg @6: "
         "expected an alternative of ZynTransReqChoice for upTransMsg, found the end of ZynTransReq"},
        {request, "B2 00",
         "-108 Main.ZynTransReq.  @0: expected SEQUENCE (30) for ZynTransReq, found [18] (B2) of 0 octets"},
        {reply, "BF 83 47 00",
         "-113 Main.ZynTransRep.  @0: expected an alternative of ZynTransRep, found [455] (BF8347) of 0 octets"},
        {request, "30 0F 04 02 55 31 BF 83 21 06 BF 21 03 02 01 05",
         "-187 Misc.ZynTransLogStepThrough. upTransMsg.transLogStepThrough @10: "
         "expected an alternative of ZynTransLogStepThrough, found [33] (BF21) of 3 octets"},
        {query, "BF 82 0E 04 31 02 04 00",
         "-105 Index.ZynIndexValRepSetOf. indexValRep.valuesList[0] @6: "
         "expected SEQUENCE (30) for valuesList[0], found OCTET STRING (04) of 0 octets"},
        {queryRequest, "30 11 04 02 55 31 BF 82 05 08 30 06 A1 04 03 02 01 05",
         "-119 CommonTypes.AsnSequenceContext.seqNum upQueryMsg.boardReq.seqContext.seqNum @14: "
         "expected INTEGER (02) inside seqNum, found BIT STRING (03) of 2 octets"},
        {queryRequest, "30 0F 04 02 55 31 BF 82 05 06 30 04 45 02 01 05",
         "-122 CommonTypes.AsnSequenceContext. upQueryMsg.boardReq.seqContext @12: "
         "expected another field of AsnSequenceContext or its end, found [APPLICATION 5] (45) of 2 octets"},
        {queryRequest, "30 0F 04 02 55 31 BF 82 05 06 30 04 DF 7F 01 05",
         "-122 CommonTypes.AsnSequenceContext. upQueryMsg.boardReq.seqContext @12: "
         "expected another field of AsnSequenceContext or its end, found [PRIVATE 127] (DF7F) of 1 octet"},
        // Lengths.
        {queryRequest, "30 0D 04 02 55 31 BF 82 0D 05 02 01 07 05 00",
         "-106 Index.ZynIndexReq. upQueryMsg.indexReq @15: "
         "expected the fields of ZynIndexReq to take 5 octets, as its length says, found 3"},
        {queryRequest, "30 0D 04 02 55 31 BF 82 0D 40 02 01 07 05 00",
         "-106 Index.ZynIndexReq. upQueryMsg.indexReq @15: "
         "expected the fields of ZynIndexReq to take 64 octets, as its length says, found 3"},
        {request, "30 0B 04 02 55 31 BF 83 1B 02 05 00",
         "-174 Misc.ZynTEOpen. upTransMsg.teOpen @6: expected no content in ZynTEOpen, found 2 octets"},
        {request, "30 85 00",
         "-14 Main.ZynTransReq.  @0: a length has more than 4 octets beyond the first: "
         "expected SEQUENCE (30) for ZynTransReq, found SEQUENCE (30) with an overlong length"},
        // The end of the data.
        {request, "",
         "-26 Main.ZynTransReq.  @0: the data end where a tag is due, or inside it: "
         "expected SEQUENCE (30) for ZynTransReq, found the end of the data"},
        {reply, "BF",
         "-26 Main.ZynTransRep.  @1: the data end where a tag is due, or inside it: "
         "expected an alternative of ZynTransRep, found octets BF, then the end of the data"},
        {request, "30 80 04 02 55 31 BF 83 47 80 04 05 61 62",
         "-20 User.ZynUserLogon.loginPassword upTransMsg.userLogon.loginPassword @14: the data end inside an OCTET "
         "STRING: "
         "expected OCTET STRING (04) for loginPassword, found OCTET STRING (04) of 5 octets, then the end of the data"},
        {queryRequest, "30 80 04 02 55 31 BF 82 05 80 30 80",
         "-26 CommonTypes.AsnSequenceContext.seqNum upQueryMsg.boardReq.seqContext.seqNum @12: the data end where a "
         "tag is "
         "due, or inside it: expected INTEGER (A1) for seqNum or what may follow it, found the end of the data"},
        {queryRequest, "30 80 04 02 55 31 BF 82 05 80 30 80 A1 80",
         "-26 CommonTypes.AsnSequenceContext.seqNum upQueryMsg.boardReq.seqContext.seqNum @14: the data end where a "
         "tag is "
         "due, or inside it: expected INTEGER (02) for seqNum, found the end of the data"},
        {queryRequest, "30 80 04 02 55 31 BF 82 05 80 30 80 A1 03 02 01 05",
         "-26 CommonTypes.AsnSequenceContext.recNum upQueryMsg.boardReq.seqContext.recNum @17: the data end where a "
         "tag is "
         "due, or inside it: expected INTEGER (A2) for recNum or what may follow it, found the end of the data"},
        // Ends of indefinite lengths: of a record, of a wrapper, where a record may end.
        {queryRequest, "30 80 04 02 55 31 BF 82 0D 80 02 01 07 05 00",
         "-16 Index.ZynIndexReq. upQueryMsg.indexReq @13: no end-of-contents marker where one is due: "
         "expected an end of contents (00) of ZynIndexReq, found NULL (05) of 0 octets"},
        {queryRequest, "30 80 04 02 55 31 BF 82 0D 80 02 01 07 00",
         "-16 Index.ZynIndexReq. upQueryMsg.indexReq @14: no end-of-contents marker where one is due: "
         "expected an end of contents (00) of ZynIndexReq, found an end of contents (00), then the end of the data"},
        {queryRequest, "30 80 04 02 55 31 BF 82 05 80 30 80 A1 80 02 01 05 01 00",
         "-16 CommonTypes.AsnSequenceContext.seqNum upQueryMsg.boardReq.seqContext.seqNum @17: no end-of-contents "
         "marker "
         "where one is due: expected an end of contents (00) of seqNum, found BOOLEAN (01) of 0 octets"},
        {queryRequest, "30 80 04 02 55 31 BF 82 05 80 30 80 00 01",
         "-28 CommonTypes.AsnSequenceContext. upQueryMsg.boardReq.seqContext @12: the second octet of an "
         "end-of-contents "
         "marker is not 0, or is missing: expected an end of contents (00) of AsnSequenceContext, found an end of "
         "contents (00)"},
        // Values.
        {queryRequest, "30 14 04 02 55 31 BF 82 05 0B 30 09 A1 07 02 05 01 02 03 04 05",
         "-7 CommonTypes.AsnSequenceContext.seqNum upQueryMsg.boardReq.seqContext.seqNum @14: "
         "an INTEGER has more than 4 octets: expected INTEGER (02) for seqNum, found INTEGER (02) of 5 octets"},
        // Constructed strings, whose components are told of one by one.
        {request, "30 80 24 80 04 01 55 00 01",
         "-28 Main.ZynTransReq.userId userId @7: the second octet of an end-of-contents marker is not 0, or is "
         "missing: "
         "expected an end of contents (00) of userId, found an end of contents (00)"},
        {request, "30 80 24 80 04 01 55 24 05 04 01 31 02 00 00 00",
         "-19 Main.ZynTransReq.userId userId @12: a component of an OCTET STRING is no OCTET STRING: "
         "expected OCTET STRING (04) in userId, found INTEGER (02) of 0 octets"},
        {request, "30 80 24 80 04 03 55",
         "-18 Main.ZynTransReq.userId userId @7: the data end inside a component of an OCTET STRING: "
         "expected OCTET STRING (04) in userId, found OCTET STRING (04) of 3 octets, then the end of the data"},
        {query, "BF 82 05 80 30 80 00 00 04 00 0A 01 01 23 80 03 02 04 F0 03 02 00 F0 00 00 00 00",
         "-1 Board.ZynBoardRep.orderMethods boardRep.orderMethods @15: a component of a constructed BIT STRING that is "
         "not "
         "the last has unused bits: expected BIT STRING (03) in orderMethods, found BIT STRING (03) of 2 octets"},
        {query, "BF 82 05 80 30 80 00 00 04 00 0A 01 01 23 80 03 03 00 F0",
         "-2 Board.ZynBoardRep.orderMethods boardRep.orderMethods @19: the data end inside a component of a BIT "
         "STRING: "
         "expected BIT STRING (03) in orderMethods, found BIT STRING (03) of 3 octets, then the end of the data"},
        {query, "BF 82 05 80 30 80 00 00 04 00 0A 01 01 23 80 03 02 09 F0 00 00 00 00",
         "-43 Board.ZynBoardRep.orderMethods boardRep.orderMethods @13: a BIT STRING counts more than 7 unused bits, "
         "or more "
         "than it has: expected BIT STRING (03) for orderMethods, found BIT STRING (23) of indefinite length"},
    };
    for (const auto& row : rows) {
        const std::string told = this->told(row.channel, hex(row.octets));
        EXPECT_EQ(told.substr(0, std::string(row.told).size()), row.told) << row.octets << "\n" << told;
    }
}

TEST_F(Sentences, OfTexts) {
    const auto told = [](const char* text) {
        const std::vector<uint8_t> octets = hex(text);
        AsnOcts v;
        return lastFailure(ZynTextStrDecode(octets.data(), static_cast<uint32_t>(octets.size()), &v));
    };
    EXPECT_EQ(told("02 01 05"), "-40 ..  @0: the tag of a value decoded on its own is not that of its type: "
                                "expected OCTET STRING (04), found INTEGER (02) of 1 octet");
    EXPECT_EQ(told("04 02 41"), "-20 ..  @3: the data end inside an OCTET STRING: expected OCTET STRING (04), "
                                "found OCTET STRING (04) of 2 octets, then the end of the data");
    EXPECT_EQ(told("24 03 03 01 41"), "-19 ..  @2: a component of an OCTET STRING is no OCTET STRING: "
                                      "expected OCTET STRING (04), found BIT STRING (03) of 1 octet");
    EXPECT_EQ(told("04 01 41"), "none");
}

TEST_F(Sentences, OfMemoryThatIsRefused) {
    ZynEncodeMemAlloc(0); // the arena is there
    // More than its first block holds.
    std::vector<uint8_t> octets = hex("30 82 27 1B 04 02 55 31 BF 83 47 82 27 11 04 82 27 0D");
    octets.resize(octets.size() + 0x270D);
    refuseMemory = true;
    const std::string refused = told(ZYN_TRANS_REQUEST, octets);
    refuseMemory = false;
    EXPECT_EQ(refused, "-27 User.ZynUserLogon.loginPassword upTransMsg.userLogon.loginPassword @14: "
                       "memory was refused for loginPassword");
    octets = hex("30 80 04 02 55 31 BF 83 47 82 27 11 04 82 27 0D");
    octets.resize(octets.size() + 0x270D);
    octets.resize(octets.size() + 2); // the end of an indefinite length, which goes the exact way
    refuseMemory = true;
    const std::string refusedExactly = told(ZYN_TRANS_REQUEST, octets);
    refuseMemory = false;
    EXPECT_EQ(refusedExactly, "-27 User.ZynUserLogon.loginPassword upTransMsg.userLogon.loginPassword @12: "
                              "memory was refused for loginPassword");
    EXPECT_EQ(told(ZYN_TRANS_REQUEST, octets), "none");

    ZynShutdown();
    refuseMemory = true;
    const std::string noArena = told(ZYN_TRANS_REQUEST, octets);
    uint8_t block[8];
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, block, sizeof block), 0u);
    const std::string noEncode = lastFailure(ZYN_E_NO_MEMORY);
    refuseMemory = false;
    EXPECT_EQ(noArena, "-27 ..  @0: memory was refused");
    EXPECT_EQ(noEncode, noArena);
    EXPECT_EQ(ZynTransReplyEncode(nullptr, 0, block, sizeof block), 2u);
    EXPECT_EQ(lastFailure(0), "none");
}

// A failure is told until the next Decode or Encode, whatever else is done, and neither message nor record is needed.
TEST_F(Sentences, LastUntilTheNextCall) {
    const std::string failed = [&] {
        std::vector<uint8_t> octets = hex("30 04 04 02 55 31 A1 00");
        const std::string text = told(ZYN_TRANS_REQUEST, octets);
        octets.assign(octets.size(), 0xAA);
        return text;
    }();
    ASSERT_NE(failed, "none");
    constexpr int32_t code = -111;

    EXPECT_EQ(lastFailure(code), failed);
    ZynEncodeMemAlloc(100);
    ZynListNew();
    ZynEncodeMemReset();
    EXPECT_EQ(lastFailure(code), failed) << "what callers build records with is no Encode";
    std::vector<uint8_t> wrong = hex("05 01");
    SBuf b = readingBuffer(wrong.data(), wrong.size());
    AsnLen read = 0;
    ZynUserLogon logon = {};
    const Caught own = caught([&](jmp_buf env) { BDecZynUserLogonContent(&b, 0, 2, &logon, &read, env); });
    EXPECT_EQ(own.code, -126);
    EXPECT_EQ(lastFailure(code), failed) << "the operation of a type is no Decode";
    ZynFailureText("Order", -100);
    EXPECT_EQ(lastFailure(code), failed);
    ZynShutdown();
    EXPECT_EQ(lastFailure(code), failed);

    uint8_t block[64];
    const uint32_t length = ZynTransReplyEncode(nullptr, 0, block, sizeof block);
    ASSERT_EQ(length, 2u);
    EXPECT_EQ(lastFailure(0), "none") << "an Encode that succeeds";
    EXPECT_NE(told(ZYN_TRANS_REPLY, wrong), "none");
    ZynEncodeMemAlloc(100);
    EXPECT_EQ(told(ZYN_TRANS_REPLY, std::vector<uint8_t>(block, block + length)), "none") << "a Decode that does";
}

// A handler may leave the library by a jump of its own.
jmp_buf outside;
void leave(char*, int) { std::longjmp(outside, 1); }

TEST_F(Sentences, AreKeptWhenAHandlerJumpsAway) {
    static const std::vector<uint8_t> octets = hex("30 85 00");
    static ZynTransReq request;
    Asn1InstallErrorHandler(leave);
    if (setjmp(outside) == 0) {
        ZynTransRequestDecode(octets.data(), static_cast<uint32_t>(octets.size()), &request);
        FAIL() << "nothing was reported";
    }
    EXPECT_NE(lastFailure(ZYN_E_LENGTH_TOO_LONG), "none");
}

} // namespace

extern "C" {
void* __wrap_malloc(size_t size) { return refuseMemory ? nullptr : __real_malloc(size); }
void* __wrap_calloc(size_t count, size_t size) { return refuseMemory ? nullptr : __real_calloc(count, size); }
void* __wrap_realloc(void* block, size_t size) { return refuseMemory ? nullptr : __real_realloc(block, size); }
}
