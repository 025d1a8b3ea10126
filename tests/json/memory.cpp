// Allocations: none where a workspace has what it needs, and each of them may be refused.
#include <gtest/gtest.h>

#include "tests/json/allocations.h"
#include "tests/json/support.h"

namespace zyn::test {
namespace {

struct Sample {
    const ZynType* type = ZynTypeByName("ZynOrderbookByPriceRep");
    Sampler sampler{3, {100, 300, 200}};
    const void* record = sampler.make(TypeId::ZynOrderbookByPriceRep);
};

TEST(JsonMemory, NothingIsAllocatedOnceTheWorkspaceHasGrown) {
    const Sample sample;
    Json json;
    const std::string text = json.write(sample.type, sample.record);
    ASSERT_TRUE(text.size() > 20'000 && json.read(sample.type, text) && json.read(sample.type, text));
    std::size_t length = 0;
    ZynJson* workspace = json.get();
    const unsigned before = asked;
    const void* read = ZynJsonRead(workspace, sample.type, text.data(), text.size());
    const char* written = ZynJsonWrite(workspace, sample.type, read, &length);
    EXPECT_EQ(asked, before);
    EXPECT_EQ(std::string_view(written, length), text);
}

TEST(JsonMemory, EachAllocationMayBeRefused) {
    const Sample sample;
    const std::string text = Json().write(sample.type, sample.record);
    unsigned refusals = 0;
    for (unsigned grant = 0;; ++grant) {
        std::size_t length = 0;
        granted = grant;
        ZynJson* workspace = ZynJsonNew();
        const char* written = workspace ? ZynJsonWrite(workspace, sample.type, sample.record, &length) : nullptr;
        const void* read = workspace ? ZynJsonRead(workspace, sample.type, text.data(), text.size()) : nullptr;
        granted = ~0u;
        ZynJsonError error;
        if (workspace && !read) {
            ASSERT_TRUE(ZynJsonLastError(workspace, &error));
            EXPECT_STREQ(error.text, "out of memory");
        }
        if (written) {
            EXPECT_EQ(std::string_view(written, length), text);
        }
        // A workspace goes on working.
        if (workspace) {
            EXPECT_TRUE(ZynJsonWrite(workspace, sample.type, sample.record, &length));
            EXPECT_TRUE(ZynJsonRead(workspace, sample.type, text.data(), text.size()));
        }
        ZynJsonFree(workspace);
        if (written && read) break;
        ++refusals;
    }
    EXPECT_GT(refusals, 3u);
    ZynJsonFree(nullptr);
}

} // namespace
} // namespace zyn::test
