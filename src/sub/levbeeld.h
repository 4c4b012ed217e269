// The relation in hand: the screen on one relation and the window of a supplier's other data work on it.
#pragma once
#include "sub/stampost.h"

namespace zg {

extern levrec relatie_nu;
extern Relatiesoort relatie_als; // the kind that it is worked on as

// Row of the screen that opens the other data, and what it does while the relation is only looked at.
bool levoverig_vraag(int rij);
void levoverig_bekijk();

} // namespace zg
