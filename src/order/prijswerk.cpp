// A noted change of prices, see order/prijswerk.h: written into the register, and its scratch file.
#include "order/prijswerk.h"
#include "order/etiketloop.h"
#include "order/noot.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "shared/files.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "sub/omserie.h"
#include "term/scherm.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <unordered_map>

namespace zg {
namespace {

bool gelijk(const prijsgroepen& a, const prijsgroepen& b) {
    return std::ranges::equal(a, b, [](const prijsgroep& x, const prijsgroep& y) {
        return memcmp(x.maten, y.maten, sizeof x.maten) == 0 && x.bruto == y.bruto && x.netto == y.netto;
    });
}

bool gelijk(const prijsset& a, const prijsset& b) {
    return a.van == b.van && a.tot == b.tot && a.koersfactor == b.koersfactor &&
           memcmp(a.valuta, b.valuta, sizeof a.valuta) == 0;
}

bool gelijk(const prijsstand& a, const prijsstand& b) {
    return a.inkoop == b.inkoop && a.prijs == b.prijs;
}

Prijsuit zet_prijzen(const prijswerk& noot, const prijsserie& p, const serrec& rec) {
    prijsset nu;
    prijsgroepen groepen;
    const Prijsset stand = ioink_find(p.serie, noot.leverancier, noot.orderdatum, &nu, &groepen);
    const bool gelezen = stand == Prijsset::gelezen;
    if (gelezen && gelijk(nu, p.wordt) &&
        gelijk(groepen, p.groepen)) // written again it cuts what a kill left beside it
        return ioink_writeheld(&nu, groepen) ? Prijsuit::goed : Prijsuit::geweigerd;
    if (p.stond ? !gelezen || !gelijk(nu, p.was) || !gelijk(groepen, p.groepen_was) : stand != Prijsset::geen)
        return Prijsuit::anders;
    prijsset wordt = p.wordt;
    // With another period it is a new one, that cuts the old one.
    wordt.groep = p.stond && nu.van == wordt.van && nu.tot == wordt.tot ? nu.groep : -1;
    if (p.stond) // first: killed in between, the write done again finds nothing to tell
        serie_mutatie(MUT_PRIJS, rec);
    return ioink_writeheld(&wordt, p.groepen) ? Prijsuit::goed : Prijsuit::geweigerd;
}

Prijsuit zet_etiketten(const prijswerk& noot, const prijsserie& p, const serrec& rec) {
    Prijsuit uit = Prijsuit::goed;
    std::unordered_map<int32_t, etiket> keten; // of a damaged one what there is of it
    etiketten_loop(rec, [&](int32_t nummer, const etiket& label) { keten.emplace(nummer, label); });
    std::vector<std::pair<genummerd, etiket>> doen;
    for (const prijsetiket& e : p.etiketten) {
        const auto er = keten.find(e.nummer);
        if (er == keten.end() || er->second.leverancier != noot.leverancier ||
            er->second.orderdatum != noot.orderdatum || er->second.maat != e.maat) {
            uit = Prijsuit::anders;
            continue;
        }
        const genummerd nu{e.nummer, er->second};
        const prijsstand stand = {nu.label.inkoop, nu.label.prijs};
        if (gelijk(stand, e.wordt))
            continue;
        if (!gelijk(stand, e.was)) {
            uit = Prijsuit::anders;
            continue;
        }
        etiket nieuw = nu.label;
        nieuw.inkoop = e.wordt.inkoop;
        nieuw.prijs = e.wordt.prijs;
        doen.emplace_back(nu, nieuw);
    }
    if (doen.empty())
        return uit;
    int32_t eerste = rec.etiketkop;
    etiketwijziging wijziging(p.serie, &eerste);
    ioeti_merktoets();
    for (const auto& [oud, nieuw] : doen)
        if (!wijziging.schrijf(oud, nieuw))
            return Prijsuit::geweigerd;
    return uit;
}

// ---- the scratch file: a head, then the series, each with its groups and labels

constexpr char MERK[8] = {'Z', 'G', 'P', 'R', 'I', 'J', 'S', '1'};
constexpr Noot NOOT = {"PRS", "PRN"};

struct [[gnu::packed]] koprec {
    char merk[8];
    uint64_t som; // over what follows
    uint16_t leverancier, orderdatum;
    int32_t ordernummer;
    int16_t korting;
    uint32_t series;
};
struct [[gnu::packed]] serierec {
    seriesleutel serie;
    int32_t nummer, regel;
    uint8_t stond, zet;
    prijsset was, wordt;
    uint32_t groepen_was, groepen, etiketten;
};

uint64_t som_van(const uint8_t* bytes, size_t n) {
    uint64_t som = 14695981039346656037u;
    for (size_t i = 0; i < n; i++)
        som = (som ^ bytes[i]) * 1099511628211u;
    return som;
}

template <class R> void erbij(std::vector<uint8_t>* uit, const R* van, size_t aantal) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(van);
    uit->insert(uit->end(), bytes, bytes + aantal * sizeof(R));
}

template <class R> bool eraf(const std::vector<uint8_t>& in, size_t* plaats, R* naar, size_t aantal) {
    if ((in.size() - *plaats) / sizeof(R) < aantal)
        return false;
    memcpy(static_cast<void*>(naar), in.data() + *plaats, aantal * sizeof(R));
    *plaats += aantal * sizeof(R);
    return true;
}

template <class R>
bool eraf(const std::vector<uint8_t>& in, size_t* plaats, std::vector<R>* naar, uint32_t aantal) {
    if ((in.size() - *plaats) / sizeof(R) < aantal) // before there is memory for them
        return false;
    naar->resize(aantal);
    return eraf(in, plaats, naar->data(), aantal);
}

std::vector<uint8_t> pak(const prijswerk& noot) {
    std::vector<uint8_t> uit;
    koprec hoofd{};
    hoofd.leverancier = noot.leverancier;
    hoofd.orderdatum = noot.orderdatum;
    hoofd.ordernummer = noot.ordernummer;
    hoofd.korting = noot.korting;
    hoofd.series = static_cast<uint32_t>(noot.series.size());
    memcpy(hoofd.merk, MERK, sizeof MERK);
    erbij(&uit, &hoofd, 1);
    for (const prijsserie& p : noot.series) {
        const serierec s = {p.serie,
                            p.nummer,
                            p.regel,
                            p.stond,
                            p.zet,
                            p.was,
                            p.wordt,
                            static_cast<uint32_t>(p.groepen_was.size()),
                            static_cast<uint32_t>(p.groepen.size()),
                            static_cast<uint32_t>(p.etiketten.size())};
        erbij(&uit, &s, 1);
        erbij(&uit, p.groepen_was.data(), p.groepen_was.size());
        erbij(&uit, p.groepen.data(), p.groepen.size());
        erbij(&uit, p.etiketten.data(), p.etiketten.size());
    }
    constexpr size_t VAN = offsetof(koprec, leverancier);
    hoofd.som = som_van(uit.data() + VAN, uit.size() - VAN);
    memcpy(uit.data(), &hoofd, sizeof hoofd);
    return uit;
}

bool pak_uit(const std::vector<uint8_t>& in, prijswerk* noot) {
    constexpr size_t VAN = offsetof(koprec, leverancier);
    koprec hoofd;
    size_t plaats = 0;
    if (!eraf(in, &plaats, &hoofd, 1) || memcmp(hoofd.merk, MERK, sizeof MERK) != 0 ||
        hoofd.som != som_van(in.data() + VAN, in.size() - VAN))
        return false;
    *noot = {hoofd.leverancier, hoofd.orderdatum, hoofd.ordernummer, hoofd.korting, {}};
    for (uint32_t i = 0; i < hoofd.series; i++) {
        serierec s;
        if (!eraf(in, &plaats, &s, 1))
            return false;
        prijsserie p{s.serie, s.nummer, s.regel, s.stond != 0, s.zet != 0, s.was, s.wordt, {}, {}, {}};
        if (!eraf(in, &plaats, &p.groepen_was, s.groepen_was) || !eraf(in, &plaats, &p.groepen, s.groepen) ||
            !eraf(in, &plaats, &p.etiketten, s.etiketten))
            return false;
        noot->series.push_back(std::move(p));
    }
    return plaats == in.size();
}

// The order's discount in the journal, where a kill came before its header.
bool zet_kop(const prijswerk& noot) {
    const ordkop bewaard = kop;
    bool goed = true;
    for (bool er = journaal && ord_eerste_order(journaal); er && goed; er = ord_volgende_order(journaal))
        if (kop.leverancier == noot.leverancier && kop.orderdatum == noot.orderdatum &&
            kop.ordernummer == noot.ordernummer && kop.korting != noot.korting) {
            kop.korting = noot.korting;
            goed = ord_schrijf(journaal);
        }
    kop = bewaard;
    return goed;
}

} // namespace

