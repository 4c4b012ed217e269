// Dates: a u16 count of days from 1 January 1900, 0 for none; every year divisible by 4 is a leap year. Texts
// of 6 (DDMMJJ) or 8 (DDMMJJJJ) digits. Also the system's rounding and the clock.
#pragma once
#include <cstdint>

namespace zg {

// 1 for a day of the calendar, else 0. The last two digits of the year tell whether it has a 29 February.
int DATUMGELDIG(const char* tekst);
// 0 when not valid or not from 1900 to 2078; of two digits, below 51 is 20xx.
uint16_t DATUMNR(const char* tekst);
void DATUMTEKST(char* uit, uint16_t nr, bool eeuw); // 6 or 8 digits; blanks for 0. uit holds 9
const char* DATUM6(uint16_t nr);                    // DDMMJJ; these three share one static buffer
const char* DATUM8(uint16_t nr);                    // DD-MM-JJ
const char* DATUM10(uint16_t nr);                   // DD-MM-JJJJ
int32_t round(double waarde);                       // nearest integer, halves away from 0
uint16_t VANDAAG();                                 // local time
int32_t NUSECONDEN();                               // since midnight, local time
const char* TIJDTEKST(int32_t sec);                 // "hh:mm:ss" in a static buffer

} // namespace zg
