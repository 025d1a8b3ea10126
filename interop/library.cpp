#include "interop/library.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/decoded.h"
#include "tests/support/two-ways.h"

namespace zyn::interop {
namespace {

using test::Octets;

test::Decoded decodedRecord(TypeId type, Octets octets) {
    SBuf b = readingBuffer(octets.data(), octets.size());
    AsnTag tag = 0;
    AsnLen length = 0, read = 0;
    const Caught head = caught([&](jmp_buf env) {
        tag = BDecTag(&b, &read, env);
        length = BDecLen(&b, &read, env);
    });
    if (head.code != 0 || tag != sequenceTag) return {-1, "no SEQUENCE", nullptr, 0};
    octets.erase(octets.begin(), octets.begin() + read);
    return test::decodedContent(type, tag, length, octets);
}

} // namespace

bool isMessage(TypeId type) {
    return std::ranges::find(test::channels, type, &test::Channel::message) != std::end(test::channels);
}

Octets encoded(TypeId type, const void* value) {
    if (!isMessage(type)) return test::Writer().element(sequenceTag, test::encodedContent(type, value));
    const test::Channel& channel = test::channelOf(type);
    const ChoiceRecord& choice = *test::choiceIn(channel, value);
    static Octets block(1 << 20);
    const uint32_t length = channel.encode(test::userIn(channel, value).data(), choice.slot, choice.choiceId,
                                           block.data(), static_cast<uint32_t>(block.size()));
    if (length == 0) throw std::runtime_error("the library does not encode a value");
    return Octets(block.begin(), block.begin() + length);
}

Decoded decoded(TypeId type, const Octets& octets, bool again) {
    Decoded result;
    alignas(8) uint8_t message[64] = {};
    const void* value = message;
    if (isMessage(type)) {
        const auto length = static_cast<uint32_t>(octets.size());
        const test::Channel& channel = test::channelOf(type);
        static std::string* report;
        report = &result.report;
        const Asn1ErrorHandler previous = Asn1InstallErrorHandler([](char* text, int) { *report += text; });
        result.code = channel.decode(octets.data(), length, message);
        Asn1InstallErrorHandler(previous);
    } else {
        const test::Decoded record = decodedRecord(type, octets);
        result.code = record.code;
        result.report = record.messages;
        value = record.value;
    }
    if (result.code != 0) return result;
    result.lines = valuesOf(type, value);
    result.byValue = valuesOf(type, value, ListOrder::byValue);
    if (again) result.again = encoded(type, value);
    return result;
}

} // namespace zyn::interop
