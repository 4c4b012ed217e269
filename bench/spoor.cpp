#include "bench/spoor.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <set>
#include <unistd.h>

namespace spoor {
namespace {

using zg::SYS;

zg::SYSCALLS echt;
std::vector<Aanroep> lijst;

void eis(bool goed, const std::string& bestand) {
    if (goed)
        return;
    perror(bestand.c_str());
    exit(2);
}

const char* bewaar(const char* naam) {
    static std::set<std::string> namen;
    return namen.insert(naam).first->c_str();
}

void noteer(Soort soort, int fd, int64_t plaats = 0, size_t n = 0) {
    lijst.push_back({soort, 0, 0, fd, plaats, static_cast<int64_t>(n), nullptr, nullptr});
}
void noteer_naam(Soort soort, int fd, int64_t vlaggen, const char* pad, const char* nu = "") {
    lijst.push_back({soort, 0, 0, fd, vlaggen, 0, bewaar(pad), bewaar(nu)});
}

// Descriptors as they were, by those in use now.
struct Fds {
    std::map<int32_t, int> nu;
    int van(int32_t fd) const {
        const auto p = nu.find(fd);
        return p == nu.end() ? -1 : p->second;
    }
};

void doe(const Aanroep& a, Fds* fds) {
    static char buffer[1 << 20];
    const int fd = fds->van(a.fd);
    const size_t n = std::min(static_cast<size_t>(a.n), sizeof buffer);
    struct stat s;
    switch (a.soort) {
    case OPEN:
        fds->nu[a.fd] = open(a.pad, static_cast<int>(a.plaats), 0660);
        break;
    case SLUIT:
        close(fd);
        fds->nu.erase(a.fd);
        break;
    case LEES:
        (void)!pread(fd, buffer, n, a.plaats);
        break;
    case SCHRIJF:
        (void)!pwrite(fd, buffer, n, a.plaats);
        break;
    case LEES_VERDER:
        (void)!read(fd, buffer, n);
        break;
    case SCHRIJF_VERDER:
        (void)!write(fd, buffer, n);
        break;
    case SLOT: {
        struct flock slot {};
        slot.l_type = a.letter;
        slot.l_whence = SEEK_SET;
        slot.l_start = a.plaats;
        slot.l_len = a.n;
        fcntl(fd, a.opdracht, &slot);
        break;
    }
    case STAT:
        fstat(fd, &s);
        break;
    case LENGTE:
        (void)!ftruncate(fd, a.plaats);
        break;
    case SYNC:
        fsync(fd);
        break;
    case HERNOEM:
        (void)!rename(a.pad, a.nu);
        break;
    case WIS:
        unlink(a.pad);
        break;
    }
}

} // namespace

void begin() {
    lijst.clear();
    lijst.reserve(1 << 20);
    echt = SYS;
    SYS.open = [](const char* pad, int vlaggen, mode_t mode) {
        const int fd = echt.open(pad, vlaggen, mode);
        if (fd >= 0)
            noteer_naam(OPEN, fd, vlaggen, pad);
        return fd;
    };
    SYS.close = [](int fd) {
        noteer(SLUIT, fd);
        return echt.close(fd);
    };
    SYS.read = [](int fd, void* b, size_t n) {
        noteer(LEES_VERDER, fd, 0, n);
        return echt.read(fd, b, n);
    };
    SYS.write = [](int fd, const void* b, size_t n) {
        noteer(SCHRIJF_VERDER, fd, 0, n);
        return echt.write(fd, b, n);
    };
    SYS.pread = [](int fd, void* b, size_t n, off_t o) {
        noteer(LEES, fd, o, n);
        return echt.pread(fd, b, n, o);
    };
    SYS.pwrite = [](int fd, const void* b, size_t n, off_t o) {
        noteer(SCHRIJF, fd, o, n);
        return echt.pwrite(fd, b, n, o);
    };
    SYS.ftruncate = [](int fd, off_t o) {
        noteer(LENGTE, fd, o);
        return echt.ftruncate(fd, o);
    };
    SYS.fsync = [](int fd) {
        noteer(SYNC, fd);
        return echt.fsync(fd);
    };
    SYS.fstat = [](int fd, struct stat* st) {
        noteer(STAT, fd);
        return echt.fstat(fd, st);
    };
    SYS.rename = [](const char* van, const char* naar) {
        noteer_naam(HERNOEM, -1, 0, van, naar);
        return echt.rename(van, naar);
    };
    SYS.unlink = [](const char* pad) {
        noteer_naam(WIS, -1, 0, pad);
        return echt.unlink(pad);
    };
    SYS.slot = [](int fd, int opdracht, struct flock* g) {
        noteer(SLOT, fd, g->l_start, static_cast<size_t>(g->l_len));
        lijst.back().letter = static_cast<int8_t>(g->l_type);
        lijst.back().opdracht = static_cast<int16_t>(opdracht);
        return echt.slot(fd, opdracht, g);
    };
}

std::vector<Aanroep> einde() {
    SYS = echt;
    return std::move(lijst);
}

void kopieer(const std::string& van, const std::string& naar) {
    int in = open(van.c_str(), O_RDONLY | O_CLOEXEC),
        uit = open(naar.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
    eis(in >= 0 && uit >= 0, van);
    char blok[4096];
    for (ssize_t n; (n = read(in, blok, sizeof blok)) > 0;)
        eis(write(uit, blok, static_cast<size_t>(n)) == n, naar);
    // `in` has no lock of the store on it at this moment, which closing it would drop.
    close(in);
    close(uit);
}

void koel() {
    static std::vector<char> vuil(64 << 20);
    static char c;
    memset(vuil.data(), ++c, vuil.size());
    asm volatile("" : : "r"(vuil.data()) : "memory");
}

double klok() {
    struct timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

double herhaal(const std::vector<Aanroep>& calls, const std::vector<Naar>& naar) {
    Fds fds;
    static char buffer[1 << 20];
    for (const Naar& n : naar) {
        const int fd = open(n.kopie.c_str(), O_RDWR | O_CLOEXEC);
        eis(fd >= 0, n.kopie);
        fds.nu[n.van] = fd;
        for (off_t o = 0; pread(fd, buffer, sizeof buffer, o) > 0; // as warm as what it was copied from
             o += static_cast<off_t>(sizeof buffer))
            ;
    }
    koel();
    const double t = klok();
    for (const Aanroep& a : calls)
        doe(a, &fds);
    const double duur = klok() - t;
    for (const auto& f : fds.nu)
        close(f.second);
    return duur;
}

} // namespace spoor
