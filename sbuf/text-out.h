// Text on its way to a stream, gathered in a buffer so that the stream is called seldom.
#pragma once

#include <cstdio>
#include <string_view>

#include "zyn/asn.h"

namespace zyn {

struct TextOut {
    FILE* stream;
    std::size_t used = 0;
    char buffer[4096];

    explicit TextOut(FILE* f) : stream(f) {}

    // At least n bytes of room, n at most the size of the buffer.
    char* room(std::size_t n) {
        if (sizeof buffer - used < n) flush();
        return buffer + used;
    }
    void put(char c) {
        *room(1) = c;
        ++used;
    }
    void put(std::string_view text);
    void spaces(unsigned n);

    // What was put reaches the stream; results of the stream are ignored, as printing has no failures.
    void flush();
};

void printInt(TextOut& out, AsnInt value);
void printUInt(TextOut& out, UAsnInt value);
void printBool(TextOut& out, AsnBool value);
void printReal(TextOut& out, AsnReal value);
void printOcts(TextOut& out, const AsnOcts& value);
void printBits(TextOut& out, const AsnBits& value);

} // namespace zyn
