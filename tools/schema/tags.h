// Tags as they stand on the wire.
#pragma once

#include <compare>
#include <string>
#include <vector>

#include "schema/schema.h"

namespace zyn::schema {

struct WireTag {
    enum class Class { Universal = 0x00, Context = 0x80 } cls;
    bool constructed;
    unsigned number;

    auto operator<=>(const WireTag&) const = default;
};

// universalTag gives the tag of a kind's own; a CHOICE has none.
WireTag universalTag(Kind kind);

// acceptedTags gives the tags that the value of a field or alternative may open with, first the one that is
// written. A wrapper hides the tag inside it. A CHOICE without one opens with its alternative's tag.
std::vector<WireTag> acceptedTags(const Member& member);

// octetsOf gives the octets of a tag as upper-case hexadecimal pairs without blanks (X.690 8.1.2).
std::string octetsOf(const WireTag& tag);

} // namespace zyn::schema
