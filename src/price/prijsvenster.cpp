// The small windows of the price screens, see price/prijsvenster.h.
#include "price/prijsvenster.h"
#include "price/bedragveld.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/kortingveld.h"
#include "price/teksten.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstdio>

namespace zg {
namespace {

constexpr int KORTINGBREED = 26, KORTINGVELD = 17;
constexpr int BOVENSTE = 2; // the top row is for titles and hints
constexpr int CALCBREED = 50, CALCHOOG = 6, CALCVALUTA = 14, CALCWAARDE = 18, CALCBREEDTE = 9;

bool hint_staat;

// What was entered last in "Nieuwe korting", and the order's discount at that time.
struct {
    double bij_order, korting;
} nieuw;

void toon_hint(bool aan) {
    const std::string help = GROOTKOPIE(TXT(T_HELP));
    SCRHINT(aan ? ("<F1> " + help).c_str() : "");
    hint_staat = aan;
}

void titel_of_rand(const char* titel) {
    if (titel)
        WINBOX(" %s ", GROOTKOPIE(titel).c_str());
    else
        WINBOX(nullptr);
}

// The row on the screen for a window of this height: above the one in hand, else below it.
int vensterrij(int hoogte) {
    int boven, kolom;
    WINNAARSCHERM(1, 1, &boven, &kolom);
    const int onder = boven + WINHOOGTE() + 1, past = boven - 1 - hoogte;
    return past >= BOVENSTE ? past : std::clamp(onder, BOVENSTE, SCHERM.lines - hoogte);
}

// A discount below the order's, when that takes something off; it is asked until it fits.
bool kortingvenster(const char* titel, int kolom, double* korting) {
    const double order = up_context.orderkorting;
    const int hoogte = order > 0 ? 5 : 3, rij = order > 0 ? 2 : 1;
    WINOPEN1(vensterrij(hoogte), kolom - 13, hoogte, KORTINGBREED); // moved in where the screen ends
    titel_of_rand(titel);
    auto toon = [](int r, const Tekst& label, double waarde) {
        SCRPUT(A_LABEL, r, 2, "%-14.14s", TXT(label));
        SCRPUT(A_WAARDE, r, KORTINGVELD, "%6.2lf%%", waarde);
    };
    double procent = *korting;
    bool goed;
    for (;;) {
        if (order > 0) {
            toon(1, T_ORDERKORTING, order);
            toon(3, T_TOTAALKORTING, up_totaalkorting(order, procent));
        }
        toon(rij, order > 0 ? T_REGELKORTING : T_KORTING, procent);
        korting_veld(rij, KORTINGVELD, &procent);
        goed = !TOETSWEG();
        if (!goed || up_korting_past(procent))
            break;
        error("<%.2lf%%> %s", procent, TXT(T_TOTAAL_PAST_NIET));
    }
    WINCLOSE();
    if (goed)
        *korting = procent;
    return goed;
}

const Tekst* const METHODEN[] = {&T_AUTOMATISCH, &T_INGAVE_KORTING, &T_INGAVE_NETTO};

bool op_factor() {
    return up_context.calcmodus == Calcmodus::factor;
}

int32_t berekend(int32_t inkoop, bool afronden) {
    return up_bereken_advies(inkoop, up_context.calcmodus,
                             op_factor() ? up_context.calcfactor : up_context.calcmarge, afronden);
}

void toon_bedrag(int rij, int32_t bedrag) {
    SCRCLREOL(rij, CALCWAARDE); // one before it may have been wider
    SCRPUT(A_WAARDE, rij, CALCWAARDE, "%*s", CALCBREEDTE, bedrag > 0 ? bedrag_tekst("", bedrag).c_str() : "");
}

void toon_berekening(int32_t inkoop) {
    toon_bedrag(1, inkoop);
    SCRPUT(A_LABEL, 2, 2, "%-11.11s", TXT(op_factor() ? T_CALCFACTOR : T_CALCMARGE));
    SCRPUT(A_WAARDE, 2, CALCWAARDE, "%*.*lf", CALCBREEDTE, op_factor() ? 3 : 1,
           op_factor() ? up_context.calcfactor : up_context.calcmarge);
    toon_bedrag(3, berekend(inkoop, false));
    toon_bedrag(4, berekend(inkoop, true));
}

// Factor or margin, whichever counts: the key that ended it is in SCHERM.laatste.
void vraag_waarde() {
    const prijshint hint;
    TOETSAAN(K_HELP);
    if (op_factor())
        INGAVE(2, CALCWAARDE + CALCBREEDTE - 5, "5.3f,JEPZ", &SCHERM.toets[key_cancel],
               &SCHERM.toets[key_tab], &up_context.calcfactor);
    else
        INGAVE(2, CALCWAARDE + CALCBREEDTE - 4, "4.1f,JEPZ", &SCHERM.toets[key_cancel],
               &SCHERM.toets[key_tab], &up_context.calcmarge);
}

} // namespace

bool regelkorting_venster(const char* titel, int kolom) {
    return kortingvenster(titel, kolom, &up_context.regelkorting);
}

bool nieuwe_korting_venster(const char* titel, int kolom) {
    if (nieuw.bij_order != up_context.orderkorting)
        nieuw = {up_context.orderkorting, 0};
    if (!kortingvenster(titel, kolom, &nieuw.korting))
        return false;
    up_context.nieuwe_korting = nieuw.korting;
    return true;
}

void kortingsmethode_kiezen(int kolom) {
    auto keus = static_cast<int>(up_context.methode);
    do {
        DMREC* menu = DMNEW(GROOTKOPIE(TXT(T_KORTINGSMETHODE)).c_str());
        for (int i = 0; i < 3; i++) {
            char tekst[64];
            snprintf(tekst, sizeof tekst, "&%d %s", i + 1, TXT(*METHODEN[i]));
            DMITEM(menu, tekst, i + 1, 1);
        }
        keus = DMRUN(menu, vensterrij(5), keus);
        if (TOETSWEG() || SCHERM.laatste == K_F6)
            return;
    } while (keus == static_cast<int>(Kortingsmethode::automatisch) &&
             !regelkorting_venster(TXT(T_AUTOMATISCH), kolom));
    up_context.methode = static_cast<Kortingsmethode>(keus);
}

std::string kortingsmethode_tekst() {
    std::string uit = TXT(*METHODEN[static_cast<int>(up_context.methode) - 1]);
    if (up_context.methode == Kortingsmethode::automatisch) {
        char procent[32];
        snprintf(procent, sizeof procent, " %6.2lf%%",
                 up_totaalkorting(up_context.orderkorting, up_context.regelkorting));
        uit += procent;
    }
    return uit;
}

bool bereken_advies_venster(int groep, int32_t inkoop, int32_t* advies) {
    const Calcmodus modus = up_context.calcmodus;
    const double factor = up_context.calcfactor, marge = up_context.calcmarge;
    if (modus == Calcmodus::geen)
        up_context.calcmodus = Calcmodus::marge;
    WINOPEN1(SCHERM.lines - CALCHOOG, 1, CALCHOOG, CALCBREED);
    WINBOX(" %s (%d) ", GROOTKOPIE(TXT(T_BEREKENEN_ADVIES)).c_str(), groep + 1);
    SCRPUT(A_LABEL, 1, 2, "%-11.11s", TXT(T_INKPRIJS));
    for (int rij : {3, 4}) {
        SCRPUT(A_LABEL, rij, 2, "%-11.11s", TXT(rij == 3 ? T_CALCPR : T_ADVPR));
        SCRPUT(A_LABEL, rij, CALCVALUTA, "%-3.3s", valuta_of_thuis("").c_str());
    }
    bool goed = false;
    while (!goed) {
        toon_berekening(inkoop);
        vraag_waarde();
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F1 || SCHERM.laatste == K_HELP) {
            up_toetshulp("<TAB>", TXT(op_factor() ? T_CALCMARGE : T_CALCFACTOR));
        } else if (SCHERM.laatste == K_TAB) {
            up_context.calcmodus = op_factor() ? Calcmodus::marge : Calcmodus::factor;
        } else {
            toon_berekening(inkoop);
            int32_t prijs = berekend(inkoop, true);
            TOETSAAN(K_CANCEL);
            bedrag_veld(4, CALCWAARDE + CALCBREEDTE - 8, "8B,JEP", "", &prijs);
            goed = !TOETSWEG();
            if (goed)
                *advies = prijs;
        }
    }
    WINCLOSE();
    if (!goed) {
        up_context.calcmodus = modus;
        up_context.calcfactor = factor;
        up_context.calcmarge = marge;
    }
    return goed;
}

prijshint::prijshint() : was_(hint_staat) {
    toon_hint(true);
}

prijshint::~prijshint() {
    toon_hint(was_);
}

void up_toetshulp(const char* toets, const char* tekst) {
    char regel[80];
    snprintf(regel, sizeof regel, "%s  %s", toets, tekst);
    MELDBOX(MELD_INFO, regel, nullptr, nullptr);
}

} // namespace zg
