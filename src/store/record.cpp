// Records: read by number and by key, write, delete, and the chain of free slots. A change in shared mode
// runs in a bracket: header lock, header read again, header written with `busy`; at the end the header with
// the new counters, lock released. Whether a write inserts or updates is decided inside, so that two writers
// of the same new key can't both insert it. What a crash inside leaves behind is marked, and the index is
// made again from the data file, which alone holds every record.
#include "shared/files.h"
#include "store/bestand.h"
#include "store/node.h"
#include "store/teksten.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <unistd.h>

namespace zg {
namespace {

constexpr int32_t BLOKGRENS = 2147483644; // nblocks above which nothing is added
constexpr int VRIJMINST = 5; // a shorter slot has no room for its link, and stays out of the chain
constexpr int RONDEN = 20;   // searches for a record whose key changes under the reader
constexpr int STIL = 5;      // more of them, each while nobody writes: then the index is damaged
constexpr int GEDULD = 3; // times that IXREADL meets the same free record before it takes the index as it is

void begin_wijziging(ICB* icb) {
    IXLOCK(icb, 2);
    IXRDIX(icb, 0);
    if (icb->h.busy)
        IXINCONSISTENT(icb);
    icb->h.busy = 1;
    IXWRIX(icb, 0);
    icb->h.busy = 0; // on disk only: the handle itself goes on reading
}

void einde_wijziging(ICB* icb) {
    IXWRIX(icb, 0);
    icb->gezien = icb->h.nblocks;
    IXLOCK(icb, 12);
}

// A record that reads as a free slot can't be kept: the next rebuild would lose it.
bool lijkt_vrij(const ICB* icb, const void* rec) {
    return !IXRECLIVE(rec, icb->h.reclen);
}

bool alleen_lezen(const ICB* icb) {
    if (icb->mode != 0)
        return false;
    IXWAARSCHUW(TXT(T_IX_WAARSCHUWING), "%s", TXT(T_IX_ALLEEN_LEZEN));
    return true;
}

int sleutellengte(const ICB* icb) {
    return IXDEF(icb).keylen;
}

int32_t zoek_record(ICB* icb, const void* rec) {
    int lengte = sleutellengte(icb);
    IXBLDKEY(icb, rec, lengte);
    icb->currec = IXSEARCH(icb, '=', lengte);
    return icb->currec;
}

bool lees_levend(ICB* icb, void* rec) {
    IXRDREC(icb, rec);
    return IXRECLIVE(rec, icb->h.reclen);
}

// A number for a new record: the slot freed last, or one behind the last. Neither may be a record in use: a
// chain or a count that says so is damage, and writing there would lose that record.
void neem_nummer(ICB* icb) {
    uint8_t vrij[IXRECMAX];
    if (icb->h.freehead >= 0) {
        icb->currec = icb->h.freehead;
        while (!IXLOCK(icb, 3))
            ;
        memset(vrij, 0xFF, sizeof vrij);
        if (lees_levend(icb, vrij))
            IXSTUK(icb, 0);
        int32_t volgende = LEES32(vrij + 1);
        if (volgende >= icb->h.nrecs)
            IXSTUK(icb, 0);
        icb->h.freehead = std::max(volgende, -1);
        return;
    }
    // A data file that is too short would get a hole, whose zeros count as records.
    if (SYSOMVANG(icb->datfd) != int64_t{icb->h.nrecs} * icb->h.reclen)
        IXSTUK(icb, 0);
    icb->currec = icb->h.nrecs++;
    IXLOCK(icb, 3);
}

int voeg_in(ICB* icb, const void* rec, bool bij_plaats) {
    if (icb->h.nblocks > BLOKGRENS || (icb->h.freehead < 0 && icb->h.nrecs == INT32_MAX)) {
        IXWAARSCHUW(TXT(T_IX_WAARSCHUWING), "%s", TXT(T_IX_INDEX_VOL));
        return 0;
    }
    neem_nummer(icb);
    IXVOEGTOE(icb, rec, bij_plaats);
    IXWRREC(icb, rec);
    IXLOCK(icb, 14);
    return 1;
}

// Search for a key that must be in the tree of `sleutel`, and take it out.
void haal_weg(ICB* icb, int sleutel, const uint8_t* waarde) {
    IXKIES(icb, sleutel);
    int lengte = sleutellengte(icb);
    memcpy(icb->keybuf, waarde, static_cast<size_t>(lengte));
    if (IXSEARCH(icb, '=', lengte) < 0)
        IXSTUK(icb, icb->curblock);
    IXVERWIJDER(icb);
}

// 0 when there is no live record at `currec` any more.
int werk_bij(ICB* icb, const void* rec) {
    uint8_t oud[IXRECMAX], was[IXSLEUTELMAX + 4], wordt[IXSLEUTELMAX + 4];
    if (!lees_levend(icb, oud))
        return 0;
    for (int k = 1; k <= icb->h.nkeys; k++) {
        const IXKEYDEF& def = icb->h.keydef[k - 1];
        IXMAAKSLEUTEL(def, rec, icb->currec, def.keylen, wordt);
        IXMAAKSLEUTEL(def, oud, icb->currec, def.keylen, was);
        if (IXVERGELIJK(def, wordt, was, def.keylen) == 0)
            continue;
        haal_weg(icb, k, was);
        memcpy(icb->keybuf, wordt, def.keylen);
        IXKIES(icb, k);
        IXSEARCH(icb, '=', def.keylen);
        icb->insptr = icb->currec;
        IXINSKEY(icb);
    }
    IXWRREC(icb, rec);
    return 1;
}

int schrijf(ICB* icb, const void* rec, bool laat_los) {
    if (alleen_lezen(icb))
        return 1;
    if (lijkt_vrij(icb, rec))
        return 0;
    const int bewaard = IXSLEUTEL(icb);
    const bool gedeeld = icb->mode == 2;
    if (gedeeld)
        begin_wijziging(icb);
    IXKIES(icb, 1);
    int uitslag;
    if (zoek_record(icb, rec) >= 0) {
        uitslag = werk_bij(icb, rec);
        if (!uitslag)
            IXSTUK(icb, icb->curblock); // a key that leads to a free record
    } else {
        // The place found serves the first key, unless that holds the record number.
        uitslag = voeg_in(icb, rec, icb->h.keydef[0].dupflag == 'N');
    }
    if (gedeeld) {
        einde_wijziging(icb);
        if (laat_los)
            uitslag = IXLOCK(icb, 13) && uitslag;
    }
    IXKIES(icb, bewaard);
    return uitslag;
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

void IXRDREC(ICB* icb, void* rec) {
    IXEIS(icb, "IXRDREC");
    const size_t lengte = static_cast<size_t>(icb->h.reclen);
    int64_t plaats = IXSEEKDAT(icb);
    ssize_t n = SYSLEES(icb->datfd, rec, lengte, plaats);
    if (n < 0)
        IXSCHIJFFOUT(icb, icb->datfd, plaats, icb->h.reclen);
    if (static_cast<size_t>(n) < lengte)
        memset(rec, 0xFF, lengte); // what lies past the end is free
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
        if (IXBLOKLEES(icb->idxfd, 0, &h, sizeof h) == static_cast<ssize_t>(sizeof h))
            aantal = std::max(aantal, h.nrecs);
    }
    if (recnr < 0 || recnr >= aantal)
        return -1;
    icb->currec = recnr;
    return lees_levend(icb, rec);
}

Recorduitslag IXLEESGEVONDEN(ICB* icb, void* rec, char richting, int* poging) {
    if (!lees_levend(icb, rec))
        return R_VRIJ;
    if (icb->tempidx || (richting == '=' && ALLEEN(icb)))
        return R_GOED; // a temporary index may be older than the records it leads to
    const IXKEYDEF& def = IXDEF(icb);
    uint8_t sleutel[IXSLEUTELMAX + 4];
    IXMAAKSLEUTEL(def, rec, icb->currec, def.keylen, sleutel);
    const int verschil = IXVERGELIJK(def, sleutel, icb->curent, def.keylen);
    if (verschil == 0)
        return R_GOED;
    // A walk goes on from the record's key: where that lies back, it might never end.
    const bool terug = richting == '>' ? verschil < 0 : richting == '<' && verschil > 0;
    if (!ALLEEN(icb)) {
        if (++*poging > RONDEN / 2)
            usleep(100);
        if (*poging < RONDEN)
            return R_ANDER;
        if (!terug || !IOLOCK('T', icb->idxfd, 0, IXBLOK))
            return R_GOED;
        if (*poging < RONDEN + STIL)
            return R_ANDER;
    }
    if (terug)
        IXSTUK(icb, icb->curblock);
    return R_GOED;
}

int IXREAD(ICB* icb, void* rec) {
    IXEIS(icb, "IXREAD");
    const int lengte = sleutellengte(icb);
    IXBLDKEY(icb, rec, lengte);
    uint8_t gevonden[IXRECMAX];
    for (int poging = 0;;) {
        icb->currec = IXSEARCH(icb, '=', lengte);
        if (icb->currec < 0)
            return 0;
        Recorduitslag uitslag = IXLEESGEVONDEN(icb, gevonden, '=', &poging);
        if (uitslag == R_ANDER)
            continue;
        memcpy(rec, gevonden, static_cast<size_t>(icb->h.reclen));
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
    for (int poging = 0;;) {
        memcpy(icb->keybuf, gezocht, sizeof gezocht);
        icb->currec = IXSEARCH(icb, '=', def.keylen);
        if (icb->currec < 0) {
            if (!IXLOCK(icb, 4))
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
        bool levend = lees_levend(icb, inhoud);
        IXMAAKSLEUTEL(def, inhoud, def.dupflag == 'J' ? icb->currec : nummer_vooraf, def.keylen, gevonden);
        if ((levend && IXVERGELIJK(def, gezocht, gevonden, def.keylen) == 0) || ++poging == GEDULD) {
            memcpy(rec, inhoud, static_cast<size_t>(icb->h.reclen));
            return levend;
        }
        IXLOCK(icb, 13);
    }
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

int IXWRITE(ICB* icb, const void* rec) {
    IXEIS(icb, "IXWRITE");
    return schrijf(icb, rec, true);
}

int IXWRITEK(ICB* icb, const void* rec) {
    IXEIS(icb, "IXWRITEK");
    return schrijf(icb, rec, false);
}

int IXPUTREC(ICB* icb, const void* rec) {
    IXEIS(icb, "IXPUTREC");
    if (alleen_lezen(icb))
        return 1;
    if (!lijkt_vrij(icb, rec))
        IXWRREC(icb, rec);
    IXLOCK(icb, 13);
    return 1;
}

int IXUPDATE(ICB* icb, const void* rec) {
    IXEIS(icb, "IXUPDATE");
    if (icb->currec < 0 || alleen_lezen(icb) || lijkt_vrij(icb, rec))
        return 0;
    const int bewaard = IXSLEUTEL(icb);
    if (icb->mode == 2)
        begin_wijziging(icb);
    int uitslag = werk_bij(icb, rec);
    if (icb->mode == 2)
        einde_wijziging(icb);
    IXKIES(icb, bewaard);
    return uitslag;
}

int IXINSERT(ICB* icb, const void* rec) {
    IXEIS(icb, "IXINSERT");
    if (alleen_lezen(icb) || lijkt_vrij(icb, rec))
        return 0;
    if (icb->mode == 2)
        begin_wijziging(icb);
    int uitslag = voeg_in(icb, rec, false);
    if (icb->mode == 2)
        einde_wijziging(icb);
    return uitslag;
}

int IXDELETE(ICB* icb, void* rec) {
    IXEIS(icb, "IXDELETE");
    if (icb->currec < 0 || alleen_lezen(icb))
        return 0;
    const int bewaard = IXSLEUTEL(icb);
    if (icb->mode == 1) {
        // The counters that count are this handle's own; those on disk are of the time it was opened.
        icb->h.busy = 1;
        IXWRIX(icb, 0);
        icb->h.busy = 0;
    } else
        begin_wijziging(icb);
    // The record as it stands decides. It is the caller's only while key 1 agrees: another may have deleted
    // it meanwhile, and have used its slot.
    uint8_t vrij[IXRECMAX], hier[IXSLEUTELMAX + 4], daar[IXSLEUTELMAX + 4];
    bool levend = lees_levend(icb, vrij);
    const IXKEYDEF& eerste = icb->h.keydef[0];
    IXMAAKSLEUTEL(eerste, rec, icb->currec, eerste.keylen, hier);
    IXMAAKSLEUTEL(eerste, vrij, icb->currec, eerste.keylen, daar);
    if (levend && IXVERGELIJK(eerste, hier, daar, eerste.keylen) == 0) {
        for (int k = icb->h.nkeys; k >= 1; k--) {
            IXMAAKSLEUTEL(icb->h.keydef[k - 1], vrij, icb->currec, icb->h.keydef[k - 1].keylen, hier);
            haal_weg(icb, k, hier);
        }
        memset(vrij, 0xFF, sizeof vrij);
        ZET32(vrij + 1, icb->h.freehead);
        IXWRREC(icb, vrij);
        if (icb->h.reclen >= VRIJMINST)
            icb->h.freehead = icb->currec;
    }
    IXLOCK(icb, 13);
    einde_wijziging(icb);
    IXKIES(icb, bewaard);
    return 0;
}

} // namespace zg
