// What other programs of the package keep of a series and its labels: mutations of stock, advice orders, bar codes of
// suppliers, open till sales. For the deletion of a series (sub/serdel.h). A file that isn't there, or has no key to find
// the records by, is left alone; so is a record that another has in hand.
#pragma once
#include "shared/registerrec.h"
#include <string>
#include <vector>

namespace zg {

struct ICB;

// The records go that are found by the series, or by the numbers of its labels. False: refused, told.
bool wis_mutaties(const serrec& serie, const std::vector<int32_t>& labelnummers);
bool wis_barcodes(const seriesleutel& serie);
bool wis_adviesorders(const seriesleutel& serie);
// Those of an open pair, by a key that begins with the series; a pair that is null has none.
bool wis_van_serie(ICB* icb, int sleutel, const seriesleutel& serie);

// Is one of these codes among the till sales that are still open? Where that can't be asked it may be.
bool staat_op_zicht(const std::vector<std::string>& codes);

} // namespace zg
