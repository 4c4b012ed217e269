// The texts of shared/ as constants, one per row of shared/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "shared/teksten.def"
#undef TEKST
} // namespace zg
