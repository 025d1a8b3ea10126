#include "tests/records/model.h"

#include <stdexcept>

#include "tests/records/codes.h"

namespace zyn::test {
namespace {

struct Fault {
    int code;
    const char* message;
};

class Walk {
public:
    explicit Walk(const Octets& all) : octets(all) {}

    std::size_t at = 0;

    Octets content(const Type& type, AsnTag tag, uint32_t length) {
        switch (type.shape) {
        case Shape::Sequence: return sequence(type, length);
        case Shape::SetOf: return setOf(type, length);
        case Shape::Choice: return choice(type, tag, length);
        case Shape::Primitive: break;
        }
        return primitive(type.id, tag, length);
    }

private:
    [[noreturn]] static void fail(const Type& type, const std::string& place, const char* message = "") {
        throw Fault{listedCodes().at(type.name).codes.at(place), message};
    }

    uint8_t next(int code, const char* message) {
        if (at == octets.size()) throw Fault{code, message};
        return octets[at++];
    }

    AsnTag readTag() {
        constexpr const char* ended = "BDecTag: ERROR - decoded past the end of data\n";
        AsnTag tag = AsnTag{next(-26, ended)} << 24;
        if ((tag & 0x1F000000) != 0x1F000000) return tag;
        tag |= AsnTag{next(-26, ended)} << 16;
        if (tag & 0x00800000) tag |= AsnTag{next(-26, ended)} << 8;
        return tag;
    }

    uint32_t readLength() {
        const uint8_t first = next(-13, "BDecLen: ERROR - decoded past end of data\n");
        if (first < 0x80) return first;
        if (first == 0x80) return indefinite;
        uint32_t length = 0;
        for (int i = first & 0x7F; i > 0; --i)
            length = length << 8 | next(-15, "BDecLen: ERROR - decoded past end of data\n");
        return length;
    }

    void closeIndefinite() {
        constexpr const char* message = "BDecEoc: ERROR - non zero byte in EOC or end of data reached\n";
        if (next(-16, message) != 0 || next(-16, message) != 0) throw Fault{-16, message};
    }

    // True: the tag opened an end-of-contents marker, which is now read.
    bool closedBy(AsnTag tag, uint32_t length) {
        constexpr const char* message = "ERROR - second octet of EOC not zero\n";
        if (tag != 0 || length != indefinite) return false;
        if (next(-28, message) != 0) throw Fault{-28, message};
        return true;
    }

    Octets primitive(TypeId type, AsnTag tag, uint32_t length) {
        if (tag & constructedBit) return pieces(length);
        if (type == TypeId::AsnInt || type == TypeId::AsnEnum) {
            if (length == 0) throw Fault{-41, "BDecAsnIntContent: ERROR - INTEGER without content\n"};
            if (length > 4) throw Fault{-7, "BDecAsnIntContent: ERROR - integer to big to decode.\n"};
        }
        if (type == TypeId::AsnBool && length != 1) {
            throw Fault{-5, "BDecAsnBoolContent: ERROR - BOOLEAN length must be 1\n"};
        }
        if (type == TypeId::AsnBits && length == 0) {
            throw Fault{-42, "BDecAsnBitsContent: ERROR - BIT STRING without content\n"};
        }
        if (length > octets.size() - at) throw std::logic_error("values are whole in what the model is asked");
        const auto start = octets.begin() + static_cast<std::ptrdiff_t>(at);
        at += length;
        Octets value(start, start + length);
        // Another record's value may stand here under the same tag.
        if (type == TypeId::AsnInt || type == TypeId::AsnEnum) {
            while (value.size() > 1 && value[0] == (value[1] & 0x80 ? 0xFF : 0)) value.erase(value.begin());
        } else if (type == TypeId::AsnBool) {
            value[0] = value[0] ? 0xFF : 0;
        } else if (type == TypeId::AsnBits && (value[0] > 7 || value[0] > 8 * (length - 1))) {
            throw Fault{-43, "BDecAsnBitsContent: ERROR - impossible count of unused bits\n"};
        }
        return value;
    }

    // A constructed OCTET STRING of primitive pieces; others are not asked for.
    Octets pieces(uint32_t length) {
        Octets all;
        const std::size_t start = at;
        while (length == indefinite || at - start < length) {
            const AsnTag tag = readTag();
            if (closedBy(tag, length)) break;
            const uint32_t piece = readLength();
            if (tag != 0x04000000) {
                throw Fault{-19, "BDecConsOctetString: ERROR - decoded non-OCTET STRING tag inside a constructed "
                                 "OCTET STRING\n"};
            }
            append(all, primitive(TypeId::AsnOcts, tag, piece));
        }
        return all;
    }

