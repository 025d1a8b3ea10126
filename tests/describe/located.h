// Where the elements of a message stand and what they are called, by a reader apart from the library's.
#pragma once

#include <string>
#include <vector>

#include "tests/support/two-ways.h"

namespace zyn::test {

// One element of a message, as an encoder writes it.
struct Located {
    std::string path;
    const Type* record; // in which it stands: a SEQUENCE, SET OF or CHOICE
    std::size_t index;  // of the field, alternative or list element
    const Type* type;   // of its value
    Kind kind;
    std::size_t start, content, end; // of tag, content, and what follows

    const Field* field() const { return record->fields.empty() ? nullptr : &record->fields[index]; }
    std::string name() const {
        if (record->shape == Shape::SetOf) return "";
        return record->shape == Shape::Choice ? record->alternatives[index].name : record->fields[index].name;
    }
};

// The elements of a message in which all fields are present, each in front of those in it. The message itself is not among
// them, nor what stands in a wrapper.
std::vector<Located> elementsOf(TypeId message, const Octets& octets);

struct Header {
    AsnTag tag;
    std::size_t content, end;
};
Header headerAt(const Octets& octets, std::size_t start);

} // namespace zyn::test
