// Messages as octets, spelled as they are wanted.
#pragma once

#include <string>

#include "options.h"
#include "output/out.h"
#include "zyn/describe.h"

namespace zyn::tool {

inline void putSpelled(std::string& out, Spelling spelling, const uint8_t* octets, std::size_t count) {
    if (spelling == Spelling::Raw) out.append(reinterpret_cast<const char*>(octets), count);
    else if (spelling == Spelling::Base64) putBase64(out, octets, count);
    else putHex(out, octets, count, true);
    if (spelling != Spelling::Raw) out += '\n';
}

// Encodes an envelope into a buffer that grows as needed, and gives the number of octets; 0: it cannot be encoded.
std::size_t encodeInto(std::vector<uint8_t>& buffer, ZynChannel channel, const void* envelope);

} // namespace zyn::tool
