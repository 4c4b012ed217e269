// The pairs of the registration as the store sees them: header, trees, free chain (store/diepcheck.h). Before anything is
// read by their keys: a walk along a broken tree would tell what isn't so, or end the tool.
#pragma once
#include "tools/registerkeur.h"

namespace zg {

// Those in which something is wrong, one each; empty when all are sound, or aren't there. They are read without a lock;
// what looks wrong is looked at again with the header held, for which it waits so many seconds. Who can't be held off that
// long is noted. The files are opened and closed here: nothing of them is open or locked by this process.
std::vector<keurbestand> bomen_keur(int seconden);

} // namespace zg
