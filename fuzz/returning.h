// REALs that do not come back as they were when they are encoded and decoded again.
#pragma once

#include <cmath>

#include "tests/support/walk.h"

namespace zyn::fuzz {

// What a value that is encoded is decoded to. Encoders write a whole mantissa, so the exponent on the wire may be lower
// than any that a double can have; decoders take such a value for 0. Minus zero is written as zero.
inline AsnReal returned(AsnReal value) {
    if (value == 0) return 0.0;
    int exponent;
    double fraction = std::frexp(std::fabs(value), &exponent);
    for (; fraction > 0; exponent -= 8) {
        fraction *= 256;
        fraction -= std::floor(fraction);
    }
    return exponent < -1074 ? std::copysign(0.0, value) : value;
}

// Makes all REALs in a tree what they come back as. False: there is one that has no form on the wire.
inline bool makeReturning(TypeId type, void* value) {
    bool sendable = true;
    test::forEachValue(type, value, [&](TypeId id, void* part) {
        if (id != TypeId::AsnReal) return;
        auto* real = static_cast<AsnReal*>(part);
        if (std::isfinite(*real)) *real = returned(*real);
        else sendable = false;
    });
    return sendable;
}

} // namespace zyn::fuzz
