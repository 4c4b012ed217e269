// The format language of fields: [width][.precision]type[[charset]][,]options. INGAVEFMT parses it, loads the
// caller's variable and sets allowed keys and range; term/ingave.cpp is its only caller.
#pragma once
#include "term/ingave.h"

namespace zg {

// Needs SCHERM.doel, rij and kolom. Fills SCHERM's field members, ingavetekst, ingavewaarde and INSTEL; answers
// SCHERM.opties. Any error in the format stops the program.
const char* INGAVEFMT(const char* formaat);
// Character-set mode of the last parsed format, for the help window: 0 none, 1 only these, 2 all but these.
int INGAVESET();
// Help window on the present field; returns when the user has pressed ENTER.
void INGAVEHELP();

} // namespace zg
