// Records: writing and deleting, and the chain of free slots. Each is one change, worked out under the header lock and
// then written as a whole (store/klad.h). Whether a write inserts or updates is decided under that lock, so that two
// writers of the same new key can't both insert it.
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/report.h"
#include "store/bestand.h"
#include "store/getuige.h"
#include "store/kaart.h"
#include "store/klad.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/wachten.h"
#include <algorithm>
#include <cerrno>
#include <climits>

namespace zg {
namespace {

constexpr int32_t BLOKGRENS = 2147483644; // nblocks above which nothing is added
constexpr int VRIJMINST = 5; // a shorter slot has no room for its link, and stays out of the chain

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

// What became of a change that was worked out. SLOT_BEZET: a lock that it needs is another's at this moment.
enum Werk { KLAAR, NIETS, SLOT_BEZET };

// A number for a new record: the slot freed last, or one behind the last. Neither may be a record in use, nor the slot lie
// behind the end: a chain or a count that says so is damage, and writing there would lose a record or leave a hole. A free slot that somebody has locked stays in
// the chain. Nobody knows the number before its record stands and the first key leads there, so it is locked only for
// who keeps the lock (`houd`); when that is refused behind the last, the whole file is (an exclusive opener), and
// nothing may be waited for with the header in hand.
bool neem_nummer(ICB* icb, uint8_t* vrij, bool houd, bool* hergebruik, IXGETUIGE* voor) {
    *hergebruik = false;
    if (icb->h.freehead >= 0) {
        icb->currec = icb->h.freehead;
        if (houd ? IXPROBEERSLOT(icb) : IXSLOTVRIJ(icb)) {
            memset(vrij, 0xFF, IXRECMAX);
            if (!IXLEESMET(icb, vrij, voor) || IXRECLIVE(vrij, icb->h.reclen))
                IXSTUK(icb, 0);
            int32_t volgende = LEES32(vrij + 1);
            if (volgende >= icb->h.nrecs)
                IXSTUK(icb, 0);
            icb->h.freehead = std::max(volgende, -1);
            *hergebruik = true;
            return true;
        }
    }
    // A data file that is too short would get a hole, whose zeros count as records.
    *voor = {};
    if (!KLADOMVANG()) {
        const int einde = IXKIJKEINDE(icb, icb->h.nrecs, voor);
        if (einde < 0)
            IXINGEKORT(icb);
        if (einde > 0)
            IXSTUK(icb, 0);
        KLADOMVANG(true);
    }
    icb->currec = icb->h.nrecs;
    if (houd && !IXPROBEERSLOT(icb))
        return false;
    icb->h.nrecs++;
    return true;
}

Werk voeg_in(ICB* icb, const void* rec, bool houd, bool bij_plaats) {
    uint8_t vrij[IXRECMAX];
    bool hergebruik;
    IXGETUIGE voor;
    if (icb->h.nblocks > BLOKGRENS || (icb->h.freehead < 0 && icb->h.nrecs == INT32_MAX))
        return NIETS;
    if (!neem_nummer(icb, vrij, houd, &hergebruik, &voor))
        return SLOT_BEZET;
    IXVOEGTOE(icb, rec, bij_plaats);
    if (!IXVERGEETMEE(icb)) {
        if (houd)
            IXLOCK(icb, 13);
        return SLOT_BEZET;
    }
    IXNERGENS(icb);
    KLADRECORD(icb, KL_INSERT, hergebruik ? vrij : nullptr, rec, voor);
    return KLAAR;
}

// NIETS when there is no live record at `currec` any more, or, with `eerste`, one with another first key.
Werk werk_bij(ICB* icb, const void* rec, bool eerste = false) {
    uint8_t oud[IXRECMAX], was[IXSLEUTELMAX + 4], wordt[IXSLEUTELMAX + 4];
    IXGETUIGE voor;
    if (!IXLEESMET(icb, oud, &voor) || !IXRECLIVE(oud, icb->h.reclen))
        return NIETS;
    for (int k = 1; k <= icb->h.nkeys; k++) {
        const IXKEYDEF& def = icb->h.keydef[k - 1];
        IXMAAKSLEUTEL(def, rec, icb->currec, def.keylen, wordt);
        IXMAAKSLEUTEL(def, oud, icb->currec, def.keylen, was);
        const bool zelfde = IXVERGELIJK(def, wordt, was, def.keylen) == 0;
        if (k == 1 && eerste && !zelfde)
            return NIETS;
        if (k == icb->plaats.sleutel && (!zelfde || memcmp(wordt, icb->plaats.record, def.keylen) != 0))
            IXNERGENS(icb); // who walks by a key and changes it goes on from where he put the record
        if (zelfde)
            continue;
        IXHAALWEG(icb, k, was);
        memcpy(icb->keybuf, wordt, def.keylen);
        IXKIES(icb, k);
        IXSEARCH(icb, '=', def.keylen);
        icb->insptr = icb->currec;
        IXINSKEY(icb);
    }
    KLADRECORD(icb, KL_UPDATE, oud, rec, voor);
    return KLAAR;
}

// A change, worked out by `werk` with the pair in hand, as often as a lock is refused, and written. 1, or 0: nothing
// was changed, and *fout says what the user is told (0 for nothing).
template <class F> int wijzig(ICB* icb, int* fout, F werk) {
    *fout = 0;
    IXEISPAAR(icb);
    for (int poging = 0;; poging++) {
        KLADBEGIN(icb);
        switch (werk()) {
        case KLAAR: {
            if (KLADSCHRIJF(icb))
                return 1;
            *fout = errno;
            return 0;
        }
        case NIETS:
            KLADWEG(icb);
            return 0;
        case SLOT_BEZET:
            KLADWEG(icb);
            if (poging < IXRUSTIG())
                IXPAUZE(R_SLOT, poging);
            else
                IXWAITHOOK(icb);
        }
    }
}

// After a refused change: the slot of a record that did not come goes, and words come.
int geweigerd(ICB* icb, bool nieuw, bool houd, int fout) {
    if (nieuw) {
        if (houd)
            IXLOCK(icb, 13);
        icb->currec = -1;
    }
    if (fout)
        IXGEWEIGERD(icb, fout);
    return 0;
}

// A record over the one at `currec`, where `nu` stands, its keys untouched: 1, or 0 with errno.
int zet_record(ICB* icb, const uint8_t* nu, const void* rec, IXGETUIGE voor) {
    if (!IXOVERSCHRIJF(icb, icb->datfd, IXSEEKDAT(icb), nu, rec, static_cast<size_t>(icb->h.reclen)))
        return 0;
    if (!IXKIJKNA(icb, voor, icb->currec, icb->h.nrecs))
        IXINGEKORT(icb);
    return 1;
}

// The record that this handle holds, when no key of it moves: the index isn't touched, and nobody else writes the record.
// 1, 0 with errno when the disk refused; -1: it is another one, or a key moves.
int ter_plaatse(ICB* icb, const void* rec) {
    if (icb->mode != 2 || !icb->vast.er)
        return -1;
    IXEISPAAR(icb);
    uint8_t nu[IXRECMAX], was[IXSLEUTELMAX + 4], wordt[IXSLEUTELMAX + 4];
    for (int k = 0; k < icb->h.nkeys; k++) {
        const IXKEYDEF& def = icb->h.keydef[k];
        IXMAAKSLEUTEL(def, rec, icb->vast.nr, def.keylen, wordt);
        IXMAAKSLEUTEL(def, icb->vast.rec, icb->vast.nr, def.keylen, was);
        if (IXVERGELIJK(def, wordt, was, def.keylen) != 0)
            return -1;
    }
    icb->currec = icb->vast.nr;
    const size_t n = static_cast<size_t>(icb->h.reclen);
    // By a program that wrote without its lock: its keys may be others. Over a network that look is dear.
    IXGETUIGE voor{};
    memcpy(nu, icb->vast.rec, n);
    if (IXKAARTER(icb->datfd) || !IOGEDEELD())
        IXLEESMET(icb, nu, &voor);
    if (memcmp(nu, icb->vast.rec, n) != 0)
        return -1;
    if (!zet_record(icb, nu, rec, voor))
        return 0;
    memcpy(icb->vast.rec, rec, n);
    return 1;
}

int schrijf(ICB* icb, const void* rec, bool laat_los) {
    if (alleen_lezen(icb))
        return 1;
    if (lijkt_vrij(icb, rec))
        return 0;
    if (const int er = ter_plaatse(icb, rec); er >= 0) {
        const int fout = errno;
        if (laat_los)
            IXLOCK(icb, 13);
        if (!er)
            IXGEWEIGERD(icb, fout);
        return er;
    }
    const int bewaard = IXSLEUTEL(icb);
    bool nieuw = false;
    int fout, uitslag = wijzig(icb, &fout, [&] {
                  nieuw = false;
                  if (icb->mode == 2 && icb->vast.er) { // mostly it is the one that is held
                      icb->currec = icb->vast.nr;
                      if (const Werk w = werk_bij(icb, rec, true); w != NIETS)
                          return w;
                  }
                  IXKIES(icb, 1);
                  const int lengte = IXDEF(icb).keylen;
                  IXBLDKEY(icb, rec, lengte);
                  icb->currec = IXSEARCH(icb, '=', lengte);
                  nieuw = icb->currec < 0;
                  // The place found serves the first key, unless that holds the record number.
                  const Werk w = nieuw ? voeg_in(icb, rec, !laat_los, icb->h.keydef[0].dupflag == 'N')
                                       : werk_bij(icb, rec);
                  if (!nieuw && w == NIETS)
                      IXSTUK(icb, icb->curblock); // a key that leads to a free record
                  return w;
              });
    const bool vol = nieuw && !uitslag && !fout;
    if (laat_los && icb->mode == 2 && !nieuw)
        IXLOCK(icb, 13);
    if (!uitslag) {
        if (laat_los && nieuw && !icb->filelocked) { // a write ends IXREADL also when it is refused
            IXKIES(icb, 1);
            IXBLDKEY(icb, rec, IXDEF(icb).keylen);
            IXVERGEET(icb);
        }
        geweigerd(icb, nieuw, !laat_los, fout);
    }
    IXKIES(icb, bewaard);
    if (vol)
        IXWAARSCHUW(TXT(T_IX_WAARSCHUWING), "%s", TXT(T_IX_INDEX_VOL));
    return uitslag;
}

} // namespace

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
    int fout = 0;
    IXEISPAAR(icb);
    if (!lijkt_vrij(icb, rec)) {
        uint8_t was[IXRECMAX];
        IXGETUIGE voor;
        if (!IXLEESMET(icb, was, &voor))
            IXSTUK(icb, 0); // it has been cut off, or never stood there: the file would get a hole
        if (!zet_record(icb, was, rec, voor))
            fout = errno;
    }
    IXLOCK(icb, 13);
    if (fout)
        IXGEWEIGERD(icb, fout);
    return !fout;
}

