// The inside of pre-distributions, shared by their records (voorverd.cpp) and their screens (voorverdlijst.cpp).
#pragma once
#include "sub/voorverd.h"
#include <vector>

namespace zg {

inline constexpr uint16_t VVNUMMERS = 99; // highest number within a size type

// The numbers of a type that are on file, ascending.
std::vector<uint16_t> vv_nummers(uint8_t maatsoort);

// A number in hand: its first record locked, or that record's key reserved, until it is saved or let go.
bool vv_grijp(uint8_t maatsoort, uint16_t nummer); // waits; false: the disk refused, which was told
void vv_laatlos(uint8_t maatsoort, uint16_t nummer);
// The lowest number that nobody has, in hand. 0: none, or the disk refused, both told.
uint16_t vv_grijp_vrije(uint8_t maatsoort);
// vv_bewaren for the number in hand, which is let go.
bool vv_vervang(uint8_t maatsoort, uint16_t nummer, const aantalmatrix& tabel);

} // namespace zg
