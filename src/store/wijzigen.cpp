// Changing a tree: entering a key with a split at 70 per cent, removing one. Nodes never merge and blocks are never
// given back. Within a change of a record the blocks go to the rough copy (store/klad.h), which writes them when the
// whole change is known; a temporary index and a bulk load are written at once. Finding a key: store/zoeken.cpp.
#include "shared/report.h"
#include "store/bestand.h"
#include "store/klad.h"
#include "store/teksten.h"
#include "store/uitstel.h"
#include "store/zoeker.h"
#include "term/scherm.h"

namespace zg {
namespace {

// Number for a new node. A file that reaches beyond what the header counts was left by a crash: writing there
// could overwrite nodes in use; and behind one that is too short a hole would come into being.
int32_t nieuw_blok(ICB* icb) {
    if (icb->h.nblocks > INT32_MAX - 4)
        SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_INDEX_VOL));
    // The second new block of a change stands behind one that is not on the disk yet.
    // What is held back is looked at when it is written.
    if (!icb->cached && (!KLADAAN(icb) || KLADEERSTE(icb)) && UITSTELSTAND(icb->idxfd, 0) == 0 &&
        IOOMVANG(icb->idxfd) != int64_t{icb->h.nblocks} * IXBLOK)
        IXSTUK(icb, icb->h.nblocks);
    return icb->h.nblocks++;
}

// Parent of the node in hand into hand: the place of the entry that leads to that node. By its pointer, since keys
// may be equal.
int omhoog(ICB* icb) {
    int niveau = KNOOP(icb).level;
    int8_t sleutel = KNOOP(icb).keyno;
    int32_t blok = icb->curblock;
    int32_t ouder = niveau < 9 ? icb->parent[niveau] : GEENBLOK;
    if (ouder < 1 || IXLEESKNOOP(icb, ouder) != L_GOED || KNOOP(icb).keyno != sleutel ||
        KNOOP(icb).level != niveau + 1)
        IXSTUK(icb, blok);
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, IXDEF(icb).keylen};
    const int i = z.met_wijzer(blok);
    if (i == z.aantal())
        IXSTUK(icb, icb->curblock);
    icb->curent = z.entry(i);
    return i;
}

void vul(ICB* icb, const uint8_t* entries, int aantal, int stap) {
    memset(KNOOP(icb).entries, 0, KNOOPRUIMTE);
    memcpy(KNOOP(icb).entries, entries, static_cast<size_t>(aantal * stap));
    KNOOP(icb).count = static_cast<uint8_t>(aantal);
}

// Node in hand holds maxent entries and is not on disk like that. The left 70 per cent move to a new block;
// the right part keeps the number, and with it its entry in the parent.
void splits(ICB* icb) {
    const IXKEYDEF& def = IXDEF(icb);
    const int stap = def.keylen + 4, links = def.maxent * 7 / 10, rechts = def.maxent - links;
    const int niveau = KNOOP(icb).level, wortel = KNOOP(icb).keyno;
    const bool is_wortel = icb->curblock == wortel;
    uint8_t kopie[KNOOPRUIMTE];
    if (is_wortel && niveau == KNOOPNIVEAUS)
        SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_INDEX_VOL));
    memcpy(kopie, KNOOP(icb).entries, sizeof kopie);
    icb->insptr = nieuw_blok(icb);
    vul(icb, kopie, links, stap);
    IXWRIX(icb, icb->insptr);
    memcpy(icb->keybuf, kopie + (links - 1) * stap, def.keylen);
    vul(icb, kopie + links * stap, rechts, stap);
    if (is_wortel) {
        int32_t rechterblok = nieuw_blok(icb);
        IXWRIX(icb, rechterblok);
        uint8_t twee[2 * (IXSLEUTELMAX + 4)];
        memcpy(twee, icb->keybuf, def.keylen);
        ZET32(twee + def.keylen, icb->insptr);
        memset(twee + stap, 0xFF, def.keylen);
        ZET32(twee + stap + def.keylen, rechterblok);
        vul(icb, twee, 2, stap);
        KNOOP(icb).level = static_cast<int8_t>(niveau + 1);
        IXWRIX(icb, wortel);
        icb->parent[niveau] = wortel;
        icb->parent[niveau + 1] = GEENBLOK;
        icb->curent = KNOOP(icb).entries;
        return;
    }
    IXWRIX(icb, icb->curblock);
    omhoog(icb);
    IXINSKEY(icb);
}

// The highest key of the node in hand has become `nieuw`: correct the separator above it, and on where that is a last
// entry too.
void zet_hek(ICB* icb, const uint8_t* nieuw) {
    const int lengte = IXDEF(icb).keylen;
    int i;
    do {
        i = omhoog(icb);
        memcpy(icb->curent, nieuw, static_cast<size_t>(lengte));
        IXWRIX(icb, icb->curblock);
    } while (i == KNOOP(icb).count - 1);
}

