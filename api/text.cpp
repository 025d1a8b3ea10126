// Text as callers have it, fixed in width and padded with blanks, and as it travels, at its exact length.
#include <cstring>

#include "zyn/values.h"

void ZynTextStrSet(AsnOcts* v, const char* text, int32_t length) {
    size_t n = length > 0 ? static_cast<size_t>(length) : 0;
    if (length == 0) n = std::strlen(text);
    while (n > 0 && text[n - 1] == ' ') --n;
    v->octetLen = static_cast<uint32_t>(n);
    v->octs = reinterpret_cast<uint8_t*>(const_cast<char*>(text)); // encoders only read it
}

int32_t ZynTextStrGet(const AsnOcts* v, char* dest, int32_t width) {
    size_t n = v->octs ? v->octetLen : 0; // the length of an absent text does not count
    const size_t wanted = width > 0 ? static_cast<size_t>(width) : n;
    if (n > wanted) n = wanted;
    if (n > 0) std::memcpy(dest, v->octs, n);
    if (n < wanted) std::memset(dest + n, ' ', wanted - n);
    return static_cast<int32_t>(wanted);
}

uint32_t ZynTextStrGetLen(const AsnOcts* v) { return v->octetLen; }

void ZynTextStrSetNull(AsnOcts* v) {
    v->octetLen = 0;
    v->octs = nullptr;
}

int ZynTextStrIsNull(const AsnOcts* v) { return v->octs == nullptr; }
