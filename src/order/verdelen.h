// Module verdelen: spreading quantities over the branches by the rules of the article group. Branches are branch
// indexes; firma.filialen stands for none. The deficits and weights of the model in hand are kept until another one
// comes.
#pragma once
#include "order/regel.h"

namespace zg {

// Take a model (15 bytes; brand and size type belong to the key too) with its excluded branches: when it isn't the
// one in force, an empty table of deficits and new weights from the article group (regelgroep).
void verdeel_start(const ordmodel& m, const uint8_t* uitgesloten);
void verdeel_vrij();
// Book pieces (negative: back) of a size index for a branch. Before a start: INTERNAL 1.
void verdeel_boek(int filiaal, int maat, int64_t aantal);
int verdeel_beste(int a, int b, int maat); // -1 is none
// The memory of a line's model anew, from what stands: the other lines of the order with its brand, name and size
// type, and the line's own terms but `tot` (0: all of them count).
void verdeel_herbouw(const orderregel& regel, const ors_ingang* eigen, uint16_t tot);

int bronrij(const aantalmatrix& matrix);
int restrij(int bron);
// All of the source's row over the branches, in bar order. The memory must be that of the line.
void auto_verdelen(aantalmatrix* matrix);

} // namespace zg
