// The order line screen: header block on rows 1 to 5, fourteen lines from row 8, totals, and the menu on the
// bottom row. Totals are kept in 64 bits; net in the order's currency, purchase value in the home currency.
#pragma once
#include "order/regel.h"
#include "order/wrk.h"
#include <cstdint>

namespace zg {

inline constexpr int REGELRIJ = 8;     // first line's screen row
inline constexpr int REGELPAGINA = 14; // lines shown at once

struct ordertotalen {
    int64_t regels, stuks, bruto, netto, inkoop;
};
extern ordertotalen ordertotaal;

extern bool regel_bereikbaar; // the cursor's line was loaded and may be worked on
// Runs until ESC or cancel.
void order_scherm();

// The frame (once per season) and the header's values; totals too.
void order_frame();
void order_kopregels();

// Text of a line on the screen, 78 characters from column 2: `herhaald` when the row above shows the same
// model.
const char* regel_tekst(bool herhaald, const ors_ingang& ingang);
// A line's totals from a row of quantities at the given prices; `regels` stays 0.
void regel_totaal(const int32_t* rij, const regelprijzen& prijzen, ordertotalen* totaal);
void order_totaal_bij(char teken, const ordertotalen& totaal);
// Rebuild ordertotaal by reading every line into an area of its own; the cursor's line isn't touched.
void order_totalen(bool label_aanpassen);

} // namespace zg
