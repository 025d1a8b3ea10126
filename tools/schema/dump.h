// The compiled schema as text for people to review.
#pragma once

#include <string>

#include "schema/schema.h"

namespace zyn::schema {

// What the signs in the column of tags mean; whole lines.
extern const char* const dumpLegend;

// dump writes modules in the order of the schema; a line for each module, type, field and alternative.
std::string dump(const Schema& schema);

} // namespace zyn::schema
