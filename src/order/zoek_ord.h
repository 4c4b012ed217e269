// Module zoek_ord: the orders of one journal as a list, sorted by date, order number or supplier's number.
#pragma once
#include "order/ioord.h"
#include <cstdint>
#include <vector>

namespace zg {

// The list over all orders, or over those dated from `van` to `tot`. True when one was picked: the handle
// stands on it and `kop` holds it. Without any order the status line says so. `nieuw_toegestaan` shows the
// hint for a new order; F3, and "/" in an empty search field, close the list without a pick as cancel does.
bool zoek_ord(ordhandle* h, bool nieuw_toegestaan);
bool zoek_ord_periode(ordhandle* h, uint16_t van, uint16_t tot);

// One order of the list, sortable: the complements make the latest date, number and place sort first.
struct orderrij {
    uint16_t datum;       // 100000 - orderdatum, 16 bits
    uint32_t ordernummer; // 100000 - ordernummer
    char lev_ordernr[35]; // only where the firm uses it
    uint32_t plaats;      // 100000000 - offset in the journal
};
orderrij orderrij_maak(const ordkop& van, int32_t offset, bool met_lev_ordernr);
// Order of two rows under key 1 date, 2 order number, 3 supplier's number: below 0, 0, above 0.
int orderrij_vergelijk(const orderrij& a, const orderrij& b, int sleutel);

} // namespace zg
