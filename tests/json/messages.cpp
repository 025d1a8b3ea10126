// The messages of tests/messages as JSON: all of them to text and back to the same octets, and some as they stand in
// tests/json/golden, under the same name.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/json/support.h"
#include "tests/support/hex.h"

namespace zyn::test {
namespace {

// The octets of a message file: behind the lines that start with # and the one that names the channel, up to an empty
// one.
std::vector<uint8_t> octetsIn(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line, octets;
    while (std::getline(file, line) && line.starts_with("#")) {
    }
    while (std::getline(file, line) && !line.empty()) octets += line;
    return hex(octets);
}

std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

TEST(JsonMessages, BackToTheSameOctets) {
    Json json;
    unsigned messages = 0, golden = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZYN_TEST_DATA "/messages")) {
        if (entry.path().extension() != ".txt") continue;
        SCOPED_TRACE(entry.path().filename());
        const std::vector<uint8_t> octets = octetsIn(entry.path());
        const auto size = static_cast<uint32_t>(octets.size());
        const auto channel = static_cast<ZynChannel>(ZynChannelOf(octets.data(), octets.size()));
        const ZynType* type = ZynEnvelopeType(channel);
        ASSERT_TRUE(type);
        alignas(std::max_align_t) uint8_t envelope[64];
        ASSERT_LE(type->size, sizeof envelope);
        ASSERT_EQ(ZynDecode(channel, octets.data(), size, envelope), 0);
        const std::string text = json.write(type, envelope, 2) + '\n';
        const std::filesystem::path stored = ZYN_TEST_DATA "/json/golden" / entry.path().stem().concat(".json");
        if (std::filesystem::exists(stored)) {
            ++golden;
            EXPECT_EQ(text, contentOf(stored));
        }
        const void* read = json.read(type, text);
        ASSERT_TRUE(read) << json.error();
        EXPECT_TRUE(ZynTreeEqual(type, envelope, read));
        std::vector<uint8_t> again(octets.size());
        EXPECT_EQ(ZynEncode(channel, read, again.data(), size), size);
        EXPECT_EQ(toHex(again), toHex(octets));
        ++messages;
    }
    EXPECT_GE(messages, 60u);
    EXPECT_GE(golden, 4u);
}

} // namespace
} // namespace zyn::test
