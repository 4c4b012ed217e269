// The orders against the register, see tools/keurstand.h: their number records, the series and prices of their lines, and
// the labels that name them.
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "sub/omserie.h"
#include "term/strings.h"
#include "tools/journaalkeur.h"
#include "tools/keurstand.h"
#include <algorithm>
#include <span>

namespace zg {
namespace {

constexpr int32_t SYS_ORDER = 5, ORDERNUMMER_MAX = 9'999'999;

using Nummers = std::map<int32_t, ordnrrec>;
using Orders = std::map<int32_t, const journaalorder*>;

Nummers lees_nummers() {
    Nummers uit;
    uint8_t buffer[IXRECMAX];
    ordnrrec rec;
    int er;
    for (int32_t nr = 0; (er = IXGET(dtordnr, buffer, nr)) >= 0; nr++)
        if (er) {
            stam_uit(buffer, dtordnr->h.reclen, &rec);
            uit.emplace(int32_t{rec.ordernummer}, rec);
        }
    return uit;
}

std::string naam(const journaalorder& o) {
    return o.waar + ": order " + std::to_string(o.nummer);
}

// Its number record.
void keur_nummer(Keuring* k, const journaalorder& o, const Nummers& nummers) {
    const auto n = nummers.find(o.nummer);
    const auto meld = [&](const char* wat) {
        (o.in_hand ? k->dtordnr.noten : k->dtordnr.kwalen).push_back(naam(o) + " " + wat);
    };
    if (n == nummers.end()) {
        if (!o.series.empty()) {
            meld("has no number record");
            k->nummer_kwijt = true;
        }
        return;
    }
    const ordnrrec& rec = n->second;
    if (rec.leverancier != o.leverancier || rec.jaar != o.jaar || rec.seizoen != o.seizoen ||
        rec.orderdatum != o.orderdatum)
        meld("has another order's number record");
    else if (rec.ontvangstlocatie != o.ontvangstlocatie)
        k->dtordnr.noten.push_back(naam(o) + " has a number record with another receiving location");
}

template <class T> auto van_serie(const std::vector<T>& rij, sleutelwaarde serie) {
    return std::span(std::ranges::lower_bound(rij, serie, {}, &T::serie),
                     std::ranges::upper_bound(rij, serie, {}, &T::serie));
}

// The prices at which a line of it counts. Without labels a kill came in front of them.
void keur_prijzen(Keuring* k, const journaalorder& o, sleutelwaarde sleutel, const Seriestand& s) {
    const auto is_nul = [](uint8_t b) { return b == 0; };
    if (!k->met.prijzen || !k->met.labels || std::ranges::all_of(s.rec.maten, is_nul) ||
        std::ranges::any_of(van_serie(k->prijzen, sleutel), [&](const Periode& p) {
            return p.leverancier == o.leverancier && p.van <= o.orderdatum && o.orderdatum <= p.tot;
        }))
        return;
    const std::string wat = "series " + serie_tekst(s.rec.serie) + ": no prices for its line of " + naam(o);
    if (!std::ranges::any_of(van_serie(k->van_orders, sleutel), [&](const Orderlabels& l) {
            return l.leverancier == o.leverancier && l.datum == o.orderdatum;
        }))
        return k->dtipa.noten.push_back(wat + ", whose next save makes them");
    if (o.in_hand)
        k->dtipa.noten.push_back(wat + " (in use)");
    else
        keur_kwaal(&k->dtipa, &s, wat + ", which has labels");
}

void keur_regels(Keuring* k, const journaalorder& o) {
    for (const auto& [sleutel, stempel] : o.series) {
        const auto s = k->series.find(sleutel);
        const std::string wat = naam(o) + " has a line of " + serie_tekst(sleutel_uit(sleutel));
        if (s == k->series.end())
            k->jrn.noten.push_back(wat + ", which isn't there");
        else if (!serie_mag(s->second.rec, serie_stempel(o.orderdatum, stempel)))
            k->jrn.noten.push_back(wat + ", a later one of that number");
        else
            keur_prijzen(k, o, sleutel, s->second);
    }
}

// What is wrong with labels on order of that number; null: nothing.
const char* label_kwaal(const Orderlabels& l, const Orders& orders, const Nummers* nummers) {
    const auto o = orders.find(l.nummer);
    if (o == orders.end())
        return !nummers || nummers->contains(l.nummer) ? nullptr : "which has no number record";
    if (!o->second->series.contains(l.serie))
        return "which has no line of it";
    if (o->second->leverancier != l.leverancier || o->second->orderdatum != l.datum)
        return "which has another supplier or date";
    return nullptr;
}

void keur_labels(Keuring* k, const journalen& j, const Orders& orders, const Nummers& nummers) {
    for (const Orderlabels& l : k->van_orders) {
        const auto s = k->series.find(l.serie);
        if (l.nummer <= 0 || !l.in_nota || s == k->series.end() ||
            k->eti.blokken[static_cast<size_t>(l.blok)].waar != Etiblok::keten)
            continue;
        const char* reden = label_kwaal(l, orders, k->met.nummers ? &nummers : nullptr);
        if (!reden)
            continue;
        const std::string wat = "series " + serie_tekst(s->second.rec.serie) + ", block " +
                                std::to_string(l.blok) + ": labels of order " + std::to_string(l.nummer) +
                                ", " + reden;
        if (j.leveranciers_in_hand.contains(l.leverancier))
            k->dteti.noten.push_back(wat + " (in use)");
        else
            keur_kwaal(&k->dteti, &s->second, wat);
    }
}

// Number records without an order. A season that is over has no journals any more. While an order lacks its record one of
// them may be that, with another number.
void keur_nummers(Keuring* k, const journalen& j, const Orders& orders, const Nummers& nummers) {
    const bool alles_gelezen = !k->nummer_kwijt && !k->journalen_stuk && k->labels_heel();
    std::set<int32_t> met_label;
    for (const Orderlabels& l : k->van_orders)
        met_label.insert(l.nummer);
    for (const auto& [nr, rec] : nummers) {
        if (orders.contains(nr) || !j.seizoenen.contains({rec.jaar, rec.seizoen}))
            continue;
        const std::string wat = "number " + std::to_string(nr) + " of an order that isn't there";
        if (j.leveranciers_stuk.contains(rec.leverancier)) {
            k->dtordnr.noten.push_back(wat + ", as far as its supplier's journals can be read");
            continue;
        }
        if (j.leveranciers_in_hand.contains(rec.leverancier)) {
            k->dtordnr.noten.push_back(wat + " (in use)");
            continue;
        }
        k->dtordnr.kwalen.push_back(wat);
        k->dtordnr.verloren++;
        if (alles_gelezen && !met_label.contains(nr))
            k->nummers_zonder_order.push_back(nr);
    }
}

void keur_teller(Keuring* k, const Nummers& nummers) {
    int32_t sysrecord = SYS_ORDER;
    systeller teller;
    iotab('R', &sysrecord, &teller, SYS_RECORD);
    if (teller.laatste < 0 || teller.laatste > ORDERNUMMER_MAX) // which the fixed tables tell
        k->tellers[SYS_ORDER] = nummers.empty() ? 0 : std::clamp(nummers.rbegin()->first, 0, ORDERNUMMER_MAX);
    else if (!nummers.empty() && teller.laatste < nummers.rbegin()->first) // numbers in use are passed over
        k->dtordnr.noten.push_back("DTSYS.TXT system record 5: the last number is " +
                                   std::to_string(teller.laatste) + ", there is an order " +
                                   std::to_string(nummers.rbegin()->first));
}

// A program makes a journal empty, and takes it away when it is through with it; what it held has no numbers then. One that
// is empty though there are numbers of its orders was emptied by something else.
void keur_lege(Keuring* k, journalen* j, const Nummers& nummers) {
    for (const leegjournaal& l : j->leeg) {
        const auto n = std::ranges::count_if(nummers, [&](const auto& nr) {
            return nr.second.leverancier == l.leverancier && nr.second.jaar == l.jaar &&
                   nr.second.seizoen == l.seizoen;
        });
        if (n)
            k->jrn.kwalen.push_back(l.pad + ": empty, and DTORDNR has " +
                                    keur_aantal(n, "numbers of orders that it had"));
        if (n || !k->met.nummers)
            j->leveranciers_stuk.insert(l.leverancier);
    }
}

// A season of which there are numbers, and no directory: its orders are lost, or were taken away when it was over.
void keur_zonder_map(Keuring* k, const Nummers& nummers) {
    std::map<std::string, int64_t> weg;
    for (const auto& [nr, rec] : nummers)
        if (const std::string map = VORM("%04u%c", rec.jaar, rec.seizoen); !IOISDIR(map.c_str()))
            weg[map]++;
    for (const auto& [map, n] : weg)
        k->jrn.noten.push_back(
            map + ": its directory isn't there, and DTORDNR has " +
            keur_aantal(n, n == 1 ? "number of an order of it" : "numbers of orders of it"));
}

} // namespace

void keur_orders(Keuring* k) {
    const Nummers nummers = k->met.nummers ? lees_nummers() : Nummers{};
    journalen j = journalen_lees(nullptr);
    keur_lege(k, &j, nummers);
    keur_zonder_map(k, nummers);
    k->journalen_stuk = !j.leveranciers_stuk.empty() || j.map_ongelezen;
    k->jrn.telling = keur_aantal(j.bestanden, "files, ") +
                     keur_aantal(static_cast<int64_t>(j.orders.size()), "orders, ") +
                     keur_aantal(j.regels, "lines");
    k->dtordnr.telling = keur_aantal(static_cast<int64_t>(nummers.size()), "numbers");
    if (k->met.nummers)
        keur_teller(k, nummers);
    Orders orders;
    for (const journaalorder& o : j.orders) {
        if (o.nummer <= 0)
            continue;
        if (const auto [p, nieuw] = orders.emplace(o.nummer, &o); !nieuw)
            (o.in_hand ? k->jrn.noten : k->jrn.kwalen)
                .push_back(naam(o) + " has the number of " + p->second->waar);
        if (k->met.nummers)
            keur_nummer(k, o, nummers);
        if (k->met.series)
            keur_regels(k, o);
    }
    keur_labels(k, j, orders, nummers);
    keur_nummers(k, j, orders, nummers);
}

} // namespace zg
