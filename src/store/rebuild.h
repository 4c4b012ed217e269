// The one repair of the store: an index made again from its data file; and the bulk load of a temporary index.
// A rebuild keeps every record at its number, chains the free slots so that the highest comes first, and keeps the
// reserved keys: a living user's look like a dead one's. Memory: some 20 MB, and for each key of a record a bit and a share of its leaf (9 bytes a node,
// half a byte a record with keys of 20 bytes): the trees grow side by side, since they take their blocks in turns.
#pragma once
#include "store/ix.h"
#include <string>
#include <vector>

namespace zg {

// Rebuild NAAM.INX from NAAM.TXT with the definitions in the old header. 1; 0 with both files as they were when
// the header is missing or makes no sense or the data file's length is not a whole number of records. Waits for
// the whole file as mode 1 does. Killed or failed half-way, the index is refused by IXCHECK and IXOPEN, its
// definitions are in its header still, and the next rebuild gives what an undisturbed one would have given.
// `gewist`: the lock queue is cleared, and the keys that stood in it are added there in words.
int IXBLDIX(const char* naam, std::vector<std::string>* gewist = nullptr);

// A header of the former version: five keys at most, the room in a node counted again.
void IXFIXHDR(ICB* icb);

// Fill the current key of an index that the caller has just emptied: 'O' begin, 'W' enter the record whose number
// is in `currec`, 'C' end. Writes the index only. Without the cache 'W' adds the record under every key.
void IXBULK(char letter, ICB* icb, const void* rec);

} // namespace zg
