// The workspace of zyn/json.h, with texts and errors as strings.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tests/support/sample.h"
#include "zyn/json.h"

namespace zyn::test {

class Json {
public:
    std::string write(const ZynType* type, const void* record, unsigned indent = 0) {
        ZynJsonSetIndent(workspace.get(), indent);
        std::size_t length = 0;
        const char* text = ZynJsonWrite(workspace.get(), type, record, &length);
        if (!text || text[length] != 0) return "no text, or none that is closed by a 0 byte";
        return {text, length};
    }

    // The text is read from a block of its very size, so that a sanitizer sees any byte read behind it.
    void* read(const ZynType* type, std::string_view text) {
        const std::unique_ptr<char[]> copy(new char[text.size()]);
        text.copy(copy.get(), text.size());
        return ZynJsonRead(workspace.get(), type, copy.get(), text.size());
    }

    // "line:column path: sentence"; empty: the last read did not fail.
    std::string error() const {
        ZynJsonError wrong;
        if (!error(wrong)) return "";
        return std::to_string(wrong.line) + ':' + std::to_string(wrong.column) + ' ' + wrong.path + ": " + wrong.text;
    }
    ZynJson* get() const { return workspace.get(); }
    bool error(ZynJsonError& wrong) const { return ZynJsonLastError(workspace.get(), &wrong) != 0; }

private:
    struct Free {
        void operator()(ZynJson* json) const { ZynJsonFree(json); }
    };
    std::unique_ptr<ZynJson, Free> workspace{ZynJsonNew()};
};

inline const ZynType* describe(const Type& type) { return ZynTypeByName(type.name); }

} // namespace zyn::test
