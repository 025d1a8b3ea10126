#include "output/spelled.h"

#include "zyn/codes.h"
#include "zyn/failure.h"

namespace zyn::tool {

std::size_t encodeInto(std::vector<uint8_t>& buffer, ZynChannel channel, const void* envelope) {
    constexpr std::size_t usual = 16 * 1024;
    if (buffer.empty()) buffer.resize(usual);
    const uint32_t length = ZynEncode(channel, envelope, buffer.data(), static_cast<uint32_t>(buffer.size()));
    ZynFailure failure;
    if (length > 0 || !ZynLastFailure(&failure) || failure.code != ZYN_E_NO_ROOM) return length;
    buffer.resize(failure.offset);
    return ZynEncode(channel, envelope, buffer.data(), static_cast<uint32_t>(buffer.size()));
}

} // namespace zyn::tool
