// The order line screen: the window of fourteen lines, the cursor, and the menus. The cursor's line is regel_nu;
// it is loaded again after whatever may have changed it. Inserting, totals and saving are done here, whatever
// screen made the line.
#include "order/regelscherm.h"
#include "order/aantallen.h"
#include "order/kop.h"
#include "order/matrix.h"
#include "order/prijswerk.h"
#include "order/printorder.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/serie.h"
#include "order/teksten.h"
#include "print/xprt.h"
#include "shared/maatbalk.h"
#include "shared/teksten.h"
#include "sub/omlev.h"
#include "sub/omserie.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <vector>

namespace zg {

bool regel_bereikbaar;

namespace {

constexpr int MENURIJ = 24; // the status line is the row below
constexpr int NAAMKOLOM = 19;

enum Hoofdkeuze {
    H_TOEVOEGEN,
    H_RAADPLEGEN,
    H_MATRIX,
    H_WIJZIGEN,
    H_BIJBESTELLEN,
    H_DUPLICEREN,
    H_VERWIJDEREN,
    H_AANTAL
};
enum Itemkeuze {
    I_ORDER,
    I_LEVERANCIER,
    I_MODEL,
    I_DESSIN,
    I_PRIJSINFO,
    I_AANTALLEN,
    I_AFDRUKKEN, // of what is looked at
    I_AANTAL
};

const char* hoofdtekst(int k) {
    static const Tekst* const T[H_AANTAL] = {&T_H_TOEVOEGEN,  &T_H_RAADPLEGEN,   &T_H_MATRIX,
                                             &T_H_WIJZIGEN,   &T_H_BIJBESTELLEN, &T_H_DUPLICEREN,
                                             &T_H_VERWIJDEREN};
    return k >= 0 && k < H_AANTAL ? TXT(*T[k]) : nullptr;
}

const char* itemtekst(int k) {
    static const Tekst* const T[I_AANTAL] = {&T_I_ORDER,     &T_I_LEVERANCIER, &T_I_MODEL,    &T_I_DESSIN,
                                             &T_I_PRIJSINFO, &T_I_AANTALLEN,   &T_I_AFDRUKKEN};
    return k >= 0 && k < I_AANTAL ? TXT(*T[k]) : nullptr;
}

// The lines on the screen and the cursor; line numbers count from 1.
struct Blad {
    int32_t top = 1, cursor = 1;
    std::vector<ors_ingang> ingangen;
    std::vector<std::string> teksten;
    int32_t getekend_op = 0; // line drawn as the cursor's, 0 none
    bool vernieuw = true;

    void vul() {
        ingangen.clear();
        teksten.clear();
        regelloop loop;
        regelloop_begin(&loop);
        for (int32_t nr = top; nr < top + REGELPAGINA && nr <= aantal_regels; nr++) {
            ors_ingang in{};
            in.regel = static_cast<uint16_t>(nr);
            if (!ors_lees('R', &in))
                break;
            bool herhaald = !ingangen.empty() && ingangen.back().m == in.m;
            ingangen.push_back(in);
            teksten.push_back(regel_tekst(&loop, herhaald, in));
        }
    }

    void regel(int32_t nr, bool gekozen) {
        if (nr < top || nr >= top + std::ssize(teksten))
            return;
        SCRPUT(gekozen ? A_KEUS : A_WAARDE, REGELRIJ + nr - top, 2, "%s",
               teksten[static_cast<size_t>(nr - top)].c_str());
    }

    void teken() {
        if (aantal_regels == 0) {
            top = cursor = 0;
        } else {
            cursor = std::clamp<int32_t>(cursor, 1, aantal_regels);
            top = std::clamp<int32_t>(top, 1, aantal_regels);
        }
        if (cursor < top || cursor >= top + REGELPAGINA) {
            top = cursor;
            vernieuw = true;
        }
        if (vernieuw) {
            vul();
            for (int i = 0; i < REGELPAGINA; i++)
                if (i < std::ssize(teksten))
                    regel(top + i, top + i == cursor);
                else
                    SCRCLREOL(REGELRIJ + i, 1);
            vernieuw = false;
        } else if (getekend_op != cursor) {
            regel(getekend_op, false);
            regel(cursor, true);
        }
        getekend_op = cursor;
    }

