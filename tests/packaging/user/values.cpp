// The same logon by the interface for C++.
#include <zyn/zyn.hpp>

int main() {
    zyn::Builder build;
    auto& logon = build.make(zyn::Init<ZynUserLogon>{.loginPassword = "open sesame"});
    uint8_t octets[64];
    const auto message = zyn::encode<zyn::TransRequest>("TRADER01    ", logon, octets);
    if (!message) return 1;
    const auto request = zyn::decode<zyn::TransRequest>(*message);
    if (!request) return 1;
    request->view().upTransMsg().visit(zyn::overloaded{
        [&](zyn::View<ZynUserLogon>) { std::printf("%s: %zu octets, a logon\n", ZynVersion(), message->size()); },
        [](auto) { std::puts("another request"); }});
    return 0;
}
