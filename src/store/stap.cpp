// Steps of a walk out of the leaf in hand. In a pair that has stood still since the leaf was read its next entry is the next
// key; the record is read first and the header looked at behind it, so that one look tells for both. Without a mapping
// the leaf serves for a moment (IXBLADVERS), and the record is the one call. All that is not as it should be is left to the
// search.
#include "shared/syscalls.h"
#include "store/kaart.h"
#include "store/kop.h"
#include "store/node.h"
#include <algorithm>

namespace zg {
namespace {

constexpr int VOORUIT = 6; // records that are on their way to the processor while the walk goes on

template <class T>
bool omgekeerd(const uint8_t* a, const uint8_t* b) { // the same number, lowest byte first and last
    T x, y;
    memcpy(&x, a, sizeof x);
    memcpy(&y, b, sizeof y);
    if constexpr (sizeof(T) == 4)
        return x == __builtin_bswap32(y);
    else
        return x == __builtin_bswap16(y);
}

// Keys are of any length, and short: no calls for them.
void zet_kort(uint8_t* naar, const uint8_t* van, int n) {
    int i = 0;
    for (; i + 4 <= n; i += 4)
        memcpy(naar + i, van + i, 4);
    for (; i < n; i++)
        naar[i] = van[i];
}

// Does b come behind a, with the same first `delen` parts?
bool volgt(const IXKEYDEF& def, const uint8_t* a, const uint8_t* b, int delen) {
    const int verschil = IXVERSCHIL(a, b, def.keylen);
    if (verschil == def.keylen)
        return false;
    int deel = 0, begin = 0,
        onder = 0; // the part that differs, where it begins, where the first `delen` parts end
    for (int breed; (breed = IXDEELBREEDTE(def, deel)) > 0 && begin + breed <= verschil; deel++)
        begin += breed;
    if (deel == IXDELEN || def.ptype[deel] != 'C')
        return delen <= deel && a[verschil] < b[verschil];
    for (int d = 0; d < delen; d++)
        onder += IXDEELBREEDTE(def, d);
    return IXVERGELIJK(def, a, b, onder) == 0 && IXVERGELIJK(def, a, b, def.keylen) < 0;
}

bool tekst_staat(const uint8_t* tekst, const uint8_t* sleutel, size_t breed) {
    if (memcmp(tekst, sleutel, breed) == 0)
        return true;
    const size_t n =
        strnlen(reinterpret_cast<const char*>(tekst), breed); // what stands behind it is not of the key
    return n < breed && memcmp(tekst, sleutel, n) == 0 &&
           std::all_of(sleutel + n, sleutel + breed, [](uint8_t b) { return b == 0; });
}

void haal_vooruit(const ICB* icb, const IXKEYDEF& def, const uint8_t* entry) {
    const int32_t nr = LEES32(entry + def.keylen);
    if (nr >= 0)
        IXKAARTVOORUIT(icb->datfd, int64_t{nr} * icb->h.reclen, static_cast<size_t>(icb->h.reclen));
}

} // namespace

bool IXSLEUTELSTAAT(const IXKEYDEF& def, const void* rec, int32_t recnr, const uint8_t* sleutel) {
    const uint8_t* r = static_cast<const uint8_t*>(rec);
    for (int d = 0; d < IXDELEN && def.ptype[d]; d++) {
        const uint8_t* van = r + def.pstart[d] - 1;
        const int breed = IXDEELBREEDTE(def, d);
        const bool staat = def.ptype[d] == 'C' ? tekst_staat(van, sleutel, static_cast<size_t>(breed))
                           : breed == 4        ? omgekeerd<uint32_t>(van, sleutel)
                           : breed == 2        ? omgekeerd<uint16_t>(van, sleutel)
                                               : breed == 1 && *van == *sleutel;
        if (!staat)
            return false;
        sleutel += breed;
    }
    return def.dupflag != 'J' || omgekeerd<uint32_t>(reinterpret_cast<const uint8_t*>(&recnr), sleutel);
}

void IXSTAPVOORUIT(const ICB* icb) {
    const IXKNOOP& k = KNOOP(icb);
    if (k.level != 1 || !IXKAARTER(icb->datfd))
        return;
    const IXKEYDEF& def = IXDEF(icb);
    const ptrdiff_t stap = def.keylen + 4;
    const uint8_t *einde = k.entries + k.count * stap, *p = icb->curent + stap;
    for (int i = 0; i < VOORUIT && p + stap <= einde; i++, p += stap)
        haal_vooruit(icb, def, p);
}

bool IXSTAPHIER(ICB* icb, void* rec, int delen) {
    const IXKNOOP& k = KNOOP(icb);
    IXPLAATS& p = icb->plaats;
    if (k.level != 1 || ALLEEN(icb) || icb->tempidx || icb->h.busy)
        return false;
    const IXKEYDEF& def = IXDEF(icb);
    const ptrdiff_t stap = def.keylen + 4;
    const uint8_t* einde = k.entries + k.count * stap;
    uint8_t* volgende = icb->curent + stap;
    if (icb->curent < k.entries || volgende + stap > einde ||
        IXVERSCHIL(icb->curent, p.entry, def.keylen) != def.keylen || !volgt(def, p.entry, volgende, delen))
        return false;
    const int32_t nr = LEES32(volgende + def.keylen);
    const size_t n = static_cast<size_t>(icb->h.reclen);
    const int64_t plaats = int64_t{nr} * icb->h.reclen;
    const bool kaart = IXKAARTER(icb->idxfd);
    const auto lees = [&] {
        if (!kaart)
            return IXBLADVERS(icb) && SYSLEES(icb->datfd, rec, n, plaats) == static_cast<ssize_t>(n);
        return icb->bladstand.telling != 0 &&
               IXKAARTLEES(icb->datfd, plaats, rec, n, int64_t{icb->bladstand.nrecs} * icb->h.reclen);
    };
    if (nr < 0)
        return false;
    uint8_t was[IXRECMAX];
    memcpy(was, rec, n);
    const auto niet = [&] { return memcpy(rec, was, n), false; };
    if (!lees() || !IXRECLIVE(rec, icb->h.reclen) || !IXSLEUTELSTAAT(def, rec, nr, volgende))
        return niet();
    if (kaart) {
        const auto& b = icb->bladstand;
        IXSTAND stand;
        if (!IXKAARTSTAAT(icb->datfd, plaats, rec, n) || !IXSTANDLEES(icb, &stand) ||
            !GELIJK({b.freehead, b.nrecs, b.nblocks, b.telling, false}, stand))
            return niet();
        if (const uint8_t* ver = volgende + VOORUIT * stap; ver + stap <= einde)
            haal_vooruit(icb, def, ver);
    }
    icb->curent = volgende;
    icb->currec = p.nr = nr;
    zet_kort(p.entry, volgende, def.keylen);
    zet_kort(p.record, volgende, def.keylen);
    return true;
}

} // namespace zg
