#include "tests/support/reference.h"

#include <algorithm>
#include <cmath>

namespace zyn::test {

void append(Octets& to, const Octets& more) { to.insert(to.end(), more.begin(), more.end()); }

Octets joined(const Pieces& pieces) {
    Octets all;
    for (const Octets& piece : pieces) append(all, piece);
    return all;
}

Octets tagOctetsOf(AsnTag tag) {
    Octets octets{static_cast<uint8_t>(tag >> 24)};
    if ((octets[0] & 0x1F) != 0x1F) return octets;
    octets.push_back(static_cast<uint8_t>(tag >> 16));
    if (octets[1] & 0x80) octets.push_back(static_cast<uint8_t>(tag >> 8));
    return octets;
}

Octets Writer::element(AsnTag tag, const Octets& content) {
    Octets octets = tagOctetsOf(tag);
    if ((tag & constructedBit) && chance(forms.indefinite)) {
        octets.push_back(0x80);
        append(octets, content);
        octets.insert(octets.end(), 2, 0);
        return octets;
    }
    const std::size_t length = content.size();
    std::size_t count = 0; // octets beyond the first
    while (length >= 0x80 && count < 4 && length >> (8 * count) != 0) ++count;
    if (chance(forms.longLength))
        count = std::max<std::size_t>(count, 1) + below(random, 5 - std::max<std::size_t>(count, 1));
    octets.push_back(static_cast<uint8_t>(count == 0 ? length : 0x80 | count));
    while (count-- > 0) octets.push_back(static_cast<uint8_t>(length >> (8 * count)));
    append(octets, content);
    return octets;
}

// The octets of a string, or of a part of it, as components. last: the part is the one that ends the string.
Octets Writer::stringPieces(Kind kind, const Octets& octets, unsigned unusedBits, bool last, int depth) {
    const AsnTag tag = kind == Kind::Octs ? 0x04000000 : 0x03000000;
    Octets result;
    const std::size_t count = octets.empty() && unusedBits == 0 ? below(random, 3) : 1 + below(random, 3);
    std::size_t from = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool lastHere = i + 1 == count;
        // The last component keeps an octet, for the unused bits to stand in.
        const std::size_t to =
            lastHere ? octets.size() : from + below(random, octets.size() - from + (octets.empty() ? 1 : 0));
        const Octets part(octets.begin() + static_cast<std::ptrdiff_t>(from),
                          octets.begin() + static_cast<std::ptrdiff_t>(to));
        from = to;
        if (depth < 3 && chance(30)) {
            append(result,
                   element(tag | constructedBit, stringPieces(kind, part, unusedBits, last && lastHere, depth + 1)));
            continue;
        }
        Octets content = part;
        // A component without octets may even lack the count of unused bits.
        if (kind == Kind::Bits && !(part.empty() && chance(50))) {
            content.insert(content.begin(), static_cast<uint8_t>(last && lastHere ? unusedBits : 0));
        }
        append(result, element(tag, content));
    }
    return result;
}

Octets Writer::stringElement(Kind kind, AsnTag tag, const Octets& octets, unsigned unusedBits) {
    if (chance(forms.cutStrings)) {
        return element(tag | constructedBit, stringPieces(kind, octets, unusedBits, true, 0));
    }
    Octets content = octets;
    if (kind == Kind::Bits) content.insert(content.begin(), static_cast<uint8_t>(unusedBits));
    return element(tag, content);
}

namespace {

// Two's complement in the fewest octets.
Octets integerOctets(int64_t value) {
    Octets octets;
    do {
        octets.insert(octets.begin(), static_cast<uint8_t>(value));
        value >>= 8;
    } while ((value != 0 || (octets[0] & 0x80)) && (value != -1 || !(octets[0] & 0x80)));
    return octets;
}

} // namespace

