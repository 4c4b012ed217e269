// Between the files of module ioeti: the open file, the chain in hand, blocks read with their checks.
#pragma once
#include "shared/ioeti.h"

namespace zg::eti {

inline constexpr char BESTAND[] = "DTETI.TXT";

extern int fd;
extern bool gewapend; // a chain is in hand
extern seriesleutel serie;
extern int32_t* kop;
extern etiblok blok; // in memory
extern int32_t blok_nr;
extern char letter; // of the call at work, for the report

inline int64_t begin(int32_t nr) {
    return int64_t{nr} * static_cast<int64_t>(sizeof(etiblok));
}
// A program that dies or is refused between counters and block leaves them one ahead of the file; others than ours don't
// hold them meanwhile, so as many as there are terminals may be under way.
inline constexpr int64_t VOORUIT = 99;
int64_t blokken(); // in the file; a block begun counts
bool beschadigd(int32_t nr, const char* fmt, ...) __attribute__((format(printf, 2, 3))); // notes it: false
// Into memory unless it is there, in a walk with those behind it; ownership is looked at when a chain is in hand. False:
// damaged.
bool lees(int32_t nr, bool mee_lezen = false);
bool lees_los(int32_t nr, etiblok* naar); // without ownership and memory
void vergeet_mee();                       // what was read along, because a block is written
// Go on from the block in memory. 1, or 0 at the end, -1 damaged.
int volgend_blok(int64_t* stappen);
[[noreturn]] void stop(int32_t nr);

// A block for the chain in hand, behind block `laatste` (-1: as its first), with its first place filled or null. 1 and
// its number; 0: refused or full, told.
int nieuw_blok(int32_t laatste, uint8_t etiketsoort, const uint8_t* plaats, int32_t* nr);

} // namespace zg::eti
