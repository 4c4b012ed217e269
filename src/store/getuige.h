// Was the data file cut while a record was written? A write waits behind a truncation, and then makes the file grow again,
// with a hole of zeros before the record. So who writes looks before and behind it at the two records in front, which can't both have
// become all zeros, and behind it at whether the file still reaches as far as the counters. Out of a mapping that costs
// no call; without one, the look before it goes with a read that is made anyway, and the one behind it is a call. On a shared
// file system, where a call is dear, it isn't done.
#pragma once
#include "store/ix.h"

namespace zg {

struct IXGETUIGE {
    bool er; // is there something in front of the record that a cut would take away?
};
// The record at `currec`, which is going to be changed, and what stands in front of it. False, and 0xFF, past the end of the file.
bool IXLEESMET(ICB* icb, void* rec, IXGETUIGE* voor);
// The same of a record behind the last: does the file end there? 0 yes, below 0 it is shorter, above 0 longer.
int IXKIJKEINDE(const ICB* icb, int32_t nr, IXGETUIGE* voor);
// Behind the write of record nr of a file that has `aantal` records: false when it was cut.
bool IXKIJKNA(const ICB* icb, IXGETUIGE voor, int32_t nr, int32_t aantal);

// Has the data file `omvang` bytes although the counters ask for more? They get a moment to be wrong.
bool IXTEKORT(const ICB* icb, int64_t omvang);

// Ends the program: the data file was cut, and the pair is marked, where it isn't yet, so that nobody goes on with it.
[[noreturn]] void IXINGEKORT(ICB* icb);

} // namespace zg
