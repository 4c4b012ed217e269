// Module ing_val: the currencies of the package, loaded at first use. The field and pick list for a currency
// code stand on it.
#pragma once
#include "shared/sysrec.h"
#include <string>
#include <vector>

namespace zg {

// The record of a code (3 characters, blanks and NUL alike) becomes the current one. False when unknown: the
// current one stays. An empty code stops with INTERNAL 1: give valuta_of_thuis() where a code may be empty.
bool valuta_zoek(const char* code);
extern valutarec valuta_nu; // current currency, zeros before the first found
const std::vector<Slot<valutarec>>& valuta_tabel();
void valuta_vergeet(); // load the table again at the next use

// Decimals of a currency; 2 for one that isn't in the table. The current currency stays.
int valuta_decimalen(const char* code);
// The code itself, or the home currency for an empty one. 3 characters and a NUL, static.
std::string valuta_of_thuis(const char* code);
bool thuisvaluta_anders(const char* code); // not the home currency; an empty code is the home currency

} // namespace zg
