// All order journals of a data directory, read for the operators' check: their records, and the orders and lines that the
// registration knows of.
#pragma once
#include "shared/registerrec.h"
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zg {

struct journaalorder {
    std::string waar; // "2016Z/ORD0012.JRN at 0"
    uint16_t leverancier, jaar, orderdatum;
    char seizoen;
    uint8_t ontvangstlocatie;
    int32_t nummer;
    std::map<sleutelwaarde, uint16_t> series; // of its registered lines, with the line's stamp of the day
    bool in_hand;                             // a program has the journal, or broke off in it
};
struct journalen {
    std::vector<journaalorder> orders;
    std::set<std::pair<uint16_t, char>> seizoenen; // season directories
    std::set<uint16_t> leveranciers_in_hand;
    std::set<uint16_t> leveranciers_stuk; // a journal is damaged, and may hold more orders than were found
    int64_t bestanden = 0, regels = 0;
    std::vector<std::string> kwalen, noten;
};
journalen journalen_lees(int filialen);

} // namespace zg
