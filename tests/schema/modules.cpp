// The protocol's own modules through the compiler.
#include <algorithm>

#include <gtest/gtest.h>

#include "schema/checker.h"
#include "schema/dump.h"
#include "schema/emitter.h"
#include "sources.h"

namespace zyn::schema {
namespace {

TEST(SchemaModules, DumpIsTheGoldenFile) {
    const Schema schema = compile(protocol());
    EXPECT_EQ(firstLine(schema) + "\n" + dumpLegend + "\n" + dump(schema),
              readText(ZYN_SOURCE_DIR "/tests/golden/schema.txt"))
        << "after a wanted change, ./do generate makes it again";
}

std::string everything(const std::vector<Source>& sources) {
    const Output output = emit(compile(sources));
    std::string text = output.allHeaders.text;
    for (const auto* files : {&output.headers, &output.rows}) {
        for (const OutputFile& file : *files) text += file.name + "\n" + file.text;
    }
    return text;
}

TEST(SchemaModules, OrderOfArgumentsDoesNotMatter) {
    std::vector<Source> sources = protocol();
    ASSERT_GT(sources.size(), 30u);
    std::ranges::sort(sources, {}, &Source::file);
    const std::string inOrder = everything(sources);
    std::ranges::reverse(sources);
    EXPECT_EQ(everything(sources), inOrder);
    std::ranges::rotate(sources, sources.begin() + 17);
    EXPECT_EQ(everything(sources), inOrder);
}

TEST(SchemaModules, AreSortedByNameWhereverTheyLie) {
    const Schema schema = compile({{"x/B.asn1", module("", "B").text}, {"y/A.asn1", module("", "A").text}});
    EXPECT_EQ(schema.modules[0].name, "A");
    EXPECT_EQ(schema.modules[1].name, "B");
}

} // namespace
} // namespace zyn::schema
