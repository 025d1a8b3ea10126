// The length of a message from its first octets.
#include "describe/header.h"
#include "zyn/describe.h"

namespace zyn {
namespace {

constexpr uint64_t endOfContents = 2; // octets of the marker (X.690 8.1.5)

// No message has more octets than a Decode can be told of.
int tell(int result, uint64_t octets, size_t* messageLength) {
    if (octets > UINT32_MAX) return ZYN_E_LENGTH_TOO_LONG;
    *messageLength = static_cast<size_t>(octets);
    return result;
}

} // namespace
} // namespace zyn

// Elements of definite length are passed over as a whole. Of those of indefinite length only the number matters that are
// open: each of them ends with a marker, the innermost one first.
int ZynMessageLength(const uint8_t* octets, size_t length, size_t* messageLength) {
    using namespace zyn;
    uint64_t position = 0;
    uint64_t open = 0;
    do {
        const uint64_t markers = open * endOfContents;
        if (position > length) return tell(0, position + markers, messageLength);
        const Octets rest = {octets + position, length - static_cast<size_t>(position)};
        if (open > 0 && (rest.count == 0 || *rest.start == 0)) {
            if (rest.count < endOfContents) return tell(0, position + markers, messageLength);
            if (rest.start[1] != 0) return ZYN_E_EOC_SECOND_OCTET;
            position += endOfContents;
            --open;
            continue;
        }
        if (rest.count > 0 && *rest.start == 0) return ZYN_E_WRONG_TAG; // a marker where nothing is open
        Header header;
        const int read = readHeader(rest, header);
        if (read < 0) return read;
        if (read == 0) return tell(0, position + header.octets + markers, messageLength);
        position += header.octets;
        if (header.indefinite) ++open;
        else position += header.length;
    } while (open > 0);
    return tell(1, position, messageLength);
}
