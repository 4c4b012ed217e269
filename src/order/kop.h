// The order header: its window "ORDER". order/kopveld.cpp has its items, kop.cpp what goes into the work file.
#pragma once
#include "order/ioord.h"
#include "term/itemscherm.h"
#include <cstdint>

namespace zg {

extern int16_t korting_bij_opening; // the order's discount when it was opened

// New order: true when it was accepted. Otherwise: true when anything changed, never when it is only looked at.
// What was accepted is in the work file.
bool order_kop(Itemwijze wijze);

// The rate of the order's currency at the order date into `kop`; 1 for the home currency and without any rate.
void kop_koers_van_datum();

// Is the receiving location in use, by the firm and the order's kind of message?
bool kop_met_locatie();

// Between kop.cpp and kopveld.cpp.
//
// The items. Their numbers are places in ORDPARM.SYS (kopveld + number) and stand on the screen in this order.
enum Kopitem {
    KOP_LEVERANCIER = 0,
    KOP_DATUM = 1,
    KOP_LOCATIE = 2,
    KOP_LEV_ORDERNR = 3,
    KOP_OMSCHRIJVING = 4,
    KOP_AGENT = 5,
    KOP_DEELSEIZOEN = 6,
    KOP_COLLECTIE = 7,
    KOP_INKOOPCODE = 8,
    KOP_KORTING = 9,
    KOP_VALUTA = 10,
    KOP_KOERS = 11,
    KOP_TOESLAG = 12,
    KOP_LEVERING = 13,
    KOP_BETALING = 14
};
extern const Itemscherm KOPSCHERM;
extern char kop_levering[BLOKLEN], kop_betaling[BLOKLEN]; // the header's two texts
// Before the screen runs: whether the order's first header is entered, and no relation kept from another time.
void kopveld_begin(bool nieuw);

} // namespace zg
