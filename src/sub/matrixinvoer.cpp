// A matrix on the screen and entered cell by cell, see sub/matrixinvoer.h.
#include "sub/matrixinvoer.h"
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/maatbalk.h"
#include "sub/matrixdeel.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace zg {
namespace {

// In front of the cells: the branch number on 3 columns, the mark of an excluded one, the row's sum to the cells.
constexpr int MARKKOLOM = 4;
constexpr int KOLVAN = 9, KOLVAN_KRAP = 8; // first column of the cells; where they are 4 wide

// ---- geometry

void kolommen(Matrixscherm* s, const aantalmatrix& m) {
    s->breedte = fmwidth(m);
    s->raster.kolommen = balk_kolommen();
    RASTERKOL(&s->raster, KOLVAN, WINBREEDTE(), s->breedte);
    if (s->raster.celbreedte < KOLVAN - MARKKOLOM)
        RASTERKOL(&s->raster, KOLVAN_KRAP, WINBREEDTE(), s->breedte);
}

void verbreed(Matrixscherm* s, const aantalmatrix& m) {
    if (fmwidth(m) <= s->breedte)
        return;
    RASTER* r = &s->raster;
    const int rij = RASTERRIJNU(r), kol = RASTERKOLNU(r), vast = r->vast;
    kolommen(s, m);
    RASTERCEL(r, rij, kol);
    r->vast = vast;
}

// ---- painting

// The row of totals that is being painted; the grid asks it by column.
const int32_t* totaalbeeld;

int64_t totaalwaarde(int kol) {
    return totaalbeeld[balk_maat(kol)];
}

// Digits of the sum of a row.
int cijfers(int64_t som) {
    return snprintf(nullptr, 0, "%" PRId64, som);
}

// The sum of a row, from a column up to the cells.
void teken_som(const Matrixscherm* s, int rij, int kolom, int64_t som) {
    const int breedte = s->raster.kolvan - kolom;
    char getal[24] = "";
    if (som != 0)
        snprintf(getal, sizeof getal, "%" PRId64, som);
    SCRPUT(A_WAARDE, rij, kolom, "%*s", breedte, static_cast<int>(strlen(getal)) <= breedte ? getal : "*");
}

// Number and sum of a branch never read as one: where the sum needs the column between them, the number moves to the
// left if it can, else the sum is too large.
bool wijkt(const Matrixscherm* s, int f, int64_t som) {
    return !fil_in(s->uitgesloten, f) && s->nummers[static_cast<size_t>(f)] < 100 &&
           cijfers(som) == s->raster.kolvan - MARKKOLOM;
}

void teken_filiaal(const Matrixscherm* s, const aantalmatrix& m, int f, int rij) {
    const RASTER* r = &s->raster;
    const int32_t som = matrix_cel(m, f, 0);
    matrix_nummer(s, m, A_LABEL, f, rij);
    if (fil_in(s->uitgesloten, f))
        SCRPUT(A_LABEL, rij, MARKKOLOM, "*");
    teken_som(s, rij, wijkt(s, f, som) ? MARKKOLOM : MARKKOLOM + 1, som);
    for (int kol = r->eerstekol; kol <= r->laatstekol; kol++)
        RASTERGETAL(r, A_WAARDE, rij, RASTERKOLPLAATS(r, kol), matrix_cel(m, f, balk_maat(kol)));
}

// A row of totals with its name, which makes room for a large sum.
void teken_totaal(const Matrixscherm* s, int rij, const char* naam, const int32_t* waarden) {
    SCRCLREOL(rij, 1);
    SCRPUT(A_LABEL, rij, 1, "%s", naam);
    teken_som(s, rij, cijfers(waarden[0]) < s->raster.kolvan - MARKKOLOM ? MARKKOLOM : 1, waarden[0]);
    totaalbeeld = waarden;
    RASTERTOTAAL(&s->raster, A_WAARDE, rij, totaalwaarde);
}

// ---- cell by cell

int rij_nu(const Matrixscherm* s) {
    return s->raster.vast & RASTER_RIJVAST ? int{firma.filialen} : RASTERRIJNU(&s->raster);
}

// The cell under the cursor as a field that shows `waarde`. What was entered goes to `neem`; what that refuses (and
// tells) is asked again. A field that is only passed is not entered. False when ESC or cancel left it, or ENTER in the
// last cell.
template <class N>
bool vraag_cel(Matrixscherm* s, const aantalmatrix& m, const int32_t* vrij, int32_t waarde, char richting,
               N neem) {
    RASTER* r = &s->raster;
    const int rij = rij_nu(s), kol = RASTERKOLNU(r);
    char formaat[24];
    snprintf(formaat, sizeof formaat, "%dl,JZP", r->celbreedte - 1);
    if (s->opgeefbaar)
        TOETSAAN(K_F6);
    RASTERINGAVE(r, rij == firma.filialen ? s->totaalrij : RASTERSCHERMRIJ(r), RASTERSCHERMKOL(r), formaat,
                 &SCHERM.toets[key_cancel], &waarde);
    const bool weg = TOETSWEG() || SCHERM.laatste == K_F6;
    bool door = !weg;
    if (!weg && (SCHERM.laatste == K_ENTER || (SCHERM.vlag & V_GEWIJZIGD))) {
        const bool genomen = neem(rij, balk_maat(kol), waarde);
        if (genomen) {
            verbreed(s, m);
        } else {
            RASTERCEL(r, rij, kol);
            SCHERM.laatste = 0; // whatever left it, it is asked again
        }
        door = !genomen || SCHERM.laatste != K_ENTER || RASTERENTER(r, richting);
    }
    matrix_beeld(s, m, vrij);
    return door;
}

// Everything free of a size in one branch, or a part of it: what is free falls by what the branch takes.
void neem_vrij(aantalmatrix* m, int32_t* vrij, int f, int maat, int32_t aantal) {
    const int32_t totaal = matrix_cel(*m, firma.filialen, maat);
    int32_t erbij = aantal - matrix_cel(*m, f, maat);
    if (totaal > 0 && aantal == totaal) {
        for (int g = 0; g < firma.filialen; g++) {
            matrix_cel(*m, g, 0) -= matrix_cel(*m, g, maat);
            matrix_cel(*m, g, maat) = 0;
        }
        erbij = aantal;
        vrij[0] -= vrij[maat];
        vrij[maat] = 0;
    } else {
        vrij[0] -= erbij;
        vrij[maat] -= erbij;
    }
    matrix_cel(*m, f, maat) += erbij;
    matrix_cel(*m, f, 0) += erbij;
}

bool verdeel_cel(aantalmatrix* m, int32_t* vrij, int f, int maat, int32_t aantal) {
    const int32_t totaal = matrix_cel(*m, firma.filialen, maat);
    if (aantal > totaal) {
        if (totaal >= 1)
            error("<%d> %s %d %s", aantal, TXT(T_MAXIMAAL), totaal, TXT(T_BESCHIKBAAR));
        else
            error("%s", TXT(T_MAAT_ZONDER));
        return false;
    }
    neem_vrij(m, vrij, f, maat, aantal);
    return true;
}

// Where too much was taken: the cursor goes there.
void naar_tekort(Matrixscherm* s, const int32_t* vrij) {
    for (int kol = 1; kol <= balk_kolommen(); kol++)
        if (vrij[balk_maat(kol)] < 0)
            return RASTERCEL(&s->raster, RASTERRIJNU(&s->raster), kol);
}

} // namespace

