// Delivery terms of the line in hand: a list ordered by the last delivery date, which names the term. Each
// has its own quantities by branch index and size index; matrices are those of order/programma.h. Quantities
// are kept as the few cells that are filled, so a term costs what it holds.
#pragma once
#include <cstdint>
#include <vector>

namespace zg {

struct levcel {
    uint8_t filiaal, maat; // branch index, size index
    int32_t aantal;        // above 0
};
struct levterm {
    uint16_t van, tot;          // first and last delivery date
    std::vector<levcel> cellen; // by branch, then size
};

extern std::vector<levterm> levtermen; // by tot, each tot once

void lt_wis();
// Make or overwrite the term with that last date. Only cells above 0 of branches and sizes are taken.
void lt_schrijf(uint16_t van, uint16_t tot, const int32_t* matrix);
// 'N': the first term after *tot, so that a loop starts at 0; 'R': the term with that *tot. Fills dates and
// matrix (totals included; null: dates only). False, and nothing filled, when there is none.
bool lt_lees(char modus, uint16_t* van, uint16_t* tot, int32_t* matrix);
bool lt_nr(int n, uint16_t* van, uint16_t* tot, int32_t* matrix); // the n-th, from 1
int lt_aantal();
bool lt_bestaat(uint16_t tot);
int lt_volgnr(uint16_t tot); // ordinal from 1, 0 when missing
// New dates for a term; false when it is missing or another term has the new last date.
bool lt_verzet(uint16_t oud_tot, uint16_t van, uint16_t tot);

// A term's cells as a matrix with its totals; added to a matrix.
void lt_matrix(const levterm& term, int32_t* matrix);
void lt_erbij(const levterm& term, int32_t* matrix);

} // namespace zg