std::string prijswerk_naam(const prijsserie& p) {
    return std::to_string(p.regel) + ": " + serie_tekst(p.serie);
}

Prijsuit prijswerk_serie(const prijswerk& noot, const prijsserie& p, const serrec& rec) {
    if (!zelfde_serie(rec.serie, p.serie) || rec.nummer != p.nummer)
        return Prijsuit::anders;
    const Prijsuit set = p.zet ? zet_prijzen(noot, p, rec) : Prijsuit::goed;
    if (set == Prijsuit::geweigerd)
        return set;
    const Prijsuit labels = zet_etiketten(noot, p, rec);
    return labels == Prijsuit::goed ? set : labels;
}

bool prijswerk_doe(const prijswerk& noot, std::vector<std::string>* anders) {
    Prijsuit uit = Prijsuit::goed;
    for (size_t i = 0; i < noot.series.size() && uit != Prijsuit::geweigerd; i++) {
        const prijsserie& p = noot.series[i];
        serrec rec;
        uit = serie_neem(p.serie, &rec) ? prijswerk_serie(noot, p, rec) : Prijsuit::anders;
        if (uit == Prijsuit::anders)
            anders->push_back(prijswerk_naam(p));
    }
    serie_los();
    return uit != Prijsuit::geweigerd;
}

bool prijswerk_noteer(const prijswerk& noot) {
    return noot_schrijf(NOOT, pak(noot));
}

void prijswerk_wis() {
    noot_wis(NOOT);
}

bool prijswerk_lees(const std::string& pad, prijswerk* noot) {
    std::vector<uint8_t> bytes;
    return noot_lees(pad, &bytes) && pak_uit(bytes, noot);
}

bool prijswerk_afmaken() {
    std::vector<uint8_t> bytes;
    switch (noot_open(NOOT, &bytes)) {
    case Nootstand::geen:
        return true;
    case Nootstand::onbereikbaar:
        return false;
    case Nootstand::gelezen:
        break;
    }
    prijswerk noot;
    std::vector<std::string> anders;
    if (!pak_uit(bytes, &noot))
        ALARMBOX(TXT(T_REG_PRIJSWERK_STUK), IOBASENAME(wrk_naam(NOOT.ext).c_str()));
    else if (!register_heel() || !zet_kop(noot) || !prijswerk_doe(noot, &anders))
        return false;
    prijswerk_wis();
    regels_overgeslagen(T_REG_PRIJS_OVER, anders);
    return true;
}

} // namespace zg
