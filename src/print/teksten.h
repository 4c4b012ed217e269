// The texts of print/ as constants, one per row of print/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "print/teksten.def"
#undef TEKST
} // namespace zg
