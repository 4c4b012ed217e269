// The texts of codes/ as constants, one per row of codes/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "codes/teksten.def"
#undef TEKST
} // namespace zg
