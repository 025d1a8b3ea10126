// Lines of a reader, in pieces where they are very long.
#pragma once

#include <algorithm>
#include <string_view>

#include "input/reader.h"

namespace zyn::tool {

class Lines {
public:
    explicit Lines(Reader& from) : reader(from) {}

    uint64_t number() const { return lineNumber; } // of the line that is next, or of which more is to come, from 1
    bool isInside() const { return inside; }       // a piece was taken that did not end its line

    // Gives the next piece without its line break and leaves it where it is.
    Fill peek(std::string_view& piece) {
        for (;;) {
            const std::string_view text = reader.text();
            const std::size_t length = std::min(text.find('\n'), text.size());
            ends = length < text.size();
            if (ends || length >= longestPiece) {
                piece = text.substr(0, length);
                return Fill::More;
            }
            const Fill got = reader.more();
            if (got == Fill::Wait || (got == Fill::End && length == 0)) return got;
            if (got == Fill::End) {
                piece = reader.text(); // reading may have moved it
                return Fill::More;
            }
        }
    }
    // Takes the piece that peek gave last.
    void take(std::string_view piece) {
        reader.take(piece.size() + (ends ? 1 : 0));
        inside = !ends;
        lineNumber += ends ? 1 : 0;
    }
    // Moves to the start of the next line.
    Fill skipRest() {
        std::string_view piece;
        while (inside) {
            const Fill got = peek(piece);
            if (got != Fill::More) return got;
            take(piece);
        }
        return Fill::More;
    }

private:
    static constexpr std::size_t longestPiece = 1 << 20;

    Reader& reader;
    uint64_t lineNumber = 1;
    bool ends = false, inside = false;
};

} // namespace zyn::tool
