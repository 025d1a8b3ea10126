// zyn decode: octets in, text out.
#include <cstdlib>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "crew.h"
#include "progress.h"

namespace zyn::tool {
namespace {

bool wantsColours() {
    const char* terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR") && terminal && std::strcmp(terminal, "dumb") != 0;
}

// The file of bad messages.
class Aside {
public:
    explicit Aside(const std::string& name) {
        if (name.empty()) return;
        descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (descriptor < 0) throw WrongUse(name + ": " + std::strerror(errno));
    }
    ~Aside() {
        if (descriptor >= 0) close(descriptor);
    }
    Aside(const Aside&) = delete;
    void add(std::string_view lines) {
        if (descriptor >= 0) writeAll(descriptor, lines);
    }

private:
    int descriptor = -1;
};

class Decoding {
public:
    explicit Decoding(const DecodeOptions& how)
        : options(how), conditions(how.where.begin(), how.where.end()), aside(how.badFile),
          crew(
              how.jobs, [this] { return std::make_unique<Worker>(options, conditions, wantsColours()); },
              [this](Batch& batch) { finish(batch); }) {}

    void read(const std::string& file);
    uint64_t badMessages() const { return bad; }

private:
    void finish(Batch& batch) {
        if (progress && (batch.bad > 0)) progress->clear();
        batch.out.write();
        aside.add(batch.aside);
        bad += batch.bad;
    }
    void give(std::unique_ptr<Batch>& batch) {
        if (batch->items.empty()) return;
        crew.give(std::move(batch));
        batch = crew.take();
    }

    const DecodeOptions& options;
    const std::vector<Condition> conditions;
    Aside aside;
    uint64_t bad = 0;
    Progress* progress = nullptr;
    Crew crew; // last: its threads use what stands above
};

std::string inWords(uint64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

void Decoding::read(const std::string& file) {
    Reader reader(file, options.input.follow);
    const auto source = openSource(reader, options.input);
    Framer framer(*source, options.input);
    Progress bar(reader.name(), reader.size(), "B");
    progress = &bar;
    auto batch = crew.take();
    uint64_t number = 0;
    const uint64_t badBefore = bad;
    for (;;) {
        Frame frame;
        reader.mayWait = false;
        Fill got = framer.next(frame);
        if (got == Fill::Wait) {
            // Nothing more is there at once: what was read so far is shown first.
            give(batch);
            crew.drain();
            reader.mayWait = true;
            got = framer.next(frame);
        }
        if (got == Fill::End) break;
        batch->input = reader.name();
        batch->add(frame, ++number);
        if (batch->isFull()) {
            give(batch);
            bar.show(reader.position());
        }
    }
    give(batch);
    crew.drain();
    bar.clear();
    progress = nullptr;
    std::string summary;
    if (bad > badBefore) summary = inWords(bad - badBefore, "bad message") + " of " + std::to_string(number);
    if (framer.junk.octets > 0) {
        summary += summary.empty() ? "" : ", ";
        summary +=
            inWords(framer.junk.octets, "octet") + " of junk passed over in " + inWords(framer.junk.places, "place");
    }
    if (!summary.empty()) writeAll(STDERR_FILENO, reader.name() + ": " + summary + "\n");
}

} // namespace

int decode(const DecodeOptions& options) {
    if (options.input.follow) {
        if (options.files.size() != 1 || options.files[0] == "-") throw WrongUse("--follow needs one file");
        stopOnInterrupt();
    }
    Decoding decoding(options);
    for (const std::string& file : options.files) decoding.read(file);
    return decoding.badMessages() > 0 ? someBad : allGood;
}

} // namespace zyn::tool
