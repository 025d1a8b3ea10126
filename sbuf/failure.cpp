// The error channel: what went wrong goes out in words through a handler, and as a code by a jump.
#include "sbuf/failure.h"

#include <cstdio>
#include <cstring>

#include "sbuf/state.h"

void Asn1Error(char* str) { zyn::currentErrorHandler()(str, 1); }

void Asn1Warning(char* str) { zyn::currentErrorHandler()(str, 0); }

void Asn1DefaultErrorHandler(char* str, int) { std::fputs(str, stderr); }

Asn1ErrorHandler Asn1InstallErrorHandler(Asn1ErrorHandler handler) {
    Asn1ErrorHandler previous = zyn::currentErrorHandler();
    zyn::currentErrorHandler() = handler ? handler : Asn1DefaultErrorHandler;
    return previous;
}

namespace zyn {

void raise(jmp_buf env, int32_t code, const char* message) {
    if (message) {
        MessageText& copy = currentMessage();
        copy = {};
        std::strncpy(copy.text, message, sizeof copy.text - 1);
        Asn1Error(copy.text);
    }
    std::longjmp(env, code);
}

} // namespace zyn
