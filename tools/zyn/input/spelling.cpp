// Which way an input is spelled, told by its start.
#include <algorithm>

#include "channel.h"
#include "input/source.h"
#include "zyn/describe.h"

namespace zyn::tool {
namespace {

bool isText(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\r' && c != '\n') || c == '\x7F';
    });
}

bool startsAsMessage(const Window& octets, bool) { return octets.size() >= 2 && mayStartMessage(octets.data()[0]); }

bool holdsMessage(const Window& octets, bool complete) {
    for (std::size_t i = 0; complete && i < octets.size(); ++i) {
        const bool likely = startIsCertain(octets.data()[i]);
        if (likely && ZynChannelOf(octets.data() + i, octets.size() - i) >= 0) return true;
    }
    return false;
}

bool isAnything(const Window& octets, bool complete) { return complete && octets.size() >= 2; }

// Whether what a line spells passes the test.
template <typename Open, typename Test> bool spells(std::string_view line, Open open, Test test) {
    Reader reader(line);
    const auto source = open(reader);
    Window window;
    if (source->next(window) != Fill::More) return false;
    while (source->fill(window) == Fill::More) {
    }
    return test(window, source->complaint().empty());
}

// Calls see for each line of text until it has an answer.
template <typename See> Spelling firstAnswer(std::string_view text, See see) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (const Spelling answer = see(text.substr(0, end)); answer != Spelling::Auto) return answer;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return Spelling::Auto;
}

} // namespace

Spelling tellSpelling(Reader& reader, bool skipJunk) {
    const std::size_t enough = skipJunk ? 65536 : 4096; // bytes to tell by; logs may begin with much else
    const auto hex = [&](Reader& from) { return hexSource(from, skipJunk); };
    const auto base64 = [&](Reader& from) { return base64Source(from, skipJunk); };
    const auto test = skipJunk ? holdsMessage : startsAsMessage;
    for (bool atEnd = false;; atEnd = reader.more() == Fill::End) {
        const std::string_view text = reader.text().substr(0, enough);
        const auto* octets = reinterpret_cast<const uint8_t*>(text.data());
        if (ZynChannelOf(octets, text.size()) >= 0 || !isText(text)) return Spelling::Raw;
        // The last line may not be complete yet.
        atEnd = atEnd || text.size() == enough;
        const std::string_view lines = atEnd ? text : text.substr(0, text.rfind('\n') + 1);
        Spelling answer = firstAnswer(lines, [&](std::string_view line) {
            return spells(line, hex, test)      ? Spelling::Hex
                   : spells(line, base64, test) ? Spelling::Base64
                                                : Spelling::Auto;
        });
        // Messages that do not even begin well: nothing but digits is hexadecimal all the same.
        if (answer == Spelling::Auto && atEnd && !skipJunk)
            answer = firstAnswer(lines, [&](std::string_view line) {
                return spells(line, hex, isAnything) ? Spelling::Hex : Spelling::Auto;
            });
        if (answer != Spelling::Auto) return answer;
        if (atEnd) return Spelling::Raw;
    }
}

std::unique_ptr<Source> openSource(Reader& reader, const InputOptions& options) {
    const Spelling spelling =
        options.spelling == Spelling::Auto ? tellSpelling(reader, options.skipJunk) : options.spelling;
    if (spelling == Spelling::Hex) return hexSource(reader, options.skipJunk);
    if (spelling == Spelling::Base64) return base64Source(reader, options.skipJunk);
    return rawSource(reader);
}

} // namespace zyn::tool
