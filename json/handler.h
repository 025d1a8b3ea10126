// What the parser calls: each event puts one value into its place, or refuses it.
//
// The parser only goes deeper where a value of the schema is open, so that its recursion is as deep as the schema's
// types and no text can make it deeper.
#pragma once

#include <charconv>
#include <limits>

#include <rapidjson/reader.h>

#include "json/read.h"
#include "json/text.h"

namespace zyn::json {

// UTF-8, of which runs without escapes are passed over at once.
struct Characters : rapidjson::UTF8<> {};
using Stream = rapidjson::GenericInsituStringStream<Characters>;

// How far a text is UTF-8, and whether it has escapes at all.
struct TextFacts {
    std::size_t utf8;
    bool escapes;
};

class Handler : public rapidjson::BaseReaderHandler<Characters, Handler> {
public:
    Handler(Reading& memory, const Plan& root, std::string_view source, TextFacts sourceFacts, Stream& where)
        : reading(memory), text(source), facts(sourceFacts), stream(where), next(memory.frames.data()), target(&root) {
        value = static_cast<char*>(reading.arena.take(root.type->size));
        rootValue = value;
    }

    char* rootValue;

    bool Null() { return refuse(stream.Tell() - 4, "null"); }

    bool Bool(bool b) {
        if (!isDue(ZYN_KIND_BOOLEAN)) return refuse(stream.Tell() - (b ? 4 : 5), b ? "true" : "false");
        *static_cast<AsnBool*>(open()) = b;
        return true;
    }

    bool RawNumber(const char* digits, rapidjson::SizeType length, bool) {
        if (isDue(ZYN_KIND_INTEGER) || isDue(ZYN_KIND_ENUMERATED)) return integer(digits, digits + length);
        if (isDue(ZYN_KIND_REAL)) return real(digits, digits + length);
        return refuse(offsetOf(digits), "a number");
    }

    bool String(const char* characters, rapidjson::SizeType length, bool) {
        if (!isWhole(characters, length)) return false;
        const std::span<char> string(reading.copy.get() + offsetOf(characters), length);
        if (!target) {
            parts[top().at] = string;
            return true;
        }
        if (target->kind == ZYN_KIND_OCTET_STRING) {
            *static_cast<AsnOcts*>(open()) = {length, reinterpret_cast<uint8_t*>(string.data())};
            return true;
        }
        if (target->kind == ZYN_KIND_REAL) return namedReal({characters, length});
        return refuse(offsetOf(characters) - 1, "a string");
    }

    bool StartObject() {
        if (!target) return refuse(stream.Tell() - 1, "an object");
        switch (target->kind) {
        case ZYN_KIND_SEQUENCE:
        case ZYN_KIND_CHOICE: return push();
        case ZYN_KIND_OCTET_STRING:
        case ZYN_KIND_BIT_STRING: parts[0] = parts[1] = {}; return push();
        default: return refuse(stream.Tell() - 1, "an object");
        }
    }

    bool Key(const char* characters, rapidjson::SizeType length, bool) {
        if (!isWhole(characters, length)) return false;
        const std::string_view name(characters, length);
        Frame& frame = top();
        if (frame.plan->kind == ZYN_KIND_SEQUENCE) return field(frame, name);
        if (frame.plan->kind == ZYN_KIND_CHOICE) return alternative(frame, name);
        return partKey(frame, name);
    }

    bool EndObject(rapidjson::SizeType) {
        Frame& frame = top();
        bool good = true;
        switch (frame.plan->kind) {
        case ZYN_KIND_SEQUENCE: good = allThere(frame); break;
        case ZYN_KIND_CHOICE: good = frame.at != none || failAtEnd("no alternative is there"); break;
        case ZYN_KIND_OCTET_STRING: good = octets(*reinterpret_cast<AsnOcts*>(frame.value)); break;
        default: good = bits(*reinterpret_cast<AsnBits*>(frame.value)); break;
        }
        return good && pop();
    }

    bool StartArray() {
        if (!isDue(ZYN_KIND_SET_OF)) return refuse(stream.Tell() - 1, "an array");
        auto* list = static_cast<AsnList*>(open());
        list->dataSize = sizeof(void*);
        *next++ = {target, reinterpret_cast<char*>(list), nullptr, none};
        target = target->element;
        return true;
    }

    bool EndArray(rapidjson::SizeType) { return pop(); }

    // Where a place of the copy lies in the text.
    std::size_t offsetOf(const char* place) const { return static_cast<std::size_t>(place - reading.copy.get()); }

    std::size_t keyOffset(std::string_view name) const { return offsetOf(name.data()) - 1; }

