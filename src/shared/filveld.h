// Branch fields: one branch number with its list and its name, and the text of a set of branches ("1-3,7").
#pragma once
#include "shared/lijstveld.h"
#include <cstdint>
#include <string>

namespace zg {

// The branches by number.
extern const Lijsttabel FILIAALTABEL;
// A field of it with the branch's name behind it (20 characters) when naam_kolom is not 0. 0 is no branch. 1
// when the number changed.
int fil_veld(int rij, int kolom, int naam_kolom, const char* opties, uint8_t* nummer);

// Sets of branches: 32 bytes, bit by branch index. The text gives branch numbers and ranges of them,
// ascending within a range, blanks anywhere between; a range takes the branches that exist in it.
enum class Filreeks { goed, fout, onbekend }; // fout: not such a text; onbekend: a number that no branch has
Filreeks filreeks_lees(const char* tekst, uint8_t* bits, int* nummer = nullptr); // nummer: the unknown one
std::string filreeks_tekst(const uint8_t* bits);
// The text of a set as a field of `breedte` visible columns (250 characters at most), asked until it is one; what a
// wrong one has is told. A set whose text is longer is replaced by what is typed. True when it changed.
bool filreeks_veld(int rij, int kolom, int breedte, const char* opties, uint8_t* bits);
inline bool fil_in(const uint8_t* bits, int index) { // null: an empty set
    return bits && bits[index / 8] >> (index % 8) & 1;
}
inline void fil_erbij(uint8_t* bits, int index) {
    bits[index / 8] |= static_cast<uint8_t>(1 << (index % 8));
}

} // namespace zg
