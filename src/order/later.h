// What the order program calls and what doesn't stand yet: the register of series, labels and order numbers. A screen
// tells "Nog niet beschikbaar" and answers that nothing changed; the register's other routines do nothing.
#pragma once
#include "order/regel.h"
#include "sub/omserie.h"

namespace zg {

// Adding and duplicating lines of the full registration: told, false.
bool serie_register();
bool serie_bijbestellen();

// The series of a line and its prices and quantities into the line. niet_beschikbaar: the line shows what the
// journal knows and can't be worked on.
enum class Serie { gelezen, weg, andere, niet_beschikbaar };
Serie serie_laad(const ors_ingang& ingang, orderregel* regel, bool vergrendel);
// With the prices that the line had before the change, for its labels.
bool serie_bewaar(const orderregel& regel, const prijsrijen& oude_prijzen);
// Can a line go with its labels? Tells why not.
bool label_kan_weg(const orderregel& regel);
void label_korting(const orderregel& regel); // a changed order discount into a line's labels

// The commit of an order: its number record written; or removed, and out of the labels.
void ordnr_schrijf();
void ordnr_wis();
void label_los();

} // namespace zg
