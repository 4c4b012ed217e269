// Shared mappings; see store/kaart.h. The mapping is longer than the file, so that what others add comes into view. A page
// behind the end that is touched all the same, because the file was cut, is a SIGBUS: its handler lays a page of zeros
// there and notes it, and the reader, who looks at that note behind every read, goes by calls and maps the file anew.
#include "store/kaart.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr size_t STAP = size_t{64} << 20; // of address space
constexpr int AANTAL = 1024;              // descriptors that can have one

struct Kaart {
    uint8_t* basis; // null: none
    size_t lengte;
    volatile std::sig_atomic_t gat;
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

// File systems of this machine alone, where a mapping and the calls of others are the same pages.
bool kan(int fd) {
    constexpr long XFS = 0x58465342;
    struct statfs s;
    if (sizeof(void*) < 8 || fd < 0 || fd >= AANTAL || fstatfs(fd, &s) != 0)
        return false;
    return s.f_type == EXT4_SUPER_MAGIC || s.f_type == TMPFS_MAGIC || s.f_type == XFS ||
           s.f_type == BTRFS_SUPER_MAGIC || s.f_type == F2FS_SUPER_MAGIC;
}

bool aan() {
    const char* s = getenv("ZGKAART");
    return !s || strcmp(s, "0") != 0;
}

bool maak(int fd, size_t lengte) {
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    if (k.basis)
        munmap(k.basis, k.lengte);
    void* p = mmap(nullptr, lengte, PROT_READ, MAP_SHARED | MAP_NORESERVE, fd, 0);
    k.basis = p == MAP_FAILED ? nullptr : static_cast<uint8_t*>(p);
    k.lengte = lengte;
    k.gat = 0;
    return k.basis;
}

} // namespace

void IXKAARTOPEN(int fd) {
    if (!aan() || !kan(fd))
        return;
    vang();
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
    if (!IXKAARTER(fd))
        return nullptr;
    const Kaart& k = kaarten[static_cast<size_t>(fd)];
    return k.gat && !maak(fd, k.lengte) ? nullptr : k.basis;
}

bool IXKAARTLEES(int fd, int64_t plaats, void* doel, size_t n, int64_t lengte) {
    static const int64_t blad = sysconf(_SC_PAGESIZE);
    int64_t laatste = plaats + static_cast<int64_t>(n) - 1; // byte asked for, and then the one that tells
    if (plaats < 0 || n == 0 || laatste >= lengte || !IXKAARTER(fd))
        return false;
    Kaart& k = kaarten[static_cast<size_t>(fd)];
    const size_t einde = static_cast<size_t>(lengte);
    if ((k.gat || einde > k.lengte) && !maak(fd, std::max(k.lengte, (einde / STAP + 2) * STAP)))
        return false;
    SYS.kaartlees(fd, doel, k.basis + plaats, n, plaats);
    const volatile uint8_t* p = k.basis;
    if (laatste / blad != (lengte - 1) / blad)
        static_cast<void>(p[laatste = lengte - 1]);
    else
        while (laatste < lengte && p[laatste] == 0)
            laatste++;
    return laatste < lengte && !k.gat;
}

} // namespace zg
