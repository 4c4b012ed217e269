// Walking by key: first, next and previous, by key fields only (..K) or with the record (..R), skipping, and
// the question whether a key part has one value. `delen` 0 is the full key; n above 0 takes the first n parts
// as the place; key steps stay under the first n - 1 parts, record steps under the first n.
#include "store/node.h"
#include <algorithm>
#include <unistd.h>

namespace zg {
namespace {

constexpr int RONDEN = 20; // looks of a reader at an entry that leads nowhere

// Does the entry found differ from keybuf in the first `delen` parts?
bool buiten(ICB* icb, int delen) {
    return IXVERGELIJK(IXDEF(icb), icb->keybuf, icb->curent, IXKEYLEN(icb, delen)) != 0;
}

int begin(ICB* icb, const void* rec, int delen) {
    int lengte = IXKEYLEN(icb, delen);
    IXBLDKEY(icb, rec, lengte);
    return lengte;
}

// Would a next step from here lead on? A damaged entry or record may have a key that leads back to it for ever.
bool vordert(const ICB* icb, const void* rec, char richting, int lengte) {
    uint8_t hier[IXSLEUTELMAX + 4];
    const IXKEYDEF& def = IXDEF(icb);
    IXMAAKSLEUTEL(def, rec, icb->currec, lengte, hier);
    int uitslag = IXVERGELIJK(def, hier, icb->keybuf, lengte);
    return richting == '<' ? uitslag < 0 : uitslag > 0;
}

// One step by key. An entry that a reader without a lock may have met half written is read again.
int stap_af(ICB* icb, void* rec, int delen, char richting, int lengte) {
    for (int poging = 0;; poging++) {
        int32_t gevonden = richting == '=' ? IXZOEKVANAF(icb, lengte) : IXSEARCH(icb, richting, lengte);
        if (delen > 1 && gevonden >= 0 && buiten(icb, delen - 1))
            gevonden = -1;
        icb->currec = gevonden;
        if (gevonden < 0)
            return 0;
        IXKEYTOREC(icb, rec);
        if (richting == '=' || vordert(icb, rec, richting, lengte))
            return 1;
        if (ALLEEN(icb) || poging == RONDEN)
            IXSTUK(icb, icb->curblock);
        usleep(100);
    }
}

// The record of the entry found, or of the next ones in the same direction when it has become free meanwhile.
// Each round goes on from the entry's own key, so it ends also in a damaged tree. A record that has another key
// by now is looked for again.
int lees_vanaf(ICB* icb, void* rec, int delen, char richting, bool vanaf_gelijk) {
    const int lengte = IXDEF(icb).keylen;
    for (int poging = 0;;) {
        int32_t gevonden = vanaf_gelijk ? IXZOEKVANAF(icb, lengte) : IXSEARCH(icb, richting, lengte);
        if (gevonden >= 0 && delen > 0 && buiten(icb, delen))
            gevonden = -1;
        icb->currec = gevonden;
        if (gevonden < 0)
            return 0;
        switch (IXLEESGEVONDEN(icb, rec, richting, &poging)) {
        case R_GOED:
            // Only in a temporary index, whose record has got another key since: one that leads back is left out.
            if (vanaf_gelijk || !icb->tempidx || vordert(icb, rec, richting, lengte))
                return 1;
            [[fallthrough]];
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
    for (int poging = 0;;) {
        Recorduitslag uitslag = IXLEESGEVONDEN(icb, rec, richting, &poging);
        if (uitslag != R_ANDER)
            return uitslag == R_GOED;
        memcpy(icb->keybuf, entry, static_cast<size_t>(lengte));
        if (IXSEARCH(icb, '=', lengte) != nummer)
            break; // the key has changed since
    }
    icb->currec = nummer;
    IXRDREC(icb, rec);
    return IXRECLIVE(rec, icb->h.reclen);
}

} // namespace

int IXFIRSTK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXFIRSTK");
    int lengte = begin(icb, rec, delen);
    return stap_af(icb, rec, delen, '=', lengte);
}

int IXNEXTK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXNEXTK");
    int lengte = begin(icb, rec, delen);
    return stap_af(icb, rec, delen, '>', lengte);
}

// A search for '<' finds its own way from the root, so the '=' that sets the position is not needed here.
int IXPREVK(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXPREVK");
    int lengte = begin(icb, rec, delen);
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
    begin(icb, rec, 0);
    return lees_vanaf(icb, rec, delen, '>', false);
}

int IXPREVR(ICB* icb, void* rec, int delen) {
    IXEIS(icb, "IXPREVR");
    begin(icb, rec, 0);
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
    if (*recnr >= 0)
        IXRDREC(icb, rec);
    if (*recnr < 0 || !IXRECLIVE(rec, icb->h.reclen)) {
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
