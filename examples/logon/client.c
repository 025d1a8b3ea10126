/* A client that logs on: logon-client HOST PORT. It sends a logon, one with a wrong password and one that was damaged
 * on its way, and expects to be let in, to be turned away, and to hear nothing. */
#define _POSIX_C_SOURCE 200809L
#include "framing.h"

#include <netdb.h>
#include <string.h>
#include <unistd.h>
#include <zyn/zyn.h>

enum { userLogon = 455, replyBad = 17, replyOK = 18 }; /* numbers of alternatives */

/* encodeLogon writes a logon into buffer and returns its length in octets, or 0 if it does not fit into room. */
static uint32_t encodeLogon(const char* password, uint8_t* buffer, uint32_t room) {
    ZynUserLogon logon = {0};
    ZynTextStrSet(&logon.loginPassword, password, 0);
    return ZynTransRequestEncode("TRADER01    ", &logon, userLogon, buffer, room); /* the user's 12 bytes of text */
}

/* logOn sends a logon, prints both messages, and returns the alternative of the reply, or -1 if there is none. */
static int logOn(int sock, const char* password) {
    uint8_t buffer[4096];
    uint32_t length = encodeLogon(password, buffer, sizeof buffer);
    printf("client: sending ");
    printOctets(buffer, length);
    if (length == 0 || !sendMessage(sock, buffer, length)) return -1;

    length = receiveMessage(sock, buffer, sizeof buffer);
    printf("client: received ");
    printOctets(buffer, length);
    ZynTransRep reply;
    const int32_t code = ZynTransReplyDecode(buffer, length, &reply);
    if (code != 0) {
        printf("client: no reply, code %d\n", code);
        return -1;
    }
    ZynTransReplyPrint(NULL, &reply); /* on the standard error stream */
    fputc('\n', stderr);
    return (int)reply.choiceId;
}

/* sendDamaged sends a logon whose password claims more octets than there are, and returns 1 if nothing comes back. */
static int sendDamaged(int sock, const char* password) {
    uint8_t buffer[4096];
    const uint32_t length = encodeLogon(password, buffer, sizeof buffer);
    if (length == 0) return 0;
    buffer[length - strlen(password) - 1] = 0x7F; /* the password ends the message; in front of it stands its length */
    printf("client: sending, damaged, ");
    printOctets(buffer, length);
    if (!sendMessage(sock, buffer, length)) return 0;
    shutdown(sock, SHUT_WR); /* this was the last one: the server hangs up when it has done with it */

    const int silent = recv(sock, buffer, sizeof buffer, 0) == 0;
    printf("client: %s\n", silent ? "no reply" : "a reply to a damaged message");
    return silent;
}

/* connectTo returns a connected socket, or -1. */
static int connectTo(const char* host, const char* port) {
    struct addrinfo hints = {0};
    struct addrinfo* found;
    hints.ai_socktype = SOCK_STREAM;
    if (getaddrinfo(host, port, &hints, &found) != 0) return -1;
    int sock = -1;
    for (const struct addrinfo* a = found; a && sock < 0; a = a->ai_next) {
        sock = socket(a->ai_family, a->ai_socktype, a->ai_protocol);
        if (sock >= 0 && connect(sock, a->ai_addr, a->ai_addrlen) != 0) {
            close(sock);
            sock = -1;
        }
    }
    freeaddrinfo(found);
    return sock;
}

int main(int argc, char** argv) {
    setvbuf(stdout, NULL, _IOLBF, 0); /* so that both streams keep their order in one file */
    if (argc != 3) {
        fprintf(stderr, "usage: logon-client HOST PORT\n");
        return 2;
    }
    const int sock = connectTo(argv[1], argv[2]);
    if (sock < 0) {
        fprintf(stderr, "logon-client: cannot connect to %s, port %s\n", argv[1], argv[2]);
        return 1;
    }
    const int good = logOn(sock, "open sesame") == replyOK && logOn(sock, "open barley") == replyBad &&
                     sendDamaged(sock, "open sesame");
    close(sock);
    ZynShutdown();
    return good ? 0 : 1;
}
