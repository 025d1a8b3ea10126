// The C interface.
#include "zyn/json.h"

#include <new>

#include "json/read.h"
#include "json/write.h"

struct ZynJson {
    zyn::json::Out out;
    zyn::json::Reading reading;
    zyn::json::Place place = {}; // of what was wrong
    unsigned indent = 0;
};

ZynJson* ZynJsonNew(void) { return new (std::nothrow) ZynJson; }

void ZynJsonFree(ZynJson* json) { delete json; }

void ZynJsonSetIndent(ZynJson* json, unsigned indent) { json->indent = indent; }

const char* ZynJsonWrite(ZynJson* json, const ZynType* type, const void* record, size_t* length) try {
    zyn::json::Out& out = json->out;
    out.clear();
    zyn::json::write(out, zyn::json::planOf(type), record, json->indent);
    *length = out.size();
    out.need(1);
    *out.at = 0;
    return out.start();
} catch (const std::bad_alloc&) {
    return nullptr;
}

void* ZynJsonRead(ZynJson* json, const ZynType* type, const char* text, size_t length) {
    const std::string_view whole = length > 0 ? std::string_view(text, length) : std::string_view("");
    zyn::json::Reading& reading = json->reading;
    try {
        void* const record = reading.read(zyn::json::planOf(type), whole);
        if (!record) json->place = zyn::json::placeOf(whole, reading.wrong->offset);
        return record;
    } catch (const std::bad_alloc&) {
        reading.wrong = zyn::json::Wrong{0, "", "out of memory"}; // short enough to need none
        json->place = {1, 1};
        return nullptr;
    }
}

int ZynJsonLastError(const ZynJson* json, ZynJsonError* out) {
    const auto& wrong = json->reading.wrong;
    if (!wrong) return 0;
    *out = {json->place.line, json->place.column, wrong->path.c_str(), wrong->text.c_str()};
    return 1;
}
