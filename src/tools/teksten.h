// The texts of tools/ as constants, one per row of tools/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "tools/teksten.def"
#undef TEKST
} // namespace zg
