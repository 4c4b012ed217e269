// The code tables of DTSYS.TXT as tables of a field with a list (shared/lijstveld.h).
#pragma once
#include "shared/lijstveld.h"

namespace zg {

// One-digit codes: the list has the head slot's text for its title.
extern const Lijsttabel INKOOPTABEL, DEELSEIZOENTABEL;
extern const Lijsttabel STELSELTABEL; // size systems
extern const Lijsttabel LANDTABEL;    // countries by their ISO code of three letters

// Forget the countries, which are read once: they are read again at the next use.
void landen_vergeet();

} // namespace zg
