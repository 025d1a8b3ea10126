#include "cost.h"

double work(const uint8_t* octets, uint32_t size) {
    ZynQueryRep reply;
    if (ZynQueryReplyDecode(octets, size, &reply) != 0 || reply.choiceId != 270) return 0;
    double sum = 0;
    for (const AsnListNode* node = reply.indexValRep->valuesList->first; node; node = node->next) {
        const ZynIndexValRepSetOfSeq* values = (const ZynIndexValRepSetOfSeq*)node->data;
        sum += values->value->value;
        if (values->low->decimals) sum += *values->low->decimals;
    }
    return sum;
}
