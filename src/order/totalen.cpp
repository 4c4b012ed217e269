// Totals of lines and order. Every line is read into a value of its own, so the cursor's line stays as it is.
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "price/ing_val.h"
#include <algorithm>
#include <functional>

namespace zg {

ordertotalen ordertotaal;

double order_koers() {
    return kop.koers / (std::max<uint16_t>(kop.koerseenheid, 1) * 10000.0);
}

bool order_prijscontext() {
    const double was = up_context.koers;
    const std::string code(kop.valuta, sizeof kop.valuta);
    up_valuta(code.c_str(), order_koers(), static_cast<int32_t>(std::min<uint32_t>(kop.toeslag, INT32_MAX)));
    up_orderkorting(kop.korting / -100.0);
    return up_context.koers != was;
}

void regel_totaal(const orderregel& regel, const int32_t* besteld, ordertotalen* totaal) {
    *totaal = {};
    for (int maat = 1; maat <= MATEN; maat++) {
        const int64_t aantal = std::max(besteld[maat], 0);
        totaal->stuks += aantal;
        totaal->bruto += aantal * up_lees(regel.prijzen.bruto, maat);
        totaal->netto += aantal * up_lees(regel.prijzen.netto, maat);
        totaal->inkoop += aantal * up_lees(regel.prijzen.inkoop, maat);
    }
}

void regel_totaal(const orderregel& regel, ordertotalen* totaal) {
    regel_totaal(regel, matrix_totalen(regel.order_aantallen), totaal);
}

void order_totaal_bij(char teken, const ordertotalen& totaal) {
    // Without a sign: sums of a damaged order may go round, and come back when its lines go.
    auto bij = [teken](int64_t* som, int64_t deel) {
        const auto s = static_cast<uint64_t>(*som), d = static_cast<uint64_t>(deel);
        *som = static_cast<int64_t>(teken == '-' ? s - d : s + d);
    };
    bij(&ordertotaal.regels, 1);
    bij(&ordertotaal.stuks, totaal.stuks);
    bij(&ordertotaal.bruto, totaal.bruto);
    bij(&ordertotaal.netto, totaal.netto);
    bij(&ordertotaal.inkoop, totaal.inkoop);
}

namespace {

void regels(const std::function<void(const orderregel* regel, Serie serie, const labelsom& som)>& doe) {
    regelloop loop;
    regelloop_begin(&loop);
    orderregel regel;
    Serie serie;
    labelsom som;
    ors_ingang ingang{};
    for (bool er = ors_lees('F', &ingang); er; er = ors_lees('N', &ingang)) {
        const bool gelezen = regel_som(&loop, ingang, &regel, &serie, &som);
        doe(gelezen ? &regel : nullptr, serie, som);
    }
}

} // namespace

void order_totalen() {
    order_prijscontext();
    ordertotaal = {};
    regels([](const orderregel* regel, Serie, const labelsom& som) {
        ordertotalen totaal{};
        if (regel)
            regel_totaal(*regel, som.besteld, &totaal);
        order_totaal_bij('+', totaal); // a line that can't be loaded counts as a line
    });
}

bool regels_leesbaar() {
    bool alle = true;
    regels([&alle](const orderregel* regel, Serie serie, const labelsom&) {
        alle = alle && regel && serie != Serie::stuk;
    });
    return alle;
}

} // namespace zg
