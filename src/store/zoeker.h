// A key beside the entries of the node in hand; for zoeken.cpp and wijzigen.cpp.
#pragma once
#include "store/node.h"
#include <algorithm>

namespace zg {

inline constexpr int32_t GEENBLOK = -1;

// IXVERGELIJK of one key with many: what its definition says is looked up once, and where the first byte that differs
// decides no more is done.
class Vergelijker {
public:
    Vergelijker(const IXKEYDEF& def, const uint8_t* sleutel, int lengte)
        : def_(def), sleutel_(sleutel), lengte_(std::min<int>(lengte, def.keylen)) {
        int eind = 0;
        for (int breed; (breed = IXDEELBREEDTE(def, delen_)) > 0; delen_++)
            einde_[delen_] = eind += breed;
    }
    int operator()(const uint8_t* entry) const {
        const int v = IXVERSCHIL(sleutel_, entry, lengte_);
        for (int d = 0; d < delen_ && v < lengte_; d++)
            if (v < einde_[d]) {
                if (def_.ptype[d] != 'C')
                    return sleutel_[v] - entry[v];
                const int a = IXENKELGEWICHT[sleutel_[v]], b = IXENKELGEWICHT[entry[v]];
                if (a != b && a >= 0 && b >= 0)
                    return a - b;
                break;
            }
        return IXVERGELIJK(def_, sleutel_, entry, lengte_);
    }

private:
    const IXKEYDEF& def_;
    const uint8_t* sleutel_;
    int lengte_, delen_ = 0;
    int einde_[IXDELEN];
};

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
        const Vergelijker tegen(*def, sleutel, lengte);
        int laag = 0, hoog = aantal();
        while (laag < hoog) {
            int midden = (laag + hoog) / 2;
            if (tegen(entry(midden)) > 0)
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
