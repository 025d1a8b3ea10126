#include "bench/message.h"

#include <cstdio>
#include <cstdlib>

#include "zyn/values.h"

namespace zyn::bench {
namespace {

constexpr std::size_t largestMessage = 1 << 20;

} // namespace

void stop(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

const void* envelopeOf(const Message& message, TreeMemory& memory) {
    const auto textOf = [&](const char* padded) {
        AsnOcts text;
        ZynTextStrSet(&text, padded, sizeof sender - 1);
        return text;
    };
    switch (message.channel) {
    case ZYN_TRANS_REQUEST: {
        auto* choice = memory.of(ZynTransReqChoice{});
        choice->choiceId = message.choiceId;
        choice->slot = message.record;
        return memory.of(ZynTransReq{.userId = textOf(sender), .upTransMsg = choice});
    }
    case ZYN_QUERY_REQUEST: {
        auto* choice = memory.of(ZynQueryReqChoice{});
        choice->choiceId = message.choiceId;
        choice->slot = message.record;
        return memory.of(ZynQueryReq{.userId = textOf(sender), .upQueryMsg = choice});
    }
    case ZYN_TRANS_REPLY: {
        auto* reply = memory.of(ZynTransRep{});
        reply->choiceId = message.choiceId;
        reply->slot = message.record;
        return reply;
    }
    case ZYN_QUERY_REPLY: break;
    }
    auto* reply = memory.of(ZynQueryRep{});
    reply->choiceId = message.choiceId;
    reply->slot = message.record;
    return reply;
}

std::vector<uint8_t> encode(ZynChannel channel, uint32_t choiceId, void* record) {
    static std::vector<uint8_t> block(largestMessage);
    const uint32_t size = onChannel(channel, [&]<typename Points>(Points) {
        return Points::encode(record, choiceId, block.data(), static_cast<uint32_t>(block.size()));
    });
    return {block.begin(), block.begin() + size};
}

int32_t decode(const Message& message) {
    return onChannel(message.channel, [&]<typename Points>(Points) {
        typename Points::Envelope envelope;
        return Points::decode(message.octets.data(), static_cast<uint32_t>(message.octets.size()), &envelope);
    });
}

Message makeMessage(std::string name, ZynChannel channel, uint32_t choiceId, void* record) {
    Message message{std::move(name), channel, choiceId, record, encode(channel, choiceId, record)};
    if (message.octets.empty()) stop(message.name + ": cannot be encoded");
    TreeMemory memory;
    const void* sent = envelopeOf(message, memory);
    onChannel(channel, [&]<typename Points>(Points) {
        typename Points::Envelope received;
        const int32_t code =
            Points::decode(message.octets.data(), static_cast<uint32_t>(message.octets.size()), &received);
        if (code != 0) stop(message.name + ": cannot be decoded, code " + std::to_string(code));
        if (!sameTree(envelopes[message.channel], sent, &received)) stop(message.name + ": decodes to another tree");
    });
    return message;
}

ArenaUse arenaUse() {
    ArenaUse use{0, 0};
    for (const NibbleBuf* block = nmG ? nmG->firstNibbleBuf : nullptr; block; block = block->next) {
        use.bytes += static_cast<std::size_t>(block->curr - block->start);
        ++use.blocks;
    }
    return use;
}

} // namespace zyn::bench
