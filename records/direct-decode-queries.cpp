// The direct way to decode the requests of the query channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

template Outcome decode<TypeId::ZynQueryReq>(const uint8_t*, std::size_t, void*);

} // namespace zyn::direct
