// Program-wide state of the order program: the mode, the season and supplier chosen, the session. The driver
// sets it, every order module reads it.
#pragma once
#include "order/ordrec.h"
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

extern bool registermodus;      // DTSER.INX existed at the start: the full registration
extern std::string seizoensmap; // directory of the chosen season, "2016Z"
extern uint16_t gekozen_jaar;   // 0 the standard season
extern char gekozen_letter;
extern uint16_t gekozen_leverancier;
extern uint16_t sessienummer;   // slot of the session in DTSYS.TXT
extern char gebruikersrecht;    // 'I' may look, not change
extern std::string sneltoetsen; // n-th character selects the n-th visible size
extern ordparm orderparameters; // ORDPARM.SYS

} // namespace zg
