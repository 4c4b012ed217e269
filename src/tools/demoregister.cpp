// The register of the demo firm, in the full registration: each line of its journals gets a series of its own with a price
// set, labels and codes, each order a number, by the routines of the order program itself. What the journals hold becomes
// what that program would have written.
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "sub/omserie.h"
#include "tools/demotekst.h"
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zg {
namespace {

namespace fs = std::filesystem;

// One record of a journal in memory.
struct Plek {
    std::string& bytes;
    size_t p = 0;
    char tag() const { return p < bytes.size() ? bytes[p] : 'X'; }
    template <class R> R lees() const {
        R uit;
        memcpy(&uit, &bytes.at(p + sizeof(R)) - sizeof(R) + 1, sizeof uit);
        return uit;
    }
    template <class R> void schrijf(const R& rec) { memcpy(&bytes[p + 1], &rec, sizeof rec); }
    void verder() { p += 1 + static_cast<size_t>(ord_lengte(tag())); }
};

// Prices, terms and quantities behind the line's record, up to the next line, model or order.
void lees_inhoud(Plek plek, orderregel* regel) {
    for (plek.verder(); strchr("STLF", plek.tag()); plek.verder()) {
        if (plek.tag() == 'S') {
            const auto s = plek.lees<ordmaat>();
            up_zet_maat(&regel->prijzen, s.maat, s.bruto, toeslag_erbij(s.netto, kop.korting));
        } else if (plek.tag() == 'L') {
            const auto l = plek.lees<ordlevt>();
            regel->termen.push_back({l.eerste, l.laatste, {}});
        } else if (plek.tag() == 'F') {
            const auto f = plek.lees<ordfil>();
            regel->termen.back().cellen.push_back({f.filiaal, f.maat, f.aantal});
            fmadd(&regel->nota_aantallen, f.filiaal, f.maat, f.aantal);
        }
    }
    regel->order_aantallen = regel->nota_aantallen;
}

void registreer(Plek* plek, const ordmodel& m, uint16_t nr) {
    orderregel regel;
    regel_wis(&regel);
    regel.model = m;
    regel.dessin = plek->lees<orddessin>();
    lees_inhoud(*plek, &regel);
    regelstam_lees(&regel);
    regel_balk(regel);
    order_prijscontext();
    up_inkoop_alle(&regel.prijzen);
    up_advies_laden(&regel.prijzen, regel.dessin.maten, regel.dessin.adviesblok);
    regel.dessin.geregistreerd = 1;
    regel.dessin.tijdstempel = nr;
    regel.dessin.volgnummer = serie_volgnummer_vrij(m.artikelgroep, regel.dessin.kleur);
    if (!regel.dessin.volgnummer || !serie_past(regel) || !serie_bewaar(&regel, true, regel.prijzen))
        demofout("a series of the demo data can't be written");
    serie_los();
    plek->schrijf(regel.dessin);
}

void registreer_journaal(const std::string& pad) {
    std::ifstream in(pad, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    ordmodel m{};
    uint16_t nr = 0;
    for (Plek plek{bytes}; plek.tag() != 'X'; plek.verder()) {
        if (plek.tag() == 'O') {
            kop = plek.lees<ordkop>();
            kop.ordernummer = iotab_teller(5, 9999999, ordnr_bezet);
            kop.status = 4;
            plek.schrijf(kop);
            ordnr_schrijf();
            nr = 0;
        } else if (plek.tag() == 'M') {
            m = plek.lees<ordmodel>();
        } else if (plek.tag() == 'D') {
            registreer(&plek, m, nr++);
        }
    }
    demobestand(pad, bytes.data(), bytes.size());
}

} // namespace

void demo_register() {
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
    iofil('O', 0, nullptr);
    registermodus = true;
    bestanden_open();
    std::vector<std::string> journalen;
    for (const auto& e : fs::recursive_directory_iterator("."))
        if (e.path().extension() == ".JRN")
            journalen.push_back(e.path().string().substr(2));
    std::sort(journalen.begin(), journalen.end());
    for (const std::string& pad : journalen)
        registreer_journaal(pad);
    demo_afbeeldingen();
    order_scherm_los();
    bestanden_sluit();
    iofil('C', 0, nullptr);
    iotab('C', &nr, nullptr, SYS_RECORD);
}

} // namespace zg
