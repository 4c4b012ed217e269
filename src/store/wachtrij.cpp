// The lock queue from outside; see store/wachtrij.h. Changes of it are in slot.cpp.
#include "store/wachtrij.h"
#include "store/bestand.h"
#include "store/node.h"
#include <algorithm>

namespace zg {

std::string IXSLEUTELTEKST(const IXKEYDEF& def, const uint8_t* waarde) {
    std::string uit;
    for (int deel = 0, breed; deel < IXDELEN && (breed = IXDEELBREEDTE(def, deel)) > 0;
         waarde += breed, deel++) {
        if (deel)
            uit += ' ';
        if (def.ptype[deel] == 'I') {
            uint32_t getal = 0; // most significant byte first
            for (int i = 0; i < breed; i++)
                getal = getal << 8 | waarde[i];
            uit += std::to_string(getal);
        } else {
            std::string tekst(reinterpret_cast<const char*>(waarde), static_cast<size_t>(breed));
            tekst.resize(std::min(tekst.find('\0'), tekst.size()));
            tekst.resize(tekst.find_last_not_of(' ') + 1);
            uit += tekst;
        }
    }
    return uit;
}

std::vector<std::string> IXRESERVERINGEN(int idxfd, const IXHEADER& h, IXKNOOP* blok) {
    IXKNOOP eigen;
    IXKNOOP& k = blok ? *blok : eigen;
    const IXKEYDEF& def = h.keydef[0];
    std::vector<std::string> uit;
    if (IXBLOKLEES(idxfd, h.nkeys + 1, &k, sizeof k) != IXBLOK || k.keyno != 1 || k.level != 0 ||
        k.count * def.keylen > KNOOPRUIMTE) {
        k = {};
        return uit;
    }
    for (int i = 0; i < k.count; i++)
        uit.push_back(IXSLEUTELTEKST(def, k.entries + i * def.keylen));
    return uit;
}

} // namespace zg
