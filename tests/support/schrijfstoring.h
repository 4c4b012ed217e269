// A write that is refused by a full disk, or is the last thing that the process does: SYS.pwrite = stoor after `echt` is
// set, and `over` the writes that go well before it.
#pragma once
#include "shared/syscalls.h"
#include <cerrno>
#include <csignal>

namespace zg::test {

inline decltype(SYS.pwrite) echt;
inline int over;
inline bool doodgaan; // killed, else refused

inline ssize_t stoor(int fd, const void* buf, size_t n, off_t plaats) {
    if (over-- != 0)
        return echt(fd, buf, n, plaats);
    if (doodgaan)
        raise(SIGKILL);
    errno = ENOSPC;
    return -1;
}

} // namespace zg::test
