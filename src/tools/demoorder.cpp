// The order journals of the demo firm, built record by record from orders.txt.
#include "order/ordrec.h"
#include "price/uniprijs.h"
#include "shared/files.h"
#include "term/vast.h"
#include "tools/demotekst.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

namespace zg {

namespace {

struct Termijn {
    uint16_t van, tot;
    std::vector<ordfil> aantallen;
};

struct Regel {
    orddessin d{};
    std::vector<int> maten; // size indexes
    int32_t bruto = 0, netto = 0;
    std::string tekst;
    std::vector<Termijn> termijnen;
    int keer = 1;
};

// One journal under construction, and what of the order is not written yet.
struct Bouw {
    const Demobron& bron;
    const std::vector<Demomaten>& maten;
    std::map<std::string, std::string> journalen;
    std::string* uit = nullptr;
    ordkop kop{};
    ordmodel model{};
    std::string teksten[4];
    Regel regel;
    bool kop_open = false, model_open = false, regel_open = false;

    template <class R> void schrijf(char tag, const R& rec) {
        *uit += tag;
        uit->append(reinterpret_cast<const char*>(&rec), sizeof rec);
    }

    void schrijf_tekst(int soort) {
        std::string& t = teksten[soort - 1];
        if (t.size() > 300)
            bron.fout("a text of more than 300 characters");
        for (size_t i = 0; i < t.size(); i += 60) {
            ordtekst r{};
            r.soort = static_cast<uint8_t>(soort);
            VASTIN(r.tekst, std::string_view(t).substr(i, 60));
            schrijf('T', r);
        }
        t.clear();
    }

    void sluit_kop() {
        if (!kop_open)
            return;
        kop_open = false;
        schrijf('O', kop);
        schrijf_tekst(1);
        schrijf_tekst(2);
    }

    void sluit_model() {
        sluit_kop();
        if (!model_open)
            return;
        model_open = false;
        schrijf('M', model);
        schrijf_tekst(3);
    }

    void sluit_regel() {
        if (!regel_open)
            return;
        std::string tekst4 = std::move(teksten[3]);
        teksten[3].clear();
        sluit_model();
        regel_open = false;
        const double deel = 100.0 + kop.korting / 100.0;
        for (int i = 0; i < regel.keer; i++) {
            orddessin d = regel.d;
            d.volgnummer = static_cast<uint16_t>(regel.d.volgnummer + i);
            d.kleur = static_cast<uint16_t>(regel.d.kleur + i % 20);
            if (regel.keer > 1) {
                char naam[32];
                snprintf(naam, sizeof naam, "%.9s %d", VASTTEKST(regel.d.dessin).c_str(), i + 1);
                VASTIN(d.dessin, naam);
            }
            schrijf('D', d);
            teksten[3] = tekst4;
            schrijf_tekst(4);
            for (int m : regel.maten)
                schrijf('S', ordmaat{static_cast<uint8_t>(m),
                                     {},
                                     regel.bruto,
                                     static_cast<int32_t>(std::lround(regel.netto * 100.0 / deel))});
            for (const Termijn& t : regel.termijnen) {
                schrijf('L', ordlevt{t.van, t.tot});
                for (const ordfil& f : t.aantallen)
                    schrijf('F', f);
            }
        }
    }

    void order(const std::vector<std::string>& w) {
        sluit_regel();
        sluit_kop();
        int leverancier = bron.getal(w.at(2), 1, 9999);
        char naam[32];
        snprintf(naam, sizeof naam, "%s/ORD%04d.JRN", w[1].c_str(), leverancier);
        uit = &journalen[naam];
        kop = {};
        kop_open = true;
        kop.leverancier = static_cast<uint16_t>(leverancier);
        kop.jaar = static_cast<uint16_t>(bron.getal(w[1].substr(0, 4), 0, 9999));
        kop.seizoen = w[1][4];
        kop.orderdatum = bron.datum(w.at(3));
        kop.koers = 10000, kop.koerseenheid = 1, kop.toeslag = 10000;
        std::string v;
        auto getal = [&](const char* n, int hoog) {
            return demowaarde(w, n, &v) ? bron.getal(v, 0, hoog) : 0;
        };
        kop.agent = static_cast<uint16_t>(getal("agent", 9999));
        kop.deelseizoen = static_cast<uint8_t>(getal("deelseizoen", 9));
        kop.inkoopcode = static_cast<uint8_t>(getal("inkoopcode", 9));
        kop.status = static_cast<uint8_t>(getal("status", 255));
        kop.ontvangstlocatie = static_cast<uint8_t>(getal("locatie", 255));
        if (demowaarde(w, "koers", &v))
            kop.koers = static_cast<uint32_t>(bron.getal(v, 1, INT32_MAX));
        if (demowaarde(w, "koerseenheid", &v))
            kop.koerseenheid = static_cast<uint16_t>(bron.getal(v, 1, 60000));
        if (demowaarde(w, "toeslag", &v))
            kop.toeslag = static_cast<uint32_t>(std::lround(strtod(v.c_str(), nullptr) * 10000));
        if (demowaarde(w, "korting", &v))
            kop.korting = static_cast<int16_t>(-std::lround(strtod(v.c_str(), nullptr) * 100));
        if (demowaarde(w, "omschrijving", &v))
            VASTIN(kop.omschrijving, bron.cp850(v));
        if (demowaarde(w, "collectie", &v))
            VASTIN(kop.collectie, bron.cp850(v));
        if (demowaarde(w, "valuta", &v))
            VASTIN(kop.valuta, v);
        if (demowaarde(w, "lev_ordernr", &v))
            VASTIN(kop.lev_ordernr, v);
    }

