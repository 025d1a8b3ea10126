// Hexadecimal, a unit a line. The lines of a hex dump, which start with an offset, are one unit as long as the offset of
// each is what the lines before it come to. Where a message is not complete at the end of its line, it goes on in the next
// one, unless another message begins there: long lines are often broken.
#include <array>
#include <charconv>

#include "channel.h"
#include "input/lines.h"
#include "input/source.h"

namespace zyn::tool {
namespace {

constexpr uint8_t bad = 0xFF, separator = 0xFE;

constexpr std::array<uint8_t, 256> meanings = [] {
    std::array<uint8_t, 256> table{};
    table.fill(bad);
    for (unsigned i = 0; i < 10; ++i) table['0' + i] = static_cast<uint8_t>(i);
    for (unsigned i = 0; i < 6; ++i) table['a' + i] = table['A' + i] = static_cast<uint8_t>(10 + i);
    for (const char c : std::string_view(" \t\r:,;-._{}[]()'\"\\")) table[static_cast<uint8_t>(c)] = separator;
    return table;
}();

uint8_t meaning(char c) { return meanings[static_cast<uint8_t>(c)]; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool isNumber(std::string_view digits, int base, uint64_t value) {
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    return error == std::errc() && end == digits.data() + digits.size() && number == value;
}

struct DumpLine {
    bool isOne = false, starts = false;
    std::string_view octets{}; // what stands between the offset and the column of text
};

// An offset is at least four digits and a colon and a blank, or, without a colon, the number of octets that the dump has
// so far in hexadecimal, octal or decimal, whichever the dumping program writes.
DumpLine dumpLine(std::string_view line, uint64_t soFar) {
    const std::string_view text = trimmed(line);
    std::size_t digits = 0;
    while (digits < text.size() && meaning(text[digits]) < 16) ++digits;
    if (digits < 4 || digits > 16) return {};
    const std::string_view offset = text.substr(0, digits);
    std::string_view rest = text.substr(digits);
    const bool colon = rest.size() > 1 && rest[0] == ':' && isBlank(rest[1]);
    const bool starts = isNumber(offset, 16, 0);
    const bool goesOn = isNumber(offset, 16, soFar) || isNumber(offset, 8, soFar) || isNumber(offset, 10, soFar);
    if (colon) rest.remove_prefix(1);
    else if ((!starts && (!goesOn || soFar == 0)) || (!rest.empty() && !isBlank(rest[0]))) return {};
    rest = trimmed(rest);
    // Behind the octets the same may stand as text.
    for (const std::string_view mark : {"|", ">", colon ? "  " : "   "}) rest = rest.substr(0, rest.find(mark));
    return {true, starts || !goesOn, rest};
}

class HexSource : public Source {
public:
    HexSource(Reader& reader, bool skip) : lines(reader), skipJunk(skip) {}

    Fill next(Window& window) override {
        std::string_view piece;
        for (;;) {
            Fill got = skipUnit();
            if (got != Fill::More || (got = lines.peek(piece)) != Fill::More) return got;
            const std::string_view text = trimmed(piece);
            if (!text.empty() && text[0] != '#') break;
            lines.take(piece);
        }
        window.startUnit(0);
        unitLine = lines.number();
        wrong.clear();
        high = bad;
        dumped = 0;
        pending = true;
        return Fill::More;
    }

    Fill fill(Window& window) override {
        if (!wrong.empty()) return Fill::End;
        std::string_view piece;
        if (lines.isInside() || pending) {
            const Fill got = lines.peek(piece);
            if (got != Fill::More) return got;
            const DumpLine dump = pending ? dumpLine(piece, 0) : DumpLine{};
            dumping = pending ? dump.isOne : dumping;
            pending = false;
            read(dump.isOne ? dump.octets : piece, window);
        } else if (dumping) {
            const Fill got = dumpGoesOn(piece);
            if (got != Fill::More) return got;
            read(dumpLine(piece, dumped).octets, window);
        } else {
            const Fill got = lineGoesOn(piece, window);
            if (got != Fill::More) return got;
            read(piece, window);
        }
        lines.take(piece);
        if (!lines.isInside()) endLine();
        return Fill::More;
    }

    uint64_t line() const override { return unitLine; }
    const std::string& complaint() const override { return wrong; }

private:
    Fill dumpGoesOn(std::string_view& piece) {
        if (!dumping) return Fill::End;
        const Fill got = lines.peek(piece);
        if (got != Fill::More) return got;
        const DumpLine dump = dumpLine(piece, dumped);
        dumping = dump.isOne && !dump.starts;
        return dumping ? Fill::More : Fill::End;
    }

    // Whether the next line belongs to what is in the window: the beginning of a message.
    Fill lineGoesOn(std::string_view& piece, const Window& window) {
        if (window.size() < 2 || skipJunk || !mayStartMessage(window.data()[0])) return Fill::End;
        const Fill got = lines.peek(piece);
        if (got != Fill::More) return got;
        HexSource alone(*this);
        Window octets;
        alone.read(piece, octets);
        alone.endLine();
        if (octets.size() == 0 || !alone.wrong.empty()) return Fill::End;
        std::size_t length = 0;
        const bool isWhole = ZynMessageLength(octets.data(), octets.size(), &length) == 1 && length == octets.size();
        const bool begins =
            ZynChannelOf(octets.data(), octets.size()) >= 0 && (isWhole || startIsCertain(octets.data()[0]));
        return begins ? Fill::End : Fill::More;
    }

    Fill skipUnit() {
        std::string_view piece;
        Window ignored;
        for (;;) {
            if (pending) {
                pending = false;
                wrong.clear();
            }
            Fill got = lines.skipRest();
            if (got != Fill::More) return got;
            if (!dumping) return Fill::More;
            got = dumpGoesOn(piece);
            if (got == Fill::Wait) return got;
            if (got == Fill::End) return Fill::More;
            ignored.startUnit(0);
            read(dumpLine(piece, dumped).octets, ignored);
            lines.take(piece);
            high = bad;
        }
    }

    void read(std::string_view text, Window& window) {
        uint8_t* const start = window.room(text.size() / 2 + 1);
        uint8_t* to = start;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const uint8_t digit = meaning(text[i]);
            if (digit < 16 && high < 16) {
                *to++ = static_cast<uint8_t>(high << 4 | digit);
                high = bad;
            } else if (digit < 16) {
                high = digit;
            } else if ((text[i] == 'x' || text[i] == 'X') && (high == 0 || (i > 0 && text[i - 1] == '\\'))) {
                high = bad; // the 0x or \x in front of an octet
            } else if (text[i] == 'H' && i > 0 && text[i - 1] == '\'') {
                continue; // behind a string in the notation of values
            } else if (skipJunk) {
                high = bad;
            } else if (digit == bad || high < 16) {
                complain(i, text[i], digit == bad);
                break;
            }
        }
        window.added(static_cast<std::size_t>(to - start));
        dumped += static_cast<uint64_t>(to - start);
    }

    void complain(std::size_t i, char c, bool noDigit) {
        const bool shows = c > ' ' && c <= '~';
        wrong = noDigit ? std::string("no hexadecimal: ") +
                              (shows ? std::string("'") + c + "'" : "an unprintable character")
                        : "an octet of one digit";
        wrong += " at character " + std::to_string(i + 1);
    }

    void endLine() {
        if (high < 16 && wrong.empty() && !skipJunk) wrong = "an odd number of digits";
        high = bad;
    }

    Lines lines;
    std::string wrong;
    uint64_t unitLine = 0, dumped = 0;
    uint8_t high = bad; // the first digit of an octet, until the second one comes
    bool skipJunk, pending = false, dumping = false;
};

} // namespace

std::unique_ptr<Source> hexSource(Reader& reader, bool skipJunk) {
    return std::make_unique<HexSource>(reader, skipJunk);
}

} // namespace zyn::tool
