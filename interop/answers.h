// What a side made of the messages, as text: for each
//
//   > NAME taken          or    > NAME refused REASON
//   PATH VALUE                  the lines of the value, see text.h
//   < OCTETS              or    < not REASON: what the side encodes the value as
#pragma once

#include <istream>
#include <map>
#include <string>

#include "interop/values.h"

namespace zyn::interop {

struct Answer {
    bool taken = false;
    std::string refusal; // why it was not taken
    Lines lines;         // sorted
    std::string octets;  // in hexadecimal, as it encodes what it has decoded; empty: it did not
    std::string failure; // why not

    bool operator==(const Answer&) const = default;
};

using Answers = std::map<std::string, Answer>; // by the name of the message

// readAnswers throws where the text is not in that form.
Answers readAnswers(std::istream& from);

} // namespace zyn::interop
