// Completion of the command line, made from its description.
#include "commands.h"

namespace zyn::tool {
namespace {

std::vector<const CLI::App*> verbsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::string joined(const std::vector<std::string>& words, const char* between) {
    return CLI::detail::join(words, between);
}

std::vector<std::string> optionNames(const CLI::App& verb) {
    std::vector<std::string> names;
    for (const CLI::Option* option : verb.get_options()) {
        for (const auto& name : option->get_snames()) names.push_back("-" + name);
        for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

// Up to the first point, without what the quotes of a shell would not take.
std::string summary(const std::string& description) {
    std::string text = description.substr(0, std::min(description.find_first_of(".;:"), description.find(", such")));
    for (char& c : text) {
        if (c == '\'' || c == '[' || c == ']') c = ' ';
    }
    return text;
}

std::string bash(const CLI::App& app) {
    std::string verbs, options, values;
    for (const CLI::App* verb : verbsOf(app)) {
        verbs += verb->get_name() + " ";
        bool files = false;
        std::vector<std::string> words;
        for (const CLI::Option* option : verb->get_options()) {
            const Argument argument = argumentOf(*option);
            if (option->get_positional()) {
                files = files || argument.isFile;
                words.insert(words.end(), argument.words.begin(), argument.words.end());
                continue;
            }
            for (const auto& name : option->get_lnames()) {
                const std::string at = "        " + verb->get_name() + ":--" + name + ") ";
                if (argument.isFile) values += at + "COMPREPLY=($(compgen -f -- \"$word\")); return ;;\n";
                else if (!argument.words.empty())
                    values += at + "COMPREPLY=($(compgen -W '" + joined(argument.words, " ") +
                              "' -- \"$word\")); return ;;\n";
                else if (argument.isAny) values += at + "return ;;\n";
            }
        }
        for (const auto& name : optionNames(*verb)) words.push_back(name);
        options += "        " + verb->get_name() + ") COMPREPLY=($(compgen " + (files ? "-f " : "") + "-W '" +
                   joined(words, " ") + "' -- \"$word\")) ;;\n";
    }
    return "# bash completion for zyn\n"
           "_zyn() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb=${COMP_WORDS[1]}\n"
           "    if ((COMP_CWORD == 1)); then\n"
           "        COMPREPLY=($(compgen -W '" +
           verbs + joined(optionNames(app), " ") +
           "' -- \"$word\"))\n"
           "        return\n"
           "    fi\n"
           "    case $verb:$before in\n" +
           values +
           "    esac\n"
           "    case $verb in\n" +
           options +
           "    esac\n"
           "}\n"
           "complete -o filenames -F _zyn zyn\n";
}

std::string zsh(const CLI::App& app) {
    std::string verbs, cases;
    for (const CLI::App* verb : verbsOf(app)) {
        verbs += "        '" + verb->get_name() + ":" + summary(verb->get_description()) + "'\n";
        cases += "    " + verb->get_name() + ")\n        _arguments";
        for (const CLI::Option* option : verb->get_options()) {
            const Argument argument = argumentOf(*option);
            std::string action;
            if (argument.isFile) action = ":file:_files";
            else if (!argument.words.empty()) action = ":word:(" + joined(argument.words, " ") + ")";
            else if (argument.isAny) action = ":value: ";
            if (option->get_positional()) {
                cases += " \\\n            '" + std::string(option->get_items_expected_max() > 1 ? "*:" : ":") +
                         action.substr(1) + "'";
            }
            for (const auto& name : option->get_lnames()) {
                cases += " \\\n            '--" + name + "[" + summary(option->get_description()) + "]" + action + "'";
            }
        }
        cases += "\n        ;;\n";
    }
    return "#compdef zyn\n"
           "_zyn_verbs() {\n"
           "    local -a verbs=(\n" +
           verbs +
           "    )\n"
           "    _describe verb verbs\n"
           "}\n"
           "_zyn() {\n"
           "    if ((CURRENT == 2)); then\n"
           "        _zyn_verbs\n"
           "        return\n"
           "    fi\n"
           "    local verb=$words[2]\n"
           "    shift words\n"
           "    ((CURRENT--))\n"
           "    case $verb in\n" +
           cases +
           "    esac\n"
           "}\n"
           "if [[ $funcstack[1] == _zyn ]]; then _zyn \"$@\"; else compdef _zyn zyn; fi\n";
}

std::string fish(const CLI::App& app) {
    std::string text = "# fish completion for zyn\n";
    for (const CLI::App* verb : verbsOf(app)) {
        text += "complete -c zyn -f -n __fish_use_subcommand -a " + verb->get_name() + " -d '" +
                summary(verb->get_description()) + "'\n";
        for (const CLI::Option* option : verb->get_options()) {
            const Argument argument = argumentOf(*option);
            std::string line = "complete -c zyn -n '__fish_seen_subcommand_from " + verb->get_name() + "'";
            if (!option->get_positional()) {
                for (const auto& name : option->get_snames()) line += " -s " + name;
                for (const auto& name : option->get_lnames()) line += " -l " + name;
                line += " -d '" + summary(option->get_description()) + "'";
                if (argument.isFile) line += " -r -F";
                else if (!argument.words.empty()) line += " -x -a '" + joined(argument.words, " ") + "'";
                else if (argument.isAny) line += " -x";
            } else if (argument.isFile) {
                line += " -F";
            } else if (!argument.words.empty()) {
                line += " -f -a '" + joined(argument.words, " ") + "'";
            } else {
                line += " -f";
            }
            text += line + "\n";
        }
    }
    return text;
}

} // namespace

std::string completion(const CLI::App& app, const std::string& shell) {
    return shell == "bash" ? bash(app) : shell == "zsh" ? zsh(app) : fish(app);
}

} // namespace zyn::tool
