// A key of a pair made current for as long as it lives; the one that was current is so again behind it.
#pragma once
#include "store/ix.h"

namespace zg {

struct Sleutelstand {
    explicit Sleutelstand(ICB* pair, int sleutel = 1) : icb(pair), oude(IXSLEUTEL(pair)) {
        IXSWITCH(icb, sleutel);
    }
    ~Sleutelstand() { IXSWITCH(icb, oude); }
    Sleutelstand(const Sleutelstand&) = delete;
    Sleutelstand& operator=(const Sleutelstand&) = delete;
    ICB* icb;
    int oude;
};

} // namespace zg
