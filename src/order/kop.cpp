// The header's window: the first walk over a new order, the menu, and what goes into the work file.
#include "order/kop.h"
#include "order/dialog.h"
#include "order/later.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <cstring>

namespace zg {

int16_t korting_bij_opening;
char kop_levering[BLOKLEN], kop_betaling[BLOKLEN];

namespace {

const Tekst* const LABELS[KOP_ITEMS] = {
    &T_KOP_LEVERANCIER, &T_KOP_ORDERDATUM,  &T_KOP_LOCATIE,   &T_KOP_LEVORDERNR, &T_KOP_OMSCHRIJV,
    &T_KOP_AGENT,       &T_KOP_DEELSEIZOEN, &T_KOP_COLLECTIE, &T_KOP_INKOOPCODE, &T_KOP_KORTING,
    &T_KOP_VALUTACODE,  &T_KOP_VALUTAKOERS, &T_KOP_TOESLAG,   &T_KOP_LEVERING,   &T_KOP_BETALING};

const char* itemtekst(int item) {
    return item > KOP_LEVERANCIER && item < KOP_ITEMS ? TXT(*LABELS[item]) : nullptr;
}

void labels() {
    for (int item = 0; item < KOP_ITEMS; item++)
        if (kop_aanwezig(item))
            AMPTEKST(kop_rij(item), 2, TXT(*LABELS[item]));
}

// F6 on a new order: the answer. The prompt's row is free again afterwards.
bool afbreken() {
    bool ja = JNVRAAG(KOPKEUSRIJ, 2, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)) != 0;
    SCRCLREOL(KOPKEUSRIJ, 1);
    return ja;
}

// The fields of a new order that ORDPARM.SYS asks for. False when the order was refused, which an order of the
// journal can't be: it would go.
bool eerste_gang() {
    for (int item = KOP_OMSCHRIJVING; item < KOP_ITEMS; item++) {
        SCHERM.laatste = 0;
        if (order_nieuw)
            TOETSAAN(K_F6);
        kop_veld(item, orderparameters.kopvraag[item] != 0);
        if (SCHERM.laatste == K_F6 && order_nieuw) {
            if (afbreken())
                return false;
            item--;
        } else if (TOETSWEG()) {
            break;
        }
    }
    return true;
}

// The menu until ESC. False when a new order was refused.
bool menu(bool nieuw, bool* anders) {
    for (;;) {
        KEUZESTART(itemtekst);
        for (int item = KOP_DATUM; item < KOP_ITEMS; item++)
            if (kop_te_kiezen(item, nieuw))
                KEUZEAAN(item);
        TOETSAAN(K_CANCEL);
        if (nieuw && order_nieuw)
            TOETSAAN(K_F6);
        int item = KEUZE(KOPKEUSRIJ, 2);
        if (item >= 0) {
            if (kop_veld(item, true))
                *anders = true;
            kop_toon();
        } else if (SCHERM.laatste == K_F6) {
            if (afbreken())
                return false;
        } else {
            return true;
        }
    }
}

// An order that may only be looked at: its two texts.
void menu_lezen() {
    for (;;) {
        KEUZESTART(itemtekst);
        KEUZEAAN(KOP_LEVERING);
        KEUZEAAN(KOP_BETALING);
        TOETSAAN(K_CANCEL);
        int item = KEUZE(KOPKEUSRIJ, 2);
        if (item < 0)
            return;
        bool levering = item == KOP_LEVERING;
        tekst_bekijk(12, 10, levering ? 1 : 2, levering ? kop_levering : kop_betaling);
    }
}

void lees_teksten() {
    memset(kop_levering, 0, BLOKLEN);
    memset(kop_betaling, 0, BLOKLEN);
    werk->offset = 0;
    if (order_nieuw || !ord_lees(werk, 'R'))
        return;
    ord_tekst_lees(werk, 1, kop_levering);
    ord_tekst_lees(werk, 2, kop_betaling);
}

} // namespace

bool kop_te_kiezen(int item, bool nieuw) {
    bool leeg = aantal_regels == 0;
    bool vreemd = !VASTLEEG(kop.valuta) && thuisvaluta_anders(std::string(VASTUIT(kop.valuta)).c_str());
    bool vrij = nieuw || !registermodus;
    switch (item) {
    case KOP_OMSCHRIJVING:
    case KOP_AGENT:
    case KOP_COLLECTIE:
    case KOP_INKOOPCODE:
    case KOP_LEVERING:
    case KOP_BETALING:
        return true;
    case KOP_KORTING:
        return leeg || kop.korting == 0;
    case KOP_LOCATIE:
        return kop_aanwezig(KOP_LOCATIE);
    case KOP_DATUM:
        // The pieces of the full registration are labels; as long as they can't be counted there are some.
        return vrij || leeg || (REGELDIENSTEN.serie_laad && ordertotaal.stuks == 0);
    case KOP_DEELSEIZOEN:
    case KOP_TOESLAG:
        return vrij || leeg;
    case KOP_KOERS:
        return vreemd && (vrij || leeg);
    case KOP_VALUTA:
        return leeg;
    default:
        return false;
    }
}

bool order_kop(bool nieuw) {
    ordkop oud = kop;
    lees_teksten();
    WINOPEN1(4, 21, 19, 60);
    WINBOX(" %s ", TXT(T_KOP_TITEL));
    labels();
    kop_toon();
    bool goed = true, anders = false;
    if (order_alleen_lezen) {
        menu_lezen();
    } else {
        if (nieuw)
            goed = eerste_gang();
        if (goed)
            goed = menu(nieuw, &anders);
    }
    if (nieuw)
        korting_bij_opening = kop.korting;
    WINCLOSE();
    if (order_alleen_lezen)
        return false;
    if (goed && !ord_kop_schrijf(werk, kop_levering, kop_betaling)) {
        // Told: the file holds the old header, so the screen does too.
        kop = oud;
        return false;
    }
    return nieuw ? goed : anders;
}

} // namespace zg
