// The article group in hand: the screen on one group and its part about branches work on it.
#pragma once
#include "sub/stampost.h"

namespace zg {

extern artrec artgroep_nu;

// Row of the screen that opens the settings of the distribution over branches, and what it does while the group is
// only looked at.
bool artverdeling_vraag(int rij);
void artverdeling_bekijk();
// Tell of the first branch whose quantity has come to lie below the group's minimum.
void artverdeling_minimum();

} // namespace zg
