// The library's workspace for JSON, owned; and a writer for the tool's own JSON.
#pragma once

#include <new>
#include <string>
#include <string_view>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "zyn/json.h"

namespace zyn::tool {

class Json {
public:
    Json() : workspace(ZynJsonNew()) {
        if (!workspace) throw std::bad_alloc();
    }
    ~Json() { ZynJsonFree(workspace); }
    Json(const Json&) = delete;

    // The text is good until the next call.
    std::string_view write(const ZynType& type, const void* record) {
        std::size_t length = 0;
        const char* text = ZynJsonWrite(workspace, &type, record, &length);
        if (!text) throw std::bad_alloc();
        return {text, length};
    }
    ZynJson* get() { return workspace; }

private:
    ZynJson* workspace;
};

class JsonWriter {
public:
    JsonWriter() : writer(buffer) {}

    JsonWriter& key(std::string_view name) {
        writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
        return *this;
    }
    void text(std::string_view value) { writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size())); }
    void number(int64_t value) { writer.Int64(value); }
    void truth(bool value) { writer.Bool(value); }
    void startObject() { writer.StartObject(); }
    void endObject() { writer.EndObject(); }
    void startArray() { writer.StartArray(); }
    void endArray() { writer.EndArray(); }
    std::string_view view() const { return {buffer.GetString(), buffer.GetSize()}; }

private:
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer;
};

} // namespace zyn::tool
