// The driver of the order program: season, supplier, order, and round again. Everything else in order/ is
// called from here or from the order line screen.
#pragma once

namespace zg {

// ORDPARM.SYS into `orderparameters`; a missing or short file stops the program.
void ordparm_lees();

// Until the user leaves the season prompt. Holds the user's byte of the batch exclusion meanwhile; returns at
// once when that is refused.
void order_lus();

// Season prompt on row 1: sets gekozen_jaar, gekozen_letter and seizoensmap. False when the user left.
bool kies_seizoen();
// Supplier prompt on row 3; opens the supplier's journal. False: no supplier, or the journal is not to be
// had.
bool ord_kies_leverancier();
// The order list, or the date of a new order: the journal's handle and `kop` hold it. False when the user
// left.
bool ord_kies_order();

// Told before the supplier's orders: a session that was broken off, and whether its changes could be saved.
void herstel_venster();

} // namespace zg
