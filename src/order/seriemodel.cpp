// The screen MODEL.
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/serie.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "term/itemscherm.h"

namespace zg {
namespace {

// The items; their numbers are places in ORDPARM.SYS (modelvraag + number).
enum Modelitem {
    MOD_MERK,
    MOD_MODEL,
    MOD_ARTGROEP,
    MOD_ETIKETSOORT,
    MOD_MAATSOORT,
    MOD_OPMERKING,
    MOD_AFBEELDING
};

constexpr int HOOGTE = 11;

bool nieuw;

// A series of the full registration has its labels under its group.
bool artgroep_vrij() {
    return nieuw || !registermodus;
}
bool maatsoort_vrij() {
    return nieuw;
}

bool afbeelding_er() {
    return !nieuw && met_afbeelding();
}

int model_rij(int item) {
    return item + 1;
}

// clang-format off
const Item ITEMS[] = {
    {MOD_MERK,        &T_M_MERK,        toon_merk,        veld_merk,        nullptr,        nullptr, nullptr, nullptr, mist_merk},
    {MOD_MODEL,       &T_M_MODEL,       toon_model,       veld_model,       nullptr,        nullptr, nullptr, nullptr, mist_model},
    {MOD_ARTGROEP,    &T_M_ARTGROEP,    toon_artgroep,    veld_artgroep,    artgroep_vrij,  nullptr, nullptr, nullptr, mist_artgroep},
    {MOD_ETIKETSOORT, &T_M_ETIKETSOORT, toon_etiketsoort, veld_etiketsoort},
    {MOD_MAATSOORT,   &T_M_MAATSOORT,   toon_maatsoort,   veld_maatsoort,   maatsoort_vrij, nullptr, nullptr, nullptr, mist_maatsoort},
    {MOD_OPMERKING,   &T_M_OPMERKING,   toon_modeltekst,  veld_modeltekst,  nullptr,        nullptr, bekijk_modeltekst},
    {MOD_AFBEELDING,  &T_S_AFBEELDING,  toon_afbeelding,  veld_afbeelding,  nullptr,        afbeelding_er, bekijk_afbeelding},
};
// clang-format on

const Itemscherm MODELSCHERM{&T_M_TITEL, SERIERIJ, SERIEKOLOM, HOOGTE, SERIEBREEDTE,
                             HOOGTE - 2, MOD_MERK, model_rij,  ITEMS};

bool scherm(const Itemverloop& verloop, bool* anders) {
    nieuw = verloop.wijze == Itemwijze::nieuw;
    serieveld_begin(nieuw);
    regelstam_lees(&regel_nu);
    const bool goed = itemscherm(MODELSCHERM, verloop, anders);
    regelstam_lees(&regel_nu); // the weights are those of brand and group
    return goed;
}

} // namespace

bool serie_model(bool lezen) {
    bool anders = false;
    scherm({lezen ? Itemwijze::lezen : Itemwijze::wijzigen}, &anders);
    return anders && !lezen;
}

bool serie_model_nieuw() {
    bool anders = false;
    return scherm({Itemwijze::nieuw, orderparameters.modelvraag, true}, &anders);
}

} // namespace zg
