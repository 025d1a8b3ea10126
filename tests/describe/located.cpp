#include "tests/describe/located.h"

#include <algorithm>

namespace zyn::test {
namespace {

class Reader {
public:
    explicit Reader(const Octets& all) : octets(all) {}

    bool isAt(const Field& field, std::size_t at) const {
        const AsnTag tag = headerAt(octets, at).tag;
        if (field.kind != Kind::Choice) return (tag & field.mask) == field.tag;
        return std::ranges::any_of(typeOf(field.type).alternatives, [&](auto& row) { return row.tag == tag; });
    }

    void contentOf(const Type& type, const std::string& path, std::size_t begin, std::size_t end) {
        std::size_t at = begin;
        const std::string dot = path.empty() ? "" : path + ".";
        if (type.shape == Shape::Sequence) {
            for (std::size_t i = 0; i < type.fields.size(); ++i) {
                const Field& field = type.fields[i];
                if (field.optional && (at == end || !isAt(field, at))) continue;
                at = element(type, i, dot + field.name, typeOf(field.type), field.kind, at);
            }
        } else {
            for (std::size_t i = 0; at < end; ++i) {
                const std::string itsPath = path + "[" + std::to_string(i) + "]";
                at = element(type, i, itsPath, typeOf(type.element), Kind::Sequence, at);
            }
        }
        if (at != end) throw std::logic_error("no such record: " + path);
    }

    // The alternative that stands at begin; path is that of the CHOICE.
    std::size_t alternative(const Type& type, const std::string& path, std::size_t begin) {
        const AsnTag tag = headerAt(octets, begin).tag;
        const auto row = std::ranges::find(type.alternatives, tag, &Alternative::tag);
        const auto index = static_cast<std::size_t>(row - type.alternatives.begin());
        return element(type, index, (path.empty() ? "" : path + ".") + row->name, typeOf(row->type), row->kind, begin);
    }

    std::vector<Located> found;

private:
    std::size_t element(const Type& record, std::size_t index, const std::string& path, const Type& type, Kind kind,
                        std::size_t start) {
        const Header header = headerAt(octets, start);
        found.push_back({path, &record, index, &type, kind, start, header.content, header.end});
        if (kind == Kind::Sequence || kind == Kind::SetOf) {
            contentOf(type, path, header.content, header.end);
        } else if (kind == Kind::Choice) {
            // As an alternative of another CHOICE it stands in a wrapper, as a field it has no tag of its own.
            alternative(type, path, record.shape == Shape::Choice ? header.content : start);
        }
        return header.end;
    }

    const Octets& octets;
};

} // namespace

Header headerAt(const Octets& octets, std::size_t start) {
    std::size_t at = start;
    AsnTag tag = AsnTag{octets[at++]} << 24;
    if ((tag >> 24 & 0x1F) == 0x1F) {
        tag |= AsnTag{octets[at++]} << 16;
        if (tag & 0x00800000) tag |= AsnTag{octets[at++]} << 8;
    }
    std::size_t length = octets[at++];
    if (length & 0x80) {
        const std::size_t count = length & 0x7F;
        length = 0;
        for (std::size_t i = 0; i < count; ++i) length = length << 8 | octets[at++];
    }
    return {tag, at, at + length};
}

std::vector<Located> elementsOf(TypeId message, const Octets& octets) {
    Reader reader(octets);
    const Type& type = typeOf(message);
    if (type.shape == Shape::Choice) {
        reader.alternative(type, "", 0);
    } else {
        const Header header = headerAt(octets, 0);
        reader.contentOf(type, "", header.content, header.end);
    }
    return std::move(reader.found);
}

} // namespace zyn::test
