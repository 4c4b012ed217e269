// Walking by key: first, next and previous, by key fields only (..K) or with the record (..R), skipping, and
// the question whether a key part has one value. `delen` 0 is the full key; n above 0 takes the first n parts
// as the place; key steps stay under the first n - 1 parts, record steps under the first n.
//
// A walk goes on from the record in the caller's hands, since he may have changed its key. But where he holds the
// record as it was given, the place is that of its entry: the two differ when somebody changed the record, or used its
// slot, between the reading of the one and of the other, and in a temporary index, which is older than its records.
// To go on from the record's key would then leave out, or give twice, all that lies between the two.
#include "store/node.h"
#include "store/wachten.h"
#include <algorithm>

namespace zg {
namespace {

// Does the entry found differ from keybuf in the first `delen` parts?
bool buiten(ICB* icb, int delen) {
    return IXVERGELIJK(IXDEF(icb), icb->keybuf, icb->curent, IXKEYLEN(icb, delen)) != 0;
}

// The handle stands on the entry in hand, which gave the record `rec`, as the caller will bring it back.
void onthoud(ICB* icb, const void* rec) {
    const IXKEYDEF& def = IXDEF(icb);
    IXPLAATS& p = icb->plaats;
    IXMAAKSLEUTEL(def, rec, icb->currec, def.keylen, p.record);
    memcpy(p.entry, icb->curent, def.keylen);
    p.nr = icb->currec;
    p.sleutel = KNOOP(icb).keyno;
}

// Key of the caller's record into keybuf; answers its length.
int begin(ICB* icb, const void* rec, int delen) {
    const int lengte = IXKEYLEN(icb, delen);
    IXBLDKEY(icb, rec, lengte);
    return lengte;
}

// Does the caller bring back, byte for byte, the key that he was given?
bool zoals_gegeven(const ICB* icb, const void* rec) {
    const IXPLAATS& p = icb->plaats;
    return p.sleutel == KNOOP(icb).keyno && p.nr == icb->currec &&
           IXSLEUTELSTAAT(IXDEF(icb), rec, p.nr, p.record);
}

// The same for a walk that goes on: the key of its entry, when the caller brings back what he was given.
int verder(ICB* icb, const void* rec, int delen) {
    const int lengte = begin(icb, rec, delen);
    const IXPLAATS& p = icb->plaats;
    const size_t n = static_cast<size_t>(lengte);
    if (p.sleutel == KNOOP(icb).keyno && p.nr == icb->currec && memcmp(p.record, icb->keybuf, n) == 0)
        memcpy(icb->keybuf, p.entry, n);
    return lengte;
}

// One step by key.
int stap_af(ICB* icb, void* rec, int delen, char richting, int lengte) {
    int32_t gevonden = richting == '=' ? IXZOEKVANAF(icb, lengte) : IXSEARCH(icb, richting, lengte);
    if (delen > 1 && gevonden >= 0 && buiten(icb, delen - 1))
        gevonden = -1;
    icb->currec = gevonden;
    if (gevonden < 0)
        return 0;
    IXKEYTOREC(icb, rec);
    onthoud(icb, rec);
    return 1;
}

// The record of the entry found, or of the next ones in the same direction when it has become free meanwhile.
// Each round goes on from the entry's own key, so it ends also in a damaged tree. A record that has another key
// by now is looked for again.
int lees_vanaf(ICB* icb, void* rec, int delen, char richting, bool vanaf_gelijk) {
    const int lengte = IXDEF(icb).keylen;
    uint8_t gelezen[IXRECMAX]; // who gets none keeps what he has in his buffer, and with it his place
    for (Geduld geduld(icb);;) {
        int32_t gevonden = vanaf_gelijk ? IXZOEKVANAF(icb, lengte) : IXSEARCH(icb, richting, lengte);
        if (gevonden >= 0 && delen > 0 && buiten(icb, delen))
            gevonden = -1;
        icb->currec = gevonden;
        if (gevonden < 0)
            return 0;
        switch (IXLEESGEVONDEN(icb, gelezen, richting, &geduld)) {
        case R_GOED:
            memcpy(rec, gelezen, static_cast<size_t>(icb->h.reclen));
            onthoud(icb, rec);
            IXSTAPVOORUIT(icb);
            return 1;
        case R_VRIJ:
            memcpy(icb->keybuf, icb->curent, static_cast<size_t>(lengte));
            vanaf_gelijk = false;
            break;
        case R_ANDER:
            break;
        }
    }
}

// The record of the entry in hand, whatever it is by now. 1 when it is live.
int lees_hier(ICB* icb, void* rec, char richting) {
    uint8_t entry[IXSLEUTELMAX + 4];
    const int32_t nummer = icb->currec;
    const int lengte = IXDEF(icb).keylen;
    memcpy(entry, icb->curent, static_cast<size_t>(lengte));
    for (Geduld geduld(icb);;) {
        Recorduitslag uitslag = IXLEESGEVONDEN(icb, rec, richting, &geduld);
        if (uitslag != R_ANDER) {
            IXGEGEVEN(icb, rec);
            return uitslag == R_GOED;
        }
        memcpy(icb->keybuf, entry, static_cast<size_t>(lengte));
        if (IXSEARCH(icb, '=', lengte) != nummer)
            break; // the key has changed since
    }
    icb->currec = nummer;
    const bool levend = IXLEESLEVEND(icb, rec);
    IXGEGEVEN(icb, rec);
    return levend;
}

} // namespace

void IXGEGEVEN(ICB* icb, const void* rec) {
    IXPLAATS& p = icb->plaats;
    if (p.sleutel > 0 && p.nr == icb->currec) {
        const IXKEYDEF& def = icb->h.keydef[p.sleutel - 1];
        IXMAAKSLEUTEL(def, rec, p.nr, def.keylen, p.record);
    }
}

void IXHIERNU(ICB* icb, const void* rec) {
    IXPLAATS& p = icb->plaats;
    if (!IXRECLIVE(rec, icb->h.reclen))
        return IXNERGENS(icb);
    IXGEGEVEN(icb, rec);
    if (p.sleutel == KNOOP(icb).keyno && p.nr == icb->currec)
        memcpy(p.entry, p.record, sizeof p.entry);
}

void IXNERGENS(ICB* icb) {
    if (icb->plaats.nr == icb->currec)
        icb->plaats.sleutel = 0;
}

int IXFIRSTK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXFIRSTK");
    int lengte = begin(icb, rec, delen);
    return stap_af(icb, rec, delen, '=', lengte);
}

