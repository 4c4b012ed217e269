// What the check of the register has read, for its parts: registerkeur.cpp reads series, sets, labels and codes,
// orderkeur.cpp holds the orders against them.
#pragma once
#include "shared/etikeur.h"
#include "shared/iomaat.h"
#include "tools/registerkeur.h"
#include "tools/veldkeur.h"
#include <algorithm>
#include <bitset>
#include <map>
#include <set>
#include <unordered_map>

namespace zg {

struct Seriestand {
    serrec rec;
    int32_t plaats; // record in DTSER
    bool heel;      // its chain of labels
    etitelling labels;
    uint8_t codes[MAATBYTES]; // sizes that have one
};
struct Periode { // of a price set
    sleutelwaarde serie;
    uint16_t leverancier, van, tot;
    uint8_t maten[MAATBYTES];
};
struct Orderlabels { // of one order in one block; number 0: of none
    sleutelwaarde serie;
    int32_t blok, nummer; // there may be millions: no gaps
    uint16_t leverancier, datum;
    bool in_nota; // one at least
};

struct Keuring {
    registerdelen met; // what is open
    keurbestand dtser{"DTSER", ""}, dtipa{"DTIPA", ""}, dteti{"DTETI", ""}, dtean{"DTEAN", ""},
        dtordnr{"DTORDNR", ""}, jrn{"journals", ""};
    std::unordered_map<sleutelwaarde, Seriestand> series;
    std::vector<Periode> prijzen;        // by series
    std::vector<Orderlabels> van_orders; // by series
    // Labels of a size or size type that isn't their series', and those of a size that their price set hasn't either.
    std::map<sleutelwaarde, int> vreemde_maat, zonder_maat;
    etikeuring eti{};
    Veldkeur op_order{"DTETI:order", sizeof(etiket)}, verder{"DTETI:verder", sizeof(etiket)}; // labels
    std::bitset<256> filialen;      // their numbers, and what else a receiving location may be
    std::set<sleutelwaarde> sporen; // series without a record that have prices or codes
    std::set<std::pair<sleutelwaarde, uint16_t>> sets; // series and supplier that have prices
    std::vector<int32_t> nummers_zonder_order;
    bool nummer_kwijt = false;          // an order has no number record
    bool journalen_stuk = false;        // not all orders could be read
    std::map<int32_t, int32_t> tellers; // by system record: what a wrong counter should be

    // Every label could be read, so what has none has none.
    bool labels_heel() const {
        return met.labels && !eti.erbuiten &&
               std::ranges::none_of(eti.ketens, [](const auto& s) { return s.second == Etiketen::stuk; });
    }
};

// Wrong, or only perhaps while somebody has the series.
void keur_kwaal(keurbestand* b, const Seriestand* s, const std::string& wat);

// orderkeur.cpp: orders of the journals, number records and labels against each other.
void keur_orders(Keuring* k);

} // namespace zg
