// The decoders of all records, by number of type, as their exported operations call them: print, encode and decode again.
// The first two octets are the number; an element follows, whose tag and length are read for the decoder.
#include "fuzz/returning.h"
#include "fuzz/target.h"
#include "tests/support/arena.h"
#include "tests/support/decoded.h"
#include "tests/support/printed.h"

namespace zyn::fuzz {
namespace {

using namespace test;

void decodePrintEncode(TypeId id, Octets octets, NibbleMem* second) {
    const Type& type = typeOf(id);
    Head head;
    if (!readHead(octets, head)) return;
    const Decoded first = decodedContent(id, head.tag, head.length, octets);
    expect(first.code <= 0, "a code above 0");
    if (first.code != 0) return;
    printed(id, first.value);
    const Octets sent = encodedContent(id, first.value, 4 * octets.size() + 1024);
    const bool sendable = makeReturning(id, first.value);
    expect(sendable == (sent != notEncoded),
           sendable ? "not encoded" : "encoded, with a REAL that has no form on the wire");
    if (!sendable) return;

    NibbleMem* const arena = std::exchange(nmG, second);
    Octets content = sent;
    const Head again = takeHead(type, content);
    const Decoded returned = decodedContent(id, again.tag, again.length, content);
    expect(returned.code == 0, "what was encoded is not decoded: " + std::to_string(returned.code));
    expect(returned.read == content.size(), "not all octets counted");
    const std::string found = difference(id, first.value, returned.value);
    expect(found.empty(), "not the same when encoded and decoded again: " + found);
    // Not those sent, if a REAL does not come back: minus zero is written as zero.
    expect(encodedContent(id, returned.value, sent.size()) == encodedContent(id, first.value, sent.size()),
           "encoded twice, the octets are not the same");
    nmG = arena;
}

} // namespace

const Target target = {2, madeRecord};

} // namespace zyn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zyn::fuzz;
    static NibbleMem* const second = zyn::test::newArena();
    const Input input = inputFrom(data, size);
    decodePrintEncode(selectedRecord(input), input.octets, second);
    return 0;
}