    static bool matches(const Field& field, AsnTag tag) {
        if (field.kind == Kind::Octs || field.kind == Kind::Bits) return (tag & ~constructedBit) == field.tag;
        if (field.kind != Kind::Choice) return tag == field.tag;
        for (const Alternative& row : typeOf(field.type).alternatives) {
            if (tag == row.tag || (row.kind == Kind::Octs && tag == (row.tag | constructedBit))) return true;
        }
        return false;
    }

    void field(const Type& type, const Field& field, AsnTag tag, Octets& out) {
        const uint32_t length = readLength();
        if (field.kind == Kind::Choice) return append(out, choice(typeOf(field.type), tag, length));
        Octets value;
        if (field.wrapped) {
            if (readTag() != 0x02000000) fail(type, std::string("inner ") + field.name, "Unexpected Tag\n");
            const uint32_t inner = readLength();
            value = Writer().element(0x02000000, content(typeOf(field.type), 0x02000000, inner));
            if (length == indefinite) closeIndefinite();
        } else {
            value = content(typeOf(field.type), isString(field.kind) ? tag : 0, length);
        }
        append(out, Writer().element(field.tag, value));
    }

    Octets sequence(const Type& type, uint32_t length) {
        Octets out;
        const std::size_t start = at;
        if (type.fields.empty()) {
            if (length == indefinite) closeIndefinite();
            else if (length != 0) fail(type, "content", "Expected an empty SEQUENCE\n");
            return out;
        }
        const auto mayEndBehind = [&](std::size_t done) {
            for (std::size_t i = done; i < type.fields.size(); ++i) {
                if (!type.fields[i].optional) return false;
            }
            return true;
        };
        std::size_t done = 0; // fields that were matched or passed over
        for (;;) {
            if (done == type.fields.size()) {
                if (length == indefinite) closeIndefinite();
                else if (at - start != length) fail(type, "length");
                return out;
            }
            const bool mayEnd = mayEndBehind(done);
            if (mayEnd && length != indefinite && at - start == length) return out;
            const AsnTag tag = readTag();
            if (mayEnd && closedBy(tag, length)) return out;
            for (; done < type.fields.size() && !matches(type.fields[done], tag); ++done) {
                if (!type.fields[done].optional) fail(type, type.fields[done].name);
            }
            if (done == type.fields.size()) fail(type, "stray");
            field(type, type.fields[done], tag, out);
            ++done;
        }
    }

    Octets setOf(const Type& type, uint32_t length) {
        Octets out;
        const std::size_t start = at;
        while (length == indefinite || at - start < length) {
            const AsnTag tag = readTag();
            if (closedBy(tag, length)) break;
            if (tag != 0x30000000) fail(type, "element", "Unexpected Tag\n");
            const uint32_t inner = readLength();
            append(out, Writer().element(tag, content(typeOf(type.element), tag, inner)));
        }
        return out;
    }

    Octets choice(const Type& type, AsnTag tag, uint32_t length) {
        for (const Alternative& row : type.alternatives) {
            if (tag != row.tag && !(row.kind == Kind::Octs && tag == (row.tag | constructedBit))) continue;
            if (row.kind != Kind::Choice) {
                const AsnTag form = isString(row.kind) ? tag : 0;
                return Writer().element(row.tag, content(typeOf(row.type), form, length));
            }
            const AsnTag innerTag = readTag();
            const uint32_t inner = readLength();
            const Octets value = choice(typeOf(row.type), innerTag, inner);
            if (length == indefinite) closeIndefinite();
            return Writer().element(row.tag, value);
        }
        fail(type, "alternative", "ERROR - unexpected tag in CHOICE\n");
    }

    const Octets& octets;
};

} // namespace

Outcome modelOf(TypeId type, AsnTag tag, uint32_t length, const Octets& octets) {
    Walk walk(octets);
    try {
        Octets canonical = walk.content(typeOf(type), tag, length);
        return {0, "", std::move(canonical), walk.at};
    } catch (const Fault& fault) {
        return {fault.code, fault.message, {}, 0};
    }
}

} // namespace zyn::test
