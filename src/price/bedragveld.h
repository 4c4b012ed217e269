// The amount field of prices: in the decimals of a currency, whichever the screen's are.
#pragma once
#include <cstdint>

namespace zg {

// In the current window; `formaat` is one of an amount ("8B,JEP"), an empty code the home currency. Keys and range are
// those that the caller has set (TOETSAAN, INSTEL; a range counts in units of the field, 1.99). An amount that is wider
// than the field is told on the status line and has to be typed anew. True when it changed; CANCEL and ESC leave it as it was.
bool bedrag_veld(int rij, int kolom, const char* formaat, const char* code, int32_t* bedrag);

} // namespace zg
