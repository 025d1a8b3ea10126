#include "interop/reading.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "interop/elements.h"
#include "interop/text.h"

namespace zyn::interop {
namespace {

Element elementOf(AsnTag tag) {
    Element result;
    result.leading = tag >> 24 & 0xE0;
    result.number = tag >> 24 & 0x1F;
    if (result.number < 31) return result;
    result.number = tag >> 16 & 0x7F;
    if (tag & 0x00800000) result.number = result.number << 7 | (tag >> 8 & 0x7F);
    return result;
}

class Reader {
public:
    Reader(const test::Octets& message, Normal how) : octets(message), elements(message), normal(how) {}

    Reading run(TypeId id) {
        Reading reading;
        try {
            Element& whole = reading.whole.emplace(elements.first());
            const Type& type = typeOf(id);
            if (type.shape == Shape::Choice) reading.text = choice(type, whole);
            else reading.text = tagged(sequenceTag, Kind::Sequence, id, whole);
        } catch (const Stop& stop) {
            elements.note(stop.trait);
        }
        reading.traits = elements.traits;
        reading.missing = elements.missing;
        return reading;
    }

private:
    const uint8_t* contentOf(const Element& element) const { return octets.data() + element.content; }
    static std::size_t sizeOf(const Element& element) { return element.end - element.content; }

    [[noreturn]] void stop(Trait found, Element& element) {
        elements.note(found, element);
        throw Stop{found};
    }

    // The value of an element that must have that tag, and the tag as its head.
    std::string tagged(AsnTag tag, Kind kind, TypeId type, Element& element) {
        const Element wanted = elementOf(tag);
        if (!element.isSameTag(wanted)) throw Stop{Trait::ForeignElement};
        if (!isString(kind) && element.isConstructed() != wanted.isConstructed()) stop(Trait::Construction, element);
        return std::to_string(wanted.leading & 0xC0) + "/" + std::to_string(element.number) +
               value(kind, type, element);
    }

    std::string value(Kind kind, TypeId type, Element& element) {
        if (has(element.traits, Trait::PrimitiveIndefinite)) return "";
        switch (kind) {
        case Kind::Int: return integer(element);
        case Kind::Bool:
            if (sizeOf(element) != 1) elements.note(Trait::BoolLength, element);
            return contentText(element);
        case Kind::Real: return real(element);
        case Kind::Octs: return string(element, 4);
        case Kind::Bits: return string(element, 3);
        case Kind::Sequence: return sequence(typeOf(type), element);
        case Kind::SetOf: return list(typeOf(type), element);
        case Kind::Choice: break;
        }
        // An alternative that is a CHOICE itself stands inside the alternative's element.
        return "{" + choice(typeOf(type), wrapped(element)) + "}";
    }

    std::string choice(const Type& type, Element& element) {
        for (const Alternative& row : type.alternatives) {
            if (element.isSameTag(elementOf(row.tag))) return tagged(row.tag, row.kind, row.type, element);
        }
        throw Stop{Trait::ForeignElement};
    }

    bool takes(const Field& field, const Element& element) const {
        if (field.kind != Kind::Choice) return element.isSameTag(elementOf(field.tag));
        const auto& rows = typeOf(field.type).alternatives;
        return std::ranges::any_of(rows, [&](auto& row) { return element.isSameTag(elementOf(row.tag)); });
    }

    std::string sequence(const Type& type, Element& element) {
        if (type.fields.empty() && !element.parts.empty()) stop(Trait::EmptyFilled, element);
        std::string text = "{";
        auto part = element.parts.begin();
        for (const Field& field : type.fields) {
            if (part == element.parts.end() || !takes(field, *part)) {
                if (field.optional) continue;
                throw Stop{part == element.parts.end() ? Trait::MissingField : Trait::ForeignElement};
            }
            text += this->field(field, *part++);
        }
        if (part != element.parts.end()) throw Stop{Trait::ForeignElement};
        return text + "}";
    }

    std::string field(const Field& field, Element& element) {
        if (field.kind == Kind::Choice) return choice(typeOf(field.type), element);
        if (!field.wrapped) return tagged(field.tag, field.kind, field.type, element);
        if (!element.isConstructed()) stop(Trait::Construction, element);
        return std::to_string(element.number) + "{" +
               tagged(universalTag(field.type, field.kind), field.kind, field.type, wrapped(element)) + "}";
    }

    Element& wrapped(Element& element) {
        if (element.indefinite) elements.note(Trait::IndefiniteWrapper, element);
        if (element.parts.empty()) throw Stop{Trait::MissingField};
        if (element.parts.size() > 1) throw Stop{Trait::ForeignElement};
        return element.parts[0];
    }

    std::string list(const Type& type, Element& element) {
        std::vector<std::string> texts;
        for (Element& part : element.parts) {
            texts.push_back(tagged(sequenceTag, Kind::Sequence, type.element, part));
        }
        if (normal.lists) std::ranges::sort(texts);
        std::string text = "{";
        for (const std::string& each : texts) text += each;
        return text + "}";
    }

    std::string contentText(const Element& element) const {
        return "(" + hexOf(contentOf(element), sizeOf(element)) + ")";
    }

    std::string integer(Element& element) {
        const uint8_t* content = contentOf(element);
        const std::size_t size = sizeOf(element);
        if (size == 0) elements.note(Trait::IntEmpty, element);
        if (size > 8) {
            elements.note(Trait::IntOver8Octets, element);
        } else if (size > 4) {
            elements.note(Trait::IntOver4Octets, element);
        } else if (size > 1 && (content[0] == 0 || content[0] == 0xFF) && (content[0] ^ content[1]) < 0x80) {
            elements.note(Trait::IntNotShortest, element);
        }
        return contentText(element);
    }

