#include "bench/attacks.h"

#include "bench/message.h"
#include "tests/support/elements.h"

namespace zyn::bench {
namespace {

using namespace test;

int32_t decodeText(const uint8_t* octets, uint32_t length) {
    AsnOcts text;
    return ZynTextStrDecode(octets, length, &text);
}

template <typename Points> int32_t decodeEnvelope(const uint8_t* octets, uint32_t length) {
    typename Points::Envelope envelope;
    return Points::decode(octets, length, &envelope);
}

Decode decodeOf(ZynChannel channel) {
    return onChannel(channel, []<typename Points>(Points) -> Decode { return decodeEnvelope<Points>; });
}

// front, as often as there is room for the two of them piece and its counterpart from the end, and back.
Octets filled(std::size_t size, const Octets& front, const Octets& piece, const Octets& middle,
              const Octets& counterpart, const Octets& back) {
    const std::size_t fixed = front.size() + middle.size() + back.size();
    const std::size_t times = size < fixed ? 0 : (size - fixed) / (piece.size() + counterpart.size());
    Octets octets = front;
    octets.reserve(size);
    for (std::size_t i = 0; i < times; ++i) append(octets, piece);
    append(octets, middle);
    for (std::size_t i = 0; i < times; ++i) append(octets, counterpart);
    append(octets, back);
    return octets;
}

Attack pieces(std::string name, Octets piece, Octets back = {0, 0}) {
    return {"text, " + name, decodeText, [=](std::size_t size) {
                return filled(size, {0x24, 0x80}, piece, {}, {}, back);
            }};
}

Attack nested(std::string name, Octets middle, Octets counterpart) {
    return {"text, " + name, decodeText, [=](std::size_t size) {
                return filled(size, {}, {0x24, 0x80}, middle, counterpart, {});
            }};
}

// Strings inside each other, with lengths that are right.
Octets nestedDefinite(std::size_t size) {
    Octets octets;
    for (std::size_t left = size; left >= 8;) {
        left -= 6;
        octets.insert(octets.end(), {0x24, 0x84});
        for (unsigned shift = 32; shift > 0;) octets.push_back(static_cast<uint8_t>(left >> (shift -= 8)));
        if (left < 8) append(octets, Octets(left, 0x04)); // no strings: refused at the innermost
    }
    return octets;
}

void addTexts(std::vector<Attack>& all) {
    all.push_back({"text, in one piece", decodeText,
                   [](std::size_t size) { return Writer().element(0x04000000, Octets(size - 6, 'x')); }});
    all.push_back(pieces("empty pieces", {0x04, 0x00}));
    all.push_back(pieces("empty pieces, long lengths", {0x04, 0x84, 0, 0, 0, 0}));
    all.push_back(pieces("empty pieces, refused at the end", {0x04, 0x00}, {0x05, 0x00}));
    all.push_back(pieces("empty pieces, not closed", {0x04, 0x00}, {}));
    all.push_back(pieces("pieces of one octet", {0x04, 0x01, 'x'}));
    all.push_back(pieces("empty strings in a string", {0x24, 0x00}));
    all.push_back(pieces("empty strings of indefinite length", {0x24, 0x80, 0x00, 0x00}));
    all.push_back(pieces("strings of one piece, nested twice", {0x24, 0x80, 0x24, 0x02, 0x04, 0x00, 0x00, 0x00}));
    all.push_back(nested("nested", {0x04, 0x00}, {0x00, 0x00}));
    all.push_back(nested("nested, never closed", {}, {}));
    all.push_back(nested("nested, each closed behind a piece", {}, {0x04, 0x01, 'x', 0x00, 0x00}));
    all.push_back({"text, nested, definite", decodeText, nestedDefinite});
    all.push_back({"text, the longest tags", decodeText, [](std::size_t size) {
                       return filled(size, {0x24, 0x80}, {0x3F, 0xFF, 0x7F, 0x00}, {}, {}, {});
                   }});
}

Element* find(Elements& elements, uint8_t tag) {
    for (Element& element : elements) {
        if (element.tag == Octets{tag}) return &element;
        if (Element* found = find(element.parts, tag)) return found;
    }
    return nullptr;
}

// A message with all its fields, short ones, and one element in each list.
Octets shortMessage(ZynChannel channel, const Alternative& row, const Forms& forms) {
    Octets octets;
    for (uint32_t seed = row.number; octets.empty(); ++seed) {
        Sampler sampler(seed, {100, 3, 1});
        ChoiceRecord* choice = sampler.make(choiceType(channel), row);
        struct {
            AsnOcts userId;
            const void* choice;
        } request = {{2, reinterpret_cast<uint8_t*>(choice)}, choice};
        const bool isReply = choiceType(channel) == envelopes[channel];
        octets = Writer(forms, seed).message(envelopes[channel], isReply ? static_cast<void*>(choice) : &request);
        Elements message = parse(octets);
        const Element* list = find(message, 0x31);
        if (list && list->parts.size() < (list->indefinite ? 2u : 1u)) octets.clear(); // the sampler left it empty
    }
    return octets;
}

// A message in which the first element with the tag is as large as the message is to be.
Attack grown(std::string name, ZynChannel channel, const Octets& shortOne, uint8_t tag,
             std::function<Octets(const Element&, std::size_t)> content) {
    return {name, decodeOf(channel), [=](std::size_t size) {
                Elements message = parse(shortOne);
                Element& element = *find(message, tag);
                const std::size_t others = shortOne.size() - written(element.parts).size() - element.content.size();
                element.content = content(element, size < others ? 0 : size - others);
                element.parts.clear();
                element.constructed = false; // only here; its tag stays, and the content is written as it is
                return written(message);
            }};
}

Octets repeatedElement(const Element& list, std::size_t size, const Octets& last) {
    const Octets piece = written({list.parts[0]});
    return filled(size, {}, piece, {}, {}, joined({last, list.indefinite ? Octets{0, 0} : Octets{}}));
}

// Lists of the smallest elements, in all forms.
void addLists(std::vector<Attack>& all, ZynChannel channel, const Alternative& row) {
    constexpr struct {
        const char* name;
        Forms forms;
        bool refused;
    } kinds[] = {
        {"list", {}, false},
        {"list, refused at the end", {}, true},
        {"list, indefinite lengths", {.indefinite = 100}, false},
        {"list, long lengths", {.longLength = 100}, false},
        {"list, strings in pieces", {.cutStrings = 100}, false},
        {"list, all of that", {.indefinite = 50, .longLength = 50, .cutStrings = 100, .looseValues = 100}, false}};
    for (const auto& kind : kinds) {
        const Octets octets = shortMessage(channel, row, kind.forms);
        Elements message = parse(octets);
        if (!find(message, 0x31)) return;
        all.push_back(grown(std::string(kind.name) + ", " + row.name, channel, octets, 0x31,
                            [refused = kind.refused](const Element& list, std::size_t size) {
                                return repeatedElement(list, size, refused ? Octets{0x32, 0x00} : Octets{});
                            }));
    }
}

void addReals(std::vector<Attack>& all, ZynChannel channel, const Octets& octets) {
    const auto real = [&](const char* name, Octets front, uint8_t octet) {
        all.push_back(grown(std::string("REAL, ") + name, channel, octets, 0x09, [=](const Element&, std::size_t size) {
            return filled(size, front, {octet}, {}, {}, {});
        }));
    };
    real("mantissa of zeros", {0x80, 0x00}, 0x00);
    real("mantissa of ones", {0x80, 0x00}, 0xFF);
    real("mantissa of ones, smallest exponent", {0xAD, 0x80, 0x00}, 0xFF);
    real("exponent of 255 octets", {0x83, 0xFF}, 0x7F);
}

void addBits(std::vector<Attack>& all, ZynChannel channel, const Octets& octets) {
    const auto bits = [&](const char* name, Octets piece) {
        Elements message = parse(octets);
        find(message, 0x03)->tag[0] = 0x23; // in pieces
        Octets inPieces = written(message);
        all.push_back(grown(std::string("bits, ") + name, channel, inPieces, 0x23,
                            [=](const Element&, std::size_t size) { return filled(size, {}, piece, {}, {}, {}); }));
    };
    bits("pieces without even a count", {0x03, 0x00});
    bits("empty pieces", {0x03, 0x01, 0x00});
    bits("pieces of one octet", {0x03, 0x02, 0x00, 0xFF});
}

template <typename Visit> void forEachAlternative(Visit&& visit) {
    for (const ZynChannel channel : {ZYN_TRANS_REQUEST, ZYN_QUERY_REQUEST, ZYN_TRANS_REPLY, ZYN_QUERY_REPLY}) {
        for (const Alternative& row : typeOf(choiceType(channel)).alternatives) visit(channel, row);
    }
}

template <typename Visit> void forEachElement(Elements& elements, Visit&& visit) {
    for (Element& element : elements) {
        visit(element);
        forEachElement(element.parts, visit);
    }
}

} // namespace

std::vector<Attack> attacks() {
    std::vector<Attack> all;
    addTexts(all);
    bool reals = false, bits = false;
    forEachAlternative([&](ZynChannel channel, const Alternative& row) {
        addLists(all, channel, row);
        const Octets octets = shortMessage(channel, row, {});
        Elements message = parse(octets);
        if (!reals && find(message, 0x09)) addReals(all, channel, octets), reals = true;
        if (!bits && find(message, 0x03)) addBits(all, channel, octets), bits = true;
    });
    return all;
}

std::vector<Claim> claims() {
    std::vector<Claim> all;
    constexpr std::size_t longest =
        256; // octets; what is longer takes its time for what it has, not for what it claims
    const auto add = [&](const std::string& name, Decode decode, const Octets& octets) {
        if (octets.size() > longest) return;
        Elements message = parse(octets);
        forEachElement(message, [&](Element& element) {
            for (const uint32_t claim : {0x40000000u, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
                element.claimed = claim;
                all.push_back({name, decode, written(message)});
            }
            element.claimed.reset();
        });
    };
    forEachAlternative([&](ZynChannel channel, const Alternative& row) {
        add(row.name, decodeOf(channel), shortMessage(channel, row, {}));
        add(std::string(row.name) + " in pieces", decodeOf(channel), shortMessage(channel, row, {.cutStrings = 100}));
    });
    return all;
}

} // namespace zyn::bench
