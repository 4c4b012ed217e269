// Blocks that an exclusive handle holds back: what a bulk load by ordinary inserts changes again and again stays in memory, and
// goes to disk once in a while, at the close, and before anything else is written. Held back are the blocks of inserts
// alone: to a tree that is older than these nobody has led their records, so it is sound for whoever reads beside the handle and
// never waits for it. A change of another kind writes all that is held first, and then itself, since its record would no longer
// agree with the keys that a reader finds.
//
// All is written in the order of one change (store/klad.h): new blocks, by number, then those in use from the root down,
// so that each entry that stood is found at each moment. The header is marked from the first change to the close, so what is
// killed in between is refused and rebuilt; the records stand. Room for new blocks is asked of the disk before they are held.
#pragma once
#include "store/ix.h"

namespace zg {

extern size_t UITSTELMAX; // blocks in memory for one file, at most

// A change is going to hold so many blocks, and brings the index from `oud` to `nieuw` blocks. U_RUIMTE: they have their room, in
// memory and on the disk. U_GEWEIGERD, with errno: the disk refuses room, or what was held; nothing of the change may be
// made. U_NIET: this change can't be held.
enum Uitstelling { U_RUIMTE, U_GEWEIGERD, U_NIET };
Uitstelling UITSTELRUIMTE(ICB* icb, size_t blokken, int32_t oud, int32_t nieuw);
void UITSTELZET(const ICB* icb, int32_t blok, const void* inhoud); // behind U_RUIMTE
// All that is held to disk, and forgotten there: others may write blocks from here on. False, with errno: refused; what isn't out
// is held still, and the file is sound for readers. Stops when what stood could not be put back.
bool UITSTELUIT(ICB* icb);
// The same for the last time: room that was asked for and not used is given back. Stops when it is refused; the pair stays marked.
void UITSTELAF(ICB* icb);
void UITSTELWEG(const ICB* icb); // without a write: the handle goes, or its index is emptied

// Reading, for every handle of this process on the file: the first n bytes of a block that is held.
bool UITSTELLEES(int idxfd, int32_t blok, void* doel, size_t n);
int32_t UITSTELSTAND(int idxfd, int32_t anders); // blocks that the file has, where some are held back
// A block as it was just read: one above the leaves is kept, beside those that are held.
void UITSTELBEWAAR(int idxfd, int32_t blok, const void* inhoud);

} // namespace zg
