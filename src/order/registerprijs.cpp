// Prices of a line into the register: the price set of the order's supplier and date, split around other dates, and the
// labels of that supplier and date, each at its own rate.
#include "order/etiketloop.h"
#include "order/prijswerk.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include "sub/omserie.h"
#include "term/datum.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

constexpr int DELEN_SET = 4; // of the key of a price set, without its last day

// A price as a set and a label have it: one that is unknown is 1.
int32_t opgeslagen(int32_t prijs) {
    return prijs == PRIJS_ONBEKEND ? 1 : std::max(prijs, 1);
}

// The groups to store: the line's along the bar, and what the groups on file have for other sizes.
prijsgroepen groepen_van(const orderregel& regel, const prijsgroepen& oud) {
    prijsrijen rijen{};
    uint8_t over[MAATBYTES] = {}; // not the line's, nor on the bar
    for (const prijsgroep& g : oud)
        up_vul_groep(&rijen, g.maten, opgeslagen(g.bruto), opgeslagen(g.netto));
    for (int maat = 1; maat <= MATEN; maat++) {
        const auto m = static_cast<size_t>(maat);
        if (maat_in(regel.dessin.maten, maat))
            up_zet_maat(&rijen, maat, opgeslagen(regel.prijzen.bruto[m]), opgeslagen(regel.prijzen.netto[m]));
        if (rijen.bruto[m])
            maat_aan(over, maat);
    }
    prijsgroepen uit;
    prijsgroep_info groep{};
    while (up_volgende_groep(rijen, ZICHT_INKOOP, &groep)) {
        prijsgroep g{{}, groep.bruto, groep.netto};
        for (size_t i = 0; i < MAATBYTES; i++) {
            g.maten[i] = groep.maten[i];
            over[i] &= static_cast<uint8_t>(~groep.maten[i]);
        }
        uit.push_back(g);
    }
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(over, maat)) { // has left the bar
            prijsgroep g{{}, rijen.bruto[static_cast<size_t>(maat)], rijen.netto[static_cast<size_t>(maat)]};
            maat_aan(g.maten, maat);
            uit.push_back(g);
        }
    return uit;
}

// Has a size of the line another price on file?
bool prijzen_anders(const orderregel& regel, const prijsgroepen& groepen) {
    for (int maat = 1; maat <= MATEN; maat++) {
        const auto m = static_cast<size_t>(maat);
        if (!maat_in(regel.dessin.maten, maat))
            continue;
        auto g =
            std::ranges::find_if(groepen, [maat](const prijsgroep& x) { return maat_in(x.maten, maat); });
        if (g == groepen.end() || opgeslagen(g->netto) != opgeslagen(regel.prijzen.netto[m]) ||
            opgeslagen(g->bruto) != opgeslagen(regel.prijzen.bruto[m]))
            return true;
    }
    return false;
}

int32_t koersfactor() {
    return kop.toeslag ? static_cast<int32_t>(kop.toeslag) : 10000;
}

serrec serie_van(const orderregel& regel) {
    if (zelfde_serie(regel.serie.serie, regel_serie(regel)))
        return regel.serie;
    serrec uit{}; // a new line may still hold the series that it was made from
    uit.serie = regel_serie(regel);
    uit.etiketkop = -1;
    return uit;
}

// A set that wasn't there yet: from the first day on when it is the supplier's first, else for the order's day alone.
void nieuwe_set(prijsserie* p) {
    prijsset eerder{};
    eerder.serie = p->serie;
    eerder.setnr = kop.leverancier;
    const bool eerste = !ioink_move('F', &eerder, DELEN_SET, 1);
    p->wordt = {};
    p->wordt.serie = p->serie;
    p->wordt.setnr = kop.leverancier;
    p->wordt.van = eerste ? DATUMNR("01011980") : kop.orderdatum;
    p->wordt.tot = eerste ? PRIJS_TOT : kop.orderdatum;
    memcpy(p->wordt.valuta, valuta_of_thuis(std::string(kop.valuta, sizeof kop.valuta).c_str()).c_str(),
           sizeof p->wordt.valuta);
}

// The set that the line is to have, if another than there is. False: told.
bool bereken_set(const orderregel& regel, const serrec& serie, prijsserie* p) {
    switch (ioink_find(p->serie, kop.leverancier, kop.orderdatum, &p->was, &p->groepen_was)) {
    case Prijsset::stuk:
        return false;
    case Prijsset::geen:
        p->zet = true;
        nieuwe_set(p);
        break;
    case Prijsset::gelezen:
        p->stond = true;
        p->zet = p->was.koersfactor != koersfactor() || prijzen_anders(regel, p->groepen_was);
        p->wordt = p->was;
        break;
    }
    if (!p->zet)
        return true;
    p->wordt.koersfactor = koersfactor();
    p->groepen = groepen_van(regel, p->groepen_was);
    return !p->stond || prijs_periode(serie, &p->wordt);
}

