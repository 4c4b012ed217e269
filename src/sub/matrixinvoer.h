// Quantities in a grid: sizes of the bar in force across (shared/maatbalk.h), branches down with number and row sum in
// front, the totals below. Painting a matrix and the ways to enter it by hand; the order's quantity screen and the
// pre-distributions use it. Nothing here touches a file while a key is handled.
#pragma once
#include "shared/fmtab.h"
#include "term/raster.h"

namespace zg {

struct Matrixscherm {
    RASTER raster;
    int koprij;                 // window row of the size names
    int totaalrij;              // of the totals
    int vrijrij;                // of the row "+-", which shows only while there is one
    const uint8_t* uitgesloten; // 32 bytes by branch index, marked '*'; null: none
    int magazijn;               // branch index that the row of totals is entered into; -1: index 0
    const char*
        sneltoetsen; // key-by-key style: its n-th character is the n-th visible size; null: cell by cell
};

// Geometry for a window of the present screen from the bar, the branches and the width of the matrix' totals. With one
// branch the grid has no branch rows.
void matrix_begin(Matrixscherm* s, int koprij, int rijtot, const aantalmatrix& matrix);
void matrix_teken(Matrixscherm* s, const aantalmatrix& matrix);

// Totals per size, in the row of totals: the difference goes to the warehouse, or branch 0. Ends behind the last size,
// on cancel and ESC (the field's value as it was). A total below what the other branches hold is refused.
void matrix_totalen(Matrixscherm* s, aantalmatrix* matrix);
// Cell by cell, branches and totals, until ESC or cancel.
void matrix_hand(Matrixscherm* s, aantalmatrix* matrix);
// Divide by hand: the row of branch `bron` becomes what is free, the branches take from it; what is left goes to branch
// `rest`. `bron` or `rest` firma.filialen: none. It ends when nothing is taken too much.
void matrix_verdeel(Matrixscherm* s, aantalmatrix* matrix, int bron, int rest);
// What is free goes to `rest`, as far as nothing is taken too much: true when nothing is left to divide.
// vrij: MAATKOLOMMEN cells.
bool verdeel_sluit(aantalmatrix* matrix, int32_t* vrij, int rest);

} // namespace zg
