/* A server that lets one client log on: logon-server PORT. It listens on the loopback address, on a free port if PORT
 * is 0, answers the requests of the first client that connects, and ends when that client leaves. */
#define _POSIX_C_SOURCE 200809L
#include "framing.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zyn/zyn.h>

enum { userLogon = 455, replyBad = 17, replyOK = 18 }; /* numbers of alternatives */

static int sameText(const AsnOcts* v, const char* text) {
    return v->octetLen == strlen(text) && memcmp(v->octs, text, v->octetLen) == 0;
}

/* answer writes the reply to *request into buffer and returns its length in octets. */
static uint32_t answer(const ZynTransReq* request, uint8_t* buffer, uint32_t room) {
    const ZynTransReqChoice* choice = request->upTransMsg;
    if (choice->choiceId != userLogon || !sameText(&choice->userLogon->loginPassword, "open sesame")) {
        AsnInt hint = 1;
        ZynReplyBad bad = {0};
        ZynTextStrSet(&bad.infoMessage, "unknown user or wrong password", 0);
        bad.replyHint = &hint;
        return ZynTransReplyEncode(&bad, replyBad, buffer, room);
    }

    /* The decoded request is gone once the reply is encoded: what is needed after that is copied before. */
    char user[12];
    ZynTextStrGet(&request->userId, user, sizeof user);
    ZynReplyOK ok = {0};
    ZynTextStrSet(&ok.infoMessage, "welcome", 0);
    const uint32_t length = ZynTransReplyEncode(&ok, replyOK, buffer, room);
    printf("server: logged on: %.12s\n", user);
    return length;
}

/* serve answers one request after the other until the client leaves. A request that is none gets no answer. */
static int serve(int sock) {
    uint8_t buffer[4096];
    uint32_t length;
    while ((length = receiveMessage(sock, buffer, sizeof buffer)) > 0) {
        ZynTransReq request;
        const int32_t code = ZynTransRequestDecode(buffer, length, &request);
        if (code != 0) {
            printf("server: a message of %u octets is no request, code %d\n", length, code);
            continue;
        }
        printf("server: a request of %u octets\n", length);
        ZynTransRequestPrint(NULL, &request); /* on the standard error stream, the password in full */
        fputc('\n', stderr);
        length = answer(&request, buffer, sizeof buffer); /* nothing decoded refers to buffer */
        if (length == 0 || !sendMessage(sock, buffer, length)) return 0;
    }
    return 1;
}

int main(int argc, char** argv) {
    setvbuf(stdout, NULL, _IOLBF, 0); /* so that both streams keep their order in one file */
    if (argc != 2) {
        fprintf(stderr, "usage: logon-server PORT\n");
        return 2;
    }
    struct sockaddr_in address = {0};
    socklen_t addressSize = sizeof address;
    address.sin_family = AF_INET;
    address.sin_port = htons((uint16_t)atoi(argv[1]));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int door = socket(AF_INET, SOCK_STREAM, 0);
    if (door < 0 || bind(door, (struct sockaddr*)&address, sizeof address) != 0 || listen(door, 1) != 0 ||
        getsockname(door, (struct sockaddr*)&address, &addressSize) != 0) {
        perror("logon-server");
        return 1;
    }
    printf("server: listening on port %u\n", ntohs(address.sin_port));

    const int sock = accept(door, NULL, NULL);
    if (sock < 0) {
        perror("logon-server");
        return 1;
    }
    const int served = serve(sock);
    close(sock);
    close(door);
    ZynShutdown();
    return served ? 0 : 1;
}
