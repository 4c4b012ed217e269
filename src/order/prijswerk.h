// A change of prices in the register: price sets and the labels that follow them. It can't be repeated (5 % twice is
// 9.75 %), so it is worked out whole first, as values that are to stand in the end, and noted in ORDnnnn.PRS beside the
// supplier's work file. A broken-off one is finished from there, under the lock of that supplier's journal.
//
// What isn't as it was when it was noted, and isn't done yet either, is another's: it stays, and the line is named.
#pragma once
#include "shared/ioink.h"
#include "shared/registerrec.h"
#include <array>
#include <map>
#include <string>

namespace zg {

struct prijsstand { // of a label
    int32_t inkoop, prijs;
};
struct prijsetiket {
    int32_t nummer; // of the label
    int32_t maat;
    prijsstand was, wordt;
};
struct prijsserie {
    seriesleutel serie;
    int32_t nummer;  // running number: another series may have taken the key
    int32_t regel;   // of the order
    bool stond, zet; // a set was there; one is to be written
    prijsset was, wordt;
    prijsgroepen groepen_was, groepen;
    std::vector<prijsetiket> etiketten;
};
struct prijswerk {
    uint16_t leverancier, orderdatum;
    int32_t ordernummer;
    int16_t korting; // of the order, afterwards
    std::vector<prijsserie> series;
};

enum class Prijsuit { goed, anders, geweigerd }; // anders: something was another's and stayed
// Sets and labels of one series, whose lock is held.
Prijsuit prijswerk_serie(const prijswerk& noot, const prijsserie& p, const serrec& rec);
std::string prijswerk_naam(const prijsserie& p); // line and series
// All of them, each under its lock; none is held afterwards. Lines with something that stayed are added. False: refused,
// told; the rest waits in the scratch file.
bool prijswerk_doe(const prijswerk& noot, std::vector<std::string>* anders);

// The scratch file of the chosen supplier: whole or not there. False: refused, told.
bool prijswerk_noteer(const prijswerk& noot);
void prijswerk_wis();
// Such a file for who only looks; false when it can't be read or isn't whole.
bool prijswerk_lees(const std::string& pad, prijswerk* noot);
// Finish what stands in it. True when there is nothing left to do; refused: told, false.
bool prijswerk_afmaken();

// registerprijs.cpp, for both kinds of change. A label's purchase value at the rate that its old one tells; as it was where
// that tells none. Many labels have the same: what was worked out is kept as long as the value lives.
struct inkoopvolger {
    std::string valuta;
    std::map<std::array<int32_t, 3>, int32_t> bekend = {};
    int32_t volgt(int32_t netto_was, int32_t inkoop_was, int32_t netto);
};
// Narrow the period of a changed set to the order's day and those beside it on which the supplier has no labels. False:
// the chain is damaged, told.
bool prijs_periode(const serrec& serie, prijsset* set);
// Has the series labels of another order of this supplier and date? A damaged chain tells none.
bool op_andere_order(const serrec& serie);
// Do the purchase values of all labels fit? False: told.
bool prijzen_passen(const prijsserie& p);

} // namespace zg
