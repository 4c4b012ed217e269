// The geometry of a grid: what is visible and where the cursor stands, walked over tables of many shapes, and the
// cell as a field in a conversation.
#include "gesprek.h"
#include "term/raster.h"

using namespace zg;
using namespace zg::test;

namespace {

RASTER raster(int kolommen, int rijen, int kolvan = 9, int koltot = 78, int minbreedte = 3) {
    RASTER r{};
    r.kolommen = kolommen, r.laatsterij = rijen - 1;
    RASTERKOL(&r, kolvan, koltot, minbreedte);
    RASTERRIJ(&r, 3, 9);
    return r;
}

// Pages to the end as "first-last" of columns, then of rows.
std::string paginas(RASTER r) {
    std::string uit = vorm("%d:", r.celbreedte);
    for (;;) {
        uit += vorm(" %d-%d", r.eerstekol, r.laatstekol);
        if (r.laatstekol == r.kolommen)
            break;
        RASTERSTAP(&r, 'R');
    }
    uit += " |";
    for (;;) {
        uit += vorm(" %d-%d", r.eersterij, r.zichttot);
        if (r.zichttot == r.laatsterij)
            return uit;
        RASTERSTAP(&r, 'D');
    }
}

TEST(Raster, PagesOfColumnsAndRows) {
    const struct {
        RASTER r;
        const char* paginas;
    } rijen[] = {
        {raster(1, 1), "5: 1-1 | 0-0"},
        {raster(12, 2), "5: 1-12 | 0-1"},
        {raster(14, 5), "5: 1-14 | 0-4"},
        {raster(15, 7, 8), "4: 1-15 | 0-6"},           // 71 places: 17 columns
        {raster(18, 8, 8), "4: 1-16 17-18 | 0-6 7-7"}, // the last one with a marker only
        {raster(40, 30, 8), "4: 1-16 17-31 32-40 | 0-6 7-13 14-20 21-27 28-29"},
        {raster(14, 1, 9, 78, 4), "5: 1-14 | 0-0"},       // four digits are no wider yet
        {raster(14, 1, 9, 78, 5), "6: 1-10 11-14 | 0-0"}, // 11 columns
        {raster(16, 1, 1, 60), "4: 1-14 15-16 | 0-0"},    // 15
        {raster(4, 1, 9, 20, 11), "4: 1-2 3-4 | 0-0"},    // narrowed until three fit
        {raster(95, 1, 8), "4: 1-16 17-31 32-46 47-61 62-76 77-91 92-95 | 0-0"},
    };
    for (const auto& [r, uit] : rijen)
        EXPECT_EQ(paginas(r), uit);
    RASTER groot = raster(1, 250);
    for (int i = 0; i < 40; i++)
        RASTERSTAP(&groot, 'D');
    EXPECT_EQ(vorm("%d-%d", groot.eersterij, groot.zichttot), "245-249");
}

// Up and to the left the same pages come back, and the cursor keeps its place on the screen.
TEST(Raster, PagingKeepsTheCursorsPlace) {
    RASTER r = raster(95, 250, 8);
    RASTERCEL(&r, 5, 6);
    const int plaats = RASTERSCHERMKOL(&r), rij = RASTERSCHERMRIJ(&r);
    for (char richting : {'R', 'R', 'R', 'D', 'D', 'L', 'U', 'L', 'L', 'D', 'U', 'U'}) {
        RASTERSTAP(&r, richting);
        EXPECT_EQ(RASTERSCHERMKOL(&r), plaats) << richting << r.eerstekol;
        EXPECT_EQ(RASTERSCHERMRIJ(&r), rij) << richting << r.eersterij;
    }
    EXPECT_EQ(vorm("%d %d %d %d", r.eerstekol, r.eersterij, RASTERKOLNU(&r), RASTERRIJNU(&r)), "1 0 6 5");
    RASTERCEL(&r, 6, 16); // where the next page has a marker, and a last page has no row: the nearest cell
    for (int i = 0; i < 6; i++)
        RASTERSTAP(&r, 'R');
    EXPECT_EQ(RASTERKOLNU(&r), 95);
    for (int i = 0; i < 35; i++)
        RASTERSTAP(&r, 'D');
    EXPECT_EQ(RASTERRIJNU(&r), 249);
}

// Cell by cell each way through the whole table: every cell once, in order, always on the screen.
TEST(Raster, StepsThroughTheWholeTable) {
    for (int rijen : {1, 2, 5, 30, 250})
        for (int kolommen : {1, 12, 14, 40, 95})
            for (char heen : {'R', 'D'}) {
                SCOPED_TRACE(vorm("%d x %d %c", rijen, kolommen, heen));
                RASTER r = raster(kolommen, rijen, kolommen > 14 ? 8 : 9);
                const int laatste = rijen * kolommen - 1;
                auto nummer = [&] {
                    EXPECT_TRUE(RASTERKOLNU(&r) <= r.laatstekol && RASTERRIJNU(&r) <= r.zichttot &&
                                r.kolcursor >= 0 && r.rijcursor >= 0);
                    EXPECT_LE(RASTERSCHERMKOL(&r) + r.celbreedte - 2, r.koltot);
                    return heen == 'R' ? RASTERRIJNU(&r) * kolommen + RASTERKOLNU(&r) - 1
                                       : (RASTERKOLNU(&r) - 1) * rijen + RASTERRIJNU(&r);
                };
                int n = 0;
                while (RASTERGA(&r, heen))
                    ASSERT_EQ(nummer(), ++n);
                ASSERT_EQ(n, laatste);
                while (RASTERGA(&r, heen == 'R' ? 'L' : 'U'))
                    ASSERT_EQ(nummer(), --n);
                ASSERT_EQ(n, 0);
            }
}

TEST(Raster, EnterFollowsWhatIsLocked) {
    const struct {
        int rij, kol, vast; // asked for; vast 15 set by hand
        char richting;
        const char* uit; // row, column; "-" stays
    } rijen[] = {
        {1, 3, 0, 'R', "2 1"}, {1, 3, 0, 'D', "2 3"}, {2, 3, 0, 'R', "-"},
        {2, 3, 0, 'D', "-"},   {3, 2, 0, 'D', "0 3"}, {3, 3, 0, 'D', "-"},
        {1, 0, 0, 'R', "2 1"}, {2, 0, 0, 'R', "-"},   {1, 3, 15, 'R', "2 1"},
    };
    SCHERM.laatste = K_ENTER;
    for (const auto& [rij, kol, vast, richting, uit] : rijen) {
        RASTER r = raster(3, 3);
        RASTERCEL(&r, rij, kol);
        r.vast |= vast;
        const bool ging = RASTERENTER(&r, richting);
        EXPECT_EQ(ging ? vorm("%d %d", RASTERRIJNU(&r), RASTERKOLNU(&r)) : "-", uit)
            << rij << " " << kol << richting;
    }
    SCHERM.laatste = K_UP;
    RASTER r = raster(3, 3);
    EXPECT_FALSE(RASTERENTER(&r, 'R'));
}

const char* naam(int kol) {
    static char t[8];
    snprintf(t, sizeof t, "m%-2d", kol);
    return t;
}
int64_t honderd(int kol) {
    return kol == 20 ? 0 : kol == 21 ? 99999 : 100;
}

// Heads, totals and the keys of a cell. The child tells the cell and the key with which each field was left.
TEST(Raster, CellAsAField) {
    Gesprek t([] {
        WINOPEN1(1, 1, 24, 80);
        WINBOX(nullptr);
        RASTER r = raster(40, 30, 8);
        std::string uit;
        int32_t v = 7;
        do {
            if (r.herteken) {
                RASTERKOP(&r, A_LABEL, 2, naam);
                SCRCLREOL(10, 1);
                RASTERTOTAAL(&r, A_WAARDE, 10, honderd);
            }
            RASTERINGAVE(&r, RASTERSCHERMRIJ(&r), RASTERSCHERMKOL(&r), "3l,JZP", &SCHERM.toets[key_cancel],
                         &v);
            uit += vorm("%d,%d ", RASTERRIJNU(&r), RASTERKOLNU(&r));
        } while (!TOETSWEG());
        WINCLOSE();
        return uit + vorm("%d%d", SCHERM.toets[key_btab], SCHERM.toets[key_extra]);
    });
    stappen(t, {{"", {{3, 10, " m1  m2"}, {3, 70, "m16  >>"}, {11, 10, "100 100"}, {11, 74, "  *"}}},
                {"<F8>", {{3, 10, " <<"}, {3, 14, "m17"}, {11, 9, "   *"}, {11, 26, "   "}, {11, 30, "  *"}}},
                {"<PgDn>12<Right><F7><PgUp><PgDn><Up>", {{3, 10, " m1"}}},
                {"<Left><F7>", {}}, // the second has no way: the field says so and stays
                {"<Esc>", {}}});
    EXPECT_EQ(t.antwoord(), "0,17 7,17 7,18 7,3 0,3 7,3 6,3 6,2 6,2 00");
}

} // namespace
