// zgbestel that stops (SIGSTOP) in front of one call on an order's files, for tests/hosts/run: ZG_PUNT is its number from
// 1, in ZG_PUNTEN all of them are noted, a line each, and a last one with its process number where it did. What happens to it there is
// its watcher's choice. A look is the question whether the journal's lock is still held.
#include "shared/syscalls.h"
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

using zg::SYS;

int nummer;

// A name of an order as it stands in its season: "ORD0013.WRK"; empty for any other.
std::string ordernaam(const char* pad) {
    const char *naam = strrchr(pad, '/'), *punt = strrchr(pad, '.');
    naam = naam ? naam + 1 : pad;
    return punt && strncmp(naam, "ORD", 3) == 0 && strstr(".JRN .WRK .TMP .ORS .ACT", punt) ? naam : "";
}

void noteer(const std::string& regel) {
    const int fd = open(getenv("ZG_PUNTEN"), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0 || write(fd, regel.data(), regel.size()) < 0)
        _exit(99);
    close(fd);
}

void punt(const char* wat, const std::string& naam) {
    const char* bij = getenv("ZG_PUNT");
    if (naam.empty() || !getenv("ZG_PUNTEN"))
        return;
    noteer(std::to_string(++nummer) + " " + wat + " " + naam + "\n");
    if (bij && atoi(bij) == nummer) {
        noteer("stopped " + std::to_string(getpid()) + "\n");
        raise(SIGSTOP);
    }
}

std::string naam_van(int fd) {
    char pad[4096] = "";
    const ssize_t n = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), pad, sizeof pad - 1);
    return ordernaam(n < 0 ? "" : pad);
}

[[maybe_unused]] const int begin = [] {
    static const zg::SYSCALLS echt = SYS;
    SYS.open = [](const char* pad, int vlaggen, mode_t mode) {
        if (vlaggen & O_TRUNC)
            punt("open", ordernaam(pad));
        return echt.open(pad, vlaggen, mode);
    };
    SYS.write = [](int fd, const void* b, size_t n) {
        punt("write", naam_van(fd));
        return echt.write(fd, b, n);
    };
    SYS.pwrite = [](int fd, const void* b, size_t n, off_t p) {
        punt("write", naam_van(fd));
        return echt.pwrite(fd, b, n, p);
    };
    SYS.ftruncate = [](int fd, off_t n) {
        punt("truncate", naam_van(fd));
        return echt.ftruncate(fd, n);
    };
    SYS.fsync = [](int fd) {
        punt("sync", naam_van(fd));
        return echt.fsync(fd);
    };
    SYS.rename = [](const char* van, const char* naar) {
        punt("rename", ordernaam(van));
        return echt.rename(van, naar);
    };
    SYS.unlink = [](const char* pad) {
        punt("unlink", ordernaam(pad));
        return echt.unlink(pad);
    };
    SYS.slot = [](int fd, int opdracht, struct flock* s) {
        if (opdracht == F_SETLK && s->l_type == F_WRLCK && naam_van(fd).ends_with(".JRN"))
            punt("look", naam_van(fd));
        return echt.slot(fd, opdracht, s);
    };
    return 0;
}();

} // namespace
