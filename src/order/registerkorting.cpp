// The order's discount into the register. All is read and worked out first, each series under its lock for as long as that
// takes; then it is noted, then the header is written, then sets and labels.
#include "order/etiketloop.h"
#include "order/kop.h"
#include "order/prijswerk.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "sub/omserie.h"
#include "term/datum.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstring>
#include <set>

namespace zg {
namespace {

bool van_regel(const serrec& serie, const orderregel& regel) {
    return serie_mag(serie, serie_stempel(kop.orderdatum, regel.dessin.tijdstempel));
}

int32_t netto_met(int32_t netto, double verhouding) {
    return static_cast<int32_t>(std::clamp<int64_t>(
        round(std::min(netto * verhouding, double{PRIJS_ONBEKEND - 1})), 1, PRIJS_ONBEKEND - 1));
}

// What a discount makes of a series' set and labels; its lock is held. False: the line is skipped.
bool bereken(const serrec& serie, double verhouding, prijsserie* p) {
    if (ioink_find(p->serie, kop.leverancier, kop.orderdatum, &p->was, &p->groepen_was) != Prijsset::gelezen)
        return false;
    p->stond = p->zet = true;
    p->wordt = p->was;
    p->groepen = p->groepen_was;
    prijsrij netto_was{}, netto{};
    for (prijsgroep& g : p->groepen) {
        up_vul(&netto_was, g.maten, g.netto);
        if (g.netto > 0)
            g.netto = netto_met(g.netto, verhouding);
        up_vul(&netto, g.maten, g.netto);
    }
    inkoopvolger inkoop{valuta_of_thuis(std::string(p->was.valuta, sizeof p->was.valuta).c_str())};
    const bool heel = etiketten_loop(serie, [&](int32_t nummer, const etiket& label) {
        if (!label_van_datum(label) || label.maat < 1 || label.maat > MATEN)
            return;
        prijsetiket e{nummer, label.maat, {label.inkoop, label.prijs}, {label.inkoop, label.prijs}};
        if (netto[label.maat] != netto_was[label.maat])
            e.wordt.inkoop = inkoop.volgt(netto_was[label.maat], label.inkoop, netto[label.maat]);
        if (e.wordt.inkoop != label.inkoop)
            p->etiketten.push_back(e);
    });
    return heel && prijs_periode(serie, &p->wordt);
}

// All lines. False: told, an amount doesn't fit.
bool bereken_order(int16_t was, prijswerk* noot, std::vector<std::string>* anders) {
    const double verhouding = (kop.korting + 10000.0) / (was + 10000.0);
    bool past = true;
    std::set<sleutelwaarde> al;
    regels_loop([&](int32_t nr, const orderregel* regel) {
        if (!regel) {
            anders->push_back(regel_naam(nr, regel));
            return;
        }
        prijsserie p{};
        p.serie = regel_serie(*regel);
        p.regel = nr;
        serrec serie;
        if (al.contains(sleutel_van(p.serie)) || !past)
            return;
        if (!serie_neem(p.serie, &serie) || !van_regel(serie, *regel) || !bereken(serie, verhouding, &p)) {
            anders->push_back(prijswerk_naam(p));
            return;
        }
        p.nummer = serie.nummer;
        past = prijzen_passen(p);
        al.insert(sleutel_van(p.serie));
        noot->series.push_back(std::move(p));
    });
    serie_los();
    return past;
}

} // namespace

bool order_korting(int16_t was) {
    if (was <= -10000 || kop.korting <= -10000 || !prijswerk_afmaken() || !register_heel())
        return false;
    prijswerk noot{kop.leverancier, kop.orderdatum, kop.ordernummer, kop.korting, {}};
    std::vector<std::string> anders;
    BEZIGTOON();
    if (!bereken_order(was, &noot, &anders) || (!noot.series.empty() && !ioink_past(MATEN)) ||
        !prijswerk_noteer(noot)) {
        BEZIGWIS();
        return false;
    }
    if (!ord_kop_schrijf(werk, kop_levering, kop_betaling)) {
        BEZIGWIS();
        prijswerk_wis();
        return false;
    }
    if (prijswerk_doe(noot, &anders)) // refused: it waits
        prijswerk_wis();
    register_ververs();
    BEZIGWIS();
    regels_overgeslagen(T_REG_PRIJS_OVER, anders);
    return true;
}

bool orderkorting_toegestaan() {
    bool ander = false;
    if (registermodus)
        regels_loop([&](int32_t, const orderregel* regel) {
            serrec serie;
            ander = ander || (regel && serie_lees(regel_serie(*regel), &serie) && van_regel(serie, *regel) &&
                              op_andere_order(serie));
        });
    if (!ander)
        return true;
    constexpr int BREEDTE = 56;
    WINOPEN1(9, (SCHERM.cols - BREEDTE) / 2 + 1, 9, BREEDTE);
    WINBOX(" %s ", TXT(T_REG_KORTING_TITEL));
    int rij = 1;
    for (const Tekst* t : {&T_REG_KORTING_1, &T_REG_KORTING_2, &T_REG_KORTING_3, &T_REG_KORTING_4})
        SCRPUT(A_WAARDE, rij++, 2, "%s", TXT(*t));
    PIEP();
    ENTERWACHT(7, 2);
    WINCLOSE();
    return false;
}

} // namespace zg
