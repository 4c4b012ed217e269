// The screen PRIJSINFORMATIE: sizes of a line and one gross price for all of them. Net follows by the discount,
// purchase by currency and rate, the advice price of a new line by the brand's factor.
#include "order/aantallen.h"
#include "order/bestanden.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/serie.h"
#include "order/teksten.h"
#include "price/koers.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/itemscherm.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

enum Prijsitem { PRI_MATEN, PRI_BRUTO, PRI_KORTING, PRI_NETTO, PRI_INKOOP, PRI_ADVIES };

constexpr int HOOGTE = 10, WAARDE = 21, BREED = 57;
constexpr int MATENRIJ = SERIERIJ + HOOGTE; // window of the set, below that of the prices

bool nieuw; // prices are those of a new line: no discount of its own yet, an advice price that follows

uint8_t* maten() {
    return regel_nu.dessin.maten;
}

void waarde(int rij, const std::string& tekst) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-*.*s", BREED, BREED, tekst.c_str());
}

// The lowest and highest price of the line's sizes; sizes without one don't count. False: there is none.
bool grenzen(const prijsrij& rij, int32_t* laagste, int32_t* hoogste) {
    *laagste = PRIJS_ONBEKEND, *hoogste = 0;
    for (int maat = 1; maat <= MATEN; maat++) {
        const int32_t p = maat_in(maten(), maat) ? up_lees(rij, maat) : 0;
        if (p > 0)
            *laagste = std::min(*laagste, p), *hoogste = std::max(*hoogste, p);
    }
    return *hoogste > 0;
}

void toon_prijs(int schermrij, const prijsrij& rij, const char* valuta) {
    int32_t laagste, hoogste;
    std::string tekst;
    if (grenzen(rij, &laagste, &hoogste)) {
        tekst = bedrag_tekst(valuta, laagste);
        if (hoogste != laagste)
            tekst += " - " + bedrag_tekst(valuta, hoogste);
    }
    waarde(schermrij, tekst);
}

void toon_bruto(int rij) {
    toon_prijs(rij, regel_nu.prijzen.bruto, up_context.valuta);
}
void toon_netto(int rij) {
    toon_prijs(rij, regel_nu.prijzen.netto, up_context.valuta);
}
void toon_inkoop(int rij) {
    toon_prijs(rij, regel_nu.prijzen.inkoop, "");
}
void toon_advies(int rij) {
    toon_prijs(rij, regel_nu.prijzen.advies, "");
}

// The discount of the first price group.
void toon_korting(int rij) {
    prijsgroep_info groep{};
    char tekst[32] = "";
    if (up_volgende_groep(regel_nu.prijzen, ZICHT_INKOOP, &groep))
        if (const double korting = up_korting_groep(regel_nu.prijzen, groep); korting != 0)
            snprintf(tekst, sizeof tekst, "%.2lf%%", korting);
    waarde(rij, tekst);
}

void toon_maten(int rij) {
    std::string tekst;
    for (int k = 1; k <= balk_kolommen(); k++) {
        std::string naam = balk_naam(k);
        naam.erase(naam.find_last_not_of(' ') + 1);
        if (tekst.size() + naam.size() + 4 > size_t{BREED}) {
            tekst += " ...";
            break;
        }
        tekst += (k > 1 ? " " : "") + naam;
    }
    waarde(rij, tekst);
}

// What the brand's factor makes of the purchase prices; a factor of 0 leaves a size without an advice price.
void vul_advies(prijsrijen* prijzen) {
    up_wis_advies(prijzen);
    up_btw(regelgroep.btwcode);
    up_calcfactor_merk(regelmerk.merk, regelmerk.calcfactor);
    const double factor =
        up_context.calcmodus == Calcmodus::marge ? up_context.calcmarge : up_context.calcfactor;
    for (int maat = 1; maat <= MATEN; maat++) {
        const int32_t inkoop = up_lees(prijzen->inkoop, maat);
        const int32_t advies = inkoop ? up_bereken_advies(inkoop, up_context.calcmodus, factor, false) : 0;
        if (advies)
            up_zet_advies(prijzen, maat, advies);
    }
}

// One gross price for all sizes. A size that had prices keeps its discount.
void vul_bruto(prijsrijen* prijzen, int32_t bruto) {
    const double orderkorting = up_totaalkorting(up_context.orderkorting, up_context.regelkorting);
    const prijsrijen oud = *prijzen;
    up_vul(&prijzen->bruto, maten(), bruto);
    up_netto_alle(prijzen);
    prijsgroep_info groep{};
    while (!nieuw && up_volgende_groep(oud, ZICHT_INKOOP, &groep))
        // A size that is on file without a price reads as 1.
        up_netto_groep(prijzen, &groep, groep.bruto > 1 ? up_korting_groep(oud, groep) : orderkorting);
    up_inkoop_alle(prijzen);
    if (nieuw)
        vul_advies(prijzen);
}

