// Rows of quantities on the screen: the list of rows, and the entry of one.
#include "shared/maatbalk.h"
#include "sub/reeksdelen.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr int BREEDTE = 80, LIJSTRIJ = 4, ONDER = 5; // the list's window: from row 4 to 5 rows from the foot
constexpr int KOP = 1, EERSTE = 2, LAATSTE = 9, TOTAALRIJ = 11, OVERRIJ = 12;
constexpr int INVOERHOOGTE = 6, I_TOTAAL = 2, I_RIJ = 3;        // the window of one row, at the foot
constexpr int NUMMER = 2, TOT = 5, TOTBREEDTE = 6, CELLEN = 11; // columns
constexpr int KOLTOT = BREEDTE - 3;

// The rows that are painted and totalled by the grid's routines, which get a column.
const int32_t* nu;

int64_t van_nu(int kol) {
    return nu[balk_maat(kol)];
}

// Pieces of the row on the bar.
int64_t som(const int32_t* rij) {
    int64_t s = 0;
    for (int kol = 1; kol <= balk_kolommen(); kol++)
        s += rij[balk_maat(kol)];
    return s;
}

// `breed`: digits of the widest cell.
RASTER raster(int rijen, int eerste, int laatste, int breed) {
    RASTER r{};
    r.kolommen = balk_kolommen();
    r.laatsterij = std::max(rijen - 1, 0);
    RASTERKOL(&r, CELLEN, KOLTOT, breed);
    RASTERRIJ(&r, eerste, laatste);
    return r;
}

void toon_kop(RASTER* r) {
    SCRCLREOL(KOP, 1);
    RASTERKOP(r, A_LABEL, KOP, balk_naam);
    SCRPUT(A_LABEL, KOP, TOT, "%*s", TOTBREEDTE, TXT(T_TOT));
}

void toon_som(uint32_t attr, int rij, int64_t waarde) {
    char getal[24];
    snprintf(getal, sizeof getal, "%ld", static_cast<long>(waarde));
    SCRPUT(attr, rij, TOT, "%*s", TOTBREEDTE, strlen(getal) > size_t{TOTBREEDTE} ? "*" : getal);
}

void toon_rij(const RASTER& r, uint32_t attr, int rij, const char* voor, const int32_t* cellen) {
    SCRCLREOL(rij, 1);
    SCRPUT(attr, rij, NUMMER, "%3.3s", voor);
    toon_som(attr, rij, som(cellen));
    for (int kol = r.eerstekol; kol <= r.laatstekol; kol++)
        RASTERGETAL(&r, attr, rij, RASTERKOLPLAATS(&r, kol), cellen[balk_maat(kol)]);
}

void toon_totaal(const RASTER& r, int rij, const char* voor, const int32_t* cellen) {
    SCRCLREOL(rij, 1);
    if (!cellen)
        return;
    SCRPUT(A_LABEL, rij, NUMMER, "%3.3s", voor);
    toon_som(A_LABEL, rij, som(cellen));
    nu = cellen;
    RASTERTOTAAL(&r, A_LABEL, rij, van_nu);
}

void toon_lijst(RASTER* r, const Reekslijst& l, const std::vector<Reeksregel>& regels) {
    toon_kop(r);
    for (int i = 0; i <= LAATSTE - EERSTE; i++) {
        const int rij = EERSTE + i, n = r->eersterij + i;
        SCRCLREOL(rij, 1);
        if (n > r->zichttot || n >= static_cast<int>(regels.size()))
            continue;
        const Reeksregel& regel = regels[static_cast<size_t>(n)];
        toon_rij(*r, n == RASTERRIJNU(r) ? A_KEUS : A_WAARDE, rij,
                 regel.nr ? std::to_string(regel.nr).c_str() : "", regel.rij.data());
    }
    toon_totaal(*r, TOTAALRIJ, TXT(T_TOT), l.totalen);
    toon_totaal(*r, OVERRIJ, "+-", l.over);
    SCRCLREOL(REEKSDETAILRIJ, 1);
    if (l.detail && !regels.empty())
        SCRPUT(A_WAARDE, REEKSDETAILRIJ, REEKSKOLOM, "%s",
               l.detail(regels[static_cast<size_t>(RASTERRIJNU(r))].rij).c_str());
}

RASTER lijstraster(const Reekslijst& l, const std::vector<Reeksregel>& regels, size_t cursor) {
    int breed = l.totalen ? fmwidth(l.totalen) : 0;
    for (const Reeksregel& regel : regels)
        breed = std::max(breed, fmwidth(regel.rij.data()));
    RASTER r = raster(static_cast<int>(regels.size()), EERSTE, LAATSTE, breed);
    RASTERCEL(&r, static_cast<int>(cursor), 1);
    return r;
}

// A key that moves in the list.
void beweeg(RASTER* r, int32_t toets) {
    switch (toets) {
    case K_UP:
    case K_DOWN: {
        const int rij = RASTERRIJNU(r) + (toets == K_UP ? -1 : 1);
        if (rij >= 0 && rij <= r->laatsterij)
            RASTERCEL(r, rij, RASTERKOLNU(r));
        break;
    }
    case K_PGUP:
        RASTERSTAP(r, 'U');
        break;
    case K_PGDN:
        RASTERSTAP(r, 'D');
        break;
    case K_F7:
        RASTERSTAP(r, 'L');
        break;
    case K_F8:
        RASTERSTAP(r, 'R');
        break;
    }
}

int invoerbreedte(const Reeksinvoer& in, const reeksrij& rij) {
    return std::max(in.totalen ? fmwidth(in.totalen) : 0, fmwidth(rij.data()));
}

} // namespace

