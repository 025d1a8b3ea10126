// The protocol as the compiler sees it: what the parser fills in and the resolver completes.
#pragma once

#include <string>
#include <vector>

namespace zyn::schema {

enum class Kind { Integer, Enumerated, Boolean, Real, OctetString, BitString, Sequence, SetOf, Choice };

// What the comments at a type or member say. Lines are joined; a '\n' parts two paragraphs.
struct Remarks {
    std::string above;
    std::string behind; // on the same line
};

struct Type;

// The place where a type is used. The resolver sets kind and type; type is null for what ASN.1 has built in.
struct TypeUse {
    std::string name; // as the schema writes it
    int line = 0;
    Kind kind = Kind::Integer;
    const Type* type = nullptr;
};

struct Tagging {
    enum class Form { None, Implicit, Explicit } form = Form::None;
    unsigned number = 0; // of a context-specific tag
};

// A field of a SEQUENCE or an alternative of a CHOICE.
struct Member {
    std::string name;
    int line = 0;
    Tagging tag;
    TypeUse use;
    bool optional = false;
    Remarks remarks;
};

struct Type {
    std::string name;
    int line = 0;
    Kind kind = Kind::Sequence;  // Enumerated for the name of an ENUMERATED without values
    std::vector<Member> members; // of a Sequence or a Choice
    TypeUse element;             // of a SetOf
    bool message = false;        // travels on its own, with outer tag and length
    Remarks remarks;
};

struct Import {
    std::string name;
    std::string module;
    int line = 0;
};

struct Module {
    std::string name;
    std::string file;
    int line = 0;
    std::string remarks;
    std::string ahead; // the text ahead of its name, all comment, as it is written
    std::string body;  // the text of its types, with all comments, as it is written
    std::vector<Import> imports;
    std::vector<Type> types;
};

// All modules, sorted by name. Types point at each other, so a schema is moved, never copied.
struct Schema {
    Schema() = default;
    Schema(Schema&&) = default;
    Schema& operator=(Schema&&) = default;

    std::vector<Module> modules;
};

// isRecord tells the kinds that become a structure or a list of their own.
constexpr bool isRecord(Kind kind) { return kind >= Kind::Sequence; }
constexpr bool isString(Kind kind) { return kind == Kind::OctetString || kind == Kind::BitString; }

} // namespace zyn::schema
