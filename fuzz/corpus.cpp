// zyn-fuzz-corpus: makes what the fuzzers start from.
//
//   zyn-fuzz-corpus seeds DIR         from tests/messages: a folder in DIR for each target, a file for each input
//   zyn-fuzz-corpus dictionary FILE   the tags of all records, from the field tables
//   zyn-fuzz-corpus unpack DIR        the stored corpus, as inputs into the same folders
//   zyn-fuzz-corpus pack DIR          the inputs in the folders as the stored corpus
//
// The stored corpus is fuzz/corpus: a file for each target, in it a line of hexadecimal for each input.
#include <cinttypes>
#include <cstdio>
#include <iostream>

#include "fuzz/target.h"
#include "tests/support/decoded.h"
#include "tests/support/golden.h"
#include "tests/support/walk.h"

namespace fs = std::filesystem;

namespace zyn::fuzz {

const Target target = {2, madeRecord}; // nothing is mutated here

namespace {

using namespace test;

constexpr const char* targets[] = {"trans-request", "query-request", "trans-reply", "query-reply",
                                   "record",        "text",          "print",       "encode"};

uint64_t hashOf(const Octets& octets) { // FNV-1a
    uint64_t hash = 0xCBF29CE484222325;
    for (const uint8_t octet : octets) hash = (hash ^ octet) * 0x100000001B3;
    return hash;
}

void store(const fs::path& folder, const Octets& octets) {
    fs::create_directories(folder);
    char name[17];
    std::snprintf(name, sizeof name, "%016" PRIx64, hashOf(octets));
    std::ofstream file(folder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(octets.data()), static_cast<std::streamsize>(octets.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + (folder / name).string());
}

Octets loaded(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Octets(std::istreambuf_iterator<char>(file), {});
}

Octets joined(Octets front, const Octets& back) {
    append(front, back);
    return front;
}

// Each record below a message, and each text, as an input of its own.
void storeParts(const fs::path& folder, const Channel& channel, ChoiceRecord* choice) {
    forEachValue(channel.choice, choice, [&](TypeId id, void* value) {
        const Type& type = typeOf(id);
        if (type.shape != Shape::Primitive) {
            const Octets content = encodedContent(id, value);
            const Octets element = type.shape == Shape::Choice ? content : Writer().element(0x30000000, content);
            store(folder / "record", joined(recordSelector(id), element));
        } else if (id == TypeId::AsnOcts) {
            const auto* text = static_cast<const AsnOcts*>(value);
            store(folder / "text", Writer().element(0x04000000, Octets(text->octs, text->octs + text->octetLen)));
        }
    });
}

void makeSeeds(const fs::path& folder) {
    TwoWays ways;
    for (const fs::path& path : goldenPaths(ZYN_TEST_DATA "/messages")) {
        const Golden golden = readGolden(path);
        void* message = ways.decode(*golden.channel, golden.octets);
        if (ways.code != 0) throw std::runtime_error(path.string() + " is not decoded");
        const auto number = static_cast<uint8_t>(golden.channel - channels);
        store(folder / golden.channel->name, golden.octets);
        store(folder / "print", joined({number, 4}, golden.octets));
        store(folder / "encode", joined({number, 0}, golden.octets));
        storeParts(folder, *golden.channel, const_cast<ChoiceRecord*>(choiceIn(*golden.channel, message)));
    }
}

void makeDictionary(const fs::path& path) {
    std::set<Octets> tags;
    for (const Type& type : types) {
        for (const Field& field : type.fields) tags.insert(tagOctetsOf(field.tag));
        for (const Alternative& row : type.alternatives) tags.insert(tagOctetsOf(row.tag));
    }
    std::ofstream file(path);
    for (const Octets& tag : tags) {
        file << '"';
        for (const uint8_t octet : tag) file << "\\x" << toHex(&octet, 1);
        file << "\"\n";
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

fs::path storedCorpus(const std::string& name) { return fs::path(ZYN_FUZZ_CORPUS) / (name + ".txt"); }

void unpack(const fs::path& folder) {
    for (const std::string name : targets) {
        std::ifstream file(storedCorpus(name));
        if (!file) throw std::runtime_error("cannot read " + storedCorpus(name).string());
        fs::create_directories(folder / name);
        for (std::string line; std::getline(file, line);) store(folder / name, hex(line));
    }
}

void pack(const fs::path& folder) {
    for (const std::string name : targets) {
        std::set<std::pair<std::size_t, Octets>> inputs; // short ones first, so that changes are easy to see
        for (const auto& entry : fs::directory_iterator(folder / name)) {
            const Octets octets = loaded(entry.path());
            inputs.insert({octets.size(), octets});
        }
        std::ofstream file(storedCorpus(name));
        for (const auto& [size, octets] : inputs) {
            std::string line = toHex(octets);
            std::erase(line, ' ');
            file << line << '\n';
        }
        if (!file.flush()) throw std::runtime_error("cannot write " + storedCorpus(name).string());
    }
}

constexpr struct {
    const char* name;
    void (*run)(const fs::path&);
} commands[] = {{"seeds", makeSeeds}, {"dictionary", makeDictionary}, {"unpack", unpack}, {"pack", pack}};

} // namespace
} // namespace zyn::fuzz

int main(int argc, char** argv) {
    try {
        for (const auto& command : zyn::fuzz::commands) {
            if (argc == 3 && argv[1] == std::string(command.name)) {
                command.run(argv[2]);
                return 0;
            }
        }
        std::cerr << "usage: zyn-fuzz-corpus seeds|dictionary|unpack|pack PATH\n";
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << "zyn-fuzz-corpus: " << failure.what() << "\n";
        return 1;
    }
}
