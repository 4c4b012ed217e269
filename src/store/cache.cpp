// The block cache: fifty places, the root of key k always in place k - 1, every other block where it fits. A place
// has a weight: 100 when it was just used, one less for every search that passes it by.
#include "store/cache.h"
#include "shared/files.h"
#include "store/node.h"
#include "store/uitstel.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <new>

namespace zg {
namespace {

constexpr int32_t VERS = 100;

struct Plaats {
    int32_t blok, gewicht; // blok 0: empty
    bool anders;           // differs from the file
};

struct Cache {
    std::unique_ptr<uint8_t[]> blokken;
    std::array<Plaats, CACHEPLAATSEN> plaats;
    ICB* van = nullptr;
} cache;

uint8_t* inhoud(int p) {
    return cache.blokken.get() + p * IXBLOK;
}

void schrijf(int p) {
    Plaats& pl = cache.plaats[static_cast<size_t>(p)];
    if (pl.anders && pl.blok) {
        if (!IXBLOKSCHRIJF(cache.van->idxfd, pl.blok, inhoud(p)))
            IXSCHIJFFOUT(cache.van, cache.van->idxfd, int64_t{pl.blok} * IXBLOK, IXBLOK);
        IXCOMMITHOOK();
    }
    pl.anders = false;
}

// Give up every place whose weight is at or below the limit, the limit falling until one was; the lowest of them.
// Weights above a limit of 0 would go round for ever: then the lightest place goes.
int maak_plaats(int eerste, int64_t som) {
    int vrij = -1;
    for (int64_t grens = som / CACHEPLAATSEN; vrij < 0; grens /= CACHEPLAATSEN) {
        for (int p = CACHEPLAATSEN - 1; p >= eerste; p--)
            if (cache.plaats[static_cast<size_t>(p)].gewicht <= grens) {
                schrijf(p);
                cache.plaats[static_cast<size_t>(p)].blok = 0;
                vrij = p;
            }
        if (grens <= 0 && vrij < 0) {
            auto lichtst =
                std::min_element(cache.plaats.begin() + eerste, cache.plaats.end(),
                                 [](const Plaats& a, const Plaats& b) { return a.gewicht < b.gewicht; });
            vrij = static_cast<int>(lichtst - cache.plaats.begin());
            schrijf(vrij);
            lichtst->blok = 0;
        }
    }
    return vrij;
}

// The place of a block; *raak tells whether it holds the block already.
int zoek(int eerste, int32_t blok, bool* raak) {
    if (blok <= eerste) {
        *raak = cache.plaats[static_cast<size_t>(blok - 1)].blok == blok;
        return blok - 1;
    }
    int64_t som = 0;
    int gevonden = -1, leeg = -1;
    for (int p = eerste; p < CACHEPLAATSEN; p++) {
        Plaats& pl = cache.plaats[static_cast<size_t>(p)];
        if (gevonden < 0 && pl.blok == blok) {
            gevonden = p;
            continue;
        }
        if (leeg < 0 && !pl.blok)
            leeg = p;
        som += pl.gewicht;
        pl.gewicht--;
    }
    *raak = gevonden >= 0;
    if (gevonden >= 0)
        return gevonden;
    return leeg >= 0 ? leeg : maak_plaats(eerste, som);
}

int aan(ICB* icb) {
    if (cache.van)
        return 0;
    if (!UITSTELUIT(icb))
        IXSCHIJFFOUT(icb, icb->idxfd, 0, IXBLOK);
    cache.blokken.reset(new (std::nothrow) uint8_t[CACHEPLAATSEN * IXBLOK]());
    if (!cache.blokken)
        return 0;
    cache.plaats = {};
    cache.van = icb;
    icb->cached = 1;
    std::fill(std::begin(icb->parent), std::end(icb->parent), -1);
    return 1;
}

int uit(ICB* icb, bool bewaren) {
    for (int p = 0; bewaren && p < CACHEPLAATSEN; p++)
        schrijf(p);
    icb->cached = 0;
    cache.van = nullptr;
    cache.blokken.reset();
    return 1;
}

int lees(ICB* icb, int32_t blok) {
    bool raak;
    int p = zoek(icb->h.nkeys, blok, &raak), goed = 1;
    if (raak)
        memcpy(icb->node, inhoud(p), IXBLOK);
    else {
        goed = IXHEELBLOK(icb, blok, icb->node);
        if (!goed) // never half a block
            memset(icb->node, 0, IXBLOK);
        memcpy(inhoud(p), icb->node, IXBLOK);
    }
    Plaats& pl = cache.plaats[static_cast<size_t>(p)];
    pl = {blok, VERS, raak && pl.anders};
    icb->curblock = blok;
    return goed;
}

int bewaar(ICB* icb, int32_t blok) {
    bool raak;
    int p = zoek(icb->h.nkeys, blok, &raak);
    memcpy(inhoud(p), icb->node, IXBLOK);
    cache.plaats[static_cast<size_t>(p)] = {blok, VERS, true};
    return 1;
}

} // namespace

int IOCACHE(char letter, ICB* icb, int32_t blok) {
    IXEIS(icb, "IOCACHE");
    if (letter == 'I')
        return aan(icb);
    if (cache.van != icb || blok < 0 || (blok == 0 && letter != 'F' && letter != 'X'))
        return 0;
    switch (letter) {
    case 'F':
        return uit(icb, true);
    case 'X':
        return uit(icb, false);
    case 'R':
        return lees(icb, blok);
    case 'W':
        return bewaar(icb, blok);
    default:
        return 0;
    }
}

} // namespace zg
