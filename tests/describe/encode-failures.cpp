// Why an Encode returned 0: records of every alternative with each value in turn made one that cannot be sent.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <utility>

#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

constexpr const char* user = "TRADER01    ";

using Break = std::function<void(const std::string& path, const Type& record, const std::string& field, bool sent)>;

// Makes each thing in turn what has no form on the wire, or may have one all the same, calls check, and takes it back.
template <typename Value> void with(void* place, Value other, const std::function<void()>& check) {
    Value before;
    std::memcpy(&before, place, sizeof before);
    std::memcpy(place, &other, sizeof other);
    check();
    std::memcpy(place, &before, sizeof before);
}

void breakEach(const Type& record, const std::string& field, const std::string& path, Kind kind, const Type& type,
               void* value, bool optional, const Break& check);

void breakInside(const Type& type, const std::string& path, void* value, const Break& check) {
    const std::string dot = path.empty() ? "" : path + ".";
    for (const Field& field : type.fields) {
        void* member = memberOf(value, field);
        auto* inner = const_cast<void*>(valueOf(value, field));
        if (!inner) continue;
        const std::string itsPath = dot + field.name;
        if (field.pointer) {
            const bool sent = field.optional || field.kind == Kind::SetOf;
            with<void*>(member, nullptr, [&] { check(itsPath, type, field.name, sent); });
        }
        breakEach(type, field.name, itsPath, field.kind, typeOf(field.type), inner, field.optional, check);
    }
    if (type.shape == Shape::SetOf) {
        std::size_t index = 0;
        for (AsnListNode* node = static_cast<AsnList*>(value)->first; node; node = node->next, ++index) {
            breakInside(typeOf(type.element), path + "[" + std::to_string(index) + "]", node->data, check);
        }
    } else if (type.shape == Shape::Choice) {
        auto* choice = static_cast<ChoiceRecord*>(value);
        const Alternative& row = *alternativeOf(type, choice->choiceId);
        if (row.kind == Kind::Int || !choice->slot) return;
        const bool empty = row.kind == Kind::Sequence && typeOf(row.type).fields.empty();
        with<void*>(&choice->slot, nullptr, [&] { check(dot + row.name, type, row.name, empty); });
        breakEach(type, row.name, dot + row.name, row.kind, typeOf(row.type), choice->slot, false, check);
    }
}

void breakEach(const Type& record, const std::string& field, const std::string& path, Kind kind, const Type& type,
               void* value, bool optional, const Break& check) {
    const auto told = [&](bool sent) { return [&, sent] { check(path, record, field, sent); }; };
    switch (kind) {
    case Kind::Octs:
        if (static_cast<AsnOcts*>(value)->octetLen == 0) return;
        return with<uint8_t*>(&static_cast<AsnOcts*>(value)->octs, nullptr, told(optional));
    case Kind::Bits: return with<int32_t>(&static_cast<AsnBits*>(value)->bitLen, -1, told(false));
    case Kind::Real:
        with<AsnReal>(value, std::numeric_limits<double>::infinity(), told(false));
        return with<AsnReal>(value, std::numeric_limits<double>::quiet_NaN(), told(false));
    case Kind::Int:
    case Kind::Bool: return;
    default: return breakInside(type, path, value, check);
    }
}

TEST(EncodeFailures, OfEachValueThatCannotBeSent) {
    std::size_t refused = 0;
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            Sampler sampler(row.number, {.presentPercent = 100, .longestText = 12, .longestList = 3});
            ChoiceRecord* choice = sampler.make(channel.choice, row);
            static uint8_t block[1 << 16];
            const auto check = [&](const std::string& path, const Type& record, const std::string& field, bool sent) {
                ZynFailure failure = {};
                const uint32_t length = channel.encode(user, choice->slot, choice->choiceId, block, sizeof block);
                ASSERT_EQ(length > 0, sent) << path;
                ASSERT_EQ(ZynLastFailure(&failure), !sent) << path;
                if (sent) return;
                ++refused;
                EXPECT_EQ(failure.code, ZYN_E_NO_WIRE_FORM);
                EXPECT_EQ(failure.offset, 0u);
                EXPECT_EQ(failure.path, path);
                EXPECT_STREQ(failure.module, record.module);
                EXPECT_STREQ(failure.record, record.name);
                EXPECT_EQ(failure.field, field);
                EXPECT_EQ(
                    std::string(failure.text).find(path.substr(path.rfind('.') + 1) + " has no form on the wire: "), 0u)
                    << failure.text;
            };
            breakInside(typeOf(channel.choice), channel.isRequest() ? typeOf(channel.message).fields[1].name : "",
                        choice, check);
        }
    }
    EXPECT_GT(refused, 1000u);
}

TEST(EncodeFailures, NoRoomTellsHowMuchIsNeeded) {
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            SCOPED_TRACE(row.name);
            Sampler sampler(row.number + 1);
            ChoiceRecord* choice = sampler.make(channel.choice, row);
            const auto octets = static_cast<uint32_t>(messageOf(channel, user, choice).size());
            std::vector<uint8_t> block(octets);
            ZynFailure failure = {};
            for (const uint32_t room : {0u, octets / 2, octets - 1}) {
                ASSERT_EQ(channel.encode(user, choice->slot, choice->choiceId, block.data(), room), 0u);
                ASSERT_EQ(ZynLastFailure(&failure), 1);
                EXPECT_EQ(failure.code, ZYN_E_NO_ROOM);
                EXPECT_EQ(failure.offset, octets);
                EXPECT_EQ(std::string(failure.module) + failure.record + failure.field + failure.path, "");
                EXPECT_EQ(failure.text, "the message needs " + std::to_string(octets) + " octets, but the block has " +
                                            std::to_string(room));
            }
            EXPECT_EQ(channel.encode(user, choice->slot, choice->choiceId, block.data(), failure.offset), octets);
            EXPECT_EQ(ZynLastFailure(&failure), 0);
        }
    }
}

