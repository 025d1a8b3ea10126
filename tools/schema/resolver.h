// Names of types and modules, across modules.
#pragma once

#include "schema/schema.h"

namespace zyn::schema {

// resolve finds the type behind every name that is used and sets kind and type of the use. It throws a
// Refusal if a name is unknown, defined twice or imported in vain, or if modules or types lead back to
// themselves.
void resolve(Schema& schema);

} // namespace zyn::schema
