// Module iomaat: the sizes of a size type (maatsoort) in a size system (maatstelsel). A size has a number, 1
// to 95, that stays, and a position on the bar that may shift; a handle may carry a selection, through which
// sizes have a rank. The firm's default system keeps both orders on file, other systems only the positions.
#pragma once
#include "store/ix.h"
#include <cstddef>
#include <cstdint>

namespace zg {

inline constexpr int MATEN = 95;
inline constexpr int MAATBYTES = 12; // a bit per size, by size number

struct [[gnu::packed]] maatrij { // DTMAAT, 404 bytes
    uint8_t stelsel, soort;
    uint8_t mtombits[MAATBYTES]; // sizes with a record in DTMTOM
    struct {
        char naam[3];
        uint8_t link;
    } entry[MATEN + 1]; // from 1
    char vrij398[2];
    uint16_t mtcount;
    char vrij402[2];
};
struct [[gnu::packed]] mtinfo { // what the reads fill
    uint8_t stelsel, soort, maatnr, positie, rang;
    char naam[3];
    int32_t extra1; // from DTMTOM
    uint16_t extra2;
    uint8_t extra3;
};
static_assert(sizeof(maatrij) == 404 && offsetof(maatrij, entry) == 14 && offsetof(maatrij, mtcount) == 400);
static_assert(sizeof(mtinfo) == 15 && offsetof(mtinfo, naam) == 5 && offsetof(mtinfo, extra1) == 8);

struct mthandle {
    uint8_t stelsel, soort;
    bool schrijven, gewijzigd;
    bool
        stuk; // the record on file contradicts itself: what it holds is shown as far as it goes, not to be changed
    bool mtom; // use DTMTOM; the size screens set and clear it
    uint8_t keuze[MAATBYTES];
    maatrij nummers, posities;
};

// The open pairs; whoever opens the shared files sets them.
extern ICB* dtmaat;
extern ICB* dtmtom;

inline bool maat_in(const uint8_t* masker, int maat) {
    return masker[maat / 8] >> (maat % 8) & 1;
}
inline void maat_aan(uint8_t* masker, int maat) {
    masker[maat / 8] |= static_cast<uint8_t>(1 << (maat % 8));
}
inline void maat_uit(uint8_t* masker, int maat) {
    masker[maat / 8] &= static_cast<uint8_t>(~(1 << (maat % 8)));
}

// INTERNAL 4 null handle, 5 DTMAAT closed, 6 DTMTOM closed, 7 a system or type of 0. vlaggen 2: for writing,
// with both records locked until mtclose. A size type that isn't there opens without sizes.
mthandle* mtopen(uint8_t stelsel, uint8_t soort, int vlaggen);
void mtclose(mthandle* h); // writes what was changed, releases, frees
// Write what was changed and keep the lock. 0 when the disk refused, which was told: the changes stay in the handle.
int mtbewaar(mthandle* h);
// Letters F R N P under key 1 number, 2 position, 3 name, 4 rank in the selection. 1 and the whole record
// when there is a size, else 0 and the record as it came.
int mtread(mthandle* h, char letter, mtinfo* info, int sleutel);
void mtselect(mthandle* h, const uint8_t* masker);
// The next three need a handle for writing.
int mtupdate(mthandle* h, mtinfo* info);
int mtdelete(mthandle* h, mtinfo* info);
int mtinsert(mthandle* h, mtinfo* info);
const char* mtname(mthandle* h, int maatnr); // 3 characters, static; blanks for no such size
int mtpos(mthandle* h, int maatnr);
int mtranks(mthandle* h);
int mtremove(uint8_t soort);

// Size system that holds for a brand or supplier's own, which may be 0: the firm's default then, at least 1.
uint8_t mtstelsel(uint8_t eigen);

} // namespace zg
