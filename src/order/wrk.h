// The work file of one order: opened as a full-layout copy, indexed by line in the ORS file, marked by the
// ACT file, committed into the journal by wrk_sluit. Every structural change builds TMP and renames it over
// WRK.
#pragma once
#include "order/ioord.h"
#include <functional>
#include <string>

namespace zg {

struct orderregel;
struct seriesleutel;

extern int32_t aantal_regels;               // lines of the open order
extern ordhandle* journaal;                 // the open journal, null when none
extern ordhandle* werk;                     // the open work file, null when none
extern int32_t order_start, order_volgende; // the order's place in the journal; volgende -1 for none
extern bool order_nieuw;                    // a new order is being entered
// The order may only be looked at: set by wrk_open and the repair from the status that the journal holds; in the full
// registration also one without a number, or with a line that isn't registered: its pieces have no labels.
extern bool order_alleen_lezen;
extern ors_ingang regelingang; // the cursor's entry
extern seriesleutel
    regel_uit; // of the line that was taken out last; group 0: none since the order was opened

// Names of the five files of the chosen supplier, empty outside an order; ext is "JRN", "WRK" ...
void wrk_namen();
void wrk_namen_wis();
std::string wrk_naam(const char* ext);
// Every one of these names is made, replaced and taken away by these, which ask first whether they are still this session's
// (ord_nog_vast). False or -1 with errno. One that wasn't there counts as taken away.
int wrk_maak(const char* ext, int vlaggen); // a descriptor, as SYSNIEUW
bool wrk_hernoem(const char* van, const char* naar);
bool wrk_verwijder(const char* ext);
// Were they found to be another's? Then nothing of the order can be kept by this session, which goes back to the season.
bool wrk_verloren();

// False when a scratch file can't be made (told); none of them is left then.
bool wrk_open();
// Commit, and go on with the new journal in `journaal`. False (box shown, WRK and ACT kept for the repair)
// when a write failed; the journal is as it was then. An order that may only be looked at leaves the journal
// alone. In all cases `werk` is closed and the names are cleared.
bool wrk_sluit();
bool wrk_actief_schrijf();
void wrk_actief_wis();
// WRK, TMP, ORS and ACT go, in this order: while WRK is there an interrupted order can be seen.
void wrk_ruim_op();
bool ors_nieuw();
void ors_wis();
bool ors_lees(char modus, ors_ingang* ingang); // 'F' 'N' 'P' 'R'
bool tmp_nieuw(bool ors_ook);
bool tmp_schrijf(char tag, const void* inhoud, bool indexeer);
bool tmp_tekst(int soort, const char* blok);
// False when a write failed: told in a box, the work file is as it was.
// Afterwards *ingang is the entry of: the new line; the line that took the deleted one's place (cleared when
// none is left); the same line. The new line comes behind the lines of the model at *ingang, with its own `M`
// when met_model; registration and time stamp are set in it. A changed line brings its model, texts and
// records in one copy of the file and keeps its time stamp; in registermodus its texts alone: the rest stands
// as it was, price file and labels hold the truth. What has to go in front of a line that is taken out (`tevoren`) goes when
// the file without it is on disk; false, told by itself, and the line stays.
bool wrk_regel_in(ors_ingang* ingang, bool met_model, orderregel* regel);
bool wrk_regel_uit(ors_ingang* ingang, const std::function<bool()>& tevoren = {});
bool wrk_regel_vervang(ors_ingang* ingang, orderregel* regel);
// Automatic restore of an interrupted order, with the journal open: true when the journal has it (back)
// whole. The scratch files are gone then, and on failure too. Only when the disk refuses the commit, or WRK or ACT
// may not be read (told), these stay for the next time: `journaal` is closed and null then, and the caller goes back to the
// season prompt.
bool herstel_order();

} // namespace zg
