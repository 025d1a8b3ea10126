#include "commands.h"

#include <unistd.h>

#include "channel.h"
#include "output/out.h"

namespace zyn::tool {
namespace {

template <typename Value> using Words = std::vector<std::pair<std::string, Value>>;

const Words<Spelling> spellings = {{"raw", Spelling::Raw}, {"hex", Spelling::Hex}, {"base64", Spelling::Base64}};

Words<int> channels() {
    Words<int> words;
    for (int i = 0; i < ZYN_CHANNELS; ++i) words.emplace_back(channelName(static_cast<ZynChannel>(i)), i);
    return words;
}

// An option whose value is one of some words; the list of them is what the help shows.
template <typename Value>
CLI::Option* addWords(CLI::App& app, const std::string& name, Value& value, const Words<Value>& words,
                      const std::string& description) {
    std::string list;
    for (const auto& [word, meaning] : words) list += (list.empty() ? "" : "|") + word;
    const auto take = [&value, words, list](const CLI::results_t& given) {
        for (const auto& [word, meaning] : words) {
            if (word != given.back()) continue;
            value = meaning;
            return true;
        }
        throw CLI::ValidationError("'" + given.back() + "' is none of " + list);
    };
    return app.add_option(name, take, description)->type_name(list);
}

void addFiles(CLI::App& app, std::vector<std::string>& files) {
    files = {"-"};
    app.add_option("FILE", files, "What to read; - is the standard input, and so is nothing at all")->type_name("FILE");
}

void addInput(CLI::App& app, InputOptions& input, int& channel) {
    Words<Spelling> words = {{"auto", Spelling::Auto}};
    words.insert(words.end(), spellings.begin(), spellings.end());
    addWords(
        app, "--in", input.spelling, words,
        "How the octets are spelled: as they are, messages one behind the other; in hexadecimal, a message a line or "
        "as a hex dump; in base64. Without it this is told by the input itself");
    addWords(app, "--channel", channel, channels(),
             "The channel and direction of all messages. Without it each message tells it itself");
    app.add_option("--limit", input.limit,
                   "The longest message to expect, in bytes, K, M or G; without it 16M. No more memory is taken")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""));
}

void addDecode(Commands& commands) {
    auto& options = commands.decode;
    CLI::App& app = *commands.app.add_subcommand("decode", "Show messages as text");
    app.callback([&commands] { commands.run = [&commands] { return decode(commands.decode); }; });
    addFiles(app, options.files);
    addInput(app, options.input, options.channel);
    const Words<ViewKind> views = {
        {"notation", ViewKind::Notation}, {"json", ViewKind::Json}, {"tree", ViewKind::Tree}};
    addWords(
        app, "--out", options.view, views,
        "What to show: the value notation of ASN.1 (this is what you get without the option); JSON, one object a line; "
        "or every element with its octets beside their meaning");
    app.add_option(
           "--where", options.where,
           "Show only messages with this value at this path, such as upTransMsg.order.order.secBoardId.secCode=ZORA. "
           "* stands for any one name, ** for any number of them, [3] for an element of a list, which otherwise is "
           "any one. VALUE is a number, true or false, or a text as it is; octets follow .hex and bits .bits. "
           "May be given several times: then all have to hold")
        ->type_name("PATH=VALUE")
        ->allow_extra_args(false);
    app.add_flag("--skip-junk", options.input.skipJunk,
                 "Pass over what is no message, as between those in a log, and count it");
    app.add_flag("--follow", options.input.follow, "Go on as the file grows, until interrupted");
    app.add_option("--bad", options.badFile,
                   "Put messages that failed into this file, with place and reason, one JSON object a line")
        ->type_name("FILE");
    app.add_option("--jobs", options.jobs, "How many processors to use; the order stays")
        ->type_name("N")
        ->check(CLI::Range(1u, 256u).description(""));
    app.footer("What is wrong with a bad message, and where, is told on the standard error stream.");
}

void addEncode(Commands& commands) {
    auto& options = commands.encode;
    CLI::App& app = *commands.app.add_subcommand("encode", "Make messages out of JSON, as decode --out json writes it");
    app.callback([&commands] { commands.run = [&commands] { return encode(commands.encode); }; });
    addFiles(app, options.files);
    addWords(app, "--channel", options.channel, channels(),
             "The channel and direction of all messages. Without it this is told by their fields");
    addWords(app, "--out", options.spelling, spellings,
             "How to spell the octets; without it hex. Other than raw messages have a line each");
}

