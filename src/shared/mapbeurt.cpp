// The lock on a directory, see shared/mapbeurt.h.
#include "shared/mapbeurt.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <string>
#include <sys/file.h>

namespace zg {

IOBEURT::IOBEURT(const char* pad) : fd_(-1), gedeeld_(IOGEDEELD()) {
    const std::string map(pad, static_cast<size_t>(IOBASENAME(pad) - pad));
    if (gedeeld_) { // where the lock of a directory says nothing to others
        fd_ = SYSNIEUW((map + BEURTBESTAND).c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
        for (int n = 0; fd_ >= 0 && !IOLOCK('E', fd_, 0, 1); n++)
            IOWACHT(n, 0);
        return;
    }
    fd_ = SYS.open(map.empty() ? "." : map.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (fd_ >= 0)
        while (flock(fd_, LOCK_EX) < 0 && errno == EINTR) {
        }
}

IOBEURT::~IOBEURT() {
    if (fd_ >= 0 && gedeeld_)
        IOLOCK('U', fd_, 0, 1);
    if (fd_ >= 0)
        SYS.close(fd_);
}

} // namespace zg
