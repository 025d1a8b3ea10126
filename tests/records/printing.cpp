// Value notation of every record, against a printer of strings.
#include <gtest/gtest.h>

#include "tests/support/printed.h"
#include "tests/support/sample.h"
#include "zyn/zyn.h"

namespace zyn::test {
namespace {

std::string blanks(unsigned column) { return std::string(static_cast<uint16_t>(column), ' '); }

std::string hexText(const uint8_t* octets, std::size_t count) {
    std::string text = "'";
    for (std::size_t i = 0; i < count; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", octets[i]);
        text += pair;
    }
    return text + "'H";
}

std::string expected(TypeId id, const void* value, unsigned column) {
    const Type& type = typeOf(id);
    const unsigned inner = static_cast<uint16_t>(column + stdIndentG);
    const std::string end = blanks(column) + "}";
    if (!value) return "";
    if (type.shape == Shape::Choice) {
        const auto* choice = static_cast<const ChoiceRecord*>(value);
        for (const Alternative& row : type.alternatives) {
            if (row.number != choice->choiceId) continue;
            const void* held = row.kind == Kind::Int ? &choice->number : choice->slot;
            return row.name + (" " + expected(row.type, held, inner));
        }
        return "";
    }
    if (type.shape == Shape::SetOf) {
        std::string text, comma;
        for (const AsnListNode* node = static_cast<const AsnList*>(value)->first; node;
             node = node->next, comma = ",\n") {
            text += comma + blanks(inner) + expected(type.element, node->data, inner);
        }
        return "{ -- SET OF -- \n" + text + "\n" + end;
    }
    if (type.shape == Shape::Sequence) {
        std::string text, comma;
        for (const Field& field : type.fields) {
            const void* held = valueOf(value, field);
            if (field.optional && !held) continue;
            text += comma + blanks(inner) + field.name + " " + expected(field.type, held, inner);
            comma = ",\n";
        }
        return "{ -- SEQUENCE --\n" + text + (type.fields.empty() ? "" : "\n") + end;
    }
    switch (id) {
    case TypeId::AsnBool: return *static_cast<const AsnBool*>(value) ? "TRUE" : "FALSE";
    case TypeId::AsnReal: {
        char text[32];
        std::snprintf(text, sizeof text, "%g", *static_cast<const AsnReal*>(value));
        return text;
    }
    case TypeId::AsnOcts: {
        const auto* octs = static_cast<const AsnOcts*>(value);
        std::string text = hexText(octs->octs, octs->octetLen) + "  -- \"";
        for (uint32_t i = 0; i < octs->octetLen; ++i) {
            const uint8_t c = octs->octs[i];
            text += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '.';
        }
        return text + "\" --";
    }
    case TypeId::AsnBits: {
        const auto* bits = static_cast<const AsnBits*>(value);
        return hexText(bits->bits, (static_cast<std::size_t>(bits->bitLen) + 7) / 8);
    }
    default: return std::to_string(*static_cast<const AsnInt*>(value));
    }
}

class Printing : public testing::Test {
protected:
    void TearDown() override { stdIndentG = 4; }

    void expectPrinted(const Type& type, const void* value, unsigned short indent = 0) {
        EXPECT_EQ(printed(type.id, value, indent), expected(type.id, value, indent)) << type.name;
    }
};

TEST_F(Printing, AllTypes) {
    for (const Type& type : types) {
        if (type.shape == Shape::Primitive) continue;
        for (uint32_t seed = 0; seed < 8; ++seed) {
            const uint32_t presentPercent[] = {50, 100, 0, 80};
            Sampler sampler(seed + 1000 * static_cast<uint32_t>(type.id), {presentPercent[seed % 4], 40, 3});
            stdIndentG = seed < 4 ? 4 : static_cast<unsigned short>(3 * (seed - 4));
            expectPrinted(type, sampler.make(type.id), static_cast<unsigned short>(seed % 3));
        }
    }
}

TEST_F(Printing, RequiredPointersThatWereNeverSet) {
    for (const Type& type : types) {
        for (const Field& field : type.fields) {
            if (!field.pointer || field.optional) continue;
            Sampler sampler(1, {50, 12, 2});
            void* record = sampler.make(type.id);
            std::memset(memberOf(record, field), 0, sizeof(void*));
            expectPrinted(type, record);
        }
        if (type.shape == Shape::Sequence || type.shape == Shape::SetOf) {
            EXPECT_EQ(printed(type.id, nullptr), "");
        }
        if (type.shape == Shape::Choice) {
            const ChoiceRecord unknown{12345, {.slot = nullptr}};
            EXPECT_EQ(printed(type.id, &unknown), "") << type.name;
        }
    }
}

// A first text of every length round a third of the text's buffer moves its end to each of the characters behind.
TEST_F(Printing, TextThatEndsWithItsBuffer) {
    std::vector<uint8_t> text(1400, 'x');
    AsnInt hint = 3;
    for (uint32_t length = 1300; length <= text.size(); ++length) {
        ZynReplyBad bad{{length, text.data()}, &hint};
        expectPrinted(typeOf(TypeId::ZynReplyBad), &bad);
    }
}

// What the other tests compare with, by hand once for each shape.
TEST_F(Printing, WorkedExamples) {
    uint8_t no[] = {'n', 'o'};
    AsnInt hint = 3;
    ZynReplyBad bad{{2, no}, &hint};
    ZynTransRep reply{};
    reply.choiceId = 17;
    reply.replyBad = &bad;
    EXPECT_EQ(written([&](FILE* f) { PrintZynTransRep(f, &reply, 0); }),
              "replyBad { -- SEQUENCE --\n        infoMessage '6e6f'H  -- \"no\" --,\n        replyHint 3\n    }");
    AsnSequenceContext absent{};
    EXPECT_EQ(written([&](FILE* f) { PrintAsnSequenceContext(f, &absent, 2); }), "{ -- SEQUENCE --\n\n  }");
    ZynNull empty{};
    EXPECT_EQ(written([&](FILE* f) { PrintZynNull(f, &empty, 2); }), "{ -- SEQUENCE --\n  }");
    ZynPricePointList list{};
    EXPECT_EQ(written([&](FILE* f) { PrintZynPricePointList(f, &list, 0); }), "{ -- SET OF -- \n\n}");
    ZynPricePoint point{};
    AsnListNode rest{nullptr, nullptr, &point}, gap{nullptr, &rest, nullptr};
    list = {&gap, &rest, nullptr, 2, sizeof(void*)};
    EXPECT_EQ(written([&](FILE* f) { PrintZynPricePointList(f, &list, 0); }), "{ -- SET OF -- \n\n}")
        << "a node without an element ends the walk";
    EXPECT_EQ(list.curr, &gap);
    AsnDateTime time{5, 7};
    EXPECT_EQ(written([&](FILE* f) { PrintAsnDateTime(f, &time, 65534); }),
              "{ -- SEQUENCE --\n  date 5,\n  time 7\n" + std::string(65534, ' ') + "}")
        << "columns add up in 16 bits";
}

} // namespace
} // namespace zyn::test
