// The direct way to decode the replies of the query channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

constinit const AlternativeTable<TypeId::ZynQueryRep> queryReplies = alternativesByNumber<TypeId::ZynQueryRep>;

} // namespace zyn::direct
