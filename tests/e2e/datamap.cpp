#include "e2e/datamap.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/stamrec.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "term/vast.h"
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace zg::test {

namespace fs = std::filesystem;

namespace {

constexpr int FILIALEN_HIER = 3;

std::string geschud(const std::string& naam) {
    char s[40] = {};
    memcpy(s, naam.data(), naam.size());
    SCRAMBLE(s);
    return s;
}

template <class R> std::string als_bytes(const R& r) {
    return {reinterpret_cast<const char*>(&r), sizeof r};
}

// A pair with the records given, in the directory of `pad`.
template <class R>
void paar(const std::string& pad, const char* kop, std::vector<const char*> sleutels,
          const std::vector<R>& records) {
    ICB* icb = IXCREATE(pad.c_str(), 1);
    IXUPDFCB(icb, 0, kop);
    for (size_t i = 0; i < sleutels.size(); i++)
        IXUPDFCB(icb, static_cast<int>(i) + 1, sleutels[i]);
    IXINIT(icb);
    for (const R& r : records) {
        uint8_t ruimte[IXRECMAX] = {};
        memcpy(ruimte, &r, sizeof r);
        IXWRITE(icb, ruimte);
    }
    IXCLOSE(icb);
}

levrec relatie(uint16_t nummer, const char* naam, uint8_t soort, const char* valuta = "") {
    levrec r{};
    r.nummer = nummer;
    VASTIN(r.naam, naam);
    VASTIN(r.plaats, "Utrecht");
    VASTIN(r.valuta, valuta);
    r.soort = soort;
    r.toeslag = 10000;
    return r;
}

void maak_paren(const std::string& map) {
    std::vector<levrec> relaties = {relatie(12, "Mode Centrale", 1), relatie(27, "Noord Ltd", 1, "GBP"),
                                    relatie(31, "M\x9Bller & S\x9Bn", 1), relatie(40, "Agentuur Smit", 2)};
    for (uint16_t n = 100; n < 130; n++)
        relaties.push_back(relatie(n, ("Leverancier " + std::to_string(n)).c_str(), 1));
    paar<levrec>(map + "/DTLEV", "relaties,332",
                 {"nummer,NODUPS,I,1,2", "naam,C,3,22,I,1,2", "adrescod,C,208,220,I,1,2"}, relaties);
    merkrec merk{};
    merk.merk = 5;
    VASTIN(merk.naam, "Vijf Sterren");
    VASTIN(merk.zoeknaam, "VIJF");
    paar<merkrec>(map + "/DTMERK", "merken,76",
                  {"merk,NODUPS,I,1,2", "zoek,C,23,26,I,1,2", "naam,C,3,22,I,1,2"}, {merk});
    artrec art{};
    art.artikelgroep = 10001;
    VASTIN(art.omschrijving, "Jurken");
    art.magazijn = GEEN_MAGAZIJN;
    art.verdeelsoort = 'A';
    art.maatsoort = 1;
    paar<artrec>(map + "/DTART", "artikelgroepen,304", {"artgr,NODUPS,I,1,4"}, {art});
    maatrij maten{};
    maten.stelsel = maten.soort = 1;
    for (uint8_t i = 1; i <= 4; i++) {
        memcpy(maten.entry[i].naam, ("3" + std::to_string(4 + i) + " ").c_str(), 3);
        maten.entry[i].link = i;
    }
    paar<maatrij>(map + "/DTMAAT", "maten,404", {"maat,NODUPS,I,1,1,I,2,2"}, {maten});
    paar<omzgrprec>(map + "/DTMTOM", "maatomschr.,10", {"mtom,NODUPS,I,1,1,I,2,2,I,3,3"}, {});
    paar<omzgrprec>(map + "/DTOMZGRP", "omzetgroepen,24", {"omzgr,NODUPS,I,1,2"}, {});
    paar<omzgrprec>(map + "/DTVVTAB", "voorverdelingen,424", {"vv,NODUPS,I,1,4"}, {});
    koersrec koers{};
    memcpy(koers.code, "GBP", 3);
    koers.koers = 12500;
    koers.eenheid = 1;
    koers.datum = 36526;
    paar<koersrec>(map + "/DTKOERS", "koersen,12", {"koers,NODUPS,C,1,3,I,11,12"}, {koers});
}

void maak_filialen(const std::string& naam) {
    std::string alles(sizeof(filiaalrec), '\0');
    for (uint8_t i = 1; i <= FILIALEN_HIER; i++) {
        filiaalrec r{};
        std::string geheim = geschud("Filiaal " + std::to_string(i));
        memcpy(r.naam, geheim.data(), geheim.size());
        r.nummer = i;
        alles += als_bytes(r);
    }
    schrijf_bestand(naam, alles);
}

} // namespace

Datamap::Datamap() {
    schrijf_bestand(bestand("DTSYS.TXT"), std::string(122952, '\0'));
    sysfirma f{};
    VASTIN(f.naam, "Modehuis De Proef");
    f.filialen = FILIALEN_HIER;
    f.maatstelsel = 1;
    sys(0, als_bytes(f));
    sysstatus s{};
    s.klantnummer = 4711;
    memcpy(s.release, RELEASE, 5);
    sys(9 * 64, als_bytes(s));
    sysinstel i{};
    memcpy(i.valuta, "EUR", 3);
    sys(14 * 64, als_bytes(i));
    auto valuta = [this](int nr, const char* code, const char* naam) {
        valutarec v{};
        memcpy(v.code, code, 3);
        v.decimalen = 2;
        VASTIN(v.naam, naam);
        sys(static_cast<size_t>(SYS_VALUTA.start + (nr - 1) * SYS_VALUTA.grootte), als_bytes(v));
    };
    valuta(1, "EUR", "Euro");
    valuta(2, "GBP", "Pond");
    valuta(3, "USD", "Dollar");
    auto code = [this](const Systabel& t, int nr, const char* naam) {
        tekst30 c{};
        VASTIN(c.tekst, naam);
        sys(static_cast<size_t>(t.start + (nr - 1) * t.grootte), als_bytes(c));
    };
    code(SYS_INKOOP_KOP, 1, "Inkoopcodes");
    code(SYS_INKOOP, 1, "Vooraf");
    code(SYS_INKOOP, 2, "Nabestelling");
    code(SYS_DEELSEIZOEN_KOP, 1, "Deelseizoenen");
    code(SYS_DEELSEIZOEN, 1, "Voorjaar");
    code(SYS_DEELSEIZOEN, 2, "Hoogzomer");
    maak_filialen(bestand("DTFILGEG.TXT"));
    ordparm p{};
    p.jaar = 2016;
    p.letter = 'Z';
    for (int item = 4; item <= 14; item++)
        p.kopvraag[item] = 1;
    parm(p);
    fs::create_directory(bestand("2016Z"));
    fs::create_directory(bestand("2016W"));
    maak_paren(pad());
    fs::create_directory(bestand("bin"));
    std::string menu = bestand("bin/zgbsmenu");
    schrijf_bestand(menu, "#!/bin/sh\necho \"menu: $1 $2 $3 $4\"\n");
    fs::permissions(menu, fs::perms::owner_all);
}

void Datamap::sys(size_t plaats, std::string_view bytes) {
    std::fstream f(bestand("DTSYS.TXT"), std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(static_cast<std::streamoff>(plaats));
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void Datamap::parm(const ordparm& p) {
    schrijf_bestand(bestand("ORDPARM.SYS"), als_bytes(p));
}

namespace {
std::string jrn(int leverancier, const std::string& seizoen) {
    char naam[40];
    snprintf(naam, sizeof naam, "%s/ORD%04d.JRN", seizoen.c_str(), leverancier);
    return naam;
}
} // namespace

void Datamap::journaal(const std::string& inhoud, int leverancier, const std::string& seizoen) {
    schrijf_bestand(bestand(jrn(leverancier, seizoen)), inhoud);
}

std::string Datamap::journaal(int leverancier, const std::string& seizoen) const {
    std::string naam = bestand(jrn(leverancier, seizoen));
    return fs::exists(naam) ? lees_bestand(naam) : "";
}

bool Datamap::bestaat(const std::string& naam) const {
    return fs::exists(bestand(naam));
}

std::string Datamap::restjes(const std::string& seizoen) const {
    std::string uit;
    for (const auto& e : fs::directory_iterator(bestand(seizoen)))
        if (e.path().extension() != ".JRN")
            uit += e.path().filename().string() + " ";
    return uit;
}

std::vector<std::string> Datamap::overgave(int sessie, const std::string& gebruiker) {
    gebruikerslot g{};
    std::string geheim = geschud(gebruiker);
    memcpy(g.username, geheim.data(), geheim.size());
    VASTIN(g.usertty, "pts/1");
    g.userstate = 2;
    g.userkind = 'B';
    VASTIN(g.userprog, "zgbestel");
    g.werkdatum = WERKDATUM;
    sys(slot(sessie), als_bytes(g));
    return {ZG_BINARY_DIR "/zgbestel", "zgbestel", gebruiker, std::to_string(sessie), "zgbsmenu"};
}

Opties Datamap::opties() const {
    Opties o;
    o.map = pad();
    o.klok = "2016-03-01 12:00:00";
    o.omgeving = {{"BIN", bestand("bin")}};
    return o;
}

std::string record(char tag, const void* body, size_t n) {
    return tag + std::string(static_cast<const char*>(body), n);
}

ordkop maak_kop(const std::string& omschrijving, uint16_t datum) {
    ordkop k{};
    k.leverancier = 12;
    k.jaar = 2016;
    k.seizoen = 'Z';
    k.orderdatum = datum;
    VASTIN(k.omschrijving, omschrijving);
    VASTIN(k.collectie, "ZOMER");
    k.koers = 10000;
    k.koerseenheid = 1;
    k.toeslag = 10000;
    return k;
}

std::string tekst(uint8_t soort, const std::string& inhoud) {
    std::string uit;
    for (size_t p = 0; p < inhoud.size(); p += 60) {
        ordtekst t{};
        t.soort = soort;
        VASTIN(t.tekst, std::string_view(inhoud).substr(p, 60));
        uit += record('T', &t, sizeof t);
    }
    return uit;
}

std::string maak_order(const ordkop& kop, const std::vector<Regel>& regels, const std::string& levering,
                       const std::string& betaling) {
    std::string uit = record('O', &kop, sizeof kop) + tekst(1, levering) + tekst(2, betaling);
    const Regel* vorige = nullptr;
    for (const Regel& r : regels) {
        if (!vorige || vorige->merk != r.merk || vorige->model != r.model) {
            ordmodel m{};
            m.merk = r.merk;
            VASTIN(m.model, r.model);
            m.maatsoort = r.maatsoort;
            m.artikelgroep = 10001;
            uit += record('M', &m, sizeof m);
        }
        orddessin d{};
        VASTIN(d.dessin, r.dessin);
        VASTIN(d.materiaal, "KATOEN");
        d.kleur = r.kleur;
        d.maten[0] = 2;
        uit += record('D', &d, sizeof d);
        ordmaat s{};
        s.maat = 1;
        s.bruto = s.netto = r.prijs;
        uit += record('S', &s, sizeof s);
        if (r.aantal) {
            ordlevt l{static_cast<uint16_t>(kop.orderdatum + 10), static_cast<uint16_t>(kop.orderdatum + 40)};
            uit += record('L', &l, sizeof l);
            ordfil f{};
            f.maat = 1;
            f.aantal = r.aantal;
            uit += record('F', &f, sizeof f);
        }
        vorige = &r;
    }
    return uit;
}

} // namespace zg::test
