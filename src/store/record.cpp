// Records: read by number, by key and for change. Writing and deleting: store/schrijven.cpp.
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "store/kaart.h"
#include "store/node.h"
#include "store/wachten.h"
#include <algorithm>
#include <cerrno>

namespace zg {
namespace {

int sleutellengte(const ICB* icb) {
    return IXDEF(icb).keylen;
}

int32_t zoek_record(ICB* icb, const void* rec) {
    int lengte = sleutellengte(icb);
    IXBLDKEY(icb, rec, lengte);
    icb->currec = IXSEARCH(icb, '=', lengte);
    return icb->currec;
}

// The record at `currec` where a mapping shows it: as it was before a write of it or after.
bool van_de_kaart(const ICB* icb, void* rec) {
    const uint8_t* kop = icb->tempidx ? nullptr : IXKAARTBEGIN(icb->idxfd);
    if (!kop)
        return false;
    const size_t n = static_cast<size_t>(icb->h.reclen);
    const int64_t plaats = int64_t{icb->currec} * icb->h.reclen;
    const int32_t records = icb->mode == 1 ? icb->h.nrecs : LEES32(kop + offsetof(IXHEADER, nrecs));
    for (int keer = 0; keer < RUSTBEURTEN; keer++) {
        if (!IXKAARTLEES(icb->datfd, plaats, rec, n, int64_t{records} * icb->h.reclen))
            return false;
        if (icb->filelocked || IXKAARTSTAAT(icb->datfd, plaats, rec, n))
            return true;
    }
    return false;
}

} // namespace

int IXRECLIVE(const void* rec, int lengte) {
    const uint8_t* p = static_cast<const uint8_t*>(rec);
    if (lengte < 1)
        return 0;
    if (p[0] != 0xFF)
        return 1;
    for (int i = lengte - 1; i >= 5; i--)
        if (p[i] != 0xFF)
            return 1;
    return 0;
}

int64_t IXSEEKDAT(ICB* icb) {
    IXEIS(icb, "IXSEEKDAT");
    int64_t plaats = int64_t{icb->currec} * icb->h.reclen;
    if (plaats < 0) {
        errno = EINVAL;
        IXSCHIJFFOUT(icb, icb->datfd, plaats, icb->h.reclen);
    }
    return plaats;
}

bool IXLEESHEEL(ICB* icb, void* rec) {
    const size_t lengte = static_cast<size_t>(icb->h.reclen);
    int64_t plaats = IXSEEKDAT(icb);
    if (van_de_kaart(icb, rec))
        return true;
    const ssize_t n = IOLEES(icb->datfd, rec, lengte, plaats);
    if (static_cast<size_t>(n) == lengte)
        return true;
    memset(rec, 0xFF, lengte); // what lies past the end is free
    return false;
}

void IXRDREC(ICB* icb, void* rec) {
    IXEIS(icb, "IXRDREC");
    IXLEESHEEL(icb, rec);
}

bool IXLEESLEVEND(ICB* icb, void* rec) {
    IXRDREC(icb, rec);
    return IXRECLIVE(rec, icb->h.reclen);
}

void IXWRREC(ICB* icb, const void* rec) {
    IXEIS(icb, "IXWRREC");
    int64_t plaats = IXSEEKDAT(icb);
    if (!SYSSCHRIJFOP(icb->datfd, rec, static_cast<size_t>(icb->h.reclen), plaats))
        IXSCHIJFFOUT(icb, icb->datfd, plaats, icb->h.reclen);
    IXCOMMITHOOK();
}

int IXGET(ICB* icb, void* rec, int32_t recnr) {
    IXEIS(icb, "IXGET");
    int32_t aantal = icb->h.nrecs;
    if (recnr >= aantal && icb->mode != 1 && !icb->tempidx) {
        // Others may have added records since this handle last saw the header.
        IXHEADER h;
        if (IXKOPBLOK(icb, &h))
            aantal = std::max(aantal, h.nrecs);
    }
    if (recnr < 0 || recnr >= aantal)
        return -1;
    icb->currec = recnr;
    const bool levend = IXLEESLEVEND(icb, rec);
    levend ? IXGEGEVEN(icb, rec) : IXNERGENS(icb);
    return levend;
}

Recorduitslag IXLEESGEVONDEN(ICB* icb, void* rec, char richting, Geduld* geduld, bool zelf) {
    if (!IXLEESHEEL(icb, rec)) {
        if (icb->tempidx)
            return R_VRIJ;
        // A record stands before the first key leads to it, so the data file has been cut or emptied.
        if (geduld->nog_eens())
            return R_ANDER;
        if (zelf)
            return R_VRIJ;
        IXSTUK(icb, icb->curblock);
    }
    if (!IXRECLIVE(rec, icb->h.reclen))
        return R_VRIJ;
    if (icb->tempidx)
        return R_GOED; // a temporary index may be older than the records it leads to
    const IXKEYDEF& def = IXDEF(icb);
    uint8_t sleutel[IXSLEUTELMAX + 4];
    IXMAAKSLEUTEL(def, rec, icb->currec, def.keylen, sleutel);
    const int verschil = IXVERGELIJK(def, sleutel, icb->curent, def.keylen);
    if (verschil == 0)
        return R_GOED;
    if (geduld->nog_eens())
        return R_ANDER;
    const bool terug = richting == '>' ? verschil < 0 : richting == '<' && verschil > 0;
    const uint8_t* p = static_cast<const uint8_t*>(rec);
    const auto nul = [](uint8_t b) { return b == 0; };
    if (terug || (!zelf && (richting == '=' || std::all_of(p, p + icb->h.reclen, nul))))
        IXSTUK(icb, icb->curblock);
    return R_GOED;
}

int IXREAD(ICB* icb, void* rec) {
    IXEIS(icb, "IXREAD");
    const int lengte = sleutellengte(icb);
    IXBLDKEY(icb, rec, lengte);
    uint8_t gevonden[IXRECMAX];
    for (Geduld geduld(icb);;) {
        icb->currec = IXSEARCH(icb, '=', lengte);
        if (icb->currec < 0)
            return 0;
        Recorduitslag uitslag = IXLEESGEVONDEN(icb, gevonden, '=', &geduld, icb->kijktzelf);
        if (uitslag == R_ANDER)
            continue;
        memcpy(rec, gevonden, static_cast<size_t>(icb->h.reclen));
        IXHIERNU(icb, rec);
        return uitslag == R_GOED;
    }
}

int IXREADL(ICB* icb, void* rec) {
    IXEIS(icb, "IXREADL");
    if (icb->mode == 0)
        return IXREAD(icb, rec);
    const IXKEYDEF& def = IXDEF(icb);
    uint8_t gezocht[IXSLEUTELMAX + 4], gevonden[IXSLEUTELMAX + 4], inhoud[IXRECMAX];
    memset(icb->keybuf, 0, sizeof icb->keybuf); // a reservation looks at as many bytes as key 1 has
    IXBLDKEY(icb, rec, def.keylen);
    memcpy(gezocht, icb->keybuf, sizeof gezocht);
    const int32_t nummer_vooraf = icb->currec;
    Geduld geduld(icb, true);
    for (bool stil = false;;) {
        memcpy(icb->keybuf, gezocht, sizeof gezocht);
        icb->currec = IXSEARCH(icb, '=', def.keylen);
        if (icb->currec < 0) {
            const int vast = IXLOCK(icb, 4);
            if (vast < 0)
                return -1;
            if (!vast)
                continue;
            // Between the search and the reservation another may have entered the key and be done with it.
            if (icb->filelocked || (icb->currec = IXSEARCH(icb, '=', def.keylen)) < 0)
                return 0;
            IXLOCK(icb, 14);
            continue;
        }
        if (!IXLOCK(icb, 3))
            continue;
        // Only now is the record safe from others; it may have gone, or its slot have another record.
        const bool heel = IXLEESHEEL(icb, inhoud), levend = IXRECLIVE(inhoud, icb->h.reclen);
        IXMAAKSLEUTEL(def, inhoud, def.dupflag == 'J' ? icb->currec : nummer_vooraf, def.keylen, gevonden);
        const bool gezochte = levend && IXVERGELIJK(def, gezocht, gevonden, def.keylen) == 0;
        if (stil && !gezochte && (levend || !heel) && !icb->tempidx && !icb->kijktzelf)
            IXSTUK(icb, icb->curblock);
        if (stil || gezochte) {
            memcpy(rec, inhoud, static_cast<size_t>(icb->h.reclen));
            if (!stil)
                IXHOUDVAST(icb, inhoud);
            IXHIERNU(icb, rec);
            return levend;
        }
        IXLOCK(icb, 13);
        stil = !geduld.nog_eens(); // the index leads here and nobody changes it: there will be no other
    }
}

int IXREADT(ICB* icb, void* rec) {
    IXEIS(icb, "IXREADT");
    if (icb->mode == 0)
        return IXREAD(icb, rec);
    const IXKEYDEF& def = IXDEF(icb);
    uint8_t gezocht[IXSLEUTELMAX + 4], gevonden[IXSLEUTELMAX + 4], inhoud[IXRECMAX];
    memset(icb->keybuf, 0, sizeof icb->keybuf);
    IXBLDKEY(icb, rec, def.keylen);
    memcpy(gezocht, icb->keybuf, sizeof gezocht);
    icb->currec = IXSEARCH(icb, '=', def.keylen);
    if (icb->currec < 0) {
        if (IXPROBEERSLEUTEL(icb) != 1)
            return -1;
        if (icb->filelocked || (icb->currec = IXSEARCH(icb, '=', def.keylen)) < 0)
            return 0;
        IXLOCK(icb, 14); // entered between the search and the reservation
        return -1;
    }
    if (!IXPROBEERSLOT(icb))
        return -1;
    const bool levend = IXLEESLEVEND(icb, inhoud);
    IXMAAKSLEUTEL(def, inhoud, icb->currec, def.keylen, gevonden);
    if (levend && IXVERGELIJK(def, gezocht, gevonden, def.keylen) == 0) {
        memcpy(rec, inhoud, static_cast<size_t>(icb->h.reclen));
        IXHOUDVAST(icb, inhoud);
        IXHIERNU(icb, rec);
        return 1;
    }
    IXLOCK(icb, 13);
    return -1;
}

void IXUNLOCK(ICB* icb, const void* rec) {
    IXEIS(icb, "IXUNLOCK");
    if (icb->mode == 0)
        return;
    memset(icb->keybuf, 0, sizeof icb->keybuf);
    IXLOCK(icb, IXEXISTS(icb, rec) ? 13 : 14);
}

int IXEXISTS(ICB* icb, const void* rec) {
    IXEIS(icb, "IXEXISTS");
    return zoek_record(icb, rec) >= 0;
}

int IXEXISTSP(ICB* icb, const void* rec, int delen) {
    IXEIS(icb, "IXEXISTSP");
    int lengte = IXKEYLEN(icb, delen);
    IXBLDKEY(icb, rec, lengte);
    icb->currec = IXSEARCH(icb, '=', lengte);
    return icb->currec >= 0;
}

} // namespace zg
