// Module uniprijs, see price/uniprijs.h. Doubles in the order told, so that all programs get the same cents.
#include "price/uniprijs.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zg {

prijscontext up_context = {"", 2, 1.0, 10000, 0, 0};

namespace {

// Rounded, halves away from 0, and below the mark of an unknown price.
int32_t als_prijs(double waarde) {
    double heel = std::round(waarde);
    return heel >= PRIJS_ONBEKEND ? PRIJS_ONBEKEND - 1
           : heel <= INT32_MIN    ? INT32_MIN
                                  : static_cast<int32_t>(heel);
}

double geldige_korting(double procent) {
    return procent >= -99.99 && procent <= 99.99 ? procent : 0;
}

} // namespace

void up_valuta(const char* code, double koers, int32_t koersfactor) {
    snprintf(up_context.valuta, sizeof up_context.valuta, "%s", valuta_of_thuis(code).c_str());
    up_context.decimalen = valuta_decimalen(up_context.valuta);
    up_context.koers = koers == 0 ? koers_vandaag(up_context.valuta) : koers;
    up_context.koersfactor = koersfactor ? koersfactor : 10000;
}

void up_orderkorting(double procent) {
    up_context.orderkorting = geldige_korting(procent);
}

void up_regelkorting(double procent) {
    up_context.regelkorting = geldige_korting(procent);
}

int32_t up_lees(const prijsrij& rij, int maat) {
    int32_t p = rij[static_cast<size_t>(maat)];
    return p == PRIJS_ONBEKEND ? 0 : p;
}

bool up_aanwezig(const prijsrij& rij, int maat) {
    return rij[static_cast<size_t>(maat)] > 0;
}

void up_zet(prijsrij* rij, int maat, int32_t waarde) {
    (*rij)[static_cast<size_t>(maat)] = std::max(waarde, 0);
}

void up_zet_maat(prijsrijen* rijen, int maat, int32_t bruto, int32_t netto) {
    up_zet(&rijen->bruto, maat, std::max(bruto, 1));
    up_zet(&rijen->netto, maat, std::max(netto, 1));
}

void up_inkoop_alle(prijsrijen* rijen) {
    rijen->inkoop = {};
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!up_aanwezig(rijen->netto, maat))
            continue;
        int32_t netto = up_lees(rijen->netto, maat);
        up_zet(&rijen->inkoop, maat,
               netto ? std::min(naar_thuis_factor(netto, up_context.valuta, up_context.koers,
                                                  up_context.koersfactor),
                                PRIJS_ONBEKEND - 1)
                     : PRIJS_ONBEKEND);
    }
}

int32_t toeslag_erbij(int32_t prijs, int16_t korting) {
    int32_t p = als_prijs(prijs + double{1} * prijs * korting / 10000);
    return p ? p : 1;
}

int32_t toeslag_eraf(int32_t prijs, int16_t korting) {
    double deel = 100 + korting / 100.0;
    return korting == -10000 ? prijs : als_prijs(prijs * 100.0 / deel);
}

} // namespace zg
