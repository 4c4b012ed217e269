// Dates: a u16 count of days from 1 January 1900, 0 for none; every year divisible by 4 is a leap year. Texts
// of 6 (DDMMJJ) or 8 (DDMMJJJJ) digits. Also the system's rounding and the clock.
#pragma once
#include <cstdint>

namespace zg {

int DATUMGELDIG(const char* tekst);
uint16_t DATUMNR(const char* tekst);                // 0 when not valid; an 8-digit date beyond 2078 gives 0
void DATUMTEKST(char* uit, uint16_t nr, bool eeuw); // 6 or 8 digits; blanks for 0. uit holds 9
const char* DATUM6(uint16_t nr);                    // DDMMJJ; these three share one static buffer
const char* DATUM8(uint16_t nr);                    // DD-MM-JJ
const char* DATUM10(uint16_t nr);                   // DD-MM-JJJJ
int32_t round(double waarde);                       // nearest integer, halves away from 0
uint16_t VANDAAG();
int32_t NUSECONDEN(); // since midnight, local time
const char* TIJDTEKST(int32_t sec);

} // namespace zg
