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

enum Inhoud { IETS, NULLEN, WEG };

// Is looking too dear here? An exclusive handle looks at the size of the file before each record that it adds. A temporary
// index has no records of its own.
bool te_duur(const ICB* icb) {
    return icb->tempidx || (!IXKAARTER(icb->datfd) && (IOGEDEELD() || icb->mode == 1));
}

Inhoud inhoud_van(const ICB* icb, int32_t nr) {
    const size_t n = static_cast<size_t>(icb->h.reclen);
    const int64_t plaats = int64_t{nr} * icb->h.reclen;
    if (IXKAARTER(icb->datfd)) {
        switch (IXKAARTNULLEN(icb->datfd, plaats, n)) {
        case 0:
            return IETS;
        case 1:
            return NULLEN;
        default:
            break; // by a call
        }
    }
    uint8_t rec[IXRECMAX];
    const ssize_t k = IOLEES(icb->datfd, rec, n, plaats);
    if (k < static_cast<ssize_t>(n))
        return WEG;
    return std::all_of(rec, rec + n, [](uint8_t b) { return b == 0; }) ? NULLEN : IETS;
}

// Programs that count a record before they write it get a moment to do so.
bool reikt(const ICB* icb, int64_t lengte) {
    for (int keer = 0; keer < KIJKERSTIL; keer++) {
        if (IOOMVANG(icb->datfd) >= lengte)
            return true;
        IXPAUZE(R_LEZER, keer);
    }
    return false;
}

} // namespace

IXGETUIGE IXKIJKVOOR(const ICB* icb, int32_t nr) {
    return {nr > 0 && !te_duur(icb) && inhoud_van(icb, nr - 1) == IETS};
}

bool IXKIJKNA(const ICB* icb, IXGETUIGE was, int32_t nr, int32_t aantal) {
    if (te_duur(icb))
        return true;
    if (was.er && inhoud_van(icb, nr - 1) != IETS)
        return false;
    const int64_t lengte = int64_t{aantal} * icb->h.reclen;
    return nr + 1 >= aantal || IXKAARTREIKT(icb->datfd, lengte, static_cast<size_t>(icb->h.reclen)) ||
           reikt(icb, lengte);
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
