// The operators' check of the full registration: series, price sets, labels, codes, order numbers and journals held against
// each other. It takes no lock and writes nothing. In the data directory, with DTSYS.TXT open; the trees of the pairs are
// sound (tools/boomkeur.h).
#pragma once
#include "tools/keurwerk.h"
#include <set>

namespace zg {

// The parts of the registration; each hangs on files of its own.
struct registerdelen {
    bool series = true, prijzen = true, labels = true, codes = true, nummers = true;
};
// Those whose files are there, can be opened, and written when `schrijven`, and are not among the broken pairs. In *dicht a
// line for each file that isn't there or can't be opened; in *weg one for each part left out: why, and what is left out.
registerdelen register_delen(const std::set<std::string>& stuk, bool schrijven, keurbestanden* dicht,
                             std::vector<std::string>* weg);
// Open these parts, for reading, or to be written with DTSER in nobody else's hand; what can't be stops the program.
void keur_open(const registerdelen& delen, bool schrijven);
void keur_sluit();

// Of what is open: one a file. What looks wrong is read again (keur_herhaald).
keurbestanden register_keur(int pogingen);
// Nothing is done while a file of it can't be read whole, and nothing by what journals tell while one of them can't.
// Lost blocks and records given back, sets, codes and numbers of what is gone deleted, labels counted again. What it did, a
// line each; *gelukt: nothing was refused. keur_open(..., true) with the series, and nobody in. What hangs on a part that
// isn't open stays.
std::vector<std::string> register_herstel(bool* gelukt);

} // namespace zg
