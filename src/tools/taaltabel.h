// The tables of texts of all folders as one, and what a translation of them has to fit.
#pragma once
#include "term/tekst.h"
#include <string>
#include <vector>

namespace zg {

struct Tekstrij {
    Tekst tekst;
    const char *naam, *map; // T_AKKOORD; the table it stands in
};

// Where a text stands on the screen. Without a row of src/tools/taalplaatsen.def it may be as wide as its default.
struct Tekstplaats {
    enum Soort {
        plek,   // columns
        kop,    // the names of columns: each begins or ends where that of the default does
        letters // letters, no two alike
    } soort;
    const char* naam; // of the text; a * at its end stands for the rest
    int breedte;      // 0: as the default
    const char* waar;
};

// Texts whose letters are chosen from at one time; `namen` with blanks between them.
struct Tekstkeuze {
    const char *waar, *namen;
};

extern const std::vector<Tekstrij> TEKSTRIJEN; // those in a catalogue, in the order of the tables
extern const std::vector<Tekstplaats> TEKSTPLAATSEN;
extern const std::vector<Tekstkeuze> TEKSTKEUZEN;

bool tekst_heet(const Tekstrij& r, const Tekstplaats& p);
// That of its whole name, else the first whose stem is its own; null: none.
const Tekstplaats* tekst_plaats(const Tekstrij& r);
std::string tekst_sleutel(const Tekst& tekst); // "DETAIL 27.100", its msgctxt
// Columns of the widest of its lines; the mark of a letter (&) takes none in a text of a choice.
int tekst_breedte(const std::string& utf8, bool keuze);
int tekst_ruimte(const Tekstrij& r); // columns that a translation has

struct Pobestand;
// What is wrong with a translation and with taalplaatsen.def, a line each on standard error; how many.
int taal_keur(const Pobestand& po);

} // namespace zg
