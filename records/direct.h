// The direct way: straight-line code for what a well-behaved peer sends, instantiated from the rows for each record.
//
// It takes definite lengths, primitive strings, fields in place and room left, and gives exactly what the exact way
// gives: the same tree in the same arena, the same octets, the same list cursors. At the first thing that it does not
// expect it gives up, having reported nothing and written nothing to the caller's record; the caller then runs the exact
// way from the start, which knows why.
#pragma once

#include <cstddef>
#include <cstdint>

#include "records/generated/type-ids.h"
#include "zyn/describe.h"

namespace zyn::direct {

enum class Outcome { Done, GaveUp, NoMemory };

Outcome decodeRequest(ZynChannel channel, const uint8_t* buffer, std::size_t length, void* message);
Outcome decodeReply(ZynChannel channel, const uint8_t* buffer, std::size_t length, void* message);

// decode reads the message at buffer, which came on that channel, into *message, a structure of the channel's type. The
// arena must be set up, and is emptied first, unless decode gives up before it needs it. However it ends, the arena's
// cursor stands behind all memory that was written, so that a reset clears it. It may ask for memory earlier than the
// exact way does; when that is refused, the exact way tells whether it would have come so far.
inline Outcome decode(ZynChannel channel, const uint8_t* buffer, std::size_t length, void* message) {
    const bool isRequest = channel == ZYN_TRANS_REQUEST || channel == ZYN_QUERY_REQUEST;
    return isRequest ? decodeRequest(channel, buffer, length, message) : decodeReply(channel, buffer, length, message);
}

// encode writes the message of type id backwards from end and returns where it starts, or null: gave up. No octet
// outside [begin, end) is touched.
template <TypeId id> uint8_t* encode(const void* message, uint8_t* begin, uint8_t* end);

extern template uint8_t* encode<TypeId::ZynTransReq>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynQueryReq>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynTransRep>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynQueryRep>(const void*, uint8_t*, uint8_t*);

} // namespace zyn::direct
