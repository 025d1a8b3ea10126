#include "bench/forms.h"

#include "records/members.h"

namespace zyn::bench {
namespace {

using Octets = std::vector<uint8_t>;

constexpr AsnTag strayTag = 0x9F7F0000; // context-specific 127: no field has it

Octets operator+(Octets a, const Octets& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Writes a tree forwards in the form asked for.
struct Writer {
    Form form;
    TypeId strayIn = TypeId::AsnInt; // a SEQUENCE of this type gets an unknown element at its end

    static Octets tagOctetsOf(AsnTag tag) {
        Octets octets;
        for (unsigned i = 0; i < tagOctets(tag); ++i) octets.push_back(static_cast<uint8_t>(tag >> (24 - 8 * i)));
        return octets;
    }

    static Octets definite(AsnTag tag, const Octets& content) {
        uint8_t space[8];
        SBuf b{space + 8, space + 8, space, space + 8, space + 8, 0, 1};
        BEncDefLen(&b, static_cast<AsnLen>(content.size()));
        return tagOctetsOf(tag) + Octets(b.dataStart, b.dataEnd) + content;
    }

    Octets constructed(AsnTag tag, const Octets& content) const {
        if (!form.indefinite) return definite(tag, content);
        return tagOctetsOf(tag) + Octets{0x80} + content + Octets{0, 0};
    }

    Octets number(AsnTag tag, AsnInt value) const {
        uint8_t space[8];
        SBuf b{space + 8, space + 8, space, space + 8, space + 8, 0, 1};
        BEncAsnIntContent(&b, &value);
        return definite(tag, Octets(b.dataStart, b.dataEnd));
    }

    Octets real(AsnTag tag, AsnReal value) const {
        uint8_t space[16];
        SBuf b{space + 16, space + 16, space, space + 16, space + 16, 0, 1};
        BEncAsnRealContent(&b, &value);
        return definite(tag, Octets(b.dataStart, b.dataEnd));
    }

    Octets text(AsnTag tag, const AsnOcts& value) const {
        const Octets content(value.octs, value.octs + value.octetLen);
        if (!form.constructed) return definite(tag, content);
        const auto middle = content.begin() + static_cast<std::ptrdiff_t>(content.size() / 2);
        const AsnTag piece = universalTag(TypeId::AsnOcts, Kind::Octs);
        return constructed(tag | constructedBit, definite(piece, Octets(content.begin(), middle)) +
                                                     definite(piece, Octets(middle, content.end())));
    }

    Octets bits(AsnTag tag, const AsnBits& value) const {
        const auto octets = (static_cast<std::size_t>(value.bitLen) + 7) / 8;
        const auto unused = static_cast<uint8_t>(octets * 8 - static_cast<std::size_t>(value.bitLen));
        const Octets content = Octets{unused} + Octets(value.bits, value.bits + octets);
        if (!form.constructed) return definite(tag, content);
        return constructed(tag | constructedBit, definite(universalTag(TypeId::AsnBits, Kind::Bits), content));
    }

    Octets value(Kind kind, TypeId type, AsnTag tag, const void* value) const {
        switch (kind) {
        case Kind::Int: return number(tag, *static_cast<const AsnInt*>(value));
        case Kind::Bool: return definite(tag, {static_cast<uint8_t>(*static_cast<const AsnBool*>(value) ? 0xFF : 0)});
        case Kind::Real: return real(tag, *static_cast<const AsnReal*>(value));
        case Kind::Octs: return text(tag, *static_cast<const AsnOcts*>(value));
        case Kind::Bits: return bits(tag, *static_cast<const AsnBits*>(value));
        case Kind::Choice: return choice(typeOf(type), *static_cast<const ChoiceRecord*>(value));
        default: return constructed(tag, content(typeOf(type), value));
        }
    }

    Octets content(const Type& type, const void* record) const {
        Octets octets;
        if (type.shape == Shape::SetOf) {
            for (const AsnListNode* node = static_cast<const AsnList*>(record)->first; node; node = node->next) {
                octets = octets + constructed(sequenceTag, content(typeOf(type.element), node->data));
            }
            return octets;
        }
        for (const Field& field : type.fields) {
            const void* member = valueOf(record, field);
            if (!member) continue;
            if (field.wrapped) octets = octets + definite(field.tag, value(field.kind, field.type, integerTag, member));
            else octets = octets + value(field.kind, field.type, field.tag, member);
        }
        if (type.id == strayIn) octets = octets + definite(strayTag, {});
        return octets;
    }

    Octets choice(const Type& type, const ChoiceRecord& record) const {
        const Alternative& row = *alternativeOf(type, record.choiceId);
        if (row.kind == Kind::Int) return number(row.tag, record.number);
        const Octets inner =
            row.kind == Kind::Choice ? choice(typeOf(row.type), *static_cast<ChoiceRecord*>(record.slot)) : Octets();
        return row.kind == Kind::Choice ? constructed(row.tag, inner) : value(row.kind, row.type, row.tag, record.slot);
    }

    Octets envelope(const Message& message) const {
        TreeMemory memory;
        const void* tree = envelopeOf(message, memory);
        const TypeId type = envelopes[message.channel];
        const Kind kind = typeOf(type).shape == Shape::Choice ? Kind::Choice : Kind::Sequence;
        return value(kind, type, sequenceTag, tree);
    }
};

} // namespace

Message inForm(const Message& message, const Form& form) {
    Message other{message.name + "/" + form.name, message.channel, message.choiceId, nullptr,
                  Writer{form}.envelope(message)};
    TreeMemory memory;
    const void* sent = envelopeOf(message, memory);
    onChannel(other.channel, [&]<typename Points>(Points) {
        typename Points::Envelope received;
        const int32_t code = Points::decode(other.octets.data(), static_cast<uint32_t>(other.octets.size()), &received);
        if (code != 0) stop(other.name + ": cannot be decoded, code " + std::to_string(code));
        if (!sameTree(envelopes[other.channel], sent, &received)) stop(other.name + ": decodes to another tree");
    });
    return other;
}

std::vector<Message> refusals(const Message& message) {
    const TypeId record = alternativeOf(typeOf(choiceType(message.channel)), message.choiceId)->type;
    const auto made = [&](const char* name, Octets octets) {
        Message refused{message.name + "/" + name, message.channel, message.choiceId, nullptr, std::move(octets)};
        if (decode(refused) == 0) stop(refused.name + ": is not refused");
        return refused;
    };
    Octets otherTag = message.octets;
    otherTag[0] ^= 0x40;
    return {made("cut", Octets(message.octets.begin(), message.octets.end() - 1)),
            made("stray", Writer{Form{"", false, false}, record}.envelope(message)), made("tag", std::move(otherTag))};
}

} // namespace zyn::bench
