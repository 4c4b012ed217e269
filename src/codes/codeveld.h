// Fields of the one-digit code tables of DTSYS.TXT: a code with F5 for its list.
#pragma once
#include <cstdint>
#include <string>

namespace zg {

// The tables, by the kinds of iotab_code.
enum Codesoort { CODE_ACTIE = 1, CODE_CORRECTIE = 2, CODE_INKOOP = 3, CODE_DEELSEIZOEN = 4 };

// Code field, format "1U,", F5 for the list; 0 (empty) is accepted as none, an unknown code refused. True
// when the code changed.
bool code_veld(int rij, int kolom, Codesoort soort, uint8_t* code);
// Description of a code, trimmed; empty for 0 and for a code that isn't in the table.
std::string code_tekst(Codesoort soort, uint8_t code);
// Pick list; false without a pick or when the table is empty (told).
bool code_kiezen(Codesoort soort, uint8_t* code);

} // namespace zg
