// Fields of money matters: currency code and exchange rate. The arithmetic is in price/koers.h, the table in
// price/ing_val.h.
#pragma once
#include "shared/lijstveld.h"

namespace zg {

// The currencies by their ISO code. The one found last is current (price/ing_val.h), and the list of an empty
// field begins on it.
extern const Lijsttabel VALUTATABEL;

// Rate field, "9.5f,P" with the letters `vlaggen` ("E", "I" or ""). A unit above 10 shows as "(per 100)"
// behind it and the value counts for the unit. The row is cleared from the column on. *koers is a rate in
// double form, 0 for the rate of the day.
bool koers_veld(int rij, int kolom, const char* vlaggen, const char* code, double* koers);

} // namespace zg
