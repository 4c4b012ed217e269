// The screen of a line's quantities: one term at a time in the grid, its menu, and what each item does. A term is read
// from the line, changed in hand, and booked into the line by its difference. See order/aantallen.h.
#include "order/aantallen.h"
#include "order/aantalbeeld.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/serieveld.h"
#include "order/verdelen.h"
#include "order/wrk.h"
#include "shared/maatbalk.h"
#include "sub/reeksen.h"
#include "sub/voorverd.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include <algorithm>

namespace zg {

namespace {

enum Aantalkeuze {
    A_FILIAAL_INGAVE,
    A_VERDELEN,
    A_AUTOMATISCH,
    A_WIJZIGEN, // known, never offered
    A_VOORVERDELING,
    A_REEKS_ERBIJ,
    A_REEKS_VERDELEN,
    A_AANTAL_INGAVE,
    A_TERMIJN,
    A_DEELORDER,
    A_NOTA = 11,
    A_VORIGE = 13,
    A_VOLGENDE,
    A_AFBEELDING,
    A_AANTAL
};

// Each item's label, and the shorter one for a row that the labels don't fit on.
struct Label {
    const Tekst *lang, *kort;
};
const Label LABELS[A_AANTAL] = {{&T_A_FILIAAL_INGAVE, &T_A_K_FILIAAL},
                                {&T_A_KEUS_VERDELEN, &T_A_K_VERDELEN},
                                {&T_A_AUTOMATISCH, &T_A_K_AUTOMATISCH},
                                {&T_A_KEUS_WIJZIGEN, nullptr},
                                {&T_A_VOORVERDELING, &T_A_K_SELECTEREN},
                                {&T_A_REEKS_ERBIJ, &T_A_K_REEKSEN},
                                {&T_A_REEKS_VERDELEN, &T_A_K_REEKSEN},
                                {&T_A_AANTAL_INGAVE, &T_A_K_AANTAL},
                                {&T_A_TERMIJN_WIJZIGEN, &T_A_K_TERMIJN},
                                {&T_A_DEELORDER, &T_A_K_DEELORDER},
                                {},
                                {&T_A_KEUS_NOTA, &T_A_K_NOTA},
                                {},
                                {&T_A_VORIGE, &T_A_K_VORIGE},
                                {&T_A_VOLGENDE, &T_A_K_VOLGENDE},
                                {&T_S_AFBEELDING, &T_S_AFBEELDING}};

template <const Tekst* Label::*WELKE> const char* keuzetekst(int k) {
    const Tekst* t = k >= 0 && k < A_AANTAL ? LABELS[k].*WELKE : nullptr;
    return t ? TXT(*t) : nullptr;
}

// The term in hand.
struct Termijn {
    uint16_t van = 0, tot = 0;
    int nr = 0;
    aantalmatrix werk;
};

int aantal_termen() {
    return static_cast<int>(regel_nu.termen.size());
}

// Its matrix anew from the line; the window for it.
void lees(Termijn& t) {
    lt_nr(regel_nu.termen, t.nr, &t.van, &t.tot, &t.werk);
    beeld_begin(t.werk);
}

void teken(const Termijn& t) {
    beeld_teken(aantal_termen() > 1 ? T_A_LEVERTERMIJN : T_A_AANTALLEN,
                beeld_termijn(t.van, t.tot, t.nr, aantal_termen()), t.werk);
}

void menu(const Termijn& t) {
    const bool leeg = fm_leeg(t.werk);
    KEUZESTART(keuzetekst<&Label::lang>);
    KEUZEKORT(keuzetekst<&Label::kort>);
    KEUZEAAN(A_TERMIJN);
    KEUZEAAN(A_DEELORDER);
    if (firma.filialen == 1) {
        KEUZEAAN(A_AANTAL_INGAVE);
        if (leeg)
            KEUZEAAN(A_VOORVERDELING);
    } else {
        KEUZEAAN(A_FILIAAL_INGAVE);
        if (leeg) {
            KEUZEAAN(A_VOORVERDELING);
            KEUZEAAN(A_REEKS_ERBIJ);
        } else {
            KEUZEAAN(A_REEKS_VERDELEN);
            // Key by key the pieces come from a branch.
            const bool bij_een = een_filiaal(t.werk) < firma.filialen;
            if (!aantalgrid.sneltoetsen || bij_een || aantalgrid.magazijn >= 0)
                KEUZEAAN(A_VERDELEN);
            if (bij_een) {
                KEUZEAAN(A_VOORVERDELING);
                if (regel_nu.gewichten[firma.filialen] > 0)
                    KEUZEAAN(A_AUTOMATISCH);
            }
        }
    }
    if (aantal_termen() > 1) {
        KEUZEAAN(A_NOTA);
        if (t.nr > 1)
            KEUZEAAN(A_VORIGE);
        if (t.nr < aantal_termen())
            KEUZEAAN(A_VOLGENDE);
        TOETSAAN(K_F5);
    }
    if (met_afbeelding() && !regel_is_nieuw)
        KEUZEAAN(A_AFBEELDING);
    beeld_toetsen_aan();
    beeld_f6_aan();
}

// True when one was taken.
bool voorverdeling(aantalmatrix* werk) {
    const uint8_t soort = regel_nu.model.maatsoort;
    if (firma.filialen == 1) {
        reeksrij rij;
        if (!reeks_kiezen(soort, "SWTV", regel_nu.dessin.maten, &rij))
            return false;
        fmclear(werk);
        for (int maat = 1; maat <= MATEN; maat++)
            fmadd(werk, 0, maat, rij[static_cast<size_t>(maat)]);
        return true;
    }
    if (fm_leeg(*werk))
        return vv_kiezen(soort, "SWTVR", regel_uitgesloten(), werk);
    return vv_verdelen(soort, "SWTVR", regel_uitgesloten(), restrij(bronrij(*werk)), werk);
}

// Size runs over the totals that stand: what the source has is free, and what is left free goes to the rest.
void verdeel_reeks(aantalmatrix* werk) {
    const int bron = bronrij(*werk), rest = restrij(bron);
    reeksrij vrij{};
    matrix_maak_vrij(werk, bron, vrij.data());
    for (;;) {
        reeks_scherm(regel_nu.model.maatsoort, werk, true, regel_uitgesloten());
        reeks_over(*werk, &vrij);
        if (verdeel_sluit(werk, vrij.data(), rest))
            return;
        MELDBOX(MELD_ALARM, TXT(T_A_MEER_PER_MAAT), nullptr, nullptr);
    }
}

// What an item does to the matrix in hand.
void doe(int keus, Termijn& t) {
    const int bron = bronrij(t.werk);
    switch (keus) {
    case A_FILIAAL_INGAVE:
        beeld_titel(T_A_WIJZIGEN);
        matrix_hand(&aantalgrid, &t.werk);
        break;
    case A_VERDELEN:
        beeld_titel(T_A_VERDELEN);
        matrix_verdeel(&aantalgrid, &t.werk, bron, restrij(bron));
        break;
    case A_AUTOMATISCH:
        verdeel_herbouw(regel_nu, regel_is_nieuw ? nullptr : &regelingang, t.tot);
        auto_verdelen(&t.werk);
        break;
    case A_VOORVERDELING:
        voorverdeling(&t.werk);
        break;
    case A_REEKS_ERBIJ:
        reeks_scherm(regel_nu.model.maatsoort, &t.werk, false, regel_uitgesloten());
        break;
    case A_REEKS_VERDELEN:
        verdeel_reeks(&t.werk);
        break;
    case A_AANTAL_INGAVE:
        aantal_ingave(&t.werk);
        break;
    }
}

// The sum of the terms, until a key that isn't of the grid.
void kijk_nota() {
    beeld_begin(regel_nu.nota_aantallen);
    do {
        beeld_som(T_A_NOTA, regel_nu.nota_aantallen);
        beeld_toetsen_aan();
        ENTERWACHT(beeld_keusrij(), 2);
        beeld_blader(SCHERM.laatste);
    } while (SCHERM.laatste != K_ENTER && !TOETSWEG());
}

// The items that leave the matrix alone and go to a term.
void ga(int keus, Termijn& t) {
    switch (keus) {
    case A_TERMIJN:
    case A_DEELORDER:
        if (keus == A_TERMIJN)
            levt_wijzig(&t.van, &t.tot);
        else
            levt_nieuw(&t.van, &t.tot, t.werk);
        t.nr = lt_volgnr(regel_nu.termen, t.tot);
        break;
    case A_NOTA:
        kijk_nota();
        break;
    case A_VORIGE:
        t.nr--;
        break;
    case A_VOLGENDE:
        t.nr++;
        break;
    case A_AFBEELDING:
        bekijk_afbeelding();
        break;
    }
}

void kies_termijn(Termijn& t) {
    if (levt_kies(&t.tot))
        t.nr = lt_volgnr(regel_nu.termen, t.tot);
}

void termen_lus() {
    Termijn t;
    fmclear(&t.werk);
    if (aantal_termen() == 0) {
        beeld_begin(t.werk);
        beeld_teken(T_A_AANTALLEN, "", t.werk);
        if (!levt_nieuw(&t.van, &t.tot, t.werk))
            return;
    }
    t.nr = 1;
    lees(t);
    for (;;) {
        teken(t);
        menu(t);
        const int keus = KEUZE(beeld_keusrij(), 2);
        const int32_t toets = SCHERM.laatste;
        if ((keus < 0 && TOETSWEG()) || beeld_opgegeven())
            return;
        if (keus < 0 && toets != K_F5) {
            beeld_blader(toets);
            continue;
        }
        if (keus < 0) {
            kies_termijn(t);
        } else if (keus >= A_TERMIJN) {
            ga(keus, t);
            if (beeld_is_opgegeven())
                return;
        } else {
            const aantalmatrix oud = t.werk;
            doe(keus, t);
            if (beeld_opgegeven())
                return;
            if (t.werk != oud)
                termijn_boek(t.van, t.tot, oud, t.werk);
        }
        beeld_ververs();
        lees(t);
    }
}

} // namespace

void aantal_ingave(aantalmatrix* matrix) {
    for (;;) {
        matrix_totalen(&aantalgrid, matrix);
        if (SCHERM.laatste != K_F5 || !fm_leeg(*matrix))
            return;
        const bool genomen = voorverdeling(matrix);
        beeld_ververs();
        beeld_begin(*matrix);
        if (genomen)
            return;
    }
}

bool aantal_scherm(bool lezen) {
    if (lezen) {
        levt_bekijk();
        return false;
    }
    if (fm_leeg(regel_nu.nota_aantallen) && !fm_leeg(regel_nu.order_aantallen)) {
        MELDBOX(MELD_ALARM, TXT(T_A_REEDS_GELEVERD), nullptr, nullptr);
        return false;
    }
    if (!beeld_open())
        return false;
    const levtermen oud = regel_nu.termen;
    termen_lus();
    beeld_sluit();
    return regel_nu.termen != oud;
}

bool aantal_nieuw() {
    beeld_opgeefbaar(true);
    aantal_scherm(false);
    beeld_opgeefbaar(false);
    return !beeld_is_opgegeven();
}

} // namespace zg
