// Finding a key in a tree, from the node in hand or from the root. Walking by key: store/wandel.cpp; changing a tree:
// store/wijzigen.cpp; blocks and their path: store/blok.cpp.
//
// A reader holds no lock, so between two reads a writer may have split or emptied what it stands on, and a read may
// show a block half written. What a reader's answer rests on:
//   1. an entry that is equal to the key needs no more: the record behind it is compared with it;
//   2. any other answer comes out of a leaf that can't have been read half written: one that shows no sign of it, and at
//      its end one that was read twice with the same bytes;
//   3. an answer at the edge of a leaf is in doubt, since a split hides the left half from a way that is older, and a
//      rebuild gives a block to another part of the tree: the header must then say that nobody is changing the pair and
//      that its counters and its change count are those that the handle last saw; or two searches in a row, behind a
//      header that isn't marked, must give the same, as where programs work that don't count or don't stop;
//   4. what doesn't fit together is looked for again, with a pause, as long as somebody writes (store/wachten.h).
// A handle that is alone (exclusive, or under the header lock) sees only whole trees, so there anything odd is damage.
#include "shared/files.h"
#include "store/bestand.h"
#include "store/kaart.h"
#include "store/klad.h"
#include "store/kop.h"
#include "store/wachten.h"
#include "store/zoeker.h"
#include "term/toetswacht.h"
#include <algorithm>
#include <array>
#include <ctime>

