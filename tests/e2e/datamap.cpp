#include "e2e/datamap.h"
#include "term/gesprek.h"
#include <fstream>

namespace zg::test {

namespace fs = std::filesystem;

Datamap::Datamap() : DemoMap("tests/e2e/proef") {
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

namespace {
std::string jrn(int leverancier, const std::string& seizoen = "2016Z") {
    return seizoen + vorm("/ORD%04d.JRN", leverancier);
}
} // namespace

void Datamap::journaal(const std::string& inhoud, int leverancier, const std::string& seizoen) {
    schrijf_bestand(bestand(jrn(leverancier, seizoen)), inhoud);
}

std::string Datamap::journaal(int leverancier) const {
    return lees_bestand(bestand(jrn(leverancier)));
}

bool Datamap::bestaat(const std::string& naam) const {
    return fs::exists(bestand(naam));
}

std::string Datamap::restjes() const {
    std::string uit;
    for (const auto& e : fs::directory_iterator(bestand("2016Z")))
        if (e.path().extension() != ".JRN")
            uit += e.path().filename().string() + " ";
    return uit;
}

std::vector<std::string> Datamap::overgave(int sessie, const char* gebruiker) {
    return test::overgave(*this, sessie, gebruiker);
}

Opties Datamap::opties() const {
    Opties o = demo_opties(*this);
    o.omgeving = {{"BIN", bestand("bin")}};
    return o;
}

void met_locatie(const DemoMap& map) {
    std::string sys = lees_bestand(map.bestand("DTSYS.TXT"));
    sys[32] = static_cast<char>(sys[32] | 4);
    schrijf_bestand(map.bestand("DTSYS.TXT"), sys);
    std::string jrn = lees_bestand(map.bestand("2016Z/ORD0099.JRN"));
    jrn.at(1 + offsetof(ordkop, edi_soort)) = 3;
    schrijf_bestand(map.bestand("2016Z/ORD0099.JRN"), jrn);
}

ordkop kop_van(const std::string& jrn) {
    ordkop k{};
    if (jrn.size() > sizeof k)
        memcpy(&k, jrn.data() + 1, sizeof k);
    return k;
}

ordkop maak_kop(const std::string& omschrijving, uint16_t datum) {
    ordkop k = kop_op(datum);
    VASTIN(k.omschrijving, omschrijving);
    VASTIN(k.collectie, "ZOMER");
    k.toeslag = 10000;
    return k;
}

std::string maak_order(const ordkop& kop, const std::vector<Regel>& regels, const std::string& levering,
                       const std::string& betaling) {
    std::string uit = record('O', kop) + tekst(1, levering) + tekst(2, betaling);
    const Regel* vorige = nullptr;
    for (const Regel& r : regels) {
        if (!vorige || vorige->merk != r.merk || vorige->model != r.model) {
            ordmodel m{};
            m.merk = r.merk;
            VASTIN(m.model, r.model);
            m.maatsoort = r.maatsoort;
            m.artikelgroep = 10001;
            uit += record('M', m);
        }
        orddessin d{};
        VASTIN(d.dessin, r.dessin);
        VASTIN(d.materiaal, "KATOEN");
        d.kleur = r.kleur;
        d.maten[0] = 2;
        uit += record('D', d);
        ordmaat s{};
        s.maat = 1;
        s.bruto = s.netto = r.prijs;
        uit += record('S', s);
        if (r.aantal) {
            ordlevt l{static_cast<uint16_t>(kop.orderdatum + 10), static_cast<uint16_t>(kop.orderdatum + 40)};
            uit += record('L', l);
            ordfil f{};
            f.maat = 1;
            f.aantal = r.aantal;
            uit += record('F', f);
        }
        vorige = &r;
    }
    return uit;
}

} // namespace zg::test
