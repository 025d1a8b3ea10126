#include "output/out.h"

#include <cerrno>
#include <charconv>
#include <cstring>

#include <unistd.h>

#include "options.h"

namespace zyn::tool {

void writeAll(int descriptor, std::string_view octets) {
    while (!octets.empty()) {
        const ssize_t n = ::write(descriptor, octets.data(), octets.size());
        if (n < 0 && errno != EINTR) throw WrongUse(std::string("cannot write: ") + std::strerror(errno));
        if (n > 0) octets.remove_prefix(static_cast<std::size_t>(n));
    }
}

void Out::write() {
    std::size_t texts = 0;
    for (std::size_t i = 0; i < breaks.size(); ++i) {
        const std::size_t end = i + 1 < breaks.size() ? breaks[i + 1].errors : errors.size();
        writeAll(STDOUT_FILENO, std::string_view(text).substr(texts, breaks[i].text - texts));
        writeAll(STDERR_FILENO, std::string_view(errors).substr(breaks[i].errors, end - breaks[i].errors));
        texts = breaks[i].text;
    }
    writeAll(STDOUT_FILENO, std::string_view(text).substr(texts));
    clear();
}

void Out::clear() {
    text.clear();
    errors.clear();
    breaks.clear();
}

void putHex(std::string& out, const uint8_t* octets, std::size_t count, bool blanks) {
    constexpr char digits[] = "0123456789ABCDEF";
    for (std::size_t i = 0; i < count; ++i) {
        if (blanks && i > 0) out += ' ';
        out += digits[octets[i] >> 4];
        out += digits[octets[i] & 0x0F];
    }
}

void putBase64(std::string& out, const uint8_t* octets, std::size_t count) {
    constexpr char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < count; i += 3) {
        uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (i + k < count ? octets[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) out += i + k <= count ? letters[group >> (18 - 6 * k) & 0x3F] : '=';
    }
}

void putNumber(std::string& out, uint64_t number) {
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void putNumber(std::string& out, int64_t number) {
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void putPadded(std::string& out, std::string_view text, std::size_t width, bool right) {
    const std::size_t blanks = text.size() < width ? width - text.size() : 0;
    if (right) out.append(blanks, ' ');
    out += text;
    if (!right) out.append(blanks, ' ');
}

void putPrintable(std::string& out, const uint8_t* octets, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        out += octets[i] >= ' ' && octets[i] <= '~' ? static_cast<char>(octets[i]) : '.';
}

} // namespace zyn::tool
