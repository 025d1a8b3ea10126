// Copies and comparisons of trees, for all types.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "tests/support/decoded.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

// A block of exactly that size, so that a sanitizer sees what is written behind it.
std::unique_ptr<uint8_t[]> blockOf(std::size_t size) { return std::unique_ptr<uint8_t[]>(new uint8_t[size]); }

const ZynType& describe(TypeId id) { return *ZynTypeByNumber(static_cast<uint32_t>(id)); }

// What an encoder sends of a value, whatever type it is of.
Octets sent(TypeId id, const void* value) {
    return typeOf(id).shape == Shape::Primitive ? Octets{} : encodedContent(id, value);
}

TEST(Trees, CopyStandsAloneForEveryType) {
    for (const Type& type : types) {
        for (uint32_t seed = 0; seed < 20; ++seed) {
            SCOPED_TRACE(std::string(type.name) + ", seed " + std::to_string(seed));
            const ZynType& description = describe(type.id);
            auto original = std::make_unique<Sampler>(seed, Taste{.presentPercent = seed * 5 + 5});
            void* value = original->make(type.id);
            const Octets octets = sent(type.id, value);
            const std::size_t size = ZynTreeSize(&description, value);
            const auto block = blockOf(size), second = blockOf(size);

            ASSERT_EQ(ZynTreeCopy(&description, value, blockOf(size - 1).get(), size - 1), nullptr);
            void* copy = ZynTreeCopy(&description, value, block.get(), size);
            ASSERT_EQ(copy, block.get());
            EXPECT_EQ(ZynTreeEqual(&description, value, copy), 1);
            original.reset();
            EXPECT_EQ(ZynTreeSize(&description, copy), size);
            void* again = ZynTreeCopy(&description, copy, second.get(), size);
            EXPECT_EQ(ZynTreeEqual(&description, copy, again), 1);
            if (type.shape != Shape::Primitive) {
                EXPECT_EQ(encodedContent(type.id, again), octets);
            }
        }
    }
}

// Calls visit once for each value in the tree that can be changed, with a change that can be taken back.
using Change = std::function<void()>;
using Visit = std::function<void(const std::string& what, const Change& change, const Change& undo)>;

template <typename Value> void change(const std::string& what, void* place, Value other, const Visit& visit) {
    Value before;
    std::memcpy(&before, place, sizeof before);
    visit(
        what, [=] { std::memcpy(place, &other, sizeof other); }, [=] { std::memcpy(place, &before, sizeof before); });
}

