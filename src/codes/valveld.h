// Fields of money matters: currency code and exchange rate. The arithmetic is in
// price/koers.h, the table in price/ing_val.h. Keys allowed by TOETSAAN before the call leave each field as
// they leave INGAVE.
#pragma once
#include <cstdint>

namespace zg {

// Currency code field at a place, format as "3c,UE", F5 for the list. An unknown code is refused, an empty
// one accepted when the format lets it (flag V_LEEG). True when the code (3 bytes) changed.
bool valuta_veld(int rij, int kolom, const char* formaat, char* code);
// Pick list of the currencies, beginning on the current one; true when one was picked, which is then current.
bool valuta_kiezen();

// Rate field, "9.5f,P" with the letters `vlaggen` ("E", "I" or ""). A unit above 10 shows as "(per 100)"
// behind it and the value counts for the unit. The row is cleared from the column on. *koers is a rate in
// double form, 0 for the rate of the day.
bool koers_veld(int rij, int kolom, const char* vlaggen, const char* code, double* koers);

} // namespace zg
