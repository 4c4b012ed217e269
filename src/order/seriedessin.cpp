// The screen DESSIN.
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/serie.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "term/itemscherm.h"
#include "term/scherm.h"

namespace zg {
namespace {

// The items; their numbers are places in ORDPARM.SYS (dessinvraag + number).
enum Dessinitem {
    DES_MATERIAAL,
    DES_DESSIN,
    DES_KLEUR,
    DES_OMSCHRIJVING,
    DES_DOELGROEP,
    DES_INKOOPPLAN,
    DES_OPMERKING,
    DES_KENMERK,
    DES_REGTYPE,
    DES_CONSPRIJS,
    DES_AFBEELDING
};

constexpr int HOOGTE = 15; // one more with the feature code

bool nieuw;

// A series of the full registration has its labels under its colour and kind.
bool vrij() {
    return nieuw || !registermodus;
}

bool afbeelding_er() {
    return !nieuw && met_afbeelding();
}

// Without the feature code the rows below it move up.
int dessin_rij(int item) {
    return item + 1 - (item > DES_KENMERK && !heeft_kenmerk() ? 1 : 0);
}

// clang-format off
const Item ITEMS[] = {
    {DES_MATERIAAL,    &T_D_MATERIAAL,    toon_materiaal,    veld_materiaal},
    {DES_DESSIN,       &T_D_DESSIN,       toon_dessin,       veld_dessin},
    {DES_KLEUR,        &T_D_KLEUR,        toon_kleur,        veld_kleur,        vrij,    nullptr, nullptr, nullptr, mist_kleur},
    {DES_OMSCHRIJVING, &T_D_OMSCHRIJVING, toon_omschrijving, veld_omschrijving},
    {DES_DOELGROEP,    &T_D_DOELGROEP,    toon_doelgroep,    veld_doelgroep},
    {DES_INKOOPPLAN,   &T_D_INKOOPPLAN,   toon_inkoopplan,   veld_inkoopplan},
    {DES_OPMERKING,    &T_D_OPMERKING,    toon_dessintekst,  veld_dessintekst,  nullptr, nullptr, bekijk_dessintekst},
    {DES_KENMERK,      &T_D_KENMERK,      toon_kenmerk,      veld_kenmerk,      nullptr, heeft_kenmerk},
    {DES_REGTYPE,      &T_D_REGTYPE,      toon_regtype,      veld_regtype,      vrij},
    {DES_CONSPRIJS,    &T_D_CONSPRIJS,    toon_consprijs,    veld_consprijs},
    {DES_AFBEELDING,   &T_S_AFBEELDING,   toon_afbeelding,   veld_afbeelding,   nullptr, afbeelding_er, bekijk_afbeelding},
};
// clang-format on

// The number of a new series of the full registration, on the third row of the window.
bool met_volgnummer() {
    constexpr int RIJ = 3, KOLOM = 56;
    const std::string label = TXT(T_A_SERIENUMMER);
    char groep_kleur[16];
    const int breed = snprintf(groep_kleur, sizeof groep_kleur, "%5d.%3d.", regel_nu.model.artikelgroep,
                               regel_nu.dessin.kleur);
    const int veld = KOLOM + static_cast<int>(label.size());
    SCRPUT(A_LABEL, RIJ, KOLOM, "%s", label.c_str());
    SCRPUT(A_WAARDE, RIJ, veld, "%s", groep_kleur);
    const bool goed = vraag_volgnummer(RIJ, veld + breed);
    if (goed)
        vraag_afbeelding();
    else
        SCRCLREOL(RIJ, KOLOM);
    return goed;
}

bool scherm(const Itemverloop& verloop, bool* anders) {
    nieuw = verloop.wijze == Itemwijze::nieuw;
    serieveld_begin(nieuw);
    const int hoogte = HOOGTE + (heeft_kenmerk() ? 1 : 0);
    return itemscherm({&T_D_TITEL, SERIERIJ, SERIEKOLOM, hoogte, SERIEBREEDTE, hoogte - 2, DES_MATERIAAL,
                       dessin_rij, ITEMS},
                      verloop, anders);
}

} // namespace

bool serie_dessin(bool lezen) {
    bool anders = false;
    regelstam_lees(&regel_nu);
    scherm({lezen ? Itemwijze::lezen : Itemwijze::wijzigen}, &anders);
    return anders && !lezen;
}

bool serie_dessin_nieuw() {
    orddessin& d = regel_nu.dessin;
    regelstam_lees(&regel_nu);
    d.doelgroep = regelmerk.merk && regelmerk.doelgroep ? regelmerk.doelgroep : ' ';
    d.inkoopplan = gekozen_letter == TXT(T_LETTER_DOORLOPEND)[0] ? 0 : 1;
    d.regtype = regelgroep.regtype ? 1 : 0;
    bool anders = false;
    return scherm(
        {Itemwijze::nieuw, orderparameters.dessinvraag, true, -1, registermodus ? met_volgnummer : nullptr},
        &anders);
}

} // namespace zg
