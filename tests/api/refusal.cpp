// What comes of a call when the system allocator refuses: the n-th time that it is asked, or that time and all later ones,
// for every n. The call fails in its own way, reports nothing and leaves things as they were, and the next one works.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "api/way.h"
#include "sbuf/state.h"
#include "tests/support/caught.h"
#include "tests/support/hex.h"
#include "tests/support/printed.h"
#include "tests/support/two-ways.h"

// The test executable routes the library's allocations through here (linker option --wrap).
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void __real_free(void* memory);
}

namespace {

enum class Refuse { Nothing, One, AllLater };

struct Allocator {
    Refuse refuse = Refuse::Nothing;
    unsigned nth = 0; // the first call refused, counted from 1
    unsigned calls = 0;
    bool refused = false;

    bool grants() {
        if (refuse == Refuse::Nothing) return true;
        ++calls;
        if (calls < nth || (refuse == Refuse::One && calls > nth)) return true;
        refused = true;
        return false;
    }
} allocator;

int held = 0; // pieces of memory that were taken and have not been given back

void* counted(void* memory) {
    held += memory != nullptr;
    return memory;
}

} // namespace

extern "C" {
void* __wrap_malloc(size_t size) { return allocator.grants() ? counted(__real_malloc(size)) : nullptr; }
void* __wrap_calloc(size_t count, size_t size) {
    return allocator.grants() ? counted(__real_calloc(count, size)) : nullptr;
}
void* __wrap_realloc(void* memory, size_t size) {
    if (!allocator.grants()) return nullptr;
    void* moved = __real_realloc(memory, size);
    return memory ? moved : counted(moved);
}
void __wrap_free(void* memory) {
    held -= memory != nullptr;
    __real_free(memory);
}
}

