// Files: a handle is a file descriptor, never 0.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "jutil.h"

namespace {

// 0 stands for "no file" with the callers, so a file that gets it, in a process without standard input, moves up.
int aboveZero(int descriptor) {
    if (descriptor != 0) return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 1);
    close(descriptor);
    return moved;
}

}  // namespace

int32_t dbut_utOsOpen(const char* path, int32_t, int32_t, int32_t, int32_t* errorNumber) {
    const int descriptor = aboveZero(open(path, O_RDONLY | O_CLOEXEC));
    *errorNumber = descriptor < 0 ? errno : 0;
    return descriptor;
}

int32_t dbut_utOsClose(uint32_t handle, int32_t) {
    return close(static_cast<int>(handle));
}

int32_t dbut_utReadFromFile(uint32_t handle, int32_t offset, void* buffer, uint32_t size, uint32_t* bytesRead,
                            int32_t* errorNumber) {
    auto* const bytes = static_cast<char*>(buffer);
    *bytesRead = 0;
    *errorNumber = 0;
    while (*bytesRead < size) {
        const ssize_t got = pread(static_cast<int>(handle), bytes + *bytesRead, size - *bytesRead,
                                  static_cast<off_t>(offset) + static_cast<off_t>(*bytesRead));
        if (got == 0) break;
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            *errorNumber = errno;
            *bytesRead = 0;
            return -1;
        }
        *bytesRead += static_cast<uint32_t>(got);
    }
    return 0;
}
