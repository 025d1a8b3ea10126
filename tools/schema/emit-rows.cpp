// The tables of a module in C++, and the exported operations of its types.
#include <vector>

#include "schema/columns.h"
#include "schema/emit-parts.h"
#include "schema/emitter.h"

namespace zyn::schema {
namespace {

std::string tag(const Tagging& tagging) {
    const std::string number = "(" + std::to_string(tagging.number) + ")";
    switch (tagging.form) {
    case Tagging::Form::Implicit: return "context" + number;
    case Tagging::Form::Explicit: return "explicitly" + number;
    case Tagging::Form::None: break;
    }
    return "universal";
}

// A constexpr array, named after the type or module that it belongs to.
std::string array(const std::string& element, const std::string& name, const std::string& rows) {
    return "inline constexpr " + element + " " + name + "[] = {\n" + rows + "};\n\n";
}

std::string fields(const Type& type) {
    std::vector<std::vector<std::string>> rows;
    for (const Member& field : type.members) {
        rows.push_back({"ZYN_FIELD(" + type.name + ",", field.name + ",", tag(field.tag) + ",",
                        rowType(field.use) + ",", field.optional ? "optional)," : "required),"});
    }
    return array("Field", type.name + "Fields", columns(rows, 4, 1));
}

std::string alternatives(const Type& type) {
    std::vector<std::vector<std::string>> rows;
    for (const Member& alternative : type.members) {
        rows.push_back({"ZYN_ALTERNATIVE(" + type.name + ",", alternative.name + ",",
                        std::to_string(alternative.tag.number) + ",", rowType(alternative.use) + "),"});
    }
    return array("Alternative", type.name + "Alternatives", columns(rows, 4, 1));
}

std::string typeRow(const Type& type) {
    const std::string message = type.message ? "ZYN_MESSAGE_" : "ZYN_";
    switch (type.kind) {
    case Kind::SetOf: return "ZYN_SET_OF(" + type.name + ", " + rowType(type.element) + ")";
    case Kind::Choice: return message + "CHOICE(" + type.name + ")";
    default: return (type.members.empty() ? "ZYN_EMPTY(" : message + "SEQUENCE(") + type.name + ")";
    }
}

} // namespace

std::string emitRows(const Module& module) {
    std::string tables, types;
    for (const Type& type : module.types) {
        if (!isRecord(type.kind)) continue;
        if (type.kind == Kind::Sequence && !type.members.empty()) tables += fields(type);
        if (type.kind == Kind::Choice) tables += alternatives(type);
        types += "    " + typeRow(type) + ",\n";
    }
    return "// " + firstLine(module) + "\n#pragma once\n\n" + "#include \"records/rows.h\"\n" +
           "#include \"zyn/records/" + module.name + ".h\"\n\n" + "namespace zyn {\n\n" + tables +
           array("Type", module.name + "Types", types) + "} // namespace zyn\n";
}

std::string emitExports(const Module& module) {
    std::string text = "// " + firstLine(module) + "\n" + "#include \"records/exports.h\"\n" +
                       "#include \"zyn/records/" + module.name + ".h\"\n\n";
    for (const Type& type : module.types) {
        if (!isRecord(type.kind)) continue;
        text += (type.message ? "ZYN_EXPORT_MESSAGE(" : "ZYN_EXPORT_RECORD(") + type.name + ")\n";
    }
    return text;
}

} // namespace zyn::schema
