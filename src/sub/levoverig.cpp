// A supplier's other data: numbers, currency with its rate and surcharge, size system.
#include "codes/codeveld.h"
#include "codes/valveld.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "sub/levbeeld.h"
#include "sub/maatsoort.h"
#include "sub/omlev.h"
#include "sub/rijveld.h"
#include "sub/teksten.h"
#include "term/recordscherm.h"
#include <climits>
#include <cmath>

namespace zg {
namespace {

constexpr int WAARDE = 22, KEUSRIJ = 10, HULPKOLOM = 2;
constexpr uint32_t GEEN_TOESLAG = 10000;

levrec& nu = relatie_nu;

template <auto LID> constexpr auto toon = rij_toon<relatie_nu, LID, WAARDE>;

// The help line of a row that ends in the word for the relation.
void hulp(const Tekst& tekst) {
    SCRPUT(A_WAARDE, KEUSRIJ, HULPKOLOM, "%s %s", TXT(tekst), relatie_woord(relatie_als));
}

bool vraag_btw(int rij) {
    hulp(T_O_H_BTW);
    return rij_vraag<relatie_nu, &levrec::btwnummer, WAARDE>(rij);
}
bool vraag_debiteur(int rij) {
    hulp(T_O_H_DEBITEUR);
    return rij_vraag<relatie_nu, &levrec::debiteurnr, WAARDE>(rij);
}
bool vraag_crediteur(int rij) {
    hulp(T_O_H_CREDITEUR);
    return rij_vraag<relatie_nu, &levrec::crediteurnr, WAARDE>(rij);
}

// ---- currency; a fixed rate is that of the currency that it was entered for

void toon_valuta(int rij) {
    const std::string code = VASTTEKST(nu.valuta);
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3.3s  %-30.30s", code.c_str(),
           lijstnaam(VALUTATABEL, {0, code}).c_str());
}
bool vraag_valuta(int rij) {
    if (lijstveld(VALUTATABEL, rij, WAARDE, "UE", nu.valuta, sizeof nu.valuta) != Lijstuit::anders)
        return false;
    nu.koers = 0;
    nu.koerseenheid = 0;
    return true;
}

bool vreemd() {
    return thuisvaluta_anders(VASTTEKST(nu.valuta).c_str());
}

// 0: the rate of the day.
double koers() {
    const uint16_t eenheid = nu.koerseenheid ? nu.koerseenheid : uint16_t{1};
    return nu.koers > INT32_MAX ? 0 : koers_dubbel(static_cast<int32_t>(nu.koers), eenheid);
}

void toon_koers(int rij) {
    SCRCLREOL(rij, WAARDE);
    if (nu.koers != 0)
        SCRPUT(A_WAARDE, rij, WAARDE, "%.5f", koers());
    else if (vreemd())
        SCRPUT(A_WAARDE, rij, WAARDE, "%s", TXT(T_DAGKOERS));
}
bool vraag_koers(int rij) {
    double nieuw = koers();
    if (!koers_veld(rij, WAARDE, "", nu.valuta, &nieuw))
        return false;
    int32_t geheel = 0;
    uint16_t eenheid = 0;
    if (nieuw > 0)
        koers_integer(nieuw, &geheel, &eenheid);
    nu.koers = static_cast<uint32_t>(geheel);
    nu.koerseenheid = eenheid;
    return true;
}

double toeslag() {
    return (nu.toeslag ? nu.toeslag : GEEN_TOESLAG) / double{GEEN_TOESLAG};
}
void toon_toeslag(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-12.4f", toeslag());
}
bool vraag_toeslag(int rij) {
    double factor = toeslag();
    if (!INGAVE(rij, WAARDE, "8.4f,EP", &SCHERM.toets[key_cancel], &factor))
        return false;
    nu.toeslag = static_cast<uint32_t>(std::lround(factor * GEEN_TOESLAG));
    return true;
}

void toon_stelsel(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-2.0u %-20.20s", nu.maatstelsel,
           lijstnaam(STELSELTABEL, {nu.maatstelsel, ""}).c_str());
}
bool vraag_stelsel(int rij) {
    return stelsel_veld(rij, WAARDE, "", 0, nu.nummer, &nu.maatstelsel);
}

const Item RIJEN[] = {
    {11, &T_O_BTW, toon<&levrec::btwnummer>, vraag_btw},
    {12, &T_O_DEBITEUR, toon<&levrec::debiteurnr>, vraag_debiteur},
    {13, &T_O_CREDITEUR, toon<&levrec::crediteurnr>, vraag_crediteur},
    {.nummer = 14, .label = &T_O_VALUTA, .toon = toon_valuta, .bewerk = vraag_valuta, .hulp = &T_O_H_VALUTA},
    {.nummer = 15,
     .label = &T_O_KOERS,
     .toon = toon_koers,
     .bewerk = vraag_koers,
     .te_kiezen = vreemd,
     .hulp = &T_O_H_KOERS},
    {.nummer = 16,
     .label = &T_O_TOESLAG,
     .toon = toon_toeslag,
     .bewerk = vraag_toeslag,
     .hulp = &T_O_H_TOESLAG},
    {.nummer = 17,
     .label = &T_O_MAATSTELSEL,
     .toon = toon_stelsel,
     .bewerk = vraag_stelsel,
     .hulp = &T_O_H_STELSEL},
};
const Recordrijen OVERIG{
    .rij = 8, .kolom = 10, .hoogte = 13, .breedte = 66, .keusrij = KEUSRIJ, .items = RIJEN};

std::string titel() {
    return std::string(" ") + TXT(T_O_TITEL) + " - " + VASTTEKST(nu.naam) + " ";
}

} // namespace

bool levoverig_vraag(int) {
    return recorddeel(OVERIG, titel().c_str());
}

void levoverig_bekijk() {
    recorddeel(OVERIG, titel().c_str());
}

} // namespace zg
