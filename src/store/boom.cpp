// The trees: finding a key, entering one with a split at 70 per cent, removing one. Nodes never merge and
// blocks are never given back. Walking by key: store/wandel.cpp; blocks and their path: store/blok.cpp.
//
// A reader holds no lock, so between two reads a writer may have split or emptied what it stands on. It
// begins where the last search ended only when the key lies there, else at the root; what doesn't fit
// together is read again, and an answer that a half-done split could have given is checked against the
// header. A handle that is alone (exclusive, or under the header lock) sees only whole trees, so there
// anything odd is damage.
#include "shared/report.h"
#include "store/bestand.h"
#include "store/node.h"
#include "store/teksten.h"
#include "term/scherm.h"
#include <cerrno>
#include <cstdio>
#include <sched.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr int POGINGEN = 60; // of one search by a reader before it counts as damage
constexpr int NAZIEN = 12;   // times that a reader doubts one answer
constexpr int32_t GEEN = -1;

int einden; // reads past the end in the search under way

// Others may have changed the tree under this handle: told, and read again, but not for ever.
void voorbij_einde(ICB* icb, int32_t blok) {
    if (++einden > IXEINDEN)
        IXSTUK(icb, blok);
    IXEOFTOON(icb, blok);
}

struct Zoeker {
    ICB* icb;
    const IXKEYDEF* def;
    const uint8_t* sleutel;
    int lengte;

    int stap() const { return def->keylen + 4; }
    int aantal() const { return KNOOP(icb).count; }
    uint8_t* entry(int i) const { return KNOOP(icb).entries + i * stap(); }
    int32_t wijzer(int i) const { return LEES32(entry(i) + def->keylen); }
    int vergelijk(int i) const { return IXVERGELIJK(*def, sleutel, entry(i), lengte); }

    // First entry not below the key; the count when all are.
    int plaats() const {
        int laag = 0, hoog = aantal();
        while (laag < hoog) {
            int midden = (laag + hoog) / 2;
            if (vergelijk(midden) > 0)
                laag = midden + 1;
            else
                hoog = midden;
        }
        return laag;
    }
    // First entry above the key.
    int erna() const {
        int i = plaats();
        while (i < aantal() && vergelijk(i) >= 0)
            i++;
        return i;
    }
    // Is the answer to the operator certain to be in the node in hand?
    bool binnen(char op) const {
        if (aantal() == 0)
            return false;
        int eerste = vergelijk(0), laatste = vergelijk(aantal() - 1);
        return op == '>' ? eerste >= 0 && laatste < 0 : eerste > 0 && laatste <= 0;
    }
};

enum Uitslag { ANTWOORD, TWIJFEL, ONGERIJMD };

// Child into hand; it must be one level below and of the same key.
bool daal(const Zoeker& z, int32_t blok, int niveau) {
    ICB* icb = z.icb;
    int8_t sleutel = KNOOP(icb).keyno;
    if (blok < icb->h.nkeys + 2)
        return false;
    Leesuitslag uitslag = IXLEESKNOOP(icb, blok);
    if (uitslag == L_EINDE && !ALLEEN(icb))
        voorbij_einde(icb, blok);
    if (uitslag != L_GOED)
        return false;
    if (KNOOP(icb).keyno != sleutel || KNOOP(icb).level != niveau) {
        IXKIES(icb, sleutel);
        return false;
    }
    return true;
}

// '<' in a leaf whose first entry is not below the key: the last entry of the subtree to the left, where the
// path last had one.
Uitslag linksom(const Zoeker& z, int32_t blok, int niveau, int32_t* uit) {
    for (; niveau >= 1; niveau--) {
        if (!daal(z, blok, niveau) || z.aantal() == 0)
            return ONGERIJMD;
        z.icb->curent = z.entry(z.aantal() - 1);
        blok = z.wijzer(z.aantal() - 1);
    }
    if (blok < 0 || z.vergelijk(z.aantal() - 1) <= 0)
        return ONGERIJMD;
    *uit = blok;
    return TWIJFEL;
}

