// The arena: sizes, places, zeros, resets; and the lists that live in it.
#include <gtest/gtest.h>

#include <cstring>

#include "zyn/asn.h"

namespace {

class Arena : public testing::Test {
protected:
    void SetUp() override { InitNibbleMem(8192, 1024); }
    void TearDown() override { ShutdownNibbleMem(); }
    static size_t used() { return static_cast<size_t>(nmG->currNibbleBuf->curr - nmG->currNibbleBuf->start); }
    static size_t size() { return static_cast<size_t>(nmG->currNibbleBuf->end - nmG->currNibbleBuf->start); }
};

TEST_F(Arena, RoundsUpBehindTheTest) {
    const std::pair<uint32_t, size_t> rows[] = {{0, 0}, {1, 8}, {8, 16}, {9, 32}, {0, 32}, {16, 48}};
    for (auto [request, behind] : rows) {
        void* memory = NibbleAlloc(request);
        ASSERT_NE(memory, nullptr);
        EXPECT_EQ(used(), behind) << request;
    }
    NibbleAlloc(static_cast<uint32_t>(8192 - used() - 3));
    EXPECT_EQ(nmG->currNibbleBuf->curr, nmG->currNibbleBuf->end) << "the last request may end at the end";
    EXPECT_EQ(nmG->currNibbleBuf, nmG->firstNibbleBuf);
}

TEST_F(Arena, BlocksFollow) {
    NibbleAlloc(8000);
    NibbleAlloc(193); // does not fit
    EXPECT_EQ(size(), 1024u);
    EXPECT_EQ(used(), 200u);
    auto* small = static_cast<uint8_t*>(NibbleAlloc(8));
    EXPECT_EQ(small, nmG->currNibbleBuf->start + 200) << "the rest of the old block is not touched";
    NibbleAlloc(4998);
    EXPECT_EQ(size(), 4998u);
    EXPECT_EQ(used(), 4998u) << "rounding is cut off at the end";
    NibbleAlloc(100);
    EXPECT_EQ(size(), 1024u);

    uint8_t* first = nmG->firstNibbleBuf->start;
    std::memset(first, 0xEE, 8000);
    ResetNibbleMem();
    EXPECT_EQ(nmG->currNibbleBuf, nmG->firstNibbleBuf);
    EXPECT_EQ(nmG->firstNibbleBuf->next, nullptr);
    EXPECT_EQ(nmG->incrementSize, 1024u);
    auto* again = static_cast<uint8_t*>(NibbleAlloc(8192));
    EXPECT_EQ(again, first);
    for (int i = 0; i < 8192; ++i) ASSERT_EQ(again[i], 0);
}

TEST_F(Arena, WithoutOneNothingHappens) {
    ShutdownNibbleMem();
    EXPECT_EQ(nmG, nullptr);
    EXPECT_EQ(NibbleAlloc(8), nullptr);
    ServiceNibbleFault(8);
    ResetNibbleMem();
    ShutdownNibbleMem();
    EXPECT_EQ(AsnListNew(8), nullptr);
}

class Lists : public Arena {
protected:
    void SetUp() override {
        Arena::SetUp();
        list = AsnListNew(sizeof(void*));
    }
    static size_t held(size_t size) { return (size + 7) / 8 * 8; }
    void* put(void* element, void* value) {
        std::memcpy(element, &value, sizeof value);
        return element;
    }
    // The data words, first to last, checked against the links backwards.
    std::string words(AsnList* l) {
        std::string text;
        AsnListNode* before = nullptr;
        int count = 0;
        for (AsnListNode* n = l->first; n; before = n, n = n->next, ++count) {
            EXPECT_EQ(n->prev, before);
            text += n->data ? static_cast<char>(reinterpret_cast<uintptr_t>(n->data)) : '.';
        }
        EXPECT_EQ(l->last, before);
        EXPECT_EQ(l->count, count);
        EXPECT_EQ(AsnListCount(l), count);
        return text;
    }
    static void* word(char c) { return reinterpret_cast<void*>(static_cast<uintptr_t>(c)); }
    char current() {
        void* element = AsnListCurr(list);
        void* value = nullptr;
        if (!element) return '-';
        std::memcpy(&value, element, sizeof value);
        return static_cast<char>(reinterpret_cast<uintptr_t>(value));
    }
    AsnList* list = nullptr;
};

TEST_F(Lists, NodesGoWhereTheyAreAskedFor) {
    EXPECT_EQ(list->dataSize, static_cast<int32_t>(sizeof(void*)));
    for (auto* step : {AsnListFirst, AsnListLast, AsnListNext, AsnListPrev, AsnListCurr, AsnListAdd, AsnListInsert}) {
        EXPECT_EQ(step(list), nullptr) << "on an empty list";
    }
    EXPECT_EQ(used(), held(sizeof(AsnList))) << "nothing was allocated";
    put(AsnListAppend(list), word('b'));
    EXPECT_EQ(list->first, list->last);
    EXPECT_EQ(list->curr, list->first);
    put(AsnListPrepend(list), word('a'));
    EXPECT_EQ(current(), 'a');
    put(AsnListAdd(list), word('x'));
    put(AsnListInsert(list), word('w'));
    AsnListLast(list);
    put(AsnListAdd(list), word('z'));
    EXPECT_EQ(words(list), "awxbz");
    EXPECT_EQ(current(), 'z');
    list->curr = nullptr;
    EXPECT_EQ(AsnListAdd(list), nullptr) << "no cursor, though there are nodes";
    EXPECT_EQ(words(list), "awxbz");
    EXPECT_EQ(used(), held(sizeof(AsnList)) + 5 * held(sizeof(AsnListNode) + sizeof(void*)));
}

TEST_F(Lists, WalksGoRoundThroughNull) {
    for (const char c : {'a', 'b', 'c'}) put(AsnListAppend(list), word(c));
    list->curr = nullptr;
    std::string seen;
    for (int i = 0; i < 5; ++i) AsnListNext(list), seen += current();
    EXPECT_EQ(seen, "abc-a");
    list->curr = nullptr;
    seen.clear();
    for (int i = 0; i < 5; ++i) AsnListPrev(list), seen += current();
    EXPECT_EQ(seen, "cba-c");
}

TEST_F(Lists, RemovingMovesOn) {
    for (const char c : {'a', 'b', 'c'}) put(AsnListAppend(list), word(c));
    AsnListPrev(list);
    AsnListRemove(list);
    EXPECT_EQ(words(list), "ac");
    EXPECT_EQ(current(), 'c');
    AsnListRemove(list);
    EXPECT_EQ(current(), '-');
    AsnListRemove(list);
    EXPECT_EQ(words(list), "a") << "without a cursor nothing is removed";
    AsnListFirst(list);
    AsnListRemove(list);
    EXPECT_EQ(words(list), "");
    EXPECT_EQ(list->first, nullptr);
}

TEST_F(Lists, ConcatMovesTheNodes) {
    AsnList* other = AsnListNew(sizeof(void*));
    EXPECT_EQ(AsnListConcat(list, other), list);
    EXPECT_EQ(words(list), "");
    for (const char c : {'a', 'b'}) put(AsnListAppend(other), word(c));
    AsnListConcat(list, other);
    EXPECT_EQ(words(list), "ab");
    EXPECT_EQ(current(), 'a') << "an empty list gets its cursor on the first node";
    AsnList* third = AsnListNew(sizeof(void*));
    put(AsnListAppend(third), word('c'));
    AsnListNext(list);
    AsnListConcat(list, third);
    EXPECT_EQ(words(list), "abc");
    EXPECT_EQ(current(), 'b');
}

TEST_F(Lists, IndexIsByPointerAndEndsAtANullWord) {
    for (const char c : {'a', 'b', 'c'}) put(AsnListAppend(list), word(c));
    AsnListFirst(list);
    EXPECT_EQ(GetAsnListElmtIndex(word('c'), list), 2);
    EXPECT_EQ(GetAsnListElmtIndex(word('x'), list), -1);
    EXPECT_EQ(GetAsnListElmtIndex(word('x'), nullptr), -1);
    EXPECT_EQ(current(), 'a');
    list->first->data = nullptr;
    EXPECT_EQ(GetAsnListElmtIndex(word('c'), list), -1);
    AsnListFree(list);
    EXPECT_EQ(words(list), ".bc");
}

} // namespace
