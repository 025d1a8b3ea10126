#include "schema/flat.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "schema/emitter.h"

namespace zyn::schema {
namespace {

std::string withoutBlankEnds(const std::string& text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == text.npos) return "";
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

class Flattener {
public:
    explicit Flattener(const Schema& schema) : schema_(schema) {}

    std::string run() {
        for (const Module& module : schema_.modules) add(module);
        return std::move(text_);
    }

private:
    // The compiler has refused rings of imports.
    void add(const Module& module) {
        if (!done_.insert(&module).second) return;
        for (const Import& import : module.imports) {
            add(*std::ranges::find(schema_.modules, import.module, &Module::name));
        }
        text_ += "\n-- Module " + module.name + ".\n";
        if (const std::string ahead = withoutBlankEnds(module.ahead); !ahead.empty()) text_ += ahead + "\n";
        text_ += "\n" + withoutBlankEnds(module.body) + "\n";
    }

    const Schema& schema_;
    std::set<const Module*> done_;
    std::string text_;
};

} // namespace

std::string flat(const Schema& schema, const std::string& name) {
    return "-- " + firstLine(schema) + "\n" + name + " DEFINITIONS IMPLICIT TAGS ::= BEGIN\n" +
           Flattener(schema).run() + "\nEND\n";
}

} // namespace zyn::schema
