// All order journals of a data directory, read for the operators' check: their records, and the orders and lines that the
// registration knows of; and what broken-off programs left beside them.
#pragma once
#include "shared/registerrec.h"
#include "tools/keurwerk.h"
#include "tools/stamkeur.h"
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
struct leegjournaal {
    std::string pad;
    uint16_t leverancier, jaar;
    char seizoen;
};
struct journalen {
    std::vector<journaalorder> orders;
    std::set<std::pair<uint16_t, char>> seizoenen; // season directories that could be listed
    std::set<uint16_t> leveranciers_in_hand;
    std::set<uint16_t> leveranciers_stuk; // a journal is damaged, and may hold more orders than were found
    std::vector<leegjournaal> leeg;       // that nobody has: 0 bytes
    bool map_ongelezen = false;           // a season's directory couldn't be listed
    int64_t bestanden = 0, regels = 0;
    keurbestanden per_bestand; // what the check tells of each
};
// `boek`: the master data that lines are held against, null for none. The firm's settings are read.
journalen journalen_lees(const stamboek* boek);

// Names of season directories, "2016Z".
std::vector<std::string> keur_seizoenen();
// Files of a season whose supplier has no order under way: the next who chooses him removes them unread. Paths.
std::vector<std::string> werkresten(const std::string& seizoen);

} // namespace zg
