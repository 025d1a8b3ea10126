// Our record trees in the neutral form of text.h.
#pragma once

#include <string>
#include <vector>

#include "records/tables.h"

namespace zyn::interop {

using Lines = std::vector<std::string>;

// How a SET OF is written: as it stands, or in an order that depends on the elements' values alone.
enum class ListOrder { asIs, byValue };

// valuesOf gives the lines of a value, sorted.
Lines valuesOf(TypeId type, const void* value, ListOrder order = ListOrder::asIs);

} // namespace zyn::interop
