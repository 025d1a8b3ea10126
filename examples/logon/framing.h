/* Messages on a stream socket, told apart by their own outer tag and length: nothing else is put round them. */
#ifndef FRAMING_H
#define FRAMING_H

#include <stdint.h>
#include <stdio.h>
#include <sys/socket.h>

/* receiveOctets fills octets[0..count) and returns 1, or 0 if the stream ends or fails before that. */
static inline int receiveOctets(int sock, uint8_t* octets, size_t count) {
    while (count > 0) {
        const ssize_t got = recv(sock, octets, count, 0);
        if (got <= 0) return 0;
        octets += got;
        count -= (size_t)got;
    }
    return 1;
}

/* receiveMessage reads one message into buffer, which has room for room octets, at least 8, and returns its length.
 * It returns 0, and nothing more can be read, if there is no message: the stream has ended, the tag has more than
 * three octets, the length is indefinite or has more than four octets behind the first, or the message is longer than
 * room. */
static inline uint32_t receiveMessage(int sock, uint8_t* buffer, uint32_t room) {
    uint32_t used = 0;
    if (!receiveOctets(sock, buffer + used++, 1)) return 0;
    if ((buffer[0] & 0x1F) == 0x1F) { /* the tag's number follows, in octets of which the last one is below 0x80 */
        do {
            if (used == 3 || !receiveOctets(sock, buffer + used++, 1)) return 0;
        } while (buffer[used - 1] >= 0x80);
    }

    if (!receiveOctets(sock, buffer + used++, 1)) return 0;
    uint32_t length = buffer[used - 1];
    if (length >= 0x80) { /* the length follows, in so many octets */
        uint32_t count = length - 0x80;
        if (count < 1 || count > 4 || !receiveOctets(sock, buffer + used, count)) return 0;
        for (length = 0; count > 0; --count) length = length << 8 | buffer[used++];
    }
    if (length > room - used || !receiveOctets(sock, buffer + used, length)) return 0;
    return used + length;
}

/* sendMessage returns 1 when all octets are on their way, else 0. */
static inline int sendMessage(int sock, const uint8_t* octets, uint32_t length) {
    while (length > 0) {
        const ssize_t sent = send(sock, octets, length, MSG_NOSIGNAL);
        if (sent <= 0) return 0;
        octets += sent;
        length -= (uint32_t)sent;
    }
    return 1;
}

/* printOctets writes octets to the standard output as pairs of hexadecimal digits with blanks between, on one line.
 * */
static inline void printOctets(const uint8_t* octets, uint32_t length) {
    for (uint32_t i = 0; i < length; ++i) printf("%s%02X", i > 0 ? " " : "", octets[i]);
    putchar('\n');
}

#endif