void eachChange(const ZynType& type, void* value, const Visit& visit) {
    switch (type.kind) {
    case ZYN_KIND_INTEGER:
    case ZYN_KIND_ENUMERATED: return change<AsnInt>("number", value, *static_cast<AsnInt*>(value) ^ INT32_MIN, visit);
    case ZYN_KIND_BOOLEAN: return change<AsnBool>("truth", value, !*static_cast<AsnBool*>(value), visit);
    case ZYN_KIND_REAL: {
        const AsnReal real = *static_cast<AsnReal*>(value);
        change<AsnReal>("sign", value, -real, visit);
        return change<AsnReal>("NaN", value, std::numeric_limits<double>::quiet_NaN(), visit);
    }
    case ZYN_KIND_OCTET_STRING: {
        auto* text = static_cast<AsnOcts*>(value);
        if (!text->octs) return;
        change<uint8_t*>("no text", &text->octs, nullptr, visit);
        if (text->octetLen == 0) return;
        change<uint32_t>("shorter text", &text->octetLen, text->octetLen - 1, visit);
        uint8_t* last = text->octs + text->octetLen - 1;
        return change<uint8_t>("last octet", last, *last ^ 1, visit);
    }
    case ZYN_KIND_BIT_STRING: {
        auto* bits = static_cast<AsnBits*>(value);
        if (!bits->bits) return;
        change<uint8_t*>("no bits", &bits->bits, nullptr, visit);
        if (bits->bitLen == 0) return;
        change<int32_t>("fewer bits", &bits->bitLen, bits->bitLen - 1, visit);
        const auto last = static_cast<uint32_t>(bits->bitLen) - 1;
        uint8_t* octet = bits->bits + last / 8;
        return change<uint8_t>("last bit", octet, static_cast<uint8_t>(*octet ^ 0x80 >> last % 8), visit);
    }
    case ZYN_KIND_SEQUENCE:
        for (const ZynField& field : std::span(type.fields, type.fieldCount)) {
            void* member = static_cast<char*>(value) + field.offset;
            void* inner = member;
            if (field.pointer) std::memcpy(&inner, member, sizeof inner);
            if (!inner) continue;
            // A null list is an empty one.
            const auto* list = field.type->kind == ZYN_KIND_SET_OF ? static_cast<const AsnList*>(inner) : nullptr;
            if (field.pointer && !(list && list->count == 0)) change<void*>(field.name, member, nullptr, visit);
            eachChange(*field.type, inner, visit);
        }
        return;
    case ZYN_KIND_SET_OF: {
        auto* list = static_cast<AsnList*>(value);
        if (list->count == 0) return;
        change<AsnListNode*>("first element", &list->first, list->first->next, visit);
        change<AsnListNode*>("last element", list->last->prev ? &list->last->prev->next : &list->first, nullptr, visit);
        for (AsnListNode* node = list->first; node; node = node->next) eachChange(*type.element, node->data, visit);
        return;
    }
    case ZYN_KIND_CHOICE: {
        auto* choice = static_cast<ChoiceRecord*>(value);
        const ZynAlternative* row = ZynAlternativeByNumber(&type, choice->choiceId);
        change<uint32_t>("choiceId", &choice->choiceId, UINT32_MAX, visit);
        if (!row->pointer) return eachChange(*row->type, &choice->number, visit);
        if (!choice->slot) return;
        if (row->type->kind != ZYN_KIND_SEQUENCE || row->type->fieldCount > 0) {
            change<void*>("slot", &choice->slot, nullptr, visit);
        }
        return eachChange(*row->type, choice->slot, visit);
    }
    }
}

TEST(Trees, AreNotEqualWithAnyOneValueChanged) {
    std::size_t changes = 0;
    for (const Type& type : types) {
        Sampler sampler(42, {.presentPercent = 80, .longestText = 20, .longestList = 2});
        const ZynType& description = describe(type.id);
        void* value = sampler.make(type.id);
        const auto block = blockOf(ZynTreeSize(&description, value));
        void* copy = ZynTreeCopy(&description, value, block.get(), ZynTreeSize(&description, value));
        eachChange(description, copy, [&](const std::string& what, const Change& apply, const Change& undo) {
            ++changes;
            apply();
            EXPECT_EQ(ZynTreeEqual(&description, value, copy), 0) << type.name << ": " << what;
            EXPECT_EQ(ZynTreeEqual(&description, copy, value), 0) << type.name << ": " << what;
            undo();
        });
        EXPECT_EQ(ZynTreeEqual(&description, value, copy), 1) << type.name;
    }
    EXPECT_GT(changes, types.size());
}

