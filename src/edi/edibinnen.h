// What the files of edi/ share and nobody else needs.
#pragma once
#include "edi/edifys.h"
#include <string>

namespace zg {

struct Tekst;

// A file on its way to its name, in the directory that it is made in; one that a killed program left is thrown away.
inline constexpr char EDIBOUW[] = ".zgedi.tmp";

// Is DTRCMSYS.TXT open?
bool edi_open();
// DTRCMSYS.TXT is there, converted from DTEDI.TXT where only that was.
bool edi_zet_om();
// A file of settings with one record, whole under its name at once; one that is there stays. False when it can't be
// made, which was told.
bool edi_nieuw(const char* naam, const edirec& rec);

// A method in words, empty for none; one asked until it is chosen, no key leaves that; `nu` is where the cursor begins.
const char* edi_methodetekst(uint8_t methode);
uint8_t edi_kies_methode(uint8_t nu);

// A directory for all who share the package: rights 2774, the group of the directory above; or those of the directory
// `voorbeeld`, whose place it is going to take. False when there is none
// then, which was told; one that is there is fine as it is.
bool edi_maakmap(const std::string& pad, const std::string& voorbeeld = "");

// Tells a text about a path (its end, without control bytes) and answers false; `fout`, where the text has a reason.
bool edi_zeg(const Tekst& tekst, const std::string& pad, int fout = 0);

// A path without the slashes at its end; "/" becomes empty.
std::string edi_zonder_streep(std::string pad);

} // namespace zg
