// The direct way to encode the replies of the query channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-encode.h"

namespace zyn::direct {

template uint8_t* encode<TypeId::ZynQueryRep>(const void*, uint8_t*, uint8_t*);

} // namespace zyn::direct
