// Module uniprijs: rows, context and arithmetic, see price/uniprijs.h. Doubles in the order told, so that all programs
// get the same cents.
#include "price/uniprijs.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "term/datum.h"
#include <algorithm>
#include <cstdio>

namespace zg {

prijscontext up_context = {"", 2, 1.0, 10000, 0, 0, 0, Kortingsmethode::automatisch, 0, Calcmodus::geen,
                           0,  0, 0,   0};

namespace {

constexpr int BTWCODES = sizeof firma.btw / sizeof firma.btw[0];

// Rounded, and below the mark of an unknown price.
int32_t als_prijs(double waarde) {
    return std::min(round(waarde), PRIJS_ONBEKEND - 1);
}

// With room for what computing a total loses: 100 and -99.99 of it are -99.99.
bool geldige_korting(double procent) {
    constexpr double GRENS = 99.99 + 1e-9;
    return procent >= -GRENS && procent <= GRENS;
}

double deel(double korting) {
    return geldige_korting(korting) ? (100 - korting) / 100 : 1;
}

// The net price of a size with a gross price.
int32_t netto_van(const prijsrijen& rijen, int maat, double korting) {
    const int32_t bruto = up_lees(rijen.bruto, maat);
    return bruto ? std::max(als_prijs(bruto * deel(korting)), 1) : PRIJS_ONBEKEND;
}

} // namespace

void up_valuta(const char* code, double koers, int32_t koersfactor) {
    snprintf(up_context.valuta, sizeof up_context.valuta, "%s", valuta_of_thuis(code).c_str());
    up_context.decimalen = valuta_decimalen(up_context.valuta);
    up_context.koers = koers == 0 ? koers_vandaag(up_context.valuta) : koers;
    up_context.koersfactor = koersfactor ? koersfactor : 10000;
}

void up_orderkorting(double procent) {
    up_context.orderkorting = geldige_korting(procent) ? procent : 0;
}

void up_regelkorting(double procent) {
    up_context.regelkorting = geldige_korting(procent) ? procent : 0;
}

bool up_korting_past(double regel) {
    return geldige_korting(up_totaalkorting(up_context.orderkorting, regel));
}

void up_btw(uint8_t btwcode) {
    up_context.btw = btwcode >= 1 && btwcode <= BTWCODES ? firma.btw[btwcode - 1] : 0;
}

void up_calcfactor(double factor) {
    if (!(factor >= 0 && factor <= 9.999))
        return;
    up_context.calcfactor = factor;
    up_context.calcmodus = Calcmodus::factor;
}

void up_calcfactor_merk(uint16_t merk, int16_t factor) {
    if (merk == up_context.calcmerk && factor == up_context.merkfactor)
        return;
    up_context.calcmerk = merk;
    up_context.merkfactor = factor;
    // A factor that can't be used leaves none, not the last brand's.
    up_context.calcmodus = Calcmodus::geen;
    up_context.calcfactor = 0;
    up_calcfactor(calcfactor_btw('L', factor / 1000.0));
}

double calcfactor_btw(char richting, double factor) {
    uint16_t hoogste = 0;
    for (int i = 0; i < BTWCODES; i++)
        hoogste = std::max<uint16_t>(hoogste, firma.btw[i]);
    const double m = (hoogste + 1000) / 1000.0;
    return richting == 'L' ? round(factor * m * 1000) / 1000.0 : richting == 'F' ? factor / m : 0;
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

void up_vul(prijsrij* rij, const uint8_t* maten, int32_t waarde) {
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(maten, maat))
            up_zet(rij, maat, waarde);
}

void up_wis_prijzen(prijsrijen* rijen) {
    for (prijsrij* rij : {&rijen->bruto, &rijen->netto, &rijen->inkoop})
        up_wis_rij(rij);
}

void up_zet_maat(prijsrijen* rijen, int maat, int32_t bruto, int32_t netto) {
    up_zet(&rijen->bruto, maat, std::max(bruto, 1));
    up_zet(&rijen->netto, maat, std::max(netto, 1));
}

void up_vul_groep(prijsrijen* rijen, const uint8_t* maten, int32_t bruto, int32_t netto) {
    up_vul(&rijen->netto, maten, netto);
    up_vul(&rijen->bruto, maten, std::max(bruto, 1));
}

void up_zet_advies(prijsrijen* rijen, int maat, int32_t waarde) {
    up_zet(&rijen->advies, maat, std::max(waarde, 1));
}

void up_wis_advies_maat(prijsrijen* rijen, int maat) {
    up_zet(&rijen->advies, maat, 0);
}

maatprijzen up_maatprijzen(const prijsrijen& rijen, int maat) {
    auto minstens1 = [&](const prijsrij& rij) { return std::max(up_lees(rij, maat), 1); };
    return {minstens1(rijen.netto), minstens1(rijen.bruto), minstens1(rijen.inkoop),
            up_lees(rijen.advies, maat)};
}

bool up_compleet(const prijsrijen& rijen) {
    for (int maat = 1; maat <= MATEN; maat++)
        if (up_aanwezig(rijen.bruto, maat) &&
            up_aanwezig(rijen.netto, maat) != up_aanwezig(rijen.advies, maat))
            return false;
    return true;
}

double up_totaalkorting(double order, double regel) {
    double f = deel(order);
    if (geldige_korting(regel))
        f = (100 - regel) / 100 * f;
    return f * -100 + 100;
}

void up_netto_alle(prijsrijen* rijen) {
    const double korting = up_totaalkorting(up_context.orderkorting, up_context.regelkorting);
    up_wis_rij(&rijen->netto);
    for (int maat = 1; maat <= MATEN; maat++)
        if (up_aanwezig(rijen->bruto, maat))
            up_zet(&rijen->netto, maat, netto_van(*rijen, maat, korting));
}

void up_netto_groep(prijsrijen* rijen, prijsgroep_info* groep, double korting) {
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!maat_in(groep->maten, maat) || !up_aanwezig(rijen->bruto, maat))
            continue;
        up_zet(&rijen->netto, maat, netto_van(*rijen, maat, korting));
        groep->netto = up_lees(rijen->netto, maat);
    }
}

