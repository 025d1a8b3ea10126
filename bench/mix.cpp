// One message of each alternative of the four envelopes.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

#include "bench/message.h"
#include "records/members.h"

namespace zyn::bench {
namespace {

constexpr unsigned seed = 20260317;

using Key = std::pair<ZynChannel, uint32_t>;

const std::map<std::string, ZynChannel> channels = {{"trans-request", ZYN_TRANS_REQUEST},
                                                    {"query-request", ZYN_QUERY_REQUEST},
                                                    {"trans-reply", ZYN_TRANS_REPLY},
                                                    {"query-reply", ZYN_QUERY_REPLY}};

void* emptyRecord(TypeId type, TreeMemory& memory) { return memory.take(typeOf(type).size); }

// A message file: lines that begin with #, the channel, the octets as hexadecimal, an empty line, and the printed
// text, which is of no interest here.
Message readMessage(const std::filesystem::path& path, TreeMemory& memory) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line) && line.starts_with('#')) {
    }
    const auto channel = channels.find(line);
    if (channel == channels.end()) stop(path.string() + ": names no channel");
    std::string digits;
    while (std::getline(file, line) && !line.empty()) {
        std::copy_if(line.begin(), line.end(), std::back_inserter(digits),
                     [](unsigned char c) { return std::isxdigit(c); });
    }
    std::vector<uint8_t> octets;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        octets.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return onChannel(channel->second, [&]<typename Points>(Points) {
        typename Points::Envelope envelope;
        const int32_t code = Points::decode(octets.data(), static_cast<uint32_t>(octets.size()), &envelope);
        if (code != 0) stop(path.string() + ": cannot be decoded, code " + std::to_string(code));
        const uint32_t choiceId = Points::choiceId(envelope);
        const TypeId type = alternativeOf(typeOf(choiceType(channel->second)), choiceId)->type;
        void* record = emptyRecord(type, memory);
        copyTree(type, Points::record(envelope), record, memory);
        return makeMessage(path.stem().string(), channel->second, choiceId, record);
    });
}

Message randomMessage(ZynChannel channel, const Alternative& alternative, TreeMemory& memory) {
    std::mt19937 random(seed + alternative.number);
    void* record = emptyRecord(alternative.type, memory);
    randomTree(alternative.type, record, random, memory);
    return makeMessage(alternative.name, channel, alternative.number, record);
}

} // namespace

std::vector<Message> mixedMessages(const std::string& folder, TreeMemory& memory) {
    std::map<Key, Message> messages;
    if (std::filesystem::is_directory(folder)) {
        std::vector<std::filesystem::path> paths;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.is_regular_file()) paths.push_back(entry.path());
        }
        std::sort(paths.begin(), paths.end());
        for (const auto& path : paths) {
            Message message = readMessage(path, memory);
            const Key key{message.channel, message.choiceId};
            messages.emplace(key, std::move(message));
        }
    }
    for (const auto& [name, channel] : channels) {
        for (const Alternative& alternative : typeOf(choiceType(channel)).alternatives) {
            const Key key{channel, alternative.number};
            if (!messages.contains(key)) messages.emplace(key, randomMessage(channel, alternative, memory));
        }
    }
    std::vector<Message> result;
    for (auto& [key, message] : messages) result.push_back(std::move(message));
    return result;
}

} // namespace zyn::bench
