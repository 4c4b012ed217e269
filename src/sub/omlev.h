// Relations (DTLEV): suppliers, agents, manufacturers. Their tables for a field with a list, and the screen on one
// relation. The caller opens DTLEV and sets `dtlev`, and keeps the records that it reads.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"

namespace zg {

extern ICB* dtlev; // the open pair, null when closed

// Relations by number, those of one kind: a number that isn't there, or lacks the kind, is refused. The list is
// sorted by number or name (TAB).
extern const Lijsttabel LEVERANCIERTABEL, AGENTTABEL, FABRIKANTTABEL;
// Read a relation of any kind, unless *beeld holds that number already; false, and *beeld cleared, when it isn't
// there.
bool relatie_lees(uint16_t nummer, levrec* beeld);
// "leverancier", "agent", "fabrikant", "relatie"
const char* relatie_woord(Relatiesoort soort);

// The screen on one relation: looked at, or changed field by field under its record lock. True when it
// changed.
enum class Relatiemodus { raadplegen, wijzigen };
bool relatie_scherm(uint16_t nummer, Relatiesoort soort, Relatiemodus modus);

} // namespace zg
