// The direct way to decode the transaction channel: a unit of its own, so that no compiler process grows large.
#include "records/direct-decode.h"

namespace zyn::direct {

constinit const AlternativeTable<TypeId::ZynTransReqChoice> transactionRequests =
    alternativesByNumber<TypeId::ZynTransReqChoice>;
constinit const AlternativeTable<TypeId::ZynTransRep> transactionReplies = alternativesByNumber<TypeId::ZynTransRep>;

} // namespace zyn::direct
