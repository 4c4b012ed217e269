// Small pairs of the record store for tests of what stands on it.
#pragma once
#include "store/ix.h"
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zg::test {

// An empty pair by its definition texts, title and record length first, then a text a key.
inline ICB* nieuw_paar(const char* naam, const std::vector<std::string>& teksten, int mode = 1) {
    ICB* icb = IXCREATE(naam, 1);
    for (size_t sleutel = 0; sleutel < teksten.size(); sleutel++)
        IXUPDFCB(icb, static_cast<int>(sleutel), teksten[sleutel].c_str());
    IXINIT(icb);
    IXCLOSE(icb);
    return IXOPEN(naam, mode);
}

template <class R> void schrijf(ICB* icb, const R& rec) {
    uint8_t buffer[IXRECMAX] = {};
    memcpy(buffer, &rec, sizeof rec);
    EXPECT_EQ(IXWRITE(icb, buffer), 1);
}

} // namespace zg::test
