// The check of the full registration and its repair, see tools/registerkeur.h.
//
// Files are read while programs write in them. What is seen twice, but belongs to a series that is locked or a journal in
// use, is told as a note.
#include "shared/files.h"
#include "shared/inkcheck.h"
#include "shared/iofil.h"
#include "shared/ioink.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "sub/omserie.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/keurstand.h"
#include "tools/stamkeur.h"
#include "tools/systeemkeur.h"
#include <algorithm>
#include <bitset>
#include <cstring>
#include <tuple>
#include <unistd.h>

namespace zg {
namespace {

constexpr int LEZEN = 0, ALLEEN = 1, SHARED = 2;
constexpr int SYS_SERIE = 2; // counter of the series' numbers

registerdelen open_delen; // keur_open

struct Deel {
    bool registerdelen::*er;
    std::vector<const char*> bestanden;
    const char* wat; // is left out without it
};
const Deel DELEN[] = {
    {&registerdelen::series, {"DTSER.INX", "DTSER.TXT"}, "series, and all that names them,"},
    {&registerdelen::prijzen,
     {"DTIPA.INX", "DTIPA.TXT", "DTIPG.TXT"},
     "prices, and lines of orders against them,"},
    {&registerdelen::labels, {"DTETI.TXT"}, "labels, and what series and orders have of them,"},
    {&registerdelen::codes, {"DTEAN.INX", "DTEAN.TXT"}, "codes"},
    {&registerdelen::nummers, {"DTORDNR.INX", "DTORDNR.TXT"}, "numbers of orders"},
};

int32_t teller(int32_t sysrecord) {
    systeller t;
    iotab('R', &sysrecord, &t, SYS_RECORD);
    return t.laatste;
}

bool zet_teller(int32_t sysrecord, int32_t laatste) {
    systeller t;
    iotab('X', &sysrecord, &t, SYS_RECORD);
    t.laatste = laatste;
    return iotab('W', &sysrecord, &t, SYS_RECORD) != 0;
}

// ---- reading

// Is there no such series? Its sets, blocks and codes are read behind it, and it may have been made since.
bool ontbreekt(const Keuring& k, const seriesleutel& serie) {
    serrec rec;
    return k.met.series && !k.series.contains(sleutel_van(serie)) && !serie_lees(serie, &rec);
}

// Size types that have sizes, in any size system; all of them where that can't be read.
std::bitset<256> maatsoorten() {
    std::bitset<256> uit;
    const bool gelezen = keur_records("DTMAAT", [&uit](int32_t, const uint8_t* bytes, int lengte) {
        maatrij rij;
        stam_uit(bytes, lengte, &rij);
        uit.set(rij.soort);
    });
    return gelezen ? uit : uit.set();
}

void lees_series(Keuring* k) {
    const std::bitset<256> soorten = maatsoorten();
    k->series.reserve(static_cast<size_t>(std::max(dtser->h.nrecs, 0)));
    std::unordered_map<int32_t, sleutelwaarde> nummer;
    uint8_t buffer[IXRECMAX];
    int er;
    for (int32_t nr = 0; (er = IXGET(dtser, buffer, nr)) >= 0; nr++) {
        if (!er)
            continue;
        Seriestand s{{}, nr, false, {}, {}};
        stam_uit(buffer, dtser->h.reclen, &s.rec);
        const sleutelwaarde sleutel = sleutel_van(s.rec.serie);
        const std::string wie = "series " + serie_tekst(s.rec.serie);
        if (!k->series.emplace(sleutel, s).second)
            keur_kwaal(&k->dtser, &s, wie + ": there twice");
        if (!soorten[s.rec.maatsoort])
            keur_kwaal(&k->dtser, &s, wie + VORM(": size type %d, which isn't there", s.rec.maatsoort));
        if (s.rec.nummer <= 0)
            keur_kwaal(&k->dtser, &s, wie + ": without a number");
        else if (const auto [p, nieuw] = nummer.emplace(int32_t{s.rec.nummer}, sleutel); !nieuw)
            keur_kwaal(&k->dtser, &s,
                       wie + ": number " + std::to_string(s.rec.nummer) + " is also that of " +
                           serie_tekst(k->series[p->second].rec.serie));
    }
    k->dtser.telling = keur_aantal(static_cast<int64_t>(k->series.size()), "series");
    const auto hoogste = std::ranges::max_element(nummer, {}, [](const auto& n) { return n.first; });
    const int32_t laatste = teller(SYS_SERIE), hier = hoogste == nummer.end() ? 0 : hoogste->first;
    if (laatste < 0 || laatste > SERIENUMMER_MAX) { // which the fixed tables tell
        k->tellers[SYS_SERIE] = std::clamp(hier, 0, SERIENUMMER_MAX);
    } else if (laatste < hier && hier < SERIENUMMER_MAX) { // behind the last it starts anew
        k->tellers[SYS_SERIE] = hier;
        k->dtser.kwalen.push_back("DTSYS.TXT system record 2: the last number is " + std::to_string(laatste) +
                                  ", series " + serie_tekst(sleutel_uit(hoogste->second)) + " has " +
                                  std::to_string(hoogste->first));
    }
}

// The fields of each group; free ones are zeros.
void lees_groepen(Keuring* k) {
    const keurlezer bestand("DTIPG.TXT");
    Veldkeur velden("DTIPG:groep", sizeof(prijsgroeprec));
    std::vector<prijsgroeprec> stuk(1024);
    int64_t nr = 0;
    for (ssize_t n; (n = SYSLEES(bestand.fd, stuk.data(), stuk.size() * sizeof stuk[0],
                                 nr * int64_t{sizeof stuk[0]})) >= ssize_t{sizeof stuk[0]};)
        for (size_t i = 0; i < static_cast<size_t>(n) / sizeof stuk[0]; i++, nr++)
            velden.zie(reinterpret_cast<const uint8_t*>(&stuk[i]),
                       [nr] { return "DTIPG.TXT record " + std::to_string(nr); });
    velden.meld(&k->dtipa.kwalen);
}

// A group that nobody has bears the name of a series and supplier that have no set at all: a save that was broken off left it,
// or the set was lost. The next save makes a set, and the group is none of the last any more.
bool laatste_van_set(const Keuring& k, const prijsgroeprec& groep) {
    return !k.sets.contains({sleutel_van(groep.serie), groep.setnr});
}

void lees_sets(Keuring* k) {
    inktelling t;
    std::set<sleutelwaarde> weg;
    int64_t zonder_set = 0;
    keurhoop valuta;
    const stamboek boek = stamboek_lees();
    const auto kwalen = ink_controle(
        &t,
        [&](const prijsset& set) {
            const sleutelwaarde serie = sleutel_van(set.serie);
            Periode& p = k->prijzen.emplace_back(Periode{serie, set.setnr, set.van, set.tot, {}});
            memcpy(p.maten, set.maten, sizeof p.maten);
            if (const std::string code = VASTTEKST(set.valuta); !code.empty() && !boek.valuta.contains(code))
                valuta.zie("currency " + code + " isn't there");
            k->sets.insert({serie, set.setnr});
            if (ontbreekt(*k, set.serie))
                weg.insert(serie);
        },
        [&](const prijsgroeprec& groep) { zonder_set += laatste_van_set(*k, groep); });
    valuta.meld(&k->dtipa.noten);
    lees_groepen(k);
    std::ranges::sort(k->prijzen, {}, &Periode::serie);
    for (const inkkwaal& kw : kwalen) {
        const auto s = k->series.find(sleutel_van(kw.serie));
        keur_kwaal(&k->dtipa, s == k->series.end() ? nullptr : &s->second, kw.tekst);
    }
    for (const sleutelwaarde w : weg) {
        k->dtipa.kwalen.push_back("sets of " + serie_tekst(sleutel_uit(w)) + ", which isn't there");
        k->sporen.insert(w);
    }
    k->dtipa.verloren = t.verloren - zonder_set;
    if (k->dtipa.verloren)
        k->dtipa.kwalen.push_back("DTIPG.TXT: " + keur_aantal(k->dtipa.verloren, "records that no set has"));
    if (zonder_set)
        k->dtipa.noten.push_back("DTIPG.TXT: " +
                                 keur_aantal(zonder_set,
                                             "records of sets that aren't there; they stay, since nothing "
                                             "else knows of these prices"));
    k->dtipa.telling =
        keur_aantal(t.sets, "sets, ") + keur_aantal(t.groepen, "groups, ") + keur_aantal(t.vrij, "free");
}

bool heeft_maat(const uint8_t* maten, uint8_t maat) {
    return maat >= 1 && maat <= MATEN && maat_in(maten, maat);
}

// Has the price set of a label its size? A save that was broken off between the two adds it to the series with the next.
bool set_heeft_maat(const Keuring& k, sleutelwaarde serie, const etiket& l) {
    return std::any_of(std::ranges::lower_bound(k.prijzen, serie, {}, &Periode::serie),
                       std::ranges::upper_bound(k.prijzen, serie, {}, &Periode::serie),
                       [&](const Periode& p) {
                           return p.leverancier == l.leverancier && p.van <= l.orderdatum &&
                                  l.orderdatum <= p.tot && heeft_maat(p.maten, l.maat);
                       });
}

// What a label says by itself.
void keur_label(Keuring* k, int32_t blok, const etiket& l) {
    const auto wie = [&] {
        return "series " + serie_tekst(l.serie) + ", block " + std::to_string(blok) + ": a label";
    };
    if (l.status != ETI_ORDER)
        return k->verder.zie(reinterpret_cast<const uint8_t*>(&l), wie);
    k->op_order.zie(reinterpret_cast<const uint8_t*>(&l), wie);
    if (l.levering_van > l.levering_tot && l.levering_tot)
        k->op_order.kwaal("term", "a delivery term that ends before it begins", wie);
    if (l.locatie_aan && !k->filialen[l.locatie])
        k->op_order.kwaal(
            "locatie", VORM("receiving location %d is no branch of the firm, nor the warehouse", l.locatie),
            wie);
}

void neem_label(Keuring* k, int32_t blok, const etiket& l) {
    keur_label(k, blok, l);
    const sleutelwaarde serie = sleutel_van(l.serie);
    const auto s = k->series.find(serie);
    const bool er = s != k->series.end();
    if (er && !heeft_maat(s->second.rec.maten, l.maat))
        (!k->met.prijzen || set_heeft_maat(*k, serie, l) ? k->vreemde_maat : k->zonder_maat)[serie]++;
    else if (er && l.maatsoort != s->second.rec.maatsoort)
        k->vreemde_maat[serie]++;
    const Orderlabels o{serie, blok, l.ordernummer, l.leverancier, l.orderdatum, l.status == ETI_ORDER};
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

// Is a program at work in the series, or was it since its record was read?
bool in_werk(const Seriestand& s) {
    uint8_t buffer[IXRECMAX];
    serrec nu;
    if (dtser->mode == ALLEEN)
        return false;
    if (!IOLOCK('T', dtser->datfd, int64_t{s.plaats} * dtser->h.reclen, dtser->h.reclen) ||
        IXGET(dtser, buffer, s.plaats) != 1)
        return true;
    stam_uit(buffer, dtser->h.reclen, &nu);
    return memcmp(&nu, &s.rec, sizeof nu) != 0;
}

void lees_labels(Keuring* k) {
    k->filialen.set(LOCATIE_MAGAZIJN);
    k->filialen.set(0); // of an order whose header never had one
    const int filialen = filialen_open() ? firma.filialen : 0;
    for (int i = 0; i < filialen; i++)
        k->filialen.set(iofil_nummer(i));
    if (!filialen)
        k->filialen.set();
    k->van_orders.reserve(etikeur_vooraf());
    if (!etikeur_begin(&k->eti, [k](int32_t blok, const etiket& l) { neem_label(k, blok, l); }))
        return; // which is told of the file
    for (auto& rij : k->series) {
        auto& s = rij.second;
        s.heel = etikeur_serie(&k->eti, s.rec, &s.labels,
                               [&](const std::string& wat) { keur_kwaal(&k->dteti, &s, wat); });
        const etitelling staat{s.rec.in_nota, s.rec.voorraad, s.rec.verkopen, s.rec.correcties};
        if (s.heel && memcmp(&staat, &s.labels, sizeof staat) != 0)
            keur_kwaal(
                &k->dtser, &s,
                "series " + serie_tekst(s.rec.serie) +
                    VORM(": counts %d on order, %d in stock, %d sold, %d corrected; there are %d, %d, %d, %d",
                         staat.in_nota, staat.voorraad, staat.verkopen, staat.correcties, s.labels.in_nota,
                         s.labels.voorraad, s.labels.verkopen, s.labels.correcties));
    }
    for (const Veldkeur* v : {&k->op_order, &k->verder})
        v->meld(&k->dteti.kwalen);
    // In place: a stable sort takes as much again.
    std::ranges::sort(k->van_orders, {}, [](const Orderlabels& o) {
        return std::tuple(o.serie, o.blok, o.nummer, o.leverancier, o.datum);
    });
    k->dteti.telling = keur_aantal(k->eti.labels, "labels, ") +
                       keur_aantal(static_cast<int64_t>(k->eti.blokken.size()), "blocks");
    if (!k->met.series)
        return;
    for (const auto& [sleutel, n] : k->zonder_maat)
        keur_kwaal(&k->dteti, &k->series[sleutel],
                   "series " + serie_tekst(k->series[sleutel].rec.serie) + ": " +
                       keur_aantal(n, "labels of a size that neither it nor their prices have"));
    for (const auto& [sleutel, n] : k->vreemde_maat)
        k->dteti.noten.push_back("series " + serie_tekst(k->series[sleutel].rec.serie) + ": " +
                                 keur_aantal(n, "labels of a size or size type that it hasn't"));
    for (auto& b : k->eti.blokken) // those of a series that came, or was worked in, since it was read
        if (b.waar == Etiblok::los && !zelfde_serie(b.serie, {})) {
            const auto s = k->series.find(sleutel_van(b.serie));
            if (s == k->series.end() ? !ontbreekt(*k, b.serie) : in_werk(s->second))
                b.waar = Etiblok::keten;
        }
    etikeur_einde(&k->eti, [k](const std::string& wat) { k->dteti.kwalen.push_back(wat); });
    k->dteti.verloren = k->eti.verloren;
}

Eanstaat neem_code(Keuring* k, const seriesleutel& serie, uint8_t maat) {
    const auto p = k->series.find(sleutel_van(serie));
    if (p == k->series.end()) {
        if (!ontbreekt(*k, serie))
            return Eanstaat::goed;
        k->sporen.insert(sleutel_van(serie));
        return Eanstaat::kwijt;
    }
    Seriestand& s = p->second;
    if (!heeft_maat(s.rec.maten, maat))
        return Eanstaat::andere_maat;
    const bool al = s.codes[maat / 8] >> maat % 8 & 1;
    s.codes[maat / 8] = static_cast<uint8_t>(s.codes[maat / 8] | 1 << maat % 8);
    return al ? Eanstaat::dubbel : Eanstaat::goed;
}

bool codes_keur(Keuring* k, bool herstel, const keurmelding& meld) {
    for (auto& [sleutel, s] : k->series)
        memset(s.codes, 0, sizeof s.codes);
    return eankeur(
        dtean, [&](const seriesleutel& serie, uint8_t maat) { return neem_code(k, serie, maat); }, herstel,
        meld);
}

// Series of which each size has a code. What a broken-off save lacks comes with the next.
void keur_codes(Keuring* k) {
    codes_keur(k, false, [&](const std::string& wat) { k->dtean.kwalen.push_back(wat); });
    k->dtean.telling = keur_aantal(dtean->h.nrecs, "records");
    int64_t zonder = 0;
    std::string eerste;
    for (const auto& [sleutel, s] : k->series) {
        const bool moet = s.rec.regtype || instel15.ean_alle;
        if (memcmp(s.codes, s.rec.maten, sizeof s.codes) == 0 ||
            (!moet && std::ranges::all_of(s.codes, [](uint8_t b) { return b == 0; })))
            continue;
        if (moet && zonder++ == 0)
            eerste = serie_tekst(s.rec.serie);
    }
    if (zonder)
        k->dtean.noten.push_back(keur_aantal(zonder, "series have sizes without a code, as ") + eerste);
}

Keuring neem_op() {
    Keuring k;
    k.met = open_delen;
    if (k.met.series)
        lees_series(&k);
    if (k.met.prijzen)
        lees_sets(&k);
    if (k.met.labels)
        lees_labels(&k);
    if (k.met.codes)
        keur_codes(&k);
    keur_orders(&k);
    return k;
}

keurbestanden bestanden(Keuring k) {
    keurbestanden uit{std::move(k.jrn)};
    for (auto [er, b] : {std::pair{k.met.series, &k.dtser},
                         {k.met.prijzen, &k.dtipa},
                         {k.met.labels, &k.dteti},
                         {k.met.codes, &k.dtean},
                         {k.met.nummers, &k.dtordnr}})
        if (er)
            uit.push_back(std::move(*b));
    return uit;
}

bool tel_opnieuw(const Seriestand& s) {
    uint8_t buffer[IXRECMAX] = {};
    memcpy(buffer, &s.rec.serie, sizeof s.rec.serie);
    if (IXREAD(dtser, buffer) != 1)
        return true;
    serrec rec;
    memcpy(static_cast<void*>(&rec), buffer, sizeof rec);
    rec.in_nota = s.labels.in_nota;
    rec.voorraad = s.labels.voorraad;
    rec.verkopen = s.labels.verkopen;
    rec.correcties = s.labels.correcties;
    memcpy(buffer, &rec, sizeof rec);
    return IXPUTREC(dtser, buffer) == 1;
}

} // namespace

void keur_kwaal(keurbestand* b, const Seriestand* s, const std::string& wat) {
    if (s && in_werk(*s))
        b->noten.push_back(wat + " (in use)");
    else
        b->kwalen.push_back(wat);
}

registerdelen register_delen(const std::set<std::string>& stuk, bool schrijven, keurbestanden* dicht,
                             std::vector<std::string>* weg) {
    registerdelen uit;
    for (const Deel& deel : DELEN) {
        std::string waarom;
        for (const char* naam : deel.bestanden) {
            const std::string stam = std::string(naam, strchr(naam, '.'));
            const bool er = IOEXISTS(naam);
            if (const keurlezer l(naam); l.fd < 0) {
                dicht->push_back(
                    {stam, "", {naam + (er ? " can't be read: " + l.fout : std::string(" isn't there"))}});
                waarom = stam + " can't be read";
            } else if (schrijven && access(naam, W_OK) != 0) {
                waarom = stam + " can't be written";
            } else if (waarom.empty() && stuk.contains(stam)) {
                waarom = "rebuild with ixremake first: " + stam;
            }
        }
        uit.*deel.er = waarom.empty();
        if (!waarom.empty())
            weg->push_back(waarom + "; " + deel.wat);
    }
    return uit;
}

void keur_open(const registerdelen& delen, bool schrijven) {
    const int modus = schrijven ? SHARED : LEZEN;
    open_delen = delen;
    if (delen.series)
        dtser = IXOPEN("DTSER", schrijven ? ALLEEN : LEZEN);
    if (delen.codes)
        dtean = IXOPEN("DTEAN", modus);
    if (delen.nummers)
        dtordnr = IXOPEN("DTORDNR", modus);
    if (delen.prijzen)
        ioink_open(modus);
    if (delen.labels)
        ioeti('O', nullptr, nullptr);
    sys_lees();
}

void keur_sluit() {
    if (open_delen.labels)
        ioeti('C', nullptr, nullptr);
    if (open_delen.prijzen)
        ioink_close();
    for (ICB** icb : {&dtordnr, &dtean, &dtser}) {
        if (*icb)
            IXCLOSE(*icb);
        *icb = nullptr;
    }
}

keurbestanden register_keur(int pogingen) {
    return keur_herhaald(pogingen, [] { return bestanden(neem_op()); });
}

std::vector<std::string> register_herstel(bool* gelukt) {
    std::vector<std::string> uit;
    const keurmelding meld = [&](const std::string& wat) { uit.push_back(wat); };
    Keuring k = neem_op();
    *gelukt = keur_ongelezen().empty();
    for (const keurbestand& b : keur_ongelezen())
        uit.push_back(b.naam +
                      ": can't be read whole: series, prices, labels, codes and numbers stay as they are");
    if (!*gelukt)
        return uit;
    if (k.journalen_stuk)
        uit.push_back("journals: one is damaged or can't be read: numbers of what is gone stay");
    if (k.met.labels && !k.labels_heel())
        uit.push_back(
            "DTETI: a series' chain is damaged: numbers and prices that no order and no set has stay");
    bool opnieuw = false;
    const auto blijft = [&k](const prijsgroeprec& groep) {
        return k.journalen_stuk || laatste_van_set(k, groep);
    };
    const int64_t groepen = k.met.prijzen && k.labels_heel() ? ink_herstel(blijft, &opnieuw) : 0;
    *gelukt &= groepen >= 0;
    if (opnieuw)
        uit.push_back("DTIPG: the free chain was made anew");
    if (groepen > 0)
        uit.push_back("DTIPG: " + keur_aantal(groepen, "records given back"));
    const int64_t verloren = k.eti.verloren;
    k.eti.sporen = k.sporen;
    *gelukt &= !k.met.labels || etikeur_herstel(&k.eti, meld);
    if (verloren > k.eti.verloren)
        uit.push_back("DTETI: " + keur_aantal(verloren - k.eti.verloren, "lost blocks given back"));
    int64_t geteld = 0;
    for (const auto& [sleutel, s] : k.series) {
        const etitelling staat{s.rec.in_nota, s.rec.voorraad, s.rec.verkopen, s.rec.correcties};
        if (!s.heel || memcmp(&staat, &s.labels, sizeof staat) == 0)
            continue;
        *gelukt &= tel_opnieuw(s);
        geteld++;
    }
    if (geteld)
        uit.push_back("DTSER: " + keur_aantal(geteld, "series counted again"));
    for (const auto& [sysrecord, laatste] : k.tellers) {
        *gelukt &= zet_teller(sysrecord, laatste);
        uit.push_back((sysrecord == SYS_SERIE ? "DTSER" : "DTORDNR") +
                      (": the last number is " + std::to_string(laatste)));
    }
    *gelukt &= !k.met.codes || codes_keur(&k, true, meld);
    for (const int32_t nr : k.nummers_zonder_order) {
        uint8_t buffer[IXRECMAX] = {};
        memcpy(buffer, &nr, sizeof nr);
        if (IXREADL(dtordnr, buffer) == 1)
            *gelukt &= IXDELETE(dtordnr, buffer) == 0;
        else
            IXUNLOCK(dtordnr, buffer);
    }
    if (const size_t n = k.nummers_zonder_order.size())
        uit.push_back("DTORDNR: " + keur_aantal(static_cast<int64_t>(n), "numbers deleted"));
    return uit;
}

} // namespace zg
