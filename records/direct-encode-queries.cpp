// The direct way to encode the requests of the query channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-encode.h"

namespace zyn::direct {

template uint8_t* encode<TypeId::ZynQueryReq>(const void*, uint8_t*, uint8_t*);

} // namespace zyn::direct
