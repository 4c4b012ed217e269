// A line's series on the order: the model and dessin screens, adding and duplicating a line, its prices and sizes.
#pragma once
#include "order/regel.h"

namespace zg {

// New content in regel_nu: true when it is to be inserted as a line. Otherwise regel_nu is worth nothing: the caller
// loads the cursor's line again. met_model: with a model of its own in front.
bool serie_toevoegen(bool* met_model);
bool serie_dupliceren(bool* model_veranderd);
// On regel_nu: true when it changed. With `lezen` it is only looked at.
bool serie_model(bool lezen);
bool serie_dessin(bool lezen);
bool serie_prijzen(bool lezen);

} // namespace zg
