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
#include <iterator>
#include <map>

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

bool buiten_filialen(const uint8_t* masker) {
    for (int i = firma.filialen; i < 256; i++)
        if (masker[i / 8] >> (i % 8) & 1)
            return true;
    return false;
}

keurbestand groepen(const stamboek& boek) {
    Tabel t{{"DTART", ""}};
    keurnummers filialen{filialen_open(), {GEEN_MAGAZIJN}};
    for (int i = 0; filialen.gelezen && i < firma.filialen; i++)
        filialen.alle.insert(iofil_nummer(i));
    t.elk<artrec>([&](const artrec& a) {
        const std::string wie = VORM("article group %d", a.artikelgroep);
        t.noem(slot_er(SYS_PRIJSKLASSE, a.prijsklasse), wie, "price class", a.prijsklasse);
        t.noem(slot_er(SYS_ETIKETSOORT, a.etiketsoort), wie, "label kind", a.etiketsoort);
        t.noem(boek.maatsoorten.kent(a.maatsoort), wie, "size type", a.maatsoort);
        t.noem(boek.omzetgroepen.kent(a.omzetgroep), wie, "turnover group", a.omzetgroep);
        t.noem(filialen.kent(a.magazijn), wie, "warehouse branch", a.magazijn);
        if (a.artikelgroep <= 0)
            t.kwalen.zie(wie + ": no number");
        if (a.btwcode > 10)
            t.kwalen.zie(wie + VORM(": VAT code %d, of ten", a.btwcode));
        if (a.magazijnpct > 100)
            t.kwalen.zie(wie + VORM(": %d per cent to the warehouse", a.magazijnpct));
    });
    return t.klaar();
}

keurbestand merken(const stamboek& boek) {
    Tabel t{{"DTMERK", ""}};
    t.elk<merkrec>([&](const merkrec& m) {
        const std::string wie = VORM("brand %d", m.merk);
        for (const int nr : {m.fabrikant, m.agent, m.leverancier})
            t.noem(boek.leveranciers.kent(nr), wie, "relation", nr);
        t.noem(slot_er(SYS_MAATSTELSEL, m.maatstelsel), wie, "size system", m.maatstelsel);
        if (m.merk == 0)
            t.kwalen.zie("a brand without a number");
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
    t.elk<levrec>([&](const levrec& l) {
        const std::string wie = VORM("relation %d", l.nummer);
        if (!VASTLEEG(l.valuta) && !valuta.contains(VASTTEKST(l.valuta)))
            t.noten.zie(wie + ": currency " + VASTTEKST(l.valuta) + " isn't there");
        t.noem(slot_er(SYS_MAATSTELSEL, l.maatstelsel), wie, "size system", l.maatstelsel);
        if (l.nummer == 0)
            t.kwalen.zie("a relation without a number");
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
        if (k.koers <= 0 || k.eenheid == 0)
            t.kwalen.zie(code + VORM(": a rate of %d for %d", k.koers, k.eenheid));
    });
    return t.klaar();
}

// Sizes: the record of a type must make one bar of them. Read through the handle that the screens use.
keurbestand maten(bool heel) {
    Tabel t{{"DTMAAT", ""}};
    ICB* eigen = heel ? IXOPEN("DTMAAT", 0) : nullptr;
    dtmaat = eigen;
    t.elk<maatrij>([&](const maatrij& m) {
        const std::string wie = VORM("size type %d of system %d", m.soort, m.stelsel);
        t.noem(slot_er(SYS_MAATSOORT, m.soort), wie, "the text of type", m.soort);
        t.noem(slot_er(SYS_MAATSTELSEL, m.stelsel), wie, "system", m.stelsel);
        if (m.soort == 0 || m.stelsel == 0)
            return t.kwalen.zie(wie + ": no such type");
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
    return b;
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
    };
    for (const auto& t : tabellen)
        if (er(t.naam))
            uit.push_back(t.keur());
    return uit;
}

} // namespace zg
