// The C++ header of a module: a View and an Init for each SEQUENCE and CHOICE.
#include <set>

#include "schema/emit-parts.h"
#include "schema/emitter.h"

namespace zyn::schema {
namespace {

// How C++ sees the value of a member.
struct Value {
    std::string type;  // of what a View gives, without std::optional
    std::string given; // of what an Init takes
    bool record;       // its type is defined elsewhere, maybe later in the file
};

Value valueOf(const TypeUse& use) {
    switch (use.kind) {
    case Kind::Boolean: return {"bool", "bool", false};
    case Kind::OctetString: return {"Octets", "Octets", false};
    case Kind::BitString: return {"Bits", "Bits", false};
    case Kind::Integer:
    case Kind::Enumerated:
    case Kind::Real: return {cType(use), cType(use), false};
    case Kind::SetOf: return {"List<" + use.type->element.name + ">", "ListRef<" + use.type->element.name + ">", true};
    default: return {"View<" + use.name + ">", "Ref<" + use.name + ">", true};
    }
}

// The value of a field, which is there or is not looked at.
std::string read(const Member& field) {
    const Value value = valueOf(field.use);
    std::string place = "record_->" + field.name;
    if (field.optional) {
        switch (field.use.kind) {
        case Kind::Boolean: return "detail::optionalBool(" + place + ")";
        case Kind::SetOf:
            return place + " ? std::optional<" + value.type + ">(" + value.type + "(" + place + ")) : std::nullopt";
        case Kind::Sequence:
        case Kind::Choice: return "detail::optionalView(" + place + ")";
        default: return "detail::optional(" + place + ")";
        }
    }
    switch (field.use.kind) {
    case Kind::Boolean: return place + " != 0";
    case Kind::OctetString:
    case Kind::BitString:
    case Kind::SetOf: return value.type + "(" + place + ")";
    case Kind::Sequence:
    case Kind::Choice: return value.type + "(*" + place + ")";
    default: return place;
    }
}

// How an Init writes a field; from is the value itself.
std::string write(const Member& field, const std::string& from) {
    switch (field.use.kind) {
    case Kind::OctetString:
    case Kind::BitString: return from + ".value()";
    case Kind::Sequence:
    case Kind::Choice:
    case Kind::SetOf: return from + ".get()";
    case Kind::Boolean: return "static_cast<AsnBool>(" + from + ")";
    default: return from;
    }
}

std::string result(const Member& field) {
    const std::string type = valueOf(field.use).type;
    return field.optional ? "std::optional<" + type + ">" : type;
}

// A text in two places: in the class, and behind all classes of the file.
struct Text {
    std::string inside, behind;
};

void addGetter(Text& text, const Type& type, const Member& field) {
    if (!valueOf(field.use).record) {
        text.inside += "    " + result(field) + " " + field.name + "() const { return " + read(field) + "; }\n";
        return;
    }
    text.inside += "    " + result(field) + " " + field.name + "() const;\n";
    text.behind += "inline " + result(field) + " View<" + type.name + ">::" + field.name + "() const { return " +
                   read(field) + "; }\n";
}

std::string opening(const std::string& name, const Type& type) {
    return "template <> class View<" + type.name + "> {\npublic:\n" + "    static constexpr const char* name_ = \"" +
           name + "\";\n" + "    static constexpr auto printer_ = Print" + type.name + ";\n" +
           "    explicit View(const " + type.name + "& record) : record_(&record) {}\n" + "    const " + type.name +
           "& get() const { return *record_; }\n\n";
}

std::string closing(const Type& type) { return "\nprivate:\n    const " + type.name + "* record_;\n};\n\n"; }

void addSequence(Text& text, const Type& type) {
    text.inside += opening(type.name, type);
    for (const Member& field : type.members) addGetter(text, type, field);
    text.inside +=
        "\n    // Calls f(name, value) for each field.\n    template <typename F> void each(F&& f) const;\n" +
        closing(type);
    text.behind += "template <typename F> void View<" + type.name + ">::each([[maybe_unused]] F&& f) const {\n";
    for (const Member& field : type.members) {
        text.behind += "    f(\"" + field.name + "\", " + field.name + "());\n";
    }
    text.behind += "}\n";

    std::string members, writes;
    for (const Member& field : type.members) {
        const std::string given = valueOf(field.use).given;
        members += field.optional ? "    std::optional<" + given + "> " + field.name + " = {};\n"
                                  : "    Required<" + given + "> " + field.name + ";\n";
        const std::string to = "    to." + field.name + " = ";
        const bool kept = field.optional && !isString(field.use.kind) && !isRecord(field.use.kind);
        if (kept) {
            writes += "    if (" + field.name + ") to." + field.name + " = in.keep<" + cType(field.use) + ">(" +
                      write(field, "*" + field.name) + ");\n";
        } else if (field.optional) {
            const std::string from = field.name + "->";
            writes +=
                "    if (" + field.name + ") to." + field.name + " = " + write(field, "(*" + field.name + ")") + ";\n";
        } else {
            writes += to + write(field, field.name + ".value()") + ";\n";
        }
    }
    text.inside += "template <> struct Init<" + type.name + "> {\n" + members + "\n    void fill(" + type.name +
                   "& to, Builder& in) const;\n};\n\n";
    text.behind += "inline void Init<" + type.name + ">::fill([[maybe_unused]] " + type.name +
                   "& to, [[maybe_unused]] Builder& in) const {\n" + writes + "}\n";
}

// What an alternative holds, of a choice that is called by its expression.
std::string alternativeValue(const Member& alternative, const std::string& choice) {
    const Value value = valueOf(alternative.use);
    std::string place = choice + alternative.name;
    if (!value.record && !isString(alternative.use.kind)) return place;
    const bool empty = alternative.use.kind == Kind::Sequence && alternative.use.type->members.empty();
    if (empty) return value.type + "(" + place + " ? *" + place + " : detail::empty<" + alternative.use.name + ">)";
    return value.type + "(*" + place + ")";
}

void addChoice(Text& text, const Type& type) {
    std::set<std::string> once, twice;
    for (const Member& one : type.members) (once.insert(one.use.name).second ? once : twice).insert(one.use.name);
    std::string cases, numbers, makers, made;
    for (const Member& one : type.members) {
        const std::string number = std::to_string(one.tag.number);
        const Value value = valueOf(one.use);
        const bool inSlot = !value.record && !isString(one.use.kind);
        cases += "    case " + number + ": return detail::visitWith<" + number + ">(std::forward<F>(f), " +
                 alternativeValue(one, "record_->") + ");\n";
        if (value.record && !twice.contains(one.use.name)) {
            numbers +=
                "    static constexpr uint32_t numberOf(const " + one.use.name + "*) { return " + number + "; }\n";
        }
        makers += "    static Init " + one.name + "(" + value.given + " value);\n";
        made += "inline Init<" + type.name + "> Init<" + type.name + ">::" + one.name + "(" + value.given +
                " value) {\n    Init made;\n    made.choice_.choiceId = " + number + ";\n";
        if (inSlot) made += "    made.choice_." + one.name + " = value;\n";
        else if (isString(one.use.kind)) made += "    made.text_ = value.value();\n    made.isText_ = true;\n";
        else made += "    made.choice_." + one.name + " = value.get();\n";
        made += "    return made;\n}\n";
    }
    text.inside +=
        opening(type.name, type) + "    uint32_t number() const { return record_->choiceId; }\n\n" +
        "    // Calls f with the alternative that is there, and with its Number<n> if f takes that too. f has to take\n"
        "    // each of them. A number that is no alternative, which no Decode gives, ends the program.\n" +
        "    template <typename F> decltype(auto) visit(F&& f) const;\n\n" +
        "    // The number of the alternative of a type, if there is only one.\n" + numbers + closing(type);
    text.behind += "template <typename F> decltype(auto) View<" + type.name + ">::visit(F&& f) const {\n" +
                   "    switch (record_->choiceId) {\n" + cases + "    }\n    std::abort();\n}\n";
    text.inside += "template <> struct Init<" + type.name + "> {\n" + makers + "\n    void fill(" + type.name +
                   "& to, Builder& in) const {\n        to = choice_;\n"
                   "        if (isText_) to.slot = in.keep(text_);\n    }\n\nprivate:\n    Init() = default;\n    " +
                   type.name + " choice_ = {};\n    AsnOcts text_ = {};\n    bool isText_ = false;\n};\n\n";
    text.behind += made;
}

} // namespace

std::string emitCpp(const Module& module) {
    std::set<std::string> imports;
    for (const Import& import : module.imports) imports.insert(import.module);
    std::string includes = "#include <cstdlib>\n\n#include \"zyn/cpp/base.hpp\"\n";
    for (const std::string& name : imports) includes += "#include \"zyn/cpp/" + name + ".hpp\"\n";
    includes += "#include \"zyn/records/" + module.name + ".h\"\n";
    Text text;
    for (const Type& type : module.types) {
        if (type.kind == Kind::Sequence) addSequence(text, type);
        if (type.kind == Kind::Choice) addChoice(text, type);
    }
    return "// " + firstLine(module) + "\n#pragma once\n\n" + includes + "\nnamespace zyn {\n\n" + text.inside +
           text.behind + "\n} // namespace zyn\n";
}

std::string emitAllCpp(const Schema& schema) {
    std::string text = "// " + firstLine(schema) + "\n#pragma once\n\n";
    for (const Module& module : schema.modules) text += "#include \"zyn/cpp/" + module.name + ".hpp\"\n";
    return text;
}

} // namespace zyn::schema
