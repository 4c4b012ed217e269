// The order header: its window "ORDER", field by field. order/kopveld.cpp edits one field.
#pragma once
#include "order/ioord.h"
#include <cstdint>

namespace zg {

extern int16_t korting_bij_opening; // the order's discount when it was opened

// New order: true when it was accepted. Existing order: true when anything changed. Written to the work file.
bool order_kop(bool nieuw);

// Between kop.cpp and kopveld.cpp.
enum Kopitem {
    KOP_LEVERANCIER,
    KOP_DATUM,
    KOP_LOCATIE,
    KOP_LEV_ORDERNR,
    KOP_OMSCHRIJVING,
    KOP_AGENT,
    KOP_DEELSEIZOEN,
    KOP_COLLECTIE,
    KOP_INKOOPCODE,
    KOP_KORTING,
    KOP_VALUTA,
    KOP_KOERS,
    KOP_TOESLAG,
    KOP_LEVERING,
    KOP_BETALING,
    KOP_ITEMS
};
inline constexpr int KOPWAARDE = 21; // column of the values
inline constexpr int KOPKEUSRIJ = 17;

extern char kop_levering[BLOKLEN], kop_betaling[BLOKLEN]; // the header's two texts

// Is the field on this order's screen? Its row in the window.
bool kop_aanwezig(int item);
int kop_rij(int item);
// Paint one value, or all of them.
void kop_toon_veld(int item);
void kop_toon();
// May the field be chosen from the menu?
bool kop_te_kiezen(int item, bool nieuw);
// Edit one field in the window; true when it changed. Items from KOP_OMSCHRIJVING on are skipped at once when
// !mag_wijzigen (SCHERM.laatste is 0 then). Keys allowed before the call leave the field.
bool kop_veld(int item, bool mag_wijzigen);

} // namespace zg
