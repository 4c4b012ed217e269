// The linker leads the store's calls through here (--wrap).
#include "bench/spoor.h"
#include "bench/bank.h"
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace spoor {
namespace {

bool aan;
std::vector<Aanroep> lijst;

void noteer(Soort soort, int fd, int64_t plaats, int64_t n, int8_t letter = 0, bool vraag = false) {
    if (aan)
        lijst.push_back({soort, letter, vraag, fd, plaats, n});
}

} // namespace

void begin() {
    lijst.clear();
    lijst.reserve(1 << 20);
    aan = true;
}

std::vector<Aanroep> einde() {
    aan = false;
    return std::move(lijst);
}

void kopieer(const std::string& van, const std::string& naar) {
    int in = open(van.c_str(), O_RDONLY | O_CLOEXEC),
        uit = open(naar.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
    bank::eis(in >= 0 && uit >= 0, "open", van.c_str());
    char blok[4096];
    for (ssize_t n; (n = read(in, blok, sizeof blok)) > 0;)
        bank::eis(write(uit, blok, static_cast<size_t>(n)) == n, "write", naar.c_str());
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

double herhaal(const std::vector<Aanroep>& calls, const std::vector<Naar>& naar) {
    std::map<int32_t, int> fds;
    for (const Naar& n : naar) {
        int fd = open(n.kopie.c_str(), O_RDWR | O_CLOEXEC);
        bank::eis(fd >= 0, "open", n.kopie.c_str());
        fds[n.van] = fd;
    }
    std::vector<Aanroep> eigen = calls;
    for (Aanroep& a : eigen)
        a.fd = fds.at(a.fd);
    static char buffer[1 << 20];
    struct stat s;
    auto klok = [] {
        struct timespec t;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
    };
    for (auto& f : fds) // the copies are to be as warm as what they were copied from
        for (off_t o = 0; pread(f.second, buffer, sizeof buffer, o) > 0;
             o += static_cast<off_t>(sizeof buffer))
            ;
    koel();
    const double t = klok();
    for (const Aanroep& a : eigen) {
        switch (a.soort) {
        case LEES:
            (void)!pread(a.fd, buffer, static_cast<size_t>(a.n), a.plaats);
            break;
        case SCHRIJF:
            (void)!pwrite(a.fd, buffer, static_cast<size_t>(a.n), a.plaats);
            break;
        case SLOT: {
            struct flock slot {};
            slot.l_type = a.letter;
            slot.l_whence = SEEK_SET;
            slot.l_start = a.plaats;
            slot.l_len = a.n;
            fcntl(a.fd, a.vraag ? F_GETLK : F_SETLK, &slot);
            break;
        }
        case STAT:
            fstat(a.fd, &s);
            break;
        case LENGTE:
            (void)!ftruncate(a.fd, a.plaats);
            break;
        default:
            break;
        }
    }
    const double duur = klok() - t;
    for (auto& f : fds)
        close(f.second);
    return duur;
}

} // namespace spoor

extern "C" {

#define OMWEG(naam, uit, parameters, argumenten, aantekening)                                                \
    uit __real_##naam parameters;                                                                            \
    uit __wrap_##naam parameters {                                                                           \
        spoor::aantekening;                                                                                  \
        return __real_##naam argumenten;                                                                     \
    }
#define OMWEGEN(naam, uit, parameters, argumenten, aantekening)                                              \
    OMWEG(naam, uit, parameters, argumenten, aantekening)                                                    \
    OMWEG(naam##64, uit, parameters, argumenten, aantekening)

OMWEGEN(pread, ssize_t, (int fd, void* p, size_t n, off_t o), (fd, p, n, o),
        noteer(spoor::LEES, fd, o, static_cast<int64_t>(n)))
OMWEGEN(pwrite, ssize_t, (int fd, const void* p, size_t n, off_t o), (fd, p, n, o),
        noteer(spoor::SCHRIJF, fd, o, static_cast<int64_t>(n)))
OMWEGEN(fstat, int, (int fd, struct stat* s), (fd, s), noteer(spoor::STAT, fd, 0, 0))
OMWEGEN(ftruncate, int, (int fd, off_t o), (fd, o), noteer(spoor::LENGTE, fd, o, 0))

int __real_fcntl64(int fd, int opdracht, ...);
static int slot(int fd, int opdracht, void* p) {
    if (opdracht == F_SETLK || opdracht == F_GETLK) {
        const struct flock* f = static_cast<const struct flock*>(p);
        spoor::noteer(spoor::SLOT, fd, f->l_start, f->l_len, static_cast<int8_t>(f->l_type),
                      opdracht == F_GETLK);
    }
    return __real_fcntl64(fd, opdracht, p);
}
int __wrap_fcntl64(int fd, int opdracht, ...) {
    va_list ap;
    va_start(ap, opdracht);
    void* p = va_arg(ap, void*);
    va_end(ap);
    return slot(fd, opdracht, p);
}
int __wrap_fcntl(int fd, int opdracht, ...) {
    va_list ap;
    va_start(ap, opdracht);
    void* p = va_arg(ap, void*);
    va_end(ap);
    return slot(fd, opdracht, p);
}
}
