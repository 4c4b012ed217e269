// Screen, windows and the status line on ncurses: one global record, a stack of at most 15 windows, terminal
// variants "", "-w" and "-l". Rows and columns are 1-based; inside a bordered window (1, 1) is the first cell
// inside the border. Texts are code page 850; conversion happens here, at the edge. Keys: term/toets.h.
#pragma once
#include <cstdarg>
#include <cstdint>
#include <ctime>

struct _win_st;
struct screen;

namespace zg {

using VENSTERP = struct _win_st*; // ncurses WINDOW*

// Attribute words of the screen routines (ncurses attribute values).
enum Attribuut : uint32_t {
    A_LABEL = 0x100000,
    A_WAARDE = 0x200000,
    A_KEUS = 0x40000,
    A_WAARSCHUWING = 0x80000,
    A_MENUBALK = 0x140000,
    A_SNELLETTER = 0x220000,
    A_WAARDE_KEUS = 0x240000,
    A_LIJN_LABEL = 0x500000,
    A_LIJN_WAARDE = 0x600000,
};

// Slots of the key table; callers pass &SCHERM.toets[key_f5].
enum ToetsSlot {
    key_cancel = 0,
    key_tab = 1,
    key_help = 2,
    key_up = 3,
    key_down = 4,
    key_pgup = 5,
    key_pgdn = 6,
    key_esc = 7,
    key_btab = 8,
    key_extra = 9,
    key_f1 = 12,
    key_f2,
    key_f3,
    key_f4,
    key_f5,
    key_f6,
    key_f7,
    key_f8,
    key_f9,
    key_f10,
    key_f11,
    key_f12,
    TOETS_SLOTS = 30
};

// Key codes: 0 to 255 are code page 850 characters, above are ncurses codes.
enum ToetsCode : int32_t {
    K_TAB = 9,
    K_ENTER = 10,
    K_ESC = 27,
    K_DOWN = 258,
    K_UP = 259,
    K_LEFT = 260,
    K_RIGHT = 261,
    K_HOME = 262,
    K_BACK = 263,
    K_F1 = 265,
    K_F2 = 266,
    K_F3 = 267,
    K_F5 = 269,
    K_F6 = 270,
    K_F7 = 271,
    K_F8 = 272,
    K_F10 = 274,
    K_F11 = 275,
    K_DC = 330,
    K_IC = 331,
    K_PGDN = 338,
    K_PGUP = 339,
    K_BTAB = 353,
    K_CANCEL = 355,
    K_END = 360,
    K_EXIT = 361,
    K_HELP = 363,
    K_RESIZE = 410,
};

// Result flags of the last field, SCHERM.vlag.
enum Veldvlag : uint32_t { V_VERS = 0x01, V_GEWIJZIGD = 0x04, V_LEEG = 0x08, V_GEWEIGERD = 0x80 };

struct Instel; // term/ingave.h

struct TermVariant {
    char naam[4];          // "", "-w" or "-l"
    struct screen* scherm; // ncurses SCREEN
    int32_t lines, cols;   // forced size of this variant
    VENSTERP std;          // its stdscr
};

struct Venster {
    VENSTERP win;
    int32_t term;  // variant it belongs to
    int32_t basis; // SCHERM.basis when it was opened
    int32_t soort; // colour kind 0 to 7
    uint8_t rand;  // 1: coordinates count from inside the border
};

inline constexpr int VENSTERS = 15;

struct Scherm {
    int32_t lines, cols;
    time_t ververst;
    int32_t dicht; // not 0: output locked, printer passthrough is on
    int32_t invoegen;
    volatile int32_t signaaltoets;
    int32_t toets[TOETS_SLOTS];
    TermVariant term[5];
    int32_t termaantal, termnu;
    Venster venster[VENSTERS];
    int32_t aantal, huidig, basis, soort;
    Instel* instel;
    uint32_t vlag;
    int32_t laatste;
    int32_t kpos;
    int32_t rij, kolom, breedte, decimalen;
    char type;
    char opties[21];
    uint8_t numeriek, verborgen;
    int32_t scroll, zichtbaar;
    void* doel;
    char statustekst[136];
    bool bestaat; // between SCRINIT and SCREXIT
};

extern Scherm SCHERM;

// SCRINIT opens the terminal as variant "" and readies SCHERM. Stops with status 10 when the terminal has no
// description ("Onbekende terminfo (NAME)"). SCREXIT gives the terminal back as it was found; a second call
// does nothing. SCRSTOP: SCREXIT and exit(status).
void SCRINIT();
void SCREXIT();
// SCREXIT of a program that execs the next one of its chain: what stands on the terminal stays there until that
// one's SCRINIT paints over it. When the exec fails, SCRINIT takes the terminal back.
void SCROVERGEVEN();
[[noreturn]] void SCRSTOP(int status);

// The one way to give up: abort box (or plain lines when there is no screen), Enter, status 1.
[[noreturn]] void SCRFATAL(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
[[noreturn]] void VSCRFATAL(const char* fmt, va_list ap) __attribute__((format(printf, 1, 0)));
// Called first by SCRFATAL when set: closing the modem line, releasing what must not stay.
extern void (*SCRFATALHAAK)();
// Called when a signal ends the program, from its handler too: only what may be done there, and no longer than half a
// second. What the terminal layer doesn't know of is given back there.
extern void (*SCRNOODHAAK)();
const char* SCRFATALTEKST();             // the report, for the hook
void SCRFATALREDEN(const char* woorden); // a line under the next report: why; copied
const char* SCRFATALREDEN();             // empty without one

// Change to terminal variant "", "-w" or "-l"; falls back to "" when that has no description or the window is too
// small for it (look at SCHERM.cols afterwards). The change opens a window: WINCLOSE goes back.
void SCRTERM(const char* naam);

// Windows. `soort` is the colour kind. A full stack (15) stops the program through SCRFATAL.
void WINOPEN(int rij, int kolom, int hoogte, int breedte, int soort);
template <int SOORT> void WINOPENSOORT(int rij, int kolom, int hoogte, int breedte) {
    WINOPEN(rij, kolom, hoogte, breedte, SOORT);
}
inline constexpr auto WINOPEN1 = WINOPENSOORT<1>, WINOPEN2 = WINOPENSOORT<2>, WINOPEN3 = WINOPENSOORT<3>,
                      WINOPEN4 = WINOPENSOORT<4>, WINOPEN5 = WINOPENSOORT<5>, WINOPEN6 = WINOPENSOORT<6>,
                      WINOPEN7 = WINOPENSOORT<7>;
void WINCLOSE(); // the top one; what it covered comes back
// Border with a centred title; null: border only. Coordinates count from inside afterwards.
void WINBOX(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
// A legend at the right of the bottom border, behind WINBOX (which takes it away); nothing without a border or where it
// doesn't fit.
void WINVOET(const char* tekst);
// Move the cursor; 1, or 0 (and no move) outside the window.
int WINAT(int rij, int kolom);
// Attribute and colours of what follows in the current window.
void WINATTR(uint32_t attr);
// Cursor place and inner size of the current window, 1-based, counted like WINAT's arguments.
int WINRIJ();
int WINKOLOM();
int WINHOOGTE();
int WINBREEDTE();
// Screen coordinates (1-based) of a place in the current window.
void WINNAARSCHERM(int rij, int kolom, int* schermrij, int* schermkolom);
VENSTERP WINNU();        // the current ncurses window
void WINCURSOR(int aan); // show or hide the cursor

// Text at a place; cut at the edge. Answers the number of characters written, 0 when the place is outside.
int SCRPUT(uint32_t attr, int rij, int kolom, const char* fmt, ...) __attribute__((format(printf, 4, 5)));
// Text at the cursor in the present attribute; answers its length.
int SCRADD(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
// Text on the base window of the current variant, whatever lies on top.
int SCRBASE(uint32_t attr, int rij, int kolom, const char* fmt, ...) __attribute__((format(printf, 4, 5)));
// A hint on the top row, whatever windows are open, at the right where nothing stands, else over the row's end; an empty
// text takes it away, and what stood there comes back.
void SCRHINT(const char* tekst);
// `aantal` line-drawing cells, L_VERTICAAL downwards and the others to the right.
enum Lijnteken : char { L_LINKS = ',', L_RECHTS = '+', L_HORIZONTAAL = 'q', L_VERTICAAL = 'x' };
void SCRLIJN(uint32_t attr, int rij, int kolom, Lijnteken teken, int aantal);
// Clear from a place to the end of its row; the same and every row below it. A border stays.
void SCRCLREOL(int rij, int kolom);
void SCRCLREOW(int rij, int kolom);
// Show what was written, then wait; the interrupt key ends the wait. Without a wait, and while keys wait, it may
// take until a second after the last picture.
void SCRFLUSH(int seconden);
// Seconds between two refreshes of long output: 0 shows every text at once, below 0 none. SCRAUTO refreshes when
// they have passed; every text that is written calls it.
void SCRRATE(int seconden);
void SCRAUTO();
// Text on the status line with a beep; "" clears it silently. Does nothing without a screen.
void error(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void PIEP();

// Busy text "Even geduld aub" at the right of the status line.
void BEZIGTOON();
void BEZIGWIS();
void BEZIGUIT();
void BEZIGAAN();

// Terminal modes of standard input: save and clear ECHO; give back the saved ones.
void TERMBEWAAR();
void TERMHERSTEL();
// Run a command in a subshell, the terminal lent to it meanwhile. `pad`: a directory ending in '/', or the name
// of an environment variable that holds one, or empty. With `wachten` asks for Enter afterwards.
void SCHELP(const char* pad, const char* commando, bool wachten);

} // namespace zg
