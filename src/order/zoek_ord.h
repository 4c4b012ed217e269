// Module zoek_ord: the orders of one journal as a list, sorted by date, order number or supplier's number.
#pragma once
#include "order/ioord.h"
#include <cstdint>

namespace zg {

// The list over all orders, or over those dated from `van` to `tot`. True when one was picked: the handle
// stands on it and `kop` holds it. Without any order the status line says so. `nieuw_toegestaan` shows the
// hint for a new order; F3, and "/" in an empty search field, close the list without a pick as cancel does.
bool zoek_ord(ordhandle* h, bool nieuw_toegestaan);
bool zoek_ord_periode(ordhandle* h, uint16_t van, uint16_t tot);

} // namespace zg
