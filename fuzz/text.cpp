// ZynTextStrDecode: strings in pieces of all forms; what was decoded is encoded and decoded again.
#include <algorithm>
#include <memory>

#include "fuzz/target.h"

namespace zyn::fuzz {

const Target target = {0, madeText};

} // namespace zyn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zyn::fuzz;
    [[maybe_unused]] static const Asn1ErrorHandler previous = Asn1InstallErrorHandler([](char*, int) {});
    AsnOcts text{};
    const int32_t code = ZynTextStrDecode(data, static_cast<uint32_t>(size), &text);
    expect(code <= 0, "a code above 0");
    if (code != 0) return 0;
    expect(text.octetLen <= size && text.octs[text.octetLen] == 0,
           "a text longer than its message, or not closed by a 0");
    Octets octets(text.octetLen + 8);
    const uint32_t length = ZynTextStrEncode(&text, octets.data(), static_cast<uint32_t>(octets.size()));
    expect(length > text.octetLen, "not encoded");
    const Octets decoded(text.octs, text.octs + text.octetLen);
    expect(ZynTextStrDecode(octets.data(), length, &text) == 0, "what was encoded is not decoded");
    expect(std::equal(decoded.begin(), decoded.end(), text.octs, text.octs + text.octetLen), "not the same text");
    return 0;
}
