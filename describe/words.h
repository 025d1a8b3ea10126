// Sentences about tags, types and elements, put together in a buffer of the caller's.
#pragma once

#include <cstddef>
#include <string_view>

#include "describe/header.h"
#include "zyn/describe.h"

namespace zyn {

// Text that grows in a buffer of a fixed size, always closed by a 0 byte. What does not fit is left out.
class Words {
public:
    template <std::size_t n> explicit Words(char (&to)[n]) : buffer(to), size(n) { to[0] = 0; }

    Words& operator<<(std::string_view text);
    Words& operator<<(uint64_t number);

    std::size_t length() const { return used; }

private:
    char* buffer;
    std::size_t size;
    std::size_t used = 0;
};

// A tag's octets in hexadecimal, such as "BF8345".
Words& putTagOctets(Words& words, AsnTag tag);
// A tag by name and octets: "OCTET STRING (04)", "[453] (BF8345)".
Words& putTag(Words& words, AsnTag tag);
// A type that is expected under a tag: "OCTET STRING (81)"; "an alternative of ZynOrderIdChoice", whatever the tag is.
Words& putExpected(Words& words, const ZynType& type, AsnTag tag);
// An element from its first octets: "INTEGER (02) of 9 octets"; "nothing" if there are none.
Words& putElement(Words& words, Octets head);

} // namespace zyn
