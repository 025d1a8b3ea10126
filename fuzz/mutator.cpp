// Mutations and cross-over that know elements: most of what they make is well-formed BER, wrong in one place only, and so
// gets deep into the decoders. The fuzzer's own mutations of octets, with the dictionary, are used as well, on whole
// inputs and on the content of one element.
#include <algorithm>
#include <cstring>

#include "fuzz/target.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace zyn::fuzz {
namespace {

using test::below;
using test::Element;
using test::Elements;
using test::parse;
using test::written;

// An element and the ones that it stands among.
struct Place {
    Elements* among;
    std::size_t index;

    Element& operator*() const { return (*among)[index]; }
    Element* operator->() const { return &**this; }
};

void collect(Elements& elements, std::vector<Place>& places) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        places.push_back({&elements, i});
        collect(elements[i].parts, places);
    }
}

Place anyPlace(Elements& elements, Random& random) {
    std::vector<Place> places;
    collect(elements, places);
    return places[below(random, places.size())];
}

bool chance(Random& random, uint32_t percent) { return below(random, 100) < percent; }

Element marker() {
    Element element;
    element.tag = {0};
    return element;
}

// A tag that some record has, or the universal one of a string.
Octets anyTag(Random& random) {
    static const std::vector<Octets> tags = [] {
        std::vector<Octets> all{{0x04}, {0x24}, {0x03}, {0x23}, {0x00}, {0x31}};
        for (const Type& type : types) {
            for (const Field& field : type.fields) all.push_back(test::tagOctetsOf(field.tag));
            for (const Alternative& row : type.alternatives) all.push_back(test::tagOctetsOf(row.tag));
        }
        return all;
    }();
    return tags[below(random, tags.size())];
}

void setTag(Element& element, const Octets& tag) {
    const bool constructed = (tag[0] & 0x20) != 0;
    if (constructed != element.constructed) {
        if (constructed) element.parts = parse(element.content);
        else element.content = written(element.parts);
        element.constructed = constructed;
        element.indefinite = false;
    }
    element.tag = tag;
}

void mutateOctets(Octets& octets, std::size_t most) {
    const std::size_t before = octets.size();
    octets.resize(std::max<std::size_t>(before + most, 1));
    octets.resize(LLVMFuzzerMutate(octets.data(), before, octets.size()));
}

// The mutations. Each gets the place that it is to change, and all elements.

void duplicate(Place at, Elements&, Random& random) {
    const Element copy = *at;
    const std::size_t times = chance(random, 90) ? 1 : 2 + below(random, 100);
    at.among->insert(at.among->begin() + static_cast<std::ptrdiff_t>(at.index), times, copy);
}

void remove(Place at, Elements&, Random&) {
    at.among->erase(at.among->begin() + static_cast<std::ptrdiff_t>(at.index));
}

void swapWithNeighbour(Place at, Elements&, Random& random) {
    std::swap(*at, (*at.among)[below(random, at.among->size())]);
}

void replaceByAnother(Place at, Elements& all, Random& random) {
    const Element other = *anyPlace(all, random);
    *at = other;
}

void insertAnother(Place at, Elements& all, Random& random) {
    const Element other = *anyPlace(all, random);
    at.among->insert(at.among->begin() + static_cast<std::ptrdiff_t>(at.index), other);
}

void changeTag(Place at, Elements&, Random& random) {
    Octets tag = at->tag.empty() || chance(random, 50) ? anyTag(random) : at->tag;
    if (tag == at->tag) tag[below(random, tag.size())] ^= static_cast<uint8_t>(1u << below(random, 8));
    setTag(*at, tag);
}

void takeTagOfAnother(Place at, Elements& all, Random& random) {
    const Octets tag = anyPlace(all, random)->tag;
    if (!tag.empty()) setTag(*at, tag);
}

void changeContent(Place at, Elements&, Random&) {
    if (at->constructed) {
        Octets octets = written(at->parts);
        mutateOctets(octets, 16);
        at->parts = parse(octets);
    } else {
        mutateOctets(at->content, 16);
    }
}

