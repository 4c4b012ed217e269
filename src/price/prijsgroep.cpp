// Module uniprijs: walks over the sizes in the order of the bar in force: groups of equal prices, pages of them,
// neighbours of new sizes, the ranges of advice prices that are stored. See price/uniprijs.h.
#include "price/uniprijs.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include <algorithm>
#include <cstring>

namespace zg {

namespace {

constexpr int PAGINA_GROEPEN = 6, PAGINA_MATEN = 18;

// The next size on the bar, all of its sizes; a cleared record begins.
bool volgende_maat(mtinfo* maat) {
    if (!maatbalk)
        INTERNAL("uniprijs", 7);
    return mtread(maatbalk, 'N', maat, 2) == 1;
}

bool aanwezig(const prijsrijen& rijen, prijszicht zicht, int maat) {
    return up_aanwezig(rijen.bruto, maat) && (!zicht.op_advies || up_aanwezig(rijen.advies, maat));
}

bool kijkt_inkoop(prijszicht zicht) {
    return zicht.kolommen & (PK_BRUTO | PK_KORTING | PK_NETTO | PK_INKOOP);
}

bool kijkt_advies(prijszicht zicht) {
    return zicht.kolommen & (PK_ADVIES | PK_MARGE);
}

// What makes a size belong to a group; what isn't compared is 0.
using groepwaarde = std::array<int32_t, 3>;
groepwaarde waarde(const prijsrijen& rijen, prijszicht zicht, size_t maat) {
    groepwaarde w{};
    if (kijkt_inkoop(zicht))
        w = {rijen.bruto[maat], rijen.netto[maat], 0};
    if (kijkt_advies(zicht))
        w[2] = rijen.advies[maat];
    return w;
}

void erbij(prijsgroep_info* groep, const mtinfo& maat) {
    if (groep->aantal_maten++ == 0)
        groep->eerste = maat;
    groep->laatste = maat;
    maat_aan(groep->maten, maat.maatnr);
}

// All sizes are in: the prices, or the end.
bool sluit(const prijsrijen& rijen, prijszicht zicht, prijsgroep_info* groep) {
    if (groep->aantal_maten == 0) {
        groep->aantal_maten = -1;
        return false;
    }
    const int maat = groep->eerste.maatnr;
    if (kijkt_inkoop(zicht)) {
        groep->bruto = up_lees(rijen.bruto, maat);
        groep->netto = up_lees(rijen.netto, maat);
        groep->inkoop = up_lees(rijen.inkoop, maat);
    }
    if (kijkt_advies(zicht))
        groep->advies = up_lees(rijen.advies, maat);
    return true;
}

// The size of a set that is nearest behind this position on the bar, else nearest before it; 0 when there is none.
int buurmaat(const uint8_t* maten, int positie) {
    for (char richting : {'N', 'P'}) {
        mtinfo maat{};
        maat.positie = static_cast<uint8_t>(positie);
        while (positie > 0 && mtread(maatbalk, richting, &maat, 2) == 1)
            if (maat_in(maten, maat.maatnr))
                return maat.maatnr;
    }
    return 0;
}

// The stored form: eight size indexes, then eight prices, unaligned.
struct [[gnu::packed]] adviesblok {
    uint8_t einde[ADVIESRANGEN];
    int32_t prijs[ADVIESRANGEN];
};
static_assert(sizeof(adviesblok) == ADVIESBLOK);

} // namespace

bool up_volgende_groep(const prijsrijen& rijen, prijszicht zicht, prijsgroep_info* groep) {
    if (groep->aantal_maten == -1)
        return false;
    mtinfo maat{};
    maat.positie = groep->laatste.positie;
    *groep = {};
    groepwaarde eerste{};
    while (volgende_maat(&maat)) {
        if (!aanwezig(rijen, zicht, maat.maatnr))
            continue;
        const groepwaarde w = waarde(rijen, zicht, maat.maatnr);
        if (groep->aantal_maten == 0)
            eerste = w;
        else if (w != eerste)
            break;
        erbij(groep, maat);
    }
    return sluit(rijen, zicht, groep);
}

bool up_groep_nummer(const prijsrijen& rijen, prijszicht zicht, int n, prijsgroep_info* groep) {
    *groep = {};
    mtinfo maat{};
    groepwaarde vorige{};
    while (volgende_maat(&maat)) {
        if (!aanwezig(rijen, zicht, maat.maatnr))
            continue;
        const groepwaarde w = waarde(rijen, zicht, maat.maatnr);
        if (groep->aantal_groepen == 0 || w != vorige)
            groep->aantal_groepen++;
        vorige = w;
        if (groep->aantal_groepen - 1 == n)
            erbij(groep, maat);
    }
    return sluit(rijen, zicht, groep);
}

int up_aantal_groepen(const prijsrijen& rijen, prijszicht zicht) {
    prijsgroep_info groep;
    up_groep_nummer(rijen, zicht, -1, &groep);
    return groep.aantal_groepen;
}

int up_aantal_verkoopprijzen(const prijsrijen& rijen) {
    return up_aantal_groepen(rijen, ZICHT_ADVIES);
}

bool up_pagina(const prijsrijen& rijen, prijszicht zicht, int pagina, int* eerste, uint8_t* maten) {
    memset(maten, 0, MAATBYTES);
    *eerste = 0;
    if (pagina < 1)
        return false;
    const int64_t blad = int64_t{pagina} - 1;
    const int groepen = up_aantal_groepen(rijen, zicht);
    const int laatste = groepen > 0 ? (groepen - 1) / PAGINA_GROEPEN : 0;
    *eerste = static_cast<int>(std::min<int64_t>(blad, laatste)) * PAGINA_GROEPEN;
    bool iets = blad * PAGINA_GROEPEN < groepen;
    int n = 0;
    for (mtinfo maat{}; volgende_maat(&maat);)
        if (up_aanwezig(rijen.bruto, maat.maatnr) && n++ / PAGINA_MATEN == blad) {
            maat_aan(maten, maat.maatnr);
            iets = true;
        }
    return iets;
}

void up_maten_gewijzigd(prijsrijen* rijen, const uint8_t* oud, const uint8_t* nieuw) {
    if (!maatbalk)
        INTERNAL("uniprijs", 7);
    uint8_t lopend[MAATBYTES];
    memcpy(lopend, oud, MAATBYTES);
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!maat_in(nieuw, maat) || maat_in(lopend, maat))
            continue;
        const int positie = mtpos(maatbalk, maat);
        if (!positie)
            continue; // not of this bar
        const int buur = buurmaat(lopend, positie);
        maat_aan(lopend, maat); // a next new size may take it as its neighbour
        auto neem = [=](prijsrij* rij) {
            up_zet(rij, maat,
                   buur && up_aanwezig(*rij, buur) ? (*rij)[static_cast<size_t>(buur)] : PRIJS_ONBEKEND);
        };
        for (prijsrij* rij : {&rijen->bruto, &rijen->netto, &rijen->inkoop})
            neem(rij);
        if (!up_aanwezig(rijen->advies, maat))
            neem(&rijen->advies);
    }
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(oud, maat) && !maat_in(nieuw, maat))
            for (prijsrij* rij : {&rijen->bruto, &rijen->netto, &rijen->inkoop})
                up_zet(rij, maat, 0);
}

