// What is left behind when the system allocator refuses: the n-th call alone, or it and all later ones, for every n.
#include <gtest/gtest.h>

#include <cstring>

#include "sbuf/state.h"
#include "tests/support/caught.h"
#include "tests/support/hex.h"

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
}

namespace {

enum class Refuse { Nothing, One, AllLater };

struct Allocator {
    Refuse refuse = Refuse::Nothing;
    unsigned calls = 0; // since counting began
    unsigned nth = 0;   // the first one refused, counted from 1
    bool refused = false;

    bool grants() {
        if (refuse == Refuse::Nothing) return true;
        ++calls;
        if (calls < nth || (refuse == Refuse::One && calls > nth)) return true;
        refused = true;
        return false;
    }
} allocator;

// Runs work with the n-th allocation refused, for every n and both ways, until none was refused any more.
template <typename Work> void forEveryRefusal(Work work) {
    for (const Refuse refuse : {Refuse::One, Refuse::AllLater}) {
        bool refused = true;
        for (unsigned nth = 1; refused; ++nth) {
            ASSERT_LT(nth, 1000u);
            work([&](auto call) {
                allocator = {.refuse = refuse, .nth = nth};
                call();
                refused = allocator.refused;
                allocator = {};
                return refused;
            });
            zyn::releaseRuntime();
        }
    }
}

} // namespace

extern "C" {
void* __wrap_malloc(size_t size) { return allocator.grants() ? __real_malloc(size) : nullptr; }
void* __wrap_calloc(size_t count, size_t size) { return allocator.grants() ? __real_calloc(count, size) : nullptr; }
void* __wrap_realloc(void* memory, size_t size) { return allocator.grants() ? __real_realloc(memory, size) : nullptr; }
}

namespace {

struct Outcome {
    int code;
    unsigned messages;
};

unsigned messagesSeen;

// Only what the library does may be counted, so that nothing here allocates.
template <typename Value, typename Decode>
Outcome decode(const std::vector<uint8_t>& octets, Value& value, Decode function) {
    SBuf b = readingBuffer(const_cast<uint8_t*>(octets.data()), octets.size());
    AsnLen count = 0;
    messagesSeen = 0;
    Asn1ErrorHandler previous = Asn1InstallErrorHandler([](char*, int) { ++messagesSeen; });
    jmp_buf env;
    volatile int code = setjmp(env);
    if (code == 0) function(&b, &value, &count, env);
    Asn1InstallErrorHandler(previous);
    return {code, messagesSeen};
}

TEST(Refusal, DecodersEndInTheCodeAndTheNextOneWorks) {
    // Deep enough and in pieces enough that both tables have to grow.
    std::string text;
    for (int i = 0; i < 100; ++i) text += "24 80 ";
    for (int i = 0; i < 300; ++i) text += "04 01 41 ";
    for (int i = 0; i < 100; ++i) text += "00 00 ";
    const std::vector<uint8_t> octets = hex(text);
    std::string bitText = "23 80 ";
    for (int i = 0; i < 300; ++i) bitText += "03 02 00 41 ";
    const std::vector<uint8_t> bits = hex(bitText + "00 00");
    const std::vector<uint8_t> primitive = hex("04 09 41 41 41 41 41 41 41 41 41");
    const std::vector<uint8_t> primitiveBits = hex("03 0A 00 41 41 41 41 41 41 41 41 41");
    forEveryRefusal([&](auto whileRefusing) {
        InitNibbleMem(8, 8);
        AsnOcts octs[2] = {};
        AsnBits bitStrings[2] = {};
        Outcome ends[4] = {};
        const bool refused = whileRefusing([&] {
            ends[0] = decode(octets, octs[0], BDecAsnOcts);
            ends[1] = decode(bits, bitStrings[0], BDecAsnBits);
            ends[2] = decode(primitive, octs[1], BDecAsnOcts);
            ends[3] = decode(primitiveBits, bitStrings[1], BDecAsnBits);
        });
        unsigned failed = 0;
        for (const Outcome& end : ends) {
            if (end.code == 0) continue;
            ++failed;
            EXPECT_EQ(end.code, -27);
            EXPECT_EQ(end.messages, 0u);
        }
        EXPECT_EQ(failed > 0, refused);
        ResetNibbleMem();
        EXPECT_EQ(decode(octets, octs[0], BDecAsnOcts).code, 0);
        EXPECT_EQ(octs[0].octetLen, 300u);
        EXPECT_EQ(decode(bits, bitStrings[0], BDecAsnBits).code, 0);
        EXPECT_EQ(bitStrings[0].bitLen, 2400);
    });
}

TEST(Refusal, ListsStayAsTheyWere) {
    for (auto* add : {AsnListAppend, AsnListPrepend, AsnListAdd, AsnListInsert}) {
        forEveryRefusal([&](auto whileRefusing) {
            InitNibbleMem(sizeof(AsnList) + 2 * (sizeof(AsnListNode) + sizeof(void*)), 8);
            AsnList* list = AsnListNew(sizeof(void*));
            AsnListAppend(list);
            AsnListAppend(list);
            AsnListFirst(list);
            const AsnList before = *list;
            const AsnListNode nodes[] = {*list->first, *list->last};
            void* element = nullptr;
            AsnList* another = nullptr;
            const bool refused = whileRefusing([&] {
                element = add(list);
                another = AsnListNew(sizeof(void*));
            });
            EXPECT_EQ(!element || !another, refused);
            if (element) {
                EXPECT_EQ(list->count, 3);
                return;
            }
            EXPECT_EQ(std::memcmp(&before, list, sizeof before), 0);
            EXPECT_EQ(std::memcmp(&nodes[0], list->first, sizeof nodes[0]), 0);
            EXPECT_EQ(std::memcmp(&nodes[1], list->last, sizeof nodes[1]), 0);
            EXPECT_NE(add(list), nullptr);
            EXPECT_EQ(list->count, 3);
        });
    }
}

TEST(Refusal, TheArenaStaysAsItWas) {
    forEveryRefusal([&](auto whileRefusing) {
        const bool refused = whileRefusing([] { InitNibbleMem(64, 64); });
        EXPECT_EQ(nmG == nullptr, refused);
    });
    forEveryRefusal([&](auto whileRefusing) {
        InitNibbleMem(64, 64);
        NibbleAlloc(8);
        const NibbleMem before = *nmG;
        const NibbleBuf block = *nmG->firstNibbleBuf;
        void* memory = nullptr;
        if (!whileRefusing([&] { memory = NibbleAlloc(65); })) return;
        EXPECT_EQ(memory, nullptr);
        EXPECT_EQ(nmG->firstNibbleBuf, before.firstNibbleBuf);
        EXPECT_EQ(nmG->currNibbleBuf, before.currNibbleBuf);
        EXPECT_EQ(nmG->incrementSize, before.incrementSize);
        EXPECT_EQ(std::memcmp(&block, nmG->firstNibbleBuf, sizeof block), 0);
        EXPECT_EQ(NibbleAlloc(56), block.curr) << "what is left of the block is still given";
    });
}

TEST(Refusal, ContextsAreThereOrNot) {
    forEveryRefusal([&](auto whileRefusing) {
        ZynContext* context = nullptr;
        const bool refused = whileRefusing([&] { context = ZynContextNew(); });
        EXPECT_EQ(context == nullptr, refused);
        ZynContextFree(context);
    });
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
    zyn::releaseRuntime();
}

} // namespace
