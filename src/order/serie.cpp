// A new line from nothing, see order/serie.h.
#include "order/serie.h"
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "term/prompt.h"
#include <cstring>

namespace zg {
namespace {

// Brand of a new line: that of the line it is added behind, else the supplier's number, if that is a brand's.
uint16_t eerste_merk(uint16_t vorige) {
    for (uint16_t merk : {vorige, kop.leverancier})
        if (merk_bestaat(merk))
            return merk;
    return 0;
}

// The sizes that have prices on file, or quantities.
void maten_op_bestand(const orderregel& regel, uint8_t* maten) {
    memset(maten, 0, MAATBYTES);
    for (int maat = 1; maat <= MATEN; maat++)
        if (up_aanwezig(regel.prijzen.bruto, maat))
            maat_aan(maten, maat);
    for (const levterm& term : regel.termen)
        for (const levcel& cel : term.cellen)
            maat_aan(maten, cel.maat);
}

} // namespace

bool serie_toevoegen() {
    const uint16_t vorige = regel_bereikbaar ? regel_nu.model.merk : uint16_t{0};
    regel_wis(&regel_nu);
    regel_is_nieuw = true;
    regel_nu.model.merk = eerste_merk(vorige);
    return serie_model_nieuw() && serie_dessin_nieuw() && serie_vul_nieuw();
}

bool serie_maten_kloppend() {
    uint8_t maten[MAATBYTES];
    maten_op_bestand(regel_nu, maten);
    regelstam_lees(&regel_nu);
    const uint8_t geen[MAATBYTES] = {};
    // Nothing on file for any size tells nothing.
    if (registermodus || memcmp(maten, geen, MAATBYTES) == 0 ||
        memcmp(maten, regel_nu.dessin.maten, MAATBYTES) == 0)
        return false;
    memcpy(regel_nu.dessin.maten, maten, MAATBYTES);
    prijsrijen& prijzen = regel_nu.prijzen;
    for (int maat = 1; maat <= MATEN; maat++) // pieces without a price: to be priced
        if (maat_in(maten, maat) && !up_aanwezig(prijzen.bruto, maat))
            for (prijsrij* rij : {&prijzen.bruto, &prijzen.netto, &prijzen.inkoop})
                up_zet(rij, maat, PRIJS_ONBEKEND);
    if (regel_balk(regel_nu))
        regel_advies(&regel_nu);
    MELDBOX(MELD_WAARSCHUWING, TXT(T_MATEN_NIET_CORRECT), nullptr, nullptr);
    return true;
}

} // namespace zg
