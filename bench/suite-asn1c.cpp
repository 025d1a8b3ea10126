// What a general ASN.1 compiler makes of the same modules: octets to its structures, which are freed, and back.
#include <cstdlib>

#include "bench/suite.h"
#include "records/members.h"

extern "C" {
#include <BIT_STRING.h>
#include <BOOLEAN.h>
#include <OCTET_STRING.h>
#include <asn_SET_OF.h>
#include <asn_application.h>
#include <constr_CHOICE.h>

extern asn_TYPE_descriptor_t asn_DEF_ZynTransReq;
extern asn_TYPE_descriptor_t asn_DEF_ZynQueryReq;
extern asn_TYPE_descriptor_t asn_DEF_ZynTransRep;
extern asn_TYPE_descriptor_t asn_DEF_ZynQueryRep;
}

namespace zyn::bench {
namespace {

constexpr const char* who = "asn1c";

uint8_t buffer[65536];

asn_TYPE_descriptor_t& descriptorOf(ZynChannel channel) {
    switch (channel) {
    case ZYN_TRANS_REQUEST: return asn_DEF_ZynTransReq;
    case ZYN_QUERY_REQUEST: return asn_DEF_ZynQueryReq;
    case ZYN_TRANS_REPLY: return asn_DEF_ZynTransRep;
    case ZYN_QUERY_REPLY: break;
    }
    return asn_DEF_ZynQueryRep;
}

bool sameOctets(const uint8_t* a, std::size_t sizeA, const uint8_t* b, std::size_t sizeB) {
    return sizeA == sizeB && std::memcmp(a, b, sizeA) == 0;
}

// Compares a value of ours with the peer's structure, of which descriptor knows the members, in the order of the
// module.
bool same(TypeId id, const void* ours, const asn_TYPE_descriptor_t& descriptor, const void* theirs);

const void* memberOf(const asn_TYPE_member_t& row, const void* structure) {
    const void* member = static_cast<const char*>(structure) + row.memb_offset;
    return (row.flags & ATF_POINTER) ? *static_cast<void* const*>(member) : member;
}

bool sameSequence(const Type& type, const void* ours, const asn_TYPE_descriptor_t& descriptor, const void* theirs) {
    if (static_cast<std::size_t>(descriptor.elements_count) != type.fields.size()) return false;
    for (std::size_t i = 0; i < type.fields.size(); ++i) {
        const void* value = valueOf(ours, type.fields[i]);
        const void* other = memberOf(descriptor.elements[i], theirs);
        if (!value || !other ? value != other : !same(type.fields[i].type, value, *descriptor.elements[i].type, other))
            return false;
    }
    return true;
}

bool sameChoice(const Type& type, const ChoiceRecord& ours, const asn_TYPE_descriptor_t& descriptor,
                const void* theirs) {
    const auto* specifics = static_cast<const asn_CHOICE_specifics_t*>(descriptor.specifics);
    int present; // 1 for the first alternative
    std::memcpy(&present, static_cast<const char*>(theirs) + specifics->pres_offset, sizeof present);
    if (present < 1 || present > descriptor.elements_count) return false;
    const Alternative& row = type.alternatives[static_cast<std::size_t>(present - 1)];
    const asn_TYPE_member_t& member = descriptor.elements[present - 1];
    if (row.number != ours.choiceId) return false;
    return same(row.type, row.kind == Kind::Int ? &ours.number : ours.slot, *member.type, memberOf(member, theirs));
}

bool sameList(const Type& type, const AsnList& ours, const asn_TYPE_descriptor_t& descriptor, const void* theirs) {
    using Set = A_SET_OF(void);
    const auto& set = *static_cast<const Set*>(theirs);
    if (set.count != ours.count) return false;
    const AsnListNode* node = ours.first;
    for (int i = 0; i < set.count; ++i, node = node->next) {
        if (!same(type.element, node->data, *descriptor.elements[0].type, set.array[i])) return false;
    }
    return true;
}

bool same(TypeId id, const void* ours, const asn_TYPE_descriptor_t& descriptor, const void* theirs) {
    const Type& type = typeOf(id);
    switch (id) {
    case TypeId::AsnInt:
    case TypeId::AsnEnum: return *static_cast<const AsnInt*>(ours) == *static_cast<const long*>(theirs);
    case TypeId::AsnBool: return *static_cast<const AsnBool*>(ours) == (*static_cast<const BOOLEAN_t*>(theirs) != 0);
    case TypeId::AsnReal: return *static_cast<const AsnReal*>(ours) == *static_cast<const double*>(theirs);
    case TypeId::AsnOcts: {
        const auto& text = *static_cast<const AsnOcts*>(ours);
        const auto& other = *static_cast<const OCTET_STRING_t*>(theirs);
        return sameOctets(text.octs, text.octetLen, other.buf, static_cast<std::size_t>(other.size));
    }
    case TypeId::AsnBits: {
        const auto& bits = *static_cast<const AsnBits*>(ours);
        const auto& other = *static_cast<const BIT_STRING_t*>(theirs);
        return bits.bitLen == other.size * 8 - other.bits_unused &&
               std::memcmp(bits.bits, other.buf, static_cast<std::size_t>(other.size)) == 0;
    }
    default: break;
    }
    switch (type.shape) {
    case Shape::SetOf: return sameList(type, *static_cast<const AsnList*>(ours), descriptor, theirs);
    case Shape::Choice: return sameChoice(type, *static_cast<const ChoiceRecord*>(ours), descriptor, theirs);
    default: return sameSequence(type, ours, descriptor, theirs);
    }
}

void* decoded(const Message& message) {
    void* structure = nullptr;
    ber_decode(nullptr, &descriptorOf(message.channel), &structure, message.octets.data(), message.octets.size());
    return structure;
}

void prove(const Message& message, const void* tree) {
    asn_TYPE_descriptor_t& descriptor = descriptorOf(message.channel);
    void* structure = decoded(message);
    if (!structure || !same(envelopes[message.channel], tree, descriptor, structure)) {
        stop(std::string(who) + " does not decode " + message.name);
    }
    // It writes DER: sorted lists, and a REAL with an odd mantissa. What counts is what the octets mean.
    const asn_enc_rval_t size = der_encode_to_buffer(&descriptor, structure, buffer, sizeof buffer);
    ASN_STRUCT_FREE(descriptor, structure);
    onChannel(message.channel, [&]<typename Points>(Points) {
        typename Points::Envelope envelope;
        if (size.encoded <= 0 || Points::decode(buffer, static_cast<uint32_t>(size.encoded), &envelope) != 0 ||
            !sameTree(envelopes[message.channel], tree, &envelope, ListOrder::any)) {
            stop(std::string(who) + " does not encode " + message.name);
        }
    });
}

void addDecode(const char* operation, const Message& message) {
    add(operation, who, message.name, [&message](benchmark::State& state) {
        asn_TYPE_descriptor_t& descriptor = descriptorOf(message.channel);
        for (auto _ : state) {
            void* structure = decoded(message);
            benchmark::DoNotOptimize(structure);
            ASN_STRUCT_FREE(descriptor, structure);
        }
        setOctets(state, message.octets.size());
    });
}

void addAll(const Traffic& traffic) {
    for (const Message& message : traffic.seven) {
        TreeMemory memory;
        const void* tree = envelopeOf(message, memory);
        prove(message, tree);
        for (const Message& form : traffic.forms) {
            if (form.name.starts_with(message.name + "/")) prove(form, tree);
        }
        addDecode("decode", message);
        add("encode", who, message.name, [&message](benchmark::State& state) {
            asn_TYPE_descriptor_t& descriptor = descriptorOf(message.channel);
            void* structure = decoded(message);
            for (auto _ : state)
                benchmark::DoNotOptimize(der_encode_to_buffer(&descriptor, structure, buffer, sizeof buffer));
            ASN_STRUCT_FREE(descriptor, structure);
        });
    }
    for (const Message& form : traffic.forms) addDecode("form", form);
}

const Enlist enlist({who, addAll});

} // namespace
} // namespace zyn::bench
