// The direct way to decode the transaction channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

constinit const Alternatives transactionRequests = alternativesByNumber<TypeId::ZynTransReqChoice>;
constinit const Alternatives transactionReplies = alternativesByNumber<TypeId::ZynTransRep>;

} // namespace zyn::direct
