// Module ioeti: the labels, DTETI.TXT, blocks of ten in a chain for each series. A label's number is its place: block
// x 10 + place + 1. Labels of a series are changed only by who holds the lock on its record in DTSER; system record 4,
// held with 'X', is the lock on the chain of free blocks.
//
// The block in memory is a reading aid: a place is written alone, by one write, and what stands beside it is never
// written back. ioeti_keten drops it, so that who takes a chain in hand reads it as others left it.
//
// New block: system record 4, the block with its first label in it, last the link to it. A kill leaves a block that
// nobody has, never a chain that leads into another's.
#pragma once
#include "shared/registerrec.h"

namespace zg {

inline constexpr int ETIPLAATS = 36, ETIPLAATSEN = 10;
inline constexpr int32_t ETIBEDRAG_MAX = 214748363; // of an amount on a label

struct [[gnu::packed]] etiblok { // DTETI.TXT, block b at b x 376; a free one is zeros but for `volgende`
    seriesleutel serie;
    uint16_t etiketsoort;
    char vrij10[2];
    int32_t volgende; // -1 at the end
    uint8_t plaats[ETIPLAATSEN][ETIPLAATS];
};
static_assert(sizeof(etiblok) == 376 && offsetof(etiblok, volgende) == 12 && offsetof(etiblok, plaats) == 16);

// 'O' open (OPENFAIL when it can't be; INTERNAL 3 when it is open), 'C' close (userstate becomes 1)
// 'R' the label of a number: 1, or 0 and status 0 when there is none
// 'F' *nummer is a block: the first label from there on, 'N' the next along the chain, *nummer filled in; 0 at the
//     chain's end, -1 when the chain is damaged (ioeti_schade says how): nothing is told
// 'W' write: over the label *nummer, or for 0 in the first free place of the series' own chain (ioeti_keten), behind
//     its last block in a new one when there is none. 1, *nummer filled in; 0 when the disk refused, the file is full
//     or the label doesn't fit its place, which was told, and nothing was written. What stands so already isn't written
// 'D' delete the label of the current place, which *nummer must be: 0; else 1. -1 refused by the disk, told
// 'I' a new block behind the chain in hand, its first one when there is none: 1, *nummer its first place; 0 as for 'W'
// Any other letter answers 0. Not open: INTERNAL 2; no chain in hand where one is needed: INTERNAL 6. A status 2 mark
// met in writing, with ZEB_INTERN and no number in system record 20: INTERNAL 5. Damage met while writing stops the
// program with the report "ioeti(..): a=..,f=..,r=.. -> ..." and userstate 11.
int ioeti(char letter, int32_t* nummer, etiket* label);
// 'F', 'R' or 'N', and then 'N' until a label has this status; INTERNAL 4 for another letter.
int ioeti_status(char letter, int32_t* nummer, etiket* label, uint8_t status);

// The chain in hand: walks and new labels are of this series, every block read must be (ownership). *kop is its first
// block, -1 for none; writing the first label makes one and changes it: the caller then writes its series record.
// Null disarms.
void ioeti_keten(const seriesleutel* serie, int32_t* kop);
// The same for the length of a block of the program.
class etiketketen {
public:
    etiketketen(const seriesleutel& serie, int32_t* eerste) { ioeti_keten(&serie, eerste); }
    ~etiketketen() { ioeti_keten(nullptr, nullptr); }
    etiketketen(const etiketketen&) = delete;
    etiketketen& operator=(const etiketketen&) = delete;
};
int64_t ioeti_plaatsen(); // of the blocks that the last walk has met
void ioeti_vergeet();     // forget the block in memory
void ioeti_heropen();     // the file anew, as others have left it

int32_t ioeti_hoogste_blok(); // by the digits of a label number; its last place is never used
// Blocks that can still be given out, free ones and those up to the limit; of the free ones no more than `nodig` are
// looked at. -1 when the counters or the free chain are damaged (ioeti_schade).
int64_t ioeti_ruimte(int64_t nodig);
// Is there room for so many more labels, in the chain in hand and in new blocks? False: told why.
bool ioeti_past(int64_t labels);
// Before a walk that writes labels of any status: stops with INTERNAL 5 where one in the chain in hand would.
void ioeti_merktoets();

struct etischade {
    char reden[80]; // "Etiket niet van ..."
    int32_t blok;
};
const etischade& ioeti_schade();
void ioeti_keur_af(int32_t nummer, const char* reden); // a label that can't be, found by its reader
// A box with file, series, block and reason. `eens`: what was told before in this run isn't told again, for reading, which
// comes back at every repaint.
void ioeti_schademeld(const seriesleutel& serie, bool eens = false);

// All blocks of a series, from its first, to the free ones; *kop becomes -1. False when the walk ended at a block that
// isn't the series': what came before it is free. Refused by the disk: false, told, and *kop is what isn't free yet.
// With damaged counters nothing is done: false, told.
bool ioeti_vrij(const seriesleutel& serie, int32_t* kop);

// A place and the label it holds; pack what was unpacked unchanged and its bytes are the same. `was` is the place as it
// stands, null for a new label. False when an amount or a number doesn't fit. A label without a number, 9 places of
// decimal digits each; VAT of labels on order and in stock isn't in it.
bool eti_pak(const etiket& label, const uint8_t* was, uint8_t* plaats);
void eti_uit(const uint8_t* plaats, const seriesleutel& serie, uint8_t etiketsoort, etiket* label);
uint8_t eti_status(const uint8_t* plaats); // 0 to 9; above 4 is damage
extern bool eti_intern;                    // ZEB_INTERN: marks of labels in stock are ours to write

} // namespace zg
