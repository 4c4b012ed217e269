// The places of a pair's records in the order of its current key, for lists that say "3 van 60".
#pragma once
#include "store/ix.h"
#include <functional>
#include <vector>

namespace zg {

class Rangorde {
public:
    // Walk the key from its first record and remember the order, as far as `past` takes the records. The caller stands
    // nowhere afterwards. More than a page or two of a long table is not worth the walk: then nothing is known.
    void neem(ICB* icb, const std::function<bool(const void*)>& past);
    void vergeet() { genomen_ = false; }
    bool genomen() const { return genomen_; }
    int64_t aantal() const { return static_cast<int64_t>(recs_.size()); } // 0: not known
    int64_t van(int32_t recnr) const;                                     // from 1; 0: not among them

private:
    std::vector<int32_t> recs_;
    bool genomen_ = false;
};

} // namespace zg
