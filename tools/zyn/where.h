// Conditions on messages: a value at a path, as --where has them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zyn/describe.h"

namespace zyn::tool {

class Condition {
public:
    // PATH=VALUE, see the help of --where. Throws WrongUse if it is none, or if no message has such a path.
    explicit Condition(const std::string& text);

    // Whether some place of the record that the path leads to has the value.
    bool holds(const ZynType& type, const void* record) const { return matches(type, record, 0); }

private:
    struct Step {
        std::string name; // of a field or alternative; "*": any one, "**": any number of them
        bool isIndex = false;
        std::optional<uint32_t> index; // of an element; none: any
    };

    bool matches(const ZynType& type, const void* record, std::size_t step) const;
    bool matchesElements(const ZynType& type, const void* list, std::size_t step) const;
    bool matchesText(const AsnOcts& text, std::size_t step) const;
    bool matchesBits(const AsnBits& bits, std::size_t step) const;
    bool matchesEnd(const ZynType& type, const void* value) const;
    bool canMatch(const ZynType& type, std::size_t step) const;
    // Calls visit with the step behind the name for each way in which the step takes the name, until that gives true.
    template <typename Visit> bool enter(const char* name, std::size_t step, Visit visit) const;

    std::vector<Step> steps;
    std::string value;
    std::optional<double> number;
};

} // namespace zyn::tool
