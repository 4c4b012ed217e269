// Module uniprijs: the prices of one series, a row of each kind by size index, and the context in which they
// count: currency, rate, surcharge, discounts. Nothing here knows an order. Prices are in the smallest unit of
// their currency: gross and net in that of the context, purchase and advice in the home currency. Where a
// price is computed it stays within 1 and 2147483646.
#pragma once
#include "shared/fmtab.h"
#include <array>
#include <cstdint>

namespace zg {

// A slot holds 0 for a size that isn't in the row, a price above 0, or this: in the row, without a price yet.
inline constexpr int32_t PRIJS_ONBEKEND = INT32_MAX;

using prijsrij = std::array<int32_t, MAATKOLOMMEN>;

// The kinds, bit values: they can be added up.
enum Prijssoort : uint8_t { PRIJS_BRUTO = 1, PRIJS_NETTO = 2, PRIJS_INKOOP = 4, PRIJS_ADVIES = 8 };

struct prijsrijen {
    prijsrij bruto, netto, inkoop, advies;
};

struct prijscontext {
    char valuta[4];                    // of gross and net
    int decimalen;                     // of that currency
    double koers;                      // home units for one foreign unit, never 0
    int32_t koersfactor;               // surcharge times 10000
    double orderkorting, regelkorting; // per cent
};
extern prijscontext up_context;

// Set the currency with its rate and surcharge. Rate 0 is the rate of the day, looked up here, once; factor 0
// is 10000. An empty code is the home currency.
void up_valuta(const char* code, double koers, int32_t koersfactor);
// A discount outside -99.99 to 99.99 is none.
void up_orderkorting(double procent);
void up_regelkorting(double procent);

// Reading gives 0 for an unknown price; storing takes a negative value as 0.
int32_t up_lees(const prijsrij& rij, int maat);
bool up_aanwezig(const prijsrij& rij, int maat);
void up_zet(prijsrij* rij, int maat, int32_t waarde);
// Gross and net of a size, each below 1 taken as 1.
void up_zet_maat(prijsrijen* rijen, int maat, int32_t bruto, int32_t netto);
// The purchase row from the net row, in the context: an unknown price stays unknown.
void up_inkoop_alle(prijsrijen* rijen);

// A net price that an order's discount went off (korting in hundredths of a per cent, negative: -250 is 2.50%
// off), and back. A result of 0 with the discount is 1. At -10000 nothing can be computed back: the price as
// it is.
int32_t toeslag_erbij(int32_t prijs, int16_t korting);
int32_t toeslag_eraf(int32_t prijs, int16_t korting);

} // namespace zg
