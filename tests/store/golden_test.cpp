// The files of one process, block for block, beside the plain model.
#include "store/hulp.h"
#include "store/model.h"
#include <cstring>
#include <set>

namespace zg::test {
namespace {

struct Geval {
    const char* naam;
    Tabel tabel;
    int stappen;
};

const Geval gevallen[] = {
    {"one short number", {16, {"k,I,1,2"}}, 12'000},
    {"long text, deep tree", {80, {"k,C,1,56,I,57,60"}}, 4'000},
    {"text that folds, duplicates", {40, {"k,I,1,4", "n,C,5,24", "g,I,25,25"}}, 4'000},
    {"five keys",
     {64, {"k,I,1,2", "a,NODUPS,C,5,14,I,1,2", "b,C,3,10", "c,I,25,26,C,5,8", "d,I,25,28"}},
     4'000},
};

// Values come from narrow ranges, so that updates move keys, deletes empty leaves and slots are used again.
void vul(Toeval& t, const Tabel& tabel, uint8_t* rec) {
    static const uint8_t letters[] = "abcABCdeE\x82\x8a\x81u\x91\xe1sS z\x07";
    memset(rec, 0, IXRECMAX);
    for (int i = 0; i < tabel.reclen; i++)
        rec[i] = t(5) ? letters[t(sizeof letters - 1)] : static_cast<uint8_t>(t(256));
    uint32_t nr = t(3000);
    if (tabel.sleutels.size() > 1 || tabel.reclen == 16)
        memcpy(rec, &nr, tabel.reclen == 16 ? 2 : 4);
    else
        for (int i = 8; i < 56; i++)
            rec[i] = 0;
}

class Golden : public testing::TestWithParam<int> {};

TEST_P(Golden, BlokVoorBlok) {
    const int mode = GetParam();
    for (const Geval& g : gevallen) {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", g.tabel, mode);
        Model model(icb->h);
        Toeval t(static_cast<uint64_t>(mode) * 7 + 1);
        uint8_t rec[IXRECMAX], gelezen[IXRECMAX];
        std::set<int32_t> levend;
        for (int stap = 0; stap < g.stappen; stap++) {
            // Grow, then shrink to nearly nothing, and grow again.
            bool wis = t(100) < ((stap / 1000) % 3 == 2 ? 90u : 20u) && !levend.empty();
            if (wis) {
                auto it =
                    levend.lower_bound(static_cast<int32_t>(t(static_cast<uint32_t>(*levend.rbegin() + 1))));
                int32_t nr = *it;
                ASSERT_EQ(1, IXGET(icb, gelezen, nr));
                model.currec = nr;
                ASSERT_EQ(0, memcmp(gelezen, &model.data[static_cast<size_t>(nr * g.tabel.reclen)],
                                    static_cast<size_t>(g.tabel.reclen)));
                model.wis(gelezen);
                IXDELETE(icb, gelezen);
                levend.erase(it);
            } else {
                vul(t, g.tabel, rec);
                if (!IXRECLIVE(rec, g.tabel.reclen))
                    continue;
                ASSERT_EQ(1, IXWRITE(icb, rec));
                model.schrijf(rec);
                ASSERT_EQ(model.currec, icb->currec) << g.naam << " step " << stap;
                levend.insert(icb->currec);
            }
        }
        IXCLOSE(icb);
        EXPECT_EQ("", model.verschil("T")) << g.naam << " mode " << mode;
        EXPECT_GEZOND("T") << g.naam;
        EXPECT_GT(model.blok.size(), 20u) << g.naam << ": too few splits to prove anything";
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Golden, testing::Values(1, 2));

} // namespace
} // namespace zg::test
