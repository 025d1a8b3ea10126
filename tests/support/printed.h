// What the library prints, as a string.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "records/exact.h"

namespace zyn::test {

// print(stream) writes what is wanted.
template <typename Print> std::string written(Print&& print) {
    char* text = nullptr;
    size_t size = 0;
    FILE* stream = open_memstream(&text, &size);
    print(stream);
    std::fclose(stream);
    std::string result(text, size);
    std::free(text);
    return result;
}

inline std::string printed(TypeId type, const void* value, unsigned short indent = 0) {
    return written([&](FILE* stream) { print(stream, type, value, indent); });
}

} // namespace zyn::test
