#include "channel.h"

namespace zyn::tool {

const char* channelName(ZynChannel channel) {
    constexpr const char* names[ZYN_CHANNELS] = {"trans-request", "trans-reply", "query-request", "query-reply"};
    return names[channel];
}

const char* channelTitle(ZynChannel channel) {
    constexpr const char* titles[ZYN_CHANNELS] = {"request on the transaction channel",
                                                  "reply on the transaction channel", "request on the query channel",
                                                  "reply on the query channel"};
    return titles[channel];
}

ZynChannel likelyChannel(const uint8_t* octets, std::size_t length) {
    const int told = ZynChannelOf(octets, length);
    if (told >= 0) return static_cast<ZynChannel>(told);
    const uint8_t first = length > 0 ? octets[0] : 0x30;
    if (first == 0xBF) return ZYN_QUERY_REPLY;
    return (first & 0xE0) == 0xA0 ? ZYN_TRANS_REPLY : ZYN_TRANS_REQUEST;
}

void beSilent() {
    Asn1InstallErrorHandler([](char*, int) {});
}

bool decodesWell(const uint8_t* octets, std::size_t length) {
    const int channel = ZynChannelOf(octets, length);
    Envelope envelope = {};
    return channel >= 0 &&
           ZynDecode(static_cast<ZynChannel>(channel), octets, static_cast<uint32_t>(length), &envelope) == 0;
}

} // namespace zyn::tool
