// Text on the screen. Every character goes through one table of 256 cells (tekenset.cpp), so no byte out of a data file
// reaches the terminal as a control or as a character that the terminal does not show in one column.
#include "term/binnen.h"
#include "term/teksten.h"
#include "term/uitvoer.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

int32_t tempo = 1; // seconds between refreshes during long output, -1 none
int uitgesteld;    // SCRAUTO waits
bool piep_later;   // a refused key's beep: when the keys that wait have been read
bool bezig_aan, bezig_staat;
int bezig_breedte = 15;
char tekst[4096]; // one formatted line; callers never nest

constexpr int BEZIG_MS = 100; // what takes less is not worth a word

cchar_t cel_van(uint8_t c) {
    TekenCel t = TEKENSETUIT(c);
    cchar_t cel{};
    if (t.lijn && NCURSES_WACS(t.lijn)->chars[0] != 0)
        cel = *NCURSES_WACS(t.lijn);
    else
        cel.chars[0] = t.teken;
    return cel;
}

// A cell's character in the bytes of the terminal.
void utf8(std::string& uit, char32_t u) {
    auto b = [&uit](char32_t x) { uit += static_cast<char>(static_cast<uint8_t>(x)); };
    if (u < 0x80)
        b(u);
    else if (u < 0x800)
        b(0xC0 | u >> 6), b(0x80 | (u & 63));
    else
        b(0xE0 | (u >> 12 & 15)), b(0x80 | (u >> 6 & 63)), b(0x80 | (u & 63));
}

// Characters that menus and lists draw by number with A_ALTCHARSET, beside the terminal's own line drawing.
cchar_t teken_cel(uint8_t c) {
    if (c < 128 && NCURSES_WACS(c)->chars[0] != 0)
        return *NCURSES_WACS(c);
    cchar_t cel = cel_van(c);
    if (c == 251) // the tick is not in code page 850
        cel.chars[0] = UTF8SCHERM() ? L'\u221A' : L'v';
    return cel;
}

// n bytes at the cursor in the window's attribute; the cursor stops behind them, at most on the last column.
void schrijf(WINDOW* win, const char* s, int n) {
    attr_t attr;
    short paar;
    wattr_get(win, &attr, &paar, nullptr);
    attr &= ~A_COLOR;
    int rij, kolom;
    getyx(win, rij, kolom);
    cchar_t cellen[256];
    n = std::min({n, getmaxx(win) - kolom, static_cast<int>(std::size(cellen))});
    for (int i = 0; i < n; i++) {
        uint8_t c = static_cast<uint8_t>(s[i]);
        cellen[i] = LIJNTEKENS ? teken_cel(c) : cel_van(c);
        cellen[i].attr = (cellen[i].attr & A_ALTCHARSET) | attr | static_cast<attr_t>(COLOR_PAIR(paar));
        cellen[i].ext_color = paar;
    }
    if (n > 0)
        wadd_wchnstr(win, cellen, n);
    wmove(win, rij, std::min(kolom + std::max(n, 0), getmaxx(win) - 1));
}

int opmaak(const char* fmt, va_list ap) {
    int n = vsnprintf(tekst, sizeof tekst, fmt, ap);
    return std::clamp(n, 0, static_cast<int>(sizeof tekst) - 1);
}

// The formatted text at a place of the current window, cut at its edge.
int plaats(uint32_t attr, int rij, int kolom, int lengte) {
    if (!WINAT(rij, kolom))
        return 0;
    lengte = std::min(lengte, WINBREEDTE() - kolom + 1);
    WINATTR(attr);
    schrijf(VENSTERNU().win, tekst, lengte);
    SCRAUTO();
    WINATTR(A_WAARDE);
    return lengte;
}

// A formatted text on the base window; the windows above it are staged again.
int op_basis(uint32_t attr, int rij, int kolom, int lengte) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return 0;
    uitgesteld++;
    SCHERM.huidig = SCHERM.basis;
    int n = plaats(attr, rij, kolom, lengte);
    SCHERM.huidig = SCHERM.aantal - 1;
    uitgesteld--;
    TOONVANAF(SCHERM.basis);
    SCRAUTO();
    return n;
}

