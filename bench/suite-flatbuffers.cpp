// FlatBuffers: verify and read every member in place, and pack its own objects into a builder that is used again
// and again.
#include "bench/suite.h"
#include "records/members.h"
#include "zyn/zyn.h"
#include "zyn_generated.h"

namespace fb {

// What the generated fill uses: one member of a record tree into one of an object.
template <typename From, typename To> void put(const From* from, std::unique_ptr<To>& to) {
    if (!from) return;
    to = std::make_unique<To>();
    fill(*from, *to);
}

template <typename Value, typename Target> void put(const Value* from, flatbuffers::Optional<Target>& to) {
    if (from) to = static_cast<Target>(*from);
}

inline void put(const AsnOcts& from, std::string& to) {
    if (from.octs) to.assign(reinterpret_cast<const char*>(from.octs), from.octetLen);
}

inline void put(const ::AsnBits& from, std::unique_ptr<AsnBitsT>& to) {
    if (!from.bits) return;
    to = std::make_unique<AsnBitsT>();
    to->bitLen = from.bitLen;
    to->bits.assign(from.bits, from.bits + (static_cast<std::size_t>(from.bitLen) + 7) / 8);
}

template <typename Value, typename Target>
requires std::is_arithmetic_v<Target>
void put(Value from, Target& to) { to = static_cast<Target>(from); }

template <typename Element, typename ElementT>
void putList(const AsnList* from, std::vector<std::unique_ptr<ElementT>>& to) {
    for (const AsnListNode* node = from->first; node; node = node->next) {
        put(static_cast<const Element*>(node->data), to.emplace_back());
    }
}

template <typename ObjectT, typename From, typename Union> void fillUnion(const From& from, Union& to) {
    ObjectT object;
    fill(from, object);
    to.Set(std::move(object));
}

} // namespace fb

#include "zyn-flat.h"

namespace zyn::bench {
namespace {

constexpr const char* who = "flatbuffers";

template <typename T> constexpr bool isVector = false;
template <typename T> constexpr bool isVector<flatbuffers::Vector<T>> = true;

// Reads every member: numbers are added up, of a string its length and its first octet.
struct Reader {
    uint64_t whole = 0;
    double real = 0;

    void member(std::size_t, double value) { real += value; }
    template <typename Value>
    requires std::is_integral_v<Value>
    void member(std::size_t, Value value) { whole += static_cast<uint64_t>(value); }
    template <typename Value> void member(std::size_t index, flatbuffers::Optional<Value> value) {
        if (value) member(index, *value);
    }
    void member(std::size_t, const flatbuffers::String* text) {
        if (text) whole += text->size() + text->Data()[0];
    }
    void member(std::size_t, const fb::AsnBits* bits) {
        if (bits) whole += static_cast<uint64_t>(bits->bitLen()) + bits->bits()->size();
    }
    template <typename Record> void member(std::size_t index, const Record* record) {
        if (!record) return;
        if constexpr (isVector<Record>) {
            for (const auto* element : *record) member(index, element);
        } else {
            visit(*record, *this);
        }
    }
    template <typename Record> void alternative(std::size_t index, uint32_t, const Record* record) {
        member(index, record);
    }
};

// Compares every member with that of a record tree.
struct Comparer {
    const Type* type;
    const void* record;
    bool same = true;

    const void* ours(std::size_t index) const { return valueOf(record, type->fields[index]); }
    void expect(bool condition) { same = same && condition; }