namespace zyn::test {
namespace {

enum class End { Good, Refused, Other };

End endOf(int32_t code) { return code == 0 ? End::Good : code == ZYN_E_NO_MEMORY ? End::Refused : End::Other; }
End endOf(const void* memory) { return memory ? End::Good : End::Refused; }
End lengthEnd(uint32_t length, uint32_t good) {
    return length == good ? End::Good : length == 0 ? End::Refused : End::Other;
}

int errorsReported = 0;

// The least allocations that call is known to make keep the loop from proving nothing.
template <typename Prepare, typename Call> void refuseEach(unsigned atLeast, Prepare prepare, Call call) {
    Asn1ErrorHandler previous = Asn1InstallErrorHandler([](char*, int) { ++errorsReported; });
    ZynShutdown();
    const int before = held;
    for (const Refuse refuse : {Refuse::One, Refuse::AllLater}) {
        for (unsigned nth = 1;; ++nth) {
            prepare();
            errorsReported = 0;
            allocator = {.refuse = refuse, .nth = nth};
            const End end = call();
            const bool refused = allocator.refused;
            allocator = {};
            EXPECT_EQ(end, refused ? End::Refused : End::Good) << "allocation " << nth;
            EXPECT_EQ(errorsReported, 0) << "refused memory is no message's fault";
            EXPECT_EQ(call(), End::Good) << "behind the refusal of allocation " << nth;
            ZynShutdown();
            EXPECT_EQ(held, before) << "all memory is given back, with allocation " << nth << " refused";
            if (!refused) {
                EXPECT_GT(nth, atLeast);
                break;
            }
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
    Asn1InstallErrorHandler(previous);
}

// The library's own arena in blocks so small that every piece of memory is asked of the system allocator.
void tinyArena() {
    ZynEncodeMemAlloc(0);
    ShutdownNibbleMem();
    InitNibbleMem(0, 0);
}

void noArena() {}

AsnList* list = nullptr;

void fullArenaWithAList() {
    InitNibbleMem(sizeof(AsnList) + 2 * (sizeof(AsnListNode) + sizeof(void*)), 8);
    list = AsnListNew(sizeof(void*));
    AsnListAppend(list);
    AsnListAppend(list);
    AsnListFirst(list);
}

// The ways to add an element; one that fails leaves the list and its nodes as they were.
template <auto add> End addToList() {
    const AsnList before = *list;
    const AsnListNode nodes[] = {*list->first, *list->last};
    const End end = endOf(add(list));
    if (end == End::Refused) {
        EXPECT_EQ(std::memcmp(&before, list, sizeof before), 0);
        EXPECT_EQ(std::memcmp(&nodes[0], list->first, sizeof nodes[0]), 0);
        EXPECT_EQ(std::memcmp(&nodes[1], list->last, sizeof nodes[1]), 0);
    } else {
        EXPECT_EQ(list->count, before.count + 1);
    }
    return end;
}

void* appendElement(AsnList* l) { return ZynListAppend(l, 64); }

End appendToAnEmptyList() {
    AsnList empty = {nullptr, nullptr, nullptr, 0, sizeof(void*)};
    const AsnList before = empty;
    const End end = endOf(appendElement(&empty));
    if (end == End::Refused) {
        EXPECT_EQ(std::memcmp(&before, &empty, sizeof before), 0);
    }
    return end;
}

void arenaWithAList() {
    tinyArena();
    list = ZynListNew();
    for (int i = 0; i < 2; ++i) appendElement(list);
    AsnListFirst(list);
}

End makeArena() {
    ShutdownNibbleMem();
    InitNibbleMem(64, 64);
    return endOf(nmG);
}

// What is left of a block is still given when there is no next one.
End allocateBeyondTheBlock() {
    ResetNibbleMem();
    NibbleAlloc(8);
    const NibbleMem before = *nmG;
    const NibbleBuf block = *nmG->firstNibbleBuf;
    if (NibbleAlloc(65)) return End::Good;
    EXPECT_EQ(nmG->firstNibbleBuf, before.firstNibbleBuf);
    EXPECT_EQ(nmG->currNibbleBuf, before.currNibbleBuf);
    EXPECT_EQ(nmG->incrementSize, before.incrementSize);
    EXPECT_EQ(std::memcmp(&block, nmG->firstNibbleBuf, sizeof block), 0);
    EXPECT_EQ(NibbleAlloc(56), block.curr);
    return End::Refused;
}

// Deep enough and in pieces enough that both tables of constructed strings grow, more than once.
Octets deepString(int depth, const char* outer, int pieces, const char* piece) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += outer;
    for (int i = 0; i < pieces; ++i) text += piece;
    for (int i = 0; i < depth; ++i) text += "00 00 ";
    return hex(text);
}

template <auto decode, typename Value>
End decodeString(const Octets& octets, int32_t length, int32_t (*lengthOf)(const Value&)) {
    ResetNibbleMem();
    Value value = {};
    AsnLen count = 0;
    SBuf b = readingBuffer(const_cast<uint8_t*>(octets.data()), octets.size());
    jmp_buf env;
    if (const int code = setjmp(env)) return endOf(code);
    decode(&b, &value, &count, env);
    EXPECT_EQ(lengthOf(value), length);
    return End::Good;
}

int32_t lengthOfOcts(const AsnOcts& v) { return static_cast<int32_t>(v.octetLen); }
int32_t lengthOfBits(const AsnBits& v) { return v.bitLen; }

End decodeOcts(const Octets& octets, int32_t length) { return decodeString<BDecAsnOcts>(octets, length, lengthOfOcts); }
End decodeBits(const Octets& octets, int32_t length) { return decodeString<BDecAsnBits>(octets, length, lengthOfBits); }

// No price turns silently into another: without memory for the decimals it has no wire form.
template <auto set> End sendPrice() {
    AsnFixedReal price;
    set(&price);
    EXPECT_EQ(price.decimals == nullptr, std::isnan(price.value));
    ZynSecOptBoardId board = {};
    ZynOrderEntry entry = {};
    entry.secBoardId = &board;
    entry.price = &price;
    ZynOrder order = {&entry};
    uint8_t block[256];
    ZynEncodeMemAlloc(0); // so that the Encode has its arena, as far as memory goes
    const uint32_t length = ZynTransRequestEncode("U1          ", &order, 426, block, sizeof block);
    if (!price.decimals) {
        EXPECT_EQ(length, 0u);
    }
    return length > 0 ? End::Good : End::Refused;
}

void setNullPrice(AsnFixedReal* price) { ZynFixedRealSet(price, -99999999.0); }
void setPrice(AsnFixedReal* price) { ZynFixedRealSetWithDecimals(price, 1.5, 2); }

End decodeReply() {
    const uint8_t octets[] = {0xA0, 0x00};
    ZynTransRep reply;
    return endOf(ZynTransReplyDecode(octets, sizeof octets, &reply));
}

End makeContext() {
    ZynContext* context = ZynContextNew();
    ZynContextFree(context);
    return endOf(context);
}

End encodeText() {
    uint8_t block[8];
    AsnOcts text = {};
    return lengthEnd(ZynTextStrEncode(&text, block, sizeof block), 2);
}

End decodeText() {
    static const Octets octets = deepString(1, "24 80 ", 200, "04 01 41 ");
    AsnOcts text;
    return endOf(ZynTextStrDecode(octets.data(), static_cast<uint32_t>(octets.size()), &text));
}

template <auto encode> End encodeReply() {
    uint8_t block[8];
    return lengthEnd(encode(nullptr, 0, block, sizeof block), 2);
}

template <auto encode> End encodeRequest() {
    uint8_t block[64];
    return lengthEnd(encode("U1          ", nullptr, 1000, block, sizeof block),
                     6); // no such alternative: the sender alone
}

TEST(Refusal, EveryCall) {
    struct Row {
        const char* name;
        unsigned atLeast; // allocations
        void (*prepare)();
        End (*call)();
    };
    const Row rows[] = {
        {"InitNibbleMem", 3, noArena, makeArena},
        {"NibbleAlloc", 2, [] { InitNibbleMem(64, 64); }, allocateBeyondTheBlock},
        {"ZynContextNew", 1, noArena, makeContext},
        {"AsnListNew", 2, tinyArena, [] { return endOf(AsnListNew(8)); }},
        {"AsnListAppend", 2, fullArenaWithAList, addToList<AsnListAppend>},
        {"AsnListPrepend", 2, fullArenaWithAList, addToList<AsnListPrepend>},
        {"AsnListAdd", 2, fullArenaWithAList, addToList<AsnListAdd>},
        {"AsnListInsert", 2, fullArenaWithAList, addToList<AsnListInsert>},
        {"ZynEncodeMemAlloc, set-up", 3, noArena, [] { return endOf(ZynEncodeMemAlloc(8)); }},
        {"ZynEncodeMemAlloc", 2, tinyArena, [] { return endOf(ZynEncodeMemAlloc(20)); }},
        {"ZynListNew, set-up", 3, noArena, [] { return endOf(ZynListNew()); }},
        {"ZynListNew", 2, tinyArena, [] { return endOf(ZynListNew()); }},
        {"ZynListAppend, set-up", 3, noArena, appendToAnEmptyList},
        {"ZynListAppend", 4, arenaWithAList, addToList<appendElement>},
        {"ZynListAppend to an empty list", 4, tinyArena, appendToAnEmptyList},
        {"ZynFixedRealSet", 2, tinyArena, sendPrice<setNullPrice>},
        {"ZynFixedRealSetWithDecimals", 2, tinyArena, sendPrice<setPrice>},
        {"ZynTextStrEncode", 3, noArena, encodeText},
        {"ZynTextStrDecode, set-up", 5, noArena, decodeText},
        {"ZynTransReplyEncode", 3, noArena, encodeReply<ZynTransReplyEncode>},
        {"ZynQueryReplyEncode", 3, noArena, encodeReply<ZynQueryReplyEncode>},
        {"ZynTransReplyDecode", 3, noArena, decodeReply},
        {"ZynTransRequestEncode", 3, noArena, encodeRequest<ZynTransRequestEncode>},
        {"ZynQueryRequestEncode", 3, noArena, encodeRequest<ZynQueryRequestEncode>},
        {"OCTET STRING", 2, tinyArena, [] { return decodeOcts(hex("04 09 41 41 41 41 41 41 41 41 41"), 9); }},
        {"BIT STRING", 2, tinyArena, [] { return decodeBits(hex("03 0A 00 41 41 41 41 41 41 41 41 41"), 72); }},
        {"constructed OCTET STRING", 8, tinyArena,
         [] { return decodeOcts(deepString(100, "24 80 ", 300, "04 01 41 "), 300); }},
        {"constructed BIT STRING", 8, tinyArena,
         [] { return decodeBits(deepString(100, "23 80 ", 300, "03 02 00 41 "), 2400); }},
    };
    for (const bool direct : {true, false}) {
        directAllowed = direct;
        for (const Row& row : rows) {
            SCOPED_TRACE(row.name);
            refuseEach(row.atLeast, row.prepare, row.call);
        }
    }
    directAllowed = true;
}

// All messages, by both ways, in the form that encoders write and in others; and what was decoded prints without memory.
TEST(Refusal, EveryMessage) {
    const std::string user = "TRADER01    ";
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            SCOPED_TRACE(std::string(channel.name) + " " + row.name);
            Sampler sampler(row.number, {100, 12, 1});
            const ChoiceRecord* choice = sampler.make(channel.choice, row);
            const Octets octets[] = {messageOf(channel, user, choice),
                                     messageOf(channel, user, choice, Writer({50, 0, 50, 0, 0}, row.number))};
            alignas(8) uint8_t message[64];
            for (const int form : {0, 1, 2}) {
                directAllowed = form != 1;
                const Octets& sent = octets[form / 2];
                refuseEach(1, tinyArena, [&] {
                    const End end = endOf(channel.decode(sent.data(), static_cast<uint32_t>(sent.size()), message));
                    if (end == End::Good) {
                        EXPECT_EQ(difference(channel.choice, choice, choiceIn(channel, message)), "");
                    }
                    return end;
                });
            }
            directAllowed = true;
            ASSERT_EQ(channel.decode(octets[0].data(), static_cast<uint32_t>(octets[0].size()), message), 0);
            const std::string text = printed(channel.message, message);
            allocator = {.refuse = Refuse::AllLater, .nth = 1};
            const std::string again = printed(channel.message, message);
            allocator = {};
            EXPECT_EQ(again, text);
            ZynShutdown();
        }
    }
}

TEST(Refusal, BlocksBehindTheFirstAreGivenBackByAReset) {
    ZynShutdown();
    const int before = held;
    ZynEncodeMemAlloc(8);
    const int withOneBlock = held;
    for (int i = 0; i < 3; ++i) ZynEncodeMemAlloc(20'000);
    EXPECT_EQ(held, withOneBlock + 6);
    ZynEncodeMemReset();
    EXPECT_EQ(held, withOneBlock);
    ZynShutdown();
    EXPECT_EQ(held, before);
}

// A tag that is none is found before memory for the value behind it is asked for.
TEST(Refusal, WhatIsWrongBeforeMemoryIsAskedFor) {
    Octets octets = hex("30 82 20 05 04 82 1F FF");
    octets.insert(octets.end(), 8191, 'A'); // fills the first block
    append(octets, hex("05 00"));
    for (const bool direct : {true, false}) {
        directAllowed = direct;
        ZynShutdown();
        ZynEncodeMemAlloc(0);
        allocator = {.refuse = Refuse::AllLater, .nth = 1};
        ZynTransReq request;
        EXPECT_EQ(ZynTransRequestDecode(octets.data(), static_cast<uint32_t>(octets.size()), &request), -111);
        allocator = {};
    }
    directAllowed = true;
}

// Rounding such a size up to 8 has no room in 32 bits.
TEST(Refusal, SizesNearTheLargest) {
    InitNibbleMem(64, 64);
    for (const uint32_t size : {0xFFFFFFF8u, 0xFFFFFFF9u, 0xFFFFFFFFu}) {
        allocator = {.refuse = Refuse::AllLater, .nth = 1};
        void* memory = NibbleAlloc(size);
        allocator = {};
        EXPECT_EQ(memory, nullptr) << size;
        EXPECT_EQ(nmG->currNibbleBuf->curr, nmG->currNibbleBuf->start) << size;
    }
    ZynShutdown();
}

} // namespace
} // namespace zyn::test
