// The code tables as tables of a field with a list (shared/lijstveld.h). An unknown code may be added, F10 in the list
// opens the record of a row.
#pragma once
#include "shared/lijstveld.h"

namespace zg {

// The formats are their codes' widths; one-digit codes are 1 to 9, the list of the first four has their head slot's
// text for its title.
extern const Lijsttabel ACTIETABEL, CORRECTIETABEL, INKOOPTABEL, DEELSEIZOENTABEL;
extern const Lijsttabel KLEURTABEL;        // colours, "3u": 1 to 999. What ties to a deleted one goes with it
extern const Lijsttabel DOELGROEPTABEL;    // target groups, one character, in DTDOELGR
extern const Lijsttabel ETIKETSOORTTABEL;  // label kinds, "2U"
extern const Lijsttabel KENMERKSOORTTABEL; // kinds of feature, one digit, those of the user's set
extern const Lijsttabel PRIJSKLASSETABEL;  // price classes, one digit
extern const Lijsttabel STELSELTABEL;      // size systems, "2U"
extern const Lijsttabel LANDTABEL;         // countries by their ISO code of three letters
extern const Lijsttabel OMZETGROEPTABEL;   // turnover groups, "4u", in DTOMZGRP
extern const Lijsttabel FILIAALREEKSTABEL; // sets of branches, "2U"
extern const Lijsttabel BTWTABEL;          // VAT codes 1 to 10 of the firm, "2U": the percentage, list only

// VAT code of a turnover group, 0 when there is no such group.
uint8_t omzetgroep_btw(uint16_t nummer);
// The branches of a set, 32 bytes by index; false, and none, when there is no such set.
bool filiaalreeks_lees(uint8_t nummer, uint8_t* filialen);

// Forget the countries, which are read once: they are read again at the next use.
void landen_vergeet();

} // namespace zg
