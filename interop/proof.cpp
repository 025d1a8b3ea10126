#include "interop/proof.h"

#include <algorithm>

#include "interop/library.h"

namespace zyn::interop {
namespace {

using test::Octets;

bool hasAny(const Traits& traits, std::initializer_list<Trait> of) {
    return std::ranges::any_of(of, [&](Trait trait) { return has(traits, trait); });
}

// The content of a REAL in binary form, which beside the causes stays as it is: the mantissa's octets do, even where
// the value then is another one.
Octets plainReal(const Traits& found, const Octets& content) {
    uint8_t first = content[0];
    const bool isCounted = (first & 3) == 3;
    std::size_t size = isCounted ? content.at(1) : (first & 3u) + 1;
    const auto begin = content.begin() + (isCounted ? 2 : 1), end = begin + static_cast<std::ptrdiff_t>(size);
    int64_t exponent = *begin & 0x80 ? -1 : 0;
    for (auto at = begin; at != end; ++at) exponent = std::clamp<int64_t>(exponent * 256 + *at, -1'000'000, 1'000'000);
    const Octets mantissa(end, content.end());
    if (has(found, Trait::RealSubnormal)) exponent = 1;
    if (has(found, Trait::RealBase)) {
        exponent *= (first >> 4 & 3) == 1 ? 3 : 4;
        first &= 0xCF;
    }
    if (has(found, Trait::RealScaled)) {
        if ((first & 0x30) == 0) exponent += first >> 2 & 3;
        first &= 0xF3;
    }
    if (exponent == 0) exponent = 1; // 0 is read alike even by a reader that takes too many octets
    const bool staysCounted = isCounted && !has(found, Trait::RealCountedExponent);
    if (isCounted && !staysCounted) size = 1;
    while (exponent >> (8 * size - 1) != 0 && exponent >> (8 * size - 1) != -1) ++size;
    first = static_cast<uint8_t>((first & 0xFC) | (staysCounted ? 3 : size - 1));
    Octets result{first};
    if (staysCounted) result.push_back(static_cast<uint8_t>(size));
    for (std::size_t i = size; i-- > 0;)
        result.push_back(static_cast<uint8_t>(exponent >> std::min<std::size_t>(8 * i, 63)));
    test::append(result, mantissa);
    return result;
}

class Repair {
public:
    Repair(const Traits& what, const Octets& of) : causes(what), message(of) {}

    // Nothing for an element that has none of the causes.
    std::optional<Octets> operator()(const Element& element) const {
        const Traits found = element.traits & causes;
        if (found.none()) return std::nullopt;
        Octets tag(at(element.begin), at(element.begin + element.tagSize));
        if (hasAny(found, {Trait::TagPadded, Trait::TagHighForm, Trait::TagOver3Octets})) tag = plainTag(element);
        if (has(found, Trait::Construction)) tag[0] ^= 0x20;
        if (hasAny(found, {Trait::NoPieces, Trait::NestedPieces})) tag[0] &= 0xDF;
        Octets content = plainContent(found, element);
        const bool formStays = !hasAny(found, {Trait::IndefiniteWrapper, Trait::LengthOver4Octets});
        if (formStays && element.indefinite && (tag[0] & 0x20)) {
            tag.push_back(0x80);
            test::append(tag, content);
            tag.insert(tag.end(), 2, 0);
            return tag;
        }
        return elementOf(tag, content, formStays ? element.content - element.begin - element.tagSize - 1 : 0);
    }

private:
    Octets::const_iterator at(std::size_t offset) const {
        return message.begin() + static_cast<std::ptrdiff_t>(offset);
    }

    static Octets plainTag(const Element& element) {
        if (element.number < 31) return {static_cast<uint8_t>(element.leading | element.number)};
        Octets tag{static_cast<uint8_t>(element.leading | 31)};
        if (element.number > 127) tag.push_back(static_cast<uint8_t>(0x80 | element.number >> 7));
        tag.push_back(element.number & 0x7F);
        return tag;
    }

    Octets plainContent(const Traits& found, const Element& element) const {
        if (hasAny(found, {Trait::IntEmpty, Trait::IntOver4Octets, Trait::IntOver8Octets})) return {0};
        if (hasAny(found, {Trait::BoolLength, Trait::PrimitiveIndefinite})) return {0xFF};
        if (hasAny(found, {Trait::BitsNoCount, Trait::BitsUnused})) return {0};
        if (has(found, Trait::EmptyFilled)) return {};
        if (hasAny(found, {Trait::RealReserved, Trait::RealCutShort, Trait::RealBeyondDouble, Trait::RealDecimal,
                           Trait::RealNaN, Trait::RealInfinite, Trait::RealZero, Trait::RealZeroMantissa})) {
            return {0x80, 0x00, 0x01};
        }
        if (hasAny(found, {Trait::RealBase, Trait::RealScaled, Trait::RealCountedExponent, Trait::RealSubnormal})) {
            return plainReal(found, Octets(at(element.content), at(element.end)));
        }
        if (hasAny(found, {Trait::NoPieces, Trait::NestedPieces})) return inOnePiece(element);
        Octets content;
        if (!element.isConstructed()) content.assign(at(element.content), at(element.end));
        for (const Element& part : element.parts) test::append(content, rewritten(message, part, *this));
        return content;
    }

    // The octets of a string's pieces; those of a BIT STRING's behind the count of unused bits in the last of them.
    Octets inOnePiece(const Element& string) const {
        bool isBits = string.leading < 0x40 && string.number == 3;
        uint8_t unused = 0;
        Octets content;
        const auto add = [&](const auto& self, const Element& piece) -> void {
            for (const Element& part : piece.parts) self(self, part);
            if (piece.isConstructed()) return;
            isBits = piece.number == 3;
            if (isBits && piece.content < piece.end) unused = message[piece.content];
            const std::size_t begin = std::min(piece.content + isBits, piece.end);
            content.insert(content.end(), at(begin), at(piece.end));
        };
        add(add, string);
        if (isBits) content.insert(content.begin(), unused);
        return content;
    }

    const Traits& causes;
    const Octets& message;
};

} // namespace

Octets without(const Traits& causes, TypeId type, const Octets& message) {
    if (has(causes, Trait::WrapperLength)) return decoded(type, message, true).again;
    const Reading reading = read(type, message);
    Octets result = message;
    if (has(causes, Trait::RealCut)) result.insert(result.end(), reading.missing, 0);
    if (!reading.whole) return result;
    result = rewritten(message, *reading.whole, Repair(causes, message));
    const std::size_t end = reading.whole->end + (reading.whole->indefinite ? 2 : 0);
    result.insert(result.end(), message.begin() + static_cast<std::ptrdiff_t>(end), message.end());
    return result;
}

} // namespace zyn::interop
