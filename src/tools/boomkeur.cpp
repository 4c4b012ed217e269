#include "tools/boomkeur.h"
#include "shared/files.h"
#include "store/diepcheck.h"
#include "tools/paar.h"

namespace zg {
namespace {

keurbestand keur(const std::string& naam, int seconden) {
    keurbestand uit{naam, "", {}, {}};
    Paar paar;
    if (paar_open(naam, &paar) != GOED) {
        uit.kwalen.push_back("can't be opened");
        return uit;
    }
    IXTELLING telling;
    const auto kijk = [&] {
        telling = {};
        const Werkbalk balk("check " + naam);
        return IXDIEPCHECK(paar.idx, paar.dat, false, &telling);
    };
    uit.kwalen = kijk();
    if (!uit.kwalen.empty()) {
        const bool vast = paar_vast(&paar, seconden) == GOED;
        if (vast)
            uit.kwalen = kijk();
        else
            uit.noten.push_back("in use; a change meanwhile looks like damage");
        paar_los(&paar);
    }
    uit.telling = std::to_string(telling.levend) + " records";
    return uit;
}

} // namespace

std::vector<keurbestand> bomen_keur(int seconden) {
    std::vector<keurbestand> uit;
    for (const char* naam : {"DTSER", "DTIPA", "DTEAN", "DTORDNR", "DTSERPIC"}) {
        const std::string stam = naam;
        if (!IOEXISTS((stam + ".INX").c_str()) || !IOEXISTS((stam + ".TXT").c_str()))
            continue;
        if (keurbestand b = keur(stam, seconden); !b.kwalen.empty())
            uit.push_back(std::move(b));
    }
    return uit;
}

} // namespace zg
