// Keyboard macros: keys recorded under a letter or digit, and played by F2 and that key as if they were typed. A
// user has his own, by number; they stand in the pair MACRO of the directory that the environment variable MACRO
// names. One that still plays when a program hands over goes on in the next. Hung into MACROHAAK (term/toets.h),
// which tells the rules of playing. The table itself: macrobestand.h.
#pragma once
#include "term/macro/macrobestand.h"
#include "term/scherm.h"
#include <string>

namespace zg {

// Hangs the player into the screen, off, without a user. Before SCRINIT, which looks for a macro that was handed over.
void MACROBEGIN();
// Whose macros these are, once his slot has been read; 0 nobody's, which ends one that plays and puts them off. What was
// handed over plays on when it is this user's, and is dropped otherwise.
void MACROGEBRUIKER(uint16_t gebruiker);
uint16_t MACROGEBRUIKER();
void MACROAAN(); // F2 opens the dialog, where nobody wants it as his own key
void MACROUIT();

// Starts the user's macro of a letter (capital or small) or digit: its first key, which is the next of the program. -2 for
// none: the key is no letter or digit, macros are off, there is no such macro and the user didn't add it, or it or the
// table can't be used, which was told.
int32_t MACROSPEEL(int32_t toets);

// The screens. Each tells when the table can't be used, and leaves then.
void MACROOPNAME(
    int32_t toets);  // record, again and again until ESC; the first key is asked for when this is 0
void MACROWIS();     // the user's list; DEL deletes
int32_t MACROKIES(); // the user's list: the key of the macro chosen, 0 for none
int32_t MACROMENU(); // 0, K_IC record, K_DC delete, or the key of a macro chosen
// A box at row 10 of at most ten lines. optie: -1 waits for ENTER, -2 for yes or no: 1 or 0.
int MACRODOOS(int optie, const std::string& tekst);
// The box that tells why the table can't be used, by the errno of a call of macrobestand.h.
void MACROMELD(int fout);

// The transfer file MAC<tty>.TMP in the present directory, of a terminal only. BEWAAR writes it when keys are left. HERSTEL
// deletes it, and keeps what it holds for MACROGEBRUIKER when it is a plain file that only this user may write, at most ten
// seconds old, whole and sound.
void MACROBEWAAR();
void MACROHERSTEL();

} // namespace zg
