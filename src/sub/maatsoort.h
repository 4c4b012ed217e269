// Size types (maatsoorten) and size bars: the screen of one type, the list of its bars, the sizes of a series. The
// bar in force (shared/maatbalk.h) is closed for maintenance and opened again behind it.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"

namespace zg {

// The size types; number 2 wide, list and names from the system table.
extern const Lijsttabel MAATSOORTTABEL;

// A size system as a field on the screen of a brand, or (merk 0) of a supplier. It stays, which is told, where the
// program says that sizes in hand go by it: STELSELHAAK, null for never. True when it changed.
extern bool (*STELSELHAAK)(uint16_t merk, uint16_t leverancier);
bool stelsel_veld(int rij, int kolom, const char* opties, uint16_t merk, uint16_t leverancier,
                  uint8_t* stelsel);

// The screen of one size type, in a window of its own, in a size system: entered when it is new (asked first), else
// looked at and changed under its lock. True when the type is there afterwards, with sizes in this system.
bool maatsoort_onderhoud(int rij, int kolom, uint8_t stelsel, uint8_t soort);
// The field; `moet_bestaan`: an unknown number is refused, otherwise it is left to the caller. F10 in its list opens the
// type's screen in `stelsel`, 0 for the firm's size system.
Lijstuit maatsoort_veld(int rij, int kolom, const char* opties, uint8_t* soort, bool moet_bestaan,
                        uint8_t stelsel = 0);

// The bars of the type in force: "STVW" or a part of it. Selecting adds the bar's sizes, those that the type has, to
// the set. False when left without a selection; with `f6` that key leaves it as well, and is in SCHERM.laatste.
bool maatbalk_kiezen(const char* acties, uint8_t* maten, bool f6 = false);
// Confirm or change the set of sizes of a line, in the type in force. `met_aantallen`: sizes that stay; null: none.
// `opgeefbaar`: F6 asks whether the line is to be given up. False, with the set as
// it was, when it was, or was left without a size. Afterwards the bar in force shows the set.
bool serie_maten(int rij, int kolom, uint8_t* maten, const uint8_t* met_aantallen, bool opgeefbaar = false);

} // namespace zg
