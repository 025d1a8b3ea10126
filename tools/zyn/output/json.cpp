// Messages as JSON, one object a line.
#include "json-writer.h"
#include "output/view.h"

namespace zyn::tool {
namespace {

class JsonView : public View {
public:
    void show(std::string& out, ZynChannel channel, void* envelope, const uint8_t*, std::size_t) override {
        out += json.write(*ZynEnvelopeType(channel), envelope);
        out += '\n';
    }

private:
    Json json;
};

} // namespace

std::unique_ptr<View> jsonView() { return std::make_unique<JsonView>(); }

} // namespace zyn::tool
