// Totals of lines and order. Every line is read into an area of its own, so the cursor's line stays as it is.
#include "order/later.h"
#include "order/regelscherm.h"
#include "price/ing_val.h"
#include "price/koers.h"

namespace zg {

ordertotalen ordertotaal;
regeldiensten REGELDIENSTEN;

namespace {

constexpr int32_t PRIJS_ONBEKEND = INT32_MAX; // a size without a price yet counts as 0

int32_t prijs(int32_t p) {
    return p == PRIJS_ONBEKEND ? 0 : p;
}

// Net price of the order's currency as a value in the home currency.
int32_t inkoopprijs(int32_t netto) {
    if (prijs(netto) == 0)
        return 0;
    const std::string code = valuta_of_thuis(std::string(kop.valuta, sizeof kop.valuta).c_str());
    double koers =
        koers_dubbel(static_cast<int32_t>(kop.koers), kop.koerseenheid ? kop.koerseenheid : uint16_t{1});
    return naar_thuis_factor(netto, code.c_str(), koers,
                             kop.toeslag ? static_cast<int32_t>(kop.toeslag) : 10000);
}

} // namespace

void regel_totaal(const int32_t* rij, const regelprijzen& prijzen, ordertotalen* totaal) {
    *totaal = {};
    for (int maat = 1; maat <= MAAT_MAX; maat++) {
        const int64_t aantal = rij[maat];
        if (aantal <= 0)
            continue;
        totaal->stuks += aantal;
        totaal->bruto += aantal * prijs(prijzen.bruto[maat]);
        totaal->netto += aantal * prijs(prijzen.netto[maat]);
        totaal->inkoop += aantal * inkoopprijs(prijzen.netto[maat]);
    }
}

void order_totaal_bij(char teken, const ordertotalen& totaal) {
    const int64_t t = teken == '-' ? -1 : 1;
    ordertotaal.regels += t;
    ordertotaal.stuks += t * totaal.stuks;
    ordertotaal.bruto += t * totaal.bruto;
    ordertotaal.netto += t * totaal.netto;
    ordertotaal.inkoop += t * totaal.inkoop;
}

void order_totalen(bool label_aanpassen) {
    ordertotaal = {};
    regelgebied gebied;
    ors_ingang ingang{};
    for (bool er = ors_lees('F', &ingang); er; er = ors_lees('N', &ingang)) {
        ordertotalen totaal{};
        if (regel_lees_in(ingang, &gebied)) {
            // Sums per size over the branches are the matrix' last row.
            regel_totaal(gebied.aantallen.data() + size_t{aantal_filialen} * MAATKOLOMMEN, gebied.prijzen,
                         &totaal);
            if (label_aanpassen && REGELDIENSTEN.label_korting)
                REGELDIENSTEN.label_korting();
        }
        order_totaal_bij('+', totaal); // a line that can't be loaded counts as a line
    }
}

} // namespace zg
