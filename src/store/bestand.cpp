// The register of open files; see store/bestand.h.
#include "store/bestand.h"
#include "shared/files.h"
#include "store/kaart.h"
#include "store/node.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

struct Bestand {
    dev_t dev;
    ino_t ino;
    int fd, gebruikers;
    bool vast;
    std::string pad;  // from the root, whatever directory the process goes to
    timespec gekeken; // when the name was last looked at
    bool daarna;      // was that asked for since?
};
std::vector<Bestand> bestanden;

std::vector<Bestand>::iterator vind(int fd) {
    return std::find_if(bestanden.begin(), bestanden.end(), [fd](const Bestand& b) { return b.fd == fd; });
}

std::string vanaf_wortel(const char* pad) {
    if (*pad == '/')
        return pad;
    const std::string& hier = IOHIER();
    return hier.empty() ? "" : hier + "/" + pad;
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
                b.pad = vanaf_wortel(pad); // it may have several, and the others may go
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
    bestanden.push_back({s.st_dev, s.st_ino, fd, 1, false, vanaf_wortel(pad), {}, false});
    IXKAARTOPEN(fd);
    return fd;
}

void IXBESTANDDICHT(int fd) {
    const auto b = vind(fd);
    if (b == bestanden.end() || --b->gebruikers > 0)
        return;
    IXKAARTDICHT(fd);
    IXSLOTENWEG(fd);
    SYS.close(fd);
    bestanden.erase(b);
}

bool IXBESTANDVERVANGEN(int fd, int64_t* omvang) {
    const auto b = vind(fd);
    struct stat s;
    if (b == bestanden.end() || b->pad.empty())
        return false;
    if (stat(b->pad.c_str(), &s) == 0) {
        if (omvang)
            *omvang = s.st_size;
        return s.st_dev != b->dev || s.st_ino != b->ino;
    }
    return errno == ENOENT && SYS.fstat(fd, &s) == 0 && s.st_nlink == 0;
}

bool IXBESTANDBEURT(int fd, bool slot) {
    const auto b = vind(fd);
    timespec nu;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &nu);
    if (b == bestanden.end())
        return false;
    const bool tik = nu.tv_sec != b->gekeken.tv_sec || nu.tv_nsec != b->gekeken.tv_nsec,
               uit = slot ? b->daarna : tik;
    b->daarna = !uit && !slot;
    b->gekeken = nu;
    return uit;
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
