// The work file of one order: opened as a full-layout copy, indexed by line in the ORS file, marked by the ACT
// file, committed into the journal by wrk_sluit. Every structural change builds TMP and renames it over WRK.
#pragma once
#include "order/ioord.h"
#include <string>

namespace zg {

extern int32_t aantal_regels;       // lines of the open order
extern ordhandle* journaal;         // the open journal, null when none
extern ordhandle* werk;             // the open work file, null when none
extern int32_t order_start, order_volgende; // the order's place in the journal; volgende -1 for none
extern bool order_nieuw;            // a new order is being entered
extern ors_ingang regelingang;      // the cursor's entry

// Names of the five files of the chosen supplier, empty outside an order; ext is "JRN", "WRK" ...
void wrk_namen();
void wrk_namen_wis();
std::string wrk_naam(const char* ext);

bool wrk_open();
// Commit; false (box shown, WRK and ACT kept) when a write failed and the journal is as it was.
bool wrk_sluit();
bool wrk_actief_schrijf();
void wrk_actief_wis();
bool ors_nieuw();
void ors_wis();
bool ors_lees(char modus, ors_ingang* ingang); // 'F' 'N' 'P' 'R'
bool tmp_nieuw(bool ors_ook);
bool tmp_schrijf(char tag, bool indexeer);
bool tmp_tekst(int soort, char* blok);
// False when a write failed: told in a box, the work file is as it was.
bool wrk_regel_in(ors_ingang* ingang, bool met_model);
bool wrk_regel_uit(ors_ingang* ingang);
bool wrk_regel_vervang(ors_ingang* ingang);
// Automatic restore of an interrupted order: true when the journal has it (back) whole.
bool herstel_order();

} // namespace zg
