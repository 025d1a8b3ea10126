// could not convert .*nullptr
#include <zyn/zyn.hpp>

int main() {
    zyn::Builder build;
    auto& value = build.make(zyn::Init<AsnFixedReal>{.value = 1});
#ifdef WRONG
    build.make(zyn::Init<ZynIndexValRepSetOfSeq>{.value = value, .high = nullptr, .low = value});
#else
    build.make(zyn::Init<ZynIndexValRepSetOfSeq>{.value = value, .high = value, .low = value});
#endif
}
