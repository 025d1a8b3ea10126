// The messages of tests/messages, one a file: lines that start with # and tell what it is, a line with the channel, the
// octets in hexadecimal over one or more lines, an empty line, and the printed message up to the end of the file.
#pragma once

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/support/hex.h"
#include "tests/support/two-ways.h"

namespace zyn::test {

struct Golden {
    const Channel* channel = nullptr;
    Octets octets;
    std::string text;
};

inline Golden readGolden(const std::filesystem::path& path) {
    std::ifstream file(path);
    Golden golden;
    std::string line, octets;
    while (std::getline(file, line) && line.starts_with("#")) {
    }
    for (const Channel& channel : channels) {
        if (line == channel.name) golden.channel = &channel;
    }
    if (!golden.channel) throw std::invalid_argument("names no channel");
    while (std::getline(file, line) && !line.empty()) octets += line;
    golden.octets = hex(octets);
    std::ostringstream text;
    text << file.rdbuf();
    golden.text = text.str();
    if (golden.text.ends_with("\n")) golden.text.pop_back(); // the file's last line is closed, the printed one is not
    return golden;
}

// All of them, in order of name.
inline std::set<std::filesystem::path> goldenPaths(const std::filesystem::path& directory) {
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".txt") paths.insert(entry.path());
    }
    return paths;
}

} // namespace zyn::test
