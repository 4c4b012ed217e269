// The discount field: a percentage from -99.99 to 99.99, with a small calculation on F10 that adds discounts
// or compounds them.
#pragma once

namespace zg {

// In the current window, format "6.2f,ZPN". True when the percentage changed; SCHERM.laatste is the key.
bool korting_veld(int rij, int kolom, double* procent);

// One step of the calculation: '+' adds, '*' compounds, 'C' clears, 'I' takes the term as total.
double korting_stap(char bewerking, double totaal, double term);

} // namespace zg
