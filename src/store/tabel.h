// Tables that a program defines itself: key texts made from the addresses of fields, so that a key can't disagree
// with the record it is cut from; names of temporary indexes; and how a program sets up the tables it owns.
#pragma once
#include "store/ix.h"
#include <string>

namespace zg {

// A definition is one UPDFCB_INX or UPDFCB_KEY, a UPDFCB_FLD per part of the key, and UPDFCB_END, which hands it
// to the handle. The title counts 19 characters, a key's name 8; parts behind the tenth are dropped.
void UPDFCB_INX(const char* titel, const void* basis, int reclen);
void UPDFCB_KEY(int sleutel, const char* naam, int dubbel);
void UPDFCB_FLD(char letter, const void* veld, int breedte);
void UPDFCB_END(ICB* icb);

// Name of a user's private index over a shared table: IXTIJDELIJK("DTLEV", 7) is "DTLEV.07".
std::string IXTIJDELIJK(const char* tabel, int slot);

// A table that the program owns, opened in `modus`; made, or its index made again from its data, when that is
// needed. `definieer` calls IXUPDFCB for title and keys; `eerste` (may be null) writes the first records of a
// new, empty table through a handle in mode 1.
ICB* IXEIGEN(const char* naam, int modus, void (*definieer)(ICB*), void (*eerste)(ICB*));
// The same for a small table that must not end the program: null with errno set, untold, where the directory, the rights,
// the room on the disk or the files don't allow it; EINVAL for data that can't be records of `reclen` bytes. All of both
// files is looked at, and an index that is wrong anywhere made again.
ICB* IXEIGENOF(const char* naam, int modus, int reclen, void (*definieer)(ICB*), void (*eerste)(ICB*));

} // namespace zg