// Entry i out of the node in hand, and where that leaves a node empty the one above it too. Never the last of a root,
// which is the sentinel.
void verwijder(ICB* icb, int i) {
    const int lengte = IXDEF(icb).keylen, stap = lengte + 4;
    for (;;) {
        const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
        const int n = z.aantal();
        if (i == n - 1 && icb->curblock == KNOOP(icb).keyno)
            IXSTUK(icb, icb->curblock);
        uint8_t* weg = z.entry(i);
        memmove(weg, weg + stap, static_cast<size_t>((n - 1 - i) * stap));
        memset(z.entry(n - 1), 0, static_cast<size_t>(stap));
        KNOOP(icb).count--;
        icb->curent = weg;
        IXWRIX(icb, icb->curblock);
        if (i < n - 1)
            return;
        if (n > 1) {
            uint8_t nieuw[IXSLEUTELMAX];
            memcpy(nieuw, z.entry(n - 2), static_cast<size_t>(lengte));
            return zet_hek(icb, nieuw);
        }
        i = omhoog(icb);
    }
}

// The leaf to the right into hand, with its path; false behind the last.
bool volgend_blad(ICB* icb) {
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, IXDEF(icb).keylen};
    const int8_t sleutel = KNOOP(icb).keyno;
    int i;
    do {
        if (icb->curblock == sleutel)
            return false;
        i = omhoog(icb);
    } while (i == z.aantal() - 1);
    for (int32_t blok = z.wijzer(i + 1);; blok = z.wijzer(0)) {
        const int niveau = KNOOP(icb).level - 1;
        if (blok < WACHTRIJBLOK(icb) || IXLEESKNOOP(icb, blok) != L_GOED || KNOOP(icb).keyno != sleutel ||
            KNOOP(icb).level != niveau || KNOOP(icb).count == 0)
            IXSTUK(icb, blok);
        if (niveau == 1)
            return true;
    }
}

} // namespace

void IXINSKEY(ICB* icb) {
    IXEIS(icb, "IXINSKEY");
    const IXKEYDEF& def = IXDEF(icb);
    IXKNOOP& k = KNOOP(icb);
    const int stap = def.keylen + 4;
    const ptrdiff_t plaats = icb->curent - k.entries, einde = k.count * stap;
    if (k.count >= def.maxent || plaats < 0 || plaats > einde || plaats % stap || k.level < 1)
        IXSTUK(icb, icb->curblock);
    memmove(icb->curent + stap, icb->curent, static_cast<size_t>(einde - plaats));
    memcpy(icb->curent, icb->keybuf, def.keylen);
    ZET32(icb->curent + def.keylen, icb->insptr);
    k.count++;
    if (k.count != def.maxent)
        IXWRIX(icb, icb->curblock);
    else
        splits(icb);
}

void IXHAALWEG(ICB* icb, int sleutel, const uint8_t* waarde) {
    IXKIES(icb, sleutel);
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, IXDEF(icb).keylen};
    memcpy(icb->keybuf, waarde, static_cast<size_t>(z.lengte));
    if (IXSEARCH(icb, '=', z.lengte) < 0)
        IXSTUK(icb, icb->curblock);
    int i = static_cast<int>((icb->curent - KNOOP(icb).entries) / z.stap());
    while (z.wijzer(i) != icb->currec) {
        if (++i == z.aantal()) {
            if (!volgend_blad(icb))
                IXSTUK(icb, icb->curblock);
            i = 0;
        }
        if (z.vergelijk(i) != 0)
            IXSTUK(icb, icb->curblock);
    }
    verwijder(icb, i);
}

void IXDELENTRY(ICB* icb) {
    IXEIS(icb, "IXDELENTRY");
    IXRDIX(icb, icb->curblock);
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, IXDEF(icb).keylen};
    const int i = z.plaats();
    // Only ever the entry that is meant: never another's, never the sentinel.
    if (i == z.aantal() || z.vergelijk(i) != 0 || z.wijzer(i) < 0)
        IXSTUK(icb, icb->curblock);
    verwijder(icb, i);
}

void IXVOEGTOE(ICB* icb, const void* rec, bool bij_plaats) {
    for (int k = 1; k <= icb->h.nkeys; k++) {
        if (k > 1 || !bij_plaats) {
            IXKIES(icb, k);
            const int lengte = IXDEF(icb).keylen;
            IXBLDKEY(icb, rec, lengte);
            IXSEARCH(icb, '=', lengte);
        }
        icb->insptr = icb->currec;
        IXINSKEY(icb);
    }
    IXKIES(icb, 1);
    IXBLDKEY(icb, rec, IXDEF(icb).keylen);
}

void IXADDKEYS(ICB* icb, const void* rec) {
    IXEIS(icb, "IXADDKEYS");
    IXVOEGTOE(icb, rec, false);
}

} // namespace zg
