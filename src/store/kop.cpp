// Header and change count; see store/kop.h.
#include "store/kop.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "store/kaart.h"
#include "store/node.h"
#include <atomic>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace zg {
namespace {

constexpr uint32_t TELMASKER = 0xFFFFFF;

uint32_t met_toets(uint32_t n) {
    n &= TELMASKER;
    return n | ((n ^ n >> 8 ^ n >> 16 ^ 0x5A) & 0xFF) << 24;
}

bool geldig(uint32_t telling) {
    return telling == met_toets(telling);
}

template <class T> T uit(const uint8_t* plaats) { // a number that others may be writing
    return __atomic_load_n(reinterpret_cast<const T*>(plaats), __ATOMIC_ACQUIRE);
}

template <class T> void zet(uint8_t* plaats, T waarde) {
    __atomic_store_n(reinterpret_cast<T*>(plaats), waarde, __ATOMIC_RELEASE);
}

} // namespace

uint32_t IXTELVERDER(uint32_t telling, Kopmerk merk) {
    if (!geldig(telling)) { // not a number that a reader may have seen before
        struct timespec nu;
        clock_gettime(CLOCK_MONOTONIC, &nu);
        telling = static_cast<uint32_t>(nu.tv_nsec) ^ static_cast<uint32_t>(getpid()) << 8;
    }
    const uint32_t oneven = merk == K_RUST ? 0 : 1;
    telling++;
    return met_toets(telling + ((telling & 1) != oneven));
}

bool IXTELRUST(uint32_t telling) {
    return geldig(telling) && !(telling & 1);
}

uint32_t IXTELLEES(int idxfd) {
    uint32_t telling = 0;
    if (const uint8_t* p = IXKAARTBEGIN(idxfd))
        telling = uit<uint32_t>(p + TELPLAATS); // of a file that was cut in it: zeros, which are no count
    else if (IOLEES(idxfd, &telling, sizeof telling, TELPLAATS) != static_cast<ssize_t>(sizeof telling))
        telling = 0;
    return telling;
}

int IXKOPSCHRIJF(int idxfd, const IXHEADER& h, Kopmerk merk, uint32_t* telling) {
    uint8_t kop[IXBLOK] = {}; // the other bytes behind the header mean nothing
    IXHEADER nieuw = h;
    nieuw.busy = merk;
    *telling = IXTELVERDER(*telling, merk);
    memcpy(kop, &nieuw, sizeof nieuw);
    memcpy(kop + TELPLAATS, telling, sizeof *telling);
    if (!IXBLOKSCHRIJF(idxfd, 0, kop))
        return 0;
    IXCOMMITHOOK();
    return 1;
}

// The mark goes up first and comes down last: who is killed in between leaves it.
void IXKOPZET(int idxfd, const IXHEADER& h, Kopmerk merk, uint32_t* telling) {
    uint8_t* p = IXKAARTKOP(idxfd);
    *telling = IXTELVERDER(*telling, merk);
    if (merk != K_RUST) {
        zet<uint8_t>(p + offsetof(IXHEADER, busy), merk);
        zet(p + TELPLAATS, *telling);
        std::atomic_thread_fence(std::memory_order_seq_cst);
        return;
    }
    zet(p + offsetof(IXHEADER, freehead), h.freehead);
    zet(p + offsetof(IXHEADER, nrecs), h.nrecs);
    zet(p + offsetof(IXHEADER, nblocks), h.nblocks);
    zet(p + TELPLAATS, *telling);
    zet<uint8_t>(p + offsetof(IXHEADER, busy), merk);
}

int IXALLEENMERK(ICB* icb, const IXHEADER& h) {
    if (icb->mode != 1 || icb->tempidx || icb->gemerkt)
        return 1;
    uint32_t telling = IXTELLEES(icb->idxfd);
    icb->gemerkt = static_cast<int8_t>(IXKOPSCHRIJF(icb->idxfd, h, K_ALLEEN, &telling));
    return icb->gemerkt;
}

bool IXSTANDLEES(const ICB* icb, IXSTAND* stand) {
    const uint8_t* p = icb->tempidx ? nullptr : IXKAARTBEGIN(icb->idxfd);
    *stand = {};
    if (!p)
        return false;
    std::atomic_thread_fence(std::memory_order_acquire); // behind all that was read before
    const uint32_t telling = uit<uint32_t>(p + TELPLAATS);
    stand->freehead = uit<int32_t>(p + offsetof(IXHEADER, freehead));
    stand->nrecs = uit<int32_t>(p + offsetof(IXHEADER, nrecs));
    stand->nblocks = uit<int32_t>(p + offsetof(IXHEADER, nblocks));
    const uint8_t busy = uit<uint8_t>(p + offsetof(IXHEADER, busy));
    const bool dezelfde = uit<uint32_t>(p + TELPLAATS) == telling;
    stand->telling = telling;
    stand->bezig = geldig(telling) && busy != K_ALLEEN && (busy || (telling & 1) || !dezelfde);
    return IXTELRUST(telling) && dezelfde && !busy;
}

} // namespace zg