    const ors_ingang* ingang() const {
        int32_t i = cursor - top;
        return cursor > 0 && i >= 0 && i < std::ssize(ingangen) ? &ingangen[static_cast<size_t>(i)] : nullptr;
    }

    // A movement key; false for any other.
    bool beweeg(int32_t toets) {
        switch (toets) {
        case K_UP:
            cursor = std::max(cursor - 1, 1);
            return true;
        case K_DOWN:
            cursor = std::min(cursor + 1, aantal_regels);
            if (cursor == top + REGELPAGINA) {
                top++;
                vernieuw = true;
            }
            return true;
        case K_PGDN:
            if (top + REGELPAGINA <= aantal_regels) {
                top += REGELPAGINA;
                cursor = std::min(cursor + REGELPAGINA, aantal_regels);
                vernieuw = true;
            }
            return true;
        case K_PGUP:
            if (top > 1) {
                top = std::max(top - REGELPAGINA, 1);
                cursor = std::max(cursor - REGELPAGINA, 1);
                vernieuw = true;
            }
            return true;
        }
        return false;
    }

    void toetsen_aan() const {
        TOETSAAN(K_CANCEL);
        if (top > 1)
            TOETSAAN(K_PGUP);
        if (top > 0 && top + REGELPAGINA <= aantal_regels)
            TOETSAAN(K_PGDN);
        if (cursor > 1)
            TOETSAAN(K_UP);
        if (cursor < aantal_regels)
            TOETSAAN(K_DOWN);
    }
};

// Master data, bar and advice prices of what has been loaded into regel_nu.
void neem_in_hand(bool geladen) {
    regelstam_lees(&regel_nu);
    const bool balk = regel_balk(regel_nu);
    const bool etiketten = registermodus && geladen && regel_nu.dessin.geregistreerd;
    regel_bereikbaar = balk && geladen;
    if (etiketten && !stukken_op_balk(regel_nu)) // told, without a bar too
        regel_bereikbaar = false;
    if (regel_bereikbaar)
        regel_advies(&regel_nu);
}

// For a change in the full registration the whole line is loaded again, now under the lock of its series. False: it can't
// be worked on (any more).
bool vergrendel() {
    if (registermodus)
        neem_in_hand(serie_laad(&regel_nu, true, true) == Serie::gelezen);
    return regel_bereikbaar;
}

// The line under the cursor into regel_nu; its totals. regel_bereikbaar tells whether it may be worked on.
void laad(const ors_ingang* ingang, ordertotalen* totaal) {
    *totaal = {};
    regel_bereikbaar = regel_is_nieuw = false;
    regelingang = ingang ? *ingang : ors_ingang{};
    if (!ingang || !regel_lees(*ingang, &regel_nu)) {
        regel_wis(&regel_nu);
        return;
    }
    const Serie serie = registermodus ? serie_laad(&regel_nu, false, true) : Serie::in_journaal;
    neem_in_hand(serie == Serie::gelezen || serie == Serie::in_journaal);
    // A line that can't be worked on counts all the same, and comes off the totals when it is deleted.
    regel_totaal(regel_nu, totaal);
}

// The supplier as he is on file now.
void toon_leverancier() {
    leverancier.nummer = 0;
    relatie_lees(kop.leverancier, &leverancier);
    SCRPUT(A_WAARDE, 3, NAAMKOLOM, "%-20.20s", VASTTEKST(leverancier.naam).c_str());
}

// An order without a currency counts in the supplier's while it is on the screen; its header keeps what is stored.
// True when it has just got one.
bool vul_valuta() {
    if (!VASTLEEG(kop.valuta))
        return false;
    memcpy(kop.valuta, leverancier.valuta, sizeof kop.valuta);
    return !VASTLEEG(kop.valuta);
}

// May the cursor's line be worked on? Tells when not.
bool toegankelijk() {
    if (!regel_bereikbaar)
        error("%s", TXT(T_REGEL_ONTOEGANKELIJK));
    return regel_bereikbaar;
}

void item_menu(bool lezen) {
    KEUZESTART(itemtekst);
    KEUZEAAN(I_ORDER);
    KEUZEAAN(I_LEVERANCIER);
    if (aantal_regels > 0)
        for (int k = I_MODEL; k < (lezen ? I_AANTAL : I_AFDRUKKEN); k++)
            KEUZEAAN(k);
}

// A screen on the line in hand; true when the line changed.
bool doe_regel(int keus, bool lezen) {
    switch (keus) {
    case I_MODEL:
        return serie_model(lezen);
    case I_DESSIN:
        return serie_dessin(lezen);
    case I_PRIJSINFO:
        return serie_prijzen(lezen);
    default:
        return aantal_scherm(lezen);
    }
}

// What an item of the sub-menu does; true when the line changed: *prijzen are those that it had.
bool doe_item(int keus, bool lezen, prijsrijen* prijzen) {
    if (keus == I_AFDRUKKEN) {
        order_afdrukken(MENURIJ);
        return false;
    }
    if (keus >= I_MODEL) {
        if (!lezen && regel_bereikbaar)
            vergrendel();
        if (!toegankelijk())
            return false;
        *prijzen = regel_nu.prijzen;
        const bool hersteld = !lezen && serie_maten_kloppend();
        return doe_regel(keus, lezen) || hersteld;
    }
    switch (keus) {
    case I_ORDER:
        if (order_kop(lezen ? Itemwijze::lezen : Itemwijze::wijzigen)) {
            vul_valuta();
            order_totalen();
            korting_bij_opening = kop.korting;
        }
        return false;
    case I_LEVERANCIER:
        relatie_scherm(kop.leverancier, REL_LEVERANCIER,
                       lezen ? Relatiemodus::raadplegen : Relatiemodus::wijzigen);
        toon_leverancier();
        return false;
    }
    return false;
}

// "&Raadplegen" and "&Wijzigen": one choice of the sub-menu. As doe_item.
bool order_item(bool lezen, prijsrijen* prijzen) {
    item_menu(lezen);
    TOETSAAN(K_CANCEL);
    int keus = KEUZE(MENURIJ, 1);
    return keus >= 0 && doe_item(keus, lezen, prijzen);
}

void hoofd_menu() {
    KEUZESTART(hoofdtekst);
    for (int k : {H_TOEVOEGEN, H_RAADPLEGEN, H_MATRIX, H_WIJZIGEN})
        KEUZEAAN(k);
    if (registermodus)
        KEUZEAAN(H_BIJBESTELLEN);
    if (aantal_regels > 0) {
        KEUZEAAN(H_DUPLICEREN);
        KEUZEAAN(H_VERWIJDEREN);
    }
}

// The totals of the line that was written, as it reads from now on: a net price under a surcharge may be stored as one
// that reads a cent beside it.
ordertotalen totaal_geschreven() {
    ordertotalen totaal;
    if (!registermodus)
        regel_lees(regelingang, &regel_nu);
    regel_totaal(regel_nu, &totaal);
    return totaal;
}

// The line in hand into the work file, behind the cursor's model, and its series into the register: the cursor goes
// there. What is refused is told by the routine that refused. `oud`: the series is on file, with these prices.
void voeg_in(Blad& blad, bool met_model, const prijsrijen* oud = nullptr) {
    if (registermodus && !serie_past(regel_nu))
        return;
    if (!wrk_regel_in(&regelingang, met_model, &regel_nu))
        return;
    blad.cursor = regelingang.regel;
    const bool bewaard = !registermodus || serie_bewaar(&regel_nu, !oud, oud ? *oud : regel_nu.prijzen);
    // Without a series the line would be one whose series has gone.
    if (!bewaard && !serie_vast(regel_serie(regel_nu)) && wrk_regel_uit(&regelingang))
        blad.cursor = regelingang.regel;
    if (!bewaard)
        return order_totalen();
    order_totaal_bij('+', totaal_geschreven());
}

// The changed line likewise, and its totals over the old ones.
void bewaar_wijziging(const ordertotalen& oud, const prijsrijen& prijzen) {
    if (registermodus && (!serie_past(regel_nu) || !prijzen_kunnen(regel_nu, prijzen)))
        return;
    if (!wrk_regel_vervang(&regelingang, &regel_nu))
        return;
    if (registermodus && !serie_bewaar(&regel_nu, false, prijzen))
        return order_totalen();
    order_totaal_bij('-', oud);
    order_totaal_bij('+', totaal_geschreven());
}

void dupliceer(Blad& blad) {
    bool model_veranderd = false;
    serie_maten_kloppend();
    regel_dupliceer(&regel_nu);
    if (registermodus)
        up_inkoop_alle(&regel_nu.prijzen); // at the order's rate, whatever the line was bought at
    if (serie_dupliceren(&model_veranderd))
        voeg_in(blad, model_veranderd);
}

// The line's labels go first, since without it they would be nobody's; a series that has gone has none.
bool regel_weg() {
    if (!registermodus)
        return wrk_regel_uit(&regelingang);
    if (!register_heel())
        return false;
    switch (serie_laad(&regel_nu, true, true)) {
    case Serie::gelezen:
    case Serie::zonder_prijs:
        return wrk_regel_uit(&regelingang, [] { return serie_regel_weg(&regel_nu, MENURIJ); });
    case Serie::stuk:
        error("%s", TXT(T_REGEL_ONTOEGANKELIJK));
        return false;
    default:
        return wrk_regel_uit(&regelingang);
    }
}

void verwijder(Blad& blad, const ordertotalen& totaal) {
    if (!JNVRAAG(MENURIJ, 1, "[-]%s", TXT(T_REGEL_VERWIJDEREN)))
        return;
    if (!regel_weg())
        return order_totalen(); // its series may have been refused behind the labels
    order_totaal_bij('-', totaal);
    blad.cursor = regelingang.regel;
}

// One choice of the main menu.
void doe_hoofd(Blad& blad, int keus, const ordertotalen& totaal) {
    prijsrijen prijzen{};
    switch (keus) {
    case H_TOEVOEGEN:
        if (serie_toevoegen())
            voeg_in(blad, true);
        break;
    case H_BIJBESTELLEN:
        if (serie_bijbestellen(&prijzen))
            voeg_in(blad, true, &prijzen);
        break;
    case H_DUPLICEREN:
        if (toegankelijk())
            dupliceer(blad);
        break;
    case H_RAADPLEGEN:
        order_item(true, &prijzen);
        break;
    case H_WIJZIGEN:
        if (order_item(false, &prijzen) && regel_bereikbaar)
            bewaar_wijziging(totaal, prijzen);
        break;
    case H_MATRIX:
        if (aantal_regels > 0)
            order_matrix();
        else
            MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
        break;
    case H_VERWIJDEREN:
        verwijder(blad, totaal);
        break;
    }
    if (registermodus) {
        serie_los();
        serie_nummer_los();
        register_ververs();
    }
}

} // namespace

void order_scherm_los() {
    balk_sluit();
    regel_nu = {};
}

void order_scherm() {
    vul_valuta();
    up_regelkorting(0); // a line's discount is kept for the next line, not for the next order
    order_totalen();
    balk_sluit(); // of the order before; its size type may be another's by now
    Blad blad;
    ordertotalen totaal{};
    order_kopregels();
    toon_leverancier();
    int32_t geladen = -1; // line in the shared areas
    while (!wrk_verloren()) {
        blad.teken();
        if (geladen != blad.cursor)
            laad(blad.ingang(), &totaal);
        geladen = blad.cursor;
        prt_meld_mislukt();
        if (order_alleen_lezen)
            item_menu(true);
        else
            hoofd_menu();
        blad.toetsen_aan();
        int keus = KEUZE(MENURIJ, 1);
        if (keus < 0) {
            if (TOETSWEG())
                break;
            blad.beweeg(SCHERM.laatste);
            continue;
        }
        regelstam_vergeet();
        if (registermodus && !prijswerk_afmaken())
            continue; // prices that are half changed come first
        // The rate of the day for this action. Another one than that of the screen counts for all lines; those of the full
        // registration each have the rate that they were bought at.
        if (order_prijscontext() && !registermodus) {
            order_totalen();
            laad(blad.ingang(), &totaal);
        } else if (balk_vernieuw()) {
            laad(blad.ingang(), &totaal);
        }
        if (order_alleen_lezen) {
            prijsrijen prijzen;
            doe_item(keus, true, &prijzen);
        } else {
            doe_hoofd(blad, keus, totaal);
        }
        blad.vernieuw = true;
        geladen = -1;
        if (vul_valuta())
            order_totalen();
        order_kopregels();
    }
    SCRCLREOL(MENURIJ, 1);
}

} // namespace zg
