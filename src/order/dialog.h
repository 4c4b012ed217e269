// Module dialog: a small free-text editor in a window, for the condition and remark texts of an order: five
// rows of 60 characters. Hard line ends are byte 10; soft breaks, byte 13, live only while the editor runs.
#pragma once
#include "order/ioord.h"

namespace zg {

inline constexpr int TEKSTRIJEN = 5;    // rows of an order's text
inline constexpr int TEKSTBREEDTE = 60; // characters of a row
static_assert(TEKSTRIJEN * (TEKSTBREEDTE + 1) + 1 == BLOKLEN);

// Edit in place: `tekst` holds rijen x (breedte + 1) + 1 bytes and is NUL ended. Ends on cancel, ESC, F3 and
// F6, with the key in SCHERM.laatste; edits are kept whatever the key. Rows and columns in the current
// window.
void tekst_dialoog(int rij, int kolom, int rijen, int breedte, char* tekst);

// Window of 7 by 64 at a screen place, titled with the name of the text kind (1 to 4), around the editor.
// Answers true when the text changed.
bool tekst_venster(int rij, int kolom, int soort, char* blok);
// The same as an item of a screen: the key that ends a text means nothing to the screen, but for F6.
bool tekst_item(int rij, int kolom, int soort, char* blok);
// To be looked at only; waits for ENTER.
void tekst_bekijk(int rij, int kolom, int soort, const char* blok);
// First line of a text in the current window, "..." behind it when there is more.
void tekst_regel(int rij, int kolom, int breedte, const char* blok);

// Divide a text over rows: takes out every soft break, puts one in wherever a row is full, and stores the
// offset of each row in regelstart[0 .. rijen]; regelstart[rijen] is where the last row ends. Empty rows
// begin at the end of the text. `tekst` must have room for a soft break a row.
void tekst_indeling(char* tekst, int rijen, int breedte, int* regelstart);
// Row of a cursor offset in a divided text; the column is the distance from the row's start.
int tekst_rij(const char* tekst, int rijen, const int* regelstart, int cursor);

} // namespace zg
