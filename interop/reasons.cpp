#include "interop/reasons.h"

#include <algorithm>
#include <iterator>

namespace zyn::interop {
namespace {

using enum Side;
using enum Effect;

constexpr Reason reasons[] = {
    {zyn, refuses, Trait::IntOver4Octets, "has INTEGERs of 32 bits"},
    {zyn, refuses, Trait::IntEmpty, "takes no INTEGER without content, which the others take for 0"},
    {zyn, refuses, Trait::TagPadded, "compares tags octet by octet"},
    {zyn, refuses, Trait::TagHighForm, "compares tags octet by octet"},
    {zyn, refuses, Trait::TagOver3Octets, "compares tags octet by octet"},
    {zyn, refuses, Trait::LengthOver4Octets, "takes lengths of up to four octets"},
    {zyn, refuses, Trait::RealDecimal, "takes no REAL in decimal form"},
    {zyn, takes, Trait::RealCut, "takes a REAL that the data end in as far as it goes"},
    {zyn, takes, Trait::WrapperLength, "goes by the length of the value inside an EXPLICIT tag"},

    {asn1c, takes, Trait::PrimitiveIndefinite, "takes a BOOLEAN with an indefinite length for one without content"},
    {asn1c, takes, Trait::BoolLength, "takes a BOOLEAN of any length"},
    {asn1c, takes, Trait::BitsUnused, "takes the lowest three bits of the count of unused bits"},
    {asn1c, takes, Trait::RealNaN, "takes NaN and minus zero"},
    {asn1c, takes, Trait::BitsNoCount, "takes a BIT STRING without content for one without bits"},
    {asn1c, refuses, Trait::RealBeyondDouble, "refuses a REAL too large for a double, which zyn takes for infinity"},
    {asn1c, refuses, Trait::IndefiniteWrapper, "does not expect the end-of-contents of an EXPLICIT tag"},
    {asn1c, refuses, Trait::RealCountedExponent, "takes an octet of the mantissa for one of a counted exponent"},
    {asn1c, readsOther, Trait::RealCountedExponent, "takes an octet of the mantissa for one of a counted exponent"},
    {asn1c, writesOther, Trait::RealSubnormal, "adds a leading bit to the mantissa of a subnormal REAL"},

    {erlang, takes, Trait::IntOver8Octets, "has INTEGERs of any size"},
    {erlang, takes, Trait::RealDecimal, "hands decimal REALs on as text, sound or not"},
    {erlang, takes, Trait::RealReserved, "takes most reserved first octets of a REAL for those of binary forms"},
    {erlang, takes, Trait::EmptyFilled, "does not look into a SEQUENCE without fields"},
    {erlang, takes, Trait::Construction, "takes an element without content for constructed, whatever its tag says"},
    {erlang, refuses, Trait::TagOver3Octets, "takes tags of up to three octets"},
    {erlang, refuses, Trait::RealZero, "fails at a REAL without content, which is 0.0"},
    {erlang, refuses, Trait::RealInfinite, "fails at an infinite REAL"},
    {erlang, refuses, Trait::RealCountedExponent, "counts the octets of a counted exponent wrongly"},
    {erlang, refuses, Trait::RealBase, "knows base 2 alone"},
    {erlang, refuses, Trait::NestedPieces, "fails at pieces within pieces of a string"},
    {erlang, readsOther, Trait::NestedPieces, "fails at pieces within pieces of a string"},
    {erlang, refuses, Trait::NoPieces, "fails at a string of no pieces"},
    {erlang, refuses, Trait::BitsNoCount, "fails at a piece of a BIT STRING without its count of unused bits"},
    {erlang, readsOther, Trait::BitsNoCount, "fails at a piece of a BIT STRING without its count of unused bits"},
    {erlang, readsOther, Trait::RealScaled, "ignores the scaling factor"},
    {erlang, readsOther, Trait::RealBeyondDouble, "keeps all bits of a REAL"},
    {erlang, readsOther, Trait::RealDecimal, "hands decimal REALs on as text"},
};

constexpr const char* names[] = {
    "primitive element with an indefinite length",
    "data end inside a REAL",
    "data end inside an element",
    "element longer than the one around it",
    "length octet FF",
    "no end-of-contents",
    "required field missing",
    "element where it does not belong",
    "element in a record without fields",
    "primitive for constructed, or the other way round",
    "piece of a string of another type",
    "tag number in more octets than it needs",
    "tag number below 31 in the high form",
    "tag of more than three octets",
    "INTEGER without content",
    "INTEGER not in the fewest octets",
    "BOOLEAN not of one octet",
    "BIT STRING without the count of unused bits",
    "BIT STRING with a wrong count of unused bits",
    "REAL with a reserved first octet",
    "REAL without exponent or mantissa",
    "octets behind the message",
    "INTEGER of 5 to 8 octets",
    "INTEGER of more than 8 octets",
    "length in more than four octets",
    "REAL beyond a double",
    "REAL in decimal form",
    "REAL NaN or minus zero",
    "REAL infinite",
    "REAL 0.0",
    "REAL with a mantissa of 0",
    "REAL of base 8 or 16",
    "REAL with a scaling factor",
    "REAL with a counted exponent",
    "REAL subnormal",
    "BIT STRING with unused bits that are not 0",
    "EXPLICIT tag with an indefinite length",
    "string in pieces that has none",
    "string with pieces in pieces",
    "wrong length of an EXPLICIT tag",
};
static_assert(std::size(names) == static_cast<std::size_t>(Trait::Count));

} // namespace

const Reason* reasonFor(Side side, Effect effect, Trait trait) {
    const auto found = std::ranges::find_if(reasons, [&](const Reason& reason) {
        return reason.side == side && reason.effect == effect && reason.trait == trait;
    });
    return found == std::end(reasons) ? nullptr : found;
}

Traits causesOf(Side side, Effect effect) {
    Traits causes;
    for (const Reason& reason : reasons) {
        if (reason.side == side && reason.effect == effect) causes.set(static_cast<std::size_t>(reason.trait));
    }
    return causes;
}

Traits allCauses() {
    Traits causes;
    for (const Reason& reason : reasons) causes.set(static_cast<std::size_t>(reason.trait));
    return causes;
}

const char* nameOf(Trait trait) { return names[static_cast<std::size_t>(trait)]; }

const char* kindOf(const Traits& traits, const Reason* reason) {
    if (has(traits, Trait::WrapperLength)) return nameOf(Trait::WrapperLength);
    for (std::size_t i = 0; isFaulty(traits); ++i) {
        if (traits[i]) return names[i];
    }
    return reason ? nameOf(reason->trait) : "values only";
}

} // namespace zyn::interop
