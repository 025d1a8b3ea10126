// What shows that a difference has the cause that is named for it: the same message without the cause, which all sides
// have to take for the same values, and the same message with no other cause, on which the sides have to differ as before.
#pragma once

#include "interop/reading.h"

namespace zyn::interop {

// without gives the message with all that has one of the traits in a plain form: an exponent that is not counted, a tag
// in the fewest octets, an INTEGER or a REAL with a value that all sides have, and so on.
test::Octets without(const Traits& causes, TypeId type, const test::Octets& message);

} // namespace zyn::interop
