// What decoding a record must come to, told from the rules and apart from the library: a walk over elements
// that either names the failure or gives the same record in the form that encoders write.
#pragma once

#include "records/tables.h"
#include "tests/support/reference.h"

namespace zyn::test {

struct Outcome {
    int code = 0;
    std::string message;  // of the failure; empty: none is reported
    Octets canonical;     // the content, if nothing failed
    std::size_t read = 0; // octets, if nothing failed
};

constexpr uint32_t indefinite = 0xFFFFFFFF;

// The content of a record of that type at the start of octets, behind a tag and a length. Values must be
// whole, and a REAL in the form that encoders write.
Outcome modelOf(TypeId type, AsnTag tag, uint32_t length, const Octets& octets);

} // namespace zyn::test
