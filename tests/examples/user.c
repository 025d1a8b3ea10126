/* What a user's program in C may do with the umbrella header alone. It is compiled as C and, by user.cpp, as C++. */
#include <zyn/zyn.h>

static int failures = 0;

static void check(int holds, const char* what) {
    if (holds) return;
    printf("%s\n", what);
    ++failures;
}

static int messages = 0;

static void countMessage(char* str, int severity) {
    if (strcmp(str, "BDecOctetString: ERROR - decoded past end of data\n") == 0 && severity == 1) ++messages;
}

/* decodeLogon calls a record's decoder under a failure exit of its own and returns 0 or the code. */
static int decodeLogon(uint8_t* content, uint32_t length, ZynUserLogon* logon, AsnLen* used) {
    jmp_buf env;
    SBuf b = {content, content + length, content, content + length, content, 1, 0};
    switch (setjmp(env)) {
    case 0: BDecZynUserLogonContent(&b, (AsnTag)0xBF834700u, length, logon, used, env); return 0;
    case -20: return -20;
    default: return -1;
    }
}

static void checkMessages(void) {
    static const uint8_t expected[] = {0x30, 0x0C, 0x04, 0x02, 'U', '1', 0xBF, 0x83, 0x47, 0x04, 0x04, 0x02, 'p', 'w'};
    uint8_t octets[64];
    ZynUserLogon logon;
    ZynTransReq request;
    memset(&logon, 0, sizeof logon);
    ZynTextStrSet(&logon.loginPassword, "pw", 0);
    const uint32_t length = ZynTransRequestEncode("U1          ", &logon, 455, octets, sizeof octets);
    check(length == sizeof expected && memcmp(octets, expected, length) == 0, "the octets of a logon");
    check(ZynTransRequestDecode(octets, length, &request) == 0, "a logon decodes");
    check(request.upTransMsg->choiceId == 455, "the alternative of a logon");
    check(request.upTransMsg->slot == request.upTransMsg->userLogon, "the slot is the alternative's member");
    check(AsnOctsEquiv(&request.upTransMsg->userLogon->loginPassword, &logon.loginPassword), "the password of a logon");

    ZynUserLogoff logoff;
    logoff.unused = 0;
    check(ZynTransRequestEncode("U1          ", &logoff, 456, octets, sizeof octets) == 10, "an empty record");
}

static void checkDirectDecode(void) {
    uint8_t content[] = {0x04, 0x02, 'p', 'w'};
    ZynUserLogon logon;
    AsnLen used = 0;
    memset(&logon, 0, sizeof logon);
    check(decodeLogon(content, sizeof content, &logon, &used) == 0 && used == 4, "a record's content decodes");
    check(logon.loginPassword.octetLen == 2 && !logon.reconnectionFlag, "the record that was decoded");

    const Asn1ErrorHandler before = Asn1InstallErrorHandler(countMessage);
    content[1] = 0x03;
    check(decodeLogon(content, sizeof content, &logon, &used) == -20, "the failure comes to the caller's own exit");
    check(messages == 1, "the failure is reported to the installed handler");
    check(Asn1InstallErrorHandler(before) == countMessage && before == Asn1DefaultErrorHandler, "handlers come back");
}

static void checkOctets(void) {
    static const uint8_t tail[] = {'b', 'c'};
    uint8_t block[4];
    uint8_t copy[2];
    AsnLen len = 8;
    SBuf out = {block + 4, block + 4, block, block + 4, block + 4, 0, 1};
    SBufPushSeg(&out, tail, sizeof tail);
    SBufPushByte(&out, 'a');
    check(!out.writeError && out.dataEnd - out.dataStart == 3, "octets are pushed in front");
    SBufPushSeg(&out, tail, sizeof tail);
    check(out.writeError && out.dataEnd - out.dataStart == 3, "what does not fit is left out");

    SBuf in = {out.dataStart, out.dataEnd, out.dataStart, out.dataEnd, out.dataStart, 1, 0};
    check(SBufNextByte(&in) == 'a', "the first octet");
    SBufCopySeg(&in, copy, 1);
    check(copy[0] == 'b' && *SBufTakeSeg(&in, &len) == 'c' && len == 1 && !in.readError, "the octets behind it");
    check(SBufNextByte(&in) == 1 && in.readError, "the end of the data");
}

static void checkVariables(void) {
    InitAsnInfinity();
    check(PLUS_INFINITY > 1e308 && MINUS_INFINITY < -1e308, "the infinities");
    check(stdIndentG == 4 && numToHexCharTblG[15] == 'f' && nmG != NULL, "the variables before anyone changes them");
    check(strStkG.nextFreeElmt == 0, "no string is being decoded");
    ZynShutdown();
    check(nmG == NULL, "no arena after the shutdown");
}

int main(void) {
    checkMessages();
    checkDirectDecode();
    checkOctets();
    checkVariables();
    return failures == 0 ? 0 : 1;
}