void reekslijst_open(const Reekslijst& lijst) {
    WINOPEN1(LIJSTRIJ, 1, SCHERM.lines - ONDER - LIJSTRIJ + 1, BREEDTE);
    WINBOX("%s", lijst.titel.c_str());
}

void reekslijst_toon(const Reekslijst& lijst, const std::vector<Reeksregel>& regels, size_t cursor) {
    RASTER r = lijstraster(lijst, regels, cursor);
    toon_lijst(&r, lijst, regels);
}

int reekslijst_kies(const Reekslijst& l, const std::vector<Reeksregel>& regels, size_t* cursor) {
    RASTER r = lijstraster(l, regels, *cursor);
    for (;;) {
        toon_lijst(&r, l, regels);
        int eerste = -1;
        KEUZESTART(l.keuzetekst);
        for (int k = 0; k < l.keuzes; k++) {
            if (!l.keuzetekst(k))
                continue;
            KEUZEAAN(k);
            eerste = eerste < 0 ? k : eerste;
        }
        KEUZEVAST(eerste);
        for (int32_t toets : {K_CANCEL, K_F3, K_UP, K_DOWN, K_PGUP, K_PGDN})
            TOETSAAN(toets);
        if (r.eerstekol > 1)
            TOETSAAN(K_F7);
        if (r.laatstekol < r.kolommen)
            TOETSAAN(K_F8);
        int keus = KEUZE(REEKSKEUSRIJ, REEKSKOLOM);
        if (keus < 0 && SCHERM.laatste == K_F3)
            keus = eerste;
        *cursor = static_cast<size_t>(RASTERRIJNU(&r));
        if (keus >= 0 || TOETSWEG())
            return keus;
        beweeg(&r, SCHERM.laatste);
    }
}

void reeks_venster(const Reeksinvoer& in, const reeksrij& rij) {
    WINOPEN1(SCHERM.lines - INVOERHOOGTE, 1, INVOERHOOGTE, BREEDTE);
    WINBOX("%s", in.titel.c_str());
    RASTER r = raster(1, I_RIJ, I_RIJ, invoerbreedte(in, rij));
    toon_kop(&r);
    toon_totaal(r, I_TOTAAL, TXT(T_TOT), in.totalen);
    toon_rij(r, A_WAARDE, I_RIJ, "", rij.data());
}

int reeks_boven_totaal(const reeksrij& rij, const int32_t* totalen) {
    for (int kol = 1; totalen && kol <= balk_kolommen(); kol++) {
        const int maat = balk_maat(kol);
        if (rij[static_cast<size_t>(maat)] > std::max(totalen[maat], 0)) {
            error(TXT(T_REEKS_MEER_DAN), totalen[maat]);
            return maat;
        }
    }
    return 0;
}

bool reeks_invoer(const Reeksinvoer& in, reeksrij* rij) {
    RASTER r = raster(1, I_RIJ, I_RIJ, invoerbreedte(in, *rij));
    char formaat[24];
    snprintf(formaat, sizeof formaat, "%dd,ZPJ", r.celbreedte - 1);
    for (;;) {
        const int kol = RASTERKOLNU(&r), maat = balk_maat(kol);
        int32_t& cel = (*rij)[static_cast<size_t>(maat)];
        if (r.herteken) {
            toon_kop(&r);
            toon_totaal(r, I_TOTAAL, TXT(T_TOT), in.totalen);
        }
        toon_rij(r, A_WAARDE, I_RIJ, "", rij->data());
        const bool f5 = in.vervang && maat_in(in.f5, maat);
        SCRCLREOL(REEKSVRAAGRIJ, 1);
        if (f5) {
            SCRPUT(A_LABEL, REEKSVRAAGRIJ, BREEDTE - 2 - static_cast<int>(strlen(TXT(T_REEKS_F5))), "%s",
                   TXT(T_REEKS_F5));
            TOETSAAN(K_F5);
        }
        if (in.afbreekbaar)
            TOETSAAN(K_F6);
        r.vast = RASTER_RIJVAST | (som(rij->data()) > 0 ? 0 : RASTER_KOLVAST);
        auto aantal = static_cast<int16_t>(std::clamp(cel, 0, REEKSMAX));
        RASTERINGAVE(&r, RASTERSCHERMRIJ(&r), RASTERSCHERMKOL(&r), formaat, &SCHERM.toets[key_cancel],
                     &aantal);
        const int32_t toets = SCHERM.laatste;
        if (TOETSWEG())
            return true;
        if (toets == K_F6 && in.afbreekbaar) {
            if (JNVRAAG(REEKSVRAAGRIJ, REEKSKOLOM, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)))
                return false;
            continue;
        }
        if (toets == K_F5 && f5) {
            reeksrij ander{};
            if (in.vervang(&ander) && reeks_boven_totaal(ander, in.totalen) == 0) {
                *rij = ander;
                return true;
            }
            continue;
        }
        if (in.totalen && aantal > std::max(in.totalen[maat], 0)) {
            error(TXT(T_REEKS_MEER_DAN), in.totalen[maat]);
            RASTERCEL(&r, 0, kol);
            r.herteken = 1;
            continue;
        }
        cel = aantal;
        reeks_tel(rij);
        if (toets != K_ENTER)
            continue;
        if (kol < r.kolommen)
            RASTERCEL(&r, 0, kol + 1);
        else if (in.doorlopend)
            RASTERCEL(&r, 0, 1);
        else
            return true;
    }
}

} // namespace zg
