// Size runs (maatreeksen): stored rows of quantities by size index for a size type, numbers 1 to 99, and what is done
// with rows of a matrix. A row is MAATKOLOMMEN cells, cell 0 its sum. Lists and entry show the bar in force.
#pragma once
#include "shared/fmtab.h"
#include <array>

namespace zg {

using reeksrij = std::array<int32_t, MAATKOLOMMEN>;

// The list of the type's runs that have a quantity on the bar restricted to `maten` (12 bytes, null: all sizes);
// `acties` a part of "SWTV". Without one, and with 'T', a run is added. The chosen one's quantities on that bar with
// their sum; false when none was chosen.
bool reeks_kiezen(uint8_t maatsoort, const char* acties, const uint8_t* maten, reeksrij* rij);
// The different rows of a matrix' branches, largest first (ties: the lower branch first).
std::vector<reeksrij> reeks_gebruikt(const aantalmatrix& matrix);
// The branches whose row equals the row, 32 bytes by branch index.
void reeks_branches(const aantalmatrix& matrix, const reeksrij& rij, uint8_t* filialen);
// The row to each branch of the set, or their rows emptied. The row of totals is the caller's.
void reeks_toekennen(aantalmatrix* matrix, const reeksrij& rij, const uint8_t* filialen);
void reeks_wissen(aantalmatrix* matrix, const uint8_t* filialen);
// Per size the totals less the sum of the branches.
void reeks_over(const aantalmatrix& matrix, reeksrij* over);
// Runs laid on the branches of a matrix in a screen of its own until left: the used runs, "&Nieuwe reeks" (a row, F5 a
// stored run) and "&Toekennen filialen". `behoud_totalen`: the row of totals stays and a cell above it is refused;
// else the totals become the sums. True when the matrix changed.
bool reeks_scherm(uint8_t maatsoort, aantalmatrix* matrix, bool behoud_totalen, const uint8_t* uitgesloten);

} // namespace zg