void up_inkoop_alle(prijsrijen* rijen) {
    const omrekening thuis = naar_thuis_met(up_context.valuta, up_context.koers, up_context.koersfactor);
    up_wis_rij(&rijen->inkoop);
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!up_aanwezig(rijen->netto, maat))
            continue;
        const int32_t netto = up_lees(rijen->netto, maat);
        up_zet(&rijen->inkoop, maat,
               netto ? std::clamp(naar_thuis_factor(netto, thuis), 1, PRIJS_ONBEKEND - 1) : PRIJS_ONBEKEND);
    }
}

double up_korting_groep(const prijsrijen& rijen, const prijsgroep_info& groep) {
    const int32_t netto = up_lees(rijen.netto, groep.eerste.maatnr);
    const int32_t bruto = up_lees(rijen.bruto, groep.eerste.maatnr);
    if (netto <= 0 || bruto <= 0)
        return 0;
    const double r = std::max(netto * -100.0 / bruto + 100, -100.0);
    return round(r * 100) / 100.0;
}

double up_marge_groep(const prijsrijen& rijen, const prijsgroep_info& groep) {
    double inkoop = 0, advies = 0;
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(groep.maten, maat)) {
            inkoop += up_lees(rijen.inkoop, maat);
            advies += up_lees(rijen.advies, maat);
        }
    return advies == 0 ? 0 : 100 + inkoop * -100 / (1000.0 / (up_context.btw + 1000) * advies);
}

int32_t up_bereken_advies(int32_t inkoop, Calcmodus modus, double waarde, bool afronden) {
    double advies = 0;
    if (modus == Calcmodus::factor)
        advies = inkoop * waarde;
    else if (modus == Calcmodus::marge && waarde < 100)
        advies = (up_context.btw + 1000) / 1000.0 * (inkoop * 100.0 / (100 - waarde));
    const int32_t prijs = std::max(als_prijs(advies), 0);
    return afronden && prijs ? up_afronden(prijs) : prijs;
}

int32_t up_afronden(int32_t prijs) {
    if (prijs < 1 || valuta_of_thuis("") != "EUR")
        return prijs;
    const int64_t stap = prijs <= 10000 ? 100 : 1000;
    int64_t rond = prijs / stap * stap + stap / 2;
    if (prijs % stap > stap / 2)
        rond += stap * 45 / 100;
    return static_cast<int32_t>(std::min<int64_t>(rond, PRIJS_ONBEKEND - 1));
}

int32_t toeslag_erbij(int32_t prijs, int16_t korting) {
    return std::max(als_prijs(prijs + prijs * (korting / 10000.0)), 1);
}

int32_t toeslag_eraf(int32_t prijs, int16_t korting) {
    const double over = korting * 100.0 / 10000 + 100;
    return korting == -10000 ? prijs : std::max(als_prijs(prijs * 100.0 / over), 1);
}

} // namespace zg
