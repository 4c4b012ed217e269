// The texts of price/ as constants, one per row of price/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "price/teksten.def"
#undef TEKST
} // namespace zg