void addDiff(Commands& commands) {
    auto& options = commands.diff;
    CLI::App& app = *commands.app.add_subcommand("diff", "Compare the messages of two files field by field");
    app.callback([&commands] { commands.run = [&commands] { return diff(commands.diff); }; });
    app.add_option("A", options.one, "The one file; - is the standard input")->type_name("FILE")->required();
    app.add_option("B", options.other, "The other file")->type_name("FILE")->required();
    addInput(app, options.input, options.channel);
    app.footer("Exit code 1 also says that messages differ.");
}

void addSchema(Commands& commands) {
    auto& options = commands.schema;
    CLI::App& app = *commands.app.add_subcommand("schema", "List all types, or show one with its fields and codes");
    app.callback([&commands] { commands.run = [&commands] { return schema(commands.schema); }; });
    app.add_option("NAME", options.name, "A type, a message or a message's number, such as ZynOrderEntry, order or 426")
        ->type_name("NAME");
    app.add_flag("--json", options.json, "Write JSON, for programs");
}

void addExplain(Commands& commands) {
    auto& options = commands.explain;
    CLI::App& app = *commands.app.add_subcommand("explain", "Tell what a failure code means");
    app.callback([&commands] { commands.run = [&commands] { return explain(commands.explain); }; });
    app.add_option("CODE", options.words,
                   "The code, with or without its minus sign; in front of it the module, where only one is wanted")
        ->type_name("[MODULE] CODE")
        ->expected(1, 2)
        ->required();
}

void addSample(Commands& commands) {
    auto& options = commands.sample;
    CLI::App& app = *commands.app.add_subcommand("sample", "Make random messages that decode well");
    app.callback([&commands] { commands.run = [&commands] { return sample(commands.sample); }; });
    app.add_option("NAME", options.names,
                   "Which messages to make: names or numbers of messages, types of their records, or channels "
                   "(trans-request, ...); without any, all kinds")
        ->type_name("NAME");
    app.add_option("--count", options.count, "How many messages")->type_name("N");
    app.add_option("--seed", options.seed, "The same seed makes the same messages")->type_name("S");
    addWords(app, "--out", options.spelling, spellings,
             "How to spell the octets; without it raw, but hex on a terminal");
}

int print(const std::string& text) {
    writeAll(STDOUT_FILENO, text);
    return allGood;
}

} // namespace

Commands::Commands() : app("Shows, makes and compares messages of the trading protocol.", "zyn") {
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("zyn ") + ZynVersion(), "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    addDecode(*this);
    addEncode(*this);
    addDiff(*this);
    addSchema(*this);
    addExplain(*this);
    addSample(*this);
    CLI::App& completing =
        *app.add_subcommand("completion", "Write a script that completes the command line in a shell");
    completing.callback([this] { run = [this] { return print(completion(app, shell)); }; });
    const Words<std::string> shells = {{"bash", "bash"}, {"zsh", "zsh"}, {"fish", "fish"}};
    addWords(completing, "SHELL", shell, shells, "Which shell")->required();
    CLI::App& page = *app.add_subcommand("manual", "Write the manual page, as man reads it");
    page.callback([this] { run = [this] { return print(manual(app)); }; });
    app.footer("Exit codes:\n"
               "  0  all is well\n"
               "  1  some message is bad, or, for diff, differs\n"
               "  2  used wrongly, or a file could not be read or written\n"
               "\n"
               "Examples:\n"
               "  zyn decode capture.bin\n"
               "  zyn decode --out tree --in hex message.txt\n"
               "  zyn decode --out json capture.bin | zyn encode --out raw > again.bin\n"
               "  zyn explain Order 103");
}

Argument argumentOf(const CLI::Option& option) {
    const std::string name = option.get_type_size_max() == 0 ? "" : option.get_type_name();
    if (name.empty() || name == "TEXT") return {};
    if (name == "FILE") return {.words = {}, .isFile = true};
    if (name.find('|') == std::string::npos) return {.words = {}, .isFile = false, .isAny = true};
    return {.words = CLI::detail::split(name, '|')};
}

} // namespace zyn::tool
