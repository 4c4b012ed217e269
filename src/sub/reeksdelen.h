// The inside of size runs: rows on the screen and the entry of one, shared by the stored runs (sub/reekslijst.cpp) and
// the runs laid on branches (sub/reeksscherm.cpp). Columns are those of the bar in force.
#pragma once
#include "sub/reeksen.h"
#include "term/raster.h"
#include <string>
#include <vector>

namespace zg {

inline constexpr int REEKSMAX = 32767; // pieces of a cell

// A row with the number in front of it, 0 for none.
struct Reeksregel {
    int32_t nr;
    reeksrij rij;
};

// A list of rows in a window of its own: head, rows, two lines for the caller, the choices.
struct Reekslijst {
    std::string titel;
    const char* (*keuzetekst)(int keus); // of choices 0 to `keuzes` - 1; the first offered is the default
    int keuzes;
    const int32_t* totalen = nullptr; // a row of totals below, and one of what is left (`over`); null: none
    const int32_t* over = nullptr;
    std::string (*detail)(const reeksrij& rij) = nullptr; // the line above the choices
};
inline constexpr int REEKSDETAILRIJ = 13, REEKSKEUSRIJ = 15, REEKSKOLOM = 2; // inside its window

void reekslijst_open(const Reekslijst& lijst);
void reekslijst_toon(const Reekslijst& lijst, const std::vector<Reeksregel>& regels, size_t cursor);
// A choice, with the row under the cursor in *cursor; -1 for cancel and ESC.
int reekslijst_kies(const Reekslijst& lijst, const std::vector<Reeksregel>& regels, size_t* cursor);

// The entry of one row in the window below. Cells of sizes that the bar doesn't show stay, cell 0 follows.
struct Reeksinvoer {
    std::string titel;
    const int32_t* totalen =
        nullptr; // shown above the row, and a cell above its total is refused; null: none
    bool (*vervang)(reeksrij* rij) = nullptr; // F5: another row, which ends the entry when true; null: no F5
    uint8_t f5[MAATBYTES] = {};               // sizes on which F5 is offered
    bool afbreekbaar = false;                 // F6 asks "Toevoegen afbreken"
    bool doorlopend = true; // ENTER on the last cell goes back to the first; else it ends the entry
};
inline constexpr int REEKSVRAAGRIJ = 4; // for questions, inside the window

void reeks_venster(const Reeksinvoer& in, const reeksrij& rij); // WINCLOSE ends it
bool reeks_invoer(const Reeksinvoer& in, reeksrij* rij);        // in that window; false: broken off
// The first size of the row that is above its total, 0 for none; told.
int reeks_boven_totaal(const reeksrij& rij, const int32_t* totalen);

// The stored runs of a type that have pieces on the bar in force, by number.
std::vector<Reeksregel> reeks_regels(uint8_t maatsoort);
void reeks_tel(reeksrij* rij);                            // cell 0 from the others
std::string reeks_soortnaam(uint8_t maatsoort);           // "maatsoort 3 Herenmaten"
bool reeks_geen_maten(uint8_t maatsoort);                 // has the bar in force no sizes? told
void reeks_op_bestand(uint8_t maatsoort, uint8_t* maten); // the sizes that a stored run of the type has

} // namespace zg
