// Elements of BER octets one by one (X.690 8.1), and which part of a record each of them is.
#pragma once

#include <cstdint>
#include <string>

#include "zyn/describe.h"

namespace zyn::tool {

struct Header {
    AsnTag tag = 0;
    std::size_t octets = 0; // of tag and length; what there is of them if complete is false
    std::size_t length = 0; // of the content, of definite form
    bool indefinite = false, complete = false;

    bool isConstructed() const { return (tag & 0x20000000) != 0; }
    bool isEndOfContents() const { return complete && tag == 0; }
};

Header readHeader(const uint8_t* octets, std::size_t count);

// "INTEGER" or "[17]".
std::string tagTitle(AsnTag tag);

// What an element is by the schema: the value of a field, an alternative or an element of a list.
struct Place {
    std::string name;
    const ZynType* type = nullptr; // null: nothing is known of it
    bool explicitTag = false;      // the element is a wrapper round the value
};

// Finds the places of the children of one element, in their order.
class Children {
public:
    // parent may be a place of which nothing is known.
    explicit Children(const Place& parent) : type(parent.type), insideWrapper(parent.explicitTag) {}
    Place place(AsnTag tag);

private:
    Place fieldWith(AsnTag tag);

    const ZynType* type;
    bool insideWrapper;
    unsigned count = 0; // of fields passed or elements seen
};

// The place of the outermost element of a message.
Place outermost(ZynChannel channel, AsnTag tag);

// The content of a primitive element as a person reads it; empty if it is none of the type.
std::string valueText(const ZynType& type, const uint8_t* content, std::size_t length);

} // namespace zyn::tool
