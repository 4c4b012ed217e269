// The n-th call that changes something on disk is the last thing that the process does, or is refused (all behind it too,
// where `steeds`): set in a child, in front of the work. Calls are counted from 0; `gestoord` tells whether it came so far.
#pragma once
#include "shared/syscalls.h"
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace zg::test {

inline SYSCALLS roep_echt;
inline int roep_over; // calls that go well before it
inline bool roep_dood, roep_steeds;

inline bool roep_nu() {
    const int over = roep_over--;
    if (over > 0 || (over < 0 && !roep_steeds))
        return false;
    if (roep_dood)
        raise(SIGKILL);
    errno = ENOSPC;
    return true;
}
inline bool gestoord() {
    return roep_over < 0;
}

inline void stoor_roep(int n, bool dood, bool steeds = false) {
    roep_echt = SYS, roep_over = n, roep_dood = dood, roep_steeds = steeds;
    // A file is made, or emptied.
    SYS.open = [](const char* p, int v, mode_t m) {
        const int schrijft = access(p, F_OK) == 0 ? O_TRUNC : O_CREAT;
        return (v & schrijft) && roep_nu() ? -1 : roep_echt.open(p, v, m);
    };
    SYS.write = [](int fd, const void* b, size_t l) {
        return roep_nu() ? ssize_t{-1} : roep_echt.write(fd, b, l);
    };
    SYS.pwrite = [](int fd, const void* b, size_t l, off_t o) {
        return roep_nu() ? ssize_t{-1} : roep_echt.pwrite(fd, b, l, o);
    };
    SYS.fsync = [](int fd) { return roep_nu() ? -1 : roep_echt.fsync(fd); };
    SYS.link = [](const char* a, const char* b) { return roep_nu() ? -1 : roep_echt.link(a, b); };
    SYS.rename = [](const char* a, const char* b) { return roep_nu() ? -1 : roep_echt.rename(a, b); };
    SYS.mkdir = [](const char* p, mode_t m) { return roep_nu() ? -1 : roep_echt.mkdir(p, m); };
    SYS.rmdir = [](const char* p) { return roep_nu() ? -1 : roep_echt.rmdir(p); };
    SYS.fchmod = [](int fd, mode_t m) { return roep_dood && roep_nu() ? -1 : roep_echt.fchmod(fd, m); };
    // To cut and to delete needs no room.
    SYS.ftruncate = [](int fd, off_t l) { return roep_dood && roep_nu() ? -1 : roep_echt.ftruncate(fd, l); };
    SYS.unlink = [](const char* p) { return roep_dood && roep_nu() ? -1 : roep_echt.unlink(p); };
}

} // namespace zg::test
