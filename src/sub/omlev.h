// Relations (DTLEV): suppliers, agents, manufacturers. Their tables for a field with a list, and the screen on one
// relation. The caller opens DTLEV and sets `dtlev`, and keeps the records that it reads.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"

namespace zg {

extern ICB* dtlev; // the open pair, null when closed

// Relations by number, those of one kind: a number that isn't there, or lacks the kind, may be added. The list is
// sorted by number or name (TAB), F10 opens the record.
extern const Lijsttabel LEVERANCIERTABEL, AGENTTABEL, FABRIKANTTABEL;
// Read a relation of any kind, unless *beeld holds that number already; false, and *beeld cleared, when it isn't
// there.
bool relatie_lees(uint16_t nummer, levrec* beeld);
// "leverancier", "agent", "fabrikant", "relatie"
const char* relatie_woord(Relatiesoort soort);

// The screen on one relation, as one of its kinds: looked at, or with `wijzigen` also added (asked), changed, deleted
// as that kind. True when something was written.
enum class Relatiemodus { raadplegen, wijzigen };
bool relatie_scherm(uint16_t nummer, Relatiesoort soort, Relatiemodus modus);
// A number that is no relation of the kind: the question whether it is to become one (empty when this user may not),
// and its screen, or the kind given to the relation that there is. True when it was written.
std::string relatie_vraag(uint16_t nummer, Relatiesoort soort);
bool relatie_voeg_toe(uint16_t nummer, Relatiesoort soort);

} // namespace zg
