// Each message of tests/messages decodes, prints as it stands there, and is encoded to the same octets again.
#include <gtest/gtest.h>

#include "tests/support/golden.h"
#include "tests/support/printed.h"

namespace zyn::test {
namespace {

TEST(Golden, MessagesDecodePrintAndEncode) {
    TwoWays ways;
    const auto paths = goldenPaths(ZYN_TEST_DATA "/messages");
    for (const auto& path : paths) {
        SCOPED_TRACE(path.filename());
        const Golden golden = readGolden(path);
        void* message = ways.decode(*golden.channel, golden.octets);
        ASSERT_EQ(ways.code, 0) << ways.reported;
        EXPECT_TRUE(ways.direct);
        EXPECT_EQ(printed(golden.channel->message, message), golden.text);
        testing::internal::CaptureStderr();
        golden.channel->print(message);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), golden.text);
        const auto room = static_cast<uint32_t>(golden.octets.size());
        const std::string user = userIn(*golden.channel, message);
        EXPECT_EQ(toHex(ways.encode(*golden.channel, user, choiceIn(*golden.channel, message), room)),
                  toHex(golden.octets));
        EXPECT_EQ(ways.problem, "");
    }
    EXPECT_GE(paths.size(), 60u);
}

} // namespace
} // namespace zyn::test
