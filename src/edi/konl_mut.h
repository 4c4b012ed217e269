// Module konl_mut: the tills that are linked, and a file of mutations for each. A till is a file KASbbtt.SYS: two digits
// for the index of its branch, two for its number. 255 stands for all branches, or all tills.
#pragma once
#include <string>

namespace zg {

inline constexpr int ALLE_FILIALEN = 255, ALLE_KASSAS = 255;

// The list of tills from the data directory; none while tills aren't linked. Given up before the next program is started.
void tills_lees();
void tills_vrij();

// Without the link all of these answer 0. With it, before tills_lees: konl_mut INTERNAL 2; for a branch that the firm
// hasn't got: INTERNAL 3.
int tills_count();
bool tills_any();
bool tills_of(int filiaal);             // has it one?
bool tills_has(int filiaal, int kassa); // is there such a one?
// The mutation into DCMUbbtt.TXT of each till that is meant. True when it went into one at least; a refusal is told. A file
// that can't be opened stops with OPENFAIL.
bool tills_write(int filiaal, int kassa, char letter, const std::string& inhoud);

} // namespace zg
