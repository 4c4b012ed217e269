// Module uniprijs: the prices of one series, a row of each kind by size index, and the context in which they
// count: currency, rate, surcharge, discounts, VAT, calculation. Nothing here knows an order. Prices are in the
// smallest unit of their currency: gross and net in that of the context, purchase and advice in the home currency.
// Where a price is computed it stays within 1 and 2147483646, whatever numbers a file holds. A size is in the series
// when it has a gross price, known or not: an advice price alone is that of a size that went, kept for its return and
// seen by nobody. Rows are values: to
// keep them, to put them back and to compare them are assignment and ==. The walks over groups of sizes are
// prijsgroep.cpp's and go over the bar in force (shared/maatbalk.h), all of its sizes, chosen or not; without one
// they stop with INTERNAL 7.
#pragma once
#include "shared/fmtab.h"
#include <array>
#include <cstdint>

namespace zg {

// A slot holds 0 for a size that isn't in the row, a price above 0, or this: in the row, without a price yet.
inline constexpr int32_t PRIJS_ONBEKEND = INT32_MAX;

using prijsrij = std::array<int32_t, MAATKOLOMMEN>;

struct prijsrijen {
    prijsrij bruto, netto, inkoop, advies;
};

// How an advice price comes out of a purchase price.
enum class Calcmodus { geen, factor, marge };
// How a new price group gets its net prices.
enum class Kortingsmethode { automatisch = 1, korting, netto };

struct prijscontext {
    char valuta[4];                    // of gross and net
    int decimalen;                     // of that currency
    double koers;                      // home units for one foreign unit, never 0
    int32_t koersfactor;               // surcharge times 10000
    double orderkorting, regelkorting; // per cent
    double nieuwe_korting;             // last entered in "Nieuwe korting"
    Kortingsmethode methode;
    int btw; // VAT of the article group, per mille
    Calcmodus calcmodus;
    double calcfactor; // with VAT
    double calcmarge;  // per cent
    // Brand and its stored factor that calcfactor was last taken from.
    uint16_t calcmerk;
    int16_t merkfactor;
};
extern prijscontext up_context;

// Set the currency with its rate and surcharge. Rate 0 is the rate of the day, looked up here, once; factor 0
// is 10000. An empty code is the home currency.
void up_valuta(const char* code, double koers, int32_t koersfactor);
// A discount outside -99.99 to 99.99 is none.
void up_orderkorting(double procent);
void up_regelkorting(double procent);
// Does this line discount keep the total with the order's in range? One that doesn't would count as no discount.
bool up_korting_past(double regel);
// VAT by the code of an article group, 1 to 10; none for another code.
void up_btw(uint8_t btwcode);
// Calculate with this factor from now on; one outside 0 to 9.999 changes nothing.
void up_calcfactor(double factor);
// The same with a brand's stored factor (without VAT, thousandths), once per change of brand: what was entered since
// stays while brand and factor are the same. A factor that can't be used leaves none to calculate with.
void up_calcfactor_merk(uint16_t merk, int16_t factor);
// A calculation factor without VAT to one with it ('L': to the screen, three decimals) and back ('F': to the file), by
// the firm's highest rate. 0 for another direction.
double calcfactor_btw(char richting, double factor);

// Reading gives 0 for an unknown price; storing takes a negative value as 0. Sizes are 1 to 95.
int32_t up_lees(const prijsrij& rij, int maat);
bool up_aanwezig(const prijsrij& rij, int maat);
void up_zet(prijsrij* rij, int maat, int32_t waarde);
// The value in each size of a set of 12 bytes.
void up_vul(prijsrij* rij, const uint8_t* maten, int32_t waarde);
inline void up_wis_rij(prijsrij* rij) {
    rij->fill(0);
}
inline void up_wis_advies(prijsrijen* rijen) {
    rijen->advies.fill(0);
}
void up_wis_prijzen(prijsrijen* rijen); // all but the advice prices

// Gross and net of a size, each below 1 taken as 1; of a set of sizes, where only gross is.
void up_zet_maat(prijsrijen* rijen, int maat, int32_t bruto, int32_t netto);
void up_vul_groep(prijsrijen* rijen, const uint8_t* maten, int32_t bruto, int32_t netto);
void up_zet_advies(prijsrijen* rijen, int maat, int32_t waarde); // below 1 taken as 1
void up_wis_advies_maat(prijsrijen* rijen, int maat);
// The prices of a size: 1 for one that is absent or unknown, but 0 for an absent advice price.
struct maatprijzen {
    int32_t netto, bruto, inkoop, advies;
};
maatprijzen up_maatprijzen(const prijsrijen& rijen, int maat);
// Has every size of the series with a net price its advice price, and the other way round?
bool up_compleet(const prijsrijen& rijen);

// Two discounts compounded, per cent: 10 and 10 give 19. One out of range counts as none.
double up_totaalkorting(double order, double regel);
// The net row from the gross row with both discounts: an unknown price stays unknown.
void up_netto_alle(prijsrijen* rijen);
// The purchase row from the net row, in the context: an unknown price stays unknown.
void up_inkoop_alle(prijsrijen* rijen);
// An advice price from a purchase price: by factor, or by margin with VAT; 0 when there is nothing to compute.
int32_t up_bereken_advies(int32_t inkoop, Calcmodus modus, double waarde, bool afronden);
// Cents up to the next .50 or .95 (from 100.00 on 5.00 or 9.50), a round price too. Only in euros.
int32_t up_afronden(int32_t prijs);

// A net price that an order's discount went off (korting in hundredths of a per cent, negative: -250 is 2.50%
// off), and back. A result of 0 is 1. At -10000 nothing can be computed back: the price as it is.
int32_t toeslag_erbij(int32_t prijs, int16_t korting);
int32_t toeslag_eraf(int32_t prijs, int16_t korting);

// Columns of a screen of prices, bit values. A walk over groups compares gross and net for any of 4 to 32, advice
// prices for 64 or 128.
enum Prijskolom : uint8_t {
    PK_GROEP = 1,
    PK_MATEN = 2,
    PK_BRUTO = 4,
    PK_KORTING = 8,
    PK_NETTO = 16,
    PK_INKOOP = 32,
    PK_ADVIES = 64,
    PK_MARGE = 128
};
// How a walk looks at the rows: what it compares, and whether a size must have an advice price, too, to be there.
struct prijszicht {
    uint8_t kolommen;
    bool op_advies;
};
inline constexpr prijszicht ZICHT_INKOOP = {PK_NETTO, false}; // the price groups of a price set
inline constexpr prijszicht ZICHT_ADVIES = {PK_ADVIES, true};
inline constexpr prijszicht ZICHT_SAMEN = {PK_NETTO | PK_ADVIES, false};

// Adjacent sizes with equal prices. Sizes that are not there don't end a group.
struct prijsgroep_info {
    mtinfo eerste, laatste;
    uint8_t maten[MAATBYTES];
    int32_t netto, bruto, inkoop, advies; // of the first size, as far as they are compared; 0 for unknown
    int32_t aantal_maten;                 // 0 before the walk, -1 behind the last group
    int32_t aantal_groepen;               // up_groep_nummer fills it
};

// The next group on the bar; a walk begins with a cleared record. False, and -1 sizes, behind the last.
bool up_volgende_groep(const prijsrijen& rijen, prijszicht zicht, prijsgroep_info* groep);
// Group n, from 0, and the number of groups. False, and -1 sizes, when there is no such group.
bool up_groep_nummer(const prijsrijen& rijen, prijszicht zicht, int n, prijsgroep_info* groep);
int up_aantal_groepen(const prijsrijen& rijen, prijszicht zicht);
// Changes of the advice price along the bar: 10, 20, 10 are 3.
int up_aantal_verkoopprijzen(const prijsrijen& rijen);

// Net prices of a group's sizes from gross, with this discount, per cent; the group's net price is the last one's.
void up_netto_groep(prijsrijen* rijen, prijsgroep_info* groep, double korting);
// Discount of a group by its first size, per cent to two decimals, never below -100; 0 when a price is missing.
double up_korting_groep(const prijsrijen& rijen, const prijsgroep_info& groep);
// Margin of a group's sums of purchase and advice prices, per cent, VAT taken off; 0 without advice prices.
double up_marge_groep(const prijsrijen& rijen, const prijsgroep_info& groep);

// A page, from 1, of six groups and eighteen sizes present by gross price: the first group on it (from 0; of the last
// page with groups when it is behind them) and its sizes, 12 bytes. False when it has neither.
bool up_pagina(const prijsrijen& rijen, prijszicht zicht, int pagina, int* eerste, uint8_t* maten);

// The set of sizes has changed: a new size takes the prices of its neighbour on the bar (the next, else the one
// before), its advice price only when it has none, and is unknown where that one has none either; a size that went
// loses all but its advice price.
void up_maten_gewijzigd(prijsrijen* rijen, const uint8_t* oud, const uint8_t* nieuw);

// The advice prices as an order line or a series stores them, 40 bytes: eight sizes that each end a range of equal
// prices along the bar, 0 behind the last, and the prices of the ranges.
inline constexpr int ADVIESRANGEN = 8;
inline constexpr size_t ADVIESBLOK = 40;
// False when there are more prices than ranges: the last range then has the eighth price and goes on to the last size.
bool up_advies_bewaren(const prijsrijen& rijen, uint8_t* blok);
// Into the advice row, for a set of sizes. A stored price below 1 becomes 1, in the block too; without a range all
// sizes get the price of the first.
void up_advies_laden(prijsrijen* rijen, const uint8_t* maten, uint8_t* blok);

} // namespace zg
