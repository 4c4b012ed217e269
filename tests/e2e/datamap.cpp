#include "e2e/datamap.h"
#include "term/gesprek.h"

namespace zg::test {

namespace fs = std::filesystem;

Datamap::Datamap() : DemoMap("tests/e2e/proef") {
    fs::create_directory(bestand("bin"));
    std::string menu = bestand("bin/zgbsmenu");
    schrijf_bestand(menu, "#!/bin/sh\necho \"menu: $1 $2 $3 $4\"\n");
    fs::permissions(menu, fs::perms::owner_all);
}

void Datamap::sys(size_t plaats, std::string_view bytes) {
    wijzig_bestand(bestand("DTSYS.TXT"), plaats, bytes);
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
    const char vlaggen = lees_bestand(map.bestand("DTSYS.TXT")).at(32);
    wijzig_bestand(map.bestand("DTSYS.TXT"), 32, std::string(1, static_cast<char>(vlaggen | 4)));
    wijzig_bestand(map.bestand("2016Z/ORD0099.JRN"), 1 + offsetof(ordkop, edi_soort), "\3");
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

std::string rec_model(int merk, const std::string& naam, int maatsoort, int32_t groep) {
    ordmodel m{};
    m.merk = static_cast<uint16_t>(merk);
    VASTIN(m.model, naam);
    m.maatsoort = static_cast<uint8_t>(maatsoort);
    m.artikelgroep = groep;
    return record('M', m);
}

orddessin een_dessin(const std::string& naam, int kleur, int maten) {
    orddessin d{};
    VASTIN(d.dessin, naam);
    d.kleur = static_cast<uint16_t>(kleur);
    for (int maat = 1; maat <= maten; maat++)
        d.maten[maat / 8] = static_cast<uint8_t>(d.maten[maat / 8] | 1 << maat % 8);
    return d;
}

std::string maak_order(const ordkop& kop, const std::vector<Regel>& regels, const std::string& levering,
                       const std::string& betaling) {
    std::string uit = record('O', kop) + tekst(1, levering) + tekst(2, betaling);
    const Regel* vorige = nullptr;
    for (const Regel& r : regels) {
        if (!vorige || vorige->merk != r.merk || vorige->model != r.model)
            uit += rec_model(r.merk, r.model, r.maatsoort);
        orddessin d = een_dessin(r.dessin, r.kleur, 1);
        VASTIN(d.materiaal, "KATOEN");
        uit += record('D', d) + rec_maat(1, r.prijs, r.prijs);
        if (r.aantal)
            uit += rec_term(kop.orderdatum + 10, kop.orderdatum + 40) + rec_cel(0, 1, r.aantal);
        vorige = &r;
    }
    return uit;
}

} // namespace zg::test
