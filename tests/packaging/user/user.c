/* A logon there and back. */
#include <zyn/zyn.h>

int main(void) {
    ZynUserLogon logon = {0};
    uint8_t octets[64];
    ZynTransReq request;
    ZynTextStrSet(&logon.loginPassword, "open sesame", 0);
    const uint32_t length = ZynTransRequestEncode("TRADER01    ", &logon, 455, octets, sizeof octets);
    const int32_t code = ZynTransRequestDecode(octets, length, &request);
    if (code != 0) return 1;
    printf("%s: %u octets, alternative %u\n", ZynVersion(), (unsigned)length, (unsigned)request.upTransMsg->choiceId);
    return 0;
}
