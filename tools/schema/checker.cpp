#include "schema/checker.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "schema/parser.h"
#include "schema/refusal.h"
#include "schema/resolver.h"
#include "schema/tags.h"

namespace zyn::schema {
namespace {

constexpr unsigned highestFieldTag = 127;         // two octets
constexpr unsigned highestAlternativeTag = 16383; // three octets
constexpr const char* messageModule = "Main";

using Form = Tagging::Form;

// Checks one module by the rules of the codec.
class Checker {
public:
    explicit Checker(const Module& module) : module_(module) {}

    void run() const {
        for (const Type& type : module_.types) {
            if (type.kind == Kind::Sequence) checkSequence(type);
            if (type.kind == Kind::Choice) checkChoice(type);
            if (type.kind == Kind::SetOf && type.element.kind != Kind::Sequence) {
                refuse(type.element.line, "the elements of " + inQuotes(type.name) + " must be of a SEQUENCE type");
            }
            const bool hasFields = type.kind == Kind::Sequence && !type.members.empty();
            if (type.message && type.kind != Kind::Choice && !hasFields) {
                refuse(type.line, "no type refers to " + inQuotes(type.name) +
                                      ", and a message must be a CHOICE or a SEQUENCE with fields");
            }
        }
    }

private:
    void checkSequence(const Type& type) const {
        std::set<std::string> names;
        for (const Member& field : type.members) {
            if (!names.insert(field.name).second) {
                refuse(field.line, "the field " + inQuotes(field.name) + " occurs twice in " + inQuotes(type.name));
            }
            checkField(field);
        }
        for (std::size_t i = 0; i < type.members.size(); ++i) refuseAmbiguity(type, i);
    }

    void checkField(const Member& field) const {
        const Kind kind = field.use.kind;
        const std::string name = "the field " + inQuotes(field.name);
        const bool bare = kind == Kind::Real || kind == Kind::SetOf || kind == Kind::Choice;
        const std::string word = kind == Kind::Real ? "REAL" : kind == Kind::SetOf ? "SET OF" : "CHOICE";
        if (field.tag.number > highestFieldTag) {
            refuse(field.line, name + " has a tag number above " + std::to_string(highestFieldTag));
        }
        if (field.tag.form == Form::Explicit && kind != Kind::Integer) {
            refuse(field.line, name + " is EXPLICIT, which only an INTEGER can be");
        }
        if (field.tag.form == Form::Implicit && bare) {
            refuse(field.line, name + " is a " + word + ", which cannot have a context tag");
        }
        if (field.optional && bare) refuse(field.line, name + " is a " + word + ", which cannot be OPTIONAL");
    }

    // A decoder takes an element for the first field that accepts its tag. So behind an OPTIONAL field, up to
    // the next required one, no field may accept the same tag, or absence could not be told from presence.
    void refuseAmbiguity(const Type& type, std::size_t i) const {
        if (!type.members[i].optional) return;
        const std::vector<WireTag> own = acceptedTags(type.members[i]);
        for (std::size_t j = i + 1; j < type.members.size(); ++j) {
            const Member& later = type.members[j];
            for (const WireTag& tag : acceptedTags(later)) {
                if (std::ranges::find(own, tag) == own.end()) continue;
                refuse(later.line, "the field " + inQuotes(later.name) + " accepts the tag " + octetsOf(tag) +
                                       ", which the OPTIONAL field " + inQuotes(type.members[i].name) +
                                       " ahead of it would take");
            }
            if (!later.optional) return;
        }
    }

    void checkChoice(const Type& type) const {
        std::set<std::string> names;
        std::map<unsigned, std::string> numbers;
        for (const Member& alternative : type.members) {
            if (!names.insert(alternative.name).second) {
                refuse(alternative.line,
                       "the alternative " + inQuotes(alternative.name) + " occurs twice in " + inQuotes(type.name));
            }
            const auto [known, isNew] = numbers.emplace(alternative.tag.number, alternative.name);
            if (!isNew) {
                refuse(alternative.line, "the alternatives " + inQuotes(known->second) + " and " +
                                             inQuotes(alternative.name) + " have the same number");
            }
            checkAlternative(alternative);
        }
    }

    void checkAlternative(const Member& alternative) const {
        const std::string name = "the alternative " + inQuotes(alternative.name);
        const bool isExplicit = alternative.tag.form == Form::Explicit;
        if (alternative.tag.number > highestAlternativeTag) {
            refuse(alternative.line, name + " has a number above " + std::to_string(highestAlternativeTag));
        }
        switch (alternative.use.kind) {
        case Kind::Choice:
            if (isExplicit) break;
            refuse(alternative.line, name + " is a CHOICE itself, so its tag must be EXPLICIT");
        case Kind::Integer:
        case Kind::Enumerated:
        case Kind::OctetString:
        case Kind::Sequence:
            if (!isExplicit) break;
            refuse(alternative.line, name + " is EXPLICIT, which only a CHOICE can be");
        default: refuse(alternative.line, name + " must be an INTEGER, an OCTET STRING, a SEQUENCE or a CHOICE");
        }
    }

    [[noreturn]] void refuse(int line, const std::string& reason) const { throw Refusal(module_.file, line, reason); }

    const Module& module_;
};

// What nothing refers to, in the module of the messages, is a message.
void markMessages(Schema& schema) {
    std::set<const Type*> held;
    for (const Module& module : schema.modules) {
        for (const Type& type : module.types) {
            held.insert(type.element.type);
            for (const Member& member : type.members) held.insert(member.use.type);
        }
    }
    for (Module& module : schema.modules) {
        if (module.name != messageModule) continue;
        for (Type& type : module.types) type.message = !held.contains(&type);
    }
}

} // namespace

Schema compile(const std::vector<Source>& sources) {
    Schema schema;
    // By the name of the file, which is the module's.
    std::map<std::pair<std::string, std::string>, const Source*> inOrder;
    for (const Source& source : sources) {
        inOrder[{std::filesystem::path(source.file).stem().string(), source.file}] = &source;
    }
    for (const auto& [name, source] : inOrder) schema.modules.push_back(parse(*source));
    resolve(schema);
    markMessages(schema);
    for (const Module& module : schema.modules) Checker(module).run();
    return schema;
}

} // namespace zyn::schema
