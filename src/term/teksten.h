// The texts of term/ as constants, one per row of term/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "term/teksten.def"
#undef TEKST
} // namespace zg
