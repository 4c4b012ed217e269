// The block cache of one handle during a bulk job: 50 blocks of write-back memory, the roots pinned in the first
// `nkeys` places. Only for files that nobody else looks at meanwhile (mode 1 or a private temporary index).
// Used by store/rebuild and the tree's IXRDIX and
// IXWRIX, which come here for every block but 0 while `cached` is set.
#pragma once
#include "store/ix.h"

namespace zg {

inline constexpr int CACHEPLAATSEN = 50;

// 'I' switch on: `cached` 1 and no path; 0 without memory or while another handle has the cache.
// 'R' block into `node`, `curblock` set: 1, or 0 when the file has no such block (node is zeros then).
// 'W' node as the new content of the block, no write yet.
// 'F' write what differs, switch off. 'X' switch off and forget: the handle goes without being closed.
int IOCACHE(char letter, ICB* icb, int32_t blok);

} // namespace zg