Octets Writer::realContent(AsnReal value) {
    if (value == 0) return {};
    int exponent;
    double fraction = std::frexp(std::fabs(value), &exponent);
    Octets mantissa; // whole octets, the first and the last of them not 0
    for (; fraction > 0; exponent -= 8) {
        fraction *= 256;
        mantissa.push_back(static_cast<uint8_t>(fraction));
        fraction -= mantissa.back();
    }
    unsigned first = value < 0 ? 0xC0 : 0x80;
    Octets head = integerOctets(exponent);
    if (!chance(forms.looseValues)) {
        first |= static_cast<unsigned>(head.size() - 1);
    } else {
        const unsigned scaling = below(random, 4);
        if (exponent - static_cast<int>(scaling) >= -1074) {
            first |= scaling << 2;
            exponent -= static_cast<int>(scaling);
        }
        const int bits[] = {1, 3, 4};
        const unsigned base = below(random, 3);
        if (exponent % bits[base] == 0) {
            first |= base << 4;
            exponent /= bits[base];
        }
        head = integerOctets(exponent);
        if (chance(50)) { // its octets counted by an octet of their own
            first |= 3;
            head.insert(head.begin(), static_cast<uint8_t>(head.size()));
        } else {
            while (head.size() < 3 && chance(50)) head.insert(head.begin(), exponent < 0 ? 0xFF : 0);
            first |= static_cast<unsigned>(head.size() - 1);
        }
        mantissa.insert(mantissa.begin(), below(random, 3), 0);
    }
    Octets content{static_cast<uint8_t>(first)};
    append(content, head);
    append(content, mantissa);
    return content;
}

Octets Writer::valueElement(Kind kind, TypeId type, AsnTag tag, const void* value) {
    switch (kind) {
    case Kind::Int: return element(tag, integerOctets(*static_cast<const AsnInt*>(value)));
    case Kind::Bool: {
        const auto truth = static_cast<uint8_t>(chance(forms.looseValues) ? 1 + below(random, 255) : 0xFF);
        return element(tag, {*static_cast<const AsnBool*>(value) ? truth : uint8_t{0}});
    }
    case Kind::Real: return element(tag, realContent(*static_cast<const AsnReal*>(value)));
    case Kind::Octs: {
        const auto* text = static_cast<const AsnOcts*>(value);
        return stringElement(kind, tag, Octets(text->octs, text->octs + text->octetLen), 0);
    }
    case Kind::Bits: {
        const auto* bits = static_cast<const AsnBits*>(value);
        const auto count = (static_cast<uint32_t>(bits->bitLen) + 7) / 8;
        return stringElement(kind, tag, Octets(bits->bits, bits->bits + count),
                             count * 8 - static_cast<uint32_t>(bits->bitLen));
    }
    default: return element(tag, content(type, value));
    }
}

Octets Writer::fieldElement(const Field& field, const void* value) {
    if (field.kind == Kind::Choice) return choiceElement(typeOf(field.type), static_cast<const ChoiceRecord*>(value));
    if (field.kind == Kind::SetOf && !value) return element(field.tag, {});
    if (field.wrapped) return element(field.tag, valueElement(field.kind, field.type, 0x02000000, value));
    return valueElement(field.kind, field.type, field.tag, value);
}

Octets Writer::choiceElement(const Type& type, const ChoiceRecord* choice) {
    const auto found = std::find_if(type.alternatives.begin(), type.alternatives.end(),
                                    [&](const Alternative& row) { return row.number == choice->choiceId; });
    if (found == type.alternatives.end()) return {};
    if (found->kind == Kind::Int) return valueElement(Kind::Int, found->type, found->tag, &choice->number);
    return valueElement(found->kind, found->type, found->tag, choice->slot);
}

Pieces Writer::pieces(const Type& type, const void* value) {
    Pieces result;
    for (const Field& field : type.fields) {
        const void* member = valueOf(value, field);
        if (member || !field.optional) result.push_back(fieldElement(field, member));
    }
    if (type.shape == Shape::SetOf) {
        for (const AsnListNode* node = static_cast<const AsnList*>(value)->first; node; node = node->next) {
            result.push_back(element(0x30000000, content(type.element, node->data)));
        }
    }
    if (!result.empty() && chance(forms.damage)) {
        const Octets strays[] = {{0x05, 0x00}, {0x30, 0x00}, {0x00, 0x00}, {0xBF, 0x7F, 0x00}, {0x02, 0x01, 0x05}};
        const auto place = result.begin() + below(random, result.size());
        switch (below(random, 3)) {
        case 0: result.erase(place); break;
        case 1: result.insert(place, Octets(*place)); break;
        default: result.insert(place, strays[below(random, std::size(strays))]); break;
        }
    }
    return result;
}

Octets Writer::content(TypeId id, const void* value) {
    const Type& type = typeOf(id);
    if (type.shape == Shape::Choice) return choiceElement(type, static_cast<const ChoiceRecord*>(value));
    return joined(pieces(type, value));
}

