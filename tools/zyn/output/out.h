// What is to be written, gathered so that it is written in large pieces: the results, and between them what is said to a
// person on the standard error stream, in the order in which both came.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zyn::tool {

class Out {
public:
    std::string text; // results
    std::string& report() {
        if (breaks.empty() || breaks.back().text != text.size()) breaks.push_back({text.size(), errors.size()});
        return errors;
    }
    // Writes everything to both streams and is empty afterwards. Throws WrongUse if that fails.
    void write();
    void clear();

private:
    struct Break {
        std::size_t text, errors; // the report that starts at errors belongs behind that much text
    };
    std::string errors;
    std::vector<Break> breaks;
};

// Writes all of it. Throws WrongUse if that fails.
void writeAll(int descriptor, std::string_view octets);

void putHex(std::string& out, const uint8_t* octets, std::size_t count, bool blanks);
void putBase64(std::string& out, const uint8_t* octets, std::size_t count);
void putNumber(std::string& out, uint64_t number);
void putNumber(std::string& out, int64_t number);
void putPadded(std::string& out, std::string_view text, std::size_t width, bool right = false);

// Text as a person can read it: what does not print is a full stop.
void putPrintable(std::string& out, const uint8_t* octets, std::size_t count);

} // namespace zyn::tool
