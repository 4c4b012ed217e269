// Index blocks: block b stands at byte b * 512, block 0 is the header. Every block is read and written here,
// so a mapping of the file could take their place at this one spot. What is read is looked at before it is
// used.
#include "shared/files.h"
#include "shared/report.h"
#include "store/bestand.h"
#include "store/cache.h"
#include "store/kaart.h"
#include "store/klad.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/uitstel.h"
#include "store/wachten.h"
#include "term/scherm.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace zg {

namespace {

// Same definitions as the handle has already found good?
bool zelfde_vorm(const IXHEADER& a, const IXHEADER& b) {
    return a.nkeys == b.nkeys && a.reclen == b.reclen && memcmp(a.keydef, b.keydef, sizeof a.keydef) == 0;
}

bool kop_goed(const ICB* icb, const IXHEADER& h) {
    if (zelfde_vorm(icb->h, h) && h.nkeys > 0 && h.nblocks >= h.nkeys + 2 && h.nrecs >= 0 &&
        h.freehead < h.nrecs && icb->gezien.nblocks > 0)
        return true;
    return IXKOPFOUT(h) == nullptr;
}

void lees_kop(ICB* icb) {
    IXHEADER h;
    uint32_t telling;
    for (int poging = 0;; poging++) {
        if (IXKOPBLOK(icb, &h, &telling) && kop_goed(icb, h))
            break;
        if (poging == KOPRONDEN || ALLEEN(icb))
            IXSTUK(icb, 0);
        usleep(1000);
    }
    icb->h = h;
    IXGEZIEN(icb, h, telling);
}

bool knoop_goed(const ICB* icb, int32_t blok) {
    const IXKNOOP& k = KNOOP(icb);
    if (blok == WACHTRIJBLOK(icb))
        return k.keyno == 1 && k.level == 0 && k.count * icb->h.keydef[0].keylen <= KNOOPRUIMTE;
    return k.keyno >= 1 && k.keyno <= icb->h.nkeys && (blok > icb->h.nkeys || k.keyno == blok) &&
           k.level >= 1 && k.level <= KNOOPNIVEAUS && k.count < icb->h.keydef[k.keyno - 1].maxent;
}

// Out of a file of so many blocks, where that is known.
ssize_t lees_blok(int fd, int32_t blok, void* doel, size_t n, int32_t blokken) {
    if (UITSTELLEES(fd, blok, doel, n))
        return static_cast<ssize_t>(n);
    if (IXKAARTLEES(fd, int64_t{blok} * IXBLOK, doel, n, int64_t{blokken} * IXBLOK))
        return static_cast<ssize_t>(n);
    return SYSLEES(fd, doel, n, int64_t{blok} * IXBLOK);
}

void leeg(ICB* icb, int8_t sleutel, int32_t blok) {
    memset(icb->node, 0, sizeof icb->node);
    KNOOP(icb).keyno = sleutel;
    KNOOP(icb).level = 1;
    icb->curblock = blok;
    icb->curent = KNOOP(icb).entries;
}

} // namespace

ssize_t IXBLOKLEES(int fd, int32_t blok, void* doel, size_t n) {
    const uint8_t* kop = IXKAARTBEGIN(fd);
    return lees_blok(fd, blok, doel, n, kop ? LEES32(kop + offsetof(IXHEADER, nblocks)) : 0);
}

// An exclusive handle's counters aren't on disk before it is closed; those of a change in hand can't be another's.
bool IXHEELBLOK(const ICB* icb, int32_t blok, void* doel) {
    const bool alleen = icb->mode == 1;
    const ssize_t n = alleen || KLADAAN(icb) ? lees_blok(icb->idxfd, blok, doel, IXBLOK,
                                                         UITSTELSTAND(icb->idxfd, KLADBLOKKEN(icb)))
                                             : IXBLOKLEES(icb->idxfd, blok, doel, IXBLOK);
    if (n < 0)
        IOLEESFOUT(icb->idxfd);
    if (n != IXBLOK)
        return false;
    if (alleen && !IXKAARTER(icb->idxfd))
        UITSTELBEWAAR(icb->idxfd, blok, doel);
    return true;
}

bool IXKOPBLOK(const ICB* icb, IXHEADER* h, uint32_t* telling) {
    uint8_t kop[IXBLOK] = {};
    const ssize_t n = IXBLOKLEES(icb->idxfd, 0, kop, telling ? sizeof kop : sizeof *h);
    if (n < 0)
        IOLEESFOUT(icb->idxfd);
    memcpy(h, kop, sizeof *h);
    if (telling)
        memcpy(telling, kop + TELPLAATS, sizeof *telling);
    return n >= static_cast<ssize_t>(sizeof *h);
}

int IXBLOKSCHRIJF(int fd, int32_t blok, const void* bron, size_t aantal) {
    return SYSSCHRIJFOP(fd, bron, aantal * IXBLOK, int64_t{blok} * IXBLOK);
}