    std::string string(Element& element, uint64_t number) {
        if (element.isConstructed() && element.parts.empty()) elements.note(Trait::NoPieces, element);
        return "(" + pieces(element, number, true) + ")";
    }

    // The octets of a string, whole or in pieces. last: no piece follows it.
    std::string pieces(Element& element, uint64_t number, bool last) {
        std::string text;
        for (Element& part : element.parts) {
            if (part.leading >= 0x40 || part.number != number) throw Stop{Trait::StringPiece};
            if (part.isConstructed()) elements.note(Trait::NestedPieces, element);
            text += pieces(part, number, last && &part == &element.parts.back());
        }
        if (element.isConstructed()) return text;
        const uint8_t* content = contentOf(element);
        const std::size_t size = sizeOf(element);
        if (number == 4) return hexOf(content, size);
        if (size == 0) {
            elements.note(Trait::BitsNoCount, element);
            return "";
        }
        const unsigned unused = content[0];
        if (unused > (size == 1 || !last ? 0u : 7u)) {
            elements.note(Trait::BitsUnused, element);
            return "";
        }
        const unsigned spare = (1u << unused) - 1;
        if ((content[size - 1] & spare) == 0 || unused == 0)
            return hexOf(content + 1, size - 1) + "/" + std::to_string(unused);
        elements.note(Trait::BitsSpare, element);
        test::Octets bits(content + 1, content + size);
        if (normal.bits) bits.back() &= static_cast<uint8_t>(~spare);
        return hexOf(bits.data(), bits.size()) + "/" + std::to_string(unused);
    }

    std::string real(Element& element) {
        const uint8_t* content = contentOf(element);
        const std::size_t size = sizeOf(element);
        if (size == 0) {
            elements.note(Trait::RealZero, element);
            return "(0p0)";
        }
        if (!(content[0] & 0x80)) {
            elements.note(notBinary(content[0], size), element);
            return contentText(element);
        }
        std::size_t at = 1;
        std::size_t exponentSize = (content[0] & 3u) + 1;
        if (exponentSize == 4) {
            elements.note(Trait::RealCountedExponent, element);
            exponentSize = size > 1 ? content[at++] : 0;
        }
        const unsigned base = content[0] >> 4 & 3;
        if (base == 3) elements.note(Trait::RealReserved, element);
        else if (base != 0) elements.note(Trait::RealBase, element);
        if (content[0] & 0x0C) elements.note(Trait::RealScaled, element);
        if (exponentSize == 0 || size <= at || size - at <= exponentSize) {
            elements.note(Trait::RealCutShort, element);
            return contentText(element);
        }
        const std::string text = binary(element, at, exponentSize);
        return normal.reals ? "(" + text + ")" : contentText(element);
    }

    static Trait notBinary(uint8_t first, std::size_t size) {
        if (!(first & 0x40)) return first >= 1 && first <= 3 ? Trait::RealDecimal : Trait::RealReserved;
        if (size > 1 || first > 0x43) return Trait::RealReserved;
        return first > 0x41 ? Trait::RealNaN : Trait::RealInfinite;
    }

    std::string binary(Element& element, std::size_t at, std::size_t exponentSize) {
        const uint8_t* content = contentOf(element);
        const std::size_t size = sizeOf(element);
        // More than a double's range holds is kept within it, and noted.
        int64_t exponent = content[at] & 0x80 ? -1 : 0;
        for (std::size_t i = 0; i < exponentSize; ++i) {
            exponent = std::clamp<int64_t>(exponent * 256 + content[at++], -1'000'000, 1'000'000);
        }
        constexpr int bitsOf[] = {1, 3, 4, 1};
        exponent = exponent * bitsOf[content[0] >> 4 & 3] + (content[0] >> 2 & 3);
        while (at < size && content[at] == 0) ++at;
        uint64_t mantissa = 0;
        bool tooLong = size - at > 8;
        for (; at < size && !tooLong; ++at) mantissa = mantissa << 8 | content[at];
        for (; mantissa != 0 && mantissa % 2 == 0; mantissa /= 2) ++exponent;
        const double magnitude =
            std::ldexp(static_cast<double>(mantissa), static_cast<int>(std::clamp<int64_t>(exponent, -5000, 5000)));
        tooLong = tooLong || mantissa >> 53 != 0;
        if (tooLong || std::isinf(magnitude) || (mantissa != 0 && exponent < -1074)) {
            elements.note(Trait::RealBeyondDouble, element);
        } else if (mantissa == 0) {
            elements.note(Trait::RealZeroMantissa, element);
        } else if (magnitude < std::numeric_limits<double>::min()) {
            elements.note(Trait::RealSubnormal, element);
        }
        return realText(content[0] & 0x40 ? -magnitude : magnitude);
    }

    const test::Octets& octets;
    ElementReader elements;
    const Normal normal;
};

} // namespace

bool isFaulty(const Traits& traits) {
    for (std::size_t i = 0; i <= static_cast<std::size_t>(Trait::OctetsBehind); ++i) {
        if (traits[i]) return true;
    }
    return false;
}

Reading read(TypeId type, const test::Octets& octets, Normal normal) { return Reader(octets, normal).run(type); }

} // namespace zyn::interop