    // Each of these gives false, for the parser to stop.
    bool fail(std::size_t offset, std::string sentence);
    bool refuse(std::size_t offset, const char* found);
    bool refuseHugeNumber(std::size_t offset);

private:
    bool isOpen() const { return next != reading.frames.data(); }
    Frame& top() const { return next[-1]; }
    bool isDue(ZynKind kind) const { return target && target->kind == kind; }

    // The memory of the value that starts now.
    void* open() {
        if (isOpen() && top().plan->kind == ZYN_KIND_SET_OF) return addElement();
        if (!pointer) return value;
        void* const pointee = reading.arena.take(target->type->size);
        std::memcpy(value, &pointee, sizeof pointee);
        return pointee;
    }

    void* addElement() {
        Frame& frame = top();
        auto* list = reinterpret_cast<AsnList*>(frame.value);
        auto* node = static_cast<AsnListNode*>(reading.arena.take(sizeof(AsnListNode)));
        node->prev = list->last;
        (list->last ? list->last->next : list->first) = node;
        list->last = list->curr = node;
        ++list->count;
        ++frame.at; // from none to 0
        return node->data = reading.arena.take(target->type->size);
    }

    bool push() {
        auto* marks = static_cast<uint64_t*>(reading.arena.take(target->required.size() * sizeof(uint64_t)));
        char* const structure = static_cast<char*>(open());
        *next++ = {target, structure, marks, none};
        return true;
    }

    bool pop() {
        --next;
        // The next value, if one comes without a key, is the next element of a list.
        if (isOpen()) target = top().plan->element;
        return true;
    }

    void aim(const Frame& frame, const Member& member) {
        target = member.plan;
        value = frame.value + member.offset;
        pointer = member.pointer;
    }

    bool field(Frame& frame, std::string_view name) {
        const std::span<const Member> members = frame.plan->members;
        // Mostly the fields come in the order of the table.
        std::size_t index = frame.at + std::size_t{1};
        if (frame.at == none) index = 0;
        while (index < members.size() && !sameName(members[index].name(), name) && members[index].optional) ++index;
        if (index >= members.size() || !sameName(members[index].name(), name)) {
            const int found = memberByName(*frame.plan, name);
            if (found < 0) return unknownField(name);
            index = static_cast<std::size_t>(found);
        }
        frame.at = static_cast<uint32_t>(index);
        uint64_t& mark = frame.marks[index / 64];
        const uint64_t bit = uint64_t{1} << index % 64;
        if (mark & bit) return fail(keyOffset(name), "field " + quoted(name) + " stands twice");
        mark |= bit;
        aim(frame, members[index]);
        return true;
    }

    bool allThere(const Frame& frame) {
        const std::span<const uint64_t> required = frame.plan->required;
        for (std::size_t i = 0; i < required.size(); ++i) {
            if (required[i] & ~frame.marks[i]) return missingField();
        }
        return true;
    }

    // A string or key at characters is UTF-8, in the text and with its escapes resolved.
    bool isWhole(const char* characters, std::size_t length) {
        if (!facts.escapes && facts.utf8 == text.size()) [[likely]]
            return true;
        return isWholeExactly(characters, length);
    }

    bool alternative(Frame& frame, std::string_view name);
    bool partKey(Frame& frame, std::string_view name);
    bool integer(const char* digits, const char* end);
    bool real(const char* digits, const char* end);
    bool namedReal(std::string_view name);
    bool octets(AsnOcts& string);
    bool bits(AsnBits& string);
    bool readBits(std::span<const char> digits, uint8_t* to, std::size_t first);
    bool isWholeExactly(const char* characters, std::size_t length);
    bool unknownField(std::string_view name);
    bool missingField();
    bool failAtEnd(std::string sentence) { return fail(stream.Tell() - 1, std::move(sentence)); }
    std::string path() const;

    Reading& reading;
    std::string_view text;
    TextFacts facts;
    Stream& stream;

    Frame* next;              // behind the one opened last
    const Plan* target;       // type of the value that is due; null: a part of the value of a string
    char* value;              // where it goes
    bool pointer = false;     // it goes where the memory at value points
    std::span<char> parts[2]; // "hex", or "bits" and "spare", of the string that is open; where they stand in the copy
};

} // namespace zyn::json

// The parser asks for one character at a time. Reading and writing are done on one stream; until the first escape
// both stand at the same place, and a run of characters stays where it is.
template <>
struct rapidjson::Transcoder<zyn::json::Characters, zyn::json::Characters>
    : rapidjson::Transcoder<rapidjson::UTF8<>, rapidjson::UTF8<>> {
    using Transcoder<UTF8<>, UTF8<>>::Transcode;
    static bool Transcode(zyn::json::Stream& stream, zyn::json::Stream&) {
        stream.Put(stream.Take());
        if (stream.src_ != stream.dst_) return true;
        stream.src_ += zyn::json::plainEnd(stream.src_) - stream.src_;
        stream.dst_ = stream.src_;
        return true;
    }
};
