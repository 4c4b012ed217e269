// The texts of term/macro/ as constants, one per row of term/macro/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "term/macro/teksten.def"
#undef TEKST
} // namespace zg
