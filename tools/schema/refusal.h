// How the compiler turns a schema down.
#pragma once

#include <stdexcept>
#include <string>

namespace zyn::schema {

// Thrown at the first thing that the compiler does not take. what() reads "file:line: reason", with a reason
// of one sentence.
struct Refusal : std::runtime_error {
    Refusal(const std::string& file, int line, const std::string& reason)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + reason) {}
};

// inQuotes sets a name of the schema apart from the words of a reason.
inline std::string inQuotes(const std::string& name) { return "'" + name + "'"; }

} // namespace zyn::schema
