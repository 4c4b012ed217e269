// The window of the quantities, shared by the screen (aantallen), the term dialogues (levkeuze) and the views
// (aantalkijk) and by nobody else: what stands on its rows, the grid in it, and the booking of what changed.
#pragma once
#include "order/regel.h"
#include "order/teksten.h"
#include "sub/matrixinvoer.h"

namespace zg {

extern Matrixscherm aantalgrid; // of the open window

// Bar and window. False, told and nothing open, when the firm has no branches or the line no sizes.
bool beeld_open();
void beeld_sluit();
// Brand, group, weights and bar of the line anew, behind a dialogue that may have changed them or opened another bar.
void beeld_ververs();
// Geometry for what a matrix holds; the first cell.
void beeld_begin(const aantalmatrix& matrix);
// Everything in the window: `dagen` behind the label of a term, without the label when there is none (`hoeveel` stands
// there then).
void beeld_teken(const Tekst& titel, const char* dagen, const aantalmatrix& matrix, const char* hoeveel = "");
void beeld_titel(const Tekst& titel);
// The same for a sum of the line's terms: the dates of the one, or how many there are.
void beeld_som(const Tekst& titel, const aantalmatrix& matrix);
// "%s - %s" of a term's dates, and its number among how many, when there are more: static.
const char* beeld_termijn(uint16_t van, uint16_t tot, int nr, int aantal);
int beeld_keusrij();
// The keys that scroll the grid, where there is something to scroll; then the one that was given, round at the ends.
void beeld_toetsen_aan();
void beeld_blader(int32_t toets);

// F6 while a new line is made: whether it is offered; the key for the field or choice that comes; was it the last key,
// and is the line to be given up (asked here); has it been so.
void beeld_opgeefbaar(bool ja);
void beeld_f6_aan();
bool beeld_opgegeven();
bool beeld_is_opgegeven();

// What a new term, or a duplicate, takes of quantities that stand: the choices begun, one branch or several. The labels
// are those of one term, or of more.
enum Overname { OVER_NIEUW, OVER_AANTALLEN, OVER_TOTALEN, OVER_VERDELING };
void beeld_overname(const aantalmatrix& matrix, bool meer_termen);

// Quantities per size into the row of totals; a stored distribution in place of it, where that is asked by its key.
void aantal_ingave(aantalmatrix* matrix);
// Apply the difference of a term to the line's quantities and write the term. False, told and nothing changed, when the
// line's sum would not fit.
bool termijn_boek(uint16_t van, uint16_t tot, const aantalmatrix& oud, const aantalmatrix& werk);
// All pieces of a matrix to the warehouse, else the first branch.
void naar_een_filiaal(aantalmatrix* matrix);

} // namespace zg
