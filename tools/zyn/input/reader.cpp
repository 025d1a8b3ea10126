#include "input/reader.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "options.h"

namespace zyn::tool {
namespace {

constexpr std::size_t blockBytes = 256 * 1024;
constexpr timespec pause{.tv_sec = 0, .tv_nsec = 50'000'000}; // between two looks at a growing file

volatile std::sig_atomic_t interrupted = 0;

} // namespace

void stopOnInterrupt() {
    struct sigaction action = {};
    action.sa_handler = [](int) { interrupted = 1; };
    sigaction(SIGINT, &action, nullptr); // without SA_RESTART: reading and waiting end
    sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() { return interrupted != 0; }

Reader::Reader(const std::string& file, bool follow) : shownName(file == "-" ? "standard input" : file) {
    descriptor = file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) throw WrongUse(file + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode)) throw WrongUse(file + ": is a directory");
    isFile = S_ISREG(status.st_mode);
    if (isFile) fileSize = static_cast<uint64_t>(status.st_size);
    following = follow && isFile; // a pipe that has ended does not grow any more
    posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
}

Reader::~Reader() {
    if (descriptor > STDIN_FILENO) close(descriptor);
}

bool Reader::wouldWait() const {
    if (isFile) return false;
    pollfd state = {.fd = descriptor, .events = POLLIN, .revents = 0};
    return poll(&state, 1, 0) == 0;
}

Fill Reader::atEnd() {
    if (!following || isInterrupted()) {
        ended = true;
        return Fill::End;
    }
    if (!mayWait) return Fill::Wait;
    nanosleep(&pause, nullptr);
    return Fill::More; // and look again
}

Fill Reader::more() {
    if (ended) return Fill::End;
    if (!mayWait && wouldWait()) return Fill::Wait;
    if (first > 0) {
        std::memmove(buffer.data(), buffer.data() + first, last - first);
        last -= first;
        first = 0;
    }
    if (buffer.size() - last < blockBytes) buffer.resize(last + blockBytes);
    for (;;) {
        const ssize_t n = read(descriptor, buffer.data() + last, blockBytes);
        if (n > 0) {
            last += static_cast<std::size_t>(n);
            readSoFar += static_cast<uint64_t>(n);
            return Fill::More;
        }
        if (n < 0 && errno != EINTR) throw WrongUse(shownName + ": " + std::strerror(errno));
        if (n < 0 && !isInterrupted()) continue;
        if (const Fill what = atEnd(); what != Fill::More) return what;
    }
}

} // namespace zyn::tool
