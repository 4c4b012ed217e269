// The master data behind a line, see order/regelstam.h.
#include "order/regelstam.h"
#include "order/meld.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include "sub/omlev.h"
#include <cstring>
#include <set>

namespace zg {

namespace {
// The brand's excluded branches as they were read last. A copy: a screen that holds them may have a maintenance screen
// above it, after which the brand is read anew.
uint8_t uitgesloten[sizeof regelmerk.uitgesloten];
} // namespace

void regelstam_lees(orderregel* regel) {
    leesmerk(dtmerk, &regelmerk, regel->model.merk);
    memset(uitgesloten, 0, sizeof uitgesloten);
    leesart(dtart, &regelgroep, regel->model.artikelgroep);
    regel->gewichten.assign(firma.filialen + size_t{1}, 0);
    unsigned som = 0;
    for (int f = 0; f < firma.filialen; f++) {
        const bool uit = fil_in(regel_uitgesloten(), f);
        const unsigned w = uit || regelgroep.artikelgroep == 0 ? 0 : regelgroep.perfiliaal[f];
        regel->gewichten[static_cast<size_t>(f)] = static_cast<uint16_t>(w);
        som += w;
    }
    regel->gewichten[firma.filialen] = static_cast<uint16_t>(som);
}

uint8_t eigen_stelsel(const ordmodel& m, const merkrec& merk) {
    relatie_lees(kop.leverancier, &leverancier);
    return mtstelsel(merk.merk == m.merk && merk.maatstelsel ? merk.maatstelsel : leverancier.maatstelsel);
}

uint8_t model_stelsel(const ordmodel& m, const merkrec& merk) {
    const uint8_t stelsel = eigen_stelsel(m, merk), standaard = mtstelsel(0);
    return stelsel == standaard || maatsoort_gevuld(stelsel, m.maatsoort) ? stelsel : standaard;
}

bool stelsel_in_gebruik(uint16_t merk, uint16_t nummer) {
    if (!werk || aantal_regels == 0)
        return false;
    if (merk == 0)
        return nummer == kop.leverancier;
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, werk->fd, 0, INT64_MAX);
    while (ord_verder(werk, &l, &r)) {
        ordmodel m;
        if (r.tag != 'M')
            continue;
        memcpy(&m, r.data + 1, sizeof m);
        if (m.merk == merk)
            return true;
    }
    return false;
}

bool regel_balk(const orderregel& regel) {
    balk_open(model_stelsel(regel.model, regelmerk), regel.model.maatsoort, regel.dessin.maten);
    mtinfo info{};
    return maatbalk && mtread(maatbalk, 'F', &info, 1) == 1;
}

bool stukken_op_balk(const orderregel& regel) {
    static std::set<std::string> verteld;
    uint8_t maten[MAATBYTES];
    balk_maten(maten);
    for (const levterm& term : regel.termen)
        for (const levcel& cel : term.cellen)
            if (!maat_in(maten, cel.maat)) {
                const std::string serie = serie_tekst(regel.serie.serie);
                char tekst[80];
                snprintf(tekst, sizeof tekst, TXT(T_REG_BUITEN_BALK), serie.c_str(), regel.model.maatsoort);
                if (verteld.insert(serie).second)
                    ALARMBOX(tekst, TXT(T_REGEL_ONTOEGANKELIJK));
                return false;
            }
    return true;
}

void regel_advies(orderregel* regel) {
    uint8_t blok[ADVIESBLOK]; // loading raises prices in it; what is stored stays
    memcpy(blok, regel->dessin.adviesblok, sizeof blok);
    up_advies_laden(&regel->prijzen, regel->dessin.maten, blok);
}

int regel_magazijn() {
    int index;
    if (regelgroep.artikelgroep == 0 || regelgroep.magazijn == GEEN_MAGAZIJN ||
        !iofil_index(regelgroep.magazijn, &index) || index >= firma.filialen)
        return -1;
    return index;
}

const uint8_t* regel_uitgesloten() {
    if (regelmerk.merk)
        memcpy(uitgesloten, regelmerk.uitgesloten, sizeof uitgesloten);
    return uitgesloten;
}

} // namespace zg
