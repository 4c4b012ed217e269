// The master data behind a line in hand: brand and article group, what they mean for its sizes and branches, and the
// bar in force. The records are kept in order/bestanden.h (regelmerk, regelgroep).
#pragma once
#include "order/bestanden.h"
#include "order/regel.h"

namespace zg {

// Read brand and group of the line's model (kept: not again while they are the same), and its weights: the group's
// number for each branch that the brand doesn't exclude, 0 for the others, their sum behind them. An unknown group
// gives no weights, an unknown brand excludes nothing.
void regelstam_lees(orderregel* regel);
// The size system of a brand's models: its own, else the supplier's, else the firm's.
uint8_t eigen_stelsel(const ordmodel& m, const merkrec& merk);
// That of a model: the same, but the firm's where the size type has no sizes in it.
uint8_t model_stelsel(const ordmodel& m, const merkrec& merk);
// Has the open order lines of a brand, or (merk 0) is it that supplier's and has lines at all? Their sizes are those of
// the size system as it is (STELSELHAAK, sub/maatsoort.h).
bool stelsel_in_gebruik(uint16_t merk, uint16_t nummer);
// Put the line's size type and set of sizes in force (shared/maatbalk.h). False when the type has no sizes.
bool regel_balk(const orderregel& regel);
// Does the bar in force show the sizes of all open pieces of the line? Others could be neither seen nor changed. False:
// told, once a series.
bool stukken_op_balk(const orderregel& regel);
// The line's advice prices from its block, by the bar in force. One without ranges has the least price for every size.
void regel_advies(orderregel* regel);
// Branch index of the group's warehouse; -1 when there is none, or no such branch.
int regel_magazijn();
// The set of branches that the brand excludes: 32 bytes by branch index.
const uint8_t* regel_uitgesloten();

} // namespace zg
