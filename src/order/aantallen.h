// The quantities of the cursor's line (regel_nu): the screen per size, branch and delivery term, the choice behind a
// duplicate, and the dialogues of delivery terms.
#pragma once
#include "order/regel.h"

namespace zg {

// The screen; true when quantities or terms of regel_nu changed. With `lezen` it is only looked at.
bool aantal_scherm(bool lezen);
// Behind a duplicate with the same size type: what of the old quantities goes along.
void neem_over();

// Dates of a term at a place of the window; false, dates as they were, when left. `nieuw`: a term yet to be made.
bool levt_invoer(int rij, int kolom, uint16_t* van, uint16_t* tot, bool nieuw);
// New dates for a term of the line; true when they changed.
bool levt_wijzig(uint16_t* van, uint16_t* tot);
// A new term with its quantities; `werk` is what the present term holds. True when it came.
bool levt_nieuw(uint16_t* van, uint16_t* tot, aantalmatrix* werk);
// The term by the list; one term is taken without it.
bool levt_kies(uint16_t* tot);
void levt_bekijk();

} // namespace zg