int IXUPDATE(ICB* icb, const void* rec) {
    IXEIS(icb, "IXUPDATE");
    if (icb->currec < 0 || alleen_lezen(icb) || lijkt_vrij(icb, rec))
        return 0;
    const int bewaard = IXSLEUTEL(icb);
    int fout, uitslag = wijzig(icb, &fout, [&] { return werk_bij(icb, rec); });
    if (!uitslag)
        geweigerd(icb, false, false, fout);
    IXKIES(icb, bewaard);
    return uitslag;
}

int IXINSERT(ICB* icb, const void* rec) {
    IXEIS(icb, "IXINSERT");
    if (alleen_lezen(icb) || lijkt_vrij(icb, rec))
        return 0;
    int fout, uitslag = wijzig(icb, &fout, [&] { return voeg_in(icb, rec, true, false); });
    if (!uitslag) {
        geweigerd(icb, true, true, fout);
        if (!fout)
            IXWAARSCHUW(TXT(T_IX_WAARSCHUWING), "%s", TXT(T_IX_INDEX_VOL));
    }
    return uitslag;
}

int IXDELETE(ICB* icb, void* rec) {
    IXEIS(icb, "IXDELETE");
    if (icb->currec < 0 || alleen_lezen(icb))
        return 0;
    const int bewaard = IXSLEUTEL(icb);
    // The record as it stands decides. It is the caller's only while key 1 agrees: another may have deleted
    // it meanwhile, and have used its slot.
    int fout,
        uitslag = wijzig(icb, &fout, [&] {
            uint8_t was[IXRECMAX], vrij[IXRECMAX], hier[IXSLEUTELMAX + 4], daar[IXSLEUTELMAX + 4];
            const IXKEYDEF& eerste = icb->h.keydef[0];
            IXGETUIGE voor;
            const bool levend = IXLEESMET(icb, was, &voor) && IXRECLIVE(was, icb->h.reclen);
            IXMAAKSLEUTEL(eerste, rec, icb->currec, eerste.keylen, hier);
            IXMAAKSLEUTEL(eerste, was, icb->currec, eerste.keylen, daar);
            if (!levend || IXVERGELIJK(eerste, hier, daar, eerste.keylen) != 0)
                return NIETS;
            IXNERGENS(icb);
            for (int k = icb->h.nkeys; k >= 1; k--) {
                IXMAAKSLEUTEL(icb->h.keydef[k - 1], was, icb->currec, icb->h.keydef[k - 1].keylen, hier);
                IXHAALWEG(icb, k, hier);
            }
            memset(vrij, 0xFF, sizeof vrij);
            ZET32(vrij + 1, icb->h.freehead);
            KLADRECORD(icb, KL_DELETE, was, vrij, voor);
            if (icb->h.reclen >= VRIJMINST)
                icb->h.freehead = icb->currec;
            return KLAAR;
        });
    IXLOCK(icb, 13);
    if (!uitslag)
        geweigerd(icb, false, false, fout);
    IXKIES(icb, bewaard);
    return fout ? -1 : 0;
}

int IXHEEL(ICB* icb) {
    IXEIS(icb, "IXHEEL");
    auto heel = [icb] {
        IXHEADER h;
        return IXKOPBLOK(icb, &h) && !h.busy && IOOMVANG(icb->datfd) >= int64_t{h.nrecs} * h.reclen;
    };
    if (icb->mode != 2 || icb->koplock || heel())
        return 1;
    IXLOCK(icb, 2); // with the lock in hand nobody is at work any more
    const bool uit = heel();
    IXLOCK(icb, 12);
    return uit;
}

} // namespace zg
