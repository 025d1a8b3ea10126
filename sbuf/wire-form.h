// Which values an encoder can send at all.
#pragma once

#include <cmath>

#include "zyn/asn.h"

namespace zyn {

// Octets that are promised must be there.
inline bool hasWireForm(const AsnOcts& v) { return v.octs || v.octetLen == 0; }
inline bool hasWireForm(const AsnBits& v) { return v.bitLen >= 0 && (v.bits || v.bitLen == 0); }

// An infinity has one only while a variable holds it, a NaN never.
inline bool hasWireForm(AsnReal v) { return std::isfinite(v) || v == PLUS_INFINITY || v == MINUS_INFINITY; }

} // namespace zyn
