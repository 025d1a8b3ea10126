#include "names.h"

namespace zyn::tool {

std::vector<Message> allMessages() {
    std::vector<Message> messages;
    for (int i = 0; i < ZYN_CHANNELS; ++i) {
        const auto channel = static_cast<ZynChannel>(i);
        const ZynType& choice = *ZynMessageChoice(channel);
        for (unsigned k = 0; k < choice.alternativeCount; ++k) messages.push_back({channel, &choice.alternatives[k]});
    }
    return messages;
}

bool isNamed(const Message& message, const std::string& name) {
    const ZynAlternative& alternative = *message.alternative;
    return name == alternative.name || name == alternative.type->name || name == std::to_string(alternative.number);
}

} // namespace zyn::tool
