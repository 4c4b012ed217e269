// The grid of 95 cells in which the sizes of a type are kept: a cell a position on the bar.
#pragma once
#include "shared/iomaat.h"

namespace zg {

constexpr int MAATCELRIJ = 3, MAATCELRIJEN = 5; // window rows that it takes

void maatcellen_toon(mthandle* h);  // null: every cell empty
int maatcellen_aantal(mthandle* h); // sizes of the type
// Edit until cancel or ESC. `gebruik`: 12 bytes, sizes that stay and keep their label, unless that begins with "~".
// On `voetrij` it says when F8 inserts. Answers the number of sizes that were put between others and stayed.
int maatcellen_bewerk(mthandle* h, const uint8_t* gebruik, int voetrij);

} // namespace zg
