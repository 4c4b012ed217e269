// The table of system calls and the register of open files; see store/syscall.h.
#include "store/syscall.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

int doe_open(const char* pad, int vlaggen, mode_t bits) {
    return open(pad, vlaggen, bits);
}

struct Bestand {
    dev_t dev;
    ino_t ino;
    int fd, gebruikers;
};
std::vector<Bestand> bestanden;

} // namespace

IXSYSCALLS IXSYS = {doe_open, close, pread, pwrite, ftruncate, fstat, rename, unlink};

ssize_t IXSYSLEES(int fd, void* doel, size_t n, int64_t plaats) {
    size_t klaar = 0;
    while (klaar < n) {
        ssize_t r =
            IXSYS.pread(fd, static_cast<char*>(doel) + klaar, n - klaar, plaats + static_cast<off_t>(klaar));
        if (r == 0)
            break;
        if (r > 0)
            klaar += static_cast<size_t>(r);
        else if (errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(klaar);
}

int IXSYSSCHRIJF(int fd, const void* bron, size_t n, int64_t plaats) {
    size_t klaar = 0;
    while (klaar < n) {
        ssize_t r = IXSYS.pwrite(fd, static_cast<const char*>(bron) + klaar, n - klaar,
                                 plaats + static_cast<off_t>(klaar));
        if (r > 0)
            klaar += static_cast<size_t>(r);
        else if (r == 0) {
            errno = ENOSPC;
            return 0;
        } else if (errno != EINTR)
            return 0;
    }
    return 1;
}

int IXBESTANDOPEN(const char* pad, int vlaggen) {
    struct stat s;
    if (stat(pad, &s) == 0)
        for (Bestand& b : bestanden)
            if (b.dev == s.st_dev && b.ino == s.st_ino) {
                if ((vlaggen & O_TRUNC) && IXSYS.ftruncate(b.fd, 0) < 0)
                    return -1;
                b.gebruikers++;
                return b.fd;
            }
    int fd = IXSYS.open(pad, vlaggen | O_CLOEXEC, 0660);
    if (fd < 0)
        return -1;
    if (IXSYS.fstat(fd, &s) < 0) {
        int fout = errno;
        IXSYS.close(fd);
        errno = fout;
        return -1;
    }
    bestanden.push_back({s.st_dev, s.st_ino, fd, 1});
    return fd;
}

void IXBESTANDDICHT(int fd) {
    for (size_t i = 0; i < bestanden.size(); i++)
        if (bestanden[i].fd == fd) {
            if (--bestanden[i].gebruikers == 0) {
                IXSYS.close(fd);
                bestanden.erase(bestanden.begin() + static_cast<ptrdiff_t>(i));
            }
            return;
        }
}

int64_t IXBESTANDGROOTTE(int fd) {
    struct stat s;
    return IXSYS.fstat(fd, &s) < 0 ? -1 : static_cast<int64_t>(s.st_size);
}

} // namespace zg
