// The register of open files; see store/bestand.h.
#include "store/bestand.h"
#include "store/kaart.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

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

int IXBESTANDOPEN(const char* pad, int vlaggen) {
    struct stat s;
    if (stat(pad, &s) == 0)
        for (Bestand& b : bestanden)
            if (b.dev == s.st_dev && b.ino == s.st_ino) {
                if ((vlaggen & O_TRUNC) && SYS.ftruncate(b.fd, 0) < 0)
                    return -1;
                b.gebruikers++;
                return b.fd;
            }
    int fd = vlaggen & O_CREAT ? SYSNIEUW(pad, vlaggen) : SYS.open(pad, vlaggen | O_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    if (SYS.fstat(fd, &s) < 0) {
        int fout = errno;
        SYS.close(fd);
        errno = fout;
        return -1;
    }
    bestanden.push_back({s.st_dev, s.st_ino, fd, 1, false});
    IXKAARTOPEN(fd);
    return fd;
}

void IXBESTANDDICHT(int fd) {
    const auto b = vind(fd);
    if (b == bestanden.end() || --b->gebruikers > 0)
        return;
    IXKAARTDICHT(fd);
    SYS.close(fd);
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

} // namespace zg
