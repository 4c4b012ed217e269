// Module fmtab: the geometry of a line's quantities. A matrix has a row for each branch, by branch index, and
// behind them the row of totals; of its 96 columns column 0 is the row's total, 1 to 95 are the size indexes.
// Rows of prices have the same columns.
#pragma once
#include "shared/iomaat.h"
#include "shared/sysrec.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zg {

inline constexpr int MAATKOLOMMEN = MATEN + 1;

using aantalmatrix = std::vector<int32_t>; // (firma.filialen + 1) x MAATKOLOMMEN

inline size_t matrix_cellen() {
    return (firma.filialen + size_t{1}) * MAATKOLOMMEN;
}
// The place of a cell; the row of totals is filiaal == firma.filialen.
inline size_t matrix_plaats(int filiaal, int maat) {
    return static_cast<size_t>(filiaal) * MAATKOLOMMEN + static_cast<size_t>(maat);
}
inline int32_t& matrix_cel(aantalmatrix& m, int filiaal, int maat) {
    return m[matrix_plaats(filiaal, maat)];
}
inline int32_t matrix_cel(const aantalmatrix& m, int filiaal, int maat) {
    return m[matrix_plaats(filiaal, maat)];
}
// The row of totals: MAATKOLOMMEN cells.
inline const int32_t* matrix_totalen(const aantalmatrix& m) {
    return m.data() + matrix_plaats(firma.filialen, 0);
}

// All zeros, in the firm's size.
void fmclear(aantalmatrix* m);
// Add to a cell and to its row's total, its column's total and the total of totals; the caller keeps each
// within 32 bits. A branch or size outside the firm, or a matrix of another size, stops with INTERNAL 0.
void fmadd(aantalmatrix* m, int filiaal, int maat, int32_t aantal);
// A cell to this amount, through fmadd with the difference.
void fmset(aantalmatrix* m, int filiaal, int maat, int32_t aantal);
// Every row's sum and the row of totals anew from the cells, kept within 32 bits. Another size stops with
// INTERNAL 1.
void fmtotals(aantalmatrix* m);
// Digits that the totals need: the narrowest column of the installation (kept within 3 to 5), 4 when one is above
// 999, 5 when one is above 9999. Of a row of MAATKOLOMMEN, or of a matrix' row of totals.
int fmwidth(const int32_t* rij);
int fmwidth(const aantalmatrix& m);
// Index of the one branch that holds all; firma.filialen when there is none, or nothing to hold. 0 with one
// branch.
int een_filiaal(const aantalmatrix& m);
inline bool fm_leeg(const aantalmatrix& m) {
    return matrix_totalen(m)[0] == 0;
}

} // namespace zg
