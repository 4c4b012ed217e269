// Module uniprijs: the screens on which the prices of one series are entered and changed, by groups of adjacent sizes with
// equal prices. The caller has loaded the rows, set the context (up_valuta, up_orderkorting, up_btw, up_calcfactor) and
// opened the bar (shared/maatbalk.h), and stores the rows afterwards; there is no undo here, copies are the caller's.
// Nothing in here knows an order. The size table must be open: else INTERNAL uniprijs 7.
#pragma once
#include "price/uniprijs.h"

namespace zg {

// Prices of a new series, for a set of sizes (12 bytes), group by group; then the change screen of the same columns.
void up_definieren_prijzen(prijsrijen* rijen, const uint8_t* maten);
void up_definieren_inkoop(prijsrijen* rijen, const uint8_t* maten); // without advice prices
// Change them: once through all groups, then by choice. `rij` is the window's first screen row, 0: at the screen's foot.
// The order's discount counts as none while the screen stands. Left only with at most 8 runs of advice prices.
void up_wijzigen_prijzen(prijsrijen* rijen, int rij);
void up_wijzigen_inkoop(prijsrijen* rijen, int rij);
void up_wijzigen_advies(prijsrijen* rijen, int rij);

} // namespace zg
