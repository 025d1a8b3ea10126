// The messages that all sides are given: made up, yet the same for the same count each time.
#pragma once

#include <string>
#include <vector>

#include "interop/library.h"

namespace zyn::interop {

enum class Origin {
    Sound,   // encoded by the library
    Form,    // the same values in other forms of BER: lengths, strings in pieces, REAL and TRUE
    Damaged, // sound ones with a change
};

struct Message {
    std::string name; // of four words: origin or kind of form or change, type, alternative, number
    Origin origin;
    TypeId type;
    test::Octets octets;
    Lines lines;   // what was encoded, lists as they stand; none for a damaged message
    Lines byValue; // and lists by value
};

// makeCorpus gives count messages of each origin for each alternative of each message, and as many of each type that no
// message carries.
std::vector<Message> makeCorpus(uint32_t count);

// damage makes one change in the message and says which.
const char* damage(test::Octets& message, test::Random& random);

} // namespace zyn::interop
