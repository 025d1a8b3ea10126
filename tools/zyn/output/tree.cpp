// Each element of a message on a line of its own, as far as the message goes: bytes on the left, what they mean on the right.
#include <algorithm>
#include <limits>
#include <string_view>

#include "output/element.h"
#include "output/out.h"
#include "output/view.h"

namespace zyn::tool {
namespace {

constexpr std::size_t octetsInLine = 10, octetsColumn = 43, tagColumn = 14, lengthColumn = 6, nameColumn = 24,
                      typeColumn = 18;
constexpr unsigned deepest = 40; // levels that are shown; no record has as many
constexpr unsigned mostIndents = 6;
constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

struct Colours {
    const char *head = "", *name = "", *value = "", *bad = "", *off = "";
};

class Tree {
public:
    Tree(std::string& to, const Colours& how, const uint8_t* message, std::size_t count, std::size_t refused,
         std::string_view reason)
        : out(to), colours(how), octets(message), size(count), bad(refused), why(reason) {}

    void show(ZynChannel channel) {
        out += "offset  ";
        putPadded(out, "octets", octetsColumn);
        putPadded(out, "tag", tagColumn);
        putPadded(out, "length", lengthColumn, true);
        out += "  ";
        putPadded(out, "name", nameColumn);
        putPadded(out, "type", typeColumn);
        out += "value\n";
        const Header header = readHeader(octets, size);
        const std::size_t end = element(0, 0, header, outermost(channel, header.tag));
        if (bad != nowhere && !stopped) {
            putPadded(out, std::to_string(std::min(end, size)), 6, true);
            out += std::string("  ") + colours.bad + "<- " + std::string(why) + colours.off + "\n";
        }
    }

private:
    // Shows the element at that offset with all that is in it, and gives the offset behind it.
    std::size_t element(std::size_t at, unsigned depth, const Header& header, const Place& place) {
        const std::size_t start = at + header.octets;
        const bool whole = header.complete && (header.indefinite || header.length <= size - start);
        const std::size_t end = header.indefinite || !header.complete ? nowhere : whole ? start + header.length : size;
        const bool deep = depth == deepest;
        stopped = at >= bad || !header.complete || (header.indefinite && !header.isConstructed());
        const bool opens = header.isConstructed() && !deep && !stopped;
        std::string value;
        if (whole && !header.isConstructed() && place.type)
            value = valueText(*place.type, octets + start, header.length);
        row(at, depth, header, opens ? start : std::min(stopped && end == nowhere ? start : end, size), place, value);
        if (stopped) return at;
        if (opens) return children(start, end, depth + 1, Children(place));
        if (!header.indefinite) return end;
        std::size_t length = 0;
        stopped = ZynMessageLength(octets + at, size - at, &length) != 1 || length > size - at;
        return stopped ? size : at + length;
    }

    std::size_t children(std::size_t at, std::size_t end, unsigned depth, Children places) {
        while (at < end && at < size) {
            const Header header = readHeader(octets + at, size - at);
            const bool closes = end == nowhere && header.isEndOfContents();
            at = element(at, depth, header, closes ? Place{"end of contents", nullptr} : places.place(header.tag));
            if (stopped || closes) break;
        }
        return at;
    }

    void row(std::size_t at, unsigned depth, const Header& header, std::size_t end, const Place& place,
             const std::string& value) {
        putPadded(out, std::to_string(at), 6, true);
        out += "  ";
        std::size_t next = putOctets(at, end, at + header.octets, depth);
        putPadded(out, tagTitle(header.tag), tagColumn);
        putPadded(out,
                  !header.complete    ? "?"
                  : header.indefinite ? "open"
                                      : std::to_string(header.length),
                  lengthColumn, true);
        out += "  ";
        out += stopped ? colours.bad : colours.name;
        putPadded(out, place.name.empty() && !place.type ? "?" : place.name, nameColumn);
        out += colours.off;
        if (place.name.size() >= nameColumn) out += ' ';
        const char* type = place.type ? place.type->name : "";
        if (value.empty() && !stopped) out += type;
        else putPadded(out, type, typeColumn);
        if (!value.empty()) out += colours.value + value + colours.off;
        if (stopped)
            out += std::string(value.empty() ? "" : "  ") + colours.bad + "<- " + std::string(why) + colours.off;
        while (!out.empty() && out.back() == ' ') out.pop_back();
        out += '\n';
        while (next < end) {
            out.append(8, ' ');
            next = putOctets(next, end, next, depth);
            while (out.back() == ' ') out.pop_back();
            out += '\n';
        }
    }

    // As many octets as go into a line, those in front of head in a colour of their own. Gives the offset of the next.
    std::size_t putOctets(std::size_t at, std::size_t end, std::size_t head, unsigned depth) {
        const std::size_t last = std::min(end, at + octetsInLine);
        const std::size_t middle = std::clamp(head, at, last);
        const std::size_t indent = 2 * std::min(depth, mostIndents);
        out.append(indent, ' ');
        out += colours.head;
        putHex(out, octets + at, middle - at, true);
        out += colours.off;
        if (middle > at && last > middle) out += ' ';
        putHex(out, octets + middle, last - middle, true);
        const std::size_t used = indent + 3 * (last - at) - (last > at ? 1 : 0);
        out.append(used < octetsColumn ? octetsColumn - used : 1, ' ');
        return last;
    }

    std::string& out;
    const Colours& colours;
    const uint8_t* octets;
    std::size_t size, bad;
    std::string_view why;
    bool stopped = false;
};

class TreeView : public View {
public:
    explicit TreeView(bool coloured) {
        if (coloured) colours = {"\033[36m", "\033[1m", "\033[32m", "\033[1;31m", "\033[0m"};
    }
    void show(std::string& out, ZynChannel channel, void*, const uint8_t* octets, std::size_t length) override {
        Tree(out, colours, octets, length, nowhere, {}).show(channel);
        out += '\n';
    }
    void showBad(std::string& out, ZynChannel channel, const uint8_t* octets, std::size_t length, std::size_t bad,
                 std::string_view why) override {
        Tree(out, colours, octets, length, bad, why).show(channel);
        out += '\n';
    }

private:
    Colours colours;
};

} // namespace

std::unique_ptr<View> treeView(bool colours) { return std::make_unique<TreeView>(colours); }

} // namespace zyn::tool
