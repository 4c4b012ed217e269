// The order line in memory: images, price rows, quantities and terms of one line of the work file. The shared
// line (images model and dessin, regel_prijzen, levtermen, order_aantallen) is the cursor's; walks over other
// lines read into areas of their own. In journaalmodus the work file holds all of it.
#pragma once
#include "order/levterm.h"
#include "order/ordrec.h"
#include "order/programma.h"
#include <string>
#include <vector>

namespace zg {

struct regelextra { // an E or B record, kept behind the S of its size
    uint8_t maat;
    char tag;
    char inhoud[13];
};

// Prices of a line by size index: 0 not in the row. netto holds the order's discount.
struct regelprijzen {
    int32_t bruto[MAATKOLOMMEN], netto[MAATKOLOMMEN];
    // What the file held and what was made of it: a price that nobody changed goes back as it was.
    int32_t opgeslagen[MAATKOLOMMEN], geladen[MAATKOLOMMEN];
    std::vector<regelextra> extra; // in file order
};

// A whole line apart from the shared one. `aantallen` is a matrix: the sum of the terms.
struct regelgebied {
    ordmodel model;
    orddessin dessin;
    regelprijzen prijzen;
    std::vector<levterm> termen;
    std::vector<int32_t> aantallen;
};

extern regelprijzen regel_prijzen; // of the shared line

// Clear rows, terms and quantities of the shared line; the images stay.
void regel_wis();
// Load the line at an entry of the index. regel_lees fills the shared line (images, rows, terms,
// order_aantallen; nota_aantallen and werk_aantallen are cleared), regel_lees_in an area and nothing else.
// Net prices get the order discount of `kop`. False when the work file does not hold a line there. A branch
// or size outside the firm, a quantity below 0 or one that does not fit stops with the "inconsistent, pos."
// report. In registermodus the records behind D are skipped: price file and labels hold the truth.
bool regel_lees(const ors_ingang& ingang);
bool regel_lees_in(const ors_ingang& ingang, regelgebied* gebied);
// The texts of kinds 3 and 4 of a line, blocks of BLOKLEN bytes (null: not wanted). Nothing else changes.
bool regel_teksten(const ors_ingang& ingang, char* model_blok, char* dessin_blok);

// Save the shared line with its images, put it back.
void regel_bewaar(regelgebied* gebied);
void regel_zet(const regelgebied& gebied);

// What the S record of a size of the shared line gets.
int32_t regel_bruto_opslag(int maat);
int32_t regel_netto_opslag(int maat);

// Net price with the order's discount from the stored one and back; korting as in the header (-250: 2.50%
// off).
int32_t netto_uit_opslag(int32_t opgeslagen, int16_t korting);
int32_t netto_voor_opslag(int32_t netto, int16_t korting);

} // namespace zg
