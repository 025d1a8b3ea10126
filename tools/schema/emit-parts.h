// The parts of the emitter: each gives the text of one file.
#pragma once

#include <string>

#include "schema/schema.h"

namespace zyn::schema {

std::string emitHeader(const Module& module);
std::string emitCpp(const Module& module);
std::string emitRows(const Module& module);
std::string emitExports(const Module& module);

std::string emitAllHeaders(const Schema& schema);
std::string emitAllCpp(const Schema& schema);
std::string emitTypeIds(const Schema& schema);
std::string emitModules(const Schema& schema);
std::string emitSources(const Schema& schema);

// The type of a value in C. An ENUMERATED is an AsnInt there, and an AsnEnum in the rows.
std::string cType(const TypeUse& use);
std::string rowType(const TypeUse& use);

} // namespace zyn::schema
