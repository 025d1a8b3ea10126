// Base64 in either of its alphabets. A line that is filled with whole groups goes on in the next one where a message is
// not complete at its end: programs break their output into such lines.
#include <array>

#include "input/lines.h"
#include "input/source.h"

namespace zyn::tool {
namespace {

constexpr uint8_t bad = 0xFF, blank = 0xFE, padding = 0xFD;

constexpr std::array<uint8_t, 256> meanings = [] {
    std::array<uint8_t, 256> table{};
    table.fill(bad);
    for (unsigned i = 0; i < 26; ++i) {
        table['A' + i] = static_cast<uint8_t>(i);
        table['a' + i] = static_cast<uint8_t>(26 + i);
    }
    for (unsigned i = 0; i < 10; ++i) table['0' + i] = static_cast<uint8_t>(52 + i);
    table['+'] = table['-'] = 62;
    table['/'] = table['_'] = 63;
    table[' '] = table['\t'] = table['\r'] = blank;
    table['='] = padding;
    return table;
}();

class Base64Source : public Source {
public:
    Base64Source(Reader& reader, bool skip) : lines(reader), skipJunk(skip) {}

    Fill next(Window& window) override {
        std::string_view piece;
        for (;;) {
            Fill got = lines.skipRest();
            if (got != Fill::More || (got = lines.peek(piece)) != Fill::More) return got;
            if (piece.find_first_not_of(" \t\r") != std::string_view::npos) break;
            lines.take(piece);
        }
        window.startUnit(0);
        unitLine = lines.number();
        wrong.clear();
        count = 0;
        goesOn = true;
        return Fill::More;
    }

    Fill fill(Window& window) override {
        // What is left of a whole message needs no more: the next line then starts a unit of its own.
        if (!goesOn && !lines.isInside()) return Fill::End;
        if (lines.number() > unitLine && !lines.isInside() && window.size() == 0) return Fill::End;
        std::string_view piece;
        const Fill got = lines.peek(piece);
        if (got != Fill::More) return got;
        read(piece, window);
        lines.take(piece);
        if (!lines.isInside()) endLine(window);
        return Fill::More;
    }

    uint64_t line() const override { return unitLine; }
    const std::string& complaint() const override { return wrong; }

private:
    void read(std::string_view text, Window& window) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const uint8_t value = meanings[static_cast<uint8_t>(text[i])];
            if (value < 64) {
                group = group << 6 | value;
                if (++count == 4) flush(window, 3);
            } else if (value == padding) {
                flush(window, count > 0 ? count - 1 : 0);
                padded = true;
            } else if (value == bad && skipJunk) {
                count = 0;
            } else if (value == bad) {
                wrong = "no base64 at character " + std::to_string(i + 1);
                break;
            }
        }
    }

    // The octets of a group that is complete or will not be.
    void flush(Window& window, unsigned octets) {
        group <<= 6 * (4 - count);
        for (unsigned i = 0; i < octets; ++i) window.push(static_cast<uint8_t>(group >> (16 - 8 * i)));
        count = 0;
    }

    void endLine(Window& window) {
        goesOn = count == 0 && !padded && wrong.empty();
        if (count == 1 && wrong.empty() && !skipJunk) wrong = "a character too few or too many";
        if (count > 1) flush(window, count - 1);
        count = 0;
        padded = false;
    }

    Lines lines;
    std::string wrong;
    uint64_t unitLine = 0;
    uint32_t group = 0;
    unsigned count = 0; // characters in group
    bool skipJunk, goesOn = false, padded = false;
};

} // namespace

std::unique_ptr<Source> base64Source(Reader& reader, bool skipJunk) {
    return std::make_unique<Base64Source>(reader, skipJunk);
}

} // namespace zyn::tool
