// Reads one module.
#pragma once

#include "schema/lexer.h"
#include "schema/schema.h"

namespace zyn::schema {

// parse reads the grammar below and throws a Refusal at anything else. It looks up no names, so the kinds of
// the types in use are not known yet.
//
//   module  = Name "DEFINITIONS" "IMPLICIT" "TAGS" "::=" "BEGIN" [imports] {type} "END"
//   imports = "IMPORTS" Name {"," Name} "FROM" Name {Name {"," Name} "FROM" Name} ";"
//   type    = Name "::=" ( "SEQUENCE" "{" [field {"," field}] "}"
//                        | "CHOICE" "{" alternative {"," alternative} "}"
//                        | "SET" "OF" use
//                        | "[" "UNIVERSAL" "10" "]" "IMPLICIT" "INTEGER" )
//   field       = name [tag] use ["OPTIONAL"]
//   alternative = name tag use
//   tag         = "[" number "]" ["IMPLICIT" | "EXPLICIT"]
//   use         = Name | "INTEGER" | "BOOLEAN" | "REAL" | "OCTET" "STRING" | "BIT" "STRING"
Module parse(const Source& source);

} // namespace zyn::schema
