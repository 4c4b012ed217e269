// The order on paper, onto the open print job: a row a line; with everything that the order holds; or a sheet for each
// branch. As wide as the job is: pieces that don't fit beside each other go below each other. Sizes stand in blocks.
#pragma once
#include "order/ioord.h"
#include <vector>

namespace zg {

enum class Orderblad { kort, volledig, filialen };
struct orderafdruk {
    Orderblad blad;
    bool prijzen;
};

// The order of `kop`: its header stands at `plaats` of the file that `werk` has open, its lines at `regels`. In the full
// registration out of series, price sets and labels. Stops where the user wants out (XPRT_STOP). False when there was
// nothing to print. `onleesbaar`, if any, grows by the lines that couldn't be read: they are marked, and count for nothing in
// the totals. The shared areas of a line (bar in force, price context, brand and group kept) are this walk's
// afterwards; `kop` and regel_nu are as they were.
bool print_order(const orderafdruk& hoe, const std::vector<ors_ingang>& regels, int32_t plaats,
                 int* onleesbaar = nullptr);

// "A&fdrukken" on the line screen: asks what and where to, and prints the open order.
void order_afdrukken(int vraagrij);

} // namespace zg
