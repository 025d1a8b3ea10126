// could not convert .*zyn::Required<double>
#include <zyn/zyn.hpp>

int main() {
    zyn::Builder build;
#ifdef WRONG
    build.make(zyn::Init<AsnFixedReal>{.decimals = 2});
#else
    build.make(zyn::Init<AsnFixedReal>{.value = 1, .decimals = 2});
#endif
}
