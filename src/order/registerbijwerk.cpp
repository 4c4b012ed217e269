// What changes for all labels of a line, or of an order, at once: the header's purchase code and receiving location, the
// dates of a term, an order number that goes.
#include "order/etiketloop.h"
#include "order/meld.h"
#include "order/noot.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "shared/files.h"
#include "shared/report.h"
#include "sub/omserie.h"
#include "term/scherm.h"
#include <cstring>
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

// ---- the note of a broken-off one. It says which kind for which order: the header tells the values, so that it can be
// done again as often as need be.

constexpr Noot NOOT = {"LBW", "LBN"};
constexpr char MERK[8] = {'Z', 'G', 'L', 'A', 'B', 'E', 'L', '1'};

struct [[gnu::packed]] bijwerknoot {
    char merk[8];
    int32_t ordernummer;
    uint8_t soorten; // bits 0 code, 1 location
};

// The kinds that the note has for an order, 0 for none.
int genoteerd(const std::vector<uint8_t>& bytes, int32_t* ordernummer) {
    bijwerknoot n;
    if (bytes.size() != sizeof n)
        return 0;
    memcpy(&n, bytes.data(), sizeof n);
    *ordernummer = n.ordernummer;
    return memcmp(n.merk, MERK, sizeof MERK) == 0 ? n.soorten & (BIJ_CODE | BIJ_LOCATIE) : 0;
}

// The labels of one line.
Uitslag bijwerk_regel(const orderregel& regel, int soort) {
    serrec serie;
    if (!serie_neem(regel_serie(regel), &serie) ||
        !serie_mag(serie, serie_stempel(kop.orderdatum, regel.dessin.tijdstempel)))
        return Uitslag::overgeslagen;
    if (soort == BIJ_CODE)
        return wijzig_labels(serie, zet_inkoopcode);
    const uint8_t locatie = label_locatie(serie.serie.artikelgroep);
    return wijzig_labels(serie, [locatie](etiket* label) { return zet_locatie(label, locatie); });
}

using Regeldoen = std::function<void(int32_t nr, const orderregel* regel)>;

// The registered lines of an order of the journal; `kop` becomes its header.
void journaal_loop(int32_t ordernummer, const Regeldoen& doe) {
    ordloop l;
    ordrauw r;
    orderregel regel{};
    bool deze = false;
    int32_t nr = 0;
    ordloop_begin(&l, journaal->fd, 0, INT64_MAX);
    while (ord_verder(journaal, &l, &r)) {
        if (r.tag == 'O') {
            ordkop o;
            memcpy(&o, r.data + 1, sizeof o);
            deze = o.ordernummer == ordernummer && ordernummer > 0;
            if (deze)
                kop = o;
        } else if (r.tag == 'M') {
            memcpy(&regel.model, r.data + 1, sizeof regel.model);
        } else if (r.tag == 'D' && deze) {
            memcpy(&regel.dessin, r.data + 1, sizeof regel.dessin);
            nr++;
            if (regel.dessin.geregistreerd)
                doe(nr, &regel);
        }
    }
}

// Each kind into the labels of the lines that `loop` gives. False: the disk refused, told.
template <class F> bool bijwerk(int soorten, F loop) {
    constexpr int BREEDTE = 50;
    std::vector<std::string> overgeslagen;
    Uitslag uitslag = Uitslag::goed;
    WINOPEN1(11, (SCHERM.cols - BREEDTE) / 2 + 1, 4, BREEDTE);
    WINBOX(nullptr);
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_REG_ALLE_ETIKETTEN));
    SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_REG_ORDERREGEL));
    loop([&](int32_t nr, const orderregel* regel) {
        SCRPUT(A_WAARDE, 2, 14, "%5d", nr);
        SCRFLUSH(0);
        Uitslag deze = regel ? Uitslag::goed : Uitslag::overgeslagen;
        if (uitslag != Uitslag::geweigerd) { // a disk that refuses is not asked again for each line
            for (int soort : {BIJ_CODE, BIJ_LOCATIE})
                if (deze == Uitslag::goed && soorten & soort)
                    deze = bijwerk_regel(*regel, soort);
            uitslag = deze;
        }
        if (uitslag != Uitslag::goed)
            overgeslagen.push_back(regel_naam(nr, regel));
        serie_los();
    });
    serie_los();
    WINCLOSE();
    regels_overgeslagen(T_REG_OVERGESLAGEN, overgeslagen);
    return uitslag != Uitslag::geweigerd;
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

bool label_noteer(int* soorten) {
    std::vector<uint8_t> bytes;
    int32_t van = 0;
    if (IOEXISTS(wrk_naam(NOOT.ext).c_str()) && noot_lees(wrk_naam(NOOT.ext), &bytes))
        if (const int rest = genoteerd(bytes, &van); van == kop.ordernummer)
            *soorten |= rest; // of a change that the disk refused
    bijwerknoot n{{}, kop.ordernummer, static_cast<uint8_t>(*soorten)};
    memcpy(n.merk, MERK, sizeof MERK);
    bytes.resize(sizeof n);
    memcpy(bytes.data(), &n, sizeof n);
    return noot_schrijf(NOOT, bytes);
}

bool label_noot_lees(const std::string& pad, int32_t* ordernummer) {
    std::vector<uint8_t> bytes;
    return noot_lees(pad, &bytes) && genoteerd(bytes, ordernummer) != 0;
}

void label_bijwerk(int soorten) {
    const auto regels = [](const Regeldoen& doe) { regels_loop(doe); };
    if (bijwerk(soorten, regels))
        noot_wis(NOOT);
}

bool label_afmaken() {
    std::vector<uint8_t> bytes;
    const Nootstand stand = noot_open(NOOT, &bytes);
    if (stand != Nootstand::gelezen)
        return stand == Nootstand::geen;
    int32_t ordernummer = 0;
    const int soorten = genoteerd(bytes, &ordernummer);
    const ordkop bewaard = kop;
    const bool klaar =
        !soorten || bijwerk(soorten, [&](const Regeldoen& doe) { journaal_loop(ordernummer, doe); });
    kop = bewaard;
    if (klaar)
        noot_wis(NOOT);
    return klaar;
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
