// The files that cover all modules.
#include "schema/emit-parts.h"
#include "schema/emitter.h"

namespace zyn::schema {

std::string emitAllHeaders(const Schema& schema) {
    std::string text = "/* " + firstLine(schema) + " */\n" + "#ifndef ZYN_RECORDS_H\n#define ZYN_RECORDS_H\n\n";
    for (const Module& module : schema.modules) text += "#include \"zyn/records/" + module.name + ".h\"\n";
    return text + "\n#endif\n";
}

std::string emitTypeIds(const Schema& schema) {
    std::string names = "    AsnInt,\n    AsnEnum,\n    AsnBool,\n    AsnReal,\n    AsnOcts,\n    AsnBits,\n";
    std::size_t count = 6;
    for (const Module& module : schema.modules) {
        names += "    // " + module.name + "\n";
        for (const Type& type : module.types) {
            if (!isRecord(type.kind)) continue;
            names += "    " + type.name + ",\n";
            ++count;
        }
    }
    return "// " + firstLine(schema) + "\n#pragma once\n\n#include <cstddef>\n#include <cstdint>\n\n" +
           "namespace zyn {\n\nenum class TypeId : uint16_t {\n" + names + "};\n\n" +
           "inline constexpr std::size_t typeCount = " + std::to_string(count) + ";\n\n} // namespace zyn\n";
}

std::string emitModules(const Schema& schema) {
    std::string includes, rows;
    for (const Module& module : schema.modules) {
        includes += "#include \"records/generated/" + module.name + ".rows.h\"\n";
        rows += "    {\"" + module.name + "\", " + module.name + "Types},\n";
    }
    return "// " + firstLine(schema) + "\n#pragma once\n\n" + includes + "\nnamespace zyn {\n\n" +
           "inline constexpr Module modules[] = {\n" + rows + "};\n\n} // namespace zyn\n";
}

std::string emitSources(const Schema& schema) {
    std::string text = "# " + firstLine(schema) + "\nset(ZYN_RECORD_SOURCES";
    for (const Module& module : schema.modules) text += "\n    generated/" + module.name + ".cpp";
    return text + ")\n";
}

} // namespace zyn::schema
