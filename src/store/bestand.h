// The files of pairs: one descriptor per file per process, because closing any descriptor of a file would drop
// all the process's locks on it. Locks themselves: shared/iolock.cpp; reads and writes: shared/syscalls.h.
#pragma once
#include "shared/syscalls.h"

namespace zg {

// Open a file of a pair; vlaggen as for open (O_CLOEXEC is added), a new file as SYSNIEUW makes it. A file that the
// process has open already gives the same descriptor, and O_TRUNC then empties it. -1 with errno set.
int IXBESTANDOPEN(const char* pad, int vlaggen);
void IXBESTANDDICHT(int fd);
// Does the name that it was opened by lead to another file now, or has it none any more? What is written into it then,
// nobody sees. A directory that was moved is no such thing.
bool IXBESTANDVERVANGEN(int fd, int64_t* omvang = nullptr); // and of what stands there, the size
// Before a change: is it time to ask that again? Once in each tick of the system's coarse clock, 4 ms mostly; a change that a
// person makes always has its turn. `slot`, when no other comes: has one been without a turn?
bool IXBESTANDBEURT(int fd, bool slot = false);
// Does a handle of this process hold the header lock of this index from open to close? Whoever takes and releases
// that lock too would take it from the handle.
void IXBESTANDVAST(int fd, bool vast);
bool IXBESTANDVAST(int fd);

} // namespace zg
