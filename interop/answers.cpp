#include "interop/answers.h"

#include <algorithm>
#include <stdexcept>

namespace zyn::interop {

Answers readAnswers(std::istream& from) {
    Answers answers;
    Answer* answer = nullptr;
    std::string line;
    while (std::getline(from, line)) {
        if (line.starts_with("> ")) {
            const std::size_t end = line.find(' ', 2);
            const std::string verdict = end == line.npos ? "" : line.substr(end + 1);
            const bool refused = verdict.starts_with("refused ");
            if (!refused && verdict != "taken") throw std::runtime_error("no verdict: " + line);
            answer = &answers[line.substr(2, end - 2)];
            *answer = {.taken = !refused,
                       .refusal = refused ? verdict.substr(8) : "",
                       .lines = {},
                       .octets = {},
                       .failure = {}};
        } else if (!answer) {
            throw std::runtime_error("an answer to no message: " + line);
        } else if (line.starts_with("< not ")) {
            answer->failure = line.substr(6);
        } else if (line.starts_with("< ")) {
            answer->octets = line.substr(2);
        } else {
            answer->lines.push_back(line);
        }
    }
    for (auto& [name, each] : answers) std::ranges::sort(each.lines);
    return answers;
}

} // namespace zyn::interop
