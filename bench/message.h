// The messages that are measured, and the entry points that they go through.
#pragma once

#include <string>
#include <vector>

#include "bench/tree.h"
#include "records/tables.h"
#include "zyn/describe.h"
#include "zyn/messages.h"

namespace zyn::bench {

struct Message {
    std::string name;
    ZynChannel channel;
    uint32_t choiceId;
    void* record;                // the alternative's, outside the arena; null where it is empty
    std::vector<uint8_t> octets; // what Encode makes of it
};

// The sender of all requests, as callers of Encode give it.
inline constexpr char sender[] = "TRD0042     ";

// The entry points of a channel under one name each. record gives the alternative's record of a decoded envelope.
template <ZynChannel> struct EntryPoints;

template <> struct EntryPoints<ZYN_TRANS_REQUEST> {
    using Envelope = ZynTransReq;
    static constexpr auto decode = ZynTransRequestDecode;
    static constexpr auto print = PrintZynTransReq;
    static uint32_t encode(void* record, uint32_t choiceId, uint8_t* buffer, uint32_t size) {
        return ZynTransRequestEncode(sender, record, choiceId, buffer, size);
    }
    static void* record(const Envelope& envelope) { return envelope.upTransMsg->slot; }
    static uint32_t choiceId(const Envelope& envelope) { return envelope.upTransMsg->choiceId; }
};

template <> struct EntryPoints<ZYN_QUERY_REQUEST> {
    using Envelope = ZynQueryReq;
    static constexpr auto decode = ZynQueryRequestDecode;
    static constexpr auto print = PrintZynQueryReq;
    static uint32_t encode(void* record, uint32_t choiceId, uint8_t* buffer, uint32_t size) {
        return ZynQueryRequestEncode(sender, record, choiceId, buffer, size);
    }
    static void* record(const Envelope& envelope) { return envelope.upQueryMsg->slot; }
    static uint32_t choiceId(const Envelope& envelope) { return envelope.upQueryMsg->choiceId; }
};

template <> struct EntryPoints<ZYN_TRANS_REPLY> {
    using Envelope = ZynTransRep;
    static constexpr auto decode = ZynTransReplyDecode;
    static constexpr auto print = PrintZynTransRep;
    static constexpr auto encode = ZynTransReplyEncode;
    static void* record(const Envelope& envelope) { return envelope.slot; }
    static uint32_t choiceId(const Envelope& envelope) { return envelope.choiceId; }
};

template <> struct EntryPoints<ZYN_QUERY_REPLY> {
    using Envelope = ZynQueryRep;
    static constexpr auto decode = ZynQueryReplyDecode;
    static constexpr auto print = PrintZynQueryRep;
    static constexpr auto encode = ZynQueryReplyEncode;
    static void* record(const Envelope& envelope) { return envelope.slot; }
    static uint32_t choiceId(const Envelope& envelope) { return envelope.choiceId; }
};

// Calls what with the entry points of the channel: onChannel(c, []<typename Points>(Points) { ... }).
template <typename What> decltype(auto) onChannel(ZynChannel channel, What&& what) {
    switch (channel) {
    case ZYN_TRANS_REQUEST: return what(EntryPoints<ZYN_TRANS_REQUEST>{});
    case ZYN_QUERY_REQUEST: return what(EntryPoints<ZYN_QUERY_REQUEST>{});
    case ZYN_TRANS_REPLY: return what(EntryPoints<ZYN_TRANS_REPLY>{});
    case ZYN_QUERY_REPLY: break;
    }
    return what(EntryPoints<ZYN_QUERY_REPLY>{});
}

// The CHOICE that tells the messages of a channel apart: the envelope itself or what it holds.
constexpr TypeId choiceType(ZynChannel channel) {
    switch (channel) {
    case ZYN_TRANS_REQUEST: return TypeId::ZynTransReqChoice;
    case ZYN_QUERY_REQUEST: return TypeId::ZynQueryReqChoice;
    case ZYN_TRANS_REPLY: return TypeId::ZynTransRep;
    case ZYN_QUERY_REPLY: break;
    }
    return TypeId::ZynQueryRep;
}

// The whole message as a tree, as a Decode would give it, in memory of its own.
const void* envelopeOf(const Message& message, TreeMemory& memory);

// Encode and decode through the entry points. decode gives the result code and leaves the tree in the arena.
std::vector<uint8_t> encode(ZynChannel channel, uint32_t choiceId, void* record);
int32_t decode(const Message& message);

// makeMessage encodes the record and stops the program unless the octets decode to the same tree.
Message makeMessage(std::string name, ZynChannel channel, uint32_t choiceId, void* record);

// A logon, an order, an amendment, a reply, a security board report, an order book and a trade report.
std::vector<Message> sevenMessages(TreeMemory& memory);

// One message of each alternative of all four envelopes: those in the files of the folder, and for every other
// alternative a random one, the same in each run.
std::vector<Message> mixedMessages(const std::string& folder, TreeMemory& memory);

// Bytes of the arena that are in use, and of how many blocks.
struct ArenaUse {
    std::size_t bytes;
    std::size_t blocks;
};
ArenaUse arenaUse();

// Says what is wrong and ends the program.
[[noreturn]] void stop(const std::string& why);

} // namespace zyn::bench
