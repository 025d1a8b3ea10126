// Octets as they are: one unit, from the start to the end.
#include "input/source.h"

namespace zyn::tool {
namespace {

class RawSource : public Source {
public:
    explicit RawSource(Reader& from) : reader(from) {}

    Fill next(Window& window) override {
        if (started) return Fill::End;
        started = true;
        window.startUnit(reader.position());
        return Fill::More;
    }

    Fill fill(Window& window) override {
        if (reader.text().empty()) {
            const Fill got = reader.more();
            if (got != Fill::More) return got;
        }
        window.push(reader.text().data(), reader.text().size());
        reader.take(reader.text().size());
        return Fill::More;
    }

    bool hasUnits() const override { return false; }

private:
    Reader& reader;
    bool started = false;
};

} // namespace

const std::string& Source::complaint() const {
    static const std::string none;
    return none;
}

std::unique_ptr<Source> rawSource(Reader& reader) { return std::make_unique<RawSource>(reader); }

} // namespace zyn::tool