void matrix_begin(Matrixscherm* s, int koprij, int rijtot, const aantalmatrix& matrix) {
    const bool een = firma.filialen <= 1;
    s->raster = RASTER{};
    s->raster.laatsterij = std::max(0, firma.filialen - 1);
    s->koprij = koprij;
    s->totaalrij = een ? koprij + 1 : rijtot + 1;
    s->vrijrij = s->totaalrij + 1;
    s->nummers.clear();
    for (int f = 0; f < firma.filialen; f++)
        s->nummers.push_back(iofil_nummer(f));
    kolommen(s, matrix);
    RASTERRIJ(&s->raster, koprij + 1, een ? koprij + 2 : rijtot);
}

void matrix_teken(Matrixscherm* s, const aantalmatrix& matrix) {
    verbreed(s, matrix);
    matrix_beeld(s, matrix, nullptr);
}

void matrix_beeld(Matrixscherm* s, const aantalmatrix& m, const int32_t* vrij) {
    RASTER* r = &s->raster;
    SCHERM.ververst = time(nullptr); // the picture goes out whole, when the next key is waited for
    RASTERKOP(r, A_LABEL, s->koprij, balk_naam);
    SCRPUT(A_LABEL, s->koprij, 1, "%3s%*s", firma.filialen > 1 ? TXT(T_FIL) : "", r->kolvan - MARKKOLOM,
           TXT(T_TOT));
    for (int rij = r->rijvan; firma.filialen > 1 && rij <= r->rijtot; rij++) {
        SCRCLREOL(rij, 1);
        if (const int f = r->eersterij + rij - r->rijvan; f <= r->zichttot)
            teken_filiaal(s, m, f, rij);
    }
    teken_totaal(s, s->totaalrij, firma.filialen > 1 ? TXT(T_TOT) : "", matrix_totalen(m));
    if (vrij)
        teken_totaal(s, s->vrijrij, "+-", vrij);
    else if (firma.filialen > 1)
        SCRCLREOL(s->vrijrij, 1);
}