// Where a hint of n characters covers nothing on the top row, as far to the right as can be, with a blank on either
// side; the row's end when there is no such place.
int hintplaats(WINDOW* basis, int n) {
    std::vector<cchar_t> rij(static_cast<size_t>(SCHERM.cols) + 1);
    mvwin_wchnstr(basis, 0, 0, rij.data(), SCHERM.cols);
    int vrij = 0;
    for (int k = SCHERM.cols - 1; k >= 0; k--) {
        vrij = rij[static_cast<size_t>(k)].chars[0] == L' ' ? vrij + 1 : 0;
        if (vrij == n + 2)
            return k + 1;
    }
    return SCHERM.cols - 1 - n;
}

} // namespace

void TEKENUIT(std::string& uit, wchar_t teken) {
    if (UTF8SCHERM()) {
        utf8(uit, static_cast<char32_t>(teken));
        return;
    }
    uit += static_cast<char>(static_cast<uint8_t>(teken));
}

int SCRPUT(uint32_t attr, int rij, int kolom, const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int n = opmaak(fmt, ap);
    va_end(ap);
    return plaats(attr, rij, kolom, n);
}

int SCRADD(const char* fmt, ...) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return 0;
    va_list ap;
    va_start(ap, fmt);
    int n = opmaak(fmt, ap);
    va_end(ap);
    n = std::clamp(WINBREEDTE() - WINKOLOM() + 1, 0, n);
    schrijf(VENSTERNU().win, tekst, n);
    SCRAUTO();
    return n;
}

int SCRBASE(uint32_t attr, int rij, int kolom, const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int n = opmaak(fmt, ap);
    va_end(ap);
    return op_basis(attr, rij, kolom, n);
}

void SCRHINT(const char* hint) {
    static std::vector<cchar_t> eronder; // with an end
    static int plaats;
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    WINDOW* basis = SCHERM.venster[SCHERM.basis].win;
    if (!eronder.empty())
        mvwadd_wchnstr(basis, 0, plaats, eronder.data(), -1);
    const int n = std::min(static_cast<int>(strlen(hint)), SCHERM.cols - 1);
    eronder.assign(n > 0 ? static_cast<size_t>(n) + 1 : 0, cchar_t{});
    if (n > 0) {
        plaats = hintplaats(basis, n);
        mvwin_wchnstr(basis, 0, plaats, eronder.data(), n);
        SCRBASE(A_KEUS, 1, plaats + 1, "%.*s", n, hint);
    }
    TOONVANAF(SCHERM.basis);
}

void SCRLIJN(uint32_t attr, int rij, int kolom, Lijnteken teken, int aantal) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    aantal = std::clamp(aantal, 0, 255);
    for (int i = 0; i < (teken == L_VERTICAAL ? aantal : 1); i++) {
        int n = teken == L_VERTICAAL ? 1 : aantal;
        memset(tekst, teken, static_cast<size_t>(n));
        plaats(attr | A_ALTCHARSET, rij + i, kolom, n);
    }
}

void SCRCLREOL(int rij, int kolom) {
    if (!WINAT(rij, kolom))
        return;
    WINATTR(A_LABEL);
    WINDOW* win = VENSTERNU().win;
    int y, x;
    getyx(win, y, x);
    wclrtoeol(win);
    if (VENSTERNU().rand) {
        WINATTR(A_WAARDE | A_ALTCHARSET);
        wmove(win, y, getmaxx(win) - 1);
        schrijf(win, "x", 1);
        WINATTR(A_LABEL);
        wmove(win, y, x);
    }
}

void SCRCLREOW(int rij, int kolom) {
    if (!WINAT(rij, kolom))
        return;
    WINATTR(A_LABEL);
    WINDOW* win = VENSTERNU().win;
    if (getcury(win) == 0 && getcurx(win) == 0) {
        werase(win);
    } else {
        SCRCLREOL(rij, kolom);
        for (int r = rij + 1; r <= WINHOOGTE(); r++)
            SCRCLREOL(r, 1);
    }
    WINATTR(A_WAARDE);
    WINAT(rij, kolom);
}

