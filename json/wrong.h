// The sentences that tell what is wrong with a text.
#pragma once

#include <string>
#include <string_view>

#include "zyn/describe.h"

namespace zyn::json {

// What went wrong, and where.
struct Wrong {
    std::size_t offset; // from the start of the text
    std::string path;
    std::string text;
};

// What a value of the type looks like in JSON, such as "an integer".
std::string looksOf(const ZynType& type);

// A part of the text in quotes, cut where it is long and without what does not print.
std::string quoted(std::string_view part);

// What stands at that place of the text, such as "']'" or "the end of the text".
std::string foundAt(std::string_view text, std::size_t offset);

// The line and column of a place, counted from 1, columns in bytes.
struct Place {
    uint32_t line, column;
};
Place placeOf(std::string_view text, std::size_t offset);

} // namespace zyn::json
