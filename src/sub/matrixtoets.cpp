// A matrix entered key by key: arrows choose the branch, a letter the size on the screen, and each press adds the step
// (Eenheid), which is typed in between and kept from one screen to the next.
#include "shared/maatbalk.h"
#include "sub/matrixdeel.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr int EENHEID_MEEST = 999;
constexpr int CEL_MEEST = 9999, TOTAAL_MEEST = 999;
constexpr int VRAAGRIJ = 1;

int eenheid = 1;
bool vers = true; // the next digit begins a new step

void teken_letters(const Matrixscherm* s) {
    const RASTER* r = &s->raster;
    SCRCLREOL(s->vrijrij, 1);
    const int n = static_cast<int>(strlen(s->sneltoetsen));
    for (int i = 0; i < n && r->eerstekol + i <= r->laatstekol; i++)
        SCRPUT(A_LABEL, s->vrijrij, RASTERKOLPLAATS(r, r->eerstekol + i), "%*c", r->celbreedte - 1,
               s->sneltoetsen[i]);
}

void teken(Matrixscherm* s, const aantalmatrix& m, bool totalen, bool met_f5) {
    const RASTER* r = &s->raster;
    matrix_teken(s, m);
    teken_letters(s);
    SCRCLREOL(VRAAGRIJ, 1);
    SCRPUT(A_LABEL, VRAAGRIJ, 2, "%s", TXT(T_EENHEID));
    SCRPUT(A_WAARDE, VRAAGRIJ, 10, "%4d", eenheid);
    if (met_f5)
        SCRPUT(A_LABEL, VRAAGRIJ, 17, "%s", TXT(T_F5_VOORVERDELING));
    const int rij = totalen ? s->totaalrij : RASTERSCHERMRIJ(r);
    if (!totalen)
        matrix_nummer(s, m, A_WAARDE_KEUS, RASTERRIJNU(r), rij);
    WINAT(rij, std::max(1, r->kolvan - 1));
}

// A digit, '-' or '=' changes the step; false for any other key.
bool stap_toets(int32_t key) {
    if (key == '-') {
        eenheid = -eenheid;
    } else if (key == '=') {
        eenheid = 1;
        vers = true;
    } else if (key >= '0' && key <= '9') {
        const int n = (vers ? 0 : abs(eenheid) * 10) + key - '0';
        if (n == 0 || n > EENHEID_MEEST) {
            error("<%c> %s", static_cast<int>(key), TXT(T_ALLEEN_EENHEID));
            return true;
        }
        eenheid = eenheid < 0 ? -n : n;
        vers = false;
    } else {
        return false;
    }
    return true;
}

bool loop_toets(RASTER* r, int32_t key, bool totalen) {
    switch (key) {
    case K_UP:
    case K_DOWN:
        if (!totalen)
            RASTERGA(r, key == K_UP ? 'U' : 'D');
        return true;
    case K_PGUP:
    case K_PGDN:
        if (!totalen)
            RASTERSTAP(r, key == K_PGUP ? 'U' : 'D');
        return true;
    case K_F7:
    case K_LEFT:
        RASTERSTAP(r, 'L');
        return true;
    case K_F8:
    case K_RIGHT:
        RASTERSTAP(r, 'R');
        return true;
    }
    return false;
}

// The keys of one screen; `neem` books the step on a branch (or the totals) and a size. `f5`: that key leaves while
// nothing has been entered.
template <class N> void lus(Matrixscherm* s, aantalmatrix* m, bool totalen, bool f5, N neem) {
    RASTER* r = &s->raster;
    RASTERCEL(r, totalen ? int{firma.filialen} : RASTERRIJNU(r), 0);
    vers = true;
    matrix_hint("");
    BEZIGWIS();
    for (;;) {
        const bool met_f5 = f5 && fm_leeg(*m);
        teken(s, *m, totalen, met_f5);
        const int32_t key = TOETS();
        error("%s", "");
        if (key == K_CANCEL || key == K_ESC || (key == K_F5 && met_f5) || (key == K_F6 && s->opgeefbaar)) {
            SCHERM.laatste = key;
            break;
        }
        if (loop_toets(r, key, totalen) || stap_toets(key))
            continue;
        if (const int kol = RASTERLETTER(r, key, s->sneltoetsen)) {
            neem(totalen ? int{firma.filialen} : RASTERRIJNU(r), balk_maat(kol));
            vers = true;
        }
    }
    BEZIGTOON();
    r->vast = 0;
    SCRCLREOL(VRAAGRIJ, 1);
    SCRCLREOL(s->vrijrij, 1);
    matrix_teken(s, *m);
}

void voeg_toe(const Matrixscherm* s, aantalmatrix* m, int rij, int maat, int meest) {
    const int64_t nieuw = int64_t{matrix_cel(*m, rij, maat)} + eenheid;
    if (eenheid > 0 && nieuw > meest)
        error("%s %d", TXT(T_MAXIMAAL), meest);
    else
        matrix_boek(s, m, rij, maat, nieuw);
}

// From the source to a branch, or back; the totals stay.
void verplaats(aantalmatrix* m, int bron, int f, int maat) {
    const int64_t blijft = int64_t{matrix_cel(*m, bron, maat)} - eenheid;
    const int64_t nieuw = int64_t{matrix_cel(*m, f, maat)} + eenheid;
    if (blijft < 0)
        error("%s", TXT(matrix_totalen(*m)[maat] < 1 ? T_MAAT_ZONDER : T_MAAT_VERDEELD));
    else if (nieuw < 0)
        error("<%d> %s %d", static_cast<int>(nieuw), TXT(T_MINIMAAL), 0);
    else if (eenheid > 0 && nieuw > CEL_MEEST)
        error("%s %d", TXT(T_MAXIMAAL), CEL_MEEST);
    else {
        fmadd(m, bron, maat, -eenheid);
        fmadd(m, f, maat, eenheid);
    }
}

} // namespace

void matrixtoets_totalen(Matrixscherm* s, aantalmatrix* m) {
    lus(s, m, true, true, [&](int rij, int maat) { voeg_toe(s, m, rij, maat, TOTAAL_MEEST); });
}

void matrixtoets_hand(Matrixscherm* s, aantalmatrix* m) {
    if (firma.filialen == 1)
        return matrixtoets_totalen(s, m);
    lus(s, m, false, false, [&](int rij, int maat) { voeg_toe(s, m, rij, maat, CEL_MEEST); });
}

void matrixtoets_verdeel(Matrixscherm* s, aantalmatrix* m, int bron) {
    if (bron < 0 || bron >= firma.filialen)
        return;
    lus(s, m, false, false, [&](int rij, int maat) {
        if (rij == bron)
            voeg_toe(s, m, rij, maat, CEL_MEEST);
        else
            verplaats(m, bron, rij, maat);
    });
}

} // namespace zg
