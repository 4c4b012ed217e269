// The screen PRIJSINFORMATIE: the sizes of a line, their pieces and their prices by groups of sizes, a page at a time.
// Prices are entered on the screens of price/prijsinvoer.h, sizes on those of sub/maatsoort.h; what changed is packed
// into the line here.
#include "order/aantallen.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/serie.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "price/prijsinvoer.h"
#include "price/prijsscherm.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <cstring>

namespace zg {
namespace {

// What the window is opened for.
enum class Prijsmodus { nieuw, wijzigen, lezen, duplicaat };

enum Prijskeuze { P_INKOOP, P_ADVIES, P_PRIJZEN, P_MATEN, P_AFBEELDING, P_AANTAL };

const char* keuzetekst(int k) {
    static const Tekst* const T[P_AANTAL] = {&T_P_INKOOPPRIJZEN, &T_P_ADVIESPRIJZEN, &T_P_PRIJZEN, &T_P_MATEN,
                                             &T_S_AFBEELDING};
    return k >= 0 && k < P_AANTAL ? TXT(*T[k]) : nullptr;
}

constexpr int HOOGTE = 16, HOOGTE_NIEUW = 7; // of a new line the screens of definition stand below it
constexpr int NAAMRIJ = 1, MAATRIJ = 2, STUKSRIJ = 3, PRIJSRIJ = 4, KEUSRIJ = 14;
constexpr int KOLOM = 2, MAATKOLOM = 4, CEL = 4, CELLEN = 18;
constexpr int GROEPKOLOM = 14;
constexpr int WIJZIGRIJ =
    SERIERIJ + PRIJSRIJ - 1;                    // screens of change have their labels where this one has them
constexpr int MATENRIJ = SERIERIJ + HOOGTE - 2; // window of the set

uint8_t* maten() {
    return regel_nu.dessin.maten;
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

// ---- the window

void open_venster(int hoogte) {
    WINOPEN1(SERIERIJ, SERIEKOLOM, hoogte, SERIEBREEDTE);
    WINBOX(" %s ", TXT(T_P_TITEL));
    const orddessin& d = regel_nu.dessin;
    SCRPUT(A_WAARDE, NAAMRIJ, KOLOM, "%-15.15s %-12.12s %-12.12s %s", VASTTEKST(regel_nu.model.model).c_str(),
           VASTTEKST(d.materiaal).c_str(), VASTTEKST(d.dessin).c_str(), regel_getal(d.kleur, 3).c_str());
}

// Sizes of the page with what is ordered of them; signs of more on both sides.
void toon_maten(const uint8_t* blad) {
    const int32_t* stuks = matrix_totalen(regel_nu.order_aantallen);
    SCRCLREOL(MAATRIJ, 1);
    SCRCLREOL(STUKSRIJ, 1);
    int cel = 0;
    bool eerder = false, later = false;
    for (int k = 1; k <= balk_kolommen(); k++) {
        const int maat = balk_maat(k);
        if (!maat_in(blad, maat) || cel == CELLEN) { // a new line's sizes are all in one
            (cel ? later : eerder) = true;
            continue;
        }
        const int kolom = MAATKOLOM + cel++ * CEL;
        SCRPUT(A_LABEL, MAATRIJ, kolom, "%*.3s", CEL, balk_naam(k));
        if (stuks[maat])
            SCRPUT(A_WAARDE, STUKSRIJ, kolom, "%s", regel_getal(stuks[maat], CEL).c_str());
    }
    if (cel && eerder)
        SCRPUT(A_LABEL, MAATRIJ, KOLOM, "<");
    if (cel && later)
        SCRPUT(A_LABEL, MAATRIJ, MAATKOLOM + CELLEN * CEL, ">");
}

prijszicht zicht() {
    up_scherm(PRIJSRIJ, KOLOM, GROEPKOLOM, false, false, 0xFF, &regel_nu.prijzen);
    return up_zicht();
}

bool er_is_pagina(int pagina) {
    int eerste;
    uint8_t blad[MAATBYTES];
    return up_pagina(regel_nu.prijzen, zicht(), pagina, &eerste, blad);
}

void toon_pagina(int pagina) {
    int eerste;
    uint8_t blad[MAATBYTES];
    up_pagina(regel_nu.prijzen, zicht(), pagina, &eerste, blad);
    toon_maten(blad);
    up_toon_pagina(eerste);
}

// ---- changes

// A size that went, and what is on file for it.
void vergeet_maat(regelopslag* opslag, int maat) {
    maat_uit(opslag->maten, maat);
    std::erase_if(opslag->extra, [&](const regelextra& e) { return e.maat == maat; });
}

void wijzig_maten() {
    uint8_t oud[MAATBYTES], vast[MAATBYTES];
    memcpy(oud, maten(), MAATBYTES);
    met_aantallen(vast);
    serie_maten(MATENRIJ, SERIEKOLOM, maten(), vast);
    if (memcmp(oud, maten(), MAATBYTES) == 0)
        return;
    up_maten_gewijzigd(&regel_nu.prijzen, oud, maten());
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(oud, maat) && !maat_in(maten(), maat))
            vergeet_maat(&regel_nu.opslag, maat);
    // Sizes that came back brought their advice prices. That screen is only left with as many as a line can have.
    if (up_aantal_verkoopprijzen(regel_nu.prijzen) > MAX_VERKOOPPRIJZEN)
        up_wijzigen_prijzen(&regel_nu.prijzen, WIJZIGRIJ);
}

void doe_keuze(int keus) {
    switch (keus) {
    case P_INKOOP:
        return up_wijzigen_inkoop(&regel_nu.prijzen, WIJZIGRIJ);
    case P_ADVIES:
        return up_wijzigen_advies(&regel_nu.prijzen, WIJZIGRIJ);
    case P_PRIJZEN:
        return up_wijzigen_prijzen(&regel_nu.prijzen, WIJZIGRIJ);
    default:
        return wijzig_maten();
    }
}

// The choices until ESC; false when a duplicate was given up.
bool keuzes(Prijsmodus modus) {
    bool zeker = false; // of prices that are another order's too
    for (int pagina = 1;;) {
        while (pagina > 1 && !er_is_pagina(pagina))
            pagina--;
        toon_pagina(pagina);
        KEUZESTART(keuzetekst);
        if (modus != Prijsmodus::lezen)
            for (int k = 0; k < P_AFBEELDING; k++)
                KEUZEAAN(k);
        if (met_afbeelding() && !regel_is_nieuw)
            KEUZEAAN(P_AFBEELDING);
        TOETSAAN(K_CANCEL);
        if (pagina > 1)
            TOETSAAN(K_F7);
        if (er_is_pagina(pagina + 1))
            TOETSAAN(K_F8);
        if (modus == Prijsmodus::duplicaat)
            TOETSAAN(K_F6);
        const int keus = KEUZE(KEUSRIJ, KOLOM);
        const int32_t toets = SCHERM.laatste;
        SCRCLREOL(KEUSRIJ, 1);
        if (keus == P_AFBEELDING) {
            bekijk_afbeelding();
        } else if (keus >= 0) {
            if (modus == Prijsmodus::wijzigen && keus != P_MATEN)
                zeker = zeker || prijzen_vraag(regel_nu);
            if (zeker || modus != Prijsmodus::wijzigen || keus == P_MATEN)
                doe_keuze(keus);
        } else if (toets == K_F7 || toets == K_F8)
            pagina += toets == K_F8 ? 1 : -1;
        else if (toets != K_F6)
            return true;
        else if (JNVRAAG(KEUSRIJ, KOLOM, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)))
            return false;
    }
}

// The bar of the line, and what its prices are computed with beside the order's. False: its size type has no sizes.
bool open_prijzen() {
    regelstam_lees(&regel_nu);
    if (!regel_balk(regel_nu)) { // a screen in between may have closed it
        MELDBOX(MELD_WAARSCHUWING, TXT(T_MAAT_GEEN_MATEN), nullptr, nullptr);
        return false;
    }
    up_btw(regelgroep.btwcode);
    up_calcfactor_merk(regelmerk.merk, regelmerk.calcfactor);
    return true;
}

// Sizes and prices as they are before a change.
struct Stand {
    uint8_t maten[MAATBYTES];
    prijsrijen prijzen;
};
Stand stand() {
    Stand uit{};
    memcpy(uit.maten, maten(), MAATBYTES);
    uit.prijzen = regel_nu.prijzen;
    return uit;
}

// The advice prices into the line, when one of its sizes has another or its set of sizes is another than in `oud`.
void pak_in(const Stand& oud) {
    bool anders = memcmp(oud.maten, maten(), MAATBYTES) != 0;
    for (int maat = 1; maat <= MATEN; maat++)
        anders |= maat_in(maten(), maat) && regel_nu.prijzen.advies[static_cast<size_t>(maat)] !=
                                                oud.prijzen.advies[static_cast<size_t>(maat)];
    if (anders)
        up_advies_bewaren(regel_nu.prijzen, regel_nu.dessin.adviesblok);
}

bool is_anders(const Stand& oud) {
    const prijsrijen &a = regel_nu.prijzen, &b = oud.prijzen;
    return a.bruto != b.bruto || a.netto != b.netto || a.advies != b.advies ||
           memcmp(oud.maten, maten(), MAATBYTES) != 0;
}

// False when it was given up, or can't be shown. *anders: the line changed.
bool prijzen(Prijsmodus modus, bool* anders) {
    if (!open_prijzen())
        return false;
    const Stand oud = stand();
    const prijslay was; // the layout of the screen below
    open_venster(HOOGTE);
    const bool goed = keuzes(modus);
    WINCLOSE();
    SCHERM.laatste = K_ENTER;
    *anders = goed && is_anders(oud);
    if (*anders)
        pak_in(oud);
    return goed;
}

} // namespace

bool serie_prijzen(bool lezen) {
    bool anders = false;
    prijzen(lezen ? Prijsmodus::lezen : Prijsmodus::wijzigen, &anders);
    return anders;
}

bool serie_prijzen_dup() {
    bool anders = false;
    return prijzen(Prijsmodus::duplicaat, &anders);
}

bool serie_vul_nieuw() {
    regelstam_lees(&regel_nu);
    memset(maten(), 0, MAATBYTES);
    memset(regel_nu.dessin.adviesblok, 0, ADVIESBLOK);
    regel_nu.prijzen = {};
    regel_nu.opslag = {};
    regel_wis_aantallen(&regel_nu);
    if (!open_prijzen())
        return false;
    balk_kies(nullptr);
    if (!serie_maten(SERIERIJ, SERIEKOLOM, maten(), nullptr, true))
        return false;
    const Stand leeg = stand();
    open_venster(HOOGTE_NIEUW);
    toon_maten(maten());
    up_definieren_prijzen(&regel_nu.prijzen, maten());
    WINCLOSE();
    pak_in(leeg);
    return aantal_nieuw();
}

} // namespace zg
