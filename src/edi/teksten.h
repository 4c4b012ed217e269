// The texts of edi/ as constants, one per row of edi/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "edi/teksten.def"
#undef TEKST
} // namespace zg
