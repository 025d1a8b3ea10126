// The memory that a message can make the library hold: how much there is, and the most there can be.
#pragma once

#include <cstddef>

#include "records/generated/type-ids.h"
#include "zyn/asn.h"

namespace zyn::test {

// Bytes that an arena has from the system allocator, its first block included.
std::size_t heldByArena(const NibbleMem* arena);

// Bytes that the tables of constructed strings have from the system allocator.
std::size_t heldByStringTables();

// The most bytes that an arena of the entry points holds over a message of some octets, or over any beginning of one.
struct ArenaBound {
    double perOctet;
    double once;

    double over(std::size_t octets) const { return perOctet * static_cast<double>(octets) + once; }
};

// From the field tables. perOctet is what the worst element of any list comes to; no other memory grows faster with the
// message. once is what the worst message holds beyond that, found at the worst moment of its decode.
ArenaBound arenaBound();

// The list whose elements reach perOctet.
TypeId worstList();

} // namespace zyn::test
