#include "cost.h"

#include <zyn/zyn.hpp>

double work(const uint8_t* octets, uint32_t size) {
    const auto reply = zyn::decode<zyn::QueryReply>({octets, size});
    if (!reply) return 0;
    double sum = 0;
    reply->view().visit(zyn::overloaded{[&](zyn::View<ZynIndexValRep> values) {
                                            for (const auto one : values.valuesList()) {
                                                sum += one.value().value();
                                                if (const auto decimals = one.low().decimals()) sum += *decimals;
                                            }
                                        },
                                        [](auto) {}});
    return sum;
}
