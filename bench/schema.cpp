// Writes the schemas of the formats that the codec is compared with, out of the field tables, for the types that
// the seven messages reach: zyn.proto, zyn.fbs, and zyn-flat.h, which fills FlatBuffers' objects from record trees
// and visits all members of a buffer in place. The one argument is the folder to write to.
#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "bench/message.h"
#include "records/members.h"

namespace zyn::bench {
namespace {

using Alternatives = std::vector<const Alternative*>;

// What the seven messages reach, inner types first.
struct Reach {
    std::vector<const Type*> order;
    std::set<TypeId> seen;
    std::set<std::pair<TypeId, uint16_t>> measured; // the alternatives that are sent
    std::vector<TypeId> roots;

    void add(TypeId id) {
        const Type& type = typeOf(id);
        if (!seen.insert(id).second) return;
        for (const Field& field : type.fields) add(field.type);
        for (const Alternative* alternative : alternativesOf(type)) add(alternative->type);
        if (type.shape == Shape::SetOf) add(type.element);
        if (type.shape != Shape::Primitive) order.push_back(&type);
    }

    Alternatives alternativesOf(const Type& type) const {
        Alternatives result;
        for (const Alternative& row : type.alternatives) {
            if (measured.contains({type.id, row.number})) result.push_back(&row);
        }
        return result;
    }

