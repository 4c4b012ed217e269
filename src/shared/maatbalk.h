// The bar in force: the size table that is open for the line or the record in hand, and of it the sizes that are
// shown. There is one; whoever needs another opens it here and the one before is closed. Columns count from 1 in
// bar order, over the sizes chosen; a size index is 1 to 95.
#pragma once
#include "shared/iomaat.h"

namespace zg {

extern mthandle* maatbalk; // null: none is open

// Open a size type, unless it is the open one; `maten` (12 bytes) are the sizes shown, null for all of the type.
// A size system or type of 0 closes and leaves none open.
void balk_open(uint8_t stelsel, uint8_t soort, const uint8_t* maten);
void balk_kies(const uint8_t* maten); // other sizes of the same bar, null for all
// Read the size type in force anew; true when another has changed it since. The choice stays.
bool balk_vernieuw();
// Close it: before maintenance writes it (record locks), and at the program's end. balk_open reads it anew.
void balk_sluit();

// Is there a type on file with at least one size? Leaves the bar in force alone.
bool maatsoort_gevuld(uint8_t stelsel, uint8_t soort);

// 0 for all of these when no bar is open.
int balk_kolommen();                   // sizes shown
int balk_maat(int kolom);              // size index in a column, 0 outside
const char* balk_naam(int kolom);      // 3 characters, static; blanks outside
void balk_maten(uint8_t* maten);       // the sizes shown as a set of 12 bytes: those that the type has
bool balk_heeft(const uint8_t* maten); // has the type one of these sizes at least?

// Other sizes of the bar (null: all of the type) for as long as it lives, then those that were shown.
struct Balkkeuze {
    explicit Balkkeuze(const uint8_t* maten);
    ~Balkkeuze();
    Balkkeuze(const Balkkeuze&) = delete;
    Balkkeuze& operator=(const Balkkeuze&) = delete;
    uint8_t was[MAATBYTES];
};

} // namespace zg
