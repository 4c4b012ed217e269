// What the two ways of entering a matrix share, cell by cell (matrixinvoer.cpp) and key by key (matrixtoets.cpp).
#pragma once
#include "sub/matrixinvoer.h"

namespace zg {

// Is there a cell at all?
inline bool matrix_cellen_er() {
    return firma.filialen > 0 && balk_kolommen() > 0;
}
// The branch index that the row of totals is entered into.
inline int matrix_magazijn(const Matrixscherm* s) {
    return s->magazijn >= 0 && s->magazijn < firma.filialen ? s->magazijn : 0;
}
// A cell to this number, in a branch's row or (rij firma.filialen) in the totals; false when it was refused, and told.
bool matrix_boek(const Matrixscherm* s, aantalmatrix* matrix, int rij, int maat, int64_t aantal);
// Everything painted, with the row "+-" of what is free (MAATKOLOMMEN cells, null: none).
void matrix_beeld(Matrixscherm* s, const aantalmatrix& matrix, const int32_t* vrij);
// A branch's number in front of its row, as it stands there.
void matrix_nummer(const Matrixscherm* s, const aantalmatrix& matrix, uint32_t attr, int filiaal, int rij);
// The window's last row: a hint, or "" for none.
void matrix_hint(const char* tekst);

void matrixtoets_totalen(Matrixscherm* s, aantalmatrix* matrix);
void matrixtoets_hand(Matrixscherm* s, aantalmatrix* matrix);
void matrixtoets_verdeel(Matrixscherm* s, aantalmatrix* matrix, int bron);

} // namespace zg
