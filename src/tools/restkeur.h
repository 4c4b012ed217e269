// Every other name in a data directory, by its shape: notes and work files that a program left and what becomes of them, print
// jobs, mutations, the settings of the transfer; what the package doesn't know is named.
#pragma once
#include "tools/keurwerk.h"

namespace zg {

// The files in the directory, in its seasons and of its tables elsewhere that the package knows, by path; the names in the
// first two that it doesn't.
std::vector<std::string> keur_bekend(std::vector<std::string>* onbekend = nullptr);
// One line a file that there is something to say of. DTSYS.TXT is open.
keurbestanden rest_keur();
// The tables of printers and macros: what their records name, and whether they can be used. `paren`: with their paths.
keurbestanden tabel_keur();
std::vector<std::string> tabel_paren();

} // namespace zg
