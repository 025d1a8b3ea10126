// Print of what was decoded. The first octet says which of the four messages it is, the second the indentation.
#include <algorithm>
#include <cctype>

#include "fuzz/target.h"
#include "tests/support/printed.h"

namespace zyn::fuzz {

const Target target = {2, madeSelectedMessage};

} // namespace zyn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zyn::fuzz;
    static zyn::test::TwoWays ways;
    const Input input = inputFrom(data, size);
    const zyn::test::Channel& channel = selectedChannel(input);
    const void* message = ways.decode(channel, input.octets);
    expect(ways.problem.empty(), ways.problem);
    if (ways.code != 0) return 0;
    stdIndentG = input.selector[1] % 16;
    const std::string text = zyn::test::printed(channel.message, message);
    expect(text == zyn::test::printed(channel.message, message), "printed twice, the text is not the same");
    expect(std::all_of(text.begin(), text.end(), [](unsigned char c) { return c == '\n' || std::isprint(c); }),
           "what does not print in the text");
    return 0;
}
