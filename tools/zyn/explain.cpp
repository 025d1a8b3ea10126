// zyn explain: what a failure code means.
#include <charconv>
#include <set>

#include "options.h"
#include "output/out.h"
#include "zyn/describe.h"
#include "zyn/failure.h"

namespace zyn::tool {
namespace {

constexpr int32_t firstOfModules = -100; // codes from here down are counted by each module for itself

int32_t codeOf(const std::string& word) {
    int32_t code = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), code);
    if (error != std::errc() || end != word.data() + word.size() || code == 0) {
        throw WrongUse("'" + word + "' is no failure code");
    }
    return code > 0 ? -code : code;
}

// In the order of the schema.
std::vector<std::string> allModules() {
    std::vector<std::string> modules;
    std::set<std::string> seen;
    for (uint32_t i = 0; i < ZynTypeCount(); ++i) {
        const char* module = ZynTypeByNumber(i)->module;
        if (module && seen.insert(module).second) modules.emplace_back(module);
    }
    return modules;
}

} // namespace

int explain(const ExplainOptions& options) {
    const int32_t code = codeOf(options.words.back());
    std::vector<std::string> modules = {""};
    if (code <= firstOfModules) modules = allModules();
    if (options.words.size() == 2 && code <= firstOfModules) {
        bool known = false;
        for (const std::string& module : modules) known = known || module == options.words[0];
        if (!known) throw WrongUse("there is no module '" + options.words[0] + "'");
        modules = {options.words[0]};
    }
    std::size_t width = 0;
    for (const std::string& module : modules) width = std::max(width, module.size());
    Out out;
    for (const std::string& module : modules) {
        const char* text = ZynFailureText(module.empty() ? nullptr : module.c_str(), code);
        if (!text) continue;
        putNumber(out.text, int64_t{code});
        out.text += "  ";
        if (width > 0) putPadded(out.text, module, width + 2);
        out.text += text;
        out.text += '\n';
    }
    if (out.text.empty()) throw WrongUse("there is no code " + std::to_string(code) + " anywhere");
    out.write();
    return allGood;
}

} // namespace zyn::tool
