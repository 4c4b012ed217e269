// The texts of store/ as constants, one per row of store/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "store/teksten.def"
#undef TEKST
} // namespace zg
