// A key beside the entries of the node in hand; for zoeken.cpp and wijzigen.cpp.
#pragma once
#include "store/node.h"

namespace zg {

inline constexpr int32_t GEENBLOK = -1;

struct Zoeker {
    ICB* icb;
    const IXKEYDEF* def;
    const uint8_t* sleutel;
    int lengte;

    int stap() const { return def->keylen + 4; }
    int aantal() const { return KNOOP(icb).count; }
    uint8_t* entry(int i) const { return KNOOP(icb).entries + i * stap(); }
    int32_t wijzer(int i) const { return LEES32(entry(i) + def->keylen); }
    int vergelijk(int i) const { return IXVERGELIJK(*def, sleutel, entry(i), lengte); }

    // First entry not below the key; the count when all are.
    int plaats() const {
        int laag = 0, hoog = aantal();
        while (laag < hoog) {
            int midden = (laag + hoog) / 2;
            if (vergelijk(midden) > 0)
                laag = midden + 1;
            else
                hoog = midden;
        }
        return laag;
    }
    // First entry above the key.
    int erna() const {
        int i = plaats();
        while (i < aantal() && vergelijk(i) >= 0)
            i++;
        return i;
    }
    // Entry with this pointer, the count when there is none.
    int met_wijzer(int32_t n) const {
        int i = 0;
        while (i < aantal() && wijzer(i) != n)
            i++;
        return i;
    }
    // Is the answer to the operator certain to be in the node in hand?
    bool binnen(char op) const {
        if (aantal() == 0)
            return false;
        int eerste = vergelijk(0), laatste = vergelijk(aantal() - 1);
        return op == '>' ? eerste >= 0 && laatste < 0 : eerste > 0 && laatste <= 0;
    }
};

} // namespace zg
