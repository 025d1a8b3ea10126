// The rules by which records become text. What holds nothing that could be sent becomes null, so that a person sees it.
#include "json/write.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "json/text.h"

namespace zyn::json {
namespace {

// pretty: each key and element on a line of its own, and a blank behind colons.
template <bool pretty> class Writer {
public:
    Writer(Out& where, unsigned blanks) : out(where), indent(blanks) {}

    void value(const Plan& plan, const void* v) {
        switch (plan.kind) {
        case ZYN_KIND_INTEGER:
        case ZYN_KIND_ENUMERATED: return integer(*static_cast<const AsnInt*>(v));
        case ZYN_KIND_BOOLEAN: return literal(*static_cast<const AsnBool*>(v) ? "true" : "false");
        case ZYN_KIND_REAL: return real(*static_cast<const AsnReal*>(v));
        case ZYN_KIND_OCTET_STRING: return text(*static_cast<const AsnOcts*>(v));
        case ZYN_KIND_BIT_STRING: return bits(*static_cast<const AsnBits*>(v));
        case ZYN_KIND_SEQUENCE: return sequence(plan, v);
        case ZYN_KIND_SET_OF: return list(plan, *static_cast<const AsnList*>(v));
        case ZYN_KIND_CHOICE: return choice(plan, v);
        }
    }

    // A place where a value is due and the pointer to it was never set. No list is an empty one, as encoders take it.
    void missing(const Plan& plan) { literal(plan.kind == ZYN_KIND_SET_OF ? "[]" : "null"); }

private:
    void literal(std::string_view characters) {
        out.need(characters.size());
        std::memcpy(out.at, characters.data(), characters.size());
        out.at += characters.size();
    }

    void newLine() {
        const std::size_t blanks = std::size_t{indent} * level;
        out.need(blanks + 1);
        out.put('\n');
        std::memset(out.at, ' ', blanks);
        out.at += blanks;
    }

    void key(const Member& member) {
        const char* from = member.key;
        std::size_t length = member.keyLength;
        if constexpr (pretty) {
            out.need(1);
            out.put(*from++);
            --length;
            newLine();
        }
        out.need(length + keyPiece);
        std::memcpy(out.at, from, pretty ? length : keyPiece);
        if (!pretty && length > keyPiece) std::memcpy(out.at + keyPiece, from + keyPiece, length - keyPiece);
        out.at += length;
        if constexpr (pretty) out.put(' ');
    }

    // Every key and every element starts with a comma; the first one's place is where the bracket goes.
    void close(std::size_t start, char opening, char closing) {
        const bool empty = out.size() == start;
        if (pretty && !empty) newLine();
        out.need(2);
        if (empty) out.put(opening);
        else out[start] = opening;
        out.put(closing);
    }

    void sequence(const Plan& plan, const void* record) {
        const std::size_t start = out.size();
        ++level;
        for (const Member& member : plan.members) {
            const void* v = static_cast<const char*>(record) + member.offset;
            if (member.pointer) v = pointerIn(v);
            if (member.optional && isAbsent(member, v)) continue;
            key(member);
            if (v) value(*member.plan, v);
            else missing(*member.plan);
        }
        --level;
        close(start, '{', '}');
    }

    static bool isAbsent(const Member& member, const void* v) {
        if (member.pointer) return !v;
        if (member.plan->kind == ZYN_KIND_OCTET_STRING) return !static_cast<const AsnOcts*>(v)->octs;
        return member.plan->kind == ZYN_KIND_BIT_STRING && !static_cast<const AsnBits*>(v)->bits;
    }

    void list(const Plan& plan, const AsnList& elements) {
        const std::size_t start = out.size();
        ++level;
        for (const AsnListNode* node = elements.count > 0 ? elements.first : nullptr; node; node = node->next) {
            out.need(1);
            out.put(',');
            if constexpr (pretty) newLine();
            if (node->data) value(*plan.element, node->data);
            else missing(*plan.element);
        }
        --level;
        close(start, '[', ']');
    }

    void choice(const Plan& plan, const void* record) {
        const ZynAlternative* alternative = ZynAlternativeByNumber(plan.type, *static_cast<const uint32_t*>(record));
        if (!alternative) return literal("null");
        const Member& member = plan.members[static_cast<std::size_t>(alternative - plan.type->alternatives)];
        const std::size_t start = out.size();
        ++level;
        key(member);
        const void* v = static_cast<const char*>(record) + member.offset;
        if (member.pointer) v = pointerIn(v);
        const bool empty = member.plan->kind == ZYN_KIND_SEQUENCE && member.plan->members.empty();
        if (v) value(*member.plan, v);
        else if (empty) literal("{}"); // encoders do not look at the slot of a record without fields
        else missing(*member.plan);
        --level;
        close(start, '{', '}');
    }

    void integer(AsnInt number) {
        out.need(16);
        out.at = std::to_chars(out.at, out.at + 16, number).ptr;
    }

    void real(AsnReal number) {
        if (std::isnan(number)) return literal("\"NaN\"");
        if (std::isinf(number)) return literal(number < 0 ? "\"-Infinity\"" : "\"Infinity\"");
        out.need(32);
        out.at = writeReal(out.at, number);
    }

    void text(const AsnOcts& string) {
        const std::size_t count = string.octetLen;
        if (!string.octs && count > 0) return literal("null");
        out.need(2 * count + 2); // each octet with an escape, and the quotes
        out.put('"');
        if (copyPlain(out.at, string.octs, count)) {
            out.at += count;
            out.put('"');
        } else if (isText(string.octs, count)) {
            for (std::size_t i = 0; i < count; ++i) {
                const auto c = static_cast<char>(string.octs[i]);
                if (c == '"' || c == '\\') out.put('\\');
                out.put(c);
            }
            out.put('"');
        } else {
            --out.at;
            hex(string.octs, count);
        }
    }

    void hex(const uint8_t* octets, std::size_t count) {
        constexpr char digits[] = "0123456789abcdef";
        literal(pretty ? "{\"hex\": \"" : "{\"hex\":\"");
        out.need(2 * count);
        for (std::size_t i = 0; i < count; ++i) {
            out.put(digits[octets[i] >> 4]);
            out.put(digits[octets[i] & 0x0F]);
        }
        literal("\"}");
    }

    // The digits of the bits from one to another, the highest bit of the first octet being number 0.
    void digitsOf(const uint8_t* octets, std::size_t from, std::size_t to) {
        out.need(to - from);
        for (std::size_t i = from; i < to; ++i) out.put(static_cast<char>('0' + (octets[i / 8] >> (7 - i % 8) & 1)));
    }

    void bits(const AsnBits& string) {
        if (string.bitLen < 0 || (!string.bits && string.bitLen > 0)) return literal("null");
        const auto count = static_cast<std::size_t>(string.bitLen);
        literal(pretty ? "{\"bits\": \"" : "{\"bits\":\"");
        digitsOf(string.bits, 0, count);
        // What stands behind the last bit travels as it is.
        if (count % 8 != 0 && (string.bits[count / 8] & 0xFF >> count % 8) != 0) {
            literal(pretty ? "\", \"spare\": \"" : "\",\"spare\":\"");
            digitsOf(string.bits, count, (count + 7) / 8 * 8);
        }
        literal("\"}");
    }

    Out& out;
    unsigned indent;
    unsigned level = 0;
};

template <bool pretty> void writeAs(Out& out, const Plan& plan, const void* value, unsigned indent) {
    Writer<pretty> writer(out, indent);
    if (value) writer.value(plan, value);
    else writer.missing(plan);
}

} // namespace

void write(Out& out, const Plan& plan, const void* value, unsigned indent) {
    if (indent == 0) writeAs<false>(out, plan, value, indent);
    else writeAs<true>(out, plan, value, indent);
}

} // namespace zyn::json
