// Module ioeti: the labels, DTETI.TXT, blocks of ten in a chain for each series. A label's number is its place: block
// x 10 + place + 1. Labels of a series are changed only by who holds the lock on its record in DTSER; system record 4,
// held with 'X', is the lock on the chain of free blocks.
//
// The block in memory is a reading aid: a place is written alone, by one write, and what stands beside it is never
// written back. ioeti_vergeet drops it: whoever takes or gives up a lock on a series calls it.
#pragma once
#include "shared/registerrec.h"

namespace zg {

// 'O' open (OPENFAIL when it can't be; INTERNAL 3 when it is open), 'C' close (userstate becomes 1)
// 'R' the label of a number: 1, or 0 and status 0 when there is none
// 'F' *nummer is a block: the first label from there on, 'N' the next along the chain; 0 at the chain's end, -1
//     when the chain is damaged (ioeti_schade says how): nothing is told
// 'W' write: over the label *nummer, or for 0 in the first free place of the series' own chain (ioeti_keten), behind
//     its last block in a new one when there is none. 1, *nummer filled in; 0 when the disk refused or the file is
//     full, which was told, and nothing was written
// 'D' delete the label of the current place, which *nummer must be: 0; else 1. -1 refused by the disk, told
// Any other letter answers 0. Not open: INTERNAL 2. Damage met while writing stops the program with the report
// "ioeti(..): a=..,f=..,r=.. -> ..." and userstate 11.
int ioeti(char letter, int32_t* nummer, etiket* label);
// 'F', 'R' or 'N', and then 'N' until a label has this status.
int ioeti_status(char letter, int32_t* nummer, etiket* label, uint8_t status);

// The chain in hand: walks and new labels are of this series, every block read must be (ownership). *kop is its first
// block, -1 for none; writing the first label makes one and changes it: the caller then writes its series record.
// Null disarms.
void ioeti_keten(const seriesleutel* serie, int32_t* kop);
void ioeti_vergeet(); // forget the block in memory
void ioeti_heropen(); // what was written is on disk
// Blocks that can still be given out, free ones and those up to the limit.
int64_t ioeti_ruimte();
int32_t ioeti_hoogste_blok(); // by the digits of a label number
struct etischade {
    char reden[80]; // "Etiket niet van ..."
    int32_t blok;
};
const etischade& ioeti_schade();

// All blocks of a series, from its first, to the free ones; *kop becomes -1. False when the walk ended at a block that
// isn't the series': what came before it is free. Refused by the disk: false, told.
bool ioeti_vrij(const seriesleutel& serie, int32_t* kop);

// A place of 36 bytes and the label it holds; pack what was unpacked unchanged and its bytes are the same. False when
// an amount or a number doesn't fit.
inline constexpr int ETIPLAATS = 36;
bool eti_pak(const etiket& label, const uint8_t* was, uint8_t* plaats);
void eti_uit(const uint8_t* plaats, const seriesleutel& serie, uint8_t etiketsoort, etiket* label);

} // namespace zg