namespace zg {
namespace {

enum Uitslag { ANTWOORD, TWIJFEL, ONGERIJMD };

bool einde_getoond; // in the search under way
bool in_rust;       // it is made in a pair that is at rest, or is thrown away: what is read is whole

// A block past the end: others have changed the tree under this handle.
void voorbij_einde(ICB* icb, int32_t blok) {
    if (!einde_getoond)
        IXEOFTOON(icb, blok);
    einde_getoond = true;
}

// Child into hand; it must be one level below and of the same key.
bool daal(const Zoeker& z, int32_t blok, int niveau) {
    ICB* icb = z.icb;
    int8_t sleutel = KNOOP(icb).keyno;
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

// The node in hand once more, until two reads in a row give the same. False when it has become another kind of node.
bool bestendig(ICB* icb) {
    if (ALLEEN(icb) || in_rust)
        return true;
    const int8_t sleutel = KNOOP(icb).keyno, niveau = KNOOP(icb).level;
    uint8_t was[IXBLOK];
    do {
        memcpy(was, icb->node, IXBLOK);
        if (IXLEESKNOOP(icb, icb->curblock) != L_GOED)
            return false;
    } while (memcmp(was, icb->node, IXBLOK) != 0);
    return KNOOP(icb).keyno == sleutel && KNOOP(icb).level == niveau;
}

// Do the last entries of the leaf in hand ascend, or at least differ? A block whose end was lost on the disk holds zeros there,
// and a search would pass over what it hides.
bool zinnig(const Zoeker& z) {
    const int n = z.aantal();
    if (n < 2)
        return true;
    const int d = IXVERGELIJK(*z.def, z.entry(n - 2), z.entry(n - 1), z.def->keylen);
    return d < 0 || (d == 0 && z.wijzer(n - 2) != z.wijzer(n - 1));
}

// The same of a leaf that may have been read half written; of another node, true.
bool blad_zinnig(const Zoeker& z) {
    return KNOOP(z.icb).level > 1 || zinnig(z) || (bestendig(z.icb) && zinnig(z));
}

// '<' in a leaf whose first entry is not below the key: the last entry of the subtree to the left, where the
// path last had one.
Uitslag linksom(const Zoeker& z, int32_t blok, int niveau, int32_t* uit) {
    for (; niveau >= 1; niveau--) {
        if (!daal(z, blok, niveau) || (niveau == 1 && (!bestendig(z.icb) || !zinnig(z))) || z.aantal() == 0)
            return ONGERIJMD;
        z.icb->curent = z.entry(z.aantal() - 1);
        blok = z.wijzer(z.aantal() - 1);
    }
    if (blok < 0 || z.vergelijk(z.aantal() - 1) <= 0)
        return ONGERIJMD;
    *uit = blok;
    return TWIJFEL;
}

bool is_sluitstuk(const Zoeker& z, int i) {
    const uint8_t* e = z.entry(i);
    for (int b = 0; b < z.def->keylen; b++)
        if (e[b] != 0xFF)
            return false;
    return true;
}

// Could the leaf in hand have been read while it was written? What shifts its entries by one hides an entry only when
// the last one is of zeros, or else the last itself. What cuts it down leaves old entries behind the new, higher ones:
// what these hide is looked for at the leaf's edge, and in doubt there.
bool gaaf(const Zoeker& z) {
    if (ALLEEN(z.icb) || in_rust || z.aantal() < 2)
        return true;
    const uint8_t* laatste = z.entry(z.aantal() - 1);
    return std::any_of(laatste, laatste + z.stap(), [](uint8_t b) { return b != 0; });
}

// The search from the node in hand, which is a root or, when `zeker`, a leaf that surely holds the answer.
Uitslag omlaag(const Zoeker& start, char op, bool zeker, int32_t* uit) {
    ICB* icb = start.icb;
    Zoeker z = start;
    const bool wortelblad = KNOOP(icb).level == 1;
    uint8_t vanaf[IXSLEUTELMAX]; // separator above the node in hand, and the key that the search goes on from
    int32_t linkerblok = GEENBLOK, linkerniveau = 0;
    int omwegen = 0;
    *uit = GEENBLOK;
    if (!blad_zinnig(z))
        return ONGERIJMD;
    while (KNOOP(icb).level > 1) {
        int niveau = KNOOP(icb).level;
        int i = op == '>' ? z.erna() : z.plaats();
        if (i == z.aantal()) {
            if (icb->curblock != KNOOP(icb).keyno || z.aantal() == 0 || !is_sluitstuk(z, i - 1))
                return ONGERIJMD;
            icb->curent = z.entry(i - 1); // not below the sentinel itself
            return omwegen > 0 ? TWIJFEL : ANTWOORD;
        }
        if (i > 0) {
            linkerblok = z.wijzer(i - 1);
            linkerniveau = niveau - 1;
        }
        uint8_t hek[IXSLEUTELMAX];
        memcpy(hek, z.entry(i), z.def->keylen);
        if (!daal(z, z.wijzer(i), niveau - 1) || !blad_zinnig(z))
            return ONGERIJMD;
        const auto voorbij = [&] { return z.aantal() == 0 || z.vergelijk(z.aantal() - 1) >= 0; };
        if (op == '>' && niveau == 2 && voorbij()) {
            if (!bestendig(icb))
                return ONGERIJMD;
            if (!voorbij())
                continue;
            // The leaf has lost its last entry and the separator doesn't know yet: nothing lies between the
            // two, so what comes behind the separator is the answer.
            if (++omwegen > KNOOPRUIMTE)
                return ONGERIJMD;
            memcpy(vanaf, hek, z.def->keylen);
            z.sleutel = vanaf;
            z.lengte = z.def->keylen;
            if (IXLEESKNOOP(icb, KNOOP(icb).keyno) != L_GOED)
                return ONGERIJMD;
        }
    }
    int i = op == '>' ? z.erna() : z.plaats();
    const auto gelijk = [&] { return op == '=' && i < z.aantal() && z.vergelijk(i) == 0; };
    if (!zeker && !gelijk() && (i == z.aantal() || !gaaf(z))) {
        if (!bestendig(icb))
            return ONGERIJMD;
        i = op == '>' ? z.erna() : z.plaats();
    }
    icb->curent = z.entry(i);
    if (op == '<') {
        if (i > 0) {
            icb->curent = z.entry(i - 1);
            *uit = z.wijzer(i - 1);
            return i < z.aantal() || wortelblad ? ANTWOORD : TWIJFEL;
        }
        if (linkerblok == GEENBLOK)
            return wortelblad ? ANTWOORD : TWIJFEL;
        return linksom(z, linkerblok, linkerniveau, uit);
    }
    if (i < z.aantal() && (op == '>' || z.vergelijk(i) == 0))
        *uit = z.wijzer(i) < 0 ? GEENBLOK : z.wijzer(i);
    else if (op == '>' && i == z.aantal() && z.aantal() > 0)
        icb->curent = z.entry(i - 1);
    if (omwegen > 0)
        return TWIJFEL; // or the block was another's by the time that it was read
    if (wortelblad || (op == '=' && *uit != GEENBLOK && z.lengte == z.def->keylen))
        return ANTWOORD;
    return i == 0 || i == z.aantal() ? TWIJFEL : ANTWOORD;
}

// What a reader knows of its doubtful answer. RUST: nothing has changed since this handle last looked. TELLERS: the counters
// haven't, but a program is at work that doesn't count its changes, or has been.
enum Blik { RUST, TELLERS, ANDERS, BEZIG };

// Was the pair changed under the search just made, by a split that hid something from it or a rebuild, which may leave the
// counters as they were: is that under way, or has it been since this handle last looked? An exclusive handle shows by its
// lock; so that is asked first, or the handle could be closed between the two.
Blik bekijk_kop(ICB* icb) {
    IXHEADER h;
    uint32_t telling = 0;
    const bool exclusief = !IOLOCK('T', icb->idxfd, 0, IXBLOK);
    if (!IXKOPBLOK(icb, &h, &telling) || (h.busy && !(exclusief && h.busy == K_ALLEEN)))
        return BEZIG;
    const auto& g = icb->gezien;
    const bool tellers = h.nblocks == g.nblocks && h.nrecs == g.nrecs && h.freehead == g.freehead,
               telt = IXTELRUST(telling), zelfde = tellers && (!telt || telling == g.telling);
    IXGEZIEN(icb, h, telling);
    return !zelfde ? ANDERS : telt && !exclusief ? RUST : TELLERS;
}

// Without a mapping a look at a leaf is a call. One that was read twice with the same bytes a moment ago serves the next
// steps of the same walk, as long as this program has neither written nor waited for a key since.
struct Moment {
    const ICB* icb;
    int32_t blok;
    uint64_t geschreven, toetsen;
    int64_t ms;
};
std::array<Moment, 8> gelezen_bladen; // by descriptor

Moment dit_moment(const ICB* icb) {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return {icb, icb->curblock, KLADTELLER(), TOETSWACHTEN, t.tv_sec * 1000 + t.tv_nsec / 1'000'000};
}

Moment& blad_van(const ICB* icb) {
    return gelezen_bladen[static_cast<size_t>(icb->idxfd) % gelezen_bladen.size()];
}

// A walk asks for what comes behind the entry it stands on: when the leaf has not changed that is the next entry,
// and no search is needed. GEENBLOK: look for it in the ordinary way. *gelezen: the leaf in hand was read just now and
// has not changed. `zelfde_blad`: nor has the pair since.
int32_t volgende_hier(const Zoeker& z, bool zelfde_blad, bool* gelezen) {
    ICB* icb = z.icb;
    const IXKNOOP& k = KNOOP(icb);
    const ptrdiff_t plaats = icb->curent - k.entries;
    const int i = static_cast<int>(plaats / z.stap());
    if (icb->koplock || k.level != 1 || z.lengte != z.def->keylen || plaats < 0 || i >= k.count ||
        memcmp(icb->curent, z.sleutel, z.def->keylen) != 0)
        return GEENBLOK;
    if (i + 1 >= k.count) {
        *gelezen = true; // its last entry: whatever it has become, the answer is not known to be here
        return GEENBLOK;
    }
    if (!ALLEEN(icb) && !(in_rust && zelfde_blad) && !IXBLADVERS(icb)) {
        const Moment nu = dit_moment(icb);
        uint8_t was[IXBLOK], *hier = icb->curent;
        memcpy(was, icb->node, IXBLOK);
        const int32_t blok = icb->curblock;
        if (IXLEESKNOOP(icb, blok) != L_GOED || memcmp(was, icb->node, IXBLOK) != 0) {
            if (KNOOP(icb).keyno != static_cast<int8_t>(was[0])) // a rebuild gave the block to another key
                IXKIES(icb, static_cast<int8_t>(was[0]));
            return GEENBLOK;
        }
        icb->curent = hier;
        blad_van(icb) = nu;
    }
    *gelezen = true;
    if (z.vergelijk(i + 1) >= 0) // only keys without record number have equals
        return GEENBLOK;
    icb->curent = z.entry(i + 1);
    return z.wijzer(i + 1);
}

// A leaf in hand that holds the answer makes the descent unnecessary; a shared handle reads it again first.
bool blad_bruikbaar(const Zoeker& z, char op, bool gelezen) {
    ICB* icb = z.icb;
    int8_t sleutel = KNOOP(icb).keyno;
    if (icb->koplock || KNOOP(icb).level != 1 || !z.binnen(op))
        return false;
    if (gelezen || ALLEEN(icb))
        return true;
    if (in_rust) // out of memory the way from the root is as near
        return false;
    if (bestendig(icb))
        return z.binnen(op);
    IXKIES(icb, sleutel);
    return false;
}

enum Rust { IN_RUST, ONRUST, ONBEKEND };

// A search in a pair that is at rest before and behind it: what it gave is so, doubts or not. ONRUST: writers came in between
// each time. ONBEKEND: it can't be seen to be at rest; or something doesn't fit together even so, and may be the work of a
// program that writes without counting.
Rust zoek_in_rust(const Zoeker& z, char op, int32_t* uit) {
    ICB* icb = z.icb;
    const int8_t sleutel = KNOOP(icb).keyno;
    IXSTAND voor, na;
    int bedorven = 0, bezig = 0; // a mark that stays is that of a dead program, or of one that takes its time
    while (bedorven < RUSTBEURTEN && bezig < RUSTBEURTEN) {
        if (!IXSTANDLEES(icb, &voor)) {
            if (!voor.bezig || (voor.telling && voor.telling == icb->stilstand))
                break;
            IXPAUZE(R_SLOT, bezig++);
            if (bezig == RUSTBEURTEN)
                icb->stilstand = voor.telling;
            continue;
        }
        bezig = 0;
        const bool zelfde_blad = GELIJK({icb->bladstand.freehead, icb->bladstand.nrecs,
                                         icb->bladstand.nblocks, icb->bladstand.telling, false},
                                        voor);
        bool gelezen = zelfde_blad, goed = true;
        in_rust = true;
        if (op != '>' || (*uit = volgende_hier(z, zelfde_blad, &gelezen)) == GEENBLOK)
            if (!blad_bruikbaar(z, op, gelezen) || omlaag(z, op, true, uit) == ONGERIJMD)
                goed = IXLEESKNOOP(icb, sleutel) == L_GOED && omlaag(z, op, false, uit) != ONGERIJMD;
        in_rust = false;
        if (!IXSTANDLEES(icb, &na) || !GELIJK(voor, na)) {
            bedorven++;
            continue;
        }
        if (!goed)
            break;
        icb->bladstand = {voor.freehead, voor.nrecs, voor.nblocks, voor.telling};
        icb->gezien = {voor.nblocks, voor.nrecs, voor.freehead, voor.telling};
        return IN_RUST;
    }
    if (KNOOP(icb).keyno != sleutel)
        IXKIES(icb, sleutel);
    return bedorven == RUSTBEURTEN ? ONRUST : ONBEKEND;
}

int32_t zoek(ICB* icb, char op, int lengte) {
    const Zoeker z{icb, &IXDEF(icb), icb->keybuf, lengte};
    const int8_t sleutel = KNOOP(icb).keyno;
    if (icb->h.busy && !icb->cached)
        IXINCONSISTENT(icb);
    int32_t uit = GEENBLOK;
    bool gelezen = false;
    einde_getoond = false;
    const Rust rust = ALLEEN(icb) ? ONBEKEND : zoek_in_rust(z, op, &uit);
    if (rust == IN_RUST)
        return uit;
    Geduld geduld(icb);
    if (rust == ONRUST)
        geduld.neem_slot();
    uit = GEENBLOK;
    if (op == '>' && (uit = volgende_hier(z, false, &gelezen)) != GEENBLOK)
        return uit;
    if (blad_bruikbaar(z, op, gelezen) && omlaag(z, op, true, &uit) != ONGERIJMD)
        return uit;
    int32_t vorige = GEENBLOK, vorig_blad = GEENBLOK; // the doubtful answer of the search before this one
    for (;;) {
        Uitslag uitslag = ANTWOORD;
        const bool wortel_in_hand = icb->mode == 1 && icb->curblock == sleutel && KNOOP(icb).count > 0;
        if (wortel_in_hand)
            IXPAD(icb); // the cache, when it was switched on, forgot it
        else if (Leesuitslag wortel = IXLEESKNOOP(icb, sleutel); wortel != L_GOED) {
            if (wortel == L_EINDE && !ALLEEN(icb))
                voorbij_einde(icb, sleutel);
            uitslag = ONGERIJMD;
        }
        if (uitslag != ONGERIJMD)
            uitslag = omlaag(z, op, false, &uit);
        if (uitslag == ANTWOORD)
            return uit;
        if (uitslag == ONGERIJMD) {
            if (!geduld.nog_eens())
                IXSTUK(icb, icb->curblock);
            vorig_blad = GEENBLOK;
            continue;
        }
        if (ALLEEN(icb) || icb->tempidx)
            return uit;
        const Blik blik = bekijk_kop(icb);
        if (blik == RUST || (blik != BEZIG && vorig_blad == icb->curblock && vorige == uit))
            return uit;
        vorige = uit;
        vorig_blad = blik != BEZIG ? icb->curblock : GEENBLOK;
        // With the lock in hand a mark was left by one who died: nothing more will come.
        if (blik == BEZIG && !geduld.nog_eens())
            return uit;
    }
}

} // namespace

bool IXBLADVERS(const ICB* icb) {
    const Moment& was = blad_van(icb);
    if (in_rust || was.icb != icb || was.blok != icb->curblock || IXKAARTER(icb->idxfd))
        return false;
    const Moment nu = dit_moment(icb);
    return was.geschreven == nu.geschreven && was.toetsen == nu.toetsen && nu.ms - was.ms <= BLADVERS;
}

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
            return GEENBLOK;
        icb->curent = z.entry(--i);
    } else if (i == z.aantal() || (operatie == '=' && KNOOP(icb).level == 1 && z.vergelijk(i) != 0))
        return GEENBLOK;
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
        return r < 0 ? GEENBLOK : r;
    }
    return zoek(icb, '>', lengte);
}

} // namespace zg
