// Module voorverd: pre-distributions (voorverdelingen, on the screens filiaalverdelingen): stored tables of pieces per
// branch and size for a size type, numbers 1 to 99, in DTVVTAB. Tables are matrices of shared/fmtab.h; the bar in
// force says which sizes count.
#pragma once
#include "shared/fmtab.h"
#include "shared/stamrec.h"

namespace zg {

// The totals that a pre-distribution must fit, and who is left out of the test.
struct Vvpassing {
    const int32_t* totalen;     // MAATKOLOMMEN cells
    const uint8_t* uitgesloten; // 32 bytes by branch index: their rows get nothing
    int rest;                   // branch index that takes the remainder
};

// A number of the type into the table, on the bar in force. `passing` null: no test. False when it would need more of a
// size than there is. Damaged records (branches beyond the firm, quantities below 0 or too large) count as far as they
// hold sense.
bool vv_laden(uint8_t maatsoort, uint16_t nummer, aantalmatrix* tabel, const Vvpassing* passing);
// The records of that number replaced by the table's: branches with equal rows share one. False when a write was
// refused (told); the old ones stand then as far as the store can tell.
bool vv_bewaren(uint8_t maatsoort, uint16_t nummer, const aantalmatrix& tabel);

// Pick one and apply it; acties a part of "SWTVR". False when none was taken. vv_kiezen: to an empty table, with the
// template's own numbers. vv_verdelen: over the totals that the table has, which stay: what a branch doesn't get goes
// to `rest`, to which all is taken first.
bool vv_kiezen(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, aantalmatrix* tabel);
bool vv_verdelen(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, int rest,
                 aantalmatrix* tabel);

} // namespace zg