// The search from the node in hand, which is a root or a leaf that surely holds the answer.
Uitslag omlaag(const Zoeker& start, char op, int32_t* uit) {
    ICB* icb = start.icb;
    Zoeker z = start;
    const bool wortelblad = KNOOP(icb).level == 1;
    uint8_t hek[IXSLEUTELMAX]; // separator above the node in hand
    int32_t linkerblok = GEEN, linkerniveau = 0;
    int omwegen = 0;
    *uit = GEEN;
    while (KNOOP(icb).level > 1) {
        int niveau = KNOOP(icb).level;
        int i = op == '>' ? z.erna() : z.plaats();
        if (i == z.aantal()) {
            if (icb->curblock != KNOOP(icb).keyno || z.aantal() == 0)
                return ONGERIJMD;
            icb->curent = z.entry(i - 1); // not below the sentinel itself
            return ANTWOORD;
        }
        if (i > 0) {
            linkerblok = z.wijzer(i - 1);
            linkerniveau = niveau - 1;
        }
        memcpy(hek, z.entry(i), z.def->keylen);
        if (!daal(z, z.wijzer(i), niveau - 1))
            return ONGERIJMD;
        if (op == '>' && niveau == 2 && (z.aantal() == 0 || z.vergelijk(z.aantal() - 1) >= 0)) {
            // The leaf has lost its last entry and the separator doesn't know yet: nothing lies between the
            // two, so what comes behind the separator is the answer.
            if (++omwegen > POGINGEN)
                return ONGERIJMD;
            static uint8_t vanaf[IXSLEUTELMAX];
            memcpy(vanaf, hek, z.def->keylen);
            z.sleutel = vanaf;
            z.lengte = z.def->keylen;
            if (IXLEESKNOOP(icb, KNOOP(icb).keyno) != L_GOED)
                return ONGERIJMD;
        }
    }
    int i = op == '>' ? z.erna() : z.plaats();
    icb->curent = z.entry(i);
    if (op == '<') {
        if (i > 0) {
            icb->curent = z.entry(i - 1);
            *uit = z.wijzer(i - 1);
            return ANTWOORD;
        }
        if (linkerblok == GEEN)
            return wortelblad ? ANTWOORD : TWIJFEL;
        return linksom(z, linkerblok, linkerniveau, uit);
    }
    if (i < z.aantal() && (op == '>' || z.vergelijk(i) == 0))
        *uit = z.wijzer(i) < 0 ? GEEN : z.wijzer(i);
    else if (op == '>' && i == z.aantal() && z.aantal() > 0)
        icb->curent = z.entry(i - 1);
    if (wortelblad || (op == '=' && *uit != GEEN && z.lengte == z.def->keylen))
        return ANTWOORD;
    return i == 0 || i == z.aantal() ? TWIJFEL : ANTWOORD;
}

// A half-done split hides the entries of the left half from a search that then ends at the edge of a leaf.
// Was one under way, or has there been one since this handle last looked?
bool splitsing_mogelijk(ICB* icb) {
    IXHEADER h;
    if (IXBLOKLEES(icb->idxfd, 0, &h, sizeof h) != static_cast<ssize_t>(sizeof h))
        return false;
    bool mogelijk = h.busy || h.nblocks != icb->gezien;
    icb->gezien = h.nblocks;
    return mogelijk;
}

void adempauze(int poging) {
    if (poging < 10)
        sched_yield();
    else
        usleep(poging < 30 ? 100 : 2000);
}

