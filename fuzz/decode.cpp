// A Decode: any octets, by the direct way and by the exact way. ZYN_FUZZ_CHANNEL says which of the four.
#include "fuzz/target.h"
#include "tests/support/footprint.h"

namespace zyn::fuzz {
namespace {

const test::Channel& channel = test::channels[ZYN_FUZZ_CHANNEL];

} // namespace

const Target target = {0, [](Random& random) { return madeMessage(channel, random); }};

} // namespace zyn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zyn::fuzz;
    static zyn::test::TwoWays ways;
    ways.decode(channel, Octets(data, data + size));
    expect(ways.problem.empty(), ways.problem);
    expect(static_cast<double>(ways.held()) <= zyn::test::arenaBound().over(size),
           "more memory than the octets justify");
    return 0;
}
