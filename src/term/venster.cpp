// The window stack: opening, closing, borders, cursor, attributes. Coordinates of callers are 1-based, those
// of ncurses 0-based; WINAT is the one place that turns one into the other.
#include "term/binnen.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

struct Kleuren {
    short grond, tekst, accent;
};
constexpr Kleuren KLEUREN[8] = {
    {COLOR_BLUE, COLOR_WHITE, COLOR_CYAN},  {COLOR_WHITE, COLOR_BLUE, COLOR_RED},
    {COLOR_BLACK, COLOR_CYAN, COLOR_WHITE}, {COLOR_BLACK, COLOR_YELLOW, COLOR_RED},
    {COLOR_BLACK, COLOR_WHITE, COLOR_CYAN}, {COLOR_BLUE, COLOR_WHITE, COLOR_CYAN},
    {COLOR_WHITE, COLOR_BLUE, COLOR_RED},   {COLOR_WHITE, COLOR_BLACK, COLOR_RED},
};

// Two pairs a stack level, no two levels sharing one: a deep window must not recolour those below it.
int tekst_paar(int index) {
    return index + 1;
}
int accent_paar(int index) {
    return index + 1 + VENSTERS;
}

bool cursor_aan = true;

bool verander_paar(int paar, short tekst, short grond) {
    return paar < COLOR_PAIRS && init_pair(static_cast<short>(paar), tekst, grond) == OK;
}

// The pair that an attribute takes in the window at a stack index.
int kleurpaar(int index, uint32_t attr) {
    if (!has_colors())
        return 0;
    bool accent = (attr & A_UNDERLINE) && !(attr & A_REVERSE);
    int paar = accent ? accent_paar(index) : tekst_paar(index);
    return paar < COLOR_PAIRS ? paar : 0;
}

bool is_std(WINDOW* win) {
    for (int i = 0; i < SCHERM.termaantal; i++)
        if (SCHERM.term[i].std == win)
            return true;
    return false;
}

} // namespace

bool LIJNTEKENS;

Venster& VENSTERNU() {
    return SCHERM.venster[SCHERM.huidig];
}

VENSTERP WINNU() {
    return SCHERM.bestaat && SCHERM.huidig >= 0 ? VENSTERNU().win : nullptr;
}

void TOONVANAF(int index) {
    for (int i = std::max(index, 0); i < SCHERM.aantal; i++) {
        touchwin(SCHERM.venster[i].win);
        wnoutrefresh(SCHERM.venster[i].win);
    }
}

void VENSTERRUIMTE() {
    if (SCHERM.aantal >= VENSTERS)
        SCRFATAL("WINOPEN : %s", TXT(T_TEVEEL_VENSTERS));
}

void VENSTERDUW(WINDOW* win, int soort) {
    int index = SCHERM.aantal++;
    SCHERM.huidig = index;
    SCHERM.soort = soort & 7;
    SCHERM.venster[index] = {win, SCHERM.termnu, SCHERM.basis, SCHERM.soort, 0};
    leaveok(win, FALSE);
    if (has_colors()) {
        const Kleuren& k = KLEUREN[SCHERM.soort];
        verander_paar(tekst_paar(index), k.tekst, k.grond);
        verander_paar(accent_paar(index), k.accent, k.grond);
    }
    SCRCLREOW(1, 1);
}

void WINOPEN(int rij, int kolom, int hoogte, int breedte, int soort) {
    if (!SCHERM.bestaat)
        return;
    VENSTERRUIMTE();
    // a window that doesn't fit is moved in and cut, rather than refused
    hoogte = std::clamp(hoogte, 1, SCHERM.lines);
    breedte = std::clamp(breedte, 1, SCHERM.cols);
    rij = std::clamp(rij, 1, SCHERM.lines - hoogte + 1);
    kolom = std::clamp(kolom, 1, SCHERM.cols - breedte + 1);
    if (SCHERM.huidig >= 0)
        wnoutrefresh(VENSTERNU().win);
    WINDOW* win = newwin(hoogte, breedte, rij - 1, kolom - 1);
    if (!win)
        SCRFATAL("WINOPEN : %s", TXT(T_ONVOLDOENDE_GEHEUGEN));
    VENSTERDUW(win, soort);
}

