// Quantities in a grid: sizes of the bar in force across (shared/maatbalk.h), branches down with number and row sum in
// front, the totals below. Painting a matrix and the ways to enter it by hand; the order's quantity screen and the
// pre-distributions use it. Nothing here touches a file while a key is handled.
#pragma once
#include "shared/fmtab.h"
#include "term/raster.h"
#include <cstdint>
#include <vector>

namespace zg {

struct Matrixscherm {
    RASTER raster;
    int koprij;    // window row of the size names
    int totaalrij; // of the totals; the caller may lower both rows behind matrix_begin
    int vrijrij;   // of the row "+-", which shows only while there is one; key by key of the sizes' letters

    // The caller's, before matrix_begin and later:
    const uint8_t* uitgesloten = nullptr; // 32 bytes by branch index, marked '*'; null: none
    int magazijn = -1;                    // branch index that the row of totals is entered into; -1: index 0
    const char* sneltoetsen =
        nullptr; // key by key: its n-th character is the n-th visible size; null: cell by cell
    bool opgeefbaar =
        false; // F6 leaves the ways to enter, as ESC does; a division that can't be left as it stands is undone
    int32_t meest = INT32_MAX; // sum that the matrix may reach, so that the line's stays in 32 bits

    int breedte = 0;              // digits that the columns were made for
    std::vector<uint8_t> nummers; // of the branches, by index
};

// Geometry for a window of the present screen from the bar, the branches and the width of the matrix' totals; reads
// the branch numbers. Rows go from below the size names to `rijtot`, then the totals and "+-". With one branch the grid
// has no branch rows, and `rijtot` doesn't matter.
void matrix_begin(Matrixscherm* s, int koprij, int rijtot, const aantalmatrix& matrix);
// The columns anew where the totals have become wider; the cursor stays on its cell.
void matrix_teken(Matrixscherm* s, const aantalmatrix& matrix);

// The ways to enter start on the grid's present cell, where not told, and leave the cursor on the last one; they paint
// what they change, and use the window's last row for hints (blank behind them). Key by key they use row 1 as well,
// which the caller paints again. The key that ended them is in SCHERM.laatste. Without branches or sizes they do nothing.

// Totals per size from the first on, in the row of totals: the difference goes to the warehouse, or branch 0. Ends
// behind the last size, on cancel and ESC (the field's value as it was). A total below what the other branches hold is
// refused. Key by key F5 leaves too while the matrix is empty, for a stored distribution.
void matrix_totalen(Matrixscherm* s, aantalmatrix* matrix);
// Cell by cell, branches and (TAB) totals, until ESC, cancel or ENTER in the last cell. Key by key only branches.
void matrix_hand(Matrixscherm* s, aantalmatrix* matrix);
// Divide by hand: the row of branch `bron` becomes what is free (the sizes of the bar), the branches take from it; what
// is left goes to branch `rest`. `bron` or `rest` firma.filialen: none. It ends when nothing is taken too much and
// nothing is left. Key by key pieces go straight from `bron` to a branch; without `bron` that does nothing.
void matrix_verdeel(Matrixscherm* s, aantalmatrix* matrix, int bron, int rest);
// The source's pieces of the bar's sizes out of its row, into what is free (zeros before); the totals stay.
void matrix_maak_vrij(aantalmatrix* matrix, int bron, int32_t* vrij);
// What is free goes to `rest`, as far as nothing is taken too much: true when nothing is left to divide.
// vrij: MAATKOLOMMEN cells, of which cell 0 isn't looked at.
bool verdeel_sluit(aantalmatrix* matrix, int32_t* vrij, int rest);

} // namespace zg
