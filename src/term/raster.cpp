// RASTER, see term/raster.h: what is visible, where the cursor goes, and the cell as a field.
#include "term/raster.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string>

namespace zg {
namespace {

constexpr int RUIM = 5, KRAP = 4; // widths of a column
constexpr int MINST = 3;          // columns of an area: one, and a place for either marker
constexpr int ALLESVAST = RASTER_KOLVAST | RASTER_RIJVAST;

// Columns that fit in the area, markers included.
int passend(const RASTER* r) {
    return std::max(MINST, (r->koltot - r->kolvan + 1) / r->celbreedte);
}

// The last visible column and row, from the first; the cursor into the page. Of the columns that fit one is kept
// for each marker that shows.
void zichtbaar(RASTER* r, int kol, int rij) {
    r->laatstekol = r->eerstekol + passend(r) - MINST;
    r->laatstekol += r->eerstekol < 2;
    r->laatstekol += r->laatstekol >= r->kolommen - 1;
    r->laatstekol = std::min(r->laatstekol, r->kolommen);
    r->zichttot = std::min(r->eersterij + r->rijtot - r->rijvan, r->laatsterij);
    r->kolcursor = std::max(0, std::min(kol, r->laatstekol) - r->eerstekol);
    r->rijcursor = std::max(0, std::min(rij, r->zichttot) - r->eersterij);
    r->herteken = 1;
}

// Does a step leave this row for another, or this column, which may be locked?
bool naar_rij(const RASTER* r) {
    return (r->vast & ALLESVAST) != RASTER_RIJVAST;
}
bool naar_kolom(const RASTER* r) {
    return (r->vast & ALLESVAST) != RASTER_KOLVAST;
}

// The cell one step further; false at the end of the table.
bool volgende(const RASTER* r, char richting, int* rij, int* kol) {
    switch (richting) {
    case 'L':
        if (*kol > 1)
            --*kol;
        else if (*rij > 0 && naar_rij(r))
            --*rij, *kol = r->kolommen;
        else
            return false;
        return true;
    case 'R':
        if (*kol < r->kolommen)
            ++*kol;
        else if (*rij < r->laatsterij && naar_rij(r))
            ++*rij, *kol = 1;
        else
            return false;
        return true;
    case 'U':
        if (*rij > 0)
            --*rij;
        else if (*kol > 1 && naar_kolom(r))
            --*kol, *rij = r->laatsterij;
        else
            return false;
        return true;
    case 'D':
        if (*rij < r->laatsterij)
            ++*rij;
        else if (*kol < r->kolommen && naar_kolom(r))
            ++*kol, *rij = 0;
        else
            return false;
        return true;
    }
    return false;
}

bool kan(const RASTER* r, char richting) {
    if (richting == 'L' || richting == 'R' ? (r->vast & RASTER_KOLVAST) != 0
                                           : (r->vast & RASTER_RIJVAST) != 0)
        return false;
    int rij = RASTERRIJNU(r), kol = RASTERKOLNU(r);
    return volgende(r, richting, &rij, &kol);
}

// The cursor on a cell, paged until it is on the screen.
void wandel(RASTER* r, int rij, int kol) {
    while (kol > r->laatstekol && r->laatstekol < r->kolommen)
        RASTERSTAP(r, 'R');
    while (kol < r->eerstekol && r->eerstekol > 1)
        RASTERSTAP(r, 'L');
    while (rij > r->zichttot && r->zichttot < r->laatsterij)
        RASTERSTAP(r, 'D');
    while (rij < r->eersterij)
        RASTERSTAP(r, 'U');
    r->kolcursor = kol - r->eerstekol;
    r->rijcursor = rij - r->eersterij;
}

void tekst(const RASTER* r, uint32_t attr, int rij, int kolom, const char* wat) {
    const int b = r->celbreedte - 1;
    SCRPUT(attr, rij, kolom, "%*.*s", b, b, wat);
}

} // namespace

void RASTERKOL(RASTER* r, int kolvan, int koltot, int minbreedte) {
    r->kolvan = kolvan, r->koltot = koltot;
    r->celbreedte = std::max(kolvan - 1 + r->kolommen * RUIM > koltot ? KRAP : RUIM, minbreedte + 1);
    while (r->celbreedte > 2 && (koltot - kolvan + 1) / r->celbreedte < MINST)
        r->celbreedte--;
    r->eerstekol = 1;
    zichtbaar(r, 1, RASTERRIJNU(r));
}

void RASTERRIJ(RASTER* r, int rijvan, int rijtot) {
    r->rijvan = rijvan, r->rijtot = std::max(rijvan, rijtot);
    r->eersterij = 0;
    zichtbaar(r, RASTERKOLNU(r), 0);
}

void RASTERSTAP(RASTER* r, char richting) {
    const int verder = passend(r) - 2;
    int kol = RASTERKOLNU(r), rij = r->rijcursor;
    if (richting == 'R' && r->laatstekol < r->kolommen) {
        r->eerstekol = r->laatstekol + 1;
        kol += verder;
    } else if (richting == 'L' && r->eerstekol > 1) {
        r->eerstekol -= verder;
        if (r->eerstekol <= 2)
            r->eerstekol = 1;
        kol -= verder;
    } else if (richting == 'D' && r->zichttot < r->laatsterij) {
        r->eersterij = r->zichttot + 1;
    } else if (richting == 'U' && r->eersterij > 0) {
        r->eersterij = std::max(0, r->eersterij - (r->rijtot - r->rijvan + 1));
    } else {
        return;
    }
    zichtbaar(r, kol, r->eersterij + rij);
}

int RASTERGA(RASTER* r, char richting) {
    int rij = RASTERRIJNU(r), kol = RASTERKOLNU(r);
    if (!volgende(r, richting, &rij, &kol))
        return 0;
    wandel(r, rij, kol);
    return 1;
}

void RASTERCEL(RASTER* r, int rij, int kol) {
    r->vast = (rij > r->laatsterij ? RASTER_RIJVAST : 0) | (kol == 0 ? RASTER_KOLVAST : 0);
    wandel(r, rij > r->laatsterij ? 0 : std::max(rij, 0), std::clamp(kol, 1, std::max(r->kolommen, 1)));
}

int RASTERENTER(RASTER* r, char richting) {
    if (SCHERM.laatste != K_ENTER)
        return 0;
    const int vast = r->vast & ALLESVAST;
    if (vast == RASTER_RIJVAST)
        richting = 'R';
    else if (vast == RASTER_KOLVAST)
        richting = 'D';
    return vast == ALLESVAST || kan(r, richting) ? RASTERGA(r, richting) : 0;
}

int RASTERSCHERMRIJ(const RASTER* r) {
    return r->rijvan + r->rijcursor;
}

int RASTERSCHERMKOL(const RASTER* r) {
    return RASTERKOLPLAATS(r, RASTERKOLNU(r));
}

int RASTERKOLPLAATS(const RASTER* r, int kol) {
    return r->kolvan + 1 + r->celbreedte * (kol - r->eerstekol + (r->eerstekol >= 2));
}

void RASTERKOP(RASTER* r, uint32_t attr, int rij, const char* (*naam)(int kol)) {
    SCRCLREOL(rij, r->kolvan);
    if (r->eerstekol > 1)
        tekst(r, attr, rij, r->kolvan + 1, "<<");
    for (int kol = r->eerstekol; kol <= r->laatstekol; kol++) {
        std::string kaal = naam(kol);
        kaal.erase(kaal.find_last_not_of(' ') + 1);
        tekst(r, attr, rij, RASTERKOLPLAATS(r, kol), kaal.c_str());
    }
    if (r->laatstekol < r->kolommen)
        tekst(r, attr, rij, RASTERKOLPLAATS(r, r->laatstekol + 1), ">>");
    r->herteken = 0;
}

void RASTERTOTAAL(const RASTER* r, uint32_t attr, int rij, int64_t (*waarde)(int kol)) {
    auto som = [&](int van, int tot) {
        int64_t s = 0;
        for (int kol = van; kol <= tot; kol++)
            s += waarde(kol);
        return s;
    };
    if (r->eerstekol > 1)
        RASTERGETAL(r, attr, rij, r->kolvan + 1, som(1, r->eerstekol - 1));
    for (int kol = r->eerstekol; kol <= r->laatstekol; kol++)
        RASTERGETAL(r, attr, rij, RASTERKOLPLAATS(r, kol), waarde(kol));
    if (r->laatstekol < r->kolommen)
        RASTERGETAL(r, attr, rij, RASTERKOLPLAATS(r, r->laatstekol + 1), som(r->laatstekol + 1, r->kolommen));
}

void RASTERGETAL(const RASTER* r, uint32_t attr, int rij, int kolom, int64_t waarde) {
    char getal[24] = "";
    if (waarde != 0)
        snprintf(getal, sizeof getal, "%" PRId64, waarde);
    tekst(r, attr, rij, kolom, static_cast<int>(strlen(getal)) < r->celbreedte ? getal : "*");
}

void RASTERINGAVEBEGIN(RASTER* r) {
    SCHERM.toets[key_btab] = SCHERM.toets[key_extra] = 0;
    r->mogelijk = (kan(r, 'L') ? RASTER_LINKS : 0) | (kan(r, 'R') ? RASTER_RECHTS : 0) |
                  (kan(r, 'U') ? RASTER_OP : 0) | (kan(r, 'D') ? RASTER_NEER : 0);
    if (!(r->vast & RASTER_KOLVAST)) {
        SCHERM.toets[key_btab] = K_LEFT, SCHERM.toets[key_extra] = K_RIGHT;
        TOETSAAN(K_LEFT), TOETSAAN(K_RIGHT);
    }
    if (r->eerstekol > 1)
        TOETSAAN(K_F7);
    if (r->laatstekol < r->kolommen)
        TOETSAAN(K_F8);
    if (r->vast & RASTER_RIJVAST)
        return;
    TOETSAAN(K_UP), TOETSAAN(K_DOWN);
    if (r->eersterij > 0)
        TOETSAAN(K_PGUP);
    if (r->zichttot < r->laatsterij)
        TOETSAAN(K_PGDN);
}

void RASTERINGAVEEIND(RASTER* r) {
    static constexpr struct {
        int32_t toets;
        char richting;
        int32_t mogelijk; // 0: a page
    } WEGEN[] = {{K_PGUP, 'U', 0},
                 {K_PGDN, 'D', 0},
                 {K_F7, 'L', 0},
                 {K_F8, 'R', 0},
                 {K_UP, 'U', RASTER_OP},
                 {K_DOWN, 'D', RASTER_NEER},
                 {K_LEFT, 'L', RASTER_LINKS},
                 {K_RIGHT, 'R', RASTER_RECHTS}};
    for (const auto& weg : WEGEN) {
        if (SCHERM.laatste != weg.toets)
            continue;
        if (weg.mogelijk == 0)
            RASTERSTAP(r, weg.richting);
        else if (r->mogelijk & weg.mogelijk)
            RASTERGA(r, weg.richting);
    }
    SCHERM.toets[key_btab] = SCHERM.toets[key_extra] = 0;
}

int RASTERLETTER(const RASTER* r, int32_t toets, const char* toetsen) {
    const int n = std::min(static_cast<int>(strlen(toetsen)), r->laatstekol - r->eerstekol + 1);
    auto groot = [](int32_t key) { return NGROOT(static_cast<uint8_t>(key)); };
    const bool teken = toets > ' ' && toets <= 255;
    for (int i = 0; teken && i < n; i++)
        if (groot(toets) == groot(toetsen[i]))
            return r->eerstekol + i;
    if (teken && n > 0)
        error("<%c> %s %c-%c", static_cast<int>(toets), TXT(T_ALLEEN_EENHEID_OF), toetsen[0], toetsen[n - 1]);
    else
        error("%s", TXT(T_ONGELDIGE_TOETS));
    return 0;
}

} // namespace zg
