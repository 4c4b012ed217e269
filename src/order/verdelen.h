// Module verdelen: spreading quantities over the branches by the rules of the article group. Branches are branch
// indexes; firma.filialen stands for none.
//
// The memory is what each branch has of the model in hand, per size or of all sizes together. Its deficit follows: of
// every piece that was given, to whomever, a branch gains its weight, and who got it loses the sum of the weights. So
// its share approaches its weight, over sizes, colours and lines. One memory stands until another model comes.
#pragma once
#include "order/regel.h"

namespace zg {

// Take a model (brand, name and size type) with its excluded branches: when it isn't the one in force, an empty memory
// and new weights from the article group (regelgroep).
void verdeel_start(const ordmodel& m, const uint8_t* uitgesloten);
void verdeel_vrij();
// Book pieces (negative: back) of a size index for a branch. Before a start: INTERNAL 1.
void verdeel_boek(int filiaal, int maat, int64_t aantal);
// The memory of a line's model anew, from what stands: the other lines of the order with its brand, name and size
// type, and the line's own terms but `tot` (0: all of them count). `eigen` is the line in the work file, null for one
// that isn't there yet.
void verdeel_herbouw(const orderregel& regel, const ors_ingang* eigen, uint16_t tot);

// The branch that is divided: the one that holds all, else the warehouse; firma.filialen: none. The branch that takes
// what nobody gets.
int bronrij(const aantalmatrix& matrix);
int restrij(int bron);
// All of the source's row over the branches, in bar order. The memory must be that of the line. Without a source the
// matrix stays as it is.
void auto_verdelen(aantalmatrix* matrix);

} // namespace zg
