// Keys: reading, pushing back, waiting with a limit, names. Two sources beside the keyboard: the key stack
// (typed ahead and pushed back) and a playing macro, which term/macro plugs in through MACROHAAK.
#pragma once
#include "term/scherm.h"
#include "term/tekst.h"

namespace zg {

// The next key, from stack, macro or keyboard; the only way to read keys for input. Refreshes the screen first.
// A hang-up of the terminal ends the program with status 1; it never spins.
int32_t TOETS(VENSTERP win);
int32_t TOETS(); // on the current window
// One key of the keyboard itself, without macro or stack. -1 only in no-delay mode.
int32_t TOETSRAW(VENSTERP win);
// 1 when a key waits; doesn't block. Moves a waiting keyboard key to the stack (or the playing macro).
int TOETSKLAAR();
void TOETSDRUK(int32_t key);  // push back: on the macro when one plays, else on the stack
void TOETSTERUG(int32_t key); // push on the stack always
// Wait at most `pogingen` seconds for a key; answers TOETSKLAAR().
int TOETSWACHT(int rij, int kolom, int pogingen);
// Throw away all waiting keys.
void TOETSLEEG();
// Display name of a key, "F5 " or "PGDN"; tekst holds at least 8 characters.
void TOETSNAAM(int32_t key, char* tekst);
// First character that the terminal's own cancel, exit or help key would send, -1 for none.
int32_t TOETSTEKEN(int32_t key);

// Allowed keys of the present INSTEL. Key 0 and codes outside 1 to 511 are never allowed. Allowing K_CANCEL
// allows K_ESC too, K_HELP allows K_F1.
void TOETSAAN(int32_t key);
// The same for F1 to F12, and what it does in the next field, for the help; two or three words. Without them F5 is a list
// and F6 gives up an adding.
void TOETSAANMET(int32_t key, const Tekst& wat);
void TOETSUIT(int32_t key);
bool TOETSTOE(int32_t key);
bool TOETSNAMED(int32_t key); // allowed and in the key table
bool TOETSCHECK(int32_t key); // allowed, in the table, and leaving through validation
void TOETSCHECKAAN(int32_t key);
void TOETSCHECKUIT(int32_t key);
// Did CANCEL or ESC end what was asked last?
inline bool TOETSWEG() {
    return SCHERM.laatste == K_CANCEL || SCHERM.laatste == K_ESC;
}

// What a macro player must offer; null members until term/macro hangs itself in (MACROBEGIN). A playing macro comes
// behind the key stack and before the keyboard. Keys that are typed meanwhile, and those that the program pushes back, go
// on top of it and come first; CANCEL and ESC typed end it at once, F2 typed where it opens the dialog too.
struct MacroHaak {
    int32_t aan;               // macros enabled
    int32_t speelt;            // one is playing
    int32_t geduwd;            // keys pushed on it that have not been read yet
    int32_t (*haal)();         // next key of the playing macro, -1 at its end
    int (*over)();             // keys left?
    void (*druk)(int32_t key); // push on the playing macro
    void (*stop)();            // end it: its own keys go, those pushed on it move to the key stack
    int32_t (*dialoog)();      // F2: the key to go on with, -2 for none; an open field is safe from it
    void (*bewaar)();          // a program hands over, the screen still stands
    void (*herstel)();         // after it has opened
};
extern MacroHaak MACROHAAK;

} // namespace zg
