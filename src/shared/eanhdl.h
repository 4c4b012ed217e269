// Module eanhdl: the codes of a series' sizes in DTEAN. The record of code "0" is a mutex, held while codes are made or
// deleted; it is written when the file hasn't got it, since a reserved key would outlive a program that dies.
#pragma once
#include "shared/registerrec.h"

namespace zg {

struct ICB;
struct mthandle;

// 'W': a code for each size of `maten` (12 bytes) that has none, in the order of the bar `balk` (sizes that it lacks get
// none) or else by size number; a code in use is passed over. 'D': delete those of the sizes; 'B': and their entries in DTBARC. False when a write was
// refused, or no number is left (told). A null handle stops with eanhdl INTERNAL 1. `bron` goes into new records.
bool eanhdl(char letter, ICB* dtean, const seriesleutel& serie, const uint8_t* maten, uint8_t bron = 0,
            mthandle* balk = nullptr);
// How many sizes of the set have no code yet, and how many numbers are left.
int ean_nodig(ICB* dtean, const seriesleutel& serie, const uint8_t* maten);
int64_t ean_over();
// Called with each record that 'W' leaves, new or old, and the size's place on the bar (its number without one), when tills
// are linked. The series and the codes are locked at that moment: whoever carries codes to the tills keeps it for later.
extern void (*EANHAAK)(const eanrec& rec, int positie);

// Entry of the code of a size by hand. Wrong ones are told and the field stays open; a code of another series' size is
// taken over only when `heeft_maat` says that the size isn't that series' any more. True when it changed.
bool ean_veld(int rij, int kolom, ICB* dtean, const seriesleutel& serie, uint8_t maat,
              bool (*heeft_maat)(const seriesleutel& serie, uint8_t maat));

} // namespace zg
