// Turns parsed modules into a schema that the codec can carry out.
#pragma once

#include <vector>

#include "schema/lexer.h"
#include "schema/schema.h"

namespace zyn::schema {

// compile parses and checks all modules and sorts them by name; the order of sources does not matter. It
// throws a Refusal if the schema is not sound or has something that the codec rules do not know.
Schema compile(const std::vector<Source>& sources);

} // namespace zyn::schema
