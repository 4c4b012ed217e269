// Branch fields: one branch number with its list and its name, and the text of a set of branches ("1-3,7").
#pragma once
#include <cstdint>
#include <string>

namespace zg {

// Field "3U" at a place, `opties` the format's letters behind the comma ("ZP", "IZP"). F5 opens the list of
// branches, an unknown number is refused, the name stands behind the field (20 characters) when naam_kolom is
// not 0. An empty field or 0 is accepted as 0. Keys allowed before the call leave as in INGAVE. 1 when the
// number changed; CANCEL and ESC keep the old one.
int fil_veld(int rij, int kolom, int naam_kolom, const char* opties, uint8_t* nummer);
// Pick list of the branches; 1 and the number when one was picked.
int fil_kiezen(uint8_t* nummer);

// Sets of branches: 32 bytes, bit by branch index. The text gives branch numbers and ranges of them,
// ascending within a range, blanks anywhere between; a range takes the branches that exist in it.
enum class Filreeks { goed, fout, onbekend }; // fout: not such a text; onbekend: a number that no branch has
Filreeks filreeks_lees(const char* tekst, uint8_t* bits, int* nummer = nullptr); // nummer: the unknown one
std::string filreeks_tekst(const uint8_t* bits);
inline bool fil_in(const uint8_t* bits, int index) {
    return bits[index / 8] >> (index % 8) & 1;
}

} // namespace zg
