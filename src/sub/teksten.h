// The texts of sub/ as constants, one per row of sub/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "sub/teksten.def"
#undef TEKST
} // namespace zg