bool up_advies_bewaren(const prijsrijen& rijen, uint8_t* blok) {
    adviesblok b{};
    int rang = 0;
    int32_t vorige = 0;
    bool past = true;
    for (mtinfo maat{}; volgende_maat(&maat);) {
        if (!aanwezig(rijen, ZICHT_ADVIES, maat.maatnr))
            continue;
        const int32_t ruw = rijen.advies[maat.maatnr];
        if (ruw != vorige && vorige != 0) {
            if (rang == ADVIESRANGEN - 1)
                past = false;
            else
                rang++;
        }
        vorige = ruw;
        b.einde[rang] = maat.maatnr;
        if (past)
            b.prijs[rang] = up_lees(rijen.advies, maat.maatnr);
    }
    memcpy(blok, &b, sizeof b);
    return past;
}

void up_advies_laden(prijsrijen* rijen, const uint8_t* maten, uint8_t* blok) {
    adviesblok b;
    memcpy(&b, blok, sizeof b);
    up_wis_advies(rijen);
    int rangen = 0;
    while (rangen < ADVIESRANGEN && b.einde[rangen])
        rangen++;
    for (mtinfo maat{}; volgende_maat(&maat);) {
        if (!maat_in(maten, maat.maatnr))
            continue;
        int r = 0;
        while (r < rangen - 1 && mtpos(maatbalk, b.einde[r]) < maat.positie)
            r++;
        b.prijs[r] = std::clamp<int32_t>(b.prijs[r], 1, PRIJS_ONBEKEND - 1);
        up_zet_advies(rijen, maat.maatnr, b.prijs[r]);
    }
    memcpy(blok, &b, sizeof b);
}

} // namespace zg
