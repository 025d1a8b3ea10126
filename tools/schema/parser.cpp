#include "schema/parser.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>

#include "schema/comments.h"
#include "schema/refusal.h"

namespace zyn::schema {
namespace {

// Words that mean something else than a name in the ASN.1 that schemas are written in.
constexpr std::string_view reservedWords[] = {
    "ABSENT",    "ANY",        "APPLICATION", "AUTOMATIC",  "BEGIN",       "BIT",           "BOOLEAN",  "BY",
    "CHOICE",    "CLASS",      "COMPONENT",   "COMPONENTS", "CONSTRAINED", "DEFAULT",       "DEFINED",  "DEFINITIONS",
    "EMBEDDED",  "END",        "ENUMERATED",  "EXPLICIT",   "EXPORTS",     "EXTENSIBILITY", "EXTERNAL", "FALSE",
    "FROM",      "IDENTIFIER", "IMPLICIT",    "IMPLIED",    "IMPORTS",     "INCLUDES",      "INTEGER",  "MAX",
    "MIN",       "NULL",       "OBJECT",      "OCTET",      "OF",          "OPTIONAL",      "PDV",      "PRESENT",
    "PRIVATE",   "REAL",       "SEQUENCE",    "SET",        "SIZE",        "STRING",        "TAGS",     "TRUE",
    "UNIVERSAL", "WITH"};

bool isReserved(std::string_view word) { return std::ranges::find(reservedWords, word) != std::end(reservedWords); }

bool isUpper(char c) { return std::isupper(static_cast<unsigned char>(c)); }
bool isLower(char c) { return std::islower(static_cast<unsigned char>(c)); }

class Parser {
public:
    explicit Parser(const Source& source) : file_(source.file), text_(source.text), lexed_(lex(source)) {}

    Module run() {
        module_.file = file_;
        module_.line = token().line;
        module_.name = upperName("the name of the module");
        const std::string stem = std::filesystem::path(file_).stem().string();
        if (module_.name != stem) {
            refuse(module_.line,
                   "the module " + inQuotes(module_.name) + " stands in a file of the name " + inQuotes(stem));
        }
        for (const char* word : {"DEFINITIONS", "IMPLICIT", "TAGS", "::=", "BEGIN"}) expect(word);
        module_.remarks = moduleComment(lexed_, at_ - 1);
        if (take("IMPORTS")) imports();
        const std::size_t bodyAt = endOfLast();
        while (!take("END")) module_.types.push_back(type());
        module_.ahead = text_.substr(0, lexed_.tokens.front().offset);
        module_.body = text_.substr(bodyAt, lexed_.tokens[static_cast<std::size_t>(at_) - 1].offset - bodyAt);
        if (token().kind != Token::Kind::End) refuseToken("the end of the file");
        return std::move(module_);
    }

private:
    void imports() {
        do {
            const std::size_t first = module_.imports.size();
            do {
                const int line = token().line;
                module_.imports.push_back({upperName("the name of a type to import"), {}, line});
            } while (take(","));
            expect("FROM");
            const std::string from = upperName("the name of a module");
            for (std::size_t i = first; i < module_.imports.size(); ++i) module_.imports[i].module = from;
        } while (!take(";"));
    }

    Type type() {
        const int first = at_;
        Type result;
        result.remarks.above = commentAbove(lexed_, first);
        result.line = token().line;
        result.name = upperName("the name of a type or END");
        expect("::=");
        if (take("SEQUENCE")) {
            result.kind = Kind::Sequence;
            members(result, first);
        } else if (take("CHOICE")) {
            result.kind = Kind::Choice;
            members(result, first);
        } else if (take("SET")) {
            expect("OF");
            result.kind = Kind::SetOf;
            result.element = use();
        } else if (token().text == "[") {
            for (const char* word : {"[", "UNIVERSAL", "10", "]", "IMPLICIT", "INTEGER"}) expect(word);
            result.kind = Kind::Enumerated;
        } else {
            refuseToken("SEQUENCE, CHOICE, SET OF or [UNIVERSAL 10] IMPLICIT INTEGER");
        }
        if (!isRecord(result.kind) || result.kind == Kind::SetOf) {
            result.remarks.behind = commentBehind(lexed_, first, at_ - 1);
        }
        return result;
    }

