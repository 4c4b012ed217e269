// The labels of a line: its quantities and terms counted from them, and what the line then tells brought into them. Each
// piece on order is a label of status 1 with the order's supplier, date and number; its term is the last delivery date.
#include "control/controle.h"
#include "order/bestanden.h"
#include "order/etiketloop.h"
#include "order/kop.h"
#include "order/register.h"
#include "order/teksten.h"
#include "shared/iofil.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "sub/omserie.h"
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <utility>

namespace zg {

bool label_van_datum(const etiket& label) {
    return label.leverancier == kop.leverancier && label.orderdatum == kop.orderdatum;
}

bool label_van_order(const etiket& label) {
    return label_van_datum(label) && kop.ordernummer != 0 && label.ordernummer == kop.ordernummer;
}

namespace {

bool op_order(const etiket& label) {
    return label.status == ETI_ORDER && label_van_order(label);
}

using Cel = std::pair<uint8_t, uint8_t>; // branch index, size index
using Cellen = std::map<Cel, int32_t>;

int32_t tel(const Cellen& cellen, Cel cel) {
    const auto c = cellen.find(cel);
    return c == cellen.end() ? 0 : c->second;
}

struct Statustelling {
    int32_t per[ETI_CORRECTIE + 1] = {};
    void naar(serrec* serie) const {
        serie->in_nota = per[ETI_ORDER];
        serie->voorraad = per[ETI_VOORRAAD];
        serie->verkopen = per[ETI_VERKOCHT];
        serie->correcties = per[ETI_CORRECTIE];
    }
    int32_t som() const {
        return per[ETI_ORDER] + per[ETI_VOORRAAD] + per[ETI_VERKOCHT] + per[ETI_CORRECTIE];
    }
};

// The order's labels on order, and how many of each status the series has. False: damaged, told.
bool lees_eigen(const serrec& serie, std::vector<genummerd>* eigen, Statustelling* telling) {
    return etiketten_zoek(
        serie,
        [&](const etiket& label) {
            telling->per[label.status]++;
            return op_order(label);
        },
        eigen);
}

// Place of a size on the bar in force; those that it lacks come behind it.
int balkplaats(uint8_t maat) {
    const int positie = maatbalk ? mtpos(maatbalk, maat) : 0;
    return positie ? positie : MATEN + maat;
}

// A label of a size, its branch apart.
etiket nieuw_etiket(const orderregel& regel, const serrec& serie, const levterm& term, uint8_t maat,
                    uint8_t locatie) {
    const maatprijzen p = up_maatprijzen(regel.prijzen, maat);
    etiket l{};
    l.status = ETI_ORDER;
    l.etiketsoort = serie.etiketsoort;
    l.maat = maat;
    l.leverancier = kop.leverancier;
    l.orderdatum = kop.orderdatum;
    l.levering_van = term.van;
    l.levering_tot = term.tot;
    l.inkoop = p.inkoop;
    l.prijs = p.advies;
    l.netto = p.netto;
    l.maatsoort = regel.model.maatsoort;
    l.inkoopcode = kop.inkoopcode;
    l.ordernummer = kop.ordernummer;
    label_zet_locatie(&l, locatie);
    return l;
}

// What has to be done to the labels of a term.
struct Termwerk {
    std::vector<genummerd> weg;
    std::vector<std::pair<genummerd, uint8_t>> verplaats; // to a branch
    std::vector<std::pair<Cel, int32_t>> erbij;           // in the order of the bar
};

// A label stays while its branch has pieces of its size left; else it goes to a branch that has more pieces than
// labels, the first one; else away.
Termwerk verdeel(const std::vector<const genummerd*>& labels, const levterm& term) {
    Termwerk uit;
    Cellen er, gepland;
    for (const levcel& c : term.cellen)
        gepland[{c.filiaal, c.maat}] = c.aantal;
    for (const genummerd* l : labels)
        er[{l->label.filiaal, l->label.maat}]++;
    for (const genummerd* l : labels) {
        const Cel cel = {l->label.filiaal, l->label.maat};
        er[cel]--;
        if (tel(gepland, cel) > 0) {
            gepland[cel]--;
            continue;
        }
        uint8_t naar = 0;
        while (naar < firma.filialen && tel(gepland, {naar, cel.second}) <= tel(er, {naar, cel.second}))
            naar++;
        if (naar < firma.filialen) {
            gepland[{naar, cel.second}]--;
            uit.verplaats.push_back({*l, naar});
        } else {
            uit.weg.push_back(*l);
        }
    }
    for (const auto& [cel, over] : gepland)
        if (over > 0)
            uit.erbij.push_back({cel, over});
    std::stable_sort(uit.erbij.begin(), uit.erbij.end(), [](const auto& a, const auto& b) {
        return balkplaats(a.first.second) < balkplaats(b.first.second); // and by branch, as they came
    });
    return uit;
}

// Per term what has to be done, in front of them the labels of terms that are gone.
std::vector<Termwerk> werk_van(const orderregel& regel, const std::vector<genummerd>& eigen) {
    std::vector<Termwerk> uit(1);
    std::vector<std::vector<const genummerd*>> per(regel.termen.size());
    for (const genummerd& l : eigen)
        if (const int nr = lt_volgnr(regel.termen, l.label.levering_tot); nr > 0)
            per[static_cast<size_t>(nr - 1)].push_back(&l);
        else
            uit[0].weg.push_back(l);
    for (size_t i = 0; i < per.size(); i++)
        uit.push_back(verdeel(per[i], regel.termen[i]));
    return uit;
}

// The labels of a term as the work says; what came and went is counted. `begonnen` is asked behind each new label.
bool doe_term(const Termwerk& werk, const std::function<etiket(uint8_t maat)>& proef,
              etiketwijziging* wijziging, Statustelling* telling, const std::function<bool()>& begonnen) {
    for (const genummerd& l : werk.weg) {
        if (!wijziging->wis(l))
            return false;
        telling->per[ETI_ORDER]--;
    }
    for (const auto& [l, naar] : werk.verplaats) {
        etiket verplaatst = l.label;
        verplaatst.filiaal = naar;
        if (!wijziging->schrijf(l, verplaatst))
            return false;
    }
    for (const auto& [cel, aantal] : werk.erbij) {
        etiket label = proef(cel.second);
        label.filiaal = cel.first;
        for (int32_t i = 0; i < aantal; i++) {
            if (!wijziging->nieuw(label) || !begonnen())
                return false;
            telling->per[ETI_ORDER]++;
        }
    }
    return true;
}

void rek_termen(const orderregel& regel, serrec* serie) {
    for (const levterm& t : regel.termen) {
        if (t.cellen.empty())
            continue;
        serie->levering_tot = std::max<uint16_t>(serie->levering_tot, t.tot);
        if (!serie->levering_van || t.van < serie->levering_van)
            serie->levering_van = t.van;
    }
}

// Labels that a line needs more than it has, at most at one moment; and whether each fits its place.
bool past(const orderregel& regel, const serrec& serie, const std::vector<Termwerk>& werken, int64_t* erbij) {
    *erbij = 0;
    const uint8_t locatie = label_locatie(serie.serie.artikelgroep);
    for (size_t i = 1; i < werken.size(); i++)
        for (const auto& [cel, aantal] : werken[i].erbij) {
            uint8_t plaats[ETIPLAATS];
            *erbij += aantal;
            if (eti_pak(nieuw_etiket(regel, serie, regel.termen[i - 1], cel.second, locatie), nullptr,
                        plaats))
                continue;
            char tekst[80];
            snprintf(tekst, sizeof tekst, TXT(T_REG_BEDRAG), serie_tekst(serie.serie).c_str(),
                     maatbalk ? mtname(maatbalk, cel.second) : "");
            ALARMBOX(tekst);
            return false;
        }
    return true;
}

} // namespace

uint8_t label_locatie(int32_t artikelgroep) {
    if (!kop_met_locatie())
        return GEEN_MAGAZIJN;
    if (kop.ontvangstlocatie != LOCATIE_MAGAZIJN)
        return kop.ontvangstlocatie;
    artrec groep{};
    int index;
    if (firma.filialen > 1 && leesart(dtart, &groep, artikelgroep) && iofil_index(groep.magazijn, &index))
        return groep.magazijn;
    return iofil_nummer(0);
}

void label_zet_locatie(etiket* label, uint8_t locatie) {
    label->locatie = locatie;
    label->locatie_aan = locatie != GEEN_MAGAZIJN;
}

bool labels_lees(orderregel* regel, etiket* koers) {
    struct Term {
        uint16_t van;
        Cellen cellen;
    };
    std::map<uint16_t, Term> termen; // by last date
    const bool matrices = !regel->nota_aantallen.empty();
    regel_wis_aantallen(regel);
    regel->op_bestand = 0;
    // Where the last one went: the next one mostly goes there, too.
    uint16_t tot = 0;
    Term* term = nullptr;
    Cel cel;
    int32_t* stuks = nullptr;
    genummerd eerste;
    const bool heel = etiketten_order(regel->serie, &eerste, [&](const etiket& l) {
        if (matrices)
            fmadd(&regel->order_aantallen, l.filiaal, l.maat, 1);
        if (l.status != ETI_ORDER)
            return;
        if (matrices)
            fmadd(&regel->nota_aantallen, l.filiaal, l.maat, 1);
        regel->op_bestand++;
        if (!term || tot != l.levering_tot) {
            tot = l.levering_tot;
            term = &termen.try_emplace(tot, Term{l.levering_van, {}}).first->second;
            stuks = nullptr;
        }
        term->van = std::min(term->van, l.levering_van);
        if (!stuks || cel != Cel{l.filiaal, l.maat}) {
            cel = {l.filiaal, l.maat};
            stuks = &term->cellen[cel];
        }
        ++*stuks;
    });
    *koers = eerste.label;
    if (!heel) {
        regel_wis_aantallen(regel);
        return false;
    }
    for (const auto& [laatste, t] : termen) {
        regel->termen.push_back({t.van, laatste, {}});
        for (const auto& [waar, aantal] : t.cellen)
            regel->termen.back().cellen.push_back({waar.first, waar.second, aantal});
    }
    return true;
}

bool labels_passen(const orderregel& regel, const serrec& serie) {
    Statustelling telling;
    std::vector<genummerd> eigen;
    int64_t erbij;
    if (!lees_eigen(serie, &eigen, &telling) || !past(regel, serie, werk_van(regel, eigen), &erbij))
        return false;
    int32_t eerste = serie.etiketkop;
    const etiketketen in_hand(serie.serie, &eerste);
    return ioeti_past(erbij);
}

bool labels_bij(orderregel* regel, serrec* serie, const std::function<bool()>& vastleggen) {
    Statustelling telling;
    std::vector<genummerd> eigen;
    if (!lees_eigen(*serie, &eigen, &telling))
        return false;
    const std::vector<Termwerk> werken = werk_van(*regel, eigen);
    const uint8_t locatie = label_locatie(serie->serie.artikelgroep);
    int32_t eerste = serie->etiketkop;
    bool gelukt = true;
    // The first label of a series makes its chain: its record says where before there is a second.
    auto begonnen = [&] {
        if (serie->etiketkop == eerste)
            return true;
        serie->etiketkop = eerste;
        return serie_schrijf(*serie);
    };
    // Noted before there is a change: one that is told and didn't come does no harm.
    const auto ergens = [&](auto Termwerk::*wat) {
        return std::ranges::any_of(werken, [&](const Termwerk& w) { return !(w.*wat).empty(); });
    };
    if (ergens(&Termwerk::weg))
        serie_mutatie(MUT_ETIKET_WEG, *serie);
    if (ergens(&Termwerk::erbij))
        serie_mutatie(MUT_ETIKET_BIJ, *serie);
    {
        etiketwijziging wijziging(serie->serie, &eerste);
        for (size_t i = 0; gelukt && i < werken.size(); i++) {
            auto proef = [&](uint8_t maat) {
                return nieuw_etiket(*regel, *serie, regel->termen[i - 1], maat, locatie);
            };
            gelukt = doe_term(werken[i], proef, &wijziging, &telling, begonnen);
        }
        if (gelukt) {
            telling.naar(serie);
            rek_termen(*regel, serie);
            gelukt = !vastleggen || vastleggen() || wijziging.terug();
        }
    }
    if (!gelukt) {
        eigen.clear();
        telling = {};
        if (lees_eigen(*serie, &eigen, &telling))
            telling.naar(serie);
        return false;
    }
    regel->op_bestand = 0;
    for (const levterm& t : regel->termen)
        for (const levcel& c : t.cellen)
            regel->op_bestand += c.aantal;
    return true;
}

bool label_wis(orderregel* regel, int* over, const std::function<bool()>& vastleggen) {
    Statustelling telling;
    std::vector<genummerd> eigen;
    if (!lees_eigen(regel->serie, &eigen, &telling))
        return false;
    int32_t eerste = regel->serie.etiketkop;
    const Kritiek kritiek;
    if (!eigen.empty())
        serie_mutatie(MUT_ETIKET_WEG, regel->serie);
    {
        etiketwijziging wijziging(regel->serie.serie, &eerste);
        for (const genummerd& l : eigen)
            if (!wijziging.wis(l))
                return false;
        telling.per[ETI_ORDER] -= static_cast<int32_t>(eigen.size());
        const serrec was = regel->serie;
        telling.naar(&regel->serie);
        if (vastleggen && !vastleggen()) {
            regel->serie = was;
            return wijziging.terug();
        }
    }
    *over = telling.som();
    return true;
}

} // namespace zg
