// The real calls behind order/ordsys.h, and whole reads and writes over them.
#include "order/ordsys.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {

namespace {
int open_echt(const char* pad, int vlaggen, mode_t mode) {
    return ::open(pad, vlaggen, mode);
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
} // namespace

ordsysteem ORDSYS = {open_echt, ::write, ::pwrite, ::ftruncate, ::fsync, ::rename, ::unlink, ::close};

bool ordsys_schrijf(int fd, const void* buf, size_t n) {
    return schrijf_alles(buf, n,
                         [fd](const char* p, size_t rest, size_t) { return ORDSYS.write(fd, p, rest); });
}

bool ordsys_schrijf_op(int fd, const void* buf, size_t n, int64_t plaats) {
    return schrijf_alles(buf, n, [=](const char* p, size_t rest, size_t gedaan) {
        return ORDSYS.pwrite(fd, p, rest, plaats + static_cast<off_t>(gedaan));
    });
}

ssize_t ordsys_lees_op(int fd, void* buf, size_t n, int64_t plaats) {
    auto p = static_cast<char*>(buf);
    size_t gelezen = 0;
    while (gelezen < n) {
        ssize_t k = ::pread(fd, p + gelezen, n - gelezen, plaats + static_cast<off_t>(gelezen));
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

int64_t ordsys_omvang(int fd) {
    struct stat st;
    return fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
}

} // namespace zg
