// JSON objects out of text, one behind the other, each in one line or in several.
#pragma once

#include <string>
#include <string_view>

#include "input/reader.h"

namespace zyn::tool {

struct Document {
    std::string_view text; // good until the next call
    uint64_t line = 0;     // where it begins, from 1
};

class Documents {
public:
    explicit Documents(Reader& from) : reader(from) {}

    // Gives the next object, or a line that is none, or what the end of the input leaves of one. An object in several
    // lines that is not complete ends where a line begins with the brace of the next one. End: there is no more.
    Fill next(Document& document);

private:
    Fill skipBlanks();

    Reader& reader;
    uint64_t lineNumber = 1;
    std::size_t used = 0; // bytes of the document that was given last
};

} // namespace zyn::tool