Octets Writer::message(TypeId type, const void* value) {
    const Octets octets = content(type, value);
    return typeOf(type).shape == Shape::Choice ? octets : element(0x30000000, octets);
}

namespace {

std::string under(const char* name, const std::string& rest) {
    return rest.empty() || rest[0] == ':' ? name + rest : name + ("." + rest);
}

std::string textDifference(const AsnOcts& sent, const AsnOcts& decoded) {
    if (!decoded.octs) return ": absent";
    if (sent.octetLen != decoded.octetLen) return ": length of the text";
    if (!std::equal(sent.octs, sent.octs + sent.octetLen, decoded.octs)) return ": text";
    return decoded.octs[decoded.octetLen] == 0 ? "" : ": text not closed by a 0";
}

std::string listDifference(const Type& type, const AsnList* sent, const AsnList& decoded) {
    if (decoded.dataSize != sizeof(void*)) return ": dataSize";
    if (decoded.count != (sent ? sent->count : 0)) return ": count";
    if (decoded.curr != decoded.last) return ": curr is not the last node";
    const AsnListNode* original = sent ? sent->first : nullptr;
    const AsnListNode* previous = nullptr;
    int index = 0;
    for (const AsnListNode* node = decoded.first; node; previous = node, node = node->next, ++index) {
        if (node->prev != previous || !original) return ": links of node " + std::to_string(index);
        const std::string found = difference(type.element, original->data, node->data);
        if (!found.empty()) return under(std::to_string(index).c_str(), found);
        original = original->next;
    }
    return index == decoded.count && decoded.last == previous ? "" : ": links of the list";
}

std::string choiceDifference(const Type& type, const ChoiceRecord& sent, const ChoiceRecord& decoded) {
    if (sent.choiceId != decoded.choiceId) return ": choiceId " + std::to_string(decoded.choiceId);
    for (const Alternative& row : type.alternatives) {
        if (row.number != sent.choiceId) continue;
        if (row.kind == Kind::Int) return sent.number == decoded.number ? "" : under(row.name, ": number in the slot");
        if (!decoded.slot) return under(row.name, ": null slot");
        const std::string found = difference(row.type, sent.slot, decoded.slot);
        return found.empty() ? "" : under(row.name, found);
    }
    return ": no alternative has the choiceId";
}

std::string sequenceDifference(const Type& type, const void* sent, const void* decoded) {
    for (const Field& field : type.fields) {
        const void* original = valueOf(sent, field);
        const void* value = valueOf(decoded, field);
        if (field.optional && !original && !value) continue;
        if (!value || (field.optional && !original)) return under(field.name, value ? ": there" : ": absent");
        const std::string found = difference(field.type, original, value);
        if (!found.empty()) return under(field.name, found);
    }
    return "";
}

} // namespace

std::string difference(TypeId id, const void* sent, const void* decoded) {
    const Type& type = typeOf(id);
    switch (type.shape) {
    case Shape::Sequence: return sequenceDifference(type, sent, decoded);
    case Shape::SetOf:
        return listDifference(type, static_cast<const AsnList*>(sent), *static_cast<const AsnList*>(decoded));
    case Shape::Choice:
        return choiceDifference(type, *static_cast<const ChoiceRecord*>(sent),
                                *static_cast<const ChoiceRecord*>(decoded));
    case Shape::Primitive: break;
    }
    switch (id) {
    case TypeId::AsnBool: {
        const AsnBool value = *static_cast<const AsnBool*>(decoded);
        return value == (*static_cast<const AsnBool*>(sent) ? 1 : 0) ? "" : ": BOOLEAN";
    }
    case TypeId::AsnOcts:
        return textDifference(*static_cast<const AsnOcts*>(sent), *static_cast<const AsnOcts*>(decoded));
    case TypeId::AsnBits: {
        const auto &original = *static_cast<const AsnBits*>(sent), &value = *static_cast<const AsnBits*>(decoded);
        if (!value.bits) return ": absent";
        if (original.bitLen != value.bitLen) return ": bitLen";
        return std::equal(original.bits, original.bits + (value.bitLen + 7) / 8, value.bits) ? "" : ": bits";
    }
    default: return std::memcmp(sent, decoded, type.size) == 0 ? "" : ": number";
    }
}

} // namespace zyn::test
