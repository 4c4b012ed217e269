// The real calls behind shared/syscalls.h, and whole reads and writes over them.
#include "shared/syscalls.h"
#include "shared/replica.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr mode_t RECHTEN = 0660;

int doe_open(const char* pad, int vlaggen, mode_t mode) {
    const int fd = ::open(pad, vlaggen, mode);
    IONAAMOPEN(fd);
    return fd;
}

int doe_ruimte(int fd, off_t plaats, off_t n) {
    int uit;
    do
        uit = fallocate(fd, FALLOC_FL_KEEP_SIZE, plaats, n);
    while (uit < 0 && errno == EINTR);
    return uit;
}

ssize_t doe_read(int fd, void* buf, size_t n) {
    IONAAMVERS(fd);
    return ::read(fd, buf, n);
}

ssize_t doe_pread(int fd, void* buf, size_t n, off_t plaats) {
    IONAAMVERS(fd);
    return ::pread(fd, buf, n, plaats);
}

int doe_fstat(int fd, struct stat* st) {
    IONAAMVERS(fd);
    return ::fstat(fd, st);
}

int doe_slot(int fd, int opdracht, struct flock* gebied) {
    const bool neemt = opdracht != F_GETLK && gebied->l_type != F_UNLCK;
    const int uit = fcntl(fd, opdracht, gebied);
    if (uit == 0 && neemt)
        IONAAMSLOT();
    return uit;
}

int doe_naam(const char* pad) {
    struct statx st;
    return ::statx(AT_FDCWD, pad, AT_STATX_DONT_SYNC, STATX_TYPE, &st);
}

void doe_kaartlees(int, void* naar, const void* van, size_t n, off_t) {
    memcpy(naar, van, n);
}

// In ascending order, as a call does it: what somebody reads meanwhile begins with the new and ends with the old.
void doe_kaartzet(int, void* naar, const void* van, size_t n, off_t) {
    auto* p = static_cast<uint64_t*>(naar);
#pragma GCC unroll 8
    for (size_t i = 0; i < n / sizeof *p; i++) {
        uint64_t acht;
        memcpy(&acht, static_cast<const char*>(van) + i * sizeof acht, sizeof acht);
        __atomic_store_n(p + i, acht, __ATOMIC_RELAXED);
    }
}

// doe(bytes, n, done) writes some of what is left.
template <class F> bool schrijf_alles(const void* buf, size_t n, F doe) {
    auto p = static_cast<const char*>(buf);
    for (size_t gedaan = 0; gedaan < n;) {
        ssize_t k = doe(p + gedaan, std::min(n - gedaan, SYSSTUK), gedaan);
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

constexpr auto BLIJFT = static_cast<uid_t>(-1);

// Refused because the user may not, or the file system knows no such thing: as far as it goes is far enough.
bool mag_niet() {
    return errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP || errno == EINVAL;
}

// The group first: a change of owner or group takes setgid away.
bool geef(int fd, uid_t eigenaar, gid_t groep, mode_t mode) {
    struct stat nu;
    if (SYS.fstat(fd, &nu) < 0)
        return false;
    if (eigenaar == BLIJFT)
        eigenaar = nu.st_uid;
    if ((eigenaar != nu.st_uid && SYS.fchown(fd, eigenaar, groep) < 0) || eigenaar == nu.st_uid)
        if (groep != nu.st_gid && SYS.fchown(fd, BLIJFT, groep) < 0 && !mag_niet())
            return false;
    return SYS.fchmod(fd, mode & 07777) == 0 || mag_niet();
}

// Mode 0660 and the group of the directory.
bool geef_huisrechten(int fd, const char* pad) {
    struct stat map;
    return stat(map_van(pad).c_str(), &map) == 0 && geef(fd, BLIJFT, map.st_gid, RECHTEN);
}

} // namespace

SYSCALLS SYS = {doe_open,   ::close, doe_read,  ::write,  doe_pread, ::pwrite,      ::ftruncate,
                doe_ruimte, ::fsync, doe_fstat, ::fchmod, ::fchown,  ::rename,      ::link,
                ::unlink,   ::mkdir, ::rmdir,   doe_slot, doe_naam,  doe_kaartlees, doe_kaartzet};

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

bool SYSVERVANG(int fd, const void* buf, size_t n, int64_t plaats) {
    std::vector<char> oud(n);
    const int64_t omvang = SYSOMVANG(fd);
    const ssize_t stond = SYSLEES(fd, oud.data(), n, plaats);
    if (omvang < 0 || stond < 0)
        return false;
    if (SYSSCHRIJFOP(fd, buf, n, plaats))
        return true;
    const int fout = errno;
    SYSSCHRIJFOP(fd, oud.data(), static_cast<size_t>(stond), plaats);
    if (SYSOMVANG(fd) > omvang)
        SYS.ftruncate(fd, omvang);
    errno = fout;
    return false;
}

std::string SYSFDPAD(int fd) {
    char pad[PATH_MAX];
    const ssize_t n = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), pad, sizeof pad);
    return n > 0 && *pad == '/' ? std::string(pad, static_cast<size_t>(n)) : "";
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
    struct stat oud;
    if (stat(pad, &oud) == 0)
        return geef(fd, oud.st_uid, oud.st_gid, oud.st_mode);
    return errno == ENOENT && geef_huisrechten(fd, pad);
}

bool SYSNIEUWEMAP(const char* pad) {
    struct stat map;
    if (stat(map_van(pad).c_str(), &map) < 0 || SYS.mkdir(pad, 0777) < 0)
        return false;
    const int fd = SYS.open(pad, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (fd >= 0) {
        geef(fd, BLIJFT, map.st_gid, (map.st_mode & 02775) | S_IRWXU);
        SYS.close(fd);
    }
    return true;
}

} // namespace zg
