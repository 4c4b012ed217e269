// The files that a fixed row of writes and deletes leaves, byte for byte: other programs of the package read them, and
// where a record, an entry or a node comes to stand is settled for good. The sums were taken when the trees had been
// compared with a plain model of every step; a change of them is a change of the format.
#include "store/hulp.h"

namespace zg::test {
namespace {

struct Geval {
    const char* naam;
    Tabel tabel;
    int stappen;
    uint64_t index, data; // sums of the two files, the same in both modes
};

const Geval gevallen[] = {
    {"one short number", {16, {"k,I,1,2"}}, 12'000, 14496940942983860315u, 12023784591255364674u},
    {"long text, deep tree", {80, {"k,C,1,56,I,57,60"}}, 4'000, 13287956589443007033u, 2252649569251748931u},
    {"text that folds, duplicates",
     {40, {"k,I,1,4", "n,C,5,24", "g,I,25,25"}},
     4'000,
     2985165437252356293u,
     13302418279993203179u},
    {"five keys",
     {64, {"k,I,1,2", "a,NODUPS,C,5,14,I,1,2", "b,C,3,10", "c,I,25,26,C,5,8", "d,I,25,28"}},
     4'000,
     3529422742475133900u,
     6305943294032810045u},
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

uint64_t som(const std::string& bytes) {
    uint64_t uit = 14695981039346656037u;
    for (char c : bytes)
        uit = (uit ^ static_cast<uint8_t>(c)) * 1099511628211u;
    return uit;
}

class Golden : public testing::TestWithParam<int> {};

TEST_P(Golden, BestandenZijnVoorAltijd) {
    for (const Geval& g : gevallen) {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", g.tabel, GetParam());
        const size_t n = static_cast<size_t>(g.tabel.reclen);
        Toeval t(8);
        uint8_t rec[IXRECMAX], gelezen[IXRECMAX];
        std::map<int32_t, std::string> levend;
        for (int stap = 0; stap < g.stappen; stap++) {
            // Grow, then shrink to nearly nothing, and grow again.
            if (t(100) < ((stap / 1000) % 3 == 2 ? 90u : 20u) && !levend.empty()) {
                auto it = levend.lower_bound(
                    static_cast<int32_t>(t(static_cast<uint32_t>(levend.rbegin()->first + 1))));
                ASSERT_EQ(1, IXGET(icb, gelezen, it->first));
                ASSERT_EQ(0, memcmp(gelezen, it->second.data(), n));
                IXDELETE(icb, gelezen);
                levend.erase(it);
                continue;
            }
            vul(t, g.tabel, rec);
            if (!IXRECLIVE(rec, g.tabel.reclen))
                continue;
            ASSERT_EQ(1, IXWRITE(icb, rec));
            levend[icb->currec].assign(reinterpret_cast<char*>(rec), n);
        }
        EXPECT_GT(icb->h.nblocks, 20) << g.naam << ": too few splits to prove anything";
        IXCLOSE(icb);
        EXPECT_GEZOND("T") << g.naam;
        EXPECT_EQ(g.index, som(lees_index("T.INX"))) << g.naam;
        EXPECT_EQ(g.data, som(lees_bestand("T.TXT"))) << g.naam;
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Golden, testing::Values(1, 2));

} // namespace
} // namespace zg::test
