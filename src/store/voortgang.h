// The progress bar: a window of three rows at the bottom of the screen, or a bar on the status line. Used by the
// long jobs of the store and of everything above it; without a screen it shows nothing, unless a program has
// put a painter of its own in VOORTGANGHAAK.
#pragma once
#include <cstdint>

namespace zg {

enum Voortgangstap {
    VG_OPEN = 0,       // window with the text as its title and an empty bar; hides the cursor
    VG_TOON = 1,       // value out of total; columns are only ever added
    VG_SLUIT = 2,      // window away, cursor back
    VG_STATUSOPEN = 3, // empty bar on the status line, with the text in it when it is 1 to 69 long
    VG_STATUSTOON = 4, // as VG_TOON, in that bar; opens it when needed
    VG_STATUSSLUIT = 5 // blanks the status line
};

// A total of 0 counts as the value, or 1. The text is looked at by the two opening steps only; null is empty.
void VOORTGANG(int stap, int64_t waarde = 0, int64_t totaal = 0, const char* tekst = nullptr);

// Called in place of the drawing when set: how an operator's tool paints on a plain terminal.
extern void (*VOORTGANGHAAK)(int stap, int64_t waarde, int64_t totaal, const char* tekst);

} // namespace zg
