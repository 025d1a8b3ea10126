// Schemas for tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "schema/lexer.h"

namespace zyn::schema {

// A module around body, which begins on line 2.
inline Source module(const std::string& body, const std::string& name = "M") {
    return {name + ".asn1", name + " DEFINITIONS IMPLICIT TAGS ::= BEGIN\n" + body + "\nEND\n"};
}

inline std::string readText(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The protocol's own modules.
inline std::vector<Source> protocol() {
    std::vector<Source> sources;
    for (const auto& entry : std::filesystem::directory_iterator(ZYN_SOURCE_DIR "/records")) {
        if (entry.path().extension() != ".asn1") continue;
        sources.push_back({entry.path().string(), readText(entry.path())});
    }
    return sources;
}

} // namespace zyn::schema
