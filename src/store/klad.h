// The rough copy: a change of a pair is worked out in memory, under the header lock, and then written as one piece.
// Until KLADSCHRIJF nothing of the pair has changed, and from there on nothing is asked for that could be refused, but
// the writes; one that is refused on the way puts back what stood.
//
// Order of the writes, and why:
//   1. the header, marked as being changed      what is killed from here on is refused by all, and rebuilt
//   2. the record of an insert or update        the rebuild goes by the data file: the record is new from here on
//   3. new index blocks, behind the last        a full disk shows here, before anything in use was touched; one write
//   4. blocks in use, the highest level first   a reader without a lock finds every entry at each moment: the way to
//                                               a left half stands before the right half loses it
//   5. the slot of a deleted record             so no entry ever leads to a free slot
//   6. the reservation of an inserted key
//   7. the header with the new counters, unmarked
// Where the index is mapped, 1, 4, 6 and 7 are stores, which nothing refuses.
// In exclusive mode the mark of the first change stays up to the close, and the counters are the handle's until then; the blocks of
// an insert are held back (store/uitstel.h).
#pragma once
#include "store/getuige.h"

namespace zg {

// Shared handles take the header lock and read the header; stops when the pair is marked as being changed. On a shared file
// system, where a block costs a turn over the wire, a handle that finds the count as its last change left it goes on with
// the blocks of that one.
void KLADBEGIN(ICB* icb);
// Leave without a write: counters as they were, lock released.
void KLADWEG(ICB* icb);

// What happens to the record at `currec`: `was` is what stands there, null for one behind the last; `voor` what was seen in front of it.
enum Kladsoort { KL_INSERT, KL_UPDATE, KL_DELETE };
void KLADRECORD(ICB* icb, Kladsoort soort, const void* was, const void* wordt, IXGETUIGE voor);
// The lock queue, whose lock the caller has just taken for this change; `was` null when it stays as it is.
void KLADRIJ(int32_t blok, const void* was, const void* wordt);
// All of it to disk, and the header lock released. 0: refused, errno says why, files and counters as before; the caller
// tells the user (IXGEWEIGERD) once he has let go of his locks. Stops the program when what stood could not be put
// back; the pair then stays marked.
int KLADSCHRIJF(ICB* icb);

// Is it known that the data file ends where the counters say? `gekeken`: it has just been looked at.
bool KLADOMVANG(bool gekeken = false);

uint64_t KLADTELLER(); // changes that this program has written

void KLADVERGEET(const ICB* icb); // a new handle in the place of one that never came to the end of its change

// For blok.cpp: is this handle at work on a rough copy; a block out of it into `node`; the block in hand, as just read
// and as changed; is `blok` the first new one.
bool KLADAAN(const ICB* icb);
bool KLADLEES(ICB* icb, int32_t blok);
void KLADGELEZEN(ICB* icb, int32_t blok);
void KLADZET(ICB* icb, int32_t blok);
bool KLADEERSTE(const ICB* icb);
int32_t KLADBLOKKEN(const ICB* icb); // on disk: the handle's count, before the change in hand
bool KLADRIJLEEG(const ICB* icb);    // was no key reserved when this change began?

// An overwrite of n bytes that puts back `was` when it is refused: 1 done, 0 refused, with errno, and everything as
// before. Stops when it could not be put back.
int IXOVERSCHRIJF(ICB* icb, int fd, int64_t plaats, const void* was, const void* wordt, size_t n);

} // namespace zg