void claimOtherLength(Place at, Elements&, Random& random) {
    constexpr uint32_t lengths[] = {0,    1,     2,      3,       4,          5,          0x7F,       0x80,
                                    0xFF, 0x100, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    const auto size = static_cast<uint32_t>(at->constructed ? written(at->parts).size() : at->content.size());
    at->indefinite = false;
    at->claimed = chance(random, 50) ? lengths[below(random, std::size(lengths))] : size + below(random, 9) - 4;
}

void repairLength(Place at, Elements&, Random&) { at->claimed.reset(); }

void lengthenLength(Place at, Elements&, Random& random) { at->lengthOctets = below(random, 5); }

void turnIndefinite(Place at, Elements&, Random&) {
    if (!at->constructed) return;
    if (at->indefinite && !at->parts.empty()) at->parts.pop_back();
    else at->parts.push_back(marker());
    at->indefinite = !at->indefinite;
    at->claimed.reset();
}

// A string in pieces, or one made of its pieces again.
void cutString(Place at, Elements&, Random& random) {
    if (at->constructed) {
        for (const Element& part : at->parts) test::append(at->content, part.content);
        at->parts.clear();
    } else if (!at->tag.empty()) {
        const bool bits = at->tag[0] == 0x03 || chance(random, 10);
        std::size_t from = 0;
        do {
            const std::size_t count = std::min<std::size_t>(below(random, 40), at->content.size() - from);
            Element part;
            part.tag = {static_cast<uint8_t>(bits ? 0x03 : 0x04)};
            part.content.assign(at->content.begin() + static_cast<std::ptrdiff_t>(from),
                                at->content.begin() + static_cast<std::ptrdiff_t>(from + count));
            if (bits && from > 0) part.content.insert(part.content.begin(), 0);
            from += count;
            at->parts.push_back(std::move(part));
        } while (from < at->content.size() && at->parts.size() < 100);
        at->content.clear();
    } else {
        return;
    }
    at->tag[0] ^= 0x20;
    at->constructed = !at->constructed;
    at->indefinite = false;
}

void nest(Place at, Elements&, Random& random) {
    for (uint32_t levels = chance(random, 90) ? 1 : 2 + below(random, 60); levels > 0; --levels) {
        Element outer;
        outer.tag = at->tag.empty() || chance(random, 20) ? anyTag(random) : at->tag;
        outer.tag[0] |= 0x20;
        outer.constructed = true;
        outer.parts.push_back(std::move(*at));
        if (chance(random, 20)) {
            outer.parts.push_back(marker());
            outer.indefinite = true;
        }
        *at = std::move(outer);
    }
}

void unwrap(Place at, Elements&, Random&) {
    const Elements parts = at->parts;
    if (parts.empty()) return;
    *at = parts[0];
    at.among->insert(at.among->begin() + static_cast<std::ptrdiff_t>(at.index) + 1, parts.begin() + 1, parts.end());
}

void truncate(Place at, Elements&, Random& random) {
    if (at->constructed) at->parts.resize(below(random, at->parts.size() + 1));
    else at->content.resize(below(random, at->content.size() + 1));
}

constexpr void (*mutations[])(Place, Elements&, Random&) = {
    duplicate,     remove,        swapWithNeighbour, replaceByAnother, insertAnother,  changeTag,      takeTagOfAnother,
    changeContent, changeContent, claimOtherLength,  repairLength,     lengthenLength, turnIndefinite, cutString,
    nest,          unwrap,        truncate,
};

// The octets behind the selector, as elements that were changed; the selector now and then as well.
Octets mutated(Octets input, Random& random) {
    if (chance(random, 3)) return target.made(random);
    const std::size_t selected = std::min(input.size(), target.selectorOctets);
    if (selected > 0 && chance(random, 3)) input[below(random, selected)] = static_cast<uint8_t>(random());
    Elements elements = parse(std::span(input).subspan(selected));
    for (int more = 1; more > 0 && !elements.empty(); more = chance(random, 35) ? 1 : 0) {
        mutations[below(random, std::size(mutations))](anyPlace(elements, random), elements, random);
    }
    input.resize(selected);
    test::append(input, written(elements));
    return input;
}

std::size_t store(const Octets& octets, uint8_t* data, std::size_t maxSize) {
    const std::size_t size = std::min(octets.size(), maxSize);
    if (size > 0) std::memcpy(data, octets.data(), size);
    return size;
}

} // namespace
} // namespace zyn::fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned int seed) {
    using namespace zyn::fuzz;
    static Random random(seed);
    if (below(random, 100) < 25) return LLVMFuzzerMutate(data, size, maxSize);
    return store(mutated(Octets(data, data + size), random), data, maxSize);
}

// One element of the first input becomes one of the second, or has one put in front of it.
extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t* first, size_t firstSize, const uint8_t* second,
                                            size_t secondSize, uint8_t* out, size_t maxOutSize, unsigned int seed) {
    using namespace zyn::fuzz;
    static Random random(seed);
    const std::size_t selected = std::min(firstSize, target.selectorOctets);
    Octets result(first, first + selected);
    Elements elements = parse({first + selected, firstSize - selected});
    const std::size_t skipped = std::min(secondSize, target.selectorOctets);
    Elements others = parse({second + skipped, secondSize - skipped});
    if (!elements.empty() && !others.empty()) {
        const Place at = anyPlace(elements, random);
        const Element other = *anyPlace(others, random);
        if (chance(random, 70)) *at = other;
        else at.among->insert(at.among->begin() + static_cast<std::ptrdiff_t>(at.index), other);
    }
    zyn::test::append(result, written(elements));
    return store(result, out, maxOutSize);
}
