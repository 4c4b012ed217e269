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
// Give up what the screen keeps between orders: the bar in force, the line in hand. The size table must still be
// open.
void order_scherm_los();

// The frame (once per season) and the header's values; totals too.
void order_frame();
void order_kopregels();

// A number right in its column, asterisks when it doesn't fit; an amount likewise, without its decimals before it goes.
std::string regel_getal(int64_t waarde, size_t breedte);
std::string regel_bedrag(const std::string& valuta, int64_t waarde, size_t breedte);
// Text of a line on the screen, 78 characters from column 2, whatever the amounts: `herhaald` when the row above
// shows the same model.
const char* regel_tekst(regelloop* loop, bool herhaald, const ors_ingang& ingang);
// What stands for a line whose series has gone; `andere`: its number is another's by now.
std::string regel_verwijderd(const orderregel& regel, bool andere);
// The rate that `kop` holds; 0 is the rate of the day. A unit of 0, stored by others, counts as 1.
double order_koers();
// Currency, rate, surcharge and discount of `kop` as the context of prices; a rate of the day is looked up here
// and nowhere else. True when the rate is another one than it was: lines and totals in hand are to be read again.
bool order_prijscontext();
// A line's totals from what was ordered, at its prices; `regels` stays 0.
void regel_totaal(const orderregel& regel, ordertotalen* totaal);
// Likewise from the pieces by size index.
void regel_totaal(const orderregel& regel, const int32_t* besteld, ordertotalen* totaal);
void order_totaal_bij(char teken, const ordertotalen& totaal);
// Rebuild ordertotaal, in the context of `kop`, by reading every line; the cursor's line isn't touched.
void order_totalen();
// Can all lines of the order be read? One whose series has gone can.
bool regels_leesbaar();

} // namespace zg