bool veld_bruto(int rij) {
    int32_t laagste, hoogste;
    const bool er = grenzen(regel_nu.prijzen.bruto, &laagste, &hoogste), gelijk = er && laagste == hoogste;
    int32_t prijs = gelijk ? laagste : 0;
    const int32_t kpos = SCHERM.kpos;
    SCHERM.kpos = up_context.decimalen; // the amount is in the order's currency
    const bool anders =
        INGAVE(rij, WAARDE, gelijk ? "8B,JEP" : "8B,JEPI", &SCHERM.toets[key_cancel], &prijs) != 0;
    SCHERM.kpos = kpos;
    if (anders && prijs > 0)
        vul_bruto(&regel_nu.prijzen, prijs);
    return anders && prijs > 0;
}

void met_aantallen(uint8_t* uit) {
    memset(uit, 0, MAATBYTES);
    for (const levterm& term : regel_nu.termen)
        for (const levcel& cel : term.cellen)
            maat_aan(uit, cel.maat);
    const int32_t* totalen = matrix_totalen(regel_nu.order_aantallen);
    for (int maat = 1; maat <= MATEN; maat++)
        if (totalen[maat])
            maat_aan(uit, maat);
}

// A size that went, and what is on file for it.
void vergeet_maat(orderregel* regel, int maat) {
    regel->opslag.bruto[static_cast<size_t>(maat)] = regel->opslag.netto[static_cast<size_t>(maat)] = 0;
    std::erase_if(regel->opslag.extra, [&](const regelextra& e) { return e.maat == maat; });
}

bool veld_maten(int) {
    uint8_t oud[MAATBYTES], vast[MAATBYTES];
    memcpy(oud, maten(), MAATBYTES);
    met_aantallen(vast);
    serie_maten(MATENRIJ, SERIEKOLOM, maten(), vast, nullptr);
    SCHERM.laatste = K_ENTER;
    if (memcmp(oud, maten(), MAATBYTES) == 0)
        return false;
    up_maten_gewijzigd(&regel_nu.prijzen, oud, maten());
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(oud, maat) && !maat_in(maten(), maat))
            vergeet_maat(&regel_nu, maat);
    return true;
}

int prijs_rij(int item) {
    return item + 1;
}

// clang-format off
const Item ITEMS[] = {
    {PRI_MATEN,   &T_P_MATEN,   toon_maten,   veld_maten},
    {PRI_BRUTO,   &T_P_BRUTO,   toon_bruto,   veld_bruto},
    {PRI_KORTING, &T_P_KORTING, toon_korting},
    {PRI_NETTO,   &T_P_NETTO,   toon_netto},
    {PRI_INKOOP,  &T_P_INKOOP,  toon_inkoop},
    {PRI_ADVIES,  &T_P_ADVIES,  toon_advies},
};
// clang-format on

const Itemscherm PRIJSSCHERM{&T_P_TITEL, SERIERIJ,  SERIEKOLOM, HOOGTE, SERIEBREEDTE,
                             HOOGTE - 2, PRI_MATEN, prijs_rij,  ITEMS};
const uint8_t VRAAG[] = {0, 1, 0, 0, 0, 0};

// False when it was broken off, or the line's size type has lost its sizes.
bool prijzen(const Itemverloop& verloop, bool* anders) {
    regelstam_lees(&regel_nu);
    if (!regel_balk(regel_nu)) { // a screen in between may have closed it
        MELDBOX(MELD_WAARSCHUWING, TXT(T_MAAT_GEEN_MATEN), nullptr, nullptr);
        return false;
    }
    order_prijscontext();
    up_regelkorting(0);
    nieuw = verloop.wijze == Itemwijze::nieuw;
    return itemscherm(PRIJSSCHERM, verloop, anders);
}

void pak_in() {
    up_advies_bewaren(regel_nu.prijzen, regel_nu.dessin.adviesblok);
}

} // namespace

bool serie_prijzen(bool lezen) {
    bool anders = false;
    prijzen({lezen ? Itemwijze::lezen : Itemwijze::wijzigen}, &anders);
    if (anders)
        pak_in();
    return anders;
}

bool serie_prijzen_dup() {
    bool anders = false;
    if (!prijzen({Itemwijze::wijzigen, nullptr, true}, &anders))
        return false;
    if (anders)
        pak_in();
    return true;
}

bool serie_vul_nieuw() {
    regelstam_lees(&regel_nu);
    memset(maten(), 0, MAATBYTES);
    regel_nu.prijzen = {};
    regel_nu.opslag = {};
    regel_wis_aantallen(&regel_nu);
    const ordmodel& m = regel_nu.model;
    balk_open(model_stelsel(m, regelmerk), m.maatsoort, nullptr);
    if (balk_kolommen() == 0) {
        MELDBOX(MELD_WAARSCHUWING, TXT(T_MAAT_GEEN_MATEN), nullptr, nullptr);
        return false;
    }
    if (!serie_maten(SERIERIJ, SERIEKOLOM, maten(), nullptr, nullptr, true))
        return false;
    up_vul(&regel_nu.prijzen.bruto, maten(), PRIJS_ONBEKEND);
    up_vul(&regel_nu.prijzen.netto, maten(), PRIJS_ONBEKEND);
    bool anders = false;
    if (!prijzen({Itemwijze::nieuw, VRAAG, true}, &anders))
        return false;
    pak_in();
    return aantal_nieuw();
}

} // namespace zg