void matrix_nummer(const Matrixscherm* s, const aantalmatrix& m, uint32_t attr, int f, int rij) {
    SCRPUT(attr, rij, 1, "%*d", wijkt(s, f, matrix_cel(m, f, 0)) ? 2 : 3, s->nummers[static_cast<size_t>(f)]);
}

void matrix_hint(const char* tekst) {
    SCRCLREOL(WINHOOGTE(), 1);
    SCRPUT(A_LABEL, WINHOOGTE(), 2, "%s", tekst);
}

bool matrix_boek(const Matrixscherm* s, aantalmatrix* m, int rij, int maat, int64_t aantal) {
    const bool totaal = rij == firma.filialen;
    const int f = totaal ? matrix_magazijn(s) : rij;
    const int64_t was = matrix_cel(*m, rij, maat);
    // What the cell of the branch itself can't give; in its own row that is all below 0.
    const int64_t minst = totaal ? was - matrix_cel(*m, f, maat) : 0;
    const int64_t meest = was + s->meest - matrix_totalen(*m)[0];
    if (aantal < minst || (aantal > was && aantal > meest)) {
        const bool laag = aantal < minst;
        error("<%" PRId64 "> %s %" PRId64, aantal, TXT(laag ? T_MINIMAAL : T_MAXIMAAL), laag ? minst : meest);
        return false;
    }
    fmadd(m, f, maat, static_cast<int32_t>(aantal - was));
    return true;
}

void matrix_totalen(Matrixscherm* s, aantalmatrix* m) {
    if (!matrix_cellen_er())
        return;
    if (s->sneltoetsen)
        return matrixtoets_totalen(s, m);
    const bool leeg = fm_leeg(*m);
    matrix_hint("");
    int32_t vorige = 0; // an empty matrix: the number for this size is proposed for the next
    RASTERCEL(&s->raster, firma.filialen, 1);
    matrix_beeld(s, *m, nullptr);
    for (bool door = true; door;) {
        const int32_t totaal = matrix_totalen(*m)[balk_maat(RASTERKOLNU(&s->raster))];
        door = vraag_cel(s, *m, nullptr, leeg && totaal == 0 ? vorige : totaal, 'R',
                         [&](int rij, int maat, int32_t aantal) {
                             if (!matrix_boek(s, m, rij, maat, aantal))
                                 return false;
                             vorige = aantal;
                             return true;
                         });
    }
    s->raster.vast = 0;
}

