// The screens of prices, how they look; see price/prijsscherm.h.
#include "price/prijsscherm.h"
#include "price/koers.h"
#include "price/prijsvenster.h"
#include "price/teksten.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace zg {

prijsscherm up_lay;

namespace {

struct Label {
    Prijskolom kolom;
    const Tekst *tekst, *kort; // `kort` on a screen of advice prices alone
    bool te_kiezen, met_valuta;
};

// From the top.
const Label LABELS[] = {
    {PK_GROEP, &T_UP_PRIJSGROEP, &T_UP_KORT_GROEP, true, false},
    {PK_MATEN, &T_UP_MAATBEREIK, &T_UP_KORT_MAAT, false, false},
    {PK_BRUTO, &T_UP_BRUTO, nullptr, true, true},
    {PK_KORTING, &T_UP_KORTING, nullptr, true, false},
    {PK_NETTO, &T_UP_NETTO, nullptr, true, true},
    {PK_INKOOP, &T_INKPRIJS, nullptr, false, false},
    {PK_ADVIES, &T_UP_ADVIES, &T_UP_KORT_ADVIES, true, false},
    {PK_MARGE, &T_UP_MARGE, nullptr, false, false},
};

bool er_is(Prijskolom kolom) {
    return up_lay.kolommen & kolom;
}

int rijen() {
    return __builtin_popcount(up_lay.kolommen);
}

int groepkolom(int nummer) {
    return up_lay.groepkolom + (nummer - up_lay.eerste) * GROEPBREEDTE;
}

void cel(Prijskolom kolom, const std::string& tekst) {
    if (er_is(kolom))
        SCRPUT(A_WAARDE, up_rij(kolom), up_lay.nu, "%*.*s", GROEPBREEDTE, GROEPBREEDTE, tekst.c_str());
}

// An amount in its cell; without its decimals before it goes, asterisks when it doesn't fit. Blanks below 1.
std::string bedrag(const char* valuta, int32_t prijs) {
    if (prijs < 1)
        return "";
    std::string tekst = bedrag_tekst(valuta, prijs);
    if (tekst.size() > size_t{GROEPBREEDTE})
        tekst.resize(std::min(tekst.find('.'), tekst.size()));
    return tekst.size() > size_t{GROEPBREEDTE} ? std::string(GROEPBREEDTE, '*') : tekst;
}

std::string getal(const char* formaat, double waarde) {
    char tekst[32];
    snprintf(tekst, sizeof tekst, formaat, waarde);
    return tekst;
}

std::string korting(const prijsgroep_info& groep) {
    const double procent = up_korting_groep(*up_lay.rijen, groep);
    return procent == 0 ? "" : getal("%8.2lf%%", procent);
}

std::string marge(const prijsgroep_info& groep) {
    if (groep.inkoop == 0 || groep.advies == 0)
        return "";
    const double procent = up_marge_groep(*up_lay.rijen, groep);
    return procent <= -999.9 ? "<-999.9%" : getal("%7.1f%%", procent);
}

std::string bereik(const prijsgroep_info& groep) {
    char tekst[8];
    snprintf(tekst, sizeof tekst, "%3.3s/%3.3s", VASTTEKST(groep.eerste.naam).c_str(),
             VASTTEKST(groep.laatste.naam).c_str());
    return tekst;
}

// The prices of a group as the rows have them now.
void ververs(prijsgroep_info* groep) {
    const int maat = groep->eerste.maatnr;
    if (!up_lay.advies_telt) {
        groep->bruto = up_lees(up_lay.rijen->bruto, maat);
        groep->netto = up_lees(up_lay.rijen->netto, maat);
        groep->inkoop = up_lees(up_lay.rijen->inkoop, maat);
    }
    if (er_is(PK_ADVIES))
        groep->advies = up_lees(up_lay.rijen->advies, maat);
}

void wis_vanaf(int kolom) {
    for (int rij = up_lay.rij; rij < up_lay.rij + rijen(); rij++)
        SCRCLREOL(rij, kolom);
}

int onderrij() {
    return WINHOOGTE();
}

} // namespace

void up_scherm(int rij, int kolom, int groepkolom, bool geen_label, bool advies_telt, uint8_t kolommen,
               prijsrijen* rijen) {
    up_lay = {rij, kolom, groepkolom, groepkolom, geen_label, advies_telt, kolommen, rijen, 0};
}

