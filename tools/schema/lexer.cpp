#include "schema/lexer.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "schema/refusal.h"

namespace zyn::schema {
namespace {

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)); }
bool isWordStart(char c) { return std::isalpha(static_cast<unsigned char>(c)); }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return std::string(text);
}

class Lexer {
public:
    explicit Lexer(const Source& source) : file_(source.file), text_(source.text), rest_(source.text) {}

    Lexed run() {
        while (!rest_.empty()) step();
        add(Token::Kind::End, 0);
        return std::move(out_);
    }

private:
    void step() {
        const char c = rest_.front();
        if (c == '\n') {
            rest_.remove_prefix(1);
            ++line_;
            lineHasText_ = false;
        } else if (isBlank(c)) {
            rest_.remove_prefix(1);
        } else if (rest_.starts_with("--")) {
            comment();
        } else if (isWordStart(c)) {
            word();
        } else if (isDigit(c)) {
            number();
        } else if (rest_.starts_with("::=")) {
            add(Token::Kind::Symbol, 3);
        } else if (std::string_view("{}[],;").find(c) != std::string_view::npos) {
            add(Token::Kind::Symbol, 1);
        } else {
            refuse("the character '" + std::string(1, c) + "' is not understood");
        }
    }

    // A comment ends at the end of its line or at the next two hyphens (X.680 12.6.3).
    void comment() {
        const std::size_t end = rest_.find('\n', 2);
        const std::size_t hyphens = rest_.substr(0, end).find("--", 2);
        const std::size_t textEnd = hyphens != std::string_view::npos ? hyphens : std::min(end, rest_.size());
        out_.comments.push_back(
            {trimmed(rest_.substr(2, textEnd - 2)), line_, !lineHasText_, static_cast<int>(out_.tokens.size())});
        rest_.remove_prefix(hyphens != std::string_view::npos ? textEnd + 2 : textEnd);
    }

    // Hyphens are legal inside ASN.1 names, but no member of a record could be called so.
    void word() {
        std::size_t length = 0;
        while (length < rest_.size() && (isWordStart(rest_[length]) || isDigit(rest_[length]))) ++length;
        const std::string_view behind = rest_.substr(length);
        if (behind.starts_with('-') && !behind.starts_with("--")) {
            refuse("a hyphen inside a name is not supported");
        }
        add(Token::Kind::Word, length);
    }

    void number() {
        std::size_t length = 0;
        while (length < rest_.size() && isDigit(rest_[length])) ++length;
        if (length > 1 && rest_.front() == '0') refuse("a number cannot begin with 0");
        add(Token::Kind::Number, length);
    }

    void add(Token::Kind kind, std::size_t length) {
        out_.tokens.push_back({kind, std::string(rest_.substr(0, length)), line_, text_.size() - rest_.size()});
        rest_.remove_prefix(length);
        lineHasText_ = true;
    }

    [[noreturn]] void refuse(const std::string& reason) const { throw Refusal(file_, line_, reason); }

    const std::string& file_;
    const std::string_view text_;
    std::string_view rest_;
    int line_ = 1;
    bool lineHasText_ = false;
    Lexed out_;
};

} // namespace

Lexed lex(const Source& source) { return Lexer(source).run(); }

} // namespace zyn::schema
