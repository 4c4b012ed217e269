// Variables of order/programma.h.
#include "order/programma.h"

namespace zg {

bool registermodus;
std::string seizoensmap;
uint16_t gekozen_jaar;
char gekozen_letter;
uint16_t gekozen_leverancier;
uint16_t sessienummer;
char gebruikersrecht;
std::string sneltoetsen;
ordparm orderparameters;

} // namespace zg
