// Files of pairs in memory: a shared mapping, so that a block or record that all processes have is read without a system
// call, and a block in use is written without one. It shows what the calls of others write, as they write it, and the other
// way round; a file grows by calls alone, at its end, so that a full disk is an answer.
//
// Whoever reads through it stays within what the counters of the pair cover, and does without where IXKAARTLEES says so:
// no mapping on this file system, or a file that was cut under it. ZGKAART=0 in the environment: none at all.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

void IXKAARTOPEN(int fd); // map the file of IXBESTANDOPEN, where that can be
void IXKAARTDICHT(int fd);
// n bytes from a place of a file that is `lengte` long by the counters of its pair: true, or false when they are to be asked
// for by a call. A file that was cut shows by the page of its last byte, and within that page by the zeros that lie
// behind its end: bytes behind which there are no others are left to a call too.
bool IXKAARTLEES(int fd, int64_t plaats, void* doel, size_t n, int64_t lengte);
// Do the bytes that were just read stand there still? Who asks for something that is written without a count looks twice.
bool IXKAARTSTAAT(int fd, int64_t plaats, const void* wat, size_t n);
bool IXKAARTER(int fd); // is it mapped?
// n bytes at a place are going to be read: the processor may fetch them meanwhile.
void IXKAARTVOORUIT(int fd, int64_t plaats, size_t n);
// Does the file end at `lengte`, with no n bytes behind that? False also when only a call can tell.
bool IXKAARTEINDE(int fd, int64_t lengte, size_t n);
// Does it reach so far, but for zeros in its last n bytes? False also when only a call can tell.
bool IXKAARTREIKT(int fd, int64_t lengte, size_t n);
// n bytes from a place that the file had: 1 all zeros, 0 not; -1: they are to be asked for by a call.
int IXKAARTNULLEN(int fd, int64_t plaats, size_t n);

// Writing: may what stands in a file of `lengte` bytes be written over in its mapping? Where storing could find no room
// on the disk, never. Then, until the next question, n bytes (a whole number of eights) at such a place; and whether the
// file was cut meanwhile, so that they are lost.
bool IXKAARTZETTEN(int fd, int64_t lengte);
void IXKAARTZET(int fd, int64_t plaats, const void* bron, size_t n);
bool IXKAARTGAT(int fd);

// Where the mapping begins, for the first block of a file that isn't empty; null: there is none.
const uint8_t* IXKAARTBEGIN(int fd);
uint8_t* IXKAARTKOP(int fd); // the same behind IXKAARTZETTEN, to write

} // namespace zg
