// The C++ interface against the descriptions: over messages of all alternatives, what the views give is what a walk over the
// fields finds, and what Inits build is what was asked for.
#include <gtest/gtest.h>

#include <bit>

#include "tests/support/two-ways.h"
#include "zyn/zyn.hpp"

namespace zyn::test {
namespace {

// A tree as text, by the views.
struct ByViews {
    std::string text;

    void put(bool value) { text += value ? "true" : "false"; }
    void put(AsnInt value) { text += std::to_string(value); }
    void put(AsnReal value) { text += std::to_string(std::bit_cast<uint64_t>(value)); }
    void put(zyn::Octets value) { text.append("'").append(value.text()).append("'"); }
    void put(Bits value) {
        for (std::size_t i = 0; i < value.size(); ++i) text += value[i] ? '1' : '0';
    }
    template <typename T> void put(List<T> list) {
        text += '[' + std::to_string(list.size()) + ':';
        for (const View<T> element : list) put(element);
        text += ']';
    }
    template <typename T> void put(View<T> view) {
        text += std::string(View<T>::name_) + '{';
        if constexpr (requires { view.number(); }) {
            text += std::to_string(view.number()) + '=';
            view.visit([this]<uint32_t n>(auto value, Number<n>) {
                text += '#' + std::to_string(n);
                put(value);
            });
        } else {
            view.each([this](const char* name, auto value) { putField(name, value); });
        }
        text += '}';
    }
    template <typename T> void putField(const char* name, const std::optional<T>& value) {
        if (!value) return;
        text += std::string(name) + "?=";
        put(*value);
    }
    template <typename T> void putField(const char* name, const T& value) {
        text += std::string(name) + '=';
        put(value);
    }
};

// The same by the descriptions.
struct ByDescriptions {
    std::string text;

