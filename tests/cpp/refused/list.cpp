// could not convert
#include <zyn/zyn.hpp>

int main() {
    zyn::Builder build;
#ifdef WRONG
    build.make(zyn::Init<ZynIndexValRep>{.valuesList = build.list<ZynUserUpdateActivityStatusSetOfSeq>()});
#else
    build.make(zyn::Init<ZynIndexValRep>{.valuesList = build.list<ZynIndexValRepSetOfSeq>()});
#endif
}
