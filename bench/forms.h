// Octets that the direct way is not made for: the same messages in other valid forms of BER, and messages to refuse.
#pragma once

#include "bench/message.h"

namespace zyn::bench {

struct Form {
    const char* name;
    bool indefinite;  // records, lists and pieced strings have the indefinite length (X.690 8.1.3.6); the wrappers of
                      // explicit tags keep theirs, as not every decoder that is compared takes them otherwise
    bool constructed; // all strings are cut in two pieces (X.690 8.7.3)
};

inline constexpr Form otherForms[] = {
    {"indefinite", true, false},
    {"constructed", false, true},
    {"both", true, true},
};

// The message in the form; stops the program unless it decodes to the same tree. The result has no record.
Message inForm(const Message& message, const Form& form);

// Three messages to refuse: the last octet missing, an unknown element at the end of the record, another outermost
// tag. Stops the program unless a Decode refuses them.
std::vector<Message> refusals(const Message& message);

} // namespace zyn::bench
