/* A logon from JSON and back. */
#include <stdio.h>
#include <string.h>
#include <zyn/json.h>

int main(void) {
    static const char text[] = "{ \"loginPassword\": \"open sesame\" }";
    const ZynType* type = ZynTypeByName("ZynUserLogon");
    ZynJson* json = ZynJsonNew();
    size_t length = 0;
    const void* record = ZynJsonRead(json, type, text, strlen(text));
    if (!record) return 1;
    puts(ZynJsonWrite(json, type, record, &length));
    ZynJsonFree(json);
    return 0;
}