void matrix_hand(Matrixscherm* s, aantalmatrix* m) {
    if (!matrix_cellen_er())
        return;
    if (s->sneltoetsen)
        return matrixtoets_hand(s, m);
    RASTER* r = &s->raster;
    const bool meer = firma.filialen > 1;
    int terug = RASTERRIJNU(r); // the row that TAB comes back to from the totals
    RASTERCEL(r, meer ? terug : int{firma.filialen}, RASTERKOLNU(r));
    matrix_hint(meer ? TXT(T_TAB_TOTALEN) : "");
    matrix_beeld(s, *m, nullptr);
    for (bool door = true; door;) {
        if (meer)
            TOETSAAN(K_TAB);
        door = vraag_cel(
            s, *m, nullptr, matrix_cel(*m, rij_nu(s), balk_maat(RASTERKOLNU(r))), 'R',
            [&](int rij, int maat, int32_t aantal) { return matrix_boek(s, m, rij, maat, aantal); });
        if (SCHERM.laatste != K_TAB)
            continue;
        if (r->vast & RASTER_RIJVAST) {
            RASTERCEL(r, terug, RASTERKOLNU(r));
        } else {
            terug = RASTERRIJNU(r);
            RASTERCEL(r, firma.filialen, RASTERKOLNU(r));
        }
        matrix_beeld(s, *m, nullptr);
    }
    r->vast = 0;
    matrix_hint("");
}

void matrix_verdeel(Matrixscherm* s, aantalmatrix* m, int bron, int rest) {
    if (!matrix_cellen_er())
        return;
    if (s->sneltoetsen)
        return matrixtoets_verdeel(s, m, bron);
    const aantalmatrix was = *m;
    int32_t vrij[MAATKOLOMMEN] = {};
    matrix_maak_vrij(m, bron, vrij);
    RASTER* r = &s->raster;
    RASTERCEL(r, RASTERRIJNU(r), RASTERKOLNU(r));
    matrix_hint("");
    for (;;) {
        matrix_beeld(s, *m, vrij);
        while (vraag_cel(
            s, *m, vrij, matrix_cel(*m, RASTERRIJNU(r), balk_maat(RASTERKOLNU(r))), 'D',
            [&](int rij, int maat, int32_t aantal) { return verdeel_cel(m, vrij, rij, maat, aantal); })) {
        }
        if (verdeel_sluit(m, vrij, rest))
            break;
        if (SCHERM.laatste == K_F6) {
            *m = was;
            break;
        }
        naar_tekort(s, vrij);
        error("%s", TXT(T_MEER_DAN_TOTAAL));
    }
    matrix_beeld(s, *m, nullptr);
}

void matrix_maak_vrij(aantalmatrix* m, int bron, int32_t* vrij) {
    for (int kol = 1; bron < firma.filialen && kol <= balk_kolommen(); kol++) {
        int32_t& cel = matrix_cel(*m, bron, balk_maat(kol));
        vrij[balk_maat(kol)] = cel;
        vrij[0] += cel;
        matrix_cel(*m, bron, 0) -= cel;
        cel = 0;
    }
}

bool verdeel_sluit(aantalmatrix* matrix, int32_t* vrij, int rest) {
    bool positief = false, negatief = false;
    for (int maat = 1; maat <= MATEN; maat++) {
        positief |= vrij[maat] > 0;
        negatief |= vrij[maat] < 0;
    }
    if (positief && !negatief && rest >= 0 && rest < firma.filialen) {
        for (int maat = 1; maat <= MATEN; maat++) {
            matrix_cel(*matrix, rest, maat) += vrij[maat];
            matrix_cel(*matrix, rest, 0) += vrij[maat];
        }
        memset(vrij, 0, MAATKOLOMMEN * sizeof *vrij);
        positief = false;
    }
    return !positief && !negatief;
}

} // namespace zg
