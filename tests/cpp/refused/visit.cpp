// visit: an alternative is not handled
#include <zyn/zyn.hpp>

void look(zyn::View<ZynTransRep> reply) {
    reply.visit(zyn::overloaded{[](zyn::View<ZynReplyOK>) {},
#ifndef WRONG
                                [](auto) {},
#endif
                                [](zyn::View<ZynReplyBad>) {}});
}

int main() {}