// What each label of the order's supplier and date becomes. False: damaged, told.
bool bereken_etiketten(const orderregel& regel, const serrec& serie, const prijsrijen& oud, prijsserie* p) {
    inkoopvolger inkoop{valuta_of_thuis(regel.aankoop.valuta)};
    const bool heel = etiketten_loop(serie, [&](int32_t nummer, const etiket& label) {
        if (!label_van_datum(label) || label.maat < 1 || label.maat > MATEN)
            return;
        const maatprijzen nu = up_maatprijzen(regel.prijzen, label.maat);
        const int32_t netto_was = oud.netto[label.maat], netto = regel.prijzen.netto[label.maat];
        prijsetiket e{nummer, label.maat, {label.inkoop, label.prijs}, {label.inkoop, label.prijs}};
        if (netto != netto_was && up_lees(regel.prijzen.netto, label.maat) > 0) {
            // A size that had no price tells no rate: the line's own then.
            const bool zonder = opgeslagen(netto_was) == 1;
            e.wordt.inkoop = zonder ? nu.inkoop : inkoop.volgt(netto_was, label.inkoop, netto);
        }
        if (label.status == ETI_ORDER && !label.met_de_hand && maat_in(regel.dessin.maten, label.maat))
            e.wordt.prijs = nu.advies;
        if (e.wordt.inkoop != label.inkoop || e.wordt.prijs != label.prijs)
            p->etiketten.push_back(e);
    });
    if (!heel)
        ioeti_schademeld(serie.serie);
    return heel;
}

} // namespace

bool op_andere_order(const serrec& serie) {
    bool ander = false;
    etiketten_loop(serie, [&](int32_t, const etiket& label) {
        ander =
            ander || (label_van_datum(label) && label.ordernummer && label.ordernummer != kop.ordernummer);
    });
    return ander;
}

int32_t inkoopvolger::volgt(int32_t netto_was, int32_t inkoop_was, int32_t netto) {
    if (netto_was < 1 || inkoop_was < 1 || netto < 1)
        return inkoop_was;
    const auto [p, nieuw] = bekend.try_emplace({netto_was, inkoop_was, netto}, 0);
    if (nieuw) {
        const double koers = koers_vernauwen(valuta.c_str(), netto_was, inkoop_was, 10000);
        p->second = naar_thuis_factor(netto, valuta.c_str(), koers, 10000);
    }
    return p->second;
}

bool prijs_periode(const serrec& serie, prijsset* set) {
    int32_t voor = -1, na = INT32_MAX;
    const bool heel = etiketten_loop(serie, [&](int32_t, const etiket& label) {
        if (label.leverancier != set->setnr || label.orderdatum < set->van || label.orderdatum > set->tot)
            return;
        if (label.orderdatum < kop.orderdatum)
            voor = std::max<int32_t>(voor, label.orderdatum);
        else if (label.orderdatum > kop.orderdatum)
            na = std::min<int32_t>(na, label.orderdatum);
    });
    if (voor >= 0)
        set->van = kop.orderdatum;
    if (na != INT32_MAX)
        set->tot = static_cast<uint16_t>(na - 1);
    if (!heel)
        ioeti_schademeld(serie.serie);
    return heel;
}

bool prijzen_schrijfbaar(const orderregel& regel) {
    prijsserie p{};
    p.serie = regel_serie(regel);
    return bereken_set(regel, serie_van(regel), &p) && (!p.zet || ioink_past(MATEN));
}

bool prijzen_kunnen(const orderregel& regel, const prijsrijen& oud) {
    prijsserie p{};
    p.serie = regel_serie(regel);
    return bereken_etiketten(regel, serie_van(regel), oud, &p) && prijzen_passen(p);
}

bool prijzen_bij(const orderregel& regel, const prijsrijen* oud) {
    const serrec serie = serie_van(regel);
    prijswerk noot{kop.leverancier, kop.orderdatum, kop.ordernummer, kop.korting, {}};
    prijsserie& p = noot.series.emplace_back();
    p.serie = regel_serie(regel);
    p.nummer = serie.nummer;
    p.regel = regelingang.regel;
    if (!bereken_set(regel, serie, &p) || (oud && !bereken_etiketten(regel, serie, *oud, &p)))
        return false;
    // A set alone is old or new; with labels it is noted first.
    const bool noteren = !p.etiketten.empty();
    if (!p.zet && !noteren)
        return true;
    if (noteren && !prijswerk_noteer(noot))
        return false;
    const Prijsuit uit = prijswerk_serie(noot, p, serie);
    if (uit == Prijsuit::geweigerd)
        return false;
    if (noteren)
        prijswerk_wis();
    if (uit == Prijsuit::anders)
        regels_overgeslagen(T_REG_PRIJS_OVER, {prijswerk_naam(p)});
    return true;
}

bool prijzen_passen(const prijsserie& p) {
    for (const prijsetiket& e : p.etiketten)
        if (e.wordt.inkoop > ETIBEDRAG_MAX || e.wordt.prijs > ETIBEDRAG_MAX) {
            char tekst[80];
            snprintf(tekst, sizeof tekst, TXT(T_REG_BEDRAG), serie_tekst(p.serie).c_str(),
                     maatbalk ? mtname(maatbalk, e.maat) : "");
            ALARMBOX(tekst);
            return false;
        }
    return true;
}

bool prijzen_vraag(const orderregel& regel) {
    if (!registermodus || !op_andere_order(regel.serie))
        return true;
    constexpr int BREEDTE = 60;
    WINOPEN1(9, (SCHERM.cols - BREEDTE) / 2 + 1, 8, BREEDTE);
    WINBOX(" %s ", TXT(T_REG_PRIJZEN_TITEL));
    int rij = 1;
    for (const Tekst* t : {&T_REG_PRIJZEN_1, &T_REG_PRIJZEN_2, &T_REG_PRIJZEN_3, &T_REG_PRIJZEN_4})
        SCRPUT(A_WAARDE, rij++, 2, "%s", TXT(*t));
    PIEP();
    const bool ja = JNVRAAG(rij + 1, 2, "[-]%s", TXT(T_REG_DOORGAAN));
    WINCLOSE();
    return ja;
}

} // namespace zg
