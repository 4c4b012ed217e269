// The quantities of the cursor's line (regel_nu): the screen per size, branch and delivery term, the choice behind a
// duplicate, and the dialogues of delivery terms. Quantities of the line are the sums of its terms; nothing is on file
// before the line is.
#pragma once
#include "order/regel.h"

namespace zg {

// The screen; true when quantities or terms of regel_nu changed. With `lezen` it is only looked at.
bool aantal_scherm(bool lezen);
// The same for a line that is being added or duplicated, and, before it for a duplicate with the same size type, what of
// the old quantities goes along. F6 asks whether the line is to be given up: false then.
bool aantal_nieuw();
bool neem_over();
// The view of the quantities and terms.
void levt_bekijk();

// The next ones run in the open window of the quantities.
//
// Dates of a term at a place of it; false, dates as they were, when left. `nieuw`: a term yet to be made.
bool levt_invoer(int rij, int kolom, uint16_t* van, uint16_t* tot, bool nieuw);
// New dates for a term of the line; true when they changed.
bool levt_wijzig(uint16_t* van, uint16_t* tot);
// A new term with its quantities, booked; `werk` is what the present term holds, *van and *tot its dates, and those of
// the new one afterwards. False, nothing changed, when it was left.
bool levt_nieuw(uint16_t* van, uint16_t* tot, const aantalmatrix& werk);
// The last date of a term chosen from the list; one term is taken without it. False when none was.
bool levt_kies(uint16_t* tot);

} // namespace zg
