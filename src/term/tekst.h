// Texts for the user: every text stands once, as a row of a teksten.def table (catalogue, set, number,
// name, Dutch default), and is asked for by its constant. Lowest file of the house: used by everybody.
// TXT answers the catalogue's text only when its printf directives equal those of the default, so a wrong
// catalogue can show wrong words but can't make a format read what was not passed.
#pragma once
#include <cstdarg>

namespace zg {

enum Catalogus : short { ZEBCAT = 0, DETAIL = 1 };

// One text. `nummer` 0: not in any catalogue, always the default.
struct Tekst {
    Catalogus catalogus;
    short set;
    short nummer;
    const char* standaard;
};

// The text in the language of the open catalogues, else its default. Never null; valid until CATCLOSE.
const char* TXT(const Tekst& tekst);

// First character of a text whose letter is part of the logic (the answers J and N).
char TXTLETTER(const Tekst& tekst);

// Same printf directives (flags, widths and lengths included) in the same order?
bool TXTPAST(const char* standaard, const char* vertaald);

// CATOPEN opens both catalogues under LC_MESSAGES of the environment; LC_CTYPE is left alone and every other
// category stays "C". Called after SCRINIT. A missing catalogue is no failure.
void CATOPEN();
void CATCLOSE();

} // namespace zg
