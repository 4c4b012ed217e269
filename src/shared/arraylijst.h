// A pick list over rows that are in memory, with a search field on the list's last row.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zg {

struct ArrayLijst {
    const char* titel;
    std::string kop;                 // column head, empty for none
    std::vector<std::string> regels; // code page 850
    const char* vraag;               // label of the search field
    const char* formaat;             // its format, an 's' type of at most 20: "3s,IU"
    // Row for what was typed: exact or the first behind it; -1 tells that there is none (and why, by
    // error()).
    std::function<int(const char*)> zoek;
    int begin = 0; // row that the cursor stands on first
    // What F10 does with the row under the cursor; it may change `regels`. Empty: no F10.
    std::function<void(int)> record;
};

// The row chosen, -1 for none. Without rows the box "Geen informatie".
int arraylijst(const ArrayLijst& lijst);

} // namespace zg
