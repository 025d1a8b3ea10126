// no matching function for call to .*numberOf
#include <zyn/zyn.hpp>

int main() {
    zyn::Builder build;
    uint8_t octets[64];
#ifdef WRONG
    auto& record = build.make(zyn::Init<AsnFixedReal>{.value = 1});
#else
    auto& record = build.make(zyn::Init<ZynUserLogon>{.loginPassword = "x"});
#endif
    return zyn::encode<zyn::TransRequest>("A", record, octets).ok();
}
