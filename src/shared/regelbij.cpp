// Lines at the end of a shared text file, see shared/regelbij.h.
#include "shared/regelbij.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace zg {
namespace {

// The lock is held for a write, so who hasn't got it within ten seconds waits for somebody who stands still, and goes on
// without: a line is one write at the end all the same.
bool neem(int fd) {
    constexpr int POGINGEN = 20'000, NETPOGINGEN = 900, PAUZE = 400;
    for (int i = 0; i < (IOGEDEELD() ? NETPOGINGEN : POGINGEN); i++) {
        if (IOLOCK('E', fd, 0, 0))
            return true;
        IOWACHT(i, PAUZE + (getpid() + i * 7) % 8 * 25);
    }
    return false;
}

bool open_einde(int fd) {
    const int64_t omvang = SYSOMVANG(fd);
    char laatste = '\n';
    return omvang > 0 && SYSLEES(fd, &laatste, 1, omvang - 1) == 1 && laatste != '\n';
}

bool schrijf(int fd, const std::string& regel) {
    ssize_t n;
    do
        n = SYS.write(fd, regel.data(), regel.size());
    while (n < 0 && errno == EINTR);
    if (n == static_cast<ssize_t>(regel.size()))
        return true;
    if (n > 0) { // cut off again while the file ends with it, else the next line closes it
        const off_t einde = lseek(fd, 0, SEEK_CUR);
        if (einde < n || SYSOMVANG(fd) != einde || SYS.ftruncate(fd, einde - n) != 0)
            SYS.write(fd, "\n", 1);
    }
    if (n >= 0)
        errno = ENOSPC;
    return false;
}

} // namespace

int REGELOPEN(const char* pad) {
    const int fd = SYSNIEUW(pad, O_RDWR | O_APPEND | O_NONBLOCK | O_NOCTTY);
    struct stat st;
    if (fd < 0 || (SYS.fstat(fd, &st) == 0 && S_ISREG(st.st_mode)))
        return fd;
    SYS.close(fd);
    errno = EINVAL;
    return -1;
}

bool REGELBIJ(int fd, std::string regel) {
    std::replace_if(
        regel.begin(), regel.end(), [](char c) { return static_cast<uint8_t>(c) < ' ' || c == 127; }, ' ');
    regel += '\n';
    const bool slot = neem(fd);
    if (open_einde(fd))
        regel.insert(0, 1, '\n');
    const bool goed = schrijf(fd, regel);
    const int fout = errno;
    if (slot)
        IOLOCK('U', fd, 0, 0);
    errno = fout;
    return goed;
}

} // namespace zg