    void put(const ZynType* type, const void* value) {
        const auto* bytes = static_cast<const uint8_t*>(value);
        switch (type->kind) {
        case ZYN_KIND_BOOLEAN: text += *bytes != 0 ? "true" : "false"; break;
        case ZYN_KIND_INTEGER:
        case ZYN_KIND_ENUMERATED: text += std::to_string(*static_cast<const AsnInt*>(value)); break;
        case ZYN_KIND_REAL: text += std::to_string(std::bit_cast<uint64_t>(*static_cast<const AsnReal*>(value))); break;
        case ZYN_KIND_OCTET_STRING: {
            const auto& octets = *static_cast<const AsnOcts*>(value);
            text.append("'").append(reinterpret_cast<const char*>(octets.octs), octets.octetLen).append("'");
            break;
        }
        case ZYN_KIND_BIT_STRING: {
            auto& bits = *static_cast<AsnBits*>(const_cast<void*>(value));
            for (int32_t i = 0; i < bits.bitLen; ++i) text += GetAsnBit(&bits, static_cast<uint32_t>(i)) ? '1' : '0';
            break;
        }
        case ZYN_KIND_SET_OF: {
            const auto* list = static_cast<const AsnList*>(value);
            text += '[' + std::to_string(list->count) + ':';
            for (const AsnListNode* node = list->first; node; node = node->next) put(type->element, node->data);
            text += ']';
            break;
        }
        case ZYN_KIND_CHOICE: {
            const uint32_t number = *static_cast<const uint32_t*>(value);
            const ZynAlternative* alternative = ZynAlternativeByNumber(type, number);
            const void* slot = bytes + type->slotOffset;
            if (alternative->pointer) std::memcpy(&slot, slot, sizeof slot);
            text += std::string(type->name) + '{' + std::to_string(number) + "=#" + std::to_string(number);
            put(alternative->type, slot);
            text += '}';
            break;
        }
        case ZYN_KIND_SEQUENCE:
            text += std::string(type->name) + '{';
            for (const ZynField* field = type->fields; field != type->fields + type->fieldCount; ++field) {
                putField(*field, bytes + field->offset);
            }
            text += '}';
            break;
        }
    }
    void putField(const ZynField& field, const void* place) {
        if (field.pointer) std::memcpy(&place, place, sizeof place);
        const bool text1 = field.type->kind == ZYN_KIND_OCTET_STRING, bits = field.type->kind == ZYN_KIND_BIT_STRING;
        const bool absent = !place || (text1 && !static_cast<const AsnOcts*>(place)->octs) ||
                            (bits && !static_cast<const AsnBits*>(place)->bits);
        if (absent) return;
        text += std::string(field.name) + (field.optional ? "?=" : "=");
        put(field.type, place);
    }
};

template <typename Kind> void compareAll(const Channel& channel) {
    for (const Alternative& row : typeOf(channel.choice).alternatives) {
        for (uint32_t seed = 0; seed < 6; ++seed) {
            Sampler sampler(seed * 1000 + row.number, {seed % 3 * 50, 20, 3});
            const Octets octets = messageOf(channel, "TRADER01    ", sampler.make(channel.choice, row));
            const auto message = decode<Kind>(octets);
            ASSERT_TRUE(message.ok()) << row.name;
            ByViews seen;
            seen.put(message->view());
            ByDescriptions expected;
            expected.put(ZynTypeByName(View<typename Kind::Envelope>::name_), &message->view().get());
            ASSERT_EQ(seen.text, expected.text) << row.name;
        }
    }
}

TEST(Views, GiveWhatTheRecordsHold) {
    compareAll<TransRequest>(channels[0]);
    compareAll<QueryRequest>(channels[1]);
    compareAll<TransReply>(channels[2]);
    compareAll<QueryReply>(channels[3]);
}

TEST(Views, OfAnEmptyRecordWithoutMemory) {
    ZynTransReqChoice choice = {};
    bool seen = false;
    View<ZynTransReqChoice>(choice).visit(overloaded{[&](View<ZynNull>) { seen = true; }, [](auto) {}});
    EXPECT_TRUE(seen);
}

TEST(Inits, BuildWhatIsAskedFor) {
    Builder build;
    auto& value = build.make(Init<AsnFixedReal>{.value = 1204.5});
    auto& rest = build.make(Init<AsnFixedReal>{.value = -0.25, .decimals = 2});
    const auto list = build.list<ZynIndexValRepSetOfSeq>(
        {{.value = value, .high = rest, .low = value}, {.value = rest, .high = rest, .low = rest}});
    build.append(list, Init<ZynIndexValRepSetOfSeq>{.value = value, .high = value, .low = value});
    auto& reply = build.make(Init<ZynIndexValRep>{.valuesList = list});
    uint8_t octets[256];
    const auto message = encode<QueryReply>(reply, octets);
    ASSERT_TRUE(message);
    const auto decoded = decode<QueryReply>(*message);
    ASSERT_TRUE(decoded);
    std::string seen;
    decoded->view().visit(overloaded{[&](View<ZynIndexValRep> values, Number<270>) {
                                         for (const auto one : values.valuesList()) {
                                             seen += std::to_string(one.value().value()) + "/" +
                                                     std::to_string(one.high().decimals().value_or(-1)) + " ";
                                         }
                                     },
                                     [](auto) { FAIL(); }});
    EXPECT_EQ(seen, "1204.500000/2 -0.250000/2 1204.500000/-1 ");
    const auto copied = copy(decoded->view());
    EXPECT_TRUE(equal(copied.view(), decoded->view()));
    ZynEncodeMemReset();
    EXPECT_EQ(notation(copied.view()).substr(0, 19), "indexValRep { -- SE");
}

TEST(Inits, ChoicesTextsAndLargeTrees) {
    Builder build;
    for (int i = 0; i < 1000; ++i) {
        auto& logon = build.make(
            Init<ZynUserLogon>{.loginPassword = build.copy(std::string(50, 'x')), .reconnectionFlag = i % 2 == 0});
        View<ZynUserLogon> view(logon);
        ASSERT_EQ(view.loginPassword(), std::string(50, 'x'));
        ASSERT_EQ(view.reconnectionFlag(), i % 2 == 0);
    }
    const auto& empty = build.make(Init<ZynUserLogon>{.loginPassword = ""});
    EXPECT_NE(empty.loginPassword.octs, nullptr) << "present and empty";
    EXPECT_EQ(empty.reconnectionFlag, nullptr);
}

TEST(Results, AFailureSaysWhere) {
    const uint8_t cut[] = {0x30, 0x1B, 0x04, 0x08};
    const auto message = decode<TransRequest>(cut);
    ASSERT_FALSE(message);
    EXPECT_STREQ(message.failure().path, "userId");
    EXPECT_EQ(message.failure().offset, 4u);
    Builder build;
    uint8_t small[8];
    const auto encoded =
        encode<TransRequest>("A", build.make(Init<ZynUserLogon>{.loginPassword = "open sesame"}), small);
    ASSERT_FALSE(encoded);
    EXPECT_EQ(encoded.failure().code, ZYN_E_NO_ROOM);
    EXPECT_DEATH(static_cast<void>(*encoded), "");
}

TEST(Contexts, AreBoundForAsLongAsAUseLives) {
    const Context one, other;
    ZynContext* const before = ZynContextUse(nullptr);
    {
        const Context::Use outer = one.use();
        {
            const Context::Use inner = other.use();
            EXPECT_EQ(ZynContextUse(other.get()), other.get());
        }
        EXPECT_EQ(ZynContextUse(one.get()), one.get());
    }
    EXPECT_EQ(ZynContextUse(before), nullptr);
}

} // namespace
} // namespace zyn::test
