// The screen DUPLICEREN MODEL: a line made from the line in hand, in another colour, under another name, in another
// size type.
#include "order/aantallen.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/serie.h"
#include "order/serieveld.h"
#include "order/teksten.h"
#include "shared/iotab.h"
#include "term/itemscherm.h"
#include "term/vast.h"

namespace zg {
namespace {

enum Dupitem {
    DUP_ARTGROEP = 0,
    DUP_KLEUR = 1,
    DUP_VOLGNUMMER = 2,
    DUP_MAATSOORT = 3,
    DUP_MERK = 4,
    DUP_MODEL = 5, // from here on the installation says what is asked
    DUP_MATERIAAL = 6,
    DUP_DESSIN = 7,
    DUP_KENMERK = 8,
    DUP_REGTYPE = 9,
    DUP_AFBEELDING = 10,
    DUP_CONSPRIJS = 11,
    DUP_AANTAL
};

constexpr int HOOGTE = 16;      // one more with pictures
constexpr int MODELRECORD = 16; // system record with the bits of what is asked

// A blank row parts the series from what is its model's.
int dup_rij(int item) {
    return item + 1 + (item > DUP_MAATSOORT ? 1 : 0) - (item > DUP_AFBEELDING && !met_afbeelding() ? 1 : 0);
}

bool nooit() {
    return false;
}

// clang-format off
const Item ITEMS[] = {
    {DUP_ARTGROEP,   &T_DUP_ARTGROEP,   toon_artgroep,   veld_artgroep,  nooit,         nullptr, nullptr, nullptr, mist_artgroep},
    {DUP_KLEUR,      &T_DUP_KLEUR,      toon_kleur,      veld_kleur,     nooit,         nullptr, nullptr, nullptr, mist_kleur},
    {DUP_VOLGNUMMER, &T_DUP_VOLGNUMMER, toon_volgnummer, veld_volgnummer, nooit,        nullptr, nullptr, nullptr, mist_volgnummer},
    {DUP_MAATSOORT,  &T_DUP_MAATSOORT,  toon_maatsoort,  veld_maatsoort, nullptr,       nullptr, nullptr, nullptr, mist_maatsoort},
    {DUP_MERK,       &T_DUP_MERK,       toon_merk},
    {DUP_MODEL,      &T_DUP_MODEL,      toon_model,      veld_model,     nullptr,       nullptr, nullptr, nullptr, mist_model},
    {DUP_MATERIAAL,  &T_DUP_MATERIAAL,  toon_materiaal,  veld_materiaal},
    {DUP_DESSIN,     &T_DUP_DESSIN,     toon_dessin,     veld_dessin},
    {DUP_KENMERK,    &T_DUP_KENMERK,    toon_kenmerk,    veld_kenmerk,   heeft_kenmerk},
    {DUP_REGTYPE,    &T_DUP_REGTYPE,    toon_regtype,    veld_regtype},
    {DUP_AFBEELDING, &T_DUP_AFBEELDING, toon_dup_afbeelding, veld_dup_afbeelding, nullptr, met_afbeelding},
    {DUP_CONSPRIJS,  &T_DUP_CONSPRIJS,  toon_consprijs,  veld_consprijs},
};
// clang-format on

bool vraag_wat() {
    Slot<sysmodel> record{MODELRECORD, {}};
    iotab('R', &record, SYS_RECORD);
    uint8_t vraag[DUP_AANTAL] = {};
    vraag[DUP_ARTGROEP] = vraag[DUP_KLEUR] = 1;
    for (int item = DUP_MODEL; item < DUP_AANTAL; item++)
        vraag[item] = record.r.velden >> (item - DUP_MODEL) & 1;
    bool anders = false;
    const int hoogte = HOOGTE + (met_afbeelding() ? 1 : 0);
    const Itemscherm scherm{&T_DUP_TITEL, SERIERIJ,     SERIEKOLOM, hoogte, SERIEBREEDTE,
                            hoogte - 2,   DUP_ARTGROEP, dup_rij,    ITEMS};
    // ESC before there is another series gives it up.
    return itemscherm(scherm, {Itemwijze::nieuw, vraag, true, DUP_VOLGNUMMER}, &anders);
}

} // namespace

bool serie_dupliceren(bool* model_veranderd) {
    const ordmodel oud = regel_nu.model;
    regel_is_nieuw = true;
    regelstam_lees(&regel_nu);
    serieveld_begin(false);
    dup_afbeelding_begin();
    if (!vraag_wat())
        return false;
    regelstam_lees(&regel_nu);
    const ordmodel& m = regel_nu.model;
    const bool andere_maten = m.maatsoort != oud.maatsoort;
    *model_veranderd =
        andere_maten || m.artikelgroep != oud.artikelgroep || VASTTEKST(m.model) != VASTTEKST(oud.model);
    const bool goed = andere_maten ? serie_vul_nieuw() : serie_prijzen_dup() && neem_over() && aantal_nieuw();
    return goed && dup_afbeelding_koppelen();
}

} // namespace zg
