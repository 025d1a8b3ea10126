#include "schema/dump.h"

#include <vector>

#include "schema/columns.h"
#include "schema/tags.h"

namespace zyn::schema {
namespace {

// The tags of a member by the signs of the legend.
std::string tagColumn(const Member& member) {
    const Kind kind = member.use.kind;
    const bool wrapped = member.tag.form == Tagging::Form::Explicit;
    std::string inner = kind == Kind::Choice ? "*" : octetsOf(universalTag(kind));
    if (!wrapped && kind == Kind::Choice) return inner;
    std::string text;
    for (const WireTag& tag : acceptedTags(member)) text += (text.empty() ? "" : "|") + octetsOf(tag);
    return wrapped ? text + "(" + inner + ")" : text;
}

std::string heading(const Type& type) {
    const std::string message = type.message ? "message " : "";
    switch (type.kind) {
    case Kind::Sequence: return message + "SEQUENCE " + type.name + (type.members.empty() ? ", empty" : "");
    case Kind::Choice: return message + "CHOICE " + type.name;
    case Kind::SetOf: return "SET OF " + type.element.name + " " + type.name;
    default: return "ENUMERATED " + type.name;
    }
}

std::string members(const Type& type) {
    std::vector<std::vector<std::string>> rows;
    for (const Member& member : type.members) {
        std::vector<std::string> row = {member.name, tagColumn(member), member.use.name};
        if (type.kind == Kind::Choice) row.insert(row.begin(), std::to_string(member.tag.number));
        if (member.optional) row.push_back("OPTIONAL");
        rows.push_back(std::move(row));
    }
    return columns(rows, 4, 2);
}

} // namespace

const char* const dumpLegend =
    "Tags are octets in hexadecimal. a|b: both are accepted, and a is written. a(b): a wraps b.\n"
    "*: the tag of the alternative in force.\n";

std::string dump(const Schema& schema) {
    std::string text;
    for (const Module& module : schema.modules) {
        if (!text.empty()) text += '\n';
        text += "module " + module.name + '\n';
        for (const Type& type : module.types) text += "  " + heading(type) + '\n' + members(type);
    }
    return text;
}

} // namespace zyn::schema
