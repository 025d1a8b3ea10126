// The direct way to decode the transaction channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

template Outcome decode<TypeId::ZynTransReq>(const uint8_t*, std::size_t, void*);
template Outcome decode<TypeId::ZynTransRep>(const uint8_t*, std::size_t, void*);

} // namespace zyn::direct
