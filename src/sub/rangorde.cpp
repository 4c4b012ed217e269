// See sub/rangorde.h.
#include "sub/rangorde.h"
#include <algorithm>

namespace zg {

constexpr int MEEST = 2000; // records: some milliseconds

void Rangorde::neem(ICB* icb, const std::function<bool(const void*)>& past) {
    uint8_t rec[IXRECMAX] = {};
    recs_.clear();
    genomen_ = true;
    if (icb->h.nrecs > MEEST)
        return;
    // Where records and index disagree a walk can come back to where it was.
    int rest = MEEST;
    for (int er = IXFIRSTR(icb, rec, 0); er == 1 && rest > 0; er = IXNEXTR(icb, rec, 0), rest--)
        if (past(rec))
            recs_.push_back(icb->currec);
    if (rest == 0)
        recs_.clear();
}

int64_t Rangorde::van(int32_t recnr) const {
    const auto plek = std::find(recs_.begin(), recs_.end(), recnr);
    return plek == recs_.end() ? 0 : plek - recs_.begin() + 1;
}

} // namespace zg
