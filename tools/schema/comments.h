// Which comments belong to what.
#pragma once

#include <string>

#include "schema/lexer.h"

namespace zyn::schema {

// commentAbove gives the comment that ends directly above the token, without an empty line between.
std::string commentAbove(const Lexed& lexed, int token);

// commentBehind gives the comments that stand on the same line as one of the tokens first to last, behind it.
std::string commentBehind(const Lexed& lexed, int first, int last);

// moduleComment gives what stands ahead of the whole module, or else right below the line of its BEGIN. A
// comment there that is directly above a type is the type's.
std::string moduleComment(const Lexed& lexed, int begin);

} // namespace zyn::schema
