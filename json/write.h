// From a record to its text.
#pragma once

#include "json/out.h"
#include "json/plan.h"

namespace zyn::json {

// Puts the value of the plan's type, or null where value is, into out. indent 0: all in one line.
// Throws std::bad_alloc.
void write(Out& out, const Plan& plan, const void* value, unsigned indent);

} // namespace zyn::json
