// What is wrong or rare in a message: what the sides may judge differently.
#pragma once

#include <bitset>

namespace zyn::interop {

// What a message can have that sides may judge differently, the worst first.
enum class Trait {
    PrimitiveIndefinite, // 8.1.3.2; read over, as if the element had no content and no end-of-contents
    // Faults at which reading ends.
    RealCut,        // the data end inside the content of a REAL
    Cut,            // the data end inside another element
    Overrun,        // an element is longer than the one around it
    LengthForm,     // a length's first octet is FF (8.1.3.5)
    NoEnd,          // no end-of-contents where an indefinite length ends (8.1.5)
    MissingField,   // the content ends ahead of a required field
    ForeignElement, // an element has a tag that does not belong where it stands
    EmptyFilled,    // an element stands in a record that has no fields
    Construction,   // an element is constructed that must be primitive, or the other way round (8.1.2.5)
    StringPiece,    // a piece of a string is of another type (8.6.4.2, 8.7.3.2)
    // Faults that can be read over.
    TagPadded,      // a tag number in more octets than it needs (8.1.2.4.2)
    TagHighForm,    // a tag number below 31 behind the first octet (8.1.2.2)
    TagOver3Octets, // either of these, and more octets than any tag of the schema has
    IntEmpty,       // 8.3.1
    IntNotShortest, // 8.3.2, in up to four octets
    BoolLength,     // 8.2.1
    BitsNoCount,    // a BIT STRING, or a piece of one, lacks the count of unused bits (8.6.2.2)
    BitsUnused, // it counts more than 7 (8.6.2.2), more than it has (8.6.2.3), or some ahead of the last piece (8.6.4)
    RealReserved, // a first octet that means nothing (8.5), or a reserved base (8.5.7.2)
    RealCutShort, // a REAL without exponent or without mantissa (8.5.7)
    OctetsBehind, // the message is sound, and ends ahead of the data
    // No faults of the message.
    IntOver4Octets,
    IntOver8Octets,
    LengthOver4Octets,   // a length in more than four octets beyond its first
    RealBeyondDouble,    // mantissa or exponent of a REAL are more than a double holds
    RealDecimal,         // 8.5.8
    RealNaN,             // and minus zero, which later editions have (8.5.9)
    RealInfinite,        // 8.5.9
    RealZero,            // 8.5.2
    RealZeroMantissa,    // a REAL in binary form that is 0
    RealBase,            // base 8 or 16 (8.5.7.2)
    RealScaled,          // a scaling factor (8.5.7.3)
    RealCountedExponent, // the exponent's octets are counted by an octet of their own (8.5.7.4 d)
    RealSubnormal,
    BitsSpare,         // a BIT STRING's unused bits are not all 0 (8.6.2.4)
    IndefiniteWrapper, // an EXPLICIT tag with an indefinite length
    NoPieces,          // a string in pieces has none (8.7.3.2)
    NestedPieces,      // a piece of a string is in pieces itself (8.7.3.2, note 1)
    // What the comparison finds out.
    WrapperLength, // nothing is wrong but the length of an EXPLICIT tag
    Count
};
using Traits = std::bitset<static_cast<std::size_t>(Trait::Count)>;

inline bool has(const Traits& traits, Trait trait) { return traits[static_cast<std::size_t>(trait)]; }

// Whether the message is no BER of its schema.
bool isFaulty(const Traits& traits);

} // namespace zyn::interop
