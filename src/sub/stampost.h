// One record of an indexed master table in hand: read by key 1, with its lock when it may be changed, held until it is
// written, deleted or let go. What the file's records have beyond the struct stays as it is.
#pragma once
#include "shared/stamrec.h"

namespace zg {

struct Stampost {
    ICB* const* icb;   // null when the pair isn't there: nothing is read or written
    bool slot = false; // its lock, or the reservation of its absent key, is ours
    bool er = false;   // it stands in the file
    uint8_t ruimte[IXRECMAX] = {};
};

// May records be changed: by this user, in a pair that is open for it?
bool post_mag(const Stampost& post);

// `rec` (`lengte` bytes) has key 1 filled in. 1: it is there, and in *rec. 0: it isn't; *rec is zeros behind the key.
// -1: the disk refused the reservation, which was told; nothing is held.
int post_lees(Stampost* post, void* rec, size_t lengte, size_t sleutel, bool slot);
// Write it and let go, or delete it: all who keep master records read them anew. False: refused, which was told; the
// record is held as before.
bool post_schrijf(Stampost* post, const void* rec, size_t lengte);
bool post_wis(Stampost* post);
void post_vrij(Stampost* post);

} // namespace zg
