// Relations (DTLEV): suppliers, agents, manufacturers. A pick field with its list, and the screen on one
// relation. The caller opens DTLEV and sets `dtlev`; the record image `leverancier` is the program's one
// image of it.
#pragma once
#include "shared/stamrec.h"

namespace zg {

extern ICB* dtlev;         // the open pair, null when closed
extern levrec leverancier; // image of the relation read last

// Number field at a place, "4u,P" and the letters `opties` behind it ("", "E", "Z"), F5 for the list of
// relations of `soort` (bits of Relatiesoort). A number that isn't there, or lacks the kind, is refused with
// "Onbekende ..." and the field stays open; 0 is accepted when the field may be empty. True when it was left
// with an entry (also an unchanged one): the record is in `leverancier` then, cleared for 0. False after
// CANCEL or ESC, *nummer as it was.
bool relatie_veld(int rij, int kolom, const char* opties, Relatiesoort soort, uint16_t* nummer);
// Pick list of the relations of a kind, sorted by number or name (TAB); false without a pick.
bool relatie_kiezen(Relatiesoort soort, uint16_t* nummer);
// Read a relation into `leverancier`; false, and the image cleared, when it isn't there.
bool relatie_lees(uint16_t nummer);
// "leverancier", "agent", "fabrikant", "relatie"
const char* relatie_woord(Relatiesoort soort);

// The screen on one relation: looked at, or changed field by field under its record lock. True when it
// changed.
enum class Relatiemodus { raadplegen, wijzigen };
bool relatie_scherm(uint16_t nummer, Relatiesoort soort, Relatiemodus modus);

} // namespace zg
