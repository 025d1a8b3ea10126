// The manual page, made from the description of the command line.
#include "commands.h"

namespace zyn::tool {
namespace {

// What troff would take for its own is escaped.
std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\') out += "\\e";
        else if (c == '-') out += "\\-";
        else if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) out += std::string("\\&") + c;
        else out += c;
    }
    return out;
}

std::string shownName(const CLI::Option& option) {
    std::string text;
    for (const auto& name : option.get_snames())
        text += (text.empty() ? "" : ", ") + ("\\fB\\-" + escaped(name) + "\\fR");
    for (const auto& name : option.get_lnames())
        text += (text.empty() ? "" : ", ") + ("\\fB\\-\\-" + escaped(name) + "\\fR");
    if (option.get_positional()) return "\\fI" + escaped(option.get_name()) + "\\fR";
    if (option.get_type_size_max() > 0) text += " \\fI" + escaped(option.get_type_name()) + "\\fR";
    return text;
}

std::string options(const CLI::App& app) {
    std::string text;
    for (const CLI::Option* option : app.get_options()) {
        text += ".TP\n" + shownName(*option) + "\n" + escaped(option->get_description()) + ".\n";
    }
    return text;
}

// The sections of the footer: a title with a colon, and lines that stay as they are.
std::string sections(const std::string& footer) {
    std::string text;
    bool open = false;
    for (const std::string& line : CLI::detail::split(footer, '\n')) {
        if (!line.empty() && line.back() == ':') {
            text += ".SH " + CLI::detail::to_lower(line.substr(0, line.size() - 1)) + "\n.nf\n";
            for (std::size_t i = text.rfind(".SH ") + 4; text[i] != '\n'; ++i)
                text[i] = static_cast<char>(std::toupper(text[i]));
            open = true;
        } else if (open && line.empty()) {
            text += ".fi\n";
            open = false;
        } else {
            text += escaped(CLI::detail::trim_copy(line)) + "\n";
        }
    }
    return open ? text + ".fi\n" : text;
}

} // namespace

std::string manual(const CLI::App& app) {
    std::string text = ".TH ZYN 1 \"\" \"" + escaped(app.version()) +
                       "\" \"User commands\"\n"
                       ".SH NAME\nzyn \\- " +
                       escaped(app.get_description()) +
                       "\n"
                       ".SH SYNOPSIS\n";
    std::string verbs;
    for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; })) {
        text += ".B zyn " + escaped(verb->get_name()) + "\n[\\fIoptions\\fR]";
        for (const CLI::Option* option : verb->get_options()) {
            if (!option->get_positional()) continue;
            const std::string name = shownName(*option) + (option->get_items_expected_max() > 2 ? " ..." : "");
            text += option->get_required() ? " " + name : " [" + name + "]";
        }
        text += "\n.br\n";
        verbs +=
            ".SS zyn " + escaped(verb->get_name()) + "\n" + escaped(verb->get_description()) + ".\n" + options(*verb);
        if (!verb->get_footer().empty()) verbs += ".PP\n" + escaped(verb->get_footer()) + "\n";
    }
    return text + ".SH DESCRIPTION\n" + escaped(app.get_description()) + "\n.SH OPTIONS\n" + options(app) +
           ".SH VERBS\n" + verbs + sections(app.get_footer());
}

} // namespace zyn::tool
