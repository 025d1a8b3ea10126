/* A reply with the values of 50 indices, made and read by both programs. */
#include <stdlib.h>

#include <zyn/zyn.h>

static uint32_t makeMessage(uint8_t* octets, uint32_t size) {
    ZynIndexValRep reply = {ZynListNew()};
    for (int i = 0; i < 50; ++i) {
        ZynIndexValRepSetOfSeq* values =
            (ZynIndexValRepSetOfSeq*)ZynListAppend(reply.valuesList, sizeof(ZynIndexValRepSetOfSeq));
        AsnFixedReal** places[] = {&values->value, &values->high, &values->low};
        for (int j = 0; j < 3; ++j) {
            *places[j] = (AsnFixedReal*)ZynEncodeMemAlloc(sizeof(AsnFixedReal));
            ZynFixedRealSetWithDecimals(*places[j], 1000 + i + j, j);
        }
    }
    return ZynQueryReplyEncode(&reply, 270, octets, size);
}

/* What is counted. */
double work(const uint8_t* octets, uint32_t size);

int main(void) {
    static uint8_t octets[8192];
    const uint32_t size = makeMessage(octets, sizeof octets);
    double sum = 0;
    for (int i = 0; i < 100; ++i) sum += work(octets, size);
    return size > 0 && sum == 100 * (50 * 1024.5 + 50 * 2) ? 0 : 1;
}
