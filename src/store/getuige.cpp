// Cut data files; see store/getuige.h.
#include "store/getuige.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/report.h"
#include "store/kaart.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/wachten.h"
#include <algorithm>

namespace zg {
namespace {

bool nullen(const uint8_t* p, size_t n) {
    return std::all_of(p, p + n, [](uint8_t b) { return b == 0; });
}

// Is looking too dear here? An exclusive handle looks at the size of the file before each record that it adds. A temporary
// index has no records of its own.
bool te_duur(const ICB* icb) {
    return icb->tempidx || (!IXKAARTER(icb->datfd) && (IOGEDEELD() || icb->mode == 1));
}

// One record may be all zeros, and become so while somebody else looks: the one whose first key is. Two can't.
constexpr int32_t VOOR = 2;

// The records in front of nr out of the mapping: does anything stand there? -1: by a call.
int iets_voor(const ICB* icb, int32_t nr) {
    if (nr < VOOR)
        return 0;
    const int64_t n = icb->h.reclen;
    const int leeg = IXKAARTER(icb->datfd)
                         ? IXKAARTNULLEN(icb->datfd, (nr - VOOR) * n, static_cast<size_t>(VOOR * n))
                         : -1;
    return leeg < 0 ? -1 : !leeg;
}

// The records in front of nr, if there are so many, and so many bytes behind them, by one call.
struct Lezing {
    uint8_t bytes[(VOOR + 1) * IXRECMAX + 1];
    size_t voor, gelezen; // bytes in front of nr, and what there was of all
    Lezing(const ICB* icb, int32_t nr, size_t erbij) {
        const size_t n = static_cast<size_t>(icb->h.reclen);
        voor = static_cast<size_t>(std::min(nr, VOOR)) * n;
        const int64_t plaats = int64_t{nr} * icb->h.reclen - static_cast<int64_t>(voor);
        gelezen = static_cast<size_t>(IOLEES(icb->datfd, bytes, voor + erbij, plaats));
    }
    bool iets(const ICB* icb) const {
        return voor == static_cast<size_t>(VOOR * icb->h.reclen) && gelezen >= voor && !nullen(bytes, voor);
    }
};

// What the data file has to hold, by so many records. Another may have emptied the pair since this handle looked at it, or have
// put one with fewer in its place.
int64_t moet(const ICB* icb, int32_t aantal) {
    IXHEADER h;
    if (icb->mode != 1 && IXKOPBLOK(icb, &h) && h.reclen == icb->h.reclen && h.nrecs >= 0)
        aantal = std::min(aantal, h.nrecs);
    return int64_t{aantal} * icb->h.reclen;
}

// Programs that count a record before they write it get a moment to do so.
bool reikt(const ICB* icb, int32_t aantal) {
    for (int keer = 0; keer < KIJKERSTIL; keer++) {
        if (IOOMVANG(icb->datfd) >= moet(icb, aantal))
            return true;
        IXPAUZE(R_LEZER, keer);
    }
    return false;
}

} // namespace

bool IXLEESMET(ICB* icb, void* rec, IXGETUIGE* voor) {
    *voor = {};
    const int er = te_duur(icb) ? 0 : iets_voor(icb, icb->currec);
    voor->er = er > 0;
    if (er >= 0)
        return IXLEESHEEL(icb, rec);
    const size_t n = static_cast<size_t>(icb->h.reclen);
    const Lezing l(icb, icb->currec, n);
    voor->er = l.iets(icb);
    if (l.gelezen == l.voor + n)
        return memcpy(rec, l.bytes + l.voor, n), true;
    memset(rec, 0xFF, n);
    return false;
}

int IXKIJKEINDE(const ICB* icb, int32_t nr, IXGETUIGE* voor) {
    *voor = {};
    const int64_t einde = int64_t{nr} * icb->h.reclen;
    const int er = te_duur(icb) ? 0 : iets_voor(icb, nr);
    voor->er = er > 0;
    if (IXKAARTEINDE(icb->datfd, einde, static_cast<size_t>(icb->h.reclen)))
        return 0;
    if (er >= 0) {
        const int64_t omvang = IOOMVANG(icb->datfd);
        return omvang < einde ? -1 : omvang > einde;
    }
    const Lezing l(icb, nr, 1);
    voor->er = l.iets(icb);
    return l.gelezen < l.voor ? -1 : l.gelezen > l.voor;
}

bool IXKIJKNA(const ICB* icb, IXGETUIGE voor, int32_t nr, int32_t aantal) {
    if (te_duur(icb))
        return true;
    const size_t n = static_cast<size_t>(icb->h.reclen);
    const int64_t lengte = int64_t{aantal} * icb->h.reclen;
    const bool laatste = nr + 1 >= aantal;
    const int er = voor.er ? iets_voor(icb, nr) : 1;
    if (er >= 0 && IXKAARTER(icb->datfd))
        return er && (laatste || IXKAARTREIKT(icb->datfd, lengte, n) || reikt(icb, aantal));
    if (laatste && !voor.er)
        return true;
    const Lezing l(icb, nr, n + !laatste);
    return (!voor.er || l.iets(icb)) && (laatste || l.gelezen > l.voor + n || reikt(icb, aantal));
}

bool IXTEKORT(const ICB* icb, int64_t omvang) {
    return !icb->tempidx && omvang < int64_t{icb->h.nrecs} * icb->h.reclen && !reikt(icb, icb->h.nrecs);
}

void IXINGEKORT(ICB* icb) {
    if (!icb->tempidx && !icb->h.busy && (icb->koplock || IXLOCK(icb, 2))) {
        IXHEADER h;
        uint32_t telling = IXTELLEES(icb->idxfd);
        if (IXKOPBLOK(icb, &h) && !h.busy)
            IXKOPSCHRIJF(icb->idxfd, h, K_BEZIG, &telling);
    }
    icb->h.busy = K_BEZIG;
    SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_INGEKORT));
}

} // namespace zg
