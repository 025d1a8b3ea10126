// The error channel: what went wrong goes out in words through a handler, and as a code by a jump.
#include "sbuf/failure.h"

#include <cstdio>

#include "zyn/asn.h"

namespace {

Asn1ErrorHandler currentErrorHandler = Asn1DefaultErrorHandler;

} // namespace

void Asn1Error(char* str) { currentErrorHandler(str, 1); }

void Asn1Warning(char* str) { currentErrorHandler(str, 0); }

void Asn1DefaultErrorHandler(char* str, int) { std::fputs(str, stderr); }

Asn1ErrorHandler Asn1InstallErrorHandler(Asn1ErrorHandler handler) {
    Asn1ErrorHandler previous = currentErrorHandler;
    currentErrorHandler = handler ? handler : Asn1DefaultErrorHandler;
    return previous;
}

namespace zyn {

void raise(jmp_buf env, int32_t code, const char* message) {
    if (message) Asn1Error(const_cast<char*>(message)); // the handler's type is older than const; none writes to it
    std::longjmp(env, code);
}

} // namespace zyn
