// Messages by the names that a person gives them.
#pragma once

#include <string>
#include <vector>

#include "zyn/describe.h"

namespace zyn::tool {

struct Message {
    ZynChannel channel;
    const ZynAlternative* alternative;
};

// The messages of all channels, channel by channel.
std::vector<Message> allMessages();

// Whether the name is that of the message or of its record, or its number.
bool isNamed(const Message& message, const std::string& name);

} // namespace zyn::tool
