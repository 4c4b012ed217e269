// The questions of a price screen about the group in hand, in the column in force of the layout (price/prijsscherm.h). Each
// puts its answer into the rows at once. False: cancel; what the field then holds is stored as well, but never 0 or an
// unknown price for a size of the line.
#pragma once
#include "price/prijsscherm.h"

namespace zg {

// Which flow asks: keys and limits differ.
enum class Prijsverloop { definieren, wijzigen };

// The size at which the group ends; it takes in or gives up sizes behind it. Group `laatste_nr` and later ones (94 of the
// gross groups, 7 of the advice groups, counted from 0) run to the end of the bar unasked.
bool vraag_maatbereik(prijsgroep_info* groep, int nummer, int laatste_nr);
bool vraag_bruto(prijsgroep_info* groep, Prijsverloop verloop);
bool vraag_netto(prijsgroep_info* groep, Prijsverloop verloop);
bool vraag_advies(prijsgroep_info* groep, int nummer);

} // namespace zg
