// Delivery terms of a line: a list ordered by the last delivery date, which names the term. Each has its own
// quantities by branch index and size index, kept as the few cells that are filled, so a term costs what it
// holds. Matrices are those of shared/fmtab.h.
#pragma once
#include "shared/fmtab.h"
#include <cstdint>
#include <vector>

namespace zg {

struct levcel {
    uint8_t filiaal, maat; // branch index, size index
    int32_t aantal;        // above 0
    bool operator==(const levcel&) const = default;
};
struct levterm {
    uint16_t van, tot;          // first and last delivery date
    std::vector<levcel> cellen; // by branch, then size
    bool operator==(const levterm&) const = default;
};
using levtermen = std::vector<levterm>; // by tot, each tot once

// Make or overwrite the term with that last date. Only cells above 0 of branches and sizes are taken.
void lt_schrijf(levtermen* termen, uint16_t van, uint16_t tot, const aantalmatrix& matrix);
// 'N': the first term after *tot, so that a loop starts at 0; 'R': the term with that *tot. Fills dates and
// matrix (totals included; null: dates only). False, and nothing filled, when there is none.
bool lt_lees(const levtermen& termen, char modus, uint16_t* van, uint16_t* tot, aantalmatrix* matrix);
// The n-th, from 1.
bool lt_nr(const levtermen& termen, int n, uint16_t* van, uint16_t* tot, aantalmatrix* matrix);
bool lt_bestaat(const levtermen& termen, uint16_t tot);
int lt_volgnr(const levtermen& termen, uint16_t tot); // ordinal from 1, 0 when missing
// New dates for a term; false when it is missing or another term has the new last date.
bool lt_verzet(levtermen* termen, uint16_t oud_tot, uint16_t van, uint16_t tot);

// Add a term's cells to a matrix.
void lt_erbij(const levterm& term, aantalmatrix* matrix);

} // namespace zg
