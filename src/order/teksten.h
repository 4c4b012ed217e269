// The texts of order/ as constants, one per row of order/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "order/teksten.def"
#undef TEKST
} // namespace zg
