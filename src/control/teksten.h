// The texts of control/ as constants, one per row of control/teksten.def.
#pragma once
#include "term/tekst.h"

namespace zg {
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    constexpr Tekst naam{catalogus, set, nummer, standaard};
#include "control/teksten.def"
#undef TEKST
} // namespace zg
