// The header's screen and the work file.
#include "order/kop.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/wrk.h"
#include <cstring>

namespace zg {

int16_t korting_bij_opening;
char kop_levering[BLOKLEN], kop_betaling[BLOKLEN];

namespace {

// The two texts as the work file has them. The first header of a new order begins without.
void lees_teksten(bool nieuw) {
    memset(kop_levering, 0, BLOKLEN);
    memset(kop_betaling, 0, BLOKLEN);
    if ((nieuw && order_nieuw) || !ord_eerste_order(werk))
        return;
    ord_tekst_lees(werk, 1, kop_levering);
    ord_tekst_lees(werk, 2, kop_betaling);
}

// The accepted header; another discount of an order with lines goes into the register with it.
bool bewaar(bool nieuw) {
    if (nieuw || !registermodus || aantal_regels == 0 || kop.korting == korting_bij_opening)
        return ord_kop_schrijf(werk, kop_levering, kop_betaling);
    if (!order_korting(korting_bij_opening))
        return false;
    korting_bij_opening = kop.korting; // it must not be taken twice
    return true;
}

// What the labels of the lines hold of the header and has changed.
int voor_etiketten(const ordkop& oud) {
    return (kop.inkoopcode != oud.inkoopcode ? BIJ_CODE : 0) |
           (kop.ontvangstlocatie != oud.ontvangstlocatie ? BIJ_LOCATIE : 0);
}

} // namespace

bool order_kop(Itemwijze wijze) {
    const bool nieuw = wijze == Itemwijze::nieuw;
    const ordkop oud = kop;
    lees_teksten(nieuw);
    kopveld_begin(nieuw);
    bool anders = false;
    // An order of the journal that has no lines is walked like a new one, but can't be broken off: it would go.
    const bool goed = itemscherm(KOPSCHERM, {wijze, orderparameters.kopvraag, nieuw && order_nieuw}, &anders);
    if (nieuw)
        korting_bij_opening = kop.korting;
    if (wijze == Itemwijze::lezen)
        return false;
    int soorten = goed && registermodus && !nieuw && aantal_regels > 0 ? voor_etiketten(oud) : 0;
    if (goed && ((soorten && !label_noteer(&soorten)) || !bewaar(nieuw))) {
        // Told: the file holds the old header, so the screen does too.
        kop = oud;
        return false;
    }
    if (soorten)
        label_bijwerk(soorten);
    if (soorten & BIJ_LOCATIE)
        ordnr_locatie();
    return nieuw ? goed : anders;
}

} // namespace zg
