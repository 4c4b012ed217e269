// RASTER, the geometry of a grid: a viewport on a table of columns (from 1) and rows (from 0), with a cursor that goes
// cell by cell and pages sideways and up and down. It knows no data: the screens paint the cells, heads and totals get
// their texts and values from the caller. Directions are the letters R, L, D, U.
#pragma once
#include "term/ingave.h"
#include <cstdint>

namespace zg {

enum : int32_t {
    RASTER_KOLVAST = 3,  // `vast`: columns locked, ENTER goes down
    RASTER_RIJVAST = 12, // rows locked, ENTER goes right
    RASTER_LINKS = 1,    // `mogelijk`
    RASTER_RECHTS = 2,
    RASTER_OP = 4,
    RASTER_NEER = 8
};

struct RASTER {
    int32_t kolommen;              // columns of the table; the caller sets it
    int32_t laatsterij;            // last row; the caller sets it
    int32_t rijvan, rijtot;        // first and last window row of the area
    int32_t kolvan, koltot;        // first and last window column of the area
    int32_t eerstekol, laatstekol; // columns now visible
    int32_t eersterij, zichttot;   // rows now visible
    int32_t kolcursor, rijcursor;  // cursor offsets from eerstekol and eersterij
    int32_t celbreedte;            // width of a column, its blank included
    int32_t herteken;              // 1 after a change of the visible part
    int32_t vast;                  // RASTER_KOLVAST, RASTER_RIJVAST
    int32_t mogelijk;              // moves possible
};

// Columns: cells are 5 wide, 4 when the table wouldn't fit, and at least minbreedte + 1; narrower again until three
// fit. Then the first page and column 1. Rows: first page and row 0.
void RASTERKOL(RASTER* r, int kolvan, int koltot, int minbreedte);
void RASTERRIJ(RASTER* r, int rijvan, int rijtot);
void RASTERSTAP(RASTER* r, char richting); // one page
int RASTERGA(RASTER* r, char richting);    // one cell; 0 at the end of the table
// The cursor on a cell, nothing locked. rij above the last row: rows locked, row 0; kol 0: columns locked, column 1.
void RASTERCEL(RASTER* r, int rij, int kol);
// ENTER in a cell: with rows locked it goes right, with columns locked down, else the direction given. Only when
// the last key was ENTER. 1 when the cursor moved.
int RASTERENTER(RASTER* r, char richting);

int RASTERSCHERMRIJ(const RASTER* r);          // window row of the cursor
int RASTERSCHERMKOL(const RASTER* r);          // window column of the cursor's cell
int RASTERKOLPLAATS(const RASTER* r, int kol); // window column of a visible column's cell
inline int RASTERRIJNU(const RASTER* r) {
    return r->eersterij + r->rijcursor;
}
inline int RASTERKOLNU(const RASTER* r) {
    return r->eerstekol + r->kolcursor;
}

// Column heads of the visible part, "<<" and ">>" for what is off the screen; clears herteken. `naam` gives the text of
// a column, cut to the cell.
void RASTERKOP(RASTER* r, uint32_t attr, int rij, const char* (*naam)(int kol));
// A row of totals: the visible columns, before them and behind them the sum of what is off the screen. Blank for 0,
// "*" for what does not fit. `waarde` gives the value of a column.
void RASTERTOTAAL(const RASTER* r, uint32_t attr, int rij, int64_t (*waarde)(int kol));
// A number in a cell at a place of the window: right, blank for 0, a "*" at the right where it doesn't fit.
void RASTERGETAL(const RASTER* r, uint32_t attr, int rij, int kolom, int64_t waarde);

// One cell through INGAVE: the format's arguments are those of INGAVE, behind the grid. The keys that move the cursor
// or page leave the field and are followed; others that the caller allows leave as in INGAVE, whose answer this is. The
// table's slots key_btab and key_extra belong to the grid: they are 0 behind it.
void RASTERINGAVEBEGIN(RASTER* r);
void RASTERINGAVEEIND(RASTER* r);
template <class... A> int RASTERINGAVE(RASTER* r, int rij, int kol, const char* formaat, A... rest) {
    RASTERINGAVEBEGIN(r);
    const int anders = INGAVE(rij, kol, formaat, rest...);
    RASTERINGAVEEIND(r);
    return anders;
}

// The key's column on the screen (`toetsen`: its n-th character, small or capital, is the n-th visible column): a
// column of the table; 0 when the key is none of those, which is told.
int RASTERLETTER(const RASTER* r, int32_t toets, const char* toetsen);

} // namespace zg
