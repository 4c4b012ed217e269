// Where an order journal or work file stands, by its name: data directory, season, supplier; and what that data directory
// knows about what may be in it. All is read through descriptors of its own, without a lock, and never ends the tool.
#pragma once
#include "order/ordcheck.h"
#include <string>
#include <vector>

namespace zg {

struct Ordplaats {
    std::string map; // data directory, as a path
    std::string seizoen;
    int leverancier; // 0: ORD2016Z.JRN, in the data directory itself
    bool werk;       // a work file
};
// DIR/2016Z/ORD0012.JRN or .WRK, DIR/ORD2016Z.JRN. False for another name.
bool ord_plaats(const std::string& pad, Ordplaats* plaats);
// "2016Z"
bool is_seizoensmap(const std::string& naam);
// The journals and work files of a season directory, or of all seasons of a data directory, sorted. A work file that holds
// nothing is none.
std::vector<std::string> ord_bestanden(const std::string& map);
// What the data directory says of it: firm, branches, relations, as far as it can be read.
ordomgeving ord_omgeving(const Ordplaats& plaats);

} // namespace zg