    bool isRoot(const Type& type) const { return std::find(roots.begin(), roots.end(), type.id) != roots.end(); }
};

Reach reachOfTheSeven() {
    TreeMemory memory;
    Reach reach;
    for (const Message& message : sevenMessages(memory)) {
        reach.measured.insert({choiceType(message.channel), static_cast<uint16_t>(message.choiceId)});
        const TypeId root = envelopes[message.channel];
        if (std::find(reach.roots.begin(), reach.roots.end(), root) == reach.roots.end()) reach.roots.push_back(root);
    }
    for (TypeId root : reach.roots) reach.add(root);
    return reach;
}

bool isScalar(Kind kind) { return kind == Kind::Int || kind == Kind::Bool || kind == Kind::Real; }

// Records of numbers that are always there: FlatBuffers has a form without a table for them.
bool isFlatStruct(const Type& type) {
    return type.shape == Shape::Sequence && !type.fields.empty() &&
           std::all_of(type.fields.begin(), type.fields.end(),
                       [](const Field& f) { return !f.optional && isScalar(f.kind); });
}

// Protocol buffers. Field n of a table has number n + 1; the alternatives of a CHOICE follow under their own
// numbers.
const char* protoType(const Field& field) {
    switch (field.kind) {
    case Kind::Int: return "int32";
    case Kind::Bool: return "bool";
    case Kind::Real: return "double";
    case Kind::Octs: return "bytes";
    default: return typeOf(field.type).name;
    }
}

void writeProtoChoice(std::ostream& out, const Reach& reach, const Type& choice, const char* name, std::size_t offset) {
    out << "  oneof " << name << " {\n";
    for (const Alternative* row : reach.alternativesOf(choice)) {
        out << "    " << typeOf(row->type).name << ' ' << row->name << " = " << offset + row->number << ";\n";
    }
    out << "  }\n";
}

void writeProto(std::ostream& out, const Reach& reach) {
    out << "syntax = \"proto3\";\npackage pb;\n\nmessage AsnBits {\n  int32 bitLen = 1;\n  bytes bits = 2;\n}\n";
    for (const Type* type : reach.order) {
        const bool inner = type->shape == Shape::Choice && !reach.isRoot(*type);
        if (inner || type->shape == Shape::SetOf) continue; // stands where it is held
        out << "\nmessage " << type->name << " {\n";
        for (std::size_t i = 0; i < type->fields.size(); ++i) {
            const Field& field = type->fields[i];
            if (field.kind == Kind::Choice) {
                writeProtoChoice(out, reach, typeOf(field.type), field.name, type->fields.size());
                continue;
            }
            out << "  ";
            if (field.kind == Kind::SetOf) out << "repeated " << typeOf(typeOf(field.type).element).name;
            else out << (field.optional ? "optional " : "") << protoType(field);
            out << ' ' << field.name << " = " << i + 1 << ";\n";
        }
        if (type->shape == Shape::Choice) writeProtoChoice(out, reach, *type, "alternative", 0);
        out << "}\n";
    }
}

// FlatBuffers.
std::string flatType(const Field& field) {
    switch (field.kind) {
    case Kind::Int: return field.optional ? "int = null" : "int";
    case Kind::Bool: return field.optional ? "bool = null" : "bool";
    case Kind::Real: return "double";
    case Kind::Octs: return field.optional ? "string" : "string (required)";
    case Kind::SetOf: return "[" + std::string(typeOf(typeOf(field.type).element).name) + "] (required)";
    default: return std::string(typeOf(field.type).name) + (field.optional ? "" : " (required)");
    }
}

std::string flatUnion(const Type& choice) { return std::string(choice.name) + "Alternatives"; }

void writeFlat(std::ostream& out, const Reach& reach) {
    out << "namespace fb;\n\ntable AsnBits {\n  bitLen:int;\n  bits:[ubyte] (required);\n}\n";
    for (const Type* type : reach.order) {
        if (type->shape == Shape::SetOf) continue; // a vector where it is held
        if (type->shape == Shape::Choice) {
            out << "\nunion " << flatUnion(*type) << " {\n";
            for (const Alternative* row : reach.alternativesOf(*type)) {
                out << "  " << row->name << ": " << typeOf(row->type).name << ",\n";
            }
            out << "}\n";
            if (!reach.isRoot(*type)) continue;
            out << "\ntable " << type->name << " {\n  alternative:" << flatUnion(*type) << " (required);\n}\n";
            continue;
        }
        const bool flat = isFlatStruct(*type);
        out << '\n' << (flat ? "struct " : "table ") << type->name << " {\n";
        for (const Field& field : type->fields) {
            if (field.kind == Kind::Choice)
                out << "  " << field.name << ':' << flatUnion(typeOf(field.type)) << " (required);\n";
            else out << "  " << field.name << ':' << flatType(field) << ";\n";
        }
        out << "}\n";
    }
}

// The code that FlatBuffers' own compiler does not write. put and the visitors are in peer-flatbuffers.cpp.
void writeFlatChoice(std::ostream& fill, std::ostream& visit, const Reach& reach, const Type& choice, const char* name,
                     const std::string& from, std::size_t index) {
    fill << "    switch (" << from << "choiceId) {\n";
    visit << "    switch (r." << name << "_type()) {\n";
    for (const Alternative* row : reach.alternativesOf(choice)) {
        fill << "    case " << row->number << ": fillUnion<" << typeOf(row->type).name << "T>(*" << from << row->name
             << ", to." << name << "); break;\n";
        visit << "    case " << flatUnion(choice) << "::" << row->name << ": v.alternative(" << index << ", "
              << row->number << ", r." << name << "_as_" << row->name << "()); break;\n";
    }
    fill << "    }\n";
    visit << "    default: break;\n    }\n";
}

void writeFlatCode(std::ostream& out, const Reach& reach) {
    out << "#pragma once\n\nnamespace fb {\n";
    for (const Type* type : reach.order) {
        if (type->shape == Shape::SetOf || (type->shape == Shape::Choice && !reach.isRoot(*type))) continue;
        std::ostringstream fill, visit;
        if (type->shape == Shape::Choice) writeFlatChoice(fill, visit, reach, *type, "alternative", "from.", 0);
        if (isFlatStruct(*type)) {
            fill << "    to = " << type->name << '(';
            for (const Field& field : type->fields)
                fill << (&field == &type->fields[0] ? "" : ", ") << "from." << field.name;
            fill << ");\n";
        }
        for (std::size_t i = 0; i < type->fields.size(); ++i) {
            const Field& field = type->fields[i];
            if (field.kind == Kind::Choice) {
                writeFlatChoice(fill, visit, reach, typeOf(field.type), field.name,
                                "from." + std::string(field.name) + "->", i);
                continue;
            }
            if (field.kind == Kind::SetOf) {
                fill << "    putList<::" << typeOf(typeOf(field.type).element).name << ">(from." << field.name
                     << ", to." << field.name << ");\n";
            } else if (!isFlatStruct(*type)) {
                fill << "    put(from." << field.name << ", to." << field.name << ");\n";
            }
            visit << "    v.member(" << i << ", r." << field.name << "());\n";
        }
        out << "\ninline void fill([[maybe_unused]] const ::" << type->name << "& from, [[maybe_unused]] " << type->name
            << (isFlatStruct(*type) ? "" : "T") << "& to) {\n"
            << fill.str() << "}\n\ntemplate <typename Visitor> void visit(const " << type->name
            << "& r, Visitor& v) {\n"
            << visit.str() << "}\n";
    }
    out << "\n} // namespace fb\n";
}

} // namespace
} // namespace zyn::bench

int main(int argc, char** argv) {
    using namespace zyn::bench;
    if (argc != 2) stop("usage: zyn-bench-schema folder");
    const std::string folder = std::string(argv[1]) + "/";
    const Reach reach = reachOfTheSeven();
    const auto write = [&](const char* name, auto writer) {
        std::ofstream file(folder + name);
        writer(file, reach);
        if (!file.flush()) stop("cannot write " + folder + name);
    };
    write("zyn.proto", writeProto);
    write("zyn.fbs", writeFlat);
    write("zyn-flat.h", writeFlatCode);
}
