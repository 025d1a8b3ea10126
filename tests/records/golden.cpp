// The messages of tests/messages, one a file: lines that start with # and tell what it is, a line with the
// channel, the octets in hexadecimal over one or more lines, an empty line, and the printed message up to the
// end of the file. Each of them decodes, prints as it stands there, and is encoded to the same octets again.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/support/hex.h"
#include "tests/support/printed.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

struct Golden {
    const Channel* channel = nullptr;
    Octets octets;
    std::string text;
};

Golden read(const std::filesystem::path& path) {
    std::ifstream file(path);
    Golden golden;
    std::string line, octets;
    while (std::getline(file, line) && line.starts_with("#")) {}
    for (const Channel& channel : channels) {
        if (line == channel.name) golden.channel = &channel;
    }
    if (!golden.channel) throw std::invalid_argument("names no channel");
    while (std::getline(file, line) && !line.empty()) octets += line;
    golden.octets = hex(octets);
    std::ostringstream text;
    text << file.rdbuf();
    golden.text = text.str();
    if (golden.text.ends_with("\n"))
        golden.text.pop_back(); // the file's last line is closed, the printed one is not
    return golden;
}

TEST(Golden, MessagesDecodePrintAndEncode) {
    TwoWays ways;
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(ZYN_TEST_DATA "/messages"))
        paths.insert(entry.path());
    for (const auto& path : paths) {
        if (path.extension() != ".txt") continue;
        SCOPED_TRACE(path.filename());
        const Golden golden = read(path);
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