// A walk asks for what comes behind the entry it stands on: when the leaf has not changed that is the next entry,
// and no search is needed. GEEN: look for it in the ordinary way, the node in hand is as good as it was.
int32_t volgende_hier(const Zoeker& z) {
    ICB* icb = z.icb;
    const IXKNOOP& k = KNOOP(icb);
    const ptrdiff_t plaats = icb->curent - k.entries;
    const int i = static_cast<int>(plaats / z.stap());
    if (icb->koplock || k.level != 1 || z.lengte != z.def->keylen || plaats < 0 || i + 1 >= k.count ||
        memcmp(icb->curent, z.sleutel, z.def->keylen) != 0)
        return GEEN;
    if (icb->mode != 1 && !icb->filelocked) {
        uint8_t was[IXBLOK], *hier = icb->curent;
        memcpy(was, icb->node, IXBLOK);
        const int32_t blok = icb->curblock;
        if (IXLEESKNOOP(icb, blok) != L_GOED || memcmp(was, icb->node, IXBLOK) != 0)
            return GEEN;
        icb->curent = hier;
    }
    if (z.vergelijk(i + 1) >= 0) // only keys without record number have equals
        return GEEN;
    icb->curent = z.entry(i + 1);
    return z.wijzer(i + 1);
}

// A leaf in hand that holds the answer makes the descent unnecessary; a shared handle reads it again first.
bool blad_bruikbaar(const Zoeker& z, char op) {
    ICB* icb = z.icb;
    int8_t sleutel = KNOOP(icb).keyno;
    if (icb->koplock || KNOOP(icb).level != 1 || !z.binnen(op))
        return false;
    if (icb->mode == 1 || icb->filelocked)
        return true;
    int32_t blok = icb->curblock;
    if (IXLEESKNOOP(icb, blok) == L_GOED && KNOOP(icb).keyno == sleutel && KNOOP(icb).level == 1)
        return z.binnen(op);
    IXKIES(icb, sleutel);
    return false;
}

int32_t zoek(ICB* icb, char op, int lengte) {
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
    const int8_t sleutel = KNOOP(icb).keyno;
    if (icb->h.busy && !icb->cached)
        IXINCONSISTENT(icb);
    int32_t uit = GEEN;
    einden = 0;
    if (op == '>' && (uit = volgende_hier(z)) != GEEN)
        return uit;
    if (blad_bruikbaar(z, op)) {
        if (omlaag(z, op, &uit) != ONGERIJMD)
            return uit;
    }
    int nagezien = 0;
    for (int poging = 0; poging < POGINGEN; poging++) {
        bool wortel_in_hand = icb->mode == 1 && icb->curblock == sleutel && KNOOP(icb).count > 0;
        if (wortel_in_hand)
            IXPAD(icb); // the cache, when it was switched on, forgot it
        else {
            Leesuitslag gelezen = IXLEESKNOOP(icb, sleutel);
            if (gelezen == L_EINDE && !ALLEEN(icb))
                voorbij_einde(icb, sleutel);
            if (gelezen != L_GOED) {
                if (ALLEEN(icb))
                    break;
                adempauze(poging);
                continue;
            }
        }
        switch (omlaag(z, op, &uit)) {
        case ANTWOORD:
            return uit;
        case TWIJFEL:
            if (ALLEEN(icb) || icb->tempidx || ++nagezien > NAZIEN || !splitsing_mogelijk(icb))
                return uit;
            break;
        case ONGERIJMD:
            if (ALLEEN(icb))
                IXSTUK(icb, icb->curblock);
            break;
        }
        adempauze(poging);
    }
    IXSTUK(icb, sleutel);
}

// Number for a new node. A file that reaches beyond what the header counts was left by a crash: writing there
// could overwrite nodes in use; and behind one that is too short a hole would come into being.
int32_t nieuw_blok(ICB* icb) {
    if (icb->h.nblocks > INT32_MAX - 4)
        SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_INDEX_VOL));
    if (!icb->cached && SYSOMVANG(icb->idxfd) != int64_t{icb->h.nblocks} * IXBLOK)
        IXSTUK(icb, icb->h.nblocks);
    return icb->h.nblocks++;
}

