// The check of the full registration and its repair, see tools/registerkeur.h.
//
// Files are read while programs write in them, so a first look may meet a change half done. What the next look doesn't
// see again was that; what stays, but belongs to a series that is locked or a journal in use, is told as a note.
#include "tools/registerkeur.h"
#include "shared/etikeur.h"
#include "shared/files.h"
#include "shared/inkcheck.h"
#include "shared/ioink.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "sub/omserie.h"
#include "tools/journaalkeur.h"
#include <algorithm>
#include <map>
#include <set>
#include <unistd.h>
#include <unordered_map>

namespace zg {
namespace {

constexpr int LEZEN = 0, ALLEEN = 1, SHARED = 2;

ICB *series, *codes, *nummers;

struct Serie {
    serrec rec;
    int32_t plaats; // record in DTSER
    bool heel;      // its chain of labels
    etitelling labels;
    uint8_t codes[MAATBYTES]; // sizes that have one
};
struct Orderlabels { // of one order in one block
    int32_t blok;
    sleutelwaarde serie;
    uint16_t leverancier, datum;
    int32_t nummer;
    bool in_nota; // one at least
};

struct Keuring {
    keurbestand dtser{"DTSER", {}, {}, {}}, dtipa{"DTIPA", {}, {}, {}}, dteti{"DTETI", {}, {}, {}},
        dtean{"DTEAN", {}, {}, {}}, dtordnr{"DTORDNR", {}, {}, {}}, jrn{"journals", {}, {}, {}};
    std::unordered_map<sleutelwaarde, Serie> series;
    std::vector<Orderlabels> van_orders;
    std::map<sleutelwaarde, int> vreemde_maat; // labels of a size or size type that isn't their series'
    etikeuring eti;
    std::set<sleutelwaarde> sets_zonder_serie;
    std::vector<int32_t> nummers_zonder_order;
};

std::string tekst(const seriesleutel& s) {
    return std::to_string(s.artikelgroep) + "." + std::to_string(s.kleur) + "." +
           std::to_string(s.volgnummer);
}
std::string aantal(int64_t n, const char* wat) {
    return std::to_string(n) + " " + wat;
}

bool in_hand(const Serie& s) {
    return series->mode != ALLEEN &&
           !IOLOCK('T', series->datfd, int64_t{s.plaats} * series->h.reclen, series->h.reclen);
}

// Wrong, or only perhaps while somebody has the series.
void kwaal(keurbestand* b, const Serie* s, const std::string& wat) {
    if (s && in_hand(*s))
        b->noten.push_back(wat + " (in use)");
    else
        b->kwalen.push_back(wat);
}

// ---- reading

void lees_series(Keuring* k) {
    std::unordered_map<int32_t, sleutelwaarde> nummer;
    uint8_t buffer[IXRECMAX];
    int er;
    for (int32_t nr = 0; (er = IXGET(series, buffer, nr)) >= 0; nr++) {
        if (!er)
            continue;
        Serie s{{}, nr, true, {}, {}};
        stam_uit(buffer, series->h.reclen, &s.rec);
        const sleutelwaarde sleutel = sleutel_van(s.rec.serie);
        const std::string wie = "series " + tekst(s.rec.serie);
        if (!k->series.emplace(sleutel, s).second)
            kwaal(&k->dtser, &s, wie + ": there twice");
        if (s.rec.nummer <= 0)
            kwaal(&k->dtser, &s, wie + ": without a number");
        else if (const auto [p, nieuw] = nummer.emplace(int32_t{s.rec.nummer}, sleutel); !nieuw)
            kwaal(&k->dtser, &s,
                  wie + ": number " + std::to_string(s.rec.nummer) + " is also that of " +
                      tekst(k->series[p->second].rec.serie));
    }
    k->dtser.telling = aantal(static_cast<int64_t>(k->series.size()), "series");
}

void lees_sets(Keuring* k) {
    inktelling t;
    std::set<sleutelwaarde>& weg = k->sets_zonder_serie;
    const auto kwalen = ink_controle(&t, [&](const prijsset& set) {
        if (!k->series.contains(sleutel_van(set.serie)))
            weg.insert(sleutel_van(set.serie));
    });
    for (const inkkwaal& kw : kwalen) {
        const auto s = k->series.find(sleutel_van(kw.serie));
        kwaal(&k->dtipa, s == k->series.end() ? nullptr : &s->second, kw.tekst);
    }
    for (const sleutelwaarde w : weg) {
        seriesleutel serie;
        memcpy(&serie, &w, sizeof serie);
        k->dtipa.kwalen.push_back("sets of " + tekst(serie) + ", which isn't there");
    }
    if (t.verloren)
        k->dtipa.kwalen.push_back("DTIPG.TXT: " + aantal(t.verloren, "records that no set has"));
    k->dtipa.verloren = t.verloren;
    k->dtipa.telling = aantal(t.sets, "sets, ") + aantal(t.groepen, "groups, ") + aantal(t.vrij, "free");
}

bool heeft_maat(const serrec& s, uint8_t maat) {
    return maat >= 1 && maat <= MATEN && (s.maten[maat / 8] >> maat % 8 & 1);
}

void neem_label(Keuring* k, int32_t blok, const etiket& l) {
    const sleutelwaarde serie = sleutel_van(l.serie);
    if (const auto s = k->series.find(serie);
        s != k->series.end() &&
        (!heeft_maat(s->second.rec, l.maat) || l.maatsoort != s->second.rec.maatsoort))
        k->vreemde_maat[serie]++;
    if (l.ordernummer <= 0)
        return;
    const Orderlabels o{blok, serie, l.leverancier, l.orderdatum, l.ordernummer, l.status == ETI_ORDER};
    if (!k->van_orders.empty()) {
        Orderlabels& v = k->van_orders.back();
        if (v.blok == o.blok && v.nummer == o.nummer && v.leverancier == o.leverancier &&
            v.datum == o.datum) {
            v.in_nota |= o.in_nota;
            return;
        }
    }
    k->van_orders.push_back(o);
}

bool lees_labels(Keuring* k) {
    if (!etikeur_begin(&k->eti, [k](int32_t blok, const etiket& l) { neem_label(k, blok, l); }))
        return false;
    for (auto& [sleutel, s] : k->series) {
        s.heel = etikeur_serie(&k->eti, s.rec, &s.labels,
                               [&](const std::string& wat) { kwaal(&k->dteti, &s, wat); });
        const etitelling staat{s.rec.in_nota, s.rec.voorraad, s.rec.verkopen, s.rec.correcties};
        if (s.heel && memcmp(&staat, &s.labels, sizeof staat) != 0)
            kwaal(&k->dtser, &s,
                  "series " + tekst(s.rec.serie) + ": counts " + aantal(staat.in_nota, "on order, ") +
                      aantal(staat.voorraad, "in stock, ") + aantal(staat.verkopen, "sold, ") +
                      aantal(staat.correcties, "corrected; there are ") + aantal(s.labels.in_nota, ", ") +
                      aantal(s.labels.voorraad, ", ") + aantal(s.labels.verkopen, ", ") +
                      std::to_string(s.labels.correcties));
    }
    for (const auto& [sleutel, n] : k->vreemde_maat)
        k->dteti.noten.push_back("series " + tekst(k->series[sleutel].rec.serie) + ": " +
                                 aantal(n, "labels of a size or size type that it hasn't"));
    etikeur_einde(&k->eti, [k](const std::string& wat) { k->dteti.kwalen.push_back(wat); });
    k->dteti.verloren = k->eti.verloren;
    k->dteti.telling =
        aantal(k->eti.labels, "labels, ") + aantal(static_cast<int64_t>(k->eti.blokken.size()), "blocks");
    return true;
}

// Answers as eankeur asks it.
int neem_code(Keuring* k, const seriesleutel& serie, uint8_t maat) {
    const auto p = k->series.find(sleutel_van(serie));
    if (p == k->series.end())
        return -1;
    Serie& s = p->second;
    if (!heeft_maat(s.rec, maat))
        return 0;
    const bool al = s.codes[maat / 8] >> maat % 8 & 1;
    s.codes[maat / 8] = static_cast<uint8_t>(s.codes[maat / 8] | 1 << maat % 8);
    return al ? 2 : 1;
}

int64_t codes_keur(Keuring* k, bool herstel, const keurmelding& meld) {
    for (auto& [sleutel, s] : k->series)
        memset(s.codes, 0, sizeof s.codes);
    return eankeur(
        codes, [&](const seriesleutel& serie, uint8_t maat) { return neem_code(k, serie, maat); }, herstel,
        meld);
}

// Series of which each size has a code. What a broken-off save lacks comes with the next.
void keur_codes(Keuring* k) {
    codes_keur(k, false, [&](const std::string& wat) { k->dtean.kwalen.push_back(wat); });
    k->dtean.telling = aantal(codes->h.nrecs, "records");
    int64_t zonder = 0;
    std::string eerste;
    for (const auto& [sleutel, s] : k->series)
        if ((s.rec.regtype || instel15.ean_alle) && memcmp(s.codes, s.rec.maten, sizeof s.codes) != 0 &&
            zonder++ == 0)
            eerste = tekst(s.rec.serie);
    if (zonder)
        k->dtean.noten.push_back(aantal(zonder, "series have sizes without a code, as ") + eerste);
}

std::map<int32_t, ordnrrec> lees_nummers() {
    std::map<int32_t, ordnrrec> uit;
    uint8_t buffer[IXRECMAX];
    ordnrrec rec;
    int er;
    for (int32_t nr = 0; (er = IXGET(nummers, buffer, nr)) >= 0; nr++)
        if (er) {
            stam_uit(buffer, nummers->h.reclen, &rec);
            uit.emplace(int32_t{rec.ordernummer}, rec);
        }
    return uit;
}

// ---- orders, their numbers and their labels

void keur_orders(Keuring* k) {
    const std::map<int32_t, ordnrrec> nrs = lees_nummers();
    journalen j = journalen_lees(firma.filialen);
    k->jrn.kwalen = std::move(j.kwalen);
    k->jrn.noten = std::move(j.noten);
    k->jrn.telling = aantal(j.bestanden, "files, ") +
                     aantal(static_cast<int64_t>(j.orders.size()), "orders, ") + aantal(j.regels, "lines");
    k->dtordnr.telling = aantal(static_cast<int64_t>(nrs.size()), "numbers");
    std::map<int32_t, const journaalorder*> order;
    for (const journaalorder& o : j.orders) {
        if (o.nummer <= 0)
            continue;
        const std::string wie = o.waar + ": order " + std::to_string(o.nummer);
        auto meld = [&](keurbestand* b, const std::string& wat) {
            (o.in_hand ? b->noten : b->kwalen).push_back(wie + " " + wat);
        };
        const auto [p, nieuw] = order.emplace(o.nummer, &o);
        if (!nieuw)
            meld(&k->jrn, "has the number of " + p->second->waar);
        const auto n = nrs.find(o.nummer);
        if (!o.series.empty() && n == nrs.end())
            meld(&k->dtordnr, "has no number record");
        else if (n != nrs.end() && (n->second.leverancier != o.leverancier || n->second.jaar != o.jaar ||
                                    n->second.seizoen != o.seizoen || n->second.orderdatum != o.orderdatum))
            meld(&k->dtordnr, "has another order's number record");
        else if (n != nrs.end() && n->second.ontvangstlocatie != o.ontvangstlocatie)
            k->dtordnr.noten.push_back(wie + " has a number record with another receiving location");
        for (const auto& [sleutel, stempel] : o.series) {
            const auto s = k->series.find(sleutel);
            if (s != k->series.end() && serie_mag(s->second.rec, serie_stempel(o.orderdatum, stempel)))
                continue;
            seriesleutel serie;
            memcpy(&serie, &sleutel, sizeof serie);
            k->jrn.noten.push_back(
                wie + " has a line of " + tekst(serie) +
                (s == k->series.end() ? ", which isn't there" : ", a later one of that number"));
        }
    }
    std::set<int32_t> met_label;
    for (const Orderlabels& l : k->van_orders) {
        met_label.insert(l.nummer);
        const auto s = k->series.find(l.serie);
        if (!l.in_nota || s == k->series.end() ||
            k->eti.blokken[static_cast<size_t>(l.blok)].waar != Etiblok::keten)
            continue;
        const auto o = order.find(l.nummer);
        std::string wat;
        if (o == order.end() && !nrs.contains(l.nummer))
            wat = "which has no number record";
        else if (o != order.end() && !o->second->series.contains(l.serie))
            wat = "which has no line of it";
        else if (o != order.end() &&
                 (o->second->leverancier != l.leverancier || o->second->orderdatum != l.datum))
            wat = "which has another supplier or date";
        const bool later = wat.starts_with("which has another"); // the order's date was moved behind them
        if (wat.empty())
            continue;
        wat = "series " + tekst(s->second.rec.serie) + ", block " + std::to_string(l.blok) +
              ": labels of order " + std::to_string(l.nummer) + ", " + wat;
        if (later)
            k->dteti.noten.push_back(wat);
        else if (j.leveranciers_in_hand.contains(l.leverancier))
            k->dteti.noten.push_back(wat + " (in use)");
        else
            kwaal(&k->dteti, &s->second, wat);
    }
    for (const auto& [nr, rec] : nrs) {
        if (order.contains(nr) || !j.seizoenen.contains({rec.jaar, rec.seizoen}))
            continue; // a season that is over has no journals any more
        const std::string wat = "number " + std::to_string(nr) + " of an order that isn't there";
        if (j.leveranciers_in_hand.contains(rec.leverancier)) {
            k->dtordnr.noten.push_back(wat + " (in use)");
            continue;
        }
        k->dtordnr.kwalen.push_back(wat);
        k->dtordnr.verloren++;
        if (!met_label.contains(nr) && !j.leveranciers_stuk.contains(rec.leverancier))
            k->nummers_zonder_order.push_back(nr);
    }
}

Keuring neem_op() {
    Keuring k;
    lees_series(&k);
    lees_sets(&k);
    if (!lees_labels(&k))
        k.dteti.kwalen.push_back("DTETI.TXT can't be read");
    keur_codes(&k);
    keur_orders(&k);
    return k;
}

std::vector<keurbestand> bestanden(Keuring k) {
    return {std::move(k.dtser), std::move(k.dtipa),   std::move(k.dteti),
            std::move(k.dtean), std::move(k.dtordnr), std::move(k.jrn)};
}

// What only one of two looks saw was a change at work.
bool houd_over(std::vector<keurbestand>* nu, const std::vector<keurbestand>& vorige) {
    bool gelijk = true;
    for (size_t i = 0; i < nu->size(); i++) {
        auto& kwalen = (*nu)[i].kwalen;
        std::multiset<std::string> eerder(vorige[i].kwalen.begin(), vorige[i].kwalen.end());
        for (size_t w = kwalen.size(); w-- > 0;)
            if (const auto p = eerder.find(kwalen[w]); p != eerder.end()) {
                eerder.erase(p);
            } else {
                (*nu)[i].noten.push_back(kwalen[w] + " (changing)");
                kwalen.erase(kwalen.begin() + static_cast<ptrdiff_t>(w));
                gelijk = false;
            }
        gelijk = gelijk && eerder.empty();
    }
    return gelijk;
}

bool tel_opnieuw(const Serie& s) {
    uint8_t buffer[IXRECMAX] = {};
    memcpy(buffer, &s.rec.serie, sizeof s.rec.serie);
    if (IXREAD(series, buffer) != 1)
        return true;
    serrec rec;
    memcpy(static_cast<void*>(&rec), buffer, sizeof rec);
    rec.in_nota = s.labels.in_nota;
    rec.voorraad = s.labels.voorraad;
    rec.verkopen = s.labels.verkopen;
    rec.correcties = s.labels.correcties;
    memcpy(buffer, &rec, sizeof rec);
    return IXPUTREC(series, buffer) == 1;
}

} // namespace

std::string keur_open(bool schrijven) {
    for (const char* naam : {"DTSER", "DTIPA", "DTEAN", "DTORDNR"})
        for (const char* ext : {".INX", ".TXT"})
            if (!IOEXISTS((std::string(naam) + ext).c_str()))
                return std::string(naam) + ext;
    for (const char* naam : {"DTETI.TXT", "DTIPG.TXT"})
        if (!IOEXISTS(naam))
            return naam;
    const int modus = schrijven ? SHARED : LEZEN;
    series = IXOPEN("DTSER", schrijven ? ALLEEN : LEZEN);
    codes = IXOPEN("DTEAN", modus);
    nummers = IXOPEN("DTORDNR", modus);
    ioink_open(modus);
    ioeti('O', nullptr, nullptr);
    sys_lees();
    return {};
}

void keur_sluit() {
    ioeti('C', nullptr, nullptr);
    ioink_close();
    for (ICB** icb : {&nummers, &codes, &series}) {
        IXCLOSE(*icb);
        *icb = nullptr;
    }
}

std::vector<keurbestand> register_keur(int pogingen) {
    constexpr int RUST = 300'000; // a change is made of writes behind each other
    std::vector<keurbestand> uit = bestanden(neem_op());
    auto iets = [](const keurbestand& b) { return !b.kwalen.empty(); };
    for (int i = 1; i < pogingen && std::any_of(uit.begin(), uit.end(), iets); i++) {
        usleep(RUST);
        std::vector<keurbestand> weer = bestanden(neem_op());
        const bool gelijk = houd_over(&weer, uit);
        uit = std::move(weer);
        if (gelijk)
            break;
    }
    return uit;
}

std::vector<std::string> register_herstel(bool* gelukt) {
    std::vector<std::string> uit;
    const keurmelding meld = [&](const std::string& wat) { uit.push_back(wat); };
    Keuring k = neem_op();
    *gelukt = true;
    // Sets of a series that is gone: their groups go back with them.
    for (const sleutelwaarde w : k.sets_zonder_serie) {
        seriesleutel serie;
        memcpy(&serie, &w, sizeof serie);
        *gelukt &= ioink_deleteall(serie);
    }
    const int64_t groepen = ink_herstel();
    *gelukt &= groepen >= 0;
    uit.push_back("DTIPG: " + aantal(groepen, "records given back"));
    const int64_t verloren = k.eti.verloren;
    *gelukt &= etikeur_herstel(&k.eti, meld);
    if (verloren)
        uit.push_back("DTETI: " + aantal(verloren, "blocks were lost"));
    int64_t geteld = 0;
    for (const auto& [sleutel, s] : k.series) {
        const etitelling staat{s.rec.in_nota, s.rec.voorraad, s.rec.verkopen, s.rec.correcties};
        if (!s.heel || memcmp(&staat, &s.labels, sizeof staat) == 0)
            continue;
        *gelukt &= tel_opnieuw(s);
        geteld++;
    }
    uit.push_back("DTSER: " + aantal(geteld, "series counted again"));
    *gelukt &= codes_keur(&k, true, meld) >= 0;
    for (const int32_t nr : k.nummers_zonder_order) {
        uint8_t buffer[IXRECMAX] = {};
        memcpy(buffer, &nr, sizeof nr);
        if (IXREADL(nummers, buffer) == 1)
            *gelukt &= IXDELETE(nummers, buffer) == 0;
        else
            IXUNLOCK(nummers, buffer);
    }
    uit.push_back("DTORDNR: " +
                  aantal(static_cast<int64_t>(k.nummers_zonder_order.size()), "numbers deleted"));
    return uit;
}

} // namespace zg
