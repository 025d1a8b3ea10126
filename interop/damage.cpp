// What goes wrong with messages: octets that change, go or come, and elements that are left out, doubled or strange.
#include <algorithm>

#include "interop/corpus.h"
#include "interop/elements.h"

namespace zyn::interop {
namespace {

using test::below;
using test::Octets;
using test::Random;

void collect(const Element& element, std::vector<const Element*>& all) {
    all.push_back(&element);
    for (const Element& part : element.parts) collect(part, all);
}

const Octets strays[] = {{0x05, 0x00},       {0x30, 0x00},       {0x00, 0x00}, {0xBF, 0x7F, 0x00},
                         {0x02, 0x01, 0x05}, {0x04, 0x01, 0x41}, {0x80, 0x00}, {0x31, 0x00}};

// Contents that are easily wrong, in the place of a primitive element's.
const Octets contents[] = {
    {},
    {0x00},
    {0xFF},
    {0x00, 0x05}, // an INTEGER that could be shorter
    {0xFF, 0x80},
    {0x00, 0x00, 0x00, 0x00, 0x05},
    {0x00, 0x80, 0x00, 0x00, 0x00},                         // an INTEGER of 33 bits
    {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},       // of 64
    {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, // of 65
    {0x40},                                                 // REAL: infinity
    {0x41},
    {0x42}, // NaN
    {0x43}, // minus zero
    {0x44},
    {0x03, '1', '5', '.', 'E', '-', '1'}, // decimal
    {0x01, ' ', '1', '2'},
    {0x80},
    {0x80, 0x01},                                                       // no mantissa
    {0x80, 0x00, 0x00},                                                 // a mantissa of 0
    {0xB0, 0x01, 0x01},                                                 // a reserved base
    {0x90, 0x01, 0x03},                                                 // base 8
    {0x84, 0x01, 0x03},                                                 // a scaling factor
    {0x81, 0x7F, 0xFF, 0x01},                                           // beyond a double
    {0x80, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, // more bits than a double has
    {0x03, 0xA0},                                                       // bits: three unused
    {0x09, 0xA0},
};

const char* changeOctets(Octets& message, Random& random, const std::vector<const Element*>& all) {
    // Half of the places are heads of elements, which matter more than contents.
    std::size_t at = below(random, message.size());
    if (below(random, 2) == 0) {
        const Element& element = *all[below(random, all.size())];
        at = element.begin + below(random, element.content - element.begin);
    }
    const auto place = message.begin() + static_cast<std::ptrdiff_t>(at);
    switch (below(random, 6)) {
    case 0: *place ^= static_cast<uint8_t>(1 << below(random, 8)); return "bit-flipped";
    case 1: *place ^= static_cast<uint8_t>(1 + below(random, 255)); return "octet-changed";
    case 2: message.erase(place); return "octet-lost";
    case 3: message.insert(place, static_cast<uint8_t>(random())); return "octet-inserted";
    case 4: message.erase(place, message.end()); return "cut-off";
    default:
        message.insert(message.end(), 1 + below(random, 3), static_cast<uint8_t>(random()));
        return "octets-behind";
    }
}

// An element with tag or length in a form that is rare or wrong.
Octets otherHead(const Element& element, const Octets& content, Random& random) {
    const auto number = static_cast<uint8_t>(element.number & 0x7F);
    Octets head{static_cast<uint8_t>(element.leading | std::min<uint64_t>(element.number, 0x1F))};
    if (element.number > 0x7F) head.push_back(static_cast<uint8_t>(0x80 | element.number >> 7));
    if (element.number > 0x1E) head.push_back(number);
    const uint32_t change = below(random, 5);
    if (change == 0) { // a tag number in more octets than it needs
        head[0] |= 0x1F;
        head.insert(head.begin() + 1, 0x80);
        if (head.size() == 2) head.push_back(number);
        return elementOf(head, content);
    }
    if (change == 1 && head.size() == 1) head = {static_cast<uint8_t>(element.leading | 0x1F), number};
    if (change == 2) head[0] ^= 0x20; // constructed or not
    if (change < 3) return elementOf(head, content);
    if (change == 3) { // an indefinite length, of whatever element
        head.push_back(0x80);
        test::append(head, content);
        head.insert(head.end(), 2, 0);
        return head;
    }
    const uint32_t count = 3 + below(random, 7); // octets of the length
    head.push_back(static_cast<uint8_t>(0x80 | count));
    head.insert(head.end(), count - 2, 0);
    head.push_back(static_cast<uint8_t>(content.size() >> 8));
    head.push_back(static_cast<uint8_t>(content.size()));
    test::append(head, content);
    return head;
}

} // namespace

const char* damage(Octets& message, Random& random) {
    const Element whole = ElementReader(message).first();
    std::vector<const Element*> all;
    collect(whole, all);
    if (all.size() < 2 || below(random, 3) == 0) return changeOctets(message, random, all);

    all.erase(all.begin()); // the message itself
    const bool contentsOnly = below(random, 2) == 0;
    if (contentsOnly) std::erase_if(all, [](const Element* element) { return element->isConstructed(); });
    if (all.empty()) return changeOctets(message, random, {&whole});
    const Element& element = *all[below(random, all.size())];
    const auto at = [&](std::size_t offset) { return message.begin() + static_cast<std::ptrdiff_t>(offset); };
    const Octets head(at(element.begin), at(element.begin + element.tagSize)), own(at(element.begin), at(element.end));
    const auto replace = [&](const Octets& octets) {
        message = rewritten(message, whole, [&](const Element& each) {
            return &each == &element ? std::optional(octets) : std::nullopt;
        });
    };
    if (contentsOnly) {
        replace(elementOf(head, contents[below(random, std::size(contents))]));
        return "content-replaced";
    }
    Octets octets;
    const uint32_t change = below(random, 4);
    if (change == 1) octets = own;
    if (change == 2) octets = strays[below(random, std::size(strays))];
    if (change == 3) octets = otherHead(element, Octets(at(element.content), at(element.end)), random);
    else if (change != 0) test::append(octets, own);
    replace(octets);
    constexpr const char* names[] = {"element-lost", "element-doubled", "element-inserted", "head-changed"};
    return names[change];
}

} // namespace zyn::interop
