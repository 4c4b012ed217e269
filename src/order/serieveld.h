// The fields of a line on the screens MODEL, DESSIN and DUPLICEREN MODEL: how each looks and how it is entered, in a row
// of the current window, on regel_nu. The master data behind them is regelmerk and regelgroep.
#pragma once
#include "order/regel.h"

namespace zg {

// Before a screen runs: `nieuw` is a line from nothing. Then the group brings its defaults along, and a brand in another
// size system may be chosen.
void serieveld_begin(bool nieuw);

void toon_merk(int rij);
void toon_model(int rij);
void toon_artgroep(int rij);
void toon_etiketsoort(int rij);
void toon_maatsoort(int rij);
void toon_modeltekst(int rij);
void toon_materiaal(int rij);
void toon_dessin(int rij);
void toon_kleur(int rij);
void toon_volgnummer(int rij);
void toon_omschrijving(int rij);
void toon_doelgroep(int rij);
void toon_inkoopplan(int rij);
void toon_dessintekst(int rij);
void toon_kenmerk(int rij);
void toon_regtype(int rij);
void toon_consprijs(int rij);

// True when it changed; the key is in SCHERM.laatste. Keys allowed before leave the field.
bool veld_merk(int rij);
bool veld_model(int rij);
bool veld_artgroep(int rij);
bool veld_etiketsoort(int rij);
bool veld_maatsoort(int rij);
bool veld_modeltekst(int rij);
bool veld_materiaal(int rij);
bool veld_dessin(int rij);
bool veld_kleur(int rij);
bool veld_omschrijving(int rij);
bool veld_doelgroep(int rij);
bool veld_inkoopplan(int rij);
bool veld_dessintekst(int rij);
bool veld_kenmerk(int rij);
bool veld_regtype(int rij);
bool veld_consprijs(int rij);
bool veld_volgnummer(int rij);
void bekijk_modeltekst();
void bekijk_dessintekst();

// The picture of the line's series, where there are pictures. Its link is written at once: the line itself stays as it is.
bool met_afbeelding();
void toon_afbeelding(int rij);
bool veld_afbeelding(int rij);
void bekijk_afbeelding();
// Of a duplicate, which begins without one (its colour is another): chosen first, linked when the new line is whole. False: refused, told.
void dup_afbeelding_begin();
void toon_dup_afbeelding(int rij);
bool veld_dup_afbeelding(int rij);
bool dup_afbeelding_koppelen();
// "Afbeelding aan serie koppelen" of a new series, where the installation wants that.
void vraag_afbeelding();
// Before the series gets another brand: a link to a picture is told and goes. False: the brand is to stay.
bool merk_los_van_afbeelding();

// What no line can do without.
bool mist_merk();
bool mist_model();
bool mist_artgroep();
bool mist_maatsoort(); // also one without sizes in the line's size system
bool mist_kleur();
bool mist_volgnummer(); // of a new series in the full registration
// The sequence number of a new series of the full registration: the lowest free one proposed, and the one that was taken
// reserved. False, and nothing reserved, when it was left, or none is free (told).
bool vraag_volgnummer(int rij, int kolom);
// Has the line's group feature codes?
bool heeft_kenmerk();
// Does the brand exist? Then regelmerk is it.
bool merk_bestaat(uint16_t merk);

} // namespace zg
