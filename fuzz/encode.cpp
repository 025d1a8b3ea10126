// Encode of what was decoded, and decode again. The first octet says which of the four messages it is, the second how much
// room there is.
#include <cmath>

#include "api/way.h"
#include "fuzz/returning.h"
#include "fuzz/target.h"

namespace zyn::fuzz {
namespace {

using namespace test;

void encodeAndDecode(TwoWays& ways, const Channel& channel, const Octets& octets, int spare) {
    void* message = ways.decode(channel, octets);
    if (ways.code != 0) return;
    const ChoiceRecord* choice = choiceIn(channel, message);
    const std::string user = userIn(channel, message);
    const auto ample = static_cast<uint32_t>(4 * octets.size() + 1024);
    Octets sent = ways.encode(channel, user, choice, ample);
    const bool sendable = makeReturning(channel.choice, const_cast<ChoiceRecord*>(choice));
    expect(sent.empty() != sendable, sendable ? "not encoded" : "encoded, with a REAL that has no form on the wire");
    if (!sendable) return;

    // With about as much room as it takes; this also goes without a REAL that does not come back.
    const Octets returning = ways.encode(channel, user, choice, ample);
    const auto room = std::max<int64_t>(0, static_cast<int64_t>(returning.size()) + spare);
    const Octets fitted = ways.encode(channel, user, choice, static_cast<uint32_t>(room));
    expect(fitted == (spare < 0 ? Octets{} : returning),
           "encoded into less room than the message takes, or not into all");

    // The tree that was decoded first stays: the second one goes into another arena.
    alignas(8) uint8_t again[64] = {};
    const int32_t code = channel.decode(sent.data(), static_cast<uint32_t>(sent.size()), again);
    expect(code == 0, "what was encoded is not decoded: " + std::to_string(code));
    expect(lastWay == Way::Direct, "what was encoded is not decoded directly");
    const std::string found = difference(channel.choice, choice, choiceIn(channel, again));
    expect(found.empty(), "not the same when encoded and decoded again: " + found);
}

} // namespace

const Target target = {2, madeSelectedMessage};

} // namespace zyn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zyn::fuzz;
    static zyn::test::TwoWays ways;
    const Input input = inputFrom(data, size);
    encodeAndDecode(ways, selectedChannel(input), input.octets, static_cast<int8_t>(input.selector[1]) / 4);
    expect(ways.problem.empty(), ways.problem);
    return 0;
}
