// Module ioink: the price file. A set of prices (DTIPA) is a period of one series and set number, the supplier's; its
// groups, sizes with a gross and a net price, hang from it in DTIPG.TXT. Periods of a set number never overlap: writing
// a set cuts the others. System record 9, held with 'X', is the lock of whoever writes; readers take none, and read a
// set that is in change once more before they call it damaged.
//
// Order of a write: new groups, then the set (in place while `tot` stays), then the old groups go free. A kill leaves
// the old prices or the new ones, and at worst groups that nobody has.
#pragma once
#include "shared/registerrec.h"
#include <vector>

namespace zg {

struct ICB;

struct prijsgroep {
    uint8_t maten[12];
    int32_t bruto, netto;
};
using prijsgroepen = std::vector<prijsgroep>;

enum class Prijsset {
    geen,    // no such set
    gelezen, // with its groups
    stuk     // its chain is damaged, which was told: it may be looked at, and is never written over
};

// Open DTIPA and DTIPG.TXT; INTERNAL 1 or 2 when they are open already, OPENFAIL when they can't be.
void ioink_open(int modus);
void ioink_close(); // userstate becomes 1
ICB* ioink_icb();   // DTIPA, null when closed

// The set of a series and set number that holds on a day, and its groups.
Prijsset ioink_find(const seriesleutel& serie, uint16_t setnr, uint16_t datum, prijsset* set,
                    prijsgroepen* groepen);
// By the full key in *set.
Prijsset ioink_read(prijsset* set, prijsgroepen* groepen);
// 'F', 'N', 'P' along key `sleutel` under the first `delen` parts; the record alone. Key 1 is current afterwards.
bool ioink_move(char letter, prijsset* set, int delen, int sleutel);

// Write a set with these groups, and cut the others of its series and set number to fit. A set that was read has
// `groep` and is replaced, one with groep -1 is new. Nothing is written without groups. False: nothing was, a write
// refused or a set in the way damaged, which was told. Afterwards the files are reopened, but by writeheld.
// Not open, or not in mode 2: INTERNAL 3 to 7.
bool ioink_write(prijsset* set, const prijsgroepen& groepen);
bool ioink_writeheld(prijsset* set, const prijsgroepen& groepen);
// Before anything of a line is written: does the free chain make sense for so many groups? False: told.
bool ioink_past(int groepen);
bool ioink_delete(const prijsset& set);          // with its groups
bool ioink_deleteall(const seriesleutel& serie); // all sets of a series
// A set that must be there isn't: a box, once a set, "<tag>: <series>  <set> <date> prijsset niet aanwezig" and under it what
// comes of it.
void ioink_ontbreekt(const char* tag, const seriesleutel& serie, uint16_t setnr, uint16_t datum,
                     const char* gevolg);

} // namespace zg
