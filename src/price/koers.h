// Module koers: exchange rates by date, conversion of amounts, the integer form of a rate. A rate is home
// units for one foreign unit; on file an i32 of ten-thousandths per `eenheid` units. Amounts are in the
// smallest unit of their currency; factor is the surcharge times 10000 (10000: none). Codes are 3 characters.
#pragma once
#include "shared/stamrec.h"
#include <string>

namespace zg {

// DTKOERS, read-only. A rate asked while it is closed stops with INTERNAL 1.
void koers_open();
void koers_sluit();

// Rate that holds at a date: the newest record of the code not later than it; 1.0 when there is none, or when that
// record's isn't above 0.
double koers_datum(const char* code, uint16_t datum);
double koers_vandaag(const char* code);
double koers_record(const char* code, uint16_t datum, koersrec* rec); // and the record, zeros when none
double koers_dubbel(int32_t koers, uint16_t eenheid);                 // eenheid 0 stops with INTERNAL 2
// A rate as entered into its integers: the unit is 1, or grows with a small rate so that digits are kept.
void koers_integer(double koers, int32_t* geheel, uint16_t* eenheid);

// Conversions; rate 0 is the rate of today. A result of 0 is 1: treat an amount of 0 apart. Kept within the
// range of an amount.
int32_t naar_valuta(int32_t bedrag, const char* code, double koers, int32_t factor);
int32_t naar_thuis(int32_t bedrag, const char* code, double koers);
int32_t naar_thuis_factor(int32_t bedrag, const char* code, double koers, int32_t factor);
// The last for many amounts: currencies and rate of the day looked up once.
struct omrekening {
    double koers, factor, schaal;
};
omrekening naar_thuis_met(const char* code, double koers, int32_t factor);
int32_t naar_thuis_factor(int32_t bedrag, const omrekening& o);
// The rate with the fewest digits that turns the foreign amount into the home amount; 1.0 for amounts below 1.
double koers_vernauwen(const char* code, int32_t vreemd, int32_t thuis, int32_t factor);

std::string bedrag_tekst(const char* code, int64_t bedrag); // plain digits, or two decimals
std::string koers_tekst(const char* code, double koers);    // the order's line of rate text
double tien_macht(int n);

} // namespace zg
