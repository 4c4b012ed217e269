// The shared master files that the order program keeps open while it runs, and the records of them that it keeps.
// DTLEV, DTMAAT, DTMTOM and the rates have their handles in their own modules, the others here.
#pragma once
#include "shared/leesstam.h"

namespace zg {

// The master records that the order program keeps between reads, one owner each; who needs another record of the
// table reads it into an image of his own.
extern levrec leverancier; // the order's supplier: the driver's prompt and the line screen
extern artrec regelgroep;  // of the cursor's line
extern merkrec regelmerk;
extern merkrec rijmerk; // of the line that is being painted
// Forget them, since other terminals change them: they are read again at the next use. All of them before an order,
// those of the lines before whatever is done to a line.
void stam_vergeet();
void regelstam_vergeet();

// Open them all, in the order and modes that the sibling programs know. A pair that isn't there stops the
// program with "Open niet gelukt". `lezen`: who only reads, and cleans nothing up.
void bestanden_open(bool lezen = false);
void bestanden_sluit();

} // namespace zg
