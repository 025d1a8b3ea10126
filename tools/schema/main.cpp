// zyn-schema: from the protocol's ASN.1 modules to C headers, field tables and export stubs.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "schema/checker.h"
#include "schema/dump.h"
#include "schema/emitter.h"
#include "schema/flat.h"
#include "schema/remarks.h"

namespace {

using namespace zyn::schema;
namespace fs = std::filesystem;

constexpr const char* usage =
    "usage: zyn-schema --headers DIR --rows DIR [--dump FILE] [--flat FILE] MODULE.asn1...\n"
    "       zyn-schema --remarks FILE MODULE.asn1...\n"
    "\n"
    "Compiles the ASN.1 modules of the protocol, in any order.\n"
    "  --headers DIR  writes DIR/MODULE.h for each module, and DIR/../records.h, which includes them all;\n"
    "                 for C++ DIR/../cpp/MODULE.hpp and DIR/../cpp/records.hpp\n"
    "  --rows DIR     writes the field tables and export stubs of the library\n"
    "  --dump FILE    writes the compiled schema as text\n"
    "  --flat FILE    writes all types as one module, which has the name of the file\n"
    "  --remarks FILE writes the comments as JSON: a line for each module and each type\n"
    "  --help         prints this\n"
    "Files that would stay as they are, are not touched. A schema that is not understood, or that is\n"
    "ambiguous on the wire, is refused with file, line and reason, and nothing is written.\n"
    "Exit codes: 0 done, 1 refused or not readable or writable, 2 wrong usage.\n";

struct Arguments {
    std::string headers, rows, dump, flat, remarks;
    std::vector<std::string> files;
};

struct WrongUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool isModuleName(const std::string& name) {
    return std::isupper(static_cast<unsigned char>(name[0])) &&
           std::ranges::all_of(name, [](unsigned char c) { return std::isalnum(c); });
}

Arguments parseArguments(const std::vector<std::string_view>& words) {
    Arguments arguments;
    for (auto word = words.begin(); word != words.end(); ++word) {
        std::string* value = *word == "--headers"   ? &arguments.headers
                             : *word == "--rows"    ? &arguments.rows
                             : *word == "--dump"    ? &arguments.dump
                             : *word == "--flat"    ? &arguments.flat
                             : *word == "--remarks" ? &arguments.remarks
                                                    : nullptr;
        if (!value && word->starts_with('-')) throw WrongUsage("unknown option " + std::string(*word));
        if (!value) {
            arguments.files.emplace_back(*word);
            continue;
        }
        if (++word == words.end()) throw WrongUsage(std::string(*--word) + " needs a value");
        *value = *word;
    }
    const bool onlyRemarks = !arguments.remarks.empty() && arguments.headers.empty() && arguments.rows.empty();
    if (!onlyRemarks && (arguments.headers.empty() || arguments.rows.empty())) {
        throw WrongUsage("--headers and --rows are needed");
    }
    if (!arguments.flat.empty() && !isModuleName(fs::path(arguments.flat).stem().string())) {
        throw WrongUsage("--flat takes a file that is called as a module can be");
    }
    if (arguments.files.empty()) throw WrongUsage("no module given");
    return arguments;
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in || fs::is_directory(path)) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(in), {}};
}

// Leaves a file alone whose content stays, so that nothing is built again for it.
void writeFile(const fs::path& path, const std::string& text) {
    if (path.has_parent_path()) fs::create_directories(path.parent_path());
    if (fs::exists(path) && readFile(path) == text) return;
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

void run(const Arguments& arguments) {
    std::vector<Source> sources;
    for (const std::string& file : arguments.files) sources.push_back({file, readFile(file)});
    const Schema schema = compile(sources);
    if (!arguments.remarks.empty()) writeFile(arguments.remarks, remarks(schema));
    if (arguments.headers.empty()) return;
    const Output output = emit(schema);
    const fs::path headers = arguments.headers, rows = arguments.rows;
    for (const OutputFile& file : output.headers) writeFile(headers / file.name, file.text);
    for (const OutputFile& file : output.cpp) writeFile(headers / ".." / "cpp" / file.name, file.text);
    writeFile(headers / ".." / output.allHeaders.name, output.allHeaders.text);
    for (const OutputFile& file : output.rows) writeFile(rows / file.name, file.text);
    if (!arguments.dump.empty()) {
        writeFile(arguments.dump, firstLine(schema) + "\n" + dumpLegend + "\n" + dump(schema));
    }
    if (!arguments.flat.empty()) writeFile(arguments.flat, flat(schema, fs::path(arguments.flat).stem().string()));
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    if (std::ranges::find(words, "--help") != words.end()) {
        std::fputs(usage, stdout);
        return 0;
    }
    try {
        run(parseArguments(words));
        return 0;
    } catch (const WrongUsage& wrong) {
        std::fprintf(stderr, "zyn-schema: %s\n%s", wrong.what(), usage);
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