    void member(std::size_t index, double value) { expect(*static_cast<const AsnReal*>(ours(index)) == value); }
    void member(std::size_t index, int32_t value) { expect(*static_cast<const AsnInt*>(ours(index)) == value); }
    void member(std::size_t index, bool value) { expect((*static_cast<const AsnBool*>(ours(index)) != 0) == value); }
    template <typename Value> void member(std::size_t index, flatbuffers::Optional<Value> value) {
        expect((ours(index) != nullptr) == value.has_value());
        if (value && same) member(index, *value);
    }
    void member(std::size_t index, const flatbuffers::String* text) {
        const auto* octets = static_cast<const AsnOcts*>(ours(index));
        expect((octets != nullptr) == (text != nullptr));
        if (text && same)
            expect(octets->octetLen == text->size() && std::memcmp(octets->octs, text->Data(), text->size()) == 0);
    }
    void member(std::size_t index, const fb::AsnBits* bits) {
        const auto* value = static_cast<const AsnBits*>(ours(index));
        expect((value != nullptr) == (bits != nullptr));
        if (!bits || !same) return;
        const auto octets = (static_cast<std::size_t>(value->bitLen) + 7) / 8;
        expect(value->bitLen == bits->bitLen() && octets == bits->bits()->size() &&
               std::memcmp(value->bits, bits->bits()->data(), octets) == 0);
    }
    template <typename Record> void member(std::size_t index, const Record* theirs) {
        const void* value = ours(index);
        expect((value != nullptr) == (theirs != nullptr));
        if (!theirs || !same) return;
        const Type& inner = typeOf(type->fields[index].type);
        if constexpr (isVector<Record>) {
            const auto& list = *static_cast<const AsnList*>(value);
            expect(static_cast<std::size_t>(list.count) == theirs->size());
            const AsnListNode* node = list.first;
            for (flatbuffers::uoffset_t i = 0; same && i < theirs->size(); ++i, node = node->next) {
                compare(typeOf(inner.element), node->data, *theirs->Get(i));
            }
        } else {
            compare(inner, value, *theirs);
        }
    }
    template <typename Record> void alternative(std::size_t index, uint32_t number, const Record* theirs) {
        const bool root = type->shape == Shape::Choice;
        const Type& choice = root ? *type : typeOf(type->fields[index].type);
        const auto& value = *static_cast<const ChoiceRecord*>(root ? record : ours(index));
        expect(value.choiceId == number && theirs);
        if (same) compare(typeOf(alternativeOf(choice, number)->type), value.slot, *theirs);
    }
    template <typename Record> void compare(const Type& inner, const void* value, const Record& theirs) {
        Comparer comparer{&inner, value};
        visit(theirs, comparer);
        expect(comparer.same);
    }
};

template <typename Root> const Root* verified(const uint8_t* octets, std::size_t size) {
    flatbuffers::Verifier verifier(octets, size);
    return verifier.VerifyBuffer<Root>(nullptr) ? flatbuffers::GetRoot<Root>(octets) : nullptr;
}

template <typename Root, typename Envelope> void addMessage(const Message& message) {
    TreeMemory memory;
    const void* tree = envelopeOf(message, memory);
    auto* object = new typename Root::NativeTableType; // for the encode loop
    fill(*static_cast<const Envelope*>(tree), *object);
    flatbuffers::FlatBufferBuilder builder;
    builder.Finish(Root::Pack(builder, object));
    const std::vector<uint8_t> octets(builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize());

    Comparer comparer{&typeOf(envelopes[message.channel]), tree};
    const Root* root = verified<Root>(octets.data(), octets.size());
    if (root) visit(*root, comparer);
    if (!root || !comparer.same) stop(std::string(who) + " loses " + message.name);

    add("decode", who, message.name, [octets](benchmark::State& state) {
        for (auto _ : state) {
            Reader reader;
            if (const Root* envelope = verified<Root>(octets.data(), octets.size())) visit(*envelope, reader);
            benchmark::DoNotOptimize(reader);
        }
        setOctets(state, octets.size());
    });
    add("encode", who, message.name, [object](benchmark::State& state) {
        flatbuffers::FlatBufferBuilder packer;
        for (auto _ : state) {
            packer.Clear();
            packer.Finish(Root::Pack(packer, object));
            benchmark::DoNotOptimize(packer.GetBufferPointer());
        }
    });
}

void addAll(const Traffic& traffic) {
    for (const Message& message : traffic.seven) {
        switch (message.channel) {
        case ZYN_TRANS_REQUEST: addMessage<fb::ZynTransReq, ZynTransReq>(message); break;
        case ZYN_TRANS_REPLY: addMessage<fb::ZynTransRep, ZynTransRep>(message); break;
        case ZYN_QUERY_REPLY: addMessage<fb::ZynQueryRep, ZynQueryRep>(message); break;
        case ZYN_QUERY_REQUEST: stop(message.name + ": the schema has no such message");
        }
    }
}

const Enlist enlist({who, addAll});

} // namespace
} // namespace zyn::bench