void WINCLOSE() {
    if (!SCHERM.bestaat || SCHERM.aantal <= 0)
        return;
    int boven = SCHERM.aantal - 1;
    Venster dicht = SCHERM.venster[boven];
    bool andere = boven > 0 && SCHERM.venster[boven - 1].term != dicht.term;
    if (andere) {
        ZEND("clear");
        ZEND("rs2");
        if (!is_std(dicht.win))
            delwin(dicht.win);
        SCHERM.statustekst[0] = 0;
        VARIANTAAN(SCHERM.venster[boven - 1].term);
    } else {
        int rij, kolom, hoogte, breedte;
        getbegyx(dicht.win, rij, kolom);
        getmaxyx(dicht.win, hoogte, breedte);
        for (int i = SCHERM.basis; i < boven; i++) {
            WINDOW* onder = SCHERM.venster[i].win;
            int van = std::max(rij - getbegy(onder), 0);
            int tot = std::min(rij + hoogte - getbegy(onder), getmaxy(onder));
            if (van < tot)
                touchline(onder, van, tot - van);
            wnoutrefresh(onder);
        }
        if (!is_std(dicht.win))
            delwin(dicht.win);
    }
    SCHERM.aantal = boven;
    SCHERM.huidig = boven - 1;
    if (boven == 0)
        return;
    Venster& nu = VENSTERNU();
    SCHERM.soort = nu.soort;
    if (nu.basis != SCHERM.basis) {
        SCHERM.basis = nu.basis;
        TOONVANAF(SCHERM.basis);
    }
    touchwin(nu.win);
}

void WINBOX(const char* fmt, ...) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    Venster& v = VENSTERNU();
    v.rand = 0;
    WINATTR(A_WAARDE);
    wborder_set(v.win, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (fmt) {
        char titel[256];
        va_list ap;
        va_start(ap, fmt);
        vsnprintf(titel, sizeof titel, fmt, ap);
        va_end(ap);
        int lengte = std::min(static_cast<int>(strlen(titel)), getmaxx(v.win));
        SCRPUT(A_WAARDE, 1, (getmaxx(v.win) - lengte) / 2 + 1, "%.*s", lengte, titel);
    }
    v.rand = 1;
}

void WINVOET(const char* tekst) {
    if (!SCHERM.bestaat || SCHERM.dicht || !VENSTERNU().rand)
        return;
    Venster& v = VENSTERNU();
    int rij, kolom;
    getyx(v.win, rij, kolom);
    const int ruimte = getmaxx(v.win) - 4, lengte = static_cast<int>(strlen(tekst)) + 2;
    v.rand = 0;
    if (lengte <= ruimte)
        SCRPUT(A_LABEL, getmaxy(v.win), getmaxx(v.win) - lengte - 1, " %s ", tekst);
    v.rand = 1;
    wmove(v.win, rij, kolom);
}

int WINHOOGTE() {
    return SCHERM.bestaat ? getmaxy(VENSTERNU().win) - 2 * VENSTERNU().rand : 0;
}

int WINBREEDTE() {
    return SCHERM.bestaat ? getmaxx(VENSTERNU().win) - 2 * VENSTERNU().rand : 0;
}

int WINAT(int rij, int kolom) {
    if (!SCHERM.bestaat || SCHERM.dicht || rij < 1 || kolom < 1 || rij > WINHOOGTE() || kolom > WINBREEDTE())
        return 0;
    int af = VENSTERNU().rand ? 0 : 1;
    wmove(VENSTERNU().win, rij - af, kolom - af);
    return 1;
}

int WINRIJ() {
    return SCHERM.bestaat ? getcury(VENSTERNU().win) + 1 - VENSTERNU().rand : 0;
}

int WINKOLOM() {
    return SCHERM.bestaat ? getcurx(VENSTERNU().win) + 1 - VENSTERNU().rand : 0;
}

void WINNAARSCHERM(int rij, int kolom, int* schermrij, int* schermkolom) {
    *schermrij = rij, *schermkolom = kolom;
    if (!SCHERM.bestaat)
        return;
    *schermrij += getbegy(VENSTERNU().win) + VENSTERNU().rand;
    *schermkolom += getbegx(VENSTERNU().win) + VENSTERNU().rand;
}

void WINATTR(uint32_t attr) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    WINDOW* win = VENSTERNU().win;
    int paar = kleurpaar(SCHERM.huidig, attr);
    LIJNTEKENS =
        (attr & A_ALTCHARSET) != 0; // each character decides for itself, so curses doesn't get the bit
    attr &= ~A_ALTCHARSET;
    wattr_set(win, attr, static_cast<short>(paar), nullptr);
    cchar_t blanco;
    setcchar(&blanco, L" ", A_NORMAL, static_cast<short>(paar), nullptr);
    wbkgrndset(win, &blanco);
    wattr_set(win, attr, static_cast<short>(paar), nullptr); // wbkgrndset has touched the colour
}

void WINCURSOR(int aan) {
    cursor_aan = aan != 0;
}

bool CURSORISAAN() {
    return cursor_aan;
}

} // namespace zg
