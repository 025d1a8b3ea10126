#include "output/failed.h"

#include <algorithm>

#include "channel.h"
#include "json-writer.h"

namespace zyn::tool {
namespace {

// Why a frame is no message, whatever its octets say; empty: it is one.
std::string framing(const Frame& frame, const std::string& complaint) {
    switch (frame.kind) {
    case Frame::Message: return {};
    case Frame::Misspelled: return complaint;
    case Frame::NoMessage: return "no message can begin so";
    case Frame::TooLong:
        return "the message is said to have at least " + std::to_string(frame.claimed) +
               " octets, more than --limit allows";
    case Frame::Cut: break;
    }
    const std::string there =
        std::to_string(frame.length) + (frame.length == 1 ? " octet is there" : " octets are there");
    if (frame.claimed == 0) return "the input ends before the message: only " + there;
    return "the message has " + std::to_string(frame.claimed) + " octets, and only " + there;
}

void putLine(std::string& out, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    out += "  ";
    putPadded(out, name, 8);
    out += value;
    out += '\n';
}

} // namespace

void putExcerpt(std::string& out, const uint8_t* octets, std::size_t length, std::size_t place, std::size_t count) {
    constexpr std::size_t shown = 16, before = 6;
    place = std::min(place, length);
    const std::size_t start = place > before ? place - before : 0;
    const std::size_t end = std::min(start + shown, length);
    const std::string label = "  " + std::to_string(start) + (start > 0 ? "  .. " : "  ");
    out += label;
    putHex(out, octets + start, end - start, true);
    if (end < length) out += " ..";
    out += '\n';
    out.append(label.size() + 3 * (place - start), ' ');
    const std::size_t marks = std::clamp<std::size_t>(count, 1, std::max<std::size_t>(end - place, 1));
    for (std::size_t i = 0; i < marks; ++i) out += i > 0 ? " ^^" : "^^";
    out += '\n';
}

void putReport(std::string& out, const Failed& failed) {
    const Frame& frame = failed.item.frame;
    const ZynFailure& failure = failed.failure;
    out += failed.input + ": ";
    if (frame.line > 0) out += "line " + std::to_string(frame.line) + ": ";
    out += "message " + std::to_string(failed.item.number) + " is bad";
    if (frame.kind == Frame::Misspelled && frame.length == 0) {
        out += ": " + failed.item.complaint + "\n";
        return;
    }
    out += failure.code != 0 ? ", code " + std::to_string(failure.code) + "\n" : "\n";
    putLine(out, "channel", channelTitle(failed.channel));
    putLine(out, "module", failure.module);
    putLine(out, "record", failure.record);
    putLine(out, "field", failure.field);
    putLine(out, "path", failure.path);
    const uint64_t offset = frame.position + failure.offset;
    std::string where = std::to_string(failure.offset);
    if (offset != failure.offset) where += ", " + std::to_string(offset) + " in the input";
    if (failure.code != 0) putLine(out, "offset", where);
    putLine(out, "reason", failure.text);
    putLine(out, "input", framing(frame, failed.item.complaint));
    if (frame.length > 0) putExcerpt(out, frame.octets, frame.length, failure.offset, 1);
    if (frame.last) out += failed.input + ": reading stops, as nothing tells where the next message begins\n";
}

void putAside(std::string& out, const Failed& failed) {
    const Frame& frame = failed.item.frame;
    const ZynFailure& failure = failed.failure;
    JsonWriter json;
    json.startObject();
    json.key("input").text(failed.input);
    json.key("message").number(static_cast<int64_t>(failed.item.number));
    if (frame.line > 0) json.key("line").number(static_cast<int64_t>(frame.line));
    json.key("start").number(static_cast<int64_t>(frame.position));
    json.key("channel").text(channelName(failed.channel));
    json.key("code").number(failure.code);
    const std::pair<std::string_view, std::string_view> texts[] = {{"module", failure.module},
                                                                   {"record", failure.record},
                                                                   {"field", failure.field},
                                                                   {"path", failure.path},
                                                                   {"reason", failure.text}};
    for (const auto& [name, value] : texts) {
        if (!value.empty()) json.key(name).text(value);
    }
    json.key("offset").number(failure.offset);
    if (const std::string why = framing(frame, failed.item.complaint); !why.empty()) json.key("framing").text(why);
    std::string octets;
    putHex(octets, frame.octets, frame.length, false);
    json.key("octets").text(octets);
    json.endObject();
    out += json.view();
    out += '\n';
}

} // namespace zyn::tool
