// The rows of cases/<Module>.txt, a line each:
//   <type> | <octets> | <what comes of them> | <why it is worth a row>
// The octets are a whole message, or a record behind its universal tag or the tag of its alternative. They
// come to "ok": they decode and are encoded to the same octets again, to others behind "->"; a text in
// quotation marks is what is printed. Or they come to a failure code, and to the message in quotation marks,
// if there is one.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/support/decoded.h"
#include "tests/support/hex.h"
#include "tests/support/printed.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

struct Row {
    const Type* type = nullptr;
    Octets octets;
    int code = 0;
    std::string message; // reported with the code
    Octets encoded;
    bool printed = false;
    std::string text;
};

// Takes what stands in front of the first separator off the line.
std::string takeCell(std::string& line, const std::string& separator) {
    const auto end = line.find(separator);
    if (end == line.npos) throw std::invalid_argument("lacks '" + separator + "'");
    std::string cell = line.substr(0, end);
    line.erase(0, end + separator.size());
    return cell;
}

std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 1 < text.size();
        if (escape) ++i;
        result += escape && text[i] == 'n' ? '\n' : text[i];
    }
    return result;
}

Row parse(std::string line) {
    Row row;
    const std::string name = takeCell(line, " | ");
    const auto type = std::find_if(types.begin(), types.end(), [&](const Type& t) { return name == t.name; });
    if (type == types.end()) throw std::invalid_argument("names no type");
    row.type = &*type;
    row.octets = row.encoded = hex(takeCell(line, " | "));
    const bool quoted = line.find(" | ") > line.find('"');
    std::string outcome = takeCell(line, quoted ? "\" | " : " | ");
    if (line.empty()) throw std::invalid_argument("gives no reason");
    const auto quote = outcome.find('"');
    const std::string text = quoted ? unescaped(outcome.substr(quote + 1)) : "";
    if (quoted) outcome.erase(quote > 0 ? quote - 1 : 0);
    if (outcome.starts_with("ok")) {
        row.printed = quoted;
        row.text = text;
        if (outcome.starts_with("ok -> ")) row.encoded = hex(outcome.substr(6));
        else if (outcome != "ok") throw std::invalid_argument("has an unknown outcome");
    } else {
        row.code = std::stoi(outcome);
        row.message = text;
        if (outcome != std::to_string(row.code) || row.code >= 0) throw std::invalid_argument("has an unknown outcome");
    }
    return row;
}

void checkMessage(const Row& row, TwoWays& ways) {
    const Channel& channel = channelOf(row.type->id);
    void* message = ways.decode(channel, row.octets);
    EXPECT_EQ(ways.code, row.code);
    EXPECT_EQ(ways.reported, row.message);
    if (ways.code == 0 && row.code == 0) {
        if (row.printed) {
            EXPECT_EQ(printed(row.type->id, message), row.text);
        }
        const auto room = static_cast<uint32_t>(row.encoded.size());
        EXPECT_EQ(toHex(ways.encode(channel, userIn(channel, message), choiceIn(channel, message), room)),
                  toHex(row.encoded));
    }
    EXPECT_EQ(ways.problem, "");
}

void checkRecord(const Row& row) {
    const Type& type = *row.type;
    Octets octets = row.octets;
    SBuf b = readingBuffer(octets.data(), octets.size());
    ZynEncodeMemReset();
    void* value = valueInArena(type);
    AsnTag tag = 0;
    AsnLen read = 0;
    const Caught end = caught([&](jmp_buf env) {
        tag = BDecTag(&b, &read, env);
        const AsnLen length = BDecLen(&b, &read, env);
        decodeContent(&b, type.id, tag, length, value, &read, env);
    });
    std::string reported;
    for (const std::string& message : end.messages) reported += message;
    EXPECT_EQ(end.code, row.code);
    EXPECT_EQ(reported, row.message);
    if (end.code != 0 || row.code != 0) return;
    if (row.printed) {
        EXPECT_EQ(printed(type.id, value), row.text);
    }
    const Octets content = encodedContent(type.id, value);
    EXPECT_EQ(toHex(type.shape == Shape::Choice ? content : Writer().element(tag, content)), toHex(row.encoded));
}

TEST(Cases, AllRows) {
    TwoWays ways;
    int rows = 0;
    for (const auto& file : std::filesystem::directory_iterator(ZYN_TEST_DATA "/records/cases")) {
        std::ifstream lines(file.path());
        int number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            if (line.empty() || line[0] == '#') continue;
            SCOPED_TRACE(file.path().filename().string() + ":" + std::to_string(number) + ": " +
                         line.substr(line.rfind('|') + 1));
            try {
                const Row row = parse(line);
                if (row.type->message) checkMessage(row, ways);
                else checkRecord(row);
            } catch (const std::exception& error) {
                ADD_FAILURE() << "the row " << error.what();
            }
            ways.problem.clear();
            ++rows;
        }
    }
    EXPECT_GT(rows, 800);
}

} // namespace
} // namespace zyn::test
