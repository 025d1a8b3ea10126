// Messages as the library prints them.
#include <cstdio>
#include <new>

#include "output/view.h"

namespace zyn::tool {
namespace {

ssize_t append(void* to, const char* text, size_t length) {
    (*static_cast<std::string**>(to))->append(text, length);
    return static_cast<ssize_t>(length);
}

class NotationView : public View {
public:
    // The library gathers what it prints itself, so that the stream needs no buffer.
    NotationView()
        : stream(fopencookie(&target, "w", {.read = nullptr, .write = append, .seek = nullptr, .close = nullptr})) {
        if (!stream) throw std::bad_alloc();
        std::setvbuf(stream, nullptr, _IONBF, 0);
    }
    ~NotationView() override { std::fclose(stream); }

    void show(std::string& out, ZynChannel channel, void* envelope, const uint8_t*, std::size_t) override {
        target = &out;
        ZynEnvelopeType(channel)->operations.print(stream, envelope, 0);
        out += '\n';
    }

private:
    std::string* target = nullptr;
    FILE* stream;
};

} // namespace

std::unique_ptr<View> notationView() { return std::make_unique<NotationView>(); }

} // namespace zyn::tool
