#include "order/bestanden.h"
#include "order/programma.h"
#include "price/koers.h"
#include "shared/iomaat.h"
#include "shared/leesstam.h"
#include "sub/omlev.h"
#include "sub/omserie.h"

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

constexpr Stambestand BESTANDEN[] = {
    {"DTART", &dtart},
    {"DTLEV", &dtlev},
    {"DTMAAT", &dtmaat},
    {"DTMERK", &dtmerk},
    {"DTMTOM", &dtmtom},
    {"DTOMZGRP", &dtomzgrp},
    {"DTVVTAB", &dtvvtab},
    {"DTDOELGR", &dtdoelgr, true},
    {"DTLEVEXT", &dtlevext, true},
};

} // namespace

void bestanden_open(bool lezen) {
    stam_houder(stam_vergeet);
    stam_open("zgbestel", BESTANDEN, lezen);
    koers_open();
    if (registermodus)
        register_open(lezen);
}

void bestanden_sluit() {
    register_sluit();
    koers_sluit();
    stam_sluit(BESTANDEN);
}

} // namespace zg
