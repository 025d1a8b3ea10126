// Values as ASN.1 value notation.
#include <algorithm>
#include <cctype>
#include <charconv>

#include "sbuf/state.h"
#include "sbuf/text-out.h"

unsigned short stdIndentG = zyn::usualIndent;
char numToHexCharTblG[16] = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};

namespace zyn {
namespace {

constexpr std::size_t pieceOctets = 1024; // octets that are turned into text at a time

void putHex(TextOut& out, const uint8_t* octets, std::size_t count) {
    out.put('\'');
    while (count > 0) {
        const std::size_t piece = std::min(count, pieceOctets);
        char* to = out.room(2 * piece);
        for (std::size_t i = 0; i < piece; ++i) {
            *to++ = numToHexCharTblG[octets[i] >> 4];
            *to++ = numToHexCharTblG[octets[i] & 0x0F];
        }
        out.used += 2 * piece;
        octets += piece;
        count -= piece;
    }
    out.put("'H");
}

// Octets that do not print become full stops, so that a printed string never breaks a line.
void putText(TextOut& out, const uint8_t* octets, std::size_t count) {
    while (count > 0) {
        const std::size_t piece = std::min(count, pieceOctets);
        char* to = out.room(piece);
        for (std::size_t i = 0; i < piece; ++i) {
            const auto character = static_cast<signed char>(octets[i]); // FF is no character, whatever the locale
            to[i] = std::isprint(character) ? static_cast<char>(character) : '.';
        }
        out.used += piece;
        octets += piece;
        count -= piece;
    }
}

template <typename Value> void putNumber(TextOut& out, Value value) {
    constexpr std::size_t longest = 11;
    char* to = out.room(longest);
    out.used += static_cast<std::size_t>(std::to_chars(to, to + longest, value).ptr - to);
}

} // namespace

void TextOut::put(std::string_view text) {
    while (!text.empty()) {
        const std::size_t piece = std::min(text.size(), sizeof buffer);
        std::copy_n(text.begin(), piece, room(piece));
        used += piece;
        text.remove_prefix(piece);
    }
}

void TextOut::spaces(unsigned n) {
    while (n > 0) {
        const unsigned piece = std::min(n, static_cast<unsigned>(sizeof buffer));
        std::fill_n(room(piece), piece, ' ');
        used += piece;
        n -= piece;
    }
}

void TextOut::flush() {
    if (used > 0) std::fwrite(buffer, 1, used, stream);
    used = 0;
}

void printInt(TextOut& out, AsnInt value) { putNumber(out, value); }

void printUInt(TextOut& out, UAsnInt value) { putNumber(out, value); }

void printBool(TextOut& out, AsnBool value) { out.put(value ? std::string_view("TRUE") : std::string_view("FALSE")); }

void printReal(TextOut& out, AsnReal value) {
    constexpr std::size_t longest = 32;
    out.used += static_cast<std::size_t>(std::snprintf(out.room(longest), longest, "%g", value));
}

void printOcts(TextOut& out, const AsnOcts& value) {
    const std::size_t count = value.octs ? value.octetLen : 0; // the length of an absent text does not count
    putHex(out, value.octs, count);
    out.put("  -- \"");
    putText(out, value.octs, count);
    out.put("\" --");
}

void printBits(TextOut& out, const AsnBits& value) {
    putHex(out, value.bits, value.bits && value.bitLen > 0 ? (static_cast<std::size_t>(value.bitLen) + 7) / 8 : 0);
}

namespace {

template <typename Value> void printTo(FILE* f, void (*print)(TextOut&, Value), std::type_identity_t<Value> value) {
    TextOut out(f);
    print(out, value);
    out.flush();
}

} // namespace
} // namespace zyn

void PrintAsnInt(FILE* f, AsnInt* v, unsigned short) { zyn::printTo(f, zyn::printInt, *v); }
void PrintUAsnInt(FILE* f, UAsnInt* v, unsigned short) { zyn::printTo(f, zyn::printUInt, *v); }
void PrintAsnBool(FILE* f, AsnBool* v, unsigned short) { zyn::printTo(f, zyn::printBool, *v); }
void PrintAsnReal(FILE* f, AsnReal* v, unsigned short) { zyn::printTo(f, zyn::printReal, *v); }
void PrintAsnOcts(FILE* f, AsnOcts* v, unsigned short) { zyn::printTo<const AsnOcts&>(f, zyn::printOcts, *v); }
void PrintAsnBits(FILE* f, AsnBits* v, unsigned short) { zyn::printTo<const AsnBits&>(f, zyn::printBits, *v); }

void Indent(FILE* f, unsigned short i) {
    zyn::TextOut out(f);
    out.spaces(i);
    out.flush();
}
