// The picture of a line's series on the order's screens: the item of MODEL, DESSIN and DUPLICEREN MODEL, the question
// behind a new series, the one before another brand. See order/serieveld.h.
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "sub/afb_hdl.h"
#include "sub/teksten.h"
#include "term/prompt.h"

namespace zg {
namespace {

constexpr int WAARDE = 21;
constexpr int VRAAGRIJ = 14, VRAAGHOOGTE = 3, MERKHOOGTE = 6, BREEDTE = 60;

std::string gekozen; // of a duplicate, which has no number yet

void toon(int rij, const std::string& naam) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-45.45s", naam.c_str());
}

} // namespace

bool met_afbeelding() {
    return registermodus && afb_in_gebruik();
}

void toon_afbeelding(int rij) {
    uint16_t merk = 0;
    toon(rij, afb_van(regel_serie(regel_nu), &merk));
}

// The link is not the line's: it is written here, and the line hasn't changed.
bool veld_afbeelding(int rij) {
    uint16_t merk = 0;
    const seriesleutel serie = regel_serie(regel_nu);
    std::string naam = afb_van(serie, &merk);
    if (afb_veld(rij, WAARDE, serie, regel_nu.model.merk, &naam))
        naam.empty() ? afb_wis(serie) : afb_schrijf(serie, naam, regel_nu.model.merk);
    return false;
}

void bekijk_afbeelding() {
    afb_tonen(regel_serie(regel_nu));
}

void dup_afbeelding_begin() {
    gekozen.clear();
}

void toon_dup_afbeelding(int rij) {
    toon(rij, gekozen);
}

bool veld_dup_afbeelding(int rij) {
    return afb_veld(rij, WAARDE, regel_serie(regel_nu), regel_nu.model.merk, &gekozen);
}

bool dup_afbeelding_koppelen() {
    return !met_afbeelding() || gekozen.empty() ||
           afb_schrijf(regel_serie(regel_nu), gekozen, regel_nu.model.merk);
}

void vraag_afbeelding() {
    if (!met_afbeelding() || !orderparameters.afbeelding)
        return;
    WINOPEN1(VRAAGRIJ, 1, VRAAGHOOGTE, BREEDTE);
    WINBOX(" %s ", TXT(T_AFB_TITEL));
    const bool ja = JNVRAAG(1, 2, "[-]%s", TXT(T_AFB_KOPPELEN)) != 0;
    WINCLOSE();
    if (ja)
        afb_koppelen(regel_serie(regel_nu), regel_nu.model.merk);
}

bool merk_los_van_afbeelding() {
    const seriesleutel serie = regel_serie(regel_nu);
    if (!registermodus || !afb_heeft(serie))
        return true;
    WINOPEN1(VRAAGRIJ, 1, MERKHOOGTE, BREEDTE);
    WINBOX(" %s ", TXT(T_AFB_TITEL));
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_AFB_MERK_1));
    SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_AFB_MERK_2));
    SCRPUT(A_LABEL, 3, 2, "%s", TXT(T_AFB_MERK_3));
    const bool ja = JNVRAAG(4, 2, "[-]%s", TXT(T_AFB_MERK_WIJZIGEN)) != 0;
    WINCLOSE();
    return ja && afb_wis(serie);
}

} // namespace zg
