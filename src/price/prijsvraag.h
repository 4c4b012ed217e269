// The questions of a price screen about the group in hand, in its column of the layout (price/prijsscherm.h). Each puts its
// answer into the rows at once, net and purchase prices of the group aren't computed anew. False: cancel; what the field
// then holds is stored as well, but never 0 or an unknown price for a size of the line.
#pragma once
#include "price/prijsscherm.h"

namespace zg {

// Which flow asks: keys and limits differ.
enum class Prijsverloop { definieren, wijzigen };

// The size at which the group ends; it takes in or gives up sizes behind it. Group `laatste_nr` and later ones (94 of the
// gross groups, 7 of the advice groups, counted from 0) run to the end of the bar unasked.
bool vraag_maatbereik(prijsgroep_info* groep, int nummer, int laatste_nr);
// While prices are defined it is asked until there is one; F10 chooses the method of discount there.
bool vraag_bruto(prijsgroep_info* groep, Prijsverloop verloop);
// Of a group without a gross price that one is asked first, and is its net price until another is given. F10 takes off a new
// discount instead, in the change flow.
bool vraag_netto(prijsgroep_info* groep, Prijsverloop verloop);
// F10 calculates it, where all sizes of the group have one purchase price. `nummer` of the group, from 0.
bool vraag_advies(prijsgroep_info* groep, int nummer);

} // namespace zg
