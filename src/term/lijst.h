// LIJST, a scrolling pick list in a window that knows nothing of data: four callbacks move, print the head,
// give a row's text and read the user's keys. Optional marking of rows, handed back one by one.
#pragma once
#include <cstdint>

namespace zg {

struct Gemerkt {
    uint32_t positie;
    Gemerkt* volgende;
};

struct LIJST {
    // 0 reads the row at positie; not 0 when a row is there. A long stride goes as far as there are rows. When it
    // answers 0, positie stays.
    int32_t (*haal)(int32_t stap);
    // Reads the next action: sets SCHERM.laatste and SCHERM.vlag. With V_LEEG clear it has moved positie, and the
    // page begins there. When it has removed or changed rows it sets modus 1: the page is read again from its
    // first row that is left, the cursor stays on its row.
    void (*toets)();
    void (*kop)();          // may be null
    const char* (*regel)(); // text of the current row
    uint32_t positie;       // identity of the current row; 0xFFFFFFFF at the start
    uint8_t vast, merken, omgekeerd;
    Gemerkt* gemerkt;
    int32_t stand;
    int32_t rij, kolom, hoogte, breedte; // window; 0 for the default
    int32_t schermrij;
    int32_t modus; // next paint: 0 or 4 one row, 1 or 8 scrolled by one, 2 or 16 whole page
    char titel[84];
    int32_t cursor; // row of the first page, from 0, that the cursor starts on
    // For "3 van 60" above the search field: how many rows there are in all, and which of them (from 1) is current. The
    // first null or 0: it isn't shown; the second null: the one behind `positie` rows.
    int64_t (*aantal)();
    int64_t (*rang)();
};

LIJST* LIJSTNEW(int32_t (*haal)(int32_t), void (*toets)(), void (*kop)(), const char* (*regel)());
// 1 when a row was chosen, `positie` set and the row current; 0 when none. With `merken` further calls give the
// next marked row.
int LIJSTRUN(LIJST* lijst, int ampersand);
void LIJSTDEL(LIJST* lijst);
// The row of the window in which `toets` asks its search field (inside coordinates).
int LIJSTVELDRIJ();

} // namespace zg
