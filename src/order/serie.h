// A line's series on the order: the screens of model and dessin, prices and sizes, adding and duplicating a line. All on
// regel_nu. They give up what was entered when they answer false: the caller loads the cursor's line again.
#pragma once
#include "order/regel.h"

namespace zg {

// New content to be inserted as a line, with a model of its own in front.
bool serie_toevoegen();
// The same from the line in hand (regel_dupliceer has been over it). *model_veranderd: it needs a model of its own, or
// else joins the one it came from.
bool serie_dupliceren(bool* model_veranderd);
// A series of the register, chosen by number or by brand and model, as content to be inserted as a line with a model of
// its own in front. Its lock is held when the answer is true; *oud: its prices as they are on file.
bool serie_bijbestellen(prijsrijen* oud);
// True when the line changed. With `lezen` it is only looked at.
bool serie_model(bool lezen);
bool serie_dessin(bool lezen);
bool serie_prijzen(bool lezen);

// The sizes of a line that is opened for changing are those that have prices on file, or quantities; told when the line
// has another set. True when it was corrected.
bool serie_maten_kloppend();

// Between the files of this module.

inline constexpr int SERIERIJ = 6, SERIEKOLOM = 1, SERIEBREEDTE = 80; // of their windows

// The screens for a new line; false when broken off.
bool serie_model_nieuw();
bool serie_dessin_nieuw();
// Sizes, prices and quantities of a line that has none of them.
bool serie_vul_nieuw();
// Prices and sizes of a duplicate, which has those of its line.
bool serie_prijzen_dup();

} // namespace zg
