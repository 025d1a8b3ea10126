// Protocol buffers: the same records as messages on an arena that is used again and again, with an initial block
// large enough that the system allocator is not asked for it.
#include <google/protobuf/arena.h>
#include <google/protobuf/message.h>

#include "bench/suite.h"
#include "records/members.h"
#include "zyn.pb.h"

namespace zyn::bench {
namespace {

constexpr const char* who = "protobuf";
constexpr std::size_t arenaSize = 65536;

alignas(8) char arenaBlock[arenaSize];
uint8_t buffer[65536];

using google::protobuf::Arena;
using google::protobuf::FieldDescriptor;
using PbMessage = google::protobuf::Message;

Arena& arena() {
    static Arena one(arenaBlock, sizeof arenaBlock);
    return one;
}

std::string textOf(const uint8_t* octets, std::size_t size) { return {reinterpret_cast<const char*>(octets), size}; }

std::string bitsOf(const AsnBits& bits) { return textOf(bits.bits, (static_cast<std::size_t>(bits.bitLen) + 7) / 8); }

// Fills a message from a record tree, and compares the two, by the message's own description: field n of a table
// has number n + 1, the alternatives of a CHOICE follow under their own numbers.
void fill(const Type& type, const void* record, PbMessage& to);
bool same(const Type& type, const void* record, const PbMessage& from);

const FieldDescriptor* alternativeField(const PbMessage& message, const Type& holder, const ChoiceRecord& choice) {
    return message.GetDescriptor()->FindFieldByNumber(static_cast<int>(holder.fields.size() + choice.choiceId));
}

void fillChoice(const Type& choice, const ChoiceRecord& record, const Type& holder, PbMessage& to) {
    PbMessage* inner = to.GetReflection()->MutableMessage(&to, alternativeField(to, holder, record));
    fill(typeOf(alternativeOf(choice, record.choiceId)->type), record.slot, *inner);
}

void fill(const Type& type, const void* record, PbMessage& to) {
    const auto* reflection = to.GetReflection();
    if (type.shape == Shape::Choice) return fillChoice(type, *static_cast<const ChoiceRecord*>(record), type, to);
    for (std::size_t i = 0; i < type.fields.size(); ++i) {
        const Field& field = type.fields[i];
        const FieldDescriptor* row = to.GetDescriptor()->FindFieldByNumber(static_cast<int>(i + 1));
        const void* value = valueOf(record, field);
        if (!value) continue;
        switch (field.kind) {
        case Kind::Int: reflection->SetInt32(&to, row, *static_cast<const AsnInt*>(value)); break;
        case Kind::Bool: reflection->SetBool(&to, row, *static_cast<const AsnBool*>(value) != 0); break;
        case Kind::Real: reflection->SetDouble(&to, row, *static_cast<const AsnReal*>(value)); break;
        case Kind::Octs: {
            const auto& text = *static_cast<const AsnOcts*>(value);
            reflection->SetString(&to, row, textOf(text.octs, text.octetLen));
            break;
        }
        case Kind::Bits: {
            auto* bits = static_cast<pb::AsnBits*>(reflection->MutableMessage(&to, row));
            bits->set_bitlen(static_cast<const AsnBits*>(value)->bitLen);
            bits->set_bits(bitsOf(*static_cast<const AsnBits*>(value)));
            break;
        }
        case Kind::Sequence: fill(typeOf(field.type), value, *reflection->MutableMessage(&to, row)); break;
        case Kind::SetOf:
            for (const AsnListNode* node = static_cast<const AsnList*>(value)->first; node; node = node->next) {
                fill(typeOf(typeOf(field.type).element), node->data, *reflection->AddMessage(&to, row));
            }
            break;
        case Kind::Choice: fillChoice(typeOf(field.type), *static_cast<const ChoiceRecord*>(value), type, to); break;
        }
    }
}

bool sameChoice(const Type& choice, const ChoiceRecord& record, const Type& holder, const PbMessage& from) {
    const FieldDescriptor* row = alternativeField(from, holder, record);
    if (!from.GetReflection()->HasField(from, row)) return false;
    const TypeId inner = alternativeOf(choice, record.choiceId)->type;
    return same(typeOf(inner), record.slot, from.GetReflection()->GetMessage(from, row));
}

bool sameList(const Type& type, const AsnList& list, const PbMessage& from, const FieldDescriptor* row) {
    const auto* reflection = from.GetReflection();
    if (reflection->FieldSize(from, row) != list.count) return false;
    const AsnListNode* node = list.first;
    for (int i = 0; i < list.count; ++i, node = node->next) {
        if (!same(typeOf(type.element), node->data, reflection->GetRepeatedMessage(from, row, i))) return false;
    }
    return true;
}

bool sameField(const Type& type, const Field& field, const void* value, const PbMessage& from,
               const FieldDescriptor* row) {
    const auto* reflection = from.GetReflection();
    if (field.kind == Kind::Choice)
        return sameChoice(typeOf(field.type), *static_cast<const ChoiceRecord*>(value), type, from);
    if (field.kind == Kind::SetOf) return sameList(typeOf(field.type), *static_cast<const AsnList*>(value), from, row);
    if (row->has_presence() && reflection->HasField(from, row) != (value != nullptr)) return false;
    if (!value) return true;
    switch (field.kind) {
    case Kind::Int: return reflection->GetInt32(from, row) == *static_cast<const AsnInt*>(value);
    case Kind::Bool: return reflection->GetBool(from, row) == (*static_cast<const AsnBool*>(value) != 0);
    case Kind::Real: return reflection->GetDouble(from, row) == *static_cast<const AsnReal*>(value);
    case Kind::Octs: {
        const auto& text = *static_cast<const AsnOcts*>(value);
        return reflection->GetString(from, row) == textOf(text.octs, text.octetLen);
    }
    case Kind::Bits: {
        const auto& bits = static_cast<const pb::AsnBits&>(reflection->GetMessage(from, row));
        return bits.bitlen() == static_cast<const AsnBits*>(value)->bitLen &&
               bits.bits() == bitsOf(*static_cast<const AsnBits*>(value));
    }
    default: return same(typeOf(field.type), value, reflection->GetMessage(from, row));
    }
}

bool same(const Type& type, const void* record, const PbMessage& from) {
    if (type.shape == Shape::Choice) return sameChoice(type, *static_cast<const ChoiceRecord*>(record), type, from);
    for (std::size_t i = 0; i < type.fields.size(); ++i) {
        const FieldDescriptor* row = from.GetDescriptor()->FindFieldByNumber(static_cast<int>(i + 1));
        if (!sameField(type, type.fields[i], valueOf(record, type.fields[i]), from, row)) return false;
    }
    return true;
}

template <typename Envelope> void addMessage(const Message& message) {
    TreeMemory memory;
    const void* tree = envelopeOf(message, memory);
    const Type& type = typeOf(envelopes[message.channel]);
    auto* sent = new Envelope; // for the encode loop
    fill(type, tree, *sent);
    const std::string octets = sent->SerializeAsString();
    Envelope received;
    if (!received.ParseFromString(octets) || !same(type, tree, received))
        stop(std::string(who) + " loses " + message.name);

    add("decode", who, message.name, [octets](benchmark::State& state) {
        for (auto _ : state) {
            arena().Reset();
            auto* envelope = Arena::CreateMessage<Envelope>(&arena());
            benchmark::DoNotOptimize(envelope->ParseFromArray(octets.data(), static_cast<int>(octets.size())));
        }
        setOctets(state, octets.size());
    });
    add("encode", who, message.name, [sent](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(sent->SerializeToArray(buffer, sizeof buffer));
    });
}

void addAll(const Traffic& traffic) {
    for (const Message& message : traffic.seven) {
        switch (message.channel) {
        case ZYN_TRANS_REQUEST: addMessage<pb::ZynTransReq>(message); break;
        case ZYN_TRANS_REPLY: addMessage<pb::ZynTransRep>(message); break;
        case ZYN_QUERY_REPLY: addMessage<pb::ZynQueryRep>(message); break;
        case ZYN_QUERY_REQUEST: stop(message.name + ": the schema has no such message");
        }
    }
}

const Enlist enlist({who, addAll});

} // namespace
} // namespace zyn::bench
