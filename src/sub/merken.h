// Brands (DTMERK): the field with its list, and the screen on one brand. DTMERK is opened by the program.
#pragma once
#include "shared/lijstveld.h"
#include "shared/stamrec.h"
#include "term/recordscherm.h"

namespace zg {

// The field at a place: digits are a brand's number, else a search name that begins the search name of one brand
// alone. F5 lists, an unknown number may be added, F10 in the list opens the record. 0 is no brand.
Lijstuit merk_veld(int rij, int kolom, const char* opties, uint16_t* merk);
// The screen on one brand: added (asked), looked at, changed and deleted. True when something was written.
bool merk_scherm(uint16_t merk);
// The same, and what became of the record; `vragen`: an unknown one is asked about first.
Recorduit merk_onderhoud(uint16_t merk, bool vragen);
// "Wilt u merk 12 toevoegen"; empty when this user may not.
std::string merk_vraag(uint16_t merk);
// The brand that a text stands for, as in the field: 0 for none; *aantal how many brands (two at most) begin so.
uint16_t merk_van_tekst(const std::string& tekst, int* aantal);
// The brand with this search name, 0 for none.
uint16_t merk_met_zoeknaam(const char (&zoeknaam)[4]);
// The search name proposed for a name: "Van der Velde" gives "VNDR".
std::string merk_zoeknaam(const char* naam);

} // namespace zg
