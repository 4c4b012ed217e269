// Module uniprijs: the flows through the groups of a price screen; see price/prijsinvoer.h.
#include "price/prijsinvoer.h"
#include "price/prijsscherm.h"
#include "price/prijsvenster.h"
#include "price/prijsvraag.h"
#include "price/teksten.h"
#include "term/keuze.h"
#include "term/toets.h"
#include <algorithm>

namespace zg {
namespace {

struct Soort {
    const Tekst *definieren, *wijzigen;
    int hoogte, groepkolom;
    bool advies_telt;
    uint8_t kolommen;
    int laatste_nr; // the last group's number: it runs to the end of the bar
};

constexpr uint8_t PK_ALLES = 255;
const Soort PRIJZEN{&T_UP_DEFINIEREN, &T_UP_WIJZIGEN, 13, 14, false, PK_ALLES, MATEN - 1};
const Soort INKOOP{&T_UP_DEFINIEREN_INKOOP,
                   &T_UP_WIJZIGEN_INKOOP,
                   9,
                   14,
                   false,
                   PK_GROEP | PK_MATEN | PK_BRUTO | PK_KORTING | PK_NETTO,
                   MATEN - 1};
const Soort ADVIES{nullptr,          &T_UP_WIJZIGEN_ADVIES, 7, 6, true, PK_GROEP | PK_MATEN | PK_ADVIES,
                   ADVIESGROEPEN - 1};

// A screen: its window and layout, for the length of a block.
class Raam {
public:
    Raam(const Soort& soort, const Tekst& titel, int rij, prijsrijen* rijen) {
        const int voet = SCHERM.lines - soort.hoogte;
        WINOPEN1(rij > 0 ? std::min(rij, voet) : voet, 1, soort.hoogte, 80);
        WINBOX(" %s ", TXT(titel));
        up_scherm(1, 2, soort.groepkolom, false, soort.advies_telt, soort.kolommen, rijen);
    }
    ~Raam() { WINCLOSE(); }
    Raam(const Raam&) = delete;
    Raam& operator=(const Raam&) = delete;

private:
    prijslay lay_;
};

// Discounts work on the gross price alone while this lives.
class Zonder_orderkorting {
public:
    Zonder_orderkorting() : was_(up_context.orderkorting) { up_context.orderkorting = 0; }
    ~Zonder_orderkorting() { up_context.orderkorting = was_; }
    Zonder_orderkorting(const Zonder_orderkorting&) = delete;
    Zonder_orderkorting& operator=(const Zonder_orderkorting&) = delete;

private:
    double was_;
};

// The way through the groups, one column after the other. The screen's page follows: its last group becomes the first
// column of the next page.
struct Gang {
    prijsgroep_info groep{};
    int nummer = -1;

