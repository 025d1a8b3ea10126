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

namespace zyn::direct {

enum class Outcome { Done, GaveUp, NoMemory };

// decode reads the message at buffer into *message, a structure of type id. However it ends, the arena's cursor stands
// behind all memory that was written, so that a reset clears it. The arena must be set up, and empty. It may ask for
// memory earlier than the exact way does; when that is refused, the exact way tells whether it would have come so far.
template <TypeId id> Outcome decode(const uint8_t* buffer, std::size_t length, void* message);

// encode writes the message of type id backwards from end and returns where it starts, or null: gave up. No octet
// outside [begin, end) is touched.
template <TypeId id> uint8_t* encode(const void* message, uint8_t* begin, uint8_t* end);

extern template Outcome decode<TypeId::ZynTransReq>(const uint8_t*, std::size_t, void*);
extern template Outcome decode<TypeId::ZynQueryReq>(const uint8_t*, std::size_t, void*);
extern template Outcome decode<TypeId::ZynTransRep>(const uint8_t*, std::size_t, void*);
extern template Outcome decode<TypeId::ZynQueryRep>(const uint8_t*, std::size_t, void*);
extern template uint8_t* encode<TypeId::ZynTransReq>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynQueryReq>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynTransRep>(const void*, uint8_t*, uint8_t*);
extern template uint8_t* encode<TypeId::ZynQueryRep>(const void*, uint8_t*, uint8_t*);

} // namespace zyn::direct
