// The grid of a type's sizes. The cursor is a position on the bar; a position behind the last size gets a blank size
// while the cursor stands on it. A size keeps its number wherever it moves.
#include "sub/maatcellen.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <string>

namespace zg {
namespace {

constexpr int PER_RIJ = 19, CEL = 4, KOLOM = 2, LABEL = 3;

struct Raster {
    mthandle* h;
    const uint8_t* gebruik;
    int voetrij;
    int p = 1, aantal = 0, tussen = 0; // position, sizes, of which put between others
    mtinfo nu{};                       // the size at p
};

int celrij(int p) {
    return MAATCELRIJ + (p - 1) / PER_RIJ;
}
int celkolom(int p) {
    return KOLOM + (p - 1) % PER_RIJ * CEL;
}

std::string label(const mtinfo& info) {
    return VASTTEKST(info.naam);
}

void toon_cel(mthandle* h, int p) {
    mtinfo info{};
    info.positie = static_cast<uint8_t>(p);
    const std::string t = h && mtread(h, 'R', &info, 2) ? label(info) : "";
    SCRPUT(t.empty() ? A_LABEL : A_WAARDE, celrij(p), celkolom(p), "%3.3s", t.empty() ? "___" : t.c_str());
}

// A blank one, not yet a size of the type.
bool leeg(const Raster& r) {
    return label(r.nu).empty() && !maat_in(r.gebruik, r.nu.maatnr);
}

// A blank at a position, under the first free number: the table of another size system than the firm's takes none by
// itself.
bool voeg_in(Raster& r, int p) {
    mtinfo info{};
    for (info.maatnr = 1; info.maatnr <= MATEN && mtpos(r.h, info.maatnr);)
        info.maatnr++;
    info.positie = static_cast<uint8_t>(p);
    memset(info.naam, ' ', sizeof info.naam);
    if (!mtinsert(r.h, &info))
        return false;
    r.aantal++;
    maatcellen_toon(r.h);
    return true;
}

// The size at the cursor out of the type. The blank behind the last size was never put between others.
void haal_weg(Raster& r) {
    if (r.tussen > 0 && !(leeg(r) && r.p == r.aantal))
        r.tussen--;
    mtdelete(r.h, &r.nu);
    r.aantal--;
    maatcellen_toon(r.h);
}

// The size at the cursor into r.nu; behind the last one a blank. False when there can be none.
bool sta(Raster& r) {
    r.nu = {};
    r.nu.positie = static_cast<uint8_t>(r.p);
    return mtread(r.h, 'R', &r.nu, 2) || (voeg_in(r, r.p) && mtread(r.h, 'R', &r.nu, 2));
}

bool links_kan(const Raster& r) {
    return r.p > 1 && (!leeg(r) || r.p == r.aantal);
}
bool rechts_kan(const Raster& r) {
    return r.p < MATEN && !leeg(r) && r.p <= r.aantal;
}

// A step aside; a blank that is left goes. False, told, where there is none.
bool opzij(Raster& r, int32_t toets) {
    if (toets == K_LEFT ? !links_kan(r) : !rechts_kan(r)) {
        error("%s", TXT(T_ONGELDIGE_TOETS));
        return false;
    }
    if (leeg(r))
        haal_weg(r);
    r.p += toets == K_LEFT ? -1 : 1;
    return true;
}

bool is_pijl(int32_t toets) {
    return toets == K_LEFT || toets == K_RIGHT || toets == K_UP || toets == K_DOWN;
}

// Wait on the cell: true when an arrow has left it; any other key is the first one of the label's field.
bool wacht(Raster& r) {
    for (;;) {
        WINAT(celrij(r.p), celkolom(r.p));
        BEZIGWIS();
        const int32_t toets = TOETS();
        BEZIGTOON();
        error("%s", "");
        if (!is_pijl(toets)) {
            TOETSDRUK(toets);
            return false;
        }
        if ((toets == K_LEFT || toets == K_RIGHT) && opzij(r, toets))
            return true;
    }
}

bool komt_voor(const Raster& r, const char (&naam)[LABEL]) {
    mtinfo info{};
    for (int er = mtread(r.h, 'F', &info, 2); er; er = mtread(r.h, 'N', &info, 2))
        if (info.maatnr != r.nu.maatnr && VASTGELIJK(info.naam, VASTUIT(naam)))
            return true;
    return false;
}

enum class Uitkomst { verder, opnieuw, gewist };

// ENTER on a label: stored, or refused; `gewist`: the field begins empty.
Uitkomst neem_label(Raster& r, const char (&naam)[LABEL]) {
    const bool gebruikt = maat_in(r.gebruik, r.nu.maatnr);
    const std::string oud = label(r.nu);
    if (VASTLEEG(naam)) {
        if (gebruikt) {
            error("%s", TXT(T_MS_NIET_WEG));
            return Uitkomst::opnieuw;
        }
        haal_weg(r);
        r.p = std::min(r.p, r.aantal + 1);
        return Uitkomst::opnieuw;
    }
    if (VASTGELIJK(naam, oud))
        return Uitkomst::verder;
    if (gebruikt && !oud.empty() && oud[0] != '~') {
        error("%s", TXT(T_MS_NIET_ANDERS));
        return Uitkomst::opnieuw;
    }
    std::string vol(VASTUIT(naam));
    vol.resize(LABEL, ' ');
    if (komt_voor(r, naam)) {
        error("<%3.3s> %s", vol.c_str(), TXT(T_MS_KOMT_VOOR));
        return Uitkomst::gewist;
    }
    memcpy(r.nu.naam, vol.data(), LABEL);
    mtupdate(r.h, &r.nu);
    return Uitkomst::verder;
}

// The field on the cell, and what its key does. False: the edit ends.
bool veld(Raster& r, bool tussenvoegen, bool* gewist) {
    char naam[LABEL] = {};
    if (!*gewist)
        VASTIN(naam, label(r.nu));
    *gewist = false;
    SCHERM.toets[key_btab] = K_LEFT, SCHERM.toets[key_extra] = K_RIGHT;
    if (tussenvoegen)
        TOETSAAN(K_F8);
    INGAVE(celrij(r.p), celkolom(r.p), "3c,J", &SCHERM.toets[key_cancel], &SCHERM.toets[key_btab],
           &SCHERM.toets[key_extra], naam);
    SCHERM.toets[key_btab] = SCHERM.toets[key_extra] = 0;
    const int32_t toets = SCHERM.laatste;
    toon_cel(r.h, r.p);
    if (TOETSWEG())
        return false;
    if (toets == K_F8) {
        r.tussen += voeg_in(r, r.p);
    } else if (is_pijl(toets)) {
        opzij(r, toets);
    } else {
        const Uitkomst uit = neem_label(r, naam);
        toon_cel(r.h, r.p);
        *gewist = uit == Uitkomst::gewist;
        if (uit == Uitkomst::verder && r.p < MATEN)
            r.p++;
    }
    return true;
}

} // namespace

void maatcellen_toon(mthandle* h) {
    for (int p = 1; p <= MATEN; p++)
        toon_cel(h, p);
}

int maatcellen_aantal(mthandle* h) {
    mtinfo info{};
    return mtread(h, 'P', &info, 2) ? info.positie : 0; // from position 0: the last one
}

int maatcellen_bewerk(mthandle* h, const uint8_t* gebruik, int voetrij) {
    Raster r{h, gebruik, voetrij};
    r.aantal = maatcellen_aantal(h);
    for (bool door = true, gewist = false; door && sta(r);) {
        const bool tussenvoegen = !leeg(r) && r.aantal < MATEN;
        SCRCLREOL(voetrij, 1);
        if (tussenvoegen)
            SCRPUT(A_LABEL, voetrij, KOLOM, "%s", TXT(T_MS_TUSSENVOEGEN));
        if (!gewist && wacht(r))
            continue;
        door = veld(r, tussenvoegen, &gewist);
    }
    SCRCLREOL(voetrij, 1);
    if (r.nu.maatnr && leeg(r))
        haal_weg(r);
    return r.tussen;
}

} // namespace zg
