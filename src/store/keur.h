// The invariants of the trees, as store/node.h numbers them, asserted on every change before it is written: in builds
// with sanitizers only, which define ZG_KEUR.
#pragma once
#include "store/ix.h"

namespace zg {

#ifdef ZG_KEUR
inline constexpr bool IXKEURAAN = true;
#else
inline constexpr bool IXKEURAAN = false;
#endif

struct Gekeurd {
    int32_t blok;
    const uint8_t* was; // null for a new block
    const uint8_t* wordt;
};
// The blocks of one change. Ends the program with the number of the invariant that the change breaks; a damaged file
// that broke one before may go on breaking it.
void IXKEUR(const ICB* icb, const Gekeurd* blokken, size_t n);

} // namespace zg