// What looks like a fault and can be sent all the same is not the reason.
TEST(EncodeFailures, OfNothingButRoom) {
    const AsnReal plus = PLUS_INFINITY, minus = MINUS_INFINITY;
    InitAsnInfinity();
    AsnFixedReal highest{PLUS_INFINITY, nullptr}, lowest{MINUS_INFINITY, nullptr};
    ZynIndexValRepSetOfSeq element{&highest, &lowest, &lowest};
    AsnListNode node{nullptr, nullptr, &element}, gap{nullptr, nullptr, nullptr};
    AsnList infinities{&node, &node, nullptr, 1, sizeof(void*)}, onlyAGap{&gap, &gap, nullptr, 1, sizeof(void*)};
    const struct {
        AsnList* list;
        const char* what;
    } lists[] = {{nullptr, "no list"}, {&onlyAGap, "a node without an element"}, {&infinities, "infinities"}};
    uint8_t block[4];
    ZynFailure failure;
    for (const auto& row : lists) {
        ZynIndexValRep values{row.list};
        EXPECT_EQ(ZynQueryReplyEncode(&values, 270, block, 1), 0u);
        ASSERT_EQ(ZynLastFailure(&failure), 1);
        EXPECT_EQ(failure.code, ZYN_E_NO_ROOM) << row.what;
    }
    EXPECT_EQ(ZynTransRequestEncode(user, nullptr, 9999, block, sizeof block), 0u);
    ASSERT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_EQ(failure.code, ZYN_E_NO_ROOM) << "a request of an unknown number is sent without a message";
    PLUS_INFINITY = plus;
    MINUS_INFINITY = minus;
}

// A message that does not fit and could not be sent anyway: more room is of no use.
TEST(EncodeFailures, NoWireFormCountsMoreThanNoRoom) {
    ZynUserLogon logon = {};
    logon.loginPassword = {5, nullptr};
    uint8_t block[4];
    EXPECT_EQ(ZynTransRequestEncode(user, &logon, 455, block, sizeof block), 0u);
    ZynFailure failure;
    ASSERT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_EQ(failure.code, ZYN_E_NO_WIRE_FORM);
}

// Only what is sent of a list counts: the elements behind a null data word.
TEST(EncodeFailures, CountElementsAsTheyAreSent) {
    AsnFixedReal good{1, nullptr}, bad{std::numeric_limits<double>::quiet_NaN(), nullptr};
    ZynIndexValRepSetOfSeq element{&good, &good, &good}, broken{&bad, &good, &good};
    ZynIndexValRep values{ZynListNew()};
    AsnList* list = values.valuesList;
    for (void* record : {static_cast<void*>(&broken), static_cast<void*>(nullptr), static_cast<void*>(&element),
                         static_cast<void*>(&broken)}) {
        *static_cast<void**>(AsnListAppend(list)) = record;
    }
    uint8_t block[256];
    ZynFailure failure;
    EXPECT_EQ(ZynQueryReplyEncode(&values, 270, block, sizeof block), 0u);
    ASSERT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_STREQ(failure.path, "indexValRep.valuesList[1].value.value");
    list->last->data = &element;
    EXPECT_GT(ZynQueryReplyEncode(&values, 270, block, sizeof block), 0u);
}

TEST(EncodeFailures, OfNumbersAndTexts) {
    uint8_t block[8];
    ZynFailure failure;
    for (const uint32_t number : {1u, 19u, 500u, UINT32_MAX}) {
        EXPECT_EQ(ZynTransReplyEncode(nullptr, number, block, sizeof block), 0u);
        ASSERT_EQ(ZynLastFailure(&failure), 1);
        EXPECT_EQ(failure.code, ZYN_E_NO_ALTERNATIVE);
        EXPECT_STREQ(failure.record, "ZynTransRep");
        EXPECT_EQ(failure.text, "ZynTransRep has no alternative " + std::to_string(number));
    }
    AsnOcts text = {9, nullptr};
    EXPECT_EQ(ZynTextStrEncode(&text, block, sizeof block), 0u);
    ASSERT_EQ(ZynLastFailure(&failure), 1);
    EXPECT_EQ(failure.code, ZYN_E_NO_WIRE_FORM);
    EXPECT_STREQ(failure.text, "the text has no form on the wire: its octs are null and its octetLen is not 0");
    uint8_t octets[9] = {}; // no more is read than there is room for, so a longer length may stand beside them
    for (const auto& [length, whole] : {std::pair{9u, 11u}, {0x80000000u, 0x80000006u}}) {
        text = {length, octets};
        EXPECT_EQ(ZynTextStrEncode(&text, block, sizeof block), 0u);
        ASSERT_EQ(ZynLastFailure(&failure), 1);
        EXPECT_EQ(failure.code, ZYN_E_NO_ROOM);
        EXPECT_EQ(failure.offset, whole);
    }
}

} // namespace
} // namespace zyn::test
