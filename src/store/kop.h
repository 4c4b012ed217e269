// The header on disk. Behind its 260 bytes, at the end of block 0, stands a change count, by which a reader who has the
// file mapped knows whether the pair stood still while he looked: odd while a change is under way, even at rest. Programs
// that don't count leave other bytes there, zeros or what they had in memory; a check in the count's highest byte tells
// those, and who reads then goes by what the blocks look like.
#pragma once
#include "store/ix.h"

namespace zg {

enum Kopmerk : uint8_t {
    K_RUST = 0,
    K_BEZIG = 1,
    K_ALLEEN = 2
}; // `busy`: 2 from the first change of an exclusive handle

inline constexpr int TELPLAATS = IXBLOK - 8;

// The count that follows, from what stands there: of a change that begins or of rest.
uint32_t IXTELVERDER(uint32_t telling, Kopmerk merk);
uint32_t IXTELLEES(int idxfd);    // as it stands; 0 when there is none
bool IXTELRUST(uint32_t telling); // is it a count, and one of rest?

// Header and count as one block, *telling what stands there and then what was written: 1, or 0 with errno.
int IXKOPSCHRIJF(int idxfd, const IXHEADER& h, Kopmerk merk, uint32_t* telling);
// The same in the mapping of a file behind IXKAARTZETTEN, where only the counters of `h` are new: nothing can refuse it. The
// mark stands before what is stored after this, and rest comes after all that was stored before.
void IXKOPZET(int idxfd, const IXHEADER& h, Kopmerk merk, uint32_t* telling);
// An exclusive handle is about to make its first change: the header, with the counters that stand there, is marked, and stays so
// until it is closed. 1, or 0 with errno.
int IXALLEENMERK(ICB* icb, const IXHEADER& h);

// What a pair at rest looks like to who has it mapped. False: it isn't at rest, or that can't be known without a call.
struct IXSTAND {
    int32_t freehead, nrecs, nblocks;
    uint32_t telling; // 0: unknown
    bool bezig;       // not at rest: a program that counts is at work, for a moment
};
bool IXSTANDLEES(const ICB* icb, IXSTAND* stand);
inline bool GELIJK(const IXSTAND& a, const IXSTAND& b) {
    return a.telling == b.telling && a.nrecs == b.nrecs && a.nblocks == b.nblocks && a.freehead == b.freehead;
}

} // namespace zg
