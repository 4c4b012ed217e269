// What changes for all labels of a line, or of an order, at once: the header's purchase code and receiving location, the
// dates of a term, an order number that goes.
#include "order/etiketloop.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "shared/report.h"
#include "sub/omserie.h"
#include "term/scherm.h"
#include <string>

namespace zg {

namespace {

enum class Uitslag { goed, overgeslagen, geweigerd };

// The labels of a series for which `wijzig` changes something, written. Else it was told, and all stand.
Uitslag wijzig_labels(const serrec& serie, const std::function<bool(etiket*)>& wijzig) {
    std::vector<genummerd> oud, nieuw;
    const bool heel = etiketten_loop(serie, [&](int32_t nummer, const etiket& label) {
        etiket l = label;
        if (!wijzig(&l))
            return;
        oud.push_back({nummer, label});
        nieuw.push_back({nummer, l});
    });
    if (!heel) {
        ioeti_schademeld(serie.serie);
        return Uitslag::overgeslagen;
    }
    int32_t kop_nu = serie.etiketkop;
    etiketwijziging wijziging(serie.serie, &kop_nu);
    ioeti_merktoets();
    for (size_t i = 0; i < oud.size(); i++)
        if (!wijziging.schrijf(oud[i], nieuw[i].label))
            return Uitslag::geweigerd;
    return Uitslag::goed;
}

bool zet_inkoopcode(etiket* label) {
    const uint8_t was = label->inkoopcode;
    label->inkoopcode = kop.inkoopcode;
    return label_van_datum(*label) && was != kop.inkoopcode;
}

bool zet_locatie(etiket* label, uint8_t locatie) {
    const etiket was = *label;
    label_zet_locatie(label, locatie);
    return label->status == ETI_ORDER && label_van_order(*label) &&
           (was.locatie != label->locatie || was.locatie_aan != label->locatie_aan);
}

// The labels of one line.
Uitslag bijwerk_regel(const orderregel& regel, int soort) {
    serrec serie;
    if (!serie_neem(regel_serie(regel), &serie) ||
        !serie_mag(serie, serie_stempel(kop.orderdatum, regel.dessin.tijdstempel)))
        return Uitslag::overgeslagen;
    if (soort == 1)
        return wijzig_labels(serie, zet_inkoopcode);
    const uint8_t locatie = label_locatie(serie.serie.artikelgroep);
    return wijzig_labels(serie, [locatie](etiket* label) { return zet_locatie(label, locatie); });
}

} // namespace

std::string regel_naam(int32_t nr, const orderregel* regel) {
    return std::to_string(nr) + (regel ? ": " + serie_tekst(regel_serie(*regel)) : "");
}

void regels_overgeslagen(const Tekst& boven, const std::vector<std::string>& regels) {
    constexpr size_t REGEL = 60;
    if (regels.empty())
        return;
    std::string namen[2];
    size_t nr = 0;
    for (const std::string& r : regels) {
        if (namen[nr].size() + r.size() + 2 > REGEL && ++nr == std::size(namen)) {
            namen[1] += " ...";
            break;
        }
        namen[nr] += (namen[nr].empty() ? "" : ", ") + r;
    }
    ALARMBOX(TXT(boven), namen[0].c_str(), namen[1].empty() ? nullptr : namen[1].c_str());
}

void label_bijwerk(int soort) {
    constexpr int BREEDTE = 50;
    WINOPEN1(11, (SCHERM.cols - BREEDTE) / 2 + 1, 4, BREEDTE);
    WINBOX(nullptr);
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_REG_ALLE_ETIKETTEN));
    SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_REG_ORDERREGEL));
    std::vector<std::string> overgeslagen;
    Uitslag uitslag = Uitslag::goed;
    regels_loop([&](int32_t nr, const orderregel* regel) {
        SCRPUT(A_WAARDE, 2, 14, "%5d", nr);
        SCRFLUSH(0);
        if (uitslag != Uitslag::geweigerd) // a disk that refuses is not asked again for each line
            uitslag = regel ? bijwerk_regel(*regel, soort) : Uitslag::overgeslagen;
        if (uitslag != Uitslag::goed)
            overgeslagen.push_back(regel_naam(nr, regel));
        serie_los();
    });
    serie_los();
    WINCLOSE();
    regels_overgeslagen(T_REG_OVERGESLAGEN, overgeslagen);
}

void label_los(const seriesleutel& sleutel) {
    serrec serie;
    if (kop.ordernummer != 0 && serie_neem(sleutel, &serie))
        wijzig_labels(serie, [](etiket* label) {
            const bool deze = label->ordernummer == kop.ordernummer;
            label->ordernummer = 0;
            return deze;
        });
    serie_los();
}

bool levering_verzet(const orderregel& regel, uint16_t oud_tot, uint16_t van, uint16_t tot) {
    return wijzig_labels(regel.serie, [&](etiket* label) {
               const bool deze =
                   label->status == ETI_ORDER && label_van_order(*label) && label->levering_tot == oud_tot;
               label->levering_van = van;
               label->levering_tot = tot;
               return deze;
           }) == Uitslag::goed;
}

} // namespace zg
