#include "schema/remarks.h"

#include <cstdio>

namespace zyn::schema {
namespace {

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            out += escape;
            continue;
        }
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

std::string pair(const char* key, const std::string& text) { return std::string("\"") + key + "\":" + quoted(text); }

std::string tagText(const Tagging& tag) {
    if (tag.form == Tagging::Form::None) return {};
    return "[" + std::to_string(tag.number) + "]" + (tag.form == Tagging::Form::Explicit ? " EXPLICIT" : "");
}

// The comment above a type, and as a paragraph of its own what stands beside its braces.
std::string whole(const Remarks& remarks) {
    const bool both = !remarks.above.empty() && !remarks.behind.empty();
    return remarks.above + (both ? "\n" : "") + remarks.behind;
}

} // namespace

std::string remarks(const Schema& schema) {
    std::string out;
    for (const Module& module : schema.modules) {
        out += "{" + pair("module", module.name) + "," + pair("comment", module.remarks) + "}\n";
        for (const Type& type : module.types) {
            out += "{" + pair("type", type.name) + "," + pair("module", module.name) +
                   ",\"line\":" + std::to_string(type.line) + "," + pair("comment", whole(type.remarks)) +
                   ",\"members\":[";
            bool first = true;
            for (const Member& member : type.members) {
                out += std::string(first ? "" : ",") + "{" + pair("name", member.name) + "," +
                       pair("tag", tagText(member.tag)) + "," + pair("above", member.remarks.above) + "," +
                       pair("behind", member.remarks.behind) + "}";
                first = false;
            }
            out += "]}\n";
        }
    }
    return out;
}

} // namespace zyn::schema
