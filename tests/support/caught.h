// Runs decoders that fail by a jump, and tells how they ended.
#pragma once

#include <csetjmp>
#include <string>
#include <vector>

#include "zyn/asn.h"

struct Caught {
    int code = 0; // 0: nothing failed
    std::vector<std::string> messages;
};

namespace caught_detail {
inline std::vector<std::string>* messages = nullptr;
inline void record(char* text, int severity) {
    messages->push_back(severity == 1 ? std::string(text) : "warning: " + std::string(text));
}
} // namespace caught_detail

// decode(env) is run once. It must not hold objects with destructors where it may fail.
template <typename Decode> Caught caught(Decode&& decode) {
    Caught result;
    caught_detail::messages = &result.messages;
    Asn1ErrorHandler previous = Asn1InstallErrorHandler(caught_detail::record);
    jmp_buf env;
    // volatile: read again after the jump
    volatile int code = setjmp(env);
    if (code == 0) decode(env);
    result.code = code;
    Asn1InstallErrorHandler(previous);
    return result;
}

// A buffer for reading over octets that outlive it.
inline SBuf readingBuffer(uint8_t* octets, size_t count) {
    return SBuf{octets, octets + count, octets, octets + count, octets, 1, 0};
}

// A buffer for writing into a block that outlives it.
inline SBuf writingBuffer(uint8_t* block, size_t size) {
    uint8_t* end = block + size;
    return SBuf{end, end, block, end, end, 0, 1};
}
