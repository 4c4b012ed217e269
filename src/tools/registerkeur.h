// The operators' check of the full registration: series, price sets, labels, codes, order numbers and journals held against
// each other. It takes no lock and writes nothing. In the data directory, with DTSYS.TXT open; the trees of the pairs are
// sound (tools/boomkeur.h).
#pragma once
#include "tools/keurwerk.h"

namespace zg {

// The files of the registration: open all, for reading, or to be written with DTSER in nobody else's hand. Answers the
// name of one that isn't there, empty when all are open; what can't be opened stops the program.
std::string keur_open(bool schrijven);
void keur_sluit();

// One a file. What looks wrong is read again (keur_herhaald).
keurbestanden register_keur(int pogingen);
// Lost blocks and records given back, sets, codes and numbers of what is gone deleted, labels counted again. What it did, a
// line each; *gelukt: nothing was refused. keur_open(true), and nobody in.
std::vector<std::string> register_herstel(bool* gelukt);

} // namespace zg
