// Purchase seasons: a season exists when its directory does ("2016Z"; year 0 is the standard season).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

struct Seizoen {
    uint16_t jaar; // 0 the standard season
    char letter;   // 'Z', 'W' or 'K'
};

inline constexpr char SEIZOENLETTERS[] = "ZWK";

std::string seizoen_map(uint16_t jaar, char letter); // "2016Z"
// A year as typed: two digits are expanded (below 51 this century). 0 stays 0, the standard season.
unsigned seizoen_jaar(unsigned getypt);
// The seasons that there are, latest first, the standard ones at the end.
std::vector<Seizoen> seizoen_lijst();
// Pick list, beginning on the season given; false without a pick, or without any season (told).
bool seizoen_kiezen(uint16_t* jaar, char* letter);

} // namespace zg
