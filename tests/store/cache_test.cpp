// The block cache: what it holds, what it writes, and that it always finds a place.
#include "store/bestand.h"
#include "store/cache.h"
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

int lezingen, schrijvingen;

void tel_aanroepen() {
    lezingen = schrijvingen = 0;
    lees_door([](int fd, void* p, size_t n, off_t o) { return lezingen += n == IXBLOK, pread(fd, p, n, o); });
    SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) { return schrijvingen++, pwrite(fd, p, n, o); };
}

ICB* maak(int sleutels) {
    ICB* icb = IXCREATE("C", 1);
    IXUPDFCB(icb, 0, "cache,8");
    for (int k = 1; k <= sleutels; k++)
        IXUPDFCB(icb, k, "k,NODUPS,I,1,4");
    IXINITIX(icb);
    return icb;
}

void vul(ICB* icb, int32_t blok, int waarde) {
    memset(icb->node, waarde, sizeof icb->node);
    IOCACHE('W', icb, blok);
}

bool is(ICB* icb, int32_t blok, int waarde) {
    memset(icb->node, 0xEE, sizeof icb->node);
    IOCACHE('R', icb, blok);
    return icb->curblock == blok && icb->node[0] == waarde && icb->node[511] == waarde;
}

TEST(Cache, writes_once_what_differs_and_reads_back_without_the_file) {
    TijdelijkeMap map;
    const SYSCALLS echt = SYS;
    ICB* icb = maak(5);
    ASSERT_EQ(IOCACHE('I', icb, 0), 1);
    EXPECT_EQ(icb->parent[9], -1);
    tel_aanroepen();
    for (int i = 0; i < 45; i++) // five places are the roots'
        vul(icb, 10 + i, i);
    for (int i = 0; i < 45; i++)
        ASSERT_TRUE(is(icb, 10 + i, i)) << i;
    EXPECT_EQ(lezingen + schrijvingen, 0);
    IOCACHE('R', icb, 1);
    EXPECT_EQ(lezingen, 1);
    IOCACHE('F', icb, 0);
    EXPECT_EQ(schrijvingen, 45) << "a root that was only read is not written";
    EXPECT_EQ(icb->cached, 0);
    SYS = echt;
    ASSERT_EQ(IOCACHE('I', icb, 0), 1);
    for (int i = 0; i < 45; i++)
        ASSERT_TRUE(is(icb, 10 + i, i)) << i;
    IXCLOSE(icb); // flushes too
}

// Far more blocks than places, in any order, all of the same weight or not: every read gives the last write.
TEST(Cache, evicts_without_loss_or_end) {
    TijdelijkeMap map;
    for (int sleutels : {1, 5}) {
        ICB* icb = maak(sleutels);
        ASSERT_EQ(IOCACHE('I', icb, 0), 1);
        Toeval r(3);
        std::vector<int> waarde(400, -1);
        for (int stap = 0; stap < 30000; stap++) {
            int32_t blok = static_cast<int32_t>(1 + r(r(3) ? 399 : 20));
            int& w = waarde[static_cast<size_t>(blok)];
            if (w < 0 || r(2)) {
                w = static_cast<int>(r(256));
                vul(icb, blok, w);
            } else {
                ASSERT_TRUE(is(icb, blok, w)) << "block " << blok << " step " << stap;
            }
        }
        for (int32_t ronde = 0; ronde < 30; ronde++) // hits only: weights sink far below zero around them
            for (int32_t blok = 100; blok < 140; blok++)
                vul(icb, blok, waarde[static_cast<size_t>(blok)] = ronde);
        IOCACHE('F', icb, 0);
        for (int32_t blok = 1; blok < 400; blok++) {
            uint8_t b[IXBLOK];
            if (waarde[static_cast<size_t>(blok)] >= 0) {
                ASSERT_EQ(IXBLOKLEES(icb->idxfd, blok, b, sizeof b), IXBLOK);
                ASSERT_EQ(b[7], waarde[static_cast<size_t>(blok)]) << blok;
            }
        }
        IXLAATLOS(icb);
    }
}

} // namespace
} // namespace zg::test
