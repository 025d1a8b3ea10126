// The library's side: whole messages through the entry points, and records that no message carries through the exact
// way, each with its own tag and length ahead.
#pragma once

#include <string>

#include "interop/values.h"
#include "tests/support/reference.h"

namespace zyn::interop {

struct Decoded {
    int code = 0;       // 0: taken
    std::string report; // what was told of the failure
    Lines lines;        // as they stand
    Lines byValue;      // lists by value
    test::Octets again; // if asked for: what the value is encoded as
};

bool isMessage(TypeId type);

// encoded throws where the library does not encode the value.
test::Octets encoded(TypeId type, const void* value);
Decoded decoded(TypeId type, const test::Octets& octets, bool again = false);

} // namespace zyn::interop
