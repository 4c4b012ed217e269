// The inside of pre-distributions, shared by their records (voorverd.cpp), the screen of one (voorverdscherm.cpp) and
// the list (voorverdlijst.cpp).
#pragma once
#include "sub/voorverd.h"
#include <string>
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

// Of the list: what can be done, and whose they are.
enum class Vvkeus { selecteren, wijzigen, toevoegen, verwijderen, raadplegen };
struct Vvsoort {
    uint8_t maatsoort;
    std::string naam;           // of the type
    const uint8_t* uitgesloten; // branches that are marked; null: none
};
inline constexpr int VVRIJ = 4; // of both windows

// One in the grid, on all sizes of the type: looked at, changed, deleted, or added under a free number. The number that
// it was; 0, which was told, when it could not be had.
uint16_t vv_scherm(const Vvsoort& soort, Vvkeus wat, uint16_t nummer);

} // namespace zg
