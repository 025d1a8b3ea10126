// zyn: the tool for people who look at messages, write them by hand, or want to know what is wrong with one.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "channel.h"
#include "commands.h"

namespace {

// Codes are written with their minus sign; the command line would take that for an option.
std::vector<std::string> words(int argc, char** argv) {
    std::vector<std::string> reversed;
    const bool explains = argc > 1 && std::strcmp(argv[1], "explain") == 0;
    for (int i = argc - 1; i > 0; --i) {
        const bool isCode = explains && argv[i][0] == '-' && argv[i][1] >= '0' && argv[i][1] <= '9';
        reversed.emplace_back(isCode ? argv[i] + 1 : argv[i]);
    }
    return reversed;
}

} // namespace

int main(int argc, char** argv) {
    using namespace zyn::tool;
    beSilent();
    try {
        Commands commands;
        try {
            commands.app.parse(words(argc, argv));
        } catch (const CLI::ParseError& error) {
            const bool isHelp = error.get_exit_code() == 0;
            const bool namesVerb = argc > 1 && argv[1][0] != '-';
            if (argc == 1) std::fputs(commands.app.help().c_str(), stderr);
            else if (namesVerb &&
                     commands.app.get_subcommands([&](const CLI::App* verb) { return verb->get_name() == argv[1]; })
                         .empty())
                std::fprintf(stderr, "zyn: there is no verb '%s'; zyn --help lists them\n", argv[1]);
            else commands.app.exit(error);
            return isHelp ? allGood : usedWrongly;
        }
        const int code = commands.run();
        if (std::fflush(stdout) != 0) throw WrongUse("cannot write to the standard output");
        return code;
    } catch (const std::exception& error) {
        std::fflush(stdout);
        std::fprintf(stderr, "zyn: %s\n", error.what());
        return usedWrongly;
    }
}
