// The real calls behind shared/syscalls.h, and whole reads and writes over them.
#include "shared/syscalls.h"
#include <cerrno>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace zg {
namespace {

constexpr mode_t RECHTEN = 0660;

int doe_open(const char* pad, int vlaggen, mode_t mode) {
    return ::open(pad, vlaggen, mode);
}

int doe_slot(int fd, int opdracht, struct flock* gebied) {
    return fcntl(fd, opdracht, gebied);
}

// doe(bytes, n, done) writes some of what is left.
template <class F> bool schrijf_alles(const void* buf, size_t n, F doe) {
    auto p = static_cast<const char*>(buf);
    for (size_t gedaan = 0; gedaan < n;) {
        ssize_t k = doe(p + gedaan, n - gedaan, gedaan);
        if (k < 0 && errno == EINTR)
            continue;
        if (k <= 0) {
            if (!k)
                errno = ENOSPC;
            return false;
        }
        gedaan += static_cast<size_t>(k);
    }
    return true;
}

std::string map_van(const char* pad) {
    std::string map = pad;
    size_t streep = map.rfind('/');
    return streep == std::string::npos ? "." : streep ? map.substr(0, streep) : "/";
}

void geef_huisrechten(int fd, const char* pad) {
    struct stat map, eigen;
    SYS.fchmod(fd, RECHTEN);
    if (stat(map_van(pad).c_str(), &map) == 0 && SYS.fstat(fd, &eigen) == 0 && eigen.st_gid != map.st_gid)
        SYS.fchown(fd, static_cast<uid_t>(-1), map.st_gid);
}

} // namespace

SYSCALLS SYS = {doe_open, ::close,  ::read,   ::write,  ::pread, ::pwrite, ::ftruncate, ::fsync,
                ::fstat,  ::fchmod, ::fchown, ::rename, ::link,  ::unlink, doe_slot};

ssize_t SYSLEES(int fd, void* buf, size_t n, int64_t plaats) {
    auto p = static_cast<char*>(buf);
    size_t gelezen = 0;
    while (gelezen < n) {
        ssize_t k = SYS.pread(fd, p + gelezen, n - gelezen, plaats + static_cast<off_t>(gelezen));
        if (k < 0 && errno == EINTR)
            continue;
        if (k < 0)
            return -1;
        if (!k)
            break;
        gelezen += static_cast<size_t>(k);
    }
    return static_cast<ssize_t>(gelezen);
}

bool SYSSCHRIJF(int fd, const void* buf, size_t n) {
    return schrijf_alles(buf, n, [fd](const char* p, size_t rest, size_t) { return SYS.write(fd, p, rest); });
}

bool SYSSCHRIJFOP(int fd, const void* buf, size_t n, int64_t plaats) {
    return schrijf_alles(buf, n, [=](const char* p, size_t rest, size_t gedaan) {
        return SYS.pwrite(fd, p, rest, plaats + static_cast<off_t>(gedaan));
    });
}

int64_t SYSOMVANG(int fd) {
    struct stat st;
    return SYS.fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
}

int SYSNIEUW(const char* pad, int vlaggen) {
    const bool alleen_nieuw = vlaggen & O_EXCL;
    vlaggen = (vlaggen | O_CLOEXEC) & ~(O_CREAT | O_EXCL);
    for (;;) {
        int fd = alleen_nieuw ? -1 : SYS.open(pad, vlaggen, 0);
        if (fd >= 0 || (!alleen_nieuw && errno != ENOENT))
            return fd;
        fd = SYS.open(pad, vlaggen | O_CREAT | O_EXCL, RECHTEN);
        if (fd >= 0) {
            geef_huisrechten(fd, pad);
            return fd;
        }
        if (alleen_nieuw || errno != EEXIST)
            return -1;
        struct stat st; // made meanwhile by another; or a link that leads nowhere, which is followed
        if (stat(pad, &st) < 0)
            return SYS.open(pad, vlaggen | O_CREAT, RECHTEN);
    }
}

bool SYSEVENALS(int fd, const char* pad) {
    struct stat oud, nieuw;
    if (stat(pad, &oud) < 0)
        return errno == ENOENT;
    if (SYS.fstat(fd, &nieuw) < 0)
        return false;
    if ((oud.st_uid != nieuw.st_uid || oud.st_gid != nieuw.st_gid) &&
        SYS.fchown(fd, oud.st_uid, oud.st_gid) < 0 && oud.st_gid != nieuw.st_gid)
        SYS.fchown(fd, static_cast<uid_t>(-1), oud.st_gid);
    return SYS.fchmod(fd, oud.st_mode & 07777) == 0;
}

} // namespace zg