    void members(Type& type, int first) {
        expect("{");
        type.remarks.behind = commentBehind(lexed_, first, at_ - 1);
        bool more = type.kind == Kind::Choice || token().text != "}";
        while (more) {
            const int firstOfMember = at_;
            Member& added = type.members.emplace_back(member(type.kind == Kind::Choice));
            more = take(",");
            if (!more && token().text != "}") refuseToken("',' or '}'");
            added.remarks.behind = commentBehind(lexed_, firstOfMember, at_ - 1);
        }
        expect("}");
        const std::string atEnd = commentBehind(lexed_, at_ - 1, at_ - 1);
        if (!type.remarks.behind.empty() && !atEnd.empty()) type.remarks.behind += ' ';
        type.remarks.behind += atEnd;
    }

    Member member(bool ofChoice) {
        Member result;
        result.remarks.above = commentAbove(lexed_, at_);
        result.line = token().line;
        result.name = lowerName(ofChoice ? "the name of an alternative" : "the name of a field");
        if (token().text == "[") {
            result.tag = tag();
        } else if (ofChoice) {
            refuseToken("the context tag of the alternative " + inQuotes(result.name));
        }
        result.use = use();
        if (!ofChoice) result.optional = take("OPTIONAL");
        return result;
    }

    Tagging tag() {
        expect("[");
        if (token().kind != Token::Kind::Number) refuseToken("the number of a context tag");
        // What is cut off leaves a number that is too high all the same.
        const unsigned number = static_cast<unsigned>(std::stoul(next().text.substr(0, 9)));
        expect("]");
        if (take("EXPLICIT")) return {Tagging::Form::Explicit, number};
        take("IMPLICIT");
        return {Tagging::Form::Implicit, number};
    }

    TypeUse use() {
        TypeUse result;
        result.line = token().line;
        if (token().text == "OCTET" || token().text == "BIT") {
            result.name = next().text + " STRING";
            expect("STRING");
        } else if (token().text == "INTEGER" || token().text == "BOOLEAN" || token().text == "REAL") {
            result.name = next().text;
        } else {
            result.name = upperName("the name of a type");
        }
        return result;
    }

    std::string upperName(const char* what) { return name(what, isUpper); }
    std::string lowerName(const char* what) { return name(what, isLower); }

    std::string name(const char* what, bool (*starts)(char)) {
        const Token& here = token();
        const bool isWord = here.kind == Token::Kind::Word && !isReserved(here.text);
        if (!isWord || !starts(here.text[0])) refuseToken(what);
        return next().text;
    }

    std::size_t endOfLast() const {
        const Token& last = lexed_.tokens[static_cast<std::size_t>(at_) - 1];
        return last.offset + last.text.size();
    }

    const Token& token() const { return lexed_.tokens[static_cast<std::size_t>(at_)]; }
    const Token& next() { return lexed_.tokens[static_cast<std::size_t>(at_++)]; }

    bool take(std::string_view text) {
        if (token().text != text) return false;
        ++at_;
        return true;
    }

    void expect(const std::string& text) {
        if (!take(text)) refuseToken(inQuotes(text));
    }

    [[noreturn]] void refuseToken(const std::string& expected) const {
        const bool atEnd = token().kind == Token::Kind::End;
        const std::string found = atEnd ? "the end of the file" : inQuotes(token().text);
        refuse(token().line, "expected " + expected + " but found " + found);
    }

    [[noreturn]] void refuse(int line, const std::string& reason) const { throw Refusal(file_, line, reason); }

    const std::string& file_;
    const std::string& text_;
    const Lexed lexed_;
    int at_ = 0; // index of the next token
    Module module_;
};

} // namespace

Module parse(const Source& source) { return Parser(source).run(); }

} // namespace zyn::schema
