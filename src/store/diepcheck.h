// The deep check of a pair: header, sizes, free chain, lock queue and every tree, each live record once in
// each. Read-only, in memory that doesn't grow with the file, and safe on any bytes. Serves the tests and the
// operators' tools. A quick check is IXCHECK; the repair is a rebuild (store/rebuild.h).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

inline constexpr size_t IXBEVINDINGEN = 100; // findings told one by one; a last line counts the others

// What was seen on the way, good or bad.
struct IXTELLING {
    int64_t records = 0, levend = 0, vrij = 0; // slots in the data file
    int64_t blokken = 0, gebruikt = 0; // index blocks, and those that a tree reaches or have a fixed use
    int reserveringen = 0;             // keys in the lock queue
    int diepte[5] = {};                // levels of each tree
    int64_t bevindingen = 0;
};

// Check a pair whose header lock the caller holds, by its two descriptors. `tijdelijk`: a temporary index,
// which has some of the records of the data file. Answers what is wrong, in English, nothing when all is
// well.
std::vector<std::string> IXDIEPCHECK(int idxfd, int datfd, bool tijdelijk = false,
                                     IXTELLING* telling = nullptr);
// The same by name: opens both files and takes the header lock, for which it waits 10 seconds at most. A pair that
// this program itself has open in mode 1 is not looked at: its counters are in the handle, and its lock would go.
std::vector<std::string> IXDIEPCHECK(const char* naam, IXTELLING* telling = nullptr);

// What the first tree of an index leads to, and how much of it is still there. A data file that was emptied leaves the index
// as the only proof of what it held.
struct IXSPOOR {
    int64_t sleutels = 0; // records by the tree, when it is sound in itself and not marked; else 0
    int64_t terug = 0; // of them those that stand in the data file, with that key; of a single one any record
};
IXSPOOR IXZOEKTERUG(int idxfd, int datfd, const struct IXHEADER& h); // by these definitions

// Called now and then with work done and work in all, when set.
extern void (*IXDIEPVOORTGANG)(int64_t gedaan, int64_t totaal);

} // namespace zg
