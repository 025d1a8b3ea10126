// Cuts a module's text into tokens and comments.
#pragma once

#include <string>
#include <vector>

namespace zyn::schema {

// The text of one module and the name by which messages call its file.
struct Source {
    std::string file;
    std::string text;
};

struct Token {
    enum class Kind { Word, Number, Symbol, End } kind;
    std::string text;   // empty at the End
    int line;           // from 1
    std::size_t offset; // of its first character in the source
};

// One comment: a line of a larger one, as a rule. text has no hyphens and no blanks at its ends.
struct Comment {
    std::string text;
    int line;
    bool alone;          // nothing else stands ahead of it on its line
    int precedingTokens; // how many tokens of the module stand ahead of it
};

struct Lexed {
    std::vector<Token> tokens; // the last one is the End
    std::vector<Comment> comments;
};

// lex throws a Refusal at a character or a word that the language does not have.
Lexed lex(const Source& source);

} // namespace zyn::schema
