// Article groups (DTART): the field with its list, and the screen on one group. DTART is opened by the program.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"
#include "term/recordscherm.h"

namespace zg {

// By number, 5 wide; an unknown one may be added; F10 in the list opens its record.
extern const Lijsttabel ARTGROEPTABEL;
// The screen on one group: added (asked), looked at, changed and deleted. True when something was written.
bool artgroep_scherm(int32_t artikelgroep);
// The same, and what became of the record; `vragen`: an unknown one is asked about first.
Recorduit artgroep_onderhoud(int32_t artikelgroep, bool vragen);
// "Wilt u artikelgroep 1100 toevoegen"; empty when this user may not.
std::string artgroep_vraag(int32_t artikelgroep);

} // namespace zg
