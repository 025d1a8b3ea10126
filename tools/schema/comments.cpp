#include "schema/comments.h"

#include <span>

namespace zyn::schema {
namespace {

// Joins the lines of a comment. A comment line without text, or a gap between lines, parts two paragraphs.
std::string joined(std::span<const Comment> comments) {
    std::string text;
    int lastLine = 0;
    for (const Comment& comment : comments) {
        if (comment.text.empty()) continue;
        if (!text.empty()) text += comment.line - lastLine > 1 ? '\n' : ' ';
        text += comment.text;
        lastLine = comment.line;
    }
    return text;
}

} // namespace

std::string commentAbove(const Lexed& lexed, int token) {
    const std::vector<Comment>& all = lexed.comments;
    std::size_t end = 0;
    while (end < all.size() && all[end].precedingTokens <= token) ++end;
    int nextLine = lexed.tokens[static_cast<std::size_t>(token)].line;
    std::size_t begin = end;
    while (begin > 0) {
        const Comment& comment = all[begin - 1];
        if (comment.precedingTokens != token || !comment.alone || nextLine - comment.line > 1) break;
        nextLine = comment.line;
        --begin;
    }
    return joined(std::span(all).subspan(begin, end - begin));
}

std::string commentBehind(const Lexed& lexed, int first, int last) {
    std::vector<Comment> behind;
    for (const Comment& comment : lexed.comments) {
        const int before = comment.precedingTokens - 1;
        if (!comment.alone && before >= first && before <= last) behind.push_back(comment);
    }
    return joined(behind);
}

std::string moduleComment(const Lexed& lexed, int begin) {
    std::vector<Comment> ahead, below;
    int nextLine = lexed.tokens[static_cast<std::size_t>(begin)].line + 1;
    for (const Comment& comment : lexed.comments) {
        if (comment.precedingTokens == 0) ahead.push_back(comment);
        if (comment.precedingTokens == begin + 1 && comment.alone && comment.line == nextLine) {
            below.push_back(comment);
            ++nextLine;
        }
    }
    const Token& next = lexed.tokens[static_cast<std::size_t>(begin) + 1];
    if (next.line == nextLine && next.text != "IMPORTS") below.clear();
    return joined(ahead.empty() ? below : ahead);
}

} // namespace zyn::schema
