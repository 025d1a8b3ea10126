#include "schema/tags.h"

#include <string_view>

namespace zyn::schema {

WireTag universalTag(Kind kind) {
    const auto primitive = [](unsigned number) { return WireTag{WireTag::Class::Universal, false, number}; };
    const auto constructed = [](unsigned number) { return WireTag{WireTag::Class::Universal, true, number}; };
    switch (kind) {
    case Kind::Boolean: return primitive(1);
    case Kind::Integer: return primitive(2);
    case Kind::BitString: return primitive(3);
    case Kind::OctetString: return primitive(4);
    case Kind::Real: return primitive(9);
    case Kind::Enumerated: return primitive(10);
    case Kind::Sequence: return constructed(16);
    case Kind::SetOf: return constructed(17);
    case Kind::Choice: break;
    }
    return {};
}

std::vector<WireTag> acceptedTags(const Member& member) {
    const Kind kind = member.use.kind;
    const unsigned number = member.tag.number;
    if (member.tag.form == Tagging::Form::Explicit) return {{WireTag::Class::Context, true, number}};
    if (kind == Kind::Choice) {
        std::vector<WireTag> all;
        for (const Member& alternative : member.use.type->members) {
            for (const WireTag& tag : acceptedTags(alternative)) all.push_back(tag);
        }
        return all;
    }
    WireTag written = universalTag(kind);
    if (member.tag.form == Tagging::Form::Implicit) {
        written = {WireTag::Class::Context, isRecord(kind), number};
    }
    if (!isString(kind)) return {written};
    return {written, {written.cls, true, written.number}};
}

std::string octetsOf(const WireTag& tag) {
    std::string text;
    const auto octet = [&](unsigned value) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        text += digits[value >> 4];
        text += digits[value & 15];
    };
    const unsigned lead = static_cast<unsigned>(tag.cls) | (tag.constructed ? 0x20u : 0u);
    if (tag.number < 31) {
        octet(lead | tag.number);
    } else {
        octet(lead | 31);
        if (tag.number > 127) octet(0x80 | tag.number >> 7);
        octet(tag.number & 0x7F);
    }
    return text;
}

} // namespace zyn::schema
