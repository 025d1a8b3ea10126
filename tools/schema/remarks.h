// The comments of a schema as JSON, for those who make documents of it.
#pragma once

#include <string>

#include "schema/schema.h"

namespace zyn::schema {

// remarks gives a line of JSON for each module, {"module", "comment"}, and behind it one for each of its types:
// {"type", "module", "line", "comment", "members"}; line is that of the type in its file. A member is {"name", "tag",
// "above", "behind"}: the tag as the schema writes it, such as "[1] EXPLICIT", and the comments above it and on its line.
// What is not there is an empty string; a '\n' parts two paragraphs.
std::string remarks(const Schema& schema);

} // namespace zyn::schema
