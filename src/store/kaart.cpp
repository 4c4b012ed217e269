// Shared mappings; see store/kaart.h. The mapping is longer than the file, so that what others add comes into view. A page
// behind the end that is touched all the same, because the file was cut, is a SIGBUS: its handler lays a page of zeros
// there and notes it, and the reader, who looks at that note behind every read, goes by calls and maps the file anew.
#include "store/kaart.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "store/ix.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr size_t STAP = size_t{64} << 20; // of address space
constexpr int AANTAL = 1024;              // descriptors that can have one

struct Kaart {
    uint8_t* basis; // null: none
    size_t lengte;
    volatile std::sig_atomic_t gat;
    bool zetten, open; // may be written, and is
};
std::array<Kaart, AANTAL> kaarten;
struct sigaction oud;

// The page that was missing, as zeros, when it is one of a mapping. What else it is stays what it was.
void op_bus(int sein, siginfo_t* info, void* samenhang) {
    const auto adres = reinterpret_cast<uintptr_t>(info->si_addr);
    for (Kaart& k : kaarten) {
        const auto basis = reinterpret_cast<uintptr_t>(k.basis);
        if (!basis || adres < basis || adres - basis >= k.lengte)
            continue;
        const size_t blad = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        void* waar = reinterpret_cast<void*>(adres / blad * blad);
        if (mmap(waar, blad, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != waar)
            break;
        k.gat = 1;
        return;
    }
    if (oud.sa_flags & SA_SIGINFO)
        oud.sa_sigaction(sein, info, samenhang);
    else if (oud.sa_handler != SIG_DFL && oud.sa_handler != SIG_IGN)
        oud.sa_handler(sein);
    else
        signal(sein, SIG_DFL); // and the access is made again
}

void vang() {
    static bool al;
    if (al)
        return;
    al = true;
    struct sigaction nieuw {};
    nieuw.sa_sigaction = op_bus;
    nieuw.sa_flags = SA_SIGINFO;
    sigemptyset(&nieuw.sa_mask);
    sigaction(SIGBUS, &nieuw, &oud);
}

// Where that can be, and may blocks that stand be stored into?
bool kan(int fd, bool* zetten) {
    if (sizeof(void*) < 8 || fd < 0 || fd >= AANTAL)
        return false;
    const IOSOORT soort = IOSOORTVAN(fd);
    *zetten = soort.zetten;
    return soort.kaart;
}

bool aan() {
    const char* s = getenv("ZGKAART");
    return !s || strcmp(s, "0") != 0;
}

bool maak(int fd, size_t lengte) {
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    if (k.basis)
        munmap(k.basis, k.lengte);
    void* p = mmap(nullptr, lengte, PROT_READ | (k.open ? PROT_WRITE : 0), MAP_SHARED | MAP_NORESERVE, fd, 0);
    k.basis = p == MAP_FAILED ? nullptr : static_cast<uint8_t*>(p);
    k.lengte = lengte;
    k.gat = 0;
    return k.basis;
}

// The mapping, whole and at least so long; null when that can't be had.
Kaart* heel(int fd, int64_t lengte) {
    if (!IXKAARTER(fd) || lengte < 0)
        return nullptr;
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    const size_t einde = static_cast<size_t>(lengte);
    if ((k.gat || einde > k.lengte) && !maak(fd, std::max(k.lengte, (einde / STAP + 2) * STAP)))
        return nullptr;
    return &k;
}

const int64_t BINNENBLAD = sysconf(_SC_PAGESIZE) - 1; // the bits of a place within its page

// As a library compares them, many at once.
bool nullen(const uint8_t* p, size_t n) {
    static constexpr uint8_t NUL[512] = {};
    for (; n > sizeof NUL; p += sizeof NUL, n -= sizeof NUL)
        if (memcmp(p, NUL, sizeof NUL) != 0)
            return false;
    return memcmp(p, NUL, n) == 0;
}

bool zelfde_blad(int64_t a, int64_t b) {
    return ((a ^ b) & ~BINNENBLAD) == 0;
}

} // namespace

void IXKAARTOPEN(int fd) {
    bool zetten;
    if (!kan(fd, &zetten) || !aan())
        return;
    vang();
    kaarten[static_cast<size_t>(fd)] = {nullptr, 0, 0, zetten, false};
    maak(fd, (static_cast<size_t>(std::max<int64_t>(SYSOMVANG(fd), 0)) / STAP + 2) * STAP);
}

