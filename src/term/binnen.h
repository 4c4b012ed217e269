// What the screen modules of term/ share among themselves; nobody outside includes this or <curses.h>.
// <term.h> stays out everywhere: it makes `lines`, `columns` and `key_up` into macros.
#pragma once
#define NCURSES_NOMACROS 1
#include "term/scherm.h"
#include "term/tekenset.h"
#include "term/toets.h"
#include <curses.h>
#include <string>
#include <string_view>

namespace zg {

// scherm.cpp
void WACHTREGEL(); // until ENTER on plain standard input, or until nothing can come from there any more
void VARIANTAAN(int variant); // make it current: size, modes, its init strings, a full repaint to come

// overgave.cpp
void TERMINALAAN();       // take the terminal: its screen for programs, its init strings, its keys
void TERMINALAF();        // give it back; nothing when it isn't ours
void OVERGEDRAGEN();      // leave it to the next program of this process
bool OVERGAVEWACHT();     // was it left to us, and not taken yet?
std::string TERUGREEKS(); // the bytes that bring the shell's screen back
void NOODAF();            // give it back from a signal handler

// beeld.cpp
void TOON();                   // what the windows show, at once
void TOONVENSTER(WINDOW* win); // the same, with what was written in this window
void TOONSTRAKS(WINDOW* win,
                int ms);           // the same, after ms milliseconds at the latest when the program works on
void TOONVOORTOETS(WINDOW* win);   // the same, unless a key waits and less than a second has passed
void BEELDNIEUW();                 // what the terminal shows isn't known: the next picture clears it
void BEELDOVER();                  // nor is this, but the next picture covers it all
void BEELDGEWOON();                // no attributes, and the cursor shown
void ZEND(const char* capaciteit); // a terminfo string to the terminal, at once
void TEKENUIT(std::string& uit, wchar_t teken); // a cell's character as the terminal wants it

// venster.cpp
bool CURSORISAAN();
void VENSTERRUIMTE();                    // stops the program when the stack is full
void VENSTERDUW(WINDOW* win, int soort); // on the stack, coloured and cleared
Venster& VENSTERNU();
void TOONVANAF(int index); // touch and stage every window from here to the top
extern bool LIJNTEKENS;    // the present attribute draws lines

// tekenset.cpp
std::string
ACHTBITSSET();          // the set of one byte a character that the locale names; empty when it names another
void TEKENSETNEEMAAN(); // UTF-8 it is, for this program and those after it, and the user is told

// taalvraag.cpp: before the screen opens, ask the terminal what the environment doesn't say, for this program and
// those after it: whether a letter of two bytes moves its cursor by one column. Where neither locale nor character
// set is named, LC_CTYPE becomes C.UTF-8 when it does, else (no answer within 200 ms) C. Where the locale has a set
// of one byte a character but tmux or screen stands between, which has its own, ZGTEKENSET becomes UTF-8 or the
// locale's set; without an answer UTF-8. Keys that come meanwhile are kept.
void TEKENSETVRAAG();

// reeksen.cpp
struct Reeks {
    int lengte;  // bytes that the key takes, 0: no key, an ordinary character begins here
    int32_t key; // K_ONBEKEND for a sequence that means nothing here
    bool meer;   // bytes to come could make another key of it
};
void SLEUTELSLADEN();                 // key sequences of the active terminal
Reeks REEKS(const uint8_t* s, int n); // the key at the front of n bytes, n from 1

// klavier.cpp
void ESCWACHT(); // how long ESC is waited for, from ESCDELAY
// The next key of the keyboard; -1 after ms milliseconds (-1: never), or after a signal; K_GEWEIGERD for a
// character that has no place here.
int32_t KLAVIER(int ms);
int32_t KLAVIERREST();                    // the next key of what has been read already, -1 for none
bool KLAVIERWACHT();                      // has more been typed?
void KLAVIERTERUG(std::string_view rest); // bytes that were read before the screen opened
struct Geweigerd {
    bool unicode; // a character, else a byte that is none
    uint32_t code;
};
Geweigerd KLAVIERGEWEIGERD(); // the last one
inline constexpr int32_t K_GEWEIGERD = -2;

// klein.cpp
bool WINDOWMAAT(int* hoog, int* breed); // the terminal's window in cells; false (and 0) when it isn't known
void KLEINKIJK();                       // look how large it is now
bool KLEIN();                           // it was too small for the screen, then
void KLEINTOON();                       // say so, in what there is of it, in place of the screen

// tekenen.cpp
void PIEPLAAT(); // the beep that waited for the keys that wait

// toets.cpp
bool TOETSENWACHTEN();   // keys are there that have not been used, those of a macro apart
void TOETSENOVERNEMEN(); // keys that the program before this one had read and not used
void TOETSENOVERGEVEN();
inline constexpr int32_t K_ONBEKEND = 600; // a key that has no meaning here; never allowed in a field

// seinen.cpp
void SEINENAAN();
void SEINENUIT();
bool SEINEINDE(); // has the terminal gone, or are we told to end?
// End with status 1 when so. Called where the program can stop: keys and screen output, not file work.
void SEINSTOP();
[[noreturn]] void OPGEHANGEN(); // the terminal is gone: end now
extern volatile int MAATSEIN;   // the window got another size
extern volatile int HERVATSEIN; // the program was stopped, and goes on

} // namespace zg