// Two values of one type that are or are not the same though their bytes differ or do not.
TEST(Trees, ComparisonLooksAtWhatIsMeant) {
    const auto equal = [](const char* type, const void* one, const void* other) {
        return ZynTreeEqual(ZynTypeByName(type), one, other);
    };
    const AsnBool one = 1, seven = 7, no = 0;
    EXPECT_EQ(equal("AsnBool", &one, &seven), 1) << "both are true";
    EXPECT_EQ(equal("AsnBool", &one, &no), 0);
    const AsnReal zero = 0.0, minus = -0.0, nan = std::numeric_limits<double>::quiet_NaN(), other = -nan;
    EXPECT_EQ(equal("AsnReal", &zero, &minus), 0) << "bit by bit";
    EXPECT_EQ(equal("AsnReal", &nan, &other), 1);
    uint8_t a[] = {0xA8}, b[] = {0xAF};
    const AsnBits five = {5, a}, fiveToo = {5, b}, empty = {0, a}, absent = {0, nullptr};
    EXPECT_EQ(equal("AsnBits", &five, &fiveToo), 1) << "bits behind the last one are no value";
    EXPECT_EQ(equal("AsnBits", &empty, &absent), 0);
    const AsnOcts none = {0, nullptr}, nothing = {0, a}, promised = {3, nullptr};
    EXPECT_EQ(equal("AsnOcts", &none, &nothing), 0);
    EXPECT_EQ(equal("AsnOcts", &none, &promised), 1) << "the length of an absent text does not count";
    const ZynIndexValRep null = {nullptr};
    AsnList list = {};
    const ZynIndexValRep withList = {&list};
    EXPECT_EQ(equal("ZynIndexValRep", &null, &withList), 1) << "a null list is an empty one";
    ZynNull record = {};
    const ChoiceRecord unset = {0, {.slot = nullptr}}, set = {0, {.slot = &record}}, unknown = {1, {.slot = a}},
                       alsoUnknown = {1, {.slot = b}};
    EXPECT_EQ(equal("ZynTransRep", &unset, &set), 1) << "an empty record has nothing in it";
    EXPECT_EQ(equal("ZynTransRep", &unset, &unknown), 0);
    EXPECT_EQ(equal("ZynTransRep", &unknown, &alsoUnknown), 1) << "what an unknown number stands for is not looked at";
}

TEST(Trees, CopyKeepsWhatACallerLeftUnset) {
    uint8_t junk[] = {1, 2, 3};
    const ChoiceRecord unknown = {1, {.slot = junk}};
    alignas(8) uint8_t block[64];
    const ZynType* type = ZynTypeByName("ZynTransRep");
    auto* copy = static_cast<ChoiceRecord*>(ZynTreeCopy(type, &unknown, block, sizeof block));
    EXPECT_EQ(copy->choiceId, 1u);
    EXPECT_EQ(copy->slot, nullptr) << "nothing outside the block is referred to";
    const AsnOcts promised = {3, nullptr};
    auto* text = static_cast<AsnOcts*>(ZynTreeCopy(ZynTypeByName("AsnOcts"), &promised, block, sizeof block));
    EXPECT_EQ(text->octs, nullptr);
    const AsnOcts some = {3, junk};
    text = static_cast<AsnOcts*>(ZynTreeCopy(ZynTypeByName("AsnOcts"), &some, block, sizeof block));
    EXPECT_EQ(text->octs[3], 0) << "text can be used as a terminated string";
}

// The reason for copies: the Encode of a reply ends the request.
TEST(Trees, CopyOfARequestOutlivesTheReply) {
    ZynUserLogon logon = {};
    ZynTextStrSet(&logon.loginPassword, "open sesame", 0);
    uint8_t octets[64], reply[64];
    const uint32_t length = ZynTransRequestEncode("TRADER01    ", &logon, 455, octets, sizeof octets);
    ZynTransReq request;
    ASSERT_EQ(ZynTransRequestDecode(octets, length, &request), 0);
    const ZynType* type = ZynEnvelopeType(ZYN_TRANS_REQUEST);
    const auto block = blockOf(ZynTreeSize(type, &request));
    auto* copy = static_cast<ZynTransReq*>(ZynTreeCopy(type, &request, block.get(), ZynTreeSize(type, &request)));
    EXPECT_GT(ZynTransReplyEncode(nullptr, 0, reply, sizeof reply), 0u);
    ZynShutdown();
    uint8_t again[64];
    ASSERT_EQ(ZynEncode(ZYN_TRANS_REQUEST, copy, again, sizeof again), length);
    EXPECT_EQ(Octets(again, again + length), Octets(octets, octets + length));
}

} // namespace
} // namespace zyn::test
