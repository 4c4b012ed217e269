// Program-wide state of the order program: the mode, the firm, the season and supplier chosen, the session,
// and the quantity areas. The driver sets it, every order module reads it. A quantity matrix (aantalmatrix)
// has aantal_filialen + 1 rows of 96 columns: row b the branch with index b, the last row the totals, column
// 0 the row's total, columns 1 to 95 the size indexes.
#pragma once
#include "order/ordrec.h"
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

extern bool registermodus;          // DTSER.INX existed at the start: the full registration
extern uint8_t aantal_filialen;     // branches of the firm, system record 1
extern uint8_t aantal_maatstelsels; // size systems, system record 1
extern std::string seizoensmap;     // directory of the chosen season, "2016Z"
extern uint16_t gekozen_jaar;       // 0 the standard season
extern char gekozen_letter;
extern uint16_t gekozen_leverancier;
extern uint16_t sessienummer;   // slot of the session in DTSYS.TXT
extern char gebruikersrecht;    // 'I' may look, not change
extern std::string sneltoetsen; // n-th character selects the n-th visible size
extern ordparm orderparameters; // ORDPARM.SYS

extern int32_t* nota_aantallen; // null before aantallen_maak
extern int32_t* order_aantallen;
extern int32_t* werk_aantallen;
extern uint16_t* verdeelgewichten; // per branch index, behind them their sum

inline constexpr int MAATKOLOMMEN = 96; // columns of a matrix row, slots of a price row
inline constexpr int MAAT_MAX = 95;     // largest size index

// Cells of one matrix; the place of a cell. The total row is filiaal == aantal_filialen.
inline size_t matrix_cellen() {
    return (aantal_filialen + size_t{1}) * MAATKOLOMMEN;
}
inline int32_t& matrix_cel(int32_t* matrix, int filiaal, int maat) {
    return matrix[static_cast<size_t>(filiaal) * MAATKOLOMMEN + static_cast<size_t>(maat)];
}

// The three matrices and the weights, zeroed, for the present aantal_filialen; NOMEM "zgbestel" 1, 2, 3, 7.
void aantallen_maak();
void aantallen_weg();

// What the full registration does at fixed moments of the journal's life. A row that is null does nothing;
// the module that serves it sets it at the start of the program.
struct orderhaken {
    void (*ordnr_schrijf)();              // commit of an order with lines: its order number record
    void (*ordnr_wis)();                  // commit without lines of an order that is not new
    void (*label_los)();                  // and its order number out of the labels
    void (*advies_pak)(orddessin* regel); // the advice prices in memory into adviesblok, before D is written
    void (*advies_laad)(const orddessin* regel); // and back, when the cursor's line is loaded
};
extern orderhaken ORDERHAKEN;

} // namespace zg