prijszicht up_zicht() {
    return {up_lay.kolommen, up_lay.advies_telt};
}

int up_per_pagina() {
    return up_lay.advies_telt ? ADVIESGROEPEN : PRIJSGROEPEN;
}

int up_rij(Prijskolom kolom) {
    return up_lay.rij + __builtin_popcount(up_lay.kolommen & (kolom - 1));
}

void up_toon_labels(bool met_keuze) {
    for (const Label& l : LABELS) {
        if (!er_is(l.kolom) || (l.kolom == PK_GROEP && up_lay.geen_label))
            continue;
        std::string tekst = TXT(up_lay.advies_telt && l.kort ? *l.kort : *l.tekst);
        size_t letter = tekst.find('&');
        if (letter == std::string::npos)
            letter = 0;
        else
            tekst.erase(letter, 1);
        if (l.met_valuta)
            tekst += std::string(" ") + up_context.valuta;
        const int rij = up_rij(l.kolom), breedte = up_lay.groepkolom - up_lay.kolom;
        SCRPUT(A_LABEL, rij, up_lay.kolom, "%-*.*s", breedte, breedte, tekst.c_str());
        if (met_keuze && l.te_kiezen && letter < tekst.size())
            SCRPUT(A_SNELLETTER, rij, up_lay.kolom + static_cast<int>(letter), "%c", tekst[letter]);
    }
}

void up_toon_groep(prijsgroep_info* groep, int nummer) {
    up_lay.nu = groepkolom(nummer);
    ververs(groep);
    if (er_is(PK_GROEP))
        SCRPUT(A_WAARDE, up_rij(PK_GROEP), up_lay.nu + 4, " %d ", nummer + 1);
    cel(PK_MATEN, bereik(*groep));
    cel(PK_BRUTO, bedrag(up_context.valuta, groep->bruto));
    cel(PK_KORTING, korting(*groep));
    cel(PK_NETTO, bedrag(up_context.valuta, groep->netto));
    cel(PK_INKOOP, bedrag("", groep->inkoop));
    cel(PK_ADVIES, bedrag("", groep->advies));
    cel(PK_MARGE, marge(*groep));
}

void up_toon_groepen(prijsgroep_info* groep, int nummer) {
    wis_vanaf(groepkolom(nummer));
    up_toon_groep(groep, nummer);
    const int kolom = up_lay.nu, eind = up_lay.eerste + up_per_pagina();
    prijsgroep_info verder = *groep;
    bool meer = true;
    for (int n = nummer + 1; (meer = up_volgende_groep(*up_lay.rijen, up_zicht(), &verder)) && n < eind; n++)
        up_toon_groep(&verder, n);
    up_lay.nu = kolom;
    if (meer)
        SCRPUT(A_LABEL, up_lay.rij, groepkolom(eind) - 2, ">>");
    if (up_lay.eerste > 0)
        SCRPUT(A_LABEL, up_lay.rij, up_lay.groepkolom, "<<");
}

void up_toon_pagina(int eerste) {
    up_toon_labels(false);
    up_lay.eerste = eerste;
    wis_vanaf(up_lay.groepkolom);
    prijsgroep_info groep{};
    for (int n = 0; up_volgende_groep(*up_lay.rijen, up_zicht(), &groep); n++)
        if (n == eerste)
            return up_toon_groepen(&groep, n);
}

void up_toon_methode() {
    up_wis_onderregel();
    SCRPUT(A_LABEL, onderrij(), 2, "%s ", TXT(T_KORTINGSMETHODE));
    SCRPUT(A_WAARDE, onderrij(), 3 + static_cast<int>(strlen(TXT(T_KORTINGSMETHODE))), "%s",
           kortingsmethode_tekst().c_str());
}

void up_toon_berekening() {
    up_wis_onderregel();
    if (up_context.calcmodus == Calcmodus::geen)
        return;
    const bool factor = up_context.calcmodus == Calcmodus::factor;
    const char* label = TXT(factor ? T_CALCFACTOR : T_CALCMARGE);
    SCRPUT(A_LABEL, onderrij(), 2, "%s ", label);
    SCRPUT(A_WAARDE, onderrij(), 3 + static_cast<int>(strlen(label)), factor ? "%.3lf" : "%.1lf%%",
           factor ? up_context.calcfactor : up_context.calcmarge);
}

void up_wis_onderregel() {
    SCRCLREOL(onderrij(), 1);
}

} // namespace zg
