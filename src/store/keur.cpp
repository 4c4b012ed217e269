// The invariants of store/node.h, one function for them all; see store/keur.h.
#include "store/keur.h"
#include "store/node.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zg {
namespace {

struct Kijk {
    const ICB* icb;
    const Gekeurd* blokken;
    size_t n;
    bool nieuw; // look at what the blocks become, not at what they were

    const IXKNOOP* knoop(const Gekeurd& g) const {
        return reinterpret_cast<const IXKNOOP*>(nieuw ? g.wordt : g.was);
    }
    const IXKNOOP* vind(int32_t blok) const {
        for (size_t i = 0; i < n; i++)
            if (blokken[i].blok == blok)
                return knoop(blokken[i]);
        return nullptr;
    }

    // Number of the first invariant that a node breaks, 0 for none.
    int gebroken(int32_t blok, const IXKNOOP& k) const {
        if (k.keyno < 1 || k.keyno > icb->h.nkeys || (blok <= icb->h.nkeys && k.keyno != blok))
            return 1;
        const IXKEYDEF& def = icb->h.keydef[k.keyno - 1];
        const int stap = def.keylen + 4;
        if (k.count >= def.maxent)
            return 2;
        const auto entry = [&](int i) { return k.entries + i * stap; };
        const auto sluitstuk = [&](int i) {
            return std::all_of(entry(i), entry(i) + def.keylen, [](uint8_t b) { return b == 0xFF; });
        };
        const bool gelijk_mag = def.dupflag == 'N' && k.keyno > 1;
        for (int i = 1; i < k.count; i++) {
            const int d = IXVERGELIJK(def, entry(i - 1), entry(i), def.keylen);
            if (d > 0 || (d == 0 && !gelijk_mag && !sluitstuk(i)))
                return 3;
        }
        for (int i = 0; i < k.count; i++) {
            const int32_t wijzer = LEES32(entry(i) + def.keylen);
            if (k.level == 1) {
                if (wijzer < 0 && (i != k.count - 1 || !sluitstuk(i)))
                    return 5;
                continue;
            }
            const IXKNOOP* kind = vind(wijzer);
            if (!kind)
                continue;
            if (kind->level != k.level - 1)
                return 6;
            if (kind->count < 1 ||
                IXVERGELIJK(def, entry(i), kind->entries + (kind->count - 1) * stap, def.keylen) != 0)
                return 4;
        }
        return 0;
    }
};

} // namespace

void IXKEUR(const ICB* icb, const Gekeurd* blokken, size_t n) {
    const Kijk was{icb, blokken, n, false}, wordt{icb, blokken, n, true};
    for (size_t i = 0; i < n; i++)
        if (blokken[i].was && was.knoop(blokken[i])->count > 0 &&
            was.gebroken(blokken[i].blok, *was.knoop(blokken[i])))
            return;
    for (size_t i = 0; i < n; i++)
        if (int nr = wordt.gebroken(blokken[i].blok, *wordt.knoop(blokken[i]))) {
            fprintf(stderr, "%s: block %d breaks invariant %d of the trees\n", icb->path, blokken[i].blok,
                    nr);
            abort();
        }
}

} // namespace zg
