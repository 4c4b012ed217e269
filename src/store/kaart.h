// Files of pairs in memory: a shared mapping, so that a block or record that all processes have is read without a system
// call. It shows what the calls of others write, as they write it; a file grows by calls alone, at its end.
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
bool IXKAARTER(int fd); // is it mapped?
// Where the mapping begins, for the first block of a file that isn't empty; null: there is none.
const uint8_t* IXKAARTBEGIN(int fd);

} // namespace zg
