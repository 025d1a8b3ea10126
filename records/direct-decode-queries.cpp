// The direct way to decode the requests of the query channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

constinit const AlternativeTable<TypeId::ZynQueryReqChoice> queryRequests =
    alternativesByNumber<TypeId::ZynQueryReqChoice>;

} // namespace zyn::direct
