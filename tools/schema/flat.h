// All types in one module, for tools that would rather not follow imports.
#pragma once

#include <string>

#include "schema/schema.h"

namespace zyn::schema {

// flat gives the text of a module of that name with the types of all modules, each as its own module has it, comments
// included. A module's types stand behind those of the modules that it imports from. The names cannot clash, because
// compile refuses a type name that two modules define.
std::string flat(const Schema& schema, const std::string& name);

} // namespace zyn::schema
