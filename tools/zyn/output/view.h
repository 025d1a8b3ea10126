// The forms in which messages are shown.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "options.h"
#include "zyn/describe.h"

namespace zyn::tool {

class View {
public:
    virtual ~View() = default;
    // Adds a message that was decoded into envelope.
    virtual void show(std::string& out, ZynChannel channel, void* envelope, const uint8_t* octets,
                      std::size_t length) = 0;
    // Adds what can be shown of a message that failed at an offset, and why.
    virtual void showBad(std::string&, ZynChannel, const uint8_t*, std::size_t, std::size_t, std::string_view) {}
};

std::unique_ptr<View> notationView();
std::unique_ptr<View> jsonView();
std::unique_ptr<View> treeView(bool colours);

inline std::unique_ptr<View> makeView(ViewKind kind, bool colours) {
    if (kind == ViewKind::Json) return jsonView();
    return kind == ViewKind::Tree ? treeView(colours) : notationView();
}

} // namespace zyn::tool
