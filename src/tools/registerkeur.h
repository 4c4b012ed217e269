// The operators' check of the full registration: series, price sets, labels, codes, order numbers and journals held against
// each other. It takes no lock and writes nothing. In the data directory, with DTSYS.TXT open; the trees of the pairs are
// sound (tools/boomkeur.h).
#pragma once
#include "tools/keurwerk.h"

namespace zg {

// A line for each file of the registration that isn't there, or can't be opened.
keurbestanden register_dicht();
// Open all, for reading, or to be written with DTSER in nobody else's hand; what can't be stops the program.
void keur_open(bool schrijven);
void keur_sluit();

// One a file. What looks wrong is read again (keur_herhaald).
keurbestanden register_keur(int pogingen);
// Nothing is done while a file of it can't be read whole, and nothing by what journals tell while one of them can't.
// Lost blocks and records given back, sets, codes and numbers of what is gone deleted, labels counted again. What it did, a
// line each; *gelukt: nothing was refused. keur_open(true), and nobody in.
std::vector<std::string> register_herstel(bool* gelukt);

} // namespace zg