int32_t IXLEESBEGIN(ICB* icb, uint8_t* blokken, uint32_t* telling) {
    if (IXKAARTER(icb->idxfd)) { // the others are as near
        IXRDIX(icb, 0);
        *telling = IXTELLEES(icb->idxfd);
        return 0;
    }
    const ssize_t n =
        IOLEES(icb->idxfd, blokken,
               static_cast<size_t>(std::min(WACHTRIJBLOK(icb), IXSLEUTELS + 1) + 1) * IXBLOK, 0);
    IXHEADER h;
    memcpy(&h, blokken, sizeof h);
    memcpy(telling, blokken + TELPLAATS,
           sizeof *telling); // with a file as short as that the header is refused
    if (n < static_cast<ssize_t>(sizeof h) || !kop_goed(icb, h))
        IXSTUK(icb, 0);
    const bool zelfde = h.nkeys == icb->h.nkeys; // else the queue is elsewhere
    icb->h = h;
    IXGEZIEN(icb, h, *telling);
    return zelfde ? static_cast<int32_t>(n / IXBLOK) : 0;
}

Leesuitslag IXLEESKNOOP(ICB* icb, int32_t blok) {
    int8_t sleutel = KNOOP(icb).keyno;
    icb->bladstand.telling = 0;
    Leesuitslag uitslag = L_GOED;
    if (blok < 1)
        uitslag = L_FOUT;
    else if (icb->cached)
        IOCACHE('R', icb, blok);
    else if (KLADAAN(icb) && KLADLEES(icb, blok))
        ;
    else if (!IXHEELBLOK(icb, blok, icb->node))
        uitslag = L_EINDE;
    else if (KLADAAN(icb) && !IXKAARTER(icb->idxfd)) // where it stands as near as in the rough copy
        KLADGELEZEN(icb, blok);
    if (uitslag == L_GOED && !knoop_goed(icb, blok))
        uitslag = L_FOUT;
    if (uitslag != L_GOED) {
        leeg(icb, sleutel, sleutel);
        return uitslag;
    }
    icb->curblock = blok;
    icb->curent = KNOOP(icb).entries;
    IXPAD(icb);
    return L_GOED;
}

void IXPAD(ICB* icb) {
    const int niveau = KNOOP(icb).level;
    if (niveau > 0 && icb->curblock == KNOOP(icb).keyno)
        icb->parent[niveau] = -1;
    if (niveau >= 2)
        icb->parent[niveau - 1] = icb->curblock;
}

void IXEOFTOON(ICB* icb, int32_t blok) {
    if (!SCHERM.bestaat)
        return;
    char naam[sizeof icb->h.name + 1] = {};
    memcpy(naam, icb->h.name, sizeof icb->h.name);
    error(TXT(T_QUILLDB_EOF), naam, static_cast<long>(blok));
    SCRFLUSH(1);
    error("%s", "");
}

void IXRDIX(ICB* icb, int32_t blok) {
    IXEIS(icb, "IXRDIX");
    if (icb->h.busy && !icb->cached)
        IXINCONSISTENT(icb);
    if (blok == 0)
        return lees_kop(icb);
    Geduld geduld(icb);
    for (bool getoond = false;;) {
        Leesuitslag uitslag = IXLEESKNOOP(icb, blok);
        if (uitslag == L_GOED)
            return;
        if (uitslag == L_EINDE && !ALLEEN(icb)) { // the tree was changed under this handle: begin at the root
            if (!getoond)
                IXEOFTOON(icb, blok);
            getoond = true;
            if (KNOOP(icb).keyno >= 1)
                blok = KNOOP(icb).keyno;
        }
        if (!geduld.nog_eens())
            IXSTUK(icb, blok);
    }
}

void IXWRIX(ICB* icb, int32_t blok) {
    IXEIS(icb, "IXWRIX");
    if (blok == 0) {
        UITSTELAF(icb);
        uint32_t telling = IXTELLEES(icb->idxfd);
        icb->gemerkt = 0;
        if (!IXKOPSCHRIJF(icb->idxfd, icb->h, K_RUST, &telling))
            IXSCHIJFFOUT(icb, icb->idxfd, 0, IXBLOK);
        return;
    }
    if (!KLADAAN(icb) && (!IXALLEENMERK(icb, icb->h) || !UITSTELUIT(icb)))
        IXSCHIJFFOUT(icb, icb->idxfd, 0, IXBLOK);
    if (icb->cached) {
        IOCACHE('W', icb, blok);
        return;
    } else if (KLADAAN(icb)) {
        KLADZET(icb, blok);
        return;
    } else if (!IXBLOKSCHRIJF(icb->idxfd, blok, icb->node))
        IXSCHIJFFOUT(icb, icb->idxfd, int64_t{blok} * IXBLOK, IXBLOK);
    IXCOMMITHOOK();
}

void IXKIES(ICB* icb, int sleutel) {
    if (KNOOP(icb).keyno == sleutel && KNOOP(icb).level > 0)
        return;
    leeg(icb, static_cast<int8_t>(sleutel), sleutel);
}

void IXSWITCH(ICB* icb, int sleutel) {
    IXEIS(icb, "IXSWITCH");
    if (sleutel < 1 || sleutel > icb->h.nkeys)
        return;
    const IXKNOOP& k = KNOOP(icb);
    if (k.keyno == sleutel && k.level > 0 && k.count > 0)
        return;
    IXKIES(icb, sleutel);
    IXRDIX(icb, sleutel);
}

} // namespace zg
