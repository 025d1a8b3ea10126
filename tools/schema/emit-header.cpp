// The C header of a module: structures, lists and the declarations of their operations.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>

#include "schema/emit-parts.h"
#include "schema/emitter.h"

namespace zyn::schema {
namespace {

constexpr std::size_t lineWidth = 110;

// Keeps the marks of a C comment out of its text.
std::string defused(std::string text) {
    for (const char* mark : {"*/", "/*"}) {
        for (std::size_t at; (at = text.find(mark)) != std::string::npos;) text.insert(at + 1, " ");
    }
    return text;
}

// The text as a C comment on lines of its own; a '\n' begins a paragraph.
std::string block(const std::string& remarks, std::size_t indent) {
    if (remarks.empty()) return {};
    const std::string margin(indent, ' ');
    const std::size_t room = lineWidth - indent - std::strlen("/* ");
    const std::string clean = defused(remarks);
    std::string text = margin + "/* ";
    std::size_t used = 0; // of the room of the current line
    for (std::size_t at = 0; at < clean.size();) {
        const std::size_t end = std::min(clean.find_first_of(" \n", at), clean.size());
        const std::string word = clean.substr(at, end - at);
        const std::size_t closing = end == clean.size() ? std::strlen(" */") : 0;
        if (used > 0 && used + 1 + word.size() + closing > room) {
            text += '\n' + margin + " * ";
            used = 0;
        }
        text += (used > 0 ? " " : "") + word;
        used += (used > 0 ? 1 : 0) + word.size();
        if (end < clean.size() && clean[end] == '\n') {
            text += '\n' + margin + " *\n" + margin + " * ";
            used = 0;
        }
        at = end + 1;
    }
    return text + " */\n";
}

std::string paragraphs(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : "\n") + second;
}

// A declaration with what the schema says of it: the facts behind it, and the remark too if the line has room
// for it, else above.
std::string memberLine(const std::string& declaration, const std::string& facts, const Remarks& remarks,
                       std::size_t indent) {
    const std::string margin(indent, ' ');
    const std::string behind = defused(remarks.behind);
    const auto line = [&](const std::string& note) {
        return margin + declaration + ";" + (note.empty() ? "" : " /* " + note + " */") + "\n";
    };
    const std::string whole = line(facts + (facts.empty() || behind.empty() ? "" : "; ") + behind);
    if (whole.size() - 1 <= lineWidth && whole.find('\n') == whole.size() - 1) {
        return block(remarks.above, indent) + whole;
    }
    return block(paragraphs(remarks.above, remarks.behind), indent) + line(facts);
}

std::string fieldLine(const Member& field) {
    const Kind kind = field.use.kind;
    const bool pointer = isRecord(kind) || (field.optional && !isString(kind));
    std::string facts;
    const auto fact = [&](const std::string& text) { facts += (facts.empty() ? "" : " ") + text; };
    if (kind == Kind::Enumerated) fact("ENUMERATED");
    if (field.tag.form != Tagging::Form::None) fact("[" + std::to_string(field.tag.number) + "]");
    if (field.tag.form == Tagging::Form::Explicit) fact("EXPLICIT");
    if (field.optional) fact("OPTIONAL");
    return memberLine(cType(field.use) + (pointer ? "* " : " ") + field.name, facts, field.remarks, 4);
}

std::string alternativeLine(const Member& alternative) {
    const Kind kind = alternative.use.kind;
    const bool inSlot = kind == Kind::Integer || kind == Kind::Enumerated;
    return memberLine(cType(alternative.use) + (inSlot ? " " : "* ") + alternative.name,
                      std::to_string(alternative.tag.number), alternative.remarks, 8);
}

std::string definition(const Type& type) {
    const std::string remarks = block(paragraphs(type.remarks.above, type.remarks.behind), 0);
    if (type.kind == Kind::SetOf) {
        return remarks + "typedef AsnList " + type.name + "; /* of " + type.element.name + " */\n";
    }
    std::string text = remarks + "struct " + type.name + " {\n";
    if (type.kind == Kind::Choice) {
        text += "    uint32_t choiceId;\n    union {\n";
        for (const Member& alternative : type.members) text += alternativeLine(alternative);
        text += "        void* slot;\n    };\n";
    } else {
        for (const Member& field : type.members) text += fieldLine(field);
        if (type.members.empty()) text += "    char unused;\n";
    }
    return text + "};\n";
}

std::string includes(const Module& module) {
    std::set<std::string> modules;
    for (const Import& import : module.imports) modules.insert(import.module);
    std::string text = "#include \"zyn/asn.h\"\n#include \"zyn/record.h\"\n";
    for (const std::string& name : modules) text += "#include \"zyn/records/" + name + ".h\"\n";
    return text;
}

} // namespace

std::string emitHeader(const Module& module) {
    std::string guard = "ZYN_RECORDS_" + module.name + "_H";
    std::ranges::transform(guard, guard.begin(), [](unsigned char c) { return std::toupper(c); });
    std::string forward, types;
    for (const Type& type : module.types) {
        if (!isRecord(type.kind)) continue;
        if (type.kind != Kind::SetOf) forward += "typedef struct " + type.name + " " + type.name + ";\n";
        types += "\n" + definition(type);
        types += (type.message ? "ZYN_MESSAGE(" : "ZYN_RECORD(") + type.name + ");\n";
    }
    const std::string remarks = block(module.remarks, 0);
    return "/* " + firstLine(module) + " */\n" + "#ifndef " + guard + "\n#define " + guard + "\n\n" + includes(module) +
           "\n" + "#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n" + remarks +
           (remarks.empty() || forward.empty() ? "" : "\n") + forward + types +
           "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
}

} // namespace zyn::schema
