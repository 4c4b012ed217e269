// The lock on a directory, see shared/mapbeurt.h.
#include "shared/mapbeurt.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <string>
#include <sys/file.h>

namespace zg {

IOBEURT::IOBEURT(const char* pad) {
    const std::string map(pad, static_cast<size_t>(IOBASENAME(pad) - pad));
    fd_ = SYS.open(map.empty() ? "." : map.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (fd_ >= 0)
        while (flock(fd_, LOCK_EX) < 0 && errno == EINTR) {
        }
}

IOBEURT::~IOBEURT() {
    if (fd_ >= 0)
        SYS.close(fd_);
}

} // namespace zg