// Parent of the node in hand into hand.
void omhoog(ICB* icb) {
    int niveau = KNOOP(icb).level;
    int8_t sleutel = KNOOP(icb).keyno;
    int32_t blok = icb->curblock;
    int32_t ouder = niveau < 9 ? icb->parent[niveau] : GEEN;
    if (ouder < 1 || IXLEESKNOOP(icb, ouder) != L_GOED || KNOOP(icb).keyno != sleutel ||
        KNOOP(icb).level != niveau + 1)
        IXSTUK(icb, blok);
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
        icb->parent[niveau + 1] = GEEN;
        icb->curent = KNOOP(icb).entries;
        return;
    }
    IXWRIX(icb, icb->curblock);
    omhoog(icb);
    IXLOCKEY(icb, def.keylen);
    IXINSKEY(icb);
}

// The highest key of a node has become `nieuw`: correct the separator above it, and on where that is a last
// entry too. keybuf holds the old key.
void zet_hek(ICB* icb, const uint8_t* nieuw) {
    for (;;) {
        int32_t kind = icb->curblock;
        omhoog(icb);
        const Zoeker z{icb, &IXDEF(icb), icb->keybuf, IXDEF(icb).keylen};
        int i = z.plaats();
        if (i == z.aantal() || z.wijzer(i) != kind)
            IXSTUK(icb, icb->curblock);
        memcpy(z.entry(i), nieuw, z.def->keylen);
        icb->curent = z.entry(i);
        IXWRIX(icb, icb->curblock);
        if (i < z.aantal() - 1)
            return;
    }
}

} // namespace

void IXLOCKEY(ICB* icb, int lengte) {
    IXEIS(icb, "IXLOCKEY");
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
    icb->curent = z.entry(z.plaats());
}

int32_t IXNODEFIND(ICB* icb, char operatie, int lengte) {
    IXEIS(icb, "IXNODEFIND");
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
    int i = operatie == '>' ? z.erna() : z.plaats();
    icb->curent = z.entry(i);
    if (operatie == '<') {
        if (i == 0)
            return GEEN;
        icb->curent = z.entry(--i);
    } else if (i == z.aantal() || (operatie == '=' && KNOOP(icb).level == 1 && z.vergelijk(i) != 0))
        return GEEN;
    return z.wijzer(i);
}

int32_t IXSEARCH(ICB* icb, char operatie, int lengte) {
    IXEIS(icb, "IXSEARCH");
    return zoek(icb, operatie, lengte);
}

int32_t IXZOEKVANAF(ICB* icb, int lengte) {
    const int32_t gelijk = zoek(icb, '=', lengte);
    if (gelijk >= 0)
        return gelijk;
    // The search stopped at the first entry above the key; inside a leaf no other can be the next.
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
    const ptrdiff_t plaats = icb->curent - KNOOP(icb).entries;
    if (KNOOP(icb).level == 1 && plaats > 0 && plaats < z.aantal() * z.stap()) {
        const int32_t r = LEES32(icb->curent + z.def->keylen);
        return r < 0 ? GEEN : r;
    }
    return zoek(icb, '>', lengte);
}

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

void IXVERWIJDER(ICB* icb) {
    const int lengte = IXDEF(icb).keylen, stap = lengte + 4;
    int32_t kind = GEEN; // the emptied node whose separator is to go
    for (;;) {
        const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
        int i = z.plaats(), n = z.aantal();
        // Only ever the entry that is meant: never another's, never the sentinel, which ends the root.
        bool gevonden =
            i < n && (kind == GEEN ? z.vergelijk(i) == 0 && z.wijzer(i) >= 0 : z.wijzer(i) == kind);
        if (!gevonden || (i == n - 1 && icb->curblock == KNOOP(icb).keyno))
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
        kind = icb->curblock;
        omhoog(icb);
    }
}

void IXDELENTRY(ICB* icb) {
    IXEIS(icb, "IXDELENTRY");
    IXRDIX(icb, icb->curblock);
    IXVERWIJDER(icb);
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
