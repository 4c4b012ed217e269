#include "order/bestanden.h"
#include "order/programma.h"
#include "price/koers.h"
#include "shared/iomaat.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "sub/omlev.h"
#include "sub/omserie.h"
#include <cerrno>
#include <iterator>

namespace zg {

levrec leverancier;
artrec regelgroep;
merkrec regelmerk, rijmerk;

void stam_vergeet() {
    leverancier = {};
    regelstam_vergeet();
}

void regelstam_vergeet() {
    regelgroep = {};
    regelmerk = rijmerk = {};
}

namespace {

struct Bestand {
    const char* naam;
    int modus;
    ICB** icb;
    bool mag_ontbreken = false;
};
const Bestand BESTANDEN[] = {
    {"DTART", 2, &dtart},
    {"DTLEV", 2, &dtlev},
    {"DTMAAT", 2, &dtmaat},
    {"DTMERK", 2, &dtmerk},
    {"DTMTOM", 2, &dtmtom},
    {"DTOMZGRP", 2, &dtomzgrp},
    {"DTVVTAB", 2, &dtvvtab},
    {"DTDOELGR", 2, &dtdoelgr, true},
    {"DTLEVEXT", 2, &dtlevext, true},
};

} // namespace

void bestanden_open(bool lezen) {
    stam_houder(stam_vergeet);
    for (const Bestand& b : BESTANDEN) {
        if (!stam_aanwezig(b.naam)) {
            if (b.mag_ontbreken)
                continue;
            errno = ENOENT;
            OPENFAIL("zgbestel", b.naam);
        }
        *b.icb = IXOPEN(b.naam, lezen ? 0 : b.modus);
    }
    koers_open();
    if (registermodus)
        register_open(lezen);
}

void bestanden_sluit() {
    register_sluit();
    koers_sluit();
    for (size_t i = std::size(BESTANDEN); i-- > 0;) {
        if (*BESTANDEN[i].icb)
            IXCLOSE(*BESTANDEN[i].icb);
        *BESTANDEN[i].icb = nullptr;
    }
}

} // namespace zg
