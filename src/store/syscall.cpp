// The table of system calls and the register of open files; see store/syscall.h.
#include "store/syscall.h"
#include <algorithm>
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
    bool vast;
};
std::vector<Bestand> bestanden;

std::vector<Bestand>::iterator vind(int fd) {
    return std::find_if(bestanden.begin(), bestanden.end(), [fd](const Bestand& b) { return b.fd == fd; });
}

} // namespace

IXSYSCALLS IXSYS = {doe_open, close, pread, pwrite, ftruncate, fstat, unlink};

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
    bestanden.push_back({s.st_dev, s.st_ino, fd, 1, false});
    return fd;
}

void IXBESTANDDICHT(int fd) {
    const auto b = vind(fd);
    if (b == bestanden.end() || --b->gebruikers > 0)
        return;
    IXSYS.close(fd);
    bestanden.erase(b);
}

void IXBESTANDVAST(int fd, bool vast) {
    if (const auto b = vind(fd); b != bestanden.end())
        b->vast = vast;
}

bool IXBESTANDVAST(int fd) {
    const auto b = vind(fd);
    return b != bestanden.end() && b->vast;
}

int64_t IXBESTANDGROOTTE(int fd) {
    struct stat s;
    return IXSYS.fstat(fd, &s) < 0 ? -1 : static_cast<int64_t>(s.st_size);
}

} // namespace zg