    const Demomaten& maatsoort() const {
        for (const Demomaten& m : maten)
            if (m.soort == model.maatsoort)
                return m;
        bron.fout("unknown size type");
    }

    // "S-XL" or "S" by the names on the bar.
    void maatreeks(const std::string& tekst) {
        const auto& namen = maatsoort().maten;
        size_t streep = tekst.find('-');
        auto van = std::find(namen.begin(), namen.end(), tekst.substr(0, streep));
        auto tot = streep == std::string::npos
                       ? van
                       : std::find(namen.begin(), namen.end(), tekst.substr(streep + 1));
        if (van == namen.end() || tot == namen.end() || tot < van)
            bron.fout("no such sizes: " + tekst);
        for (auto m = van; m <= tot; ++m) {
            int index = static_cast<int>(m - namen.begin()) + 1;
            regel.maten.push_back(index);
            regel.d.maten[index / 8] = static_cast<uint8_t>(regel.d.maten[index / 8] | 1 << (index % 8));
        }
    }

    void nieuw_model(const std::vector<std::string>& w) {
        sluit_regel();
        sluit_model();
        model = {};
        model_open = true;
        std::string v;
        model.merk = static_cast<uint16_t>(bron.getal(w.at(1), 1, 65535));
        VASTIN(model.model, bron.cp850(w.at(2)));
        model.maatsoort = static_cast<uint8_t>(demowaarde(w, "maatsoort", &v) ? bron.getal(v, 1, 99) : 1);
        model.artikelgroep = demowaarde(w, "artikelgroep", &v) ? bron.getal(v, 1, 999999) : 0;
        model.etiketsoort = 1;
    }

    void nieuwe_regel(const std::vector<std::string>& w) {
        sluit_regel();
        sluit_model();
        regel = {};
        regel_open = true;
        std::string v;
        if (w.size() > 1 && w[1].size() > 1 && w[1][0] == 'x')
            regel.keer = bron.getal(w[1].substr(1), 1, 10000);
        orddessin& d = regel.d;
        d.volgnummer = static_cast<uint16_t>(demowaarde(w, "volgnummer", &v) ? bron.getal(v, 1, 65535) : 1);
        d.kleur = static_cast<uint16_t>(demowaarde(w, "kleur", &v) ? bron.getal(v, 1, 999) : 1);
        d.doelgroep = demowaarde(w, "doelgroep", &v) ? v[0] : ' ';
        d.regtype = 1;
        if (demowaarde(w, "dessin", &v))
            VASTIN(d.dessin, bron.cp850(v));
        if (demowaarde(w, "materiaal", &v))
            VASTIN(d.materiaal, bron.cp850(v));
        if (demowaarde(w, "omschrijving", &v))
            VASTIN(d.omschrijving, bron.cp850(v));
        regel.bruto = demowaarde(w, "bruto", &v) ? bron.getal(v, 1, INT32_MAX) : 1000;
        regel.netto = demowaarde(w, "netto", &v) ? bron.getal(v, 1, INT32_MAX) : regel.bruto;
        if (!demowaarde(w, "maten", &v))
            bron.fout("maten is missing");
        maatreeks(v);
        if (demowaarde(w, "advies", &v)) { // one range of advice prices, that ends at the last size
            const int32_t advies = bron.getal(v, 1, INT32_MAX);
            d.adviesblok[0] = static_cast<uint8_t>(regel.maten.back());
            memcpy(d.adviesblok + ADVIESRANGEN, &advies, sizeof advies);
        }
    }

    void aantal(const std::vector<std::string>& w) {
        if (regel.termijnen.empty())
            bron.fout("a quantity without a delivery term");
        int nummer = bron.getal(w.at(1), 1, 250);
        auto fil = std::find(demo_filialen.begin(), demo_filialen.end(), nummer);
        if (fil == demo_filialen.end() || w.size() - 2 > regel.maten.size())
            bron.fout("no such branch, or more quantities than sizes");
        for (size_t i = 2; i < w.size(); i++)
            if (int q = bron.getal(w[i], 0, INT32_MAX))
                regel.termijnen.back().aantallen.push_back({static_cast<uint8_t>(fil - demo_filialen.begin()),
                                                            static_cast<uint8_t>(regel.maten[i - 2]), 0, q});
    }
};

} // namespace

void demo_orders(const std::string& pad, const std::vector<Demomaten>& maten) {
    Demobron bron(pad);
    Bouw b{bron, maten, {}, nullptr, {}, {}, {}, {}};
    for (Demoregel r; bron.volgende(&r);) {
        const auto& w = r.woorden;
        if (w[0] == "order")
            b.order(w);
        else if (!b.uit)
            bron.fout("no order yet");
        else if (w[0] == "tekst")
            b.teksten[bron.getal(w.at(1), 1, 4) - 1] = bron.cp850(w.at(2));
        else if (w[0] == "model")
            b.nieuw_model(w);
        else if (w[0] == "regel")
            b.nieuwe_regel(w);
        else if (w[0] == "termijn")
            b.regel.termijnen.push_back({bron.datum(w.at(1)), bron.datum(w.at(2)), {}});
        else if (w[0] == "aantal")
            b.aantal(w);
        else
            bron.fout("unknown kind: " + w[0]);
    }
    b.sluit_regel();
    b.sluit_kop();
    for (const auto& [naam, inhoud] : b.journalen)
        demobestand(naam, inhoud.data(), inhoud.size());
}

} // namespace zg