void SCRFLUSH(int seconden) {
    if (!SCHERM.bestaat)
        return;
    SEINSTOP();
    if (seconden > 0)
        TOONVENSTER(VENSTERNU().win);
    else
        TOONSTRAKS(VENSTERNU().win, 0);
    SCHERM.ververst = time(nullptr);
    // By the clock that nobody sets.
    for (timespec rest{seconden, 0}; seconden > 0 && !SCHERM.signaaltoets;) {
        int uit = nanosleep(&rest, &rest);
        SEINSTOP();
        if (uit == 0 || errno != EINTR)
            break;
    }
}

void SCRRATE(int seconden) {
    tempo = seconden < 0 ? -1 : seconden;
    SCHERM.ververst = time(nullptr);
}

void SCRAUTO() {
    if (!SCHERM.bestaat || SCHERM.dicht || uitgesteld || tempo < 0)
        return;
    if (tempo > 0) {
        time_t nu = time(nullptr);
        if (nu >= SCHERM.ververst && nu - SCHERM.ververst < tempo)
            return;
        SCHERM.ververst = nu;
    }
    SEINSTOP();
    TOONVENSTER(VENSTERNU().win);
}

void PIEPLAAT() {
    if (piep_later)
        PIEP();
    piep_later = false;
}

void PIEP() {
    if (SCHERM.bestaat && !SCHERM.dicht)
        SCHRIJFUIT("\a", 1);
}

void error(const char* fmt, ...) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    va_list ap;
    va_start(ap, fmt);
    int n = std::min(opmaak(fmt, ap), SCHERM.cols);
    va_end(ap);
    n = std::min(n, static_cast<int>(sizeof SCHERM.statustekst) - 1);
    std::string nieuw(tekst, static_cast<size_t>(n));
    int oud = static_cast<int>(strlen(SCHERM.statustekst));
    if (n == 0 && (oud == 0 || piep_later)) // what nobody has seen yet stays
        return;
    uitgesteld++;
    int huidig = SCHERM.huidig;
    SCHERM.huidig = SCHERM.basis;
    int rij, kolom; // where the window's cursor was: a field may be open there
    getyx(VENSTERNU().win, rij, kolom);
    memset(tekst, ' ', static_cast<size_t>(oud));
    if (oud > 0)
        plaats(A_WAARDE, SCHERM.lines, 1, oud);
    memcpy(tekst, nieuw.data(), nieuw.size());
    if (n > 0)
        plaats(A_WAARDE, SCHERM.lines, 1, n);
    wmove(VENSTERNU().win, rij, kolom);
    wnoutrefresh(VENSTERNU().win);
    SCHERM.huidig = huidig;
    uitgesteld--;
    memcpy(SCHERM.statustekst, nieuw.c_str(), nieuw.size() + 1);
    if (n > 0) {
        piep_later = true;
        if (!TOETSENWACHTEN())
            PIEPLAAT();
    }
}

void BEZIGTOON() {
    if (!bezig_aan || !SCHERM.bestaat || SCHERM.dicht)
        return;
    const char* geduld = TXT(T_EVEN_GEDULD);
    bezig_breedte = static_cast<int>(strnlen(geduld, 79));
    SCRBASE(A_WAARDE, SCHERM.lines, SCHERM.cols - bezig_breedte, "%.79s", geduld);
    bezig_staat = true;
    SEINSTOP();
    TOONSTRAKS(VENSTERNU().win, BEZIG_MS);
}

void BEZIGWIS() {
    if (bezig_staat)
        SCRBASE(A_WAARDE, SCHERM.lines, SCHERM.cols - bezig_breedte, "%*s", bezig_breedte, "");
    bezig_staat = false;
}

void BEZIGUIT() {
    BEZIGWIS();
    bezig_aan = false;
}

void BEZIGAAN() {
    BEZIGWIS();
    bezig_aan = true;
}

} // namespace zg