void IXKAARTDICHT(int fd) {
    if (!IXKAARTER(fd))
        return;
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    munmap(k.basis, k.lengte);
    k = {};
}

bool IXKAARTER(int fd) {
    return fd >= 0 && fd < AANTAL && kaarten[static_cast<size_t>(fd)].basis;
}

const uint8_t* IXKAARTBEGIN(int fd) {
    const Kaart* k = heel(fd, 0);
    return k ? k->basis : nullptr;
}

bool IXKAARTLEES(int fd, int64_t plaats, void* doel, size_t n, int64_t lengte) {
    int64_t laatste = plaats + static_cast<int64_t>(n) - 1; // byte asked for, and then the one that tells
    const Kaart* k = plaats < 0 || n == 0 || laatste >= lengte ? nullptr : heel(fd, lengte);
    if (!k)
        return false;
    SYS.kaartlees(fd, doel, k->basis + plaats, n, plaats);
    const volatile uint8_t* p = k->basis;
    if (!zelfde_blad(laatste, lengte - 1))
        static_cast<void>(p[lengte - 1]);
    else
        while (laatste < lengte && p[laatste] == 0)
            laatste++;
    return laatste < lengte && !k->gat;
}

void IXKAARTVOORUIT(int fd, int64_t plaats, size_t n) {
    constexpr size_t LIJN = 64;
    const Kaart& k = kaarten[static_cast<size_t>(fd)];
    const size_t van = static_cast<size_t>(plaats) & ~(LIJN - 1), tot = static_cast<size_t>(plaats) + n;
    if (plaats < 0 || tot > k.lengte)
        return;
    for (size_t p = van; p < tot; p += LIJN)
        __builtin_prefetch(k.basis + p);
}

bool IXKAARTSTAAT(int fd, int64_t plaats, const void* wat, size_t n) {
    std::atomic_signal_fence(std::memory_order_seq_cst); // not what was read the first time
    const Kaart& k = kaarten[static_cast<size_t>(fd)];
    return memcmp(k.basis + plaats, wat, n) == 0 && !k.gat;
}

bool IXKAARTEINDE(int fd, int64_t lengte, size_t n) {
    constexpr int64_t GENOEG = 16;                                 // bytes to see whether the file goes on
    const int64_t over = BINNENBLAD - ((lengte - 1) & BINNENBLAD), // of the page of its last byte
        rest = std::min<int64_t>(over, static_cast<int64_t>(n));
    const Kaart* k = lengte < 1 || rest < std::min<int64_t>(GENOEG, static_cast<int64_t>(n))
                         ? nullptr
                         : heel(fd, lengte + rest);
    if (!k)
        return false;
    std::atomic_signal_fence(std::memory_order_seq_cst); // not what was read before
    const uint8_t* p = k->basis + lengte;
    return p[-1] != 0 && nullen(p, static_cast<size_t>(rest)) && !k->gat;
}

bool IXKAARTREIKT(int fd, int64_t lengte, size_t n) {
    const Kaart* k = lengte < 1 ? nullptr : heel(fd, lengte);
    if (!k)
        return false;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    const uint8_t *einde = k->basis + lengte,
                  *begin = k->basis + std::max((lengte - 1) & ~BINNENBLAD, lengte - static_cast<int64_t>(n));
    return !nullen(begin, static_cast<size_t>(einde - begin)) && !k->gat;
}

int IXKAARTNULLEN(int fd, int64_t plaats, size_t n) {
    const Kaart* k = heel(fd, plaats + static_cast<int64_t>(n));
    if (!k)
        return -1;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    const bool leeg = nullen(k->basis + plaats, n);
    return k->gat ? -1 : leeg;
}

bool IXKAARTZETTEN(int fd, int64_t lengte) {
    if (!IXKAARTER(fd) || !kaarten[static_cast<size_t>(fd)].zetten)
        return false;
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    if (!k.open && mprotect(k.basis, k.lengte, PROT_READ | PROT_WRITE) != 0)
        return false;
    k.open = true;
    return heel(fd, lengte);
}

void IXKAARTZET(int fd, int64_t plaats, const void* bron, size_t n) {
    SYS.kaartzet(fd, kaarten[static_cast<size_t>(fd)].basis + plaats, bron, n, plaats);
}

bool IXKAARTGAT(int fd) {
    return kaarten[static_cast<size_t>(fd)].gat;
}

uint8_t* IXKAARTKOP(int fd) {
    return kaarten[static_cast<size_t>(fd)].basis;
}

} // namespace zg
