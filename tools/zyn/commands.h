// The command line: every verb and option with its description, from which help, completion and manual page are made.
#pragma once

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include "options.h"

namespace zyn::tool {

struct Commands {
    Commands();
    Commands(const Commands&) = delete;

    CLI::App app;
    std::function<int()> run; // what the command line asked for

    DecodeOptions decode;
    EncodeOptions encode;
    DiffOptions diff;
    SchemaOptions schema;
    ExplainOptions explain;
    SampleOptions sample;
    std::string shell;
};

// Scripts that complete the command line in "bash", "zsh" or "fish".
std::string completion(const CLI::App& app, const std::string& shell);

// The manual page, as troff source.
std::string manual(const CLI::App& app);

// What an option takes: words out of a list ("raw|hex"), a file, something else, or nothing.
struct Argument {
    std::vector<std::string> words;
    bool isFile = false, isAny = false;
};
Argument argumentOf(const CLI::Option& option);

} // namespace zyn::tool