int IXNEXTK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXNEXTK");
    int lengte = verder(icb, rec, delen);
    return stap_af(icb, rec, delen, '>', lengte);
}

// A search for '<' finds its own way from the root, so the '=' that sets the position is not needed here.
int IXPREVK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXPREVK");
    int lengte = verder(icb, rec, delen);
    return stap_af(icb, rec, delen, '<', lengte);
}

int IXFIRSTR(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXFIRSTR");
    icb->currec = 0; // lowest of equal values where the key holds the record number
    begin(icb, rec, 0);
    return lees_vanaf(icb, rec, delen, '>', true);
}

int IXNEXTR(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXNEXTR");
    if (zoals_gegeven(icb, rec)) {
        if (IXSTAPHIER(icb, rec, delen))
            return 1;
        memcpy(icb->keybuf, icb->plaats.entry, IXDEF(icb).keylen);
    } else
        verder(icb, rec, 0);
    return lees_vanaf(icb, rec, delen, '>', false);
}

int IXPREVR(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXPREVR");
    verder(icb, rec, 0);
    return lees_vanaf(icb, rec, delen, '<', false);
}

int IXFIRST(ICB* icb, void* rec) {
    return IXFIRSTR(icb, rec, 0);
}

int IXNEXT(ICB* icb, void* rec) {
    return IXNEXTR(icb, rec, 0);
}

int IXLAST(ICB* icb, void* rec) {
    return IXPREVR(icb, rec, 0);
}

int IXSKIP(ICB* icb, void* rec, int delen, int stappen, int32_t* recnr) {
    IXEIS(icb, "IXSKIP");
    uint8_t bewaard[IXRECMAX];
    const size_t lengte = static_cast<size_t>(std::clamp<int>(icb->h.reclen, 0, IXRECMAX));
    memcpy(bewaard, rec, lengte);
    icb->currec = *recnr;
    if (*recnr >= 0 && IXLEESLEVEND(icb, rec))
        IXGEGEVEN(icb, rec);
    else {
        // Deleted by somebody else: its key fields are in the caller's record still, so go to its neighbour.
        memcpy(rec, bewaard, lengte);
        if (stappen == 0)
            stappen = 1;
    }
    const int richting = stappen < 0 ? 1 : -1;
    const bool gestapt = stappen != 0;
    for (; stappen != 0; stappen += richting) {
        if (!(richting < 0 ? IXNEXTK(icb, rec, delen) : IXPREVK(icb, rec, delen)))
            break;
        *recnr = icb->currec;
    }
    if (icb->currec < 0)
        return 0;
    if (gestapt)
        return lees_hier(icb, rec, richting < 0 ? '>' : '<');
    IXRDREC(icb, rec);
    return IXRECLIVE(rec, icb->h.reclen);
}

int IXUNIQK(ICB* icb, void* rec, int deel) {
    IXEIS(icb, "IXUNIQK");
    const IXKEYDEF& def = IXDEF(icb);
    if (deel <= 1)
        memset(icb->keybuf, 0, sizeof icb->keybuf);
    else
        IXBLDKEY(icb, rec, IXKEYLEN(icb, deel - 1));
    const bool laatste = IXDEELBREEDTE(def, std::max(deel, 0)) == 0; // part `deel` + 1, counted from 0
    int lengte = def.dupflag == 'J' && laatste ? def.keylen : IXKEYLEN(icb, std::max(deel, 1));
    int32_t r = IXZOEKVANAF(icb, lengte);
    if (r < 0 || (deel > 1 && buiten(icb, deel - 1)))
        return 0;
    icb->currec = r;
    IXKEYTOREC(icb, rec);
    IXBLDKEY(icb, rec, lengte);
    r = IXSEARCH(icb, '>', lengte);
    if (r >= 0 && !(deel > 1 && buiten(icb, deel - 1)))
        return 0;
    icb->currec = IXSEARCH(icb, '=', lengte);
    return 1;
}

} // namespace zg
