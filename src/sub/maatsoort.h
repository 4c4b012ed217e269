// Size types (maatsoorten) and size bars: the screen of one type, the list of its bars, the sizes of a series. The
// bar in force (shared/maatbalk.h) is closed for maintenance and opened again behind it.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"

namespace zg {

// The size types; number 2 wide, list and names from the system table.
extern const Lijsttabel MAATSOORTTABEL;

// The screen of one size type, in a window of its own, in a size system: entered when it is new (asked first), else
// looked at and changed under its lock. True when the type is there afterwards, with sizes in this system.
bool maatsoort_onderhoud(int rij, int kolom, uint8_t stelsel, uint8_t soort);
// The field; `moet_bestaan`: an unknown number is refused, otherwise it is left to the caller. F10 in its list opens the
// type's screen in `stelsel`, 0 for the firm's size system.
Lijstuit maatsoort_veld(int rij, int kolom, const char* opties, uint8_t* soort, bool moet_bestaan,
                        uint8_t stelsel = 0);

// The bars of the type in force: "STVW" or a part of it. Selecting adds the bar's sizes, those that the type has, to
// the set. False when left without a selection.
bool maatbalk_kiezen(const char* acties, uint8_t* maten);
// Confirm or change the set of sizes of a line, in the type in force. `met_aantallen`: sizes that stay; null: none.
// `serie`: for the tills; null: none. False, with the set as it was, when it was given up without a size. Afterwards
// the bar in force shows the set.
bool serie_maten(int rij, int kolom, uint8_t* maten, const uint8_t* met_aantallen, const seriesleutel* serie);

} // namespace zg