    bool volgende() {
        prijsgroep_info vorige = groep;
        if (!up_volgende_groep(*up_lay.rijen, up_zicht(), &groep))
            return false;
        if (++nummer == up_lay.eerste + up_per_pagina()) {
            up_lay.eerste = nummer - 1;
            up_toon_groepen(&vorige, nummer - 1);
        }
        up_toon_groepen(&groep, nummer);
        return true;
    }
};

// ---- prices of a new series

void netto_nieuw(prijsgroep_info* groep) {
    switch (up_context.methode) {
    case Kortingsmethode::korting:
        nieuwe_korting_venster(nullptr, up_lay.nu);
        up_netto_groep(up_lay.rijen, groep,
                       up_totaalkorting(up_context.orderkorting, up_context.nieuwe_korting));
        break;
    case Kortingsmethode::netto:
        vraag_netto(groep, Prijsverloop::definieren);
        break;
    default:
        up_netto_groep(up_lay.rijen, groep,
                       up_totaalkorting(up_context.orderkorting, up_context.regelkorting));
    }
}

// The different advice prices entered so far, and the last of them as it stands in the row.
struct Adviestelling {
    int aantal = 0;
    int32_t laatste = 0;
};

void advies_nieuw(Gang* gang, Adviestelling* telling) {
    prijsgroep_info* groep = &gang->groep;
    prijsrij* rij = &up_lay.rijen->advies;
    if (telling->aantal >= MAX_VERKOOPPRIJZEN) {
        up_vul(rij, groep->maten, telling->laatste);
        return;
    }
    const size_t maat = groep->eerste.maatnr;
    const double waarde =
        up_context.calcmodus == Calcmodus::marge ? up_context.calcmarge : up_context.calcfactor;
    // Nothing to propose leaves the price unknown: 0 would take the sizes out of the line.
    if (const int32_t voorstel = up_bereken_advies(up_lees(up_lay.rijen->inkoop, groep->eerste.maatnr),
                                                   up_context.calcmodus, waarde, false))
        up_vul(rij, groep->maten, voorstel);
    up_toon_groep(groep, gang->nummer);
    vraag_advies(groep, gang->nummer);
    if ((*rij)[maat] != telling->laatste)
        telling->aantal++;
    telling->laatste = (*rij)[maat];
}

void begin_nieuw(prijsrijen* rijen, const uint8_t* maten, bool verkoop) {
    up_wis_prijzen(rijen);
    for (prijsrij* rij : {&rijen->bruto, &rijen->netto, &rijen->inkoop})
        up_vul(rij, maten, PRIJS_ONBEKEND);
    if (verkoop) {
        up_wis_advies(rijen);
        up_vul(&rijen->advies, maten, PRIJS_ONBEKEND);
    }
    if (!up_korting_past(up_context.regelkorting))
        up_context.regelkorting = 0;
    up_context.nieuwe_korting = 0; // counts when it has been entered on this screen
}

// A question that is cancelled is that question's end; the next one follows.
void definieren(const Soort& soort, prijsrijen* rijen, const uint8_t* maten) {
    const bool verkoop = soort.kolommen & PK_ADVIES;
    begin_nieuw(rijen, maten, verkoop);
    const Raam raam(soort, *soort.definieren, 0, rijen);
    up_toon_labels(false);
    Adviestelling telling;
    for (Gang gang; gang.volgende();) {
        up_toon_methode();
        vraag_maatbereik(&gang.groep, gang.nummer, soort.laatste_nr);
        up_toon_groepen(&gang.groep, gang.nummer);
        vraag_bruto(&gang.groep, Prijsverloop::definieren);
        netto_nieuw(&gang.groep);
        up_inkoop_alle(rijen);
        if (verkoop) {
            up_toon_berekening();
            advies_nieuw(&gang, &telling);
        }
        up_toon_groep(&gang.groep, gang.nummer);
    }
}

// ---- changes

// In the order in which they are offered.
enum Keus { KEUS_GROEP, KEUS_NETTO, KEUS_KORTING, KEUS_BRUTO, KEUS_ADVIES };
constexpr Prijskolom KEUSKOLOM[] = {PK_GROEP, PK_NETTO, PK_KORTING, PK_BRUTO, PK_ADVIES};

const char* keustekst(int keus) {
    static const Tekst* const TEKSTEN[] = {&T_UP_PRIJSGROEP, &T_UP_KEUS_NETTO, &T_UP_KORTING,
                                           &T_UP_KEUS_BRUTO, &T_UP_KEUS_ADVIES};
    return keus >= KEUS_GROEP && keus <= KEUS_ADVIES ? TXT(*TEKSTEN[keus]) : nullptr;
}

// The choice, or -1 with the key in SCHERM.laatste.
int vraag_keus(int groepen) {
    KEUZESTART(keustekst);
    for (int keus = KEUS_GROEP; keus <= KEUS_ADVIES; keus++)
        if (up_lay.kolommen & KEUSKOLOM[keus])
            KEUZEAAN(keus);
    TOETSAAN(K_CANCEL);
    if (up_lay.eerste > 0)
        TOETSAAN(K_F7);
    if (up_lay.eerste + up_per_pagina() < groepen)
        TOETSAAN(K_F8);
    const int keus = KEUZE(WINHOOGTE(), 2);
    up_wis_onderregel();
    return keus;
}

// A new gross price keeps the group's discount.
bool wijzig_bruto(Gang* gang) {
    prijsgroep_info* groep = &gang->groep;
    const double korting = up_korting_groep(*up_lay.rijen, *groep);
    const int32_t bruto = groep->bruto;
    const bool goed = vraag_bruto(groep, Prijsverloop::wijzigen);
    if (groep->bruto != bruto)
        up_netto_groep(up_lay.rijen, groep, korting);
    return goed;
}

bool wijzig_korting(Gang* gang) {
    if (!nieuwe_korting_venster(TXT(T_NIEUWE_KORTING), up_lay.nu))
        return false;
    up_netto_groep(up_lay.rijen, &gang->groep,
                   up_totaalkorting(up_context.orderkorting, up_context.nieuwe_korting));
    return true;
}

// The questions of a choice about one group; false when one was cancelled.
bool wijzig_groep(const Soort& soort, int keus, Gang* gang) {
    prijsgroep_info* groep = &gang->groep;
    auto vragen = [&](Keus deze) {
        return keus == deze || (keus == KEUS_GROEP && (soort.kolommen & KEUSKOLOM[deze]));
    };
    auto bij = [&](bool goed) {
        up_inkoop_alle(up_lay.rijen);
        up_toon_groep(groep, gang->nummer);
        return goed;
    };
    if (keus == KEUS_GROEP) {
        if (!vraag_maatbereik(groep, gang->nummer, soort.laatste_nr))
            return false;
        up_inkoop_alle(up_lay.rijen);
        up_toon_groepen(groep, gang->nummer);
    }
    if (vragen(KEUS_BRUTO) && !bij(wijzig_bruto(gang)))
        return false;
    if (keus == KEUS_KORTING && !bij(wijzig_korting(gang)))
        return false;
    if (vragen(KEUS_NETTO) && !bij(vraag_netto(groep, Prijsverloop::wijzigen)))
        return false;
    return !vragen(KEUS_ADVIES) || bij(vraag_advies(groep, gang->nummer));
}

bool te_veel_prijzen() {
    const bool te_veel =
        (up_lay.kolommen & PK_ADVIES) && up_aantal_verkoopprijzen(*up_lay.rijen) > MAX_VERKOOPPRIJZEN;
    if (te_veel)
        error("%s", TXT(T_UP_TEVEEL_PRIJZEN));
    return te_veel;
}

// `doorlopen`: first once through all groups.
void wijzigen(const Soort& soort, prijsrijen* rijen, int rij, bool doorlopen) {
    const Zonder_orderkorting zonder;
    const Raam raam(soort, *soort.wijzigen, rij, rijen);
    te_veel_prijzen(); // so it came in: told at once
    for (bool eerst = doorlopen;; eerst = false) {
        const int groepen = up_aantal_groepen(*rijen, up_zicht());
        up_inkoop_alle(rijen);
        up_toon_pagina(up_lay.eerste);
        int keus = KEUS_GROEP;
        if (!eerst) {
            up_toon_labels(true);
            keus = vraag_keus(groepen);
            up_toon_labels(false);
        }
        if (keus < 0 && SCHERM.laatste == K_F7) {
            up_lay.eerste -= up_per_pagina();
        } else if (keus < 0 && SCHERM.laatste == K_F8) {
            up_lay.eerste += up_per_pagina();
        } else if (keus < 0) {
            if (!te_veel_prijzen())
                break;
        } else {
            up_lay.eerste = 0;
            for (Gang gang; gang.volgende() && wijzig_groep(soort, keus, &gang);) {
            }
            up_lay.eerste = 0;
        }
    }
}

} // namespace

void up_definieren_prijzen(prijsrijen* rijen, const uint8_t* maten) {
    definieren(PRIJZEN, rijen, maten);
    wijzigen(PRIJZEN, rijen, 0, false);
}

void up_definieren_inkoop(prijsrijen* rijen, const uint8_t* maten) {
    definieren(INKOOP, rijen, maten);
    wijzigen(INKOOP, rijen, 0, false);
}

void up_wijzigen_prijzen(prijsrijen* rijen, int rij) {
    wijzigen(PRIJZEN, rijen, rij, true);
}

void up_wijzigen_inkoop(prijsrijen* rijen, int rij) {
    wijzigen(INKOOP, rijen, rij, true);
}

void up_wijzigen_advies(prijsrijen* rijen, int rij) {
    wijzigen(ADVIES, rijen, rij, true);
}

} // namespace zg
