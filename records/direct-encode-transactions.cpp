// The direct way to encode the transaction channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-encode.h"

namespace zyn::direct {

template uint8_t* encode<TypeId::ZynTransReq>(const void*, uint8_t*, uint8_t*);
template uint8_t* encode<TypeId::ZynTransRep>(const void*, uint8_t*, uint8_t*);

} // namespace zyn::direct
