// Looking at the quantities of a line, and what of them goes along into a duplicate. See order/aantallen.h.
#include "order/aantalbeeld.h"
#include "order/aantallen.h"
#include "order/programma.h"
#include "order/serieveld.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include <cstdio>

namespace zg {

namespace {

enum Kijk { KIJK_ORDER = 10, KIJK_NOTA, KIJK_TERMIJN, KIJK_AFBEELDING = 15 };

const char* kijktekst(int k) {
    return k == KIJK_ORDER        ? TXT(T_A_KEUS_ORDER)
           : k == KIJK_NOTA       ? TXT(T_A_KEUS_NOTA)
           : k == KIJK_AFBEELDING ? TXT(T_S_AFBEELDING)
                                  : nullptr;
}

void totalen_naar_een() {
    naar_een_filiaal(&regel_nu.nota_aantallen);
    naar_een_filiaal(&regel_nu.order_aantallen);
    aantalmatrix matrix;
    const levtermen termen = regel_nu.termen;
    for (size_t i = 0; i < termen.size(); i++) {
        uint16_t van, tot;
        lt_nr(termen, static_cast<int>(i) + 1, &van, &tot, &matrix);
        naar_een_filiaal(&matrix);
        lt_schrijf(&regel_nu.termen, van, tot, matrix);
    }
}

// What was delivered is ordered anew in the duplicate; more terms than one can't tell where. False: nothing to take.
bool geleverd_telt_mee() {
    if (regel_nu.order_aantallen == regel_nu.nota_aantallen)
        return true;
    if (regel_nu.termen.size() != 1) {
        regel_wis_aantallen(&regel_nu);
        regel_nu.prijzen = {};
        MELDBOX(MELD_INFO, TXT(T_A_NIET_KOPIEREN), nullptr, nullptr);
        return false;
    }
    regel_nu.nota_aantallen = regel_nu.order_aantallen;
    lt_schrijf(&regel_nu.termen, regel_nu.termen[0].van, regel_nu.termen[0].tot, regel_nu.order_aantallen);
    return true;
}

} // namespace

void levt_bekijk() {
    if (!beeld_open())
        return;
    const levtermen& termen = regel_nu.termen;
    int wat = registermodus ? KIJK_NOTA : KIJK_ORDER, nr = 1;
    uint16_t van = 0, tot = 0;
    aantalmatrix term;
    auto matrix = [&]() -> const aantalmatrix& {
        return wat == KIJK_ORDER  ? regel_nu.order_aantallen
               : wat == KIJK_NOTA ? regel_nu.nota_aantallen
                                  : term;
    };
    beeld_begin(matrix());
    for (;;) {
        if (wat == KIJK_TERMIJN)
            beeld_teken(T_A_LEVERTERMIJN, beeld_termijn(van, tot, nr, static_cast<int>(termen.size())), term);
        else
            beeld_som(wat == KIJK_ORDER ? T_A_ORDER : T_A_NOTA, matrix());
        KEUZESTART(kijktekst);
        if (registermodus) {
            KEUZEAAN(KIJK_ORDER);
            KEUZEAAN(KIJK_NOTA);
        }
        if (met_afbeelding())
            KEUZEAAN(KIJK_AFBEELDING);
        if (!termen.empty())
            TOETSAAN(K_F5);
        beeld_toetsen_aan();
        const int keus = KEUZE(beeld_keusrij(), 2);
        if (keus < 0 && TOETSWEG())
            break;
        if (keus == KIJK_AFBEELDING) {
            bekijk_afbeelding();
            continue;
        } else if (keus >= 0) {
            wat = keus;
        } else if (SCHERM.laatste != K_F5) {
            beeld_blader(SCHERM.laatste);
            continue;
        } else if (levt_kies(&tot)) {
            lt_lees(termen, 'R', &van, &tot, &term);
            nr = lt_volgnr(termen, tot);
            wat = KIJK_TERMIJN;
        }
        beeld_begin(matrix());
    }
    beeld_sluit();
}

bool neem_over() {
    if (!geleverd_telt_mee() || fm_leeg(regel_nu.order_aantallen) || !beeld_open())
        return true;
    beeld_opgeefbaar(true);
    beeld_begin(regel_nu.order_aantallen);
    int keus;
    do {
        beeld_som(T_A_AANTALLEN, regel_nu.order_aantallen);
        beeld_overname(regel_nu.order_aantallen, regel_nu.termen.size() > 1);
        beeld_toetsen_aan();
        keus = KEUZE(beeld_keusrij(), 2);
        beeld_blader(SCHERM.laatste);
    } while (keus < 0 && !TOETSWEG() && !beeld_opgegeven());
    beeld_sluit();
    beeld_opgeefbaar(false);
    if (keus == OVER_NIEUW)
        regel_wis_aantallen(&regel_nu);
    else if (keus == OVER_TOTALEN)
        totalen_naar_een();
    return !beeld_is_opgegeven();
}

} // namespace zg
