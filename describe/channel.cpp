// The channel of a message from its first octets.
#include <initializer_list>

#include "describe/header.h"
#include "records/members.h"
#include "records/tables.h"
#include "zyn/describe.h"

namespace zyn {
namespace {

// The first of these channels that has an alternative with the tag.
int channelWith(AsnTag tag, std::initializer_list<ZynChannel> channels) {
    for (const ZynChannel channel : channels) {
        const ZynAlternative* alternative = ZynAlternativeByNumber(ZynMessageChoice(channel), tagNumber(tag));
        if (alternative && alternative->tag == tag) return channel;
    }
    return -1;
}

// Moves behind the element at the start of octets. False: it is not all there.
bool pass(Octets& octets) {
    size_t length = 0;
    if (ZynMessageLength(octets.start, octets.count, &length) != 1 || length > octets.count) return false;
    octets = octets.behind(length);
    return true;
}

} // namespace
} // namespace zyn

int ZynChannelOf(const uint8_t* octets, size_t length) {
    using namespace zyn;
    Octets rest = {octets, length};
    Header header;
    if (readTag(rest, header) != 1) return -1;
    if (header.tag != sequenceTag) return channelWith(header.tag, {ZYN_TRANS_REPLY, ZYN_QUERY_REPLY});
    // In a request the alternative stands behind the user's name.
    if (readHeader(rest, header) != 1) return -1;
    rest = rest.behind(header.octets);
    const AsnTag userId = typeOf(TypeId::ZynTransReq).fields[0].tag;
    if (readTag(rest, header) != 1 || (header.tag & ~constructedBit) != userId || !pass(rest)) return -1;
    return readTag(rest, header) == 1 ? channelWith(header.tag, {ZYN_TRANS_REQUEST, ZYN_QUERY_REQUEST}) : -1;
}
