#include "input/documents.h"

#include <algorithm>

#include "options.h"

namespace zyn::tool {
namespace {

constexpr std::size_t longest = std::size_t{64} << 20;

} // namespace

Fill Documents::skipBlanks() {
    for (;;) {
        const std::string_view text = reader.text();
        const std::size_t n = std::min(text.find_first_not_of(" \t\r\n"), text.size());
        lineNumber +=
            static_cast<uint64_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(n), '\n'));
        reader.take(n);
        if (n < text.size()) return Fill::More;
        if (const Fill got = reader.more(); got != Fill::More) return got;
    }
}

Fill Documents::next(Document& document) {
    const std::string_view before = reader.text().substr(0, used);
    lineNumber += static_cast<uint64_t>(std::count(before.begin(), before.end(), '\n'));
    reader.take(used);
    used = 0;
    if (const Fill got = skipBlanks(); got != Fill::More) return got;
    const bool isObject = reader.text()[0] == '{';
    bool inString = false, complete = false;
    std::size_t depth = 0, i = 0;
    while (!complete) {
        const std::string_view text = reader.text();
        for (; i < text.size() && !complete; ++i) {
            const char c = text[i];
            if (!isObject) {
                if (c == '\n') break;
            } else if (inString) {
                if (c == '"') inString = false;
                else if (c == '\n') complete = true;               // no string has line breaks: a quote is missing
                else if (c == '\\' && i + 1 == text.size()) break; // what is escaped is not here yet
                else if (c == '\\') ++i;
            } else if (c == '"') {
                inString = true;
            } else if (c == '{') {
                if (i > 0 && text[i - 1] == '\n') break;
                ++depth;
            } else if (c == '}') {
                complete = --depth == 0;
            }
        }
        if (complete || i + 1 < text.size() || text.size() >= longest) break;
        if (i < text.size() && (text[i] == '\n' || text[i] == '{')) break;
        const Fill got = reader.more();
        if (got == Fill::Wait) return got;
        if (got == Fill::End) {
            i = reader.text().size();
            break;
        }
    }
    used = i;
    const std::string_view text = reader.text().substr(0, i);
    document = {text.substr(0, text.find_last_not_of(" \t\r\n") + 1), lineNumber};
    return Fill::More;
}

} // namespace zyn::tool
