// The error channel: what went wrong goes out in words through a handler, and as a code by a jump.
#include "sbuf/failure.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "sbuf/state.h"
#include "zyn/codes.h"

void Asn1Error(char* str) { zyn::currentErrorHandler()(str, 1); }

void Asn1Warning(char* str) { zyn::currentErrorHandler()(str, 0); }

void Asn1DefaultErrorHandler(char* str, int) { std::fputs(str, stderr); }

Asn1ErrorHandler Asn1InstallErrorHandler(Asn1ErrorHandler handler) {
    Asn1ErrorHandler previous = zyn::currentErrorHandler();
    zyn::currentErrorHandler() = handler ? handler : Asn1DefaultErrorHandler;
    return previous;
}

namespace zyn {

namespace {

// These find the end of the data inside a string, where nothing is read octet by octet.
bool isCutComponent(int32_t code) { return code == ZYN_E_OCTS_COMPONENT_CUT || code == ZYN_E_BITS_COMPONENT_CUT; }

// Copies what a registered walk tells. It is not registered any more afterwards.
void keep(int32_t code) {
    const Walk* walk = std::exchange(currentFailure().walk, nullptr);
    const uint8_t* component = std::exchange(currentFailure().component, nullptr);
    if (!walk) return;
    Failure& failure = startFailure(code);
    const SBuf& b = *walk->b;
    const Step& top = *walk->top;
    const auto offsetOf = [&](const uint8_t* place) { return static_cast<uint32_t>(place - b.dataStart); };
    const uint8_t* element = component ? component : top.element;
    failure.atEnd = b.readError || isCutComponent(code);
    failure.inComponent = component != nullptr;
    failure.inWrapper = walk->inWrapper;
    failure.element = offsetOf(element);
    failure.offset = failure.atEnd ? offsetOf(b.dataEnd) : failure.element;
    failure.position = offsetOf(b.readLoc);
    failure.content = offsetOf(top.content);
    failure.length = top.length;
    failure.headOctets = static_cast<uint32_t>(std::min(sizeof failure.head, size_t(b.dataEnd - element)));
    std::copy_n(element, failure.headOctets, failure.head);
    for (const Step* step = &top; step; step = step->outer) ++failure.pathLength;
    PathStep* inner = failure.path + failure.pathLength;
    for (const Step* step = &top; step; step = step->outer) *--inner = {step->type, step->index};
}

} // namespace

Failure& startFailure(int32_t code) {
    currentlyReady() = false;
    Failure& failure = currentFailure();
    failure.code = code;
    failure.pathLength = 0;
    failure.offset = 0;
    return failure;
}

void raise(jmp_buf env, int32_t code, const char* message) {
    keep(code);
    if (message) {
        MessageText& copy = currentMessage();
        std::strncpy(copy.text, message, sizeof copy.text - 1); // fills up with 0
        Asn1Error(copy.text);
    }
    std::longjmp(env, code);
}

} // namespace zyn
