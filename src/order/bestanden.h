// The shared master files that the order program keeps open while it runs: DTLEV, DTMAAT, DTMTOM and the
// rates have their handles in their own modules, the others here.
#pragma once
#include "store/ix.h"

namespace zg {

extern ICB *dtart, *dtmerk, *dtomzgrp, *dtvvtab;

// Open them all, in the order and modes that the sibling programs know. A pair that isn't there stops the
// program with "Open niet gelukt".
void bestanden_open();
void bestanden_sluit();

} // namespace zg
