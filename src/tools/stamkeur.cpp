#include "tools/stamkeur.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/registerrec.h"
#include "store/ix.h"
#include "sub/afb_hdl.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/systeemkeur.h"
#include "tools/veldkeur.h"
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>

namespace zg {
namespace {

template <class R, class F> keurnummers nummers(const char* naam, F nummer) {
    keurnummers uit;
    uit.gelezen = keur_records(naam, [&](int32_t, const uint8_t* bytes, int lengte) {
        R rec;
        stam_uit(bytes, lengte, &rec);
        uit.alle.insert(nummer(rec));
    });
    return uit;
}

bool slot_er(const Systabel& tabel, int32_t nr) {
    uint8_t ruimte[IXRECMAX];
    return nr == 0 || iotab('R', &nr, ruimte, tabel) != 0;
}

// A table in hand: its line, and what its records name.
struct Tabel {
    keurbestand b;
    keurhoop noten = {}, kwalen = {};

    template <class R, class F> void elk(F f) {
        keur_records(b.naam, [&](int32_t, const uint8_t* bytes, int lengte) {
            R rec;
            stam_uit(bytes, lengte, &rec);
            f(rec);
        });
    }
    void noem(bool er, const std::string& wie, const char* wat, int nr) {
        if (!er)
            noten.zie(wie + ": " + wat + " " + std::to_string(nr) + " isn't there");
    }
    keurbestand klaar() {
        kwalen.meld(&b.kwalen);
        noten.meld(&b.noten);
        return std::move(b);
    }
};

// A feature kind stands in the codes of one set of users or another.
bool kenmerksoort_er(int nr) {
    for (int set = 0; set <= SET_MAX; set++)
        if (slot_er(SYS_SETCODE, set * 10 + nr))
            return nr <= SET_MAX;
    return false;
}

bool buiten_filialen(const uint8_t* masker) {
    for (int i = firma.filialen; i < 256; i++)
        if (masker[i / 8] >> (i % 8) & 1)
            return true;
    return false;
}

bool alle_filialen(const uint8_t* masker) {
    for (int i = 0; i < firma.filialen; i++)
        if (!(masker[i / 8] >> (i % 8) & 1))
            return false;
    return true;
}

keurbestand groepen(const stamboek& boek) {
    Tabel t{{"DTART", ""}};
    keurnummers filialen{filialen_open(), {GEEN_MAGAZIJN}};
    for (int i = 0; filialen.gelezen && i < firma.filialen; i++)
        filialen.alle.insert(iofil_nummer(i));
    t.elk<artrec>([&](const artrec& a) {
        const std::string wie = VORM("article group %d", a.artikelgroep);
        t.noem(slot_er(SYS_PRIJSKLASSE, a.prijsklasse), wie, "price class", a.prijsklasse);
        t.noem(kenmerksoort_er(a.kenmerksoort), wie, "feature kind", a.kenmerksoort);
        t.noem(slot_er(SYS_ETIKETSOORT, a.etiketsoort), wie, "label kind", a.etiketsoort);
        t.noem(boek.maatsoorten.kent(a.maatsoort), wie, "size type", a.maatsoort);
        t.noem(boek.omzetgroepen.kent(a.omzetgroep), wie, "turnover group", a.omzetgroep);
        t.noem(filialen.kent(a.magazijn), wie, "warehouse branch", a.magazijn);
    });
    return t.klaar();
}

keurbestand merken(const stamboek& boek) {
    Tabel t{{"DTMERK", ""}};
    std::map<std::string, int> zoeknamen;
    t.elk<merkrec>([&](const merkrec& m) {
        const std::string wie = VORM("brand %d", m.merk);
        for (const int nr : {m.fabrikant, m.agent, m.leverancier})
            t.noem(boek.leveranciers.kent(nr), wie, "relation", nr);
        t.noem(slot_er(SYS_MAATSTELSEL, m.maatstelsel), wie, "size system", m.maatstelsel);
        if (!boek.kent_doelgroep(m.doelgroep))
            t.noten.zie(wie + ": target group " + m.doelgroep + " isn't there");
        const std::string zoeknaam = VASTTEKST(m.zoeknaam);
        if (zoeknaam.find_first_of(",;$") != std::string::npos)
            t.kwalen.zie(wie + ": short name \"" + zoeknaam + "\" with a comma, semicolon or dollar");
        if (const auto [p, nieuw] = zoeknamen.emplace(zoeknaam, m.merk); !nieuw && !zoeknaam.empty())
            t.kwalen.zie(wie + ": short name \"" + zoeknaam + VORM("\" is also that of brand %d", p->second));
        if (buiten_filialen(m.uitgesloten))
            t.noten.zie(wie + ": branches that the firm hasn't");
        if (firma.filialen > 0 && alle_filialen(m.uitgesloten))
            t.kwalen.zie(wie + ": all branches are excluded");
    });
    return t.klaar();
}

std::set<std::string> valuta_codes() {
    std::set<std::string> uit;
    Tabelbeeld<valutarec> beeld{SYS_VALUTA};
    for (const auto& v : beeld.alle())
        uit.insert(VASTTEKST(v.r.code));
    return uit;
}

keurbestand relaties() {
    Tabel t{{"DTLEV", ""}};
    const std::set<std::string> valuta = valuta_codes();
    std::set<std::string> landen;
    Tabelbeeld<landrec> beeld{SYS_LAND};
    for (const auto& l : beeld.alle())
        landen.insert(VASTTEKST(l.r.iso3));
    t.elk<levrec>([&](const levrec& l) {
        const std::string wie = VORM("relation %d", l.nummer);
        if (!VASTLEEG(l.valuta) && !valuta.contains(VASTTEKST(l.valuta)))
            t.noten.zie(wie + ": currency " + VASTTEKST(l.valuta) + " isn't there");
        for (const std::string& land : {VASTTEKST(l.land), VASTTEKST(l.goed_land)})
            if (!land.empty() && !landen.contains(land))
                t.noten.zie(wie + ": country " + land + " isn't there");
        t.noem(slot_er(SYS_MAATSTELSEL, l.maatstelsel), wie, "size system", l.maatstelsel);
    });
    return t.klaar();
}

keurbestand adressen(const stamboek& boek) {
    Tabel t{{"DTLEVEXT", ""}};
    t.elk<levextrec>([&](const levextrec& l) {
        t.noem(boek.leveranciers.kent(l.nummer), "a record", "relation", l.nummer);
    });
    return t.klaar();
}

keurbestand koersen() {
    Tabel t{{"DTKOERS", ""}};
    const std::set<std::string> valuta = valuta_codes();
    t.elk<koersrec>([&](const koersrec& k) {
        const std::string code = VASTTEKST(k.code);
        if (!valuta.contains(code))
            t.noten.zie("currency " + code + " isn't there");
    });
    return t.klaar();
}

// Sizes: the record of a type must make one bar of them. Read through the handle that the screens use.
keurbestand maten(bool heel) {
    Tabel t{{"DTMAAT", ""}};
    ICB* eigen = heel ? IXOPEN("DTMAAT", 0) : nullptr;
    dtmaat = eigen;
    std::set<std::array<int, 3>> omschreven;
    keur_records("DTMTOM", [&](int32_t, const uint8_t* r, int lengte) {
        if (lengte >= 3)
            omschreven.insert({r[0], r[1], r[2]});
    });
    int32_t sysrecord = 8;
    sysmaat laatste;
    iotab('R', &sysrecord, &laatste, SYS_RECORD);
    t.elk<maatrij>([&](const maatrij& m) {
        const std::string wie = VORM("size type %d of system %d", m.soort, m.stelsel);
        t.noem(slot_er(SYS_MAATSOORT, m.soort), wie, "the text of type", m.soort);
        t.noem(slot_er(SYS_MAATSTELSEL, m.stelsel), wie, "system", m.stelsel);
        if (m.mtcount > laatste.mtcount)
            t.noten.zie(wie + VORM(": count %d, that of DTSYS.TXT system record 8 is %d", m.mtcount,
                                   laatste.mtcount));
        if (m.soort == 0 || m.stelsel == 0)
            return t.kwalen.zie(wie + ": no such type");
        std::set<std::string> namen;
        for (int i = 1; i <= MATEN; i++) {
            const auto& maat = m.entry[i];
            if (maat.link && !namen.insert(VASTTEKST(maat.naam)).second)
                t.kwalen.zie(wie + ": two sizes \"" + VASTTEKST(maat.naam) + "\"");
            if (std::ranges::any_of(maat.naam,
                                    [](char c) { return static_cast<uint8_t>(c) - 1U < ' ' - 1U; }))
                t.kwalen.zie(wie + VORM(": the name of entry %d holds a byte which is no letter", i));
            if (maat_in(m.mtombits, i) && !omschreven.contains({m.stelsel, m.soort, i}))
                t.noten.zie(wie + ": a description that DTMTOM hasn't");
        }
        if (namen.empty()) // the program writes no such type
            t.kwalen.zie(wie + ": no sizes");
        mthandle* h = eigen ? mtopen(m.stelsel, m.soort, 0) : nullptr;
        if (h && h->stuk)
            t.kwalen.zie(wie + ": its sizes don't make one bar");
        if (h)
            mtclose(h);
    });
    if (eigen)
        IXCLOSE(eigen);
    dtmaat = nullptr;
    return t.klaar();
}

keurbestand verdelingen(const stamboek& boek) {
    Tabel t{{"DTVVTAB", ""}};
    std::map<std::pair<int, int>, std::set<int>> rijen;
    std::map<std::pair<int, int>, std::array<uint8_t, 32>> gehad;
    t.elk<vvrec>([&](const vvrec& v) {
        const std::string wie = VORM("distribution %d of size type %d", v.nummer, v.maatsoort);
        t.noem(boek.maatsoorten.kent(v.maatsoort), wie, "size type", v.maatsoort);
        int64_t som = 0;
        for (size_t i = 1; i < std::size(v.aantal); i++)
            som += v.aantal[i];
        if (som != v.aantal[0])
            t.kwalen.zie(wie + VORM(": the sum of row %d isn't that of its sizes", v.volgnummer));
        if (buiten_filialen(v.filialen))
            t.noten.zie(wie + ": branches that the firm hasn't");
        auto& eerder = gehad[{v.maatsoort, v.nummer}];
        for (size_t i = 0; i < eerder.size(); eerder[i] |= v.filialen[i], i++)
            if (eerder[i] & v.filialen[i])
                t.kwalen.zie(wie + VORM(": a branch of row %d has another row", v.volgnummer));
        rijen[{v.maatsoort, v.nummer}].insert(v.volgnummer);
    });
    for (const auto& [wie, r] : rijen)
        if (*r.begin() != 1 || *r.rbegin() != static_cast<int>(r.size()))
            t.kwalen.zie(
                VORM("distribution %d of size type %d: a row in between isn't there", wie.second, wie.first));
    return t.klaar();
}

keurbestand afbeeldingen() {
    Tabel t{{"DTSERPIC", ""}};
    std::set<sleutelwaarde> er;
    const bool gelezen = keur_records("DTSER", [&](int32_t, const uint8_t* bytes, int lengte) {
        serrec s;
        stam_uit(bytes, lengte, &s);
        er.insert(sleutel_van(s.serie));
    });
    afb_instelling();
    t.elk<serpicrec>([&](const serpicrec& p) {
        const std::string naam = VASTTEKST(p.bestand);
        if (gelezen && !er.contains(sleutel_van(p.serie)))
            t.noten.zie("a picture of series " + serie_tekst(p.serie) + ", which isn't there");
        if (afb_keur(naam) != Afbnaam::goed)
            t.kwalen.zie("series " + serie_tekst(p.serie) + ": \"" + naam + "\" can't be a picture");
        else if (!IOEXISTS((afb_map(p.merk) + naam).c_str()))
            t.noten.zie("picture " + afb_map(p.merk) + naam + " isn't there");
    });
    return t.klaar();
}

// What series name. A line for each that isn't there, with the first of them.
keurbestand series(const stamboek& boek) {
    Tabel t{{"DTSER", ""}};
    std::map<std::string, std::pair<std::string, int64_t>> weg;
    t.elk<serrec>([&](const serrec& s) {
        const auto zie = [&](bool er, const char* wat, int64_t nr) {
            if (!er)
                weg.try_emplace(VORM(wat, static_cast<int>(nr)), serie_tekst(s.serie), 0)
                    .first->second.second++;
        };
        zie(boek.groepen.kent(s.serie.artikelgroep), "article group %d isn't there", s.serie.artikelgroep);
        zie(boek.kleuren.kent(s.serie.kleur), "colour %d isn't there", s.serie.kleur);
        zie(boek.merken.kent(s.merk), "brand %d isn't there", s.merk);
        zie(boek.leveranciers.kent(s.leverancier), "supplier %d isn't there", s.leverancier);
        zie(boek.etiketsoorten.kent(s.etiketsoort), "label kind %d isn't there", s.etiketsoort);
        zie(boek.deelseizoenen.kent(s.deelseizoen), "part-season %d isn't there", s.deelseizoen);
        zie(boek.kent_doelgroep(s.doelgroep), "target group %c isn't there", s.doelgroep);
        zie(!boek.vreemde_maten(s.maatsoort, s.maten), "sizes that size type %d hasn't", s.maatsoort);
        if (s.levering_van > s.levering_tot && s.levering_tot)
            t.kwalen.zie("series " + serie_tekst(s.serie) + ": its first delivery date is behind the last");
    });
    for (const auto& [wat, wie] : weg)
        t.noten.zie(
            "series " + wie.first +
            (wie.second > 1 ? VORM(" and %lld more: ", static_cast<long long>(wie.second - 1)) : ": ") + wat);
    return t.klaar();
}

template <class R> keurnummers slots(const Systabel& tabel) {
    keurnummers uit{true};
    Tabelbeeld<R> beeld{tabel};
    for (const auto& s : beeld.alle())
        uit.alle.insert(s.nr);
    return uit;
}

} // namespace

stamboek stamboek_lees() {
    stamboek b;
    b.leveranciers = nummers<levrec>("DTLEV", [](const levrec& r) { return int32_t{r.nummer}; });
    b.merken = nummers<merkrec>("DTMERK", [](const merkrec& r) { return int32_t{r.merk}; });
    b.groepen = nummers<artrec>("DTART", [](const artrec& r) { return int32_t{r.artikelgroep}; });
    b.maatsoorten = nummers<maatrij>("DTMAAT", [](const maatrij& r) { return int32_t{r.soort}; });
    b.omzetgroepen = nummers<omzgrprec>("DTOMZGRP", [](const omzgrprec& r) { return int32_t{r.nummer}; });
    Tabelbeeld<tekst20> kleuren{SYS_KLEUR};
    for (const auto& k : kleuren.alle())
        b.kleuren.alle.insert(k.nr);
    b.kleuren.gelezen = true;
    b.etiketsoorten = slots<etiketsoortrec>(SYS_ETIKETSOORT);
    b.deelseizoenen = slots<tekst30>(SYS_DEELSEIZOEN);
    b.inkoopcodes = slots<tekst30>(SYS_INKOOP);
    b.doelgroepen = nummers<doelgrrec>(
        "DTDOELGR", [](const doelgrrec& r) { return int32_t{static_cast<uint8_t>(r.code)}; });
    b.valuta = valuta_codes();
    keur_records("DTMAAT", [&b](int32_t, const uint8_t* bytes, int lengte) {
        maatrij m;
        stam_uit(bytes, lengte, &m);
        for (int i = 1; m.stelsel == mtstelsel(0) && i <= MATEN; i++)
            if (m.entry[i].link)
                maat_aan(b.maten[m.soort].data(), i);
    });
    return b;
}

bool stamboek::vreemde_maten(int maatsoort, const uint8_t* bits) const {
    const auto m = maten.find(maatsoort);
    for (size_t i = 0; m != maten.end() && i < m->second.size(); i++)
        if (bits[i] & ~m->second[i] & (i ? 0xFF : 0xFE))
            return true;
    return false;
}

keurbestanden stam_keur(const stamboek& boek, const std::function<bool(const char* naam)>& heel) {
    keurbestanden uit;
    const auto er = [](const char* naam) { return IOEXISTS((std::string(naam) + ".TXT").c_str()); };
    const struct {
        const char* naam;
        std::function<keurbestand()> keur;
    } tabellen[] = {
        {"DTART", [&] { return groepen(boek); }},
        {"DTMERK", [&] { return merken(boek); }},
        {"DTLEV", relaties},
        {"DTLEVEXT", [&] { return adressen(boek); }},
        {"DTKOERS", koersen},
        {"DTMAAT", [&] { return maten(heel("DTMAAT")); }},
        {"DTVVTAB", [&] { return verdelingen(boek); }},
        {"DTSERPIC", afbeeldingen},
        {"DTSER", [&] { return series(boek); }},
    };
    for (const auto& t : tabellen)
        if (er(t.naam))
            uit.push_back(t.keur());
    return uit;
}

keurbestanden velden_keur(const std::vector<std::string>& paren) {
    keurbestanden uit;
    for (const std::string& naam : paren) {
        const std::string tabel = tabelnaam(naam);
        if (indeling_wie(tabel).empty())
            continue;
        std::optional<Veldkeur> velden;
        keur_records(naam, [&](int32_t, const uint8_t* rec, int lengte) {
            if (!velden)
                velden.emplace(tabel, lengte);
            velden->zie(rec);
        });
        if (velden)
            velden->meld(&uit.emplace_back(keurbestand{naam, ""}).kwalen);
    }
    return uit;
}

} // namespace zg
