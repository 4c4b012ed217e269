// Bulk load of an index that the caller has emptied, on the block cache. Most records come near the one before, so
// the leaf in hand is tried first.
#include "store/cache.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <algorithm>

namespace zg {
namespace {

bool in_hand(ICB* icb, int lengte) {
    const IXKNOOP& k = KNOOP(icb);
    const uint8_t* laatste = k.entries + (k.count - 1) * (lengte + 4);
    return k.level == 1 && k.count && IXCOMP(icb, k.entries, icb->keybuf, lengte) <= 0 &&
           IXCOMP(icb, laatste, icb->keybuf, lengte) >= 0;
}

void voer_in(ICB* icb, const void* rec) {
    const int lengte = IXKEYLEN(icb, 0);
    IXBLDKEY(icb, rec, lengte);
    if (in_hand(icb, lengte))
        IXLOCKEY(icb, lengte);
    else
        IXSEARCH(icb, '=', lengte); // keeps the path itself, also from a root that is in hand already
    icb->insptr = icb->currec;
    IXINSKEY(icb);
}

} // namespace

void IXBULK(char letter, ICB* icb, const void* rec) {
    IXEIS(icb, "IXBULK");
    switch (letter) {
    case 'O':
        IXSWITCH(icb, 1);
        if (IOCACHE('I', icb, 0)) {
            icb->curblock = 1;
            IOCACHE('W', icb, 1);
        }
        break;
    case 'W':
        // Every key of the index gets the record, or the others would stay empty.
        if (icb->cached && icb->h.nkeys == 1)
            voer_in(icb, rec);
        else
            IXADDKEYS(icb, rec);
        icb->h.nrecs = std::max(icb->h.nrecs, icb->currec + 1);
        break;
    case 'C':
        if (icb->cached) {
            icb->h.busy = 0;
            IOCACHE('F', icb, 0);
        }
        break;
    default:
        break;
    }
}

} // namespace zg
