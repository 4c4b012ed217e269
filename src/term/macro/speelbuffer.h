// What playing and handing over share.
#pragma once
#include "term/macro/macrobestand.h"

namespace zg {

extern mac_rec speelbuffer; // the keys still to be played, the next one on top
void MACROLAATLOS();        // keys that were pushed on it and not read: to the key stack
void MACROGAVERDER();       // what was handed over plays on, when it is the user's; it is forgotten otherwise

} // namespace zg
