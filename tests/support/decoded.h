// Decodes and encodes the content of one record by the exact way, as the exported operations do.
#pragma once

#include <stdexcept>

#include "records/exact.h"
#include "tests/support/caught.h"
#include "tests/support/reference.h"
#include "zyn/values.h"

namespace zyn::test {

struct Decoded {
    int code;
    std::string messages;
    void* value; // in the arena, until the next decode
    AsnLen read;
};

// What a caller hands to a decoder: zero-filled memory, or a list that has been made.
inline void* valueInArena(const Type& type) {
    return type.shape == Shape::SetOf ? ZynListNew() : ZynEncodeMemAlloc(type.size);
}

inline Decoded decodedContent(TypeId type, AsnTag tag, AsnLen length, const Octets& octets) {
    // A copy of exactly that size, so that a sanitizer sees any octet that is read behind it.
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[octets.size()]);
    std::copy(octets.begin(), octets.end(), copy.get());
    SBuf b = readingBuffer(copy.get(), octets.size());
    ZynEncodeMemReset();
    Decoded result{0, {}, valueInArena(typeOf(type)), 0};
    const Caught end =
        caught([&](jmp_buf env) { decodeContent(&b, type, tag, length, result.value, &result.read, env); });
    result.code = end.code;
    for (const std::string& message : end.messages) result.messages += message;
    return result;
}

// What stands in front of a content on the wire. A CHOICE brings its tag and length along.
struct Head {
    AsnTag tag = 0;
    AsnLen length = 0;
};

// Takes the tag and the length of an element from its front. False: there are none.
inline bool readHead(Octets& octets, Head& head) {
    AsnLen read = 0;
    SBuf b = readingBuffer(octets.data(), octets.size());
    const Caught end = caught([&](jmp_buf env) {
        head.tag = BDecTag(&b, &read, env);
        head.length = BDecLen(&b, &read, env);
    });
    if (end.code != 0) return false;
    octets.erase(octets.begin(), octets.begin() + read);
    return true;
}

inline Head takeHead(const Type& type, Octets& content) {
    if (type.shape != Shape::Choice) return {0, static_cast<AsnLen>(content.size())};
    Head head;
    if (!readHead(content, head)) throw std::logic_error("a CHOICE without an alternative");
    return head;
}

// What encodedContent gives when nothing could be encoded.
inline const Octets notEncoded{0xDE, 0xAD};

inline Octets encodedContent(TypeId type, const void* value, std::size_t room = 1 << 20) {
    static std::vector<uint8_t> block;
    block.resize(room);
    SBuf b = writingBuffer(block.data(), room);
    const AsnLen length = encodeContent(&b, type, value);
    Octets octets(b.dataStart, b.dataEnd);
    return b.writeError == 1 || octets.size() != length ? notEncoded : octets;
}

} // namespace zyn::test
