// What the command line asks for, verb by verb.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace zyn::tool {

// How octets are spelled in a file.
enum class Spelling { Auto, Raw, Hex, Base64 };

// How decoded messages are shown.
enum class ViewKind { Notation, Json, Tree };

// The exit codes.
enum ExitCode { allGood = 0, someBad = 1, usedWrongly = 2 };

// What cannot be done as it was asked for; ends the program with usedWrongly.
struct WrongUse : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct InputOptions {
    Spelling spelling = Spelling::Auto;
    uint64_t limit = uint64_t{16} << 20; // octets that a message may have; bounds the memory needed
    bool follow = false;
    bool skipJunk = false;
};

struct DecodeOptions {
    std::vector<std::string> files;
    InputOptions input;
    int channel = -1; // a ZynChannel, or -1: told by each message
    ViewKind view = ViewKind::Notation;
    std::string badFile;
    std::vector<std::string> where;
    unsigned jobs = 1;
};

struct EncodeOptions {
    std::vector<std::string> files;
    int channel = -1;
    Spelling spelling = Spelling::Hex;
};

struct DiffOptions {
    std::string one, other;
    InputOptions input;
    int channel = -1;
};

struct SchemaOptions {
    std::string name;
    bool json = false;
};

struct ExplainOptions {
    std::vector<std::string> words; // [MODULE] CODE
};

struct SampleOptions {
    std::vector<std::string> names; // of types, alternatives (or their numbers) and channels; none: all messages
    uint64_t count = 1;
    uint64_t seed = 1;
    Spelling spelling = Spelling::Auto; // Auto: raw, but hexadecimal on a terminal
};

int decode(const DecodeOptions& options);
int encode(const EncodeOptions& options);
int diff(const DiffOptions& options);
int schema(const SchemaOptions& options);
int explain(const ExplainOptions& options);
int sample(const SampleOptions& options);

} // namespace zyn::tool
