// The descriptions beside the schema compiler's dump, beside what a C compiler makes of the structures, and beside the
// operations that they stand for.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/support/decoded.h"
#include "tests/support/hex.h"
#include "tests/support/printed.h"
#include "zyn/zyn.h"

namespace zyn::test {
namespace {

std::vector<const ZynType*> allTypes() {
    std::vector<const ZynType*> all;
    for (uint32_t i = 0; i < ZynTypeCount(); ++i) all.push_back(ZynTypeByNumber(i));
    return all;
}

std::string tagText(AsnTag tag, unsigned octets) {
    std::string text;
    for (unsigned i = 0; i < octets; ++i) {
        const auto octet = static_cast<uint8_t>(tag >> (24 - 8 * i));
        text += toHex(&octet, 1);
    }
    return text;
}

// A tag as the dump shows it.
template <typename Row> std::string tagOf(const Row& row, bool isField) {
    const ZynKind kind = row.type->kind;
    if (kind == ZYN_KIND_CHOICE && isField) return "*";
    const std::string tag = tagText(row.tag, row.tagOctets);
    if (row.explicitTag) return tag + (kind == ZYN_KIND_CHOICE ? "(*)" : "(02)");
    if (kind != ZYN_KIND_OCTET_STRING && kind != ZYN_KIND_BIT_STRING) return tag;
    return tag + "|" + tagText(row.tag | 0x20000000, row.tagOctets);
}

std::string nameOf(const ZynType& type) {
    if (type.module) return type.name;
    switch (type.kind) {
    case ZYN_KIND_INTEGER: return "INTEGER";
    case ZYN_KIND_BOOLEAN: return "BOOLEAN";
    case ZYN_KIND_REAL: return "REAL";
    case ZYN_KIND_OCTET_STRING: return "OCTET STRING";
    case ZYN_KIND_BIT_STRING: return "BIT STRING";
    default: return type.name;
    }
}

std::string linesOf(const ZynType& type) {
    std::ostringstream lines;
    if (type.message) lines << "message ";
    switch (type.kind) {
    case ZYN_KIND_SEQUENCE: lines << "SEQUENCE " << type.name << (type.fieldCount == 0 ? ", empty" : ""); break;
    case ZYN_KIND_SET_OF: lines << "SET OF " << type.element->name << " " << type.name; break;
    default: lines << "CHOICE " << type.name; break;
    }
    lines << "\n";
    for (const ZynField& field : std::span(type.fields, type.fieldCount)) {
        lines << field.name << " " << tagOf(field, true) << " " << nameOf(*field.type)
              << (field.optional ? " OPTIONAL" : "") << "\n";
    }
    for (const ZynAlternative& row : std::span(type.alternatives, type.alternativeCount)) {
        lines << row.number << " " << row.name << " " << tagOf(row, false) << " " << nameOf(*row.type) << "\n";
    }
    return lines.str();
}

// The dump without its columns, and without what is no type of its own at run time.
std::string dump() {
    std::ifstream file(ZYN_TEST_DATA "/golden/schema.txt");
    std::string text;
    bool inModules = false;
    for (std::string line; std::getline(file, line);) {
        inModules = inModules || line.starts_with("module ");
        if (!inModules || line.empty() || line == "  ENUMERATED AsnEnum") continue;
        std::istringstream words(line);
        std::string word;
        for (bool first = true; words >> word; first = false) text += (first ? "" : " ") + word;
        text += "\n";
    }
    return text;
}

TEST(Types, AreThoseOfTheSchema) {
    std::string described;
    for (uint32_t i = 0; i < ZynModuleCount(); ++i) {
        described += std::string("module ") + ZynModuleName(i) + "\n";
        for (const ZynType* type : allTypes()) {
            if (type->module && std::string_view(type->module) == ZynModuleName(i)) described += linesOf(*type);
        }
    }
    EXPECT_EQ(described, dump());
    EXPECT_EQ(ZynModuleName(ZynModuleCount()), nullptr);
}

struct Layout {
    std::size_t size, alignment;
};

// What a member of C takes.
Layout layoutOf(const ZynType& type, bool pointer) {
    if (pointer) return {sizeof(void*), alignof(void*)};
    switch (type.kind) {
    case ZYN_KIND_INTEGER:
    case ZYN_KIND_ENUMERATED: return {sizeof(AsnInt), alignof(AsnInt)};
    case ZYN_KIND_BOOLEAN: return {sizeof(AsnBool), alignof(AsnBool)};
    case ZYN_KIND_REAL: return {sizeof(AsnReal), alignof(AsnReal)};
    case ZYN_KIND_OCTET_STRING: return {sizeof(AsnOcts), alignof(AsnOcts)};
    case ZYN_KIND_BIT_STRING: return {sizeof(AsnBits), alignof(AsnBits)};
    case ZYN_KIND_SET_OF: return {sizeof(AsnList), alignof(AsnList)};
    default: ADD_FAILURE() << type.name << " does not stand in a member"; return {1, 1};
    }
}

std::size_t up(std::size_t offset, std::size_t alignment) { return (offset + alignment - 1) / alignment * alignment; }

// Members of a C structure stand in their order, each at the first place that is aligned for it.
TEST(Types, LieInMemoryAsACompilerLaysThemOut) {
    for (const ZynType* type : allTypes()) {
        SCOPED_TRACE(type->name);
        Layout whole{0, 1};
        if (type->kind == ZYN_KIND_CHOICE) {
            EXPECT_EQ(type->slotOffset, alignof(void*));
            whole = {type->slotOffset + sizeof(void*), alignof(void*)};
        } else if (type->kind != ZYN_KIND_SEQUENCE) {
            whole = layoutOf(*type, false);
        } else if (type->fieldCount == 0) {
            whole = {1, 1};
        }
        for (const ZynField& field : std::span(type->fields, type->fieldCount)) {
            const Layout member = layoutOf(*field.type, field.pointer);
            EXPECT_EQ(field.offset, up(whole.size, member.alignment)) << field.name;
            whole = {field.offset + member.size, std::max(whole.alignment, member.alignment)};
        }
        EXPECT_EQ(type->size, up(whole.size, whole.alignment));
        EXPECT_EQ(type->alignment, whole.alignment);
    }
}

TEST(Types, AreFoundByNumberAndByName) {
    for (uint32_t i = 0; i < ZynTypeCount(); ++i) {
        const ZynType* type = ZynTypeByNumber(i);
        EXPECT_EQ(type->number, i);
        EXPECT_EQ(ZynTypeByName(type->name), type) << type->name;
        for (const ZynField& field : std::span(type->fields, type->fieldCount)) {
            EXPECT_EQ(ZynFieldByName(type, field.name), &field) << type->name << "." << field.name;
        }
        if (type->kind != ZYN_KIND_CHOICE) continue;
        std::size_t found = 0;
        for (uint32_t number = 0; number < 1000; ++number) found += ZynAlternativeByNumber(type, number) != nullptr;
        EXPECT_EQ(found, type->alternativeCount) << type->name;
        for (const ZynAlternative& row : std::span(type->alternatives, type->alternativeCount)) {
            EXPECT_EQ(ZynAlternativeByNumber(type, row.number), &row) << type->name << "." << row.name;
            EXPECT_EQ(ZynAlternativeByName(type, row.name), &row) << type->name << "." << row.name;
        }
    }
    const ZynType* sequence = ZynTypeByName("ZynTransReq");
    EXPECT_EQ(ZynTypeByNumber(ZynTypeCount()), nullptr);
    for (const char* none : {"", "A", "ZynTransRe", "ZynTransReqs", "zynTransReq", "~"}) {
        EXPECT_EQ(ZynTypeByName(none), nullptr) << none;
        EXPECT_EQ(ZynFieldByName(sequence, none), nullptr) << none;
        EXPECT_EQ(ZynAlternativeByName(ZynTypeByName("ZynTransRep"), none), nullptr) << none;
    }
    EXPECT_EQ(ZynAlternativeByNumber(ZynTypeByName("ZynTransRep"), UINT32_MAX), nullptr);
    EXPECT_EQ(ZynAlternativeByNumber(sequence, 0), nullptr) << "a SEQUENCE has no alternatives";
}

// The operations that stand in a description are those of the type: they write, read and print what the walkers do.
TEST(Types, HaveTheirOwnOperations) {
    Sampler sampler(7, {.presentPercent = 90});
    for (const ZynType* type : allTypes()) {
        SCOPED_TRACE(type->name);
        const ZynOperations& own = type->operations;
        if (!type->module) {
            EXPECT_EQ(own.encodeContent, nullptr);
            continue;
        }
        const auto id = static_cast<TypeId>(type->number);
        ASSERT_STREQ(typeOf(id).name, type->name);
        void* value = sampler.make(id);
        Octets content = encodedContent(id, value);
        std::vector<uint8_t> block(content.size());
        SBuf b = writingBuffer(block.data(), block.size());
        EXPECT_EQ(own.encodeContent(&b, value), content.size());
        EXPECT_EQ(block, content);
        EXPECT_EQ(written([&](FILE* stream) { own.print(stream, value, 3); }), printed(id, value, 3));

        const Head head = takeHead(typeOf(id), content);
        SBuf r = readingBuffer(content.data(), content.size());
        AsnLen read = 0;
        ZynEncodeMemReset();
        void* decoded = valueInArena(typeOf(id));
        const Caught end =
            caught([&](jmp_buf env) { own.decodeContent(&r, head.tag, head.length, decoded, &read, env); });
        EXPECT_EQ(end.code, 0);
        EXPECT_EQ(difference(id, value, decoded), "");
        own.free(decoded);
    }
}

TEST(Types, VersionIsThatOfTheBuild) { EXPECT_STREQ(ZynVersion(), "1.0.0"); }

} // namespace
} // namespace zyn::test
