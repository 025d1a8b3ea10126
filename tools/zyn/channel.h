// Channels: their names, and the records of their envelopes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zyn/describe.h"

namespace zyn::tool {

// As options have them: "trans-request"; and for sentences: "request on the transaction channel".
const char* channelName(ZynChannel channel);
const char* channelTitle(ZynChannel channel);

// The channel of a message, also of one that none of them would take: then that which its first octet speaks for.
ZynChannel likelyChannel(const uint8_t* octets, std::size_t length);

// Whether messages can start with that octet.
inline bool mayStartMessage(uint8_t octet) {
    return octet == 0x30 || octet == 0xA0 || octet == 0xB1 || octet == 0xB2 || octet == 0xBF;
}

// Those with which replies on the transaction channel start stand everywhere; behind the others more has to fit.
inline bool startIsCertain(uint8_t octet) { return octet == 0x30 || octet == 0xBF; }

// Room for any envelope.
union Envelope {
    std::max_align_t aligned;
    unsigned char room[64];
};

// Keeps the library from writing to the standard error stream: what went wrong is told from its particulars.
void beSilent();

// Whether some channel takes the message.
bool decodesWell(const uint8_t* octets, std::size_t length);

} // namespace zyn::tool
