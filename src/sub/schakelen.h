// The toggle grid: the sizes of the type in force with J or N under each. Serves the bars and the sizes of a series.
#pragma once
#include "shared/iomaat.h"

namespace zg {

// Its window, with a free row for a question or message below the grid, and what the set holds. WINCLOSE ends it.
void schakel_open(const char* titel, const uint8_t* maten);
int schakel_vraagrij();
// Size by size, until behind the last one or cancel. Sizes in `vast` (null: none) can't be taken out. Bits of sizes
// that the type doesn't have stay as they are. With `f6` that key ends it as well.
void schakel_bewerk(uint8_t* maten, const uint8_t* vast, bool f6 = false);

} // namespace zg
