// zyn sample: random messages.
#include <algorithm>
#include <charconv>
#include <cstring>

#include <unistd.h>

#include "channel.h"
#include "names.h"
#include "options.h"
#include "output/spelled.h"
#include "progress.h"
#include "random.h"

namespace zyn::tool {
namespace {

std::vector<Message> chosenMessages(const std::vector<std::string>& names) {
    std::vector<Message> all = allMessages();
    if (names.empty()) return all;
    std::vector<Message> chosen;
    for (const std::string& name : names) {
        const std::size_t before = chosen.size();
        std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
                     [&](const Message& one) { return name == channelName(one.channel) || isNamed(one, name); });
        if (chosen.size() == before) throw WrongUse("there is no message '" + name + "'; zyn schema lists them");
    }
    return chosen;
}

// The envelope round a message: the CHOICE itself, or a request with its sender.
void* envelopeOf(RandomRecords& records, const Message& message) {
    const ZynType& envelope = *ZynEnvelopeType(message.channel);
    const ZynType& choice = *ZynMessageChoice(message.channel);
    if (&envelope == &choice) return records.make(choice, *message.alternative);
    // The random message that goes first is replaced by the one that is wanted.
    void* record = records.make(envelope);
    void* held = records.make(choice, *message.alternative);
    std::memcpy(static_cast<char*>(record) + envelope.fields[1].offset, &held, sizeof held);
    return record;
}

} // namespace

int sample(const SampleOptions& options) {
    const std::vector<Message> messages = chosenMessages(options.names);
    Spelling spelling = options.spelling;
    if (spelling == Spelling::Auto) spelling = isatty(STDOUT_FILENO) ? Spelling::Hex : Spelling::Raw;
    RandomRecords records(options.seed);
    Progress bar("sample", options.count, "");
    Out out;
    std::vector<uint8_t> buffer;
    for (uint64_t i = 0; i < options.count; ++i) {
        const Message& message = messages[records.below(messages.size())];
        const std::size_t length = encodeInto(buffer, message.channel, envelopeOf(records, message));
        if (length == 0) throw WrongUse(std::string("a random ") + message.alternative->name + " could not be encoded");
        putSpelled(out.text, spelling, buffer.data(), length);
        records.clear();
        if (out.text.size() < 256 * 1024) continue;
        out.write();
        bar.show(i);
    }
    bar.clear();
    out.write();
    return allGood;
}

} // namespace zyn::tool
