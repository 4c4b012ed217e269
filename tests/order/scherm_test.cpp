// The screens' pure parts: season years, the order of the search list, totals of a line.
#include "codes/seizoen.h"
#include "order/regelscherm.h"
#include "order/zoek_ord.h"
#include "term/vast.h"
#include <gtest/gtest.h>

using namespace zg;

TEST(Schermdelen, SeizoenJaar) {
    const unsigned gevallen[][2] = {{0, 0},     {1, 2001},  {50, 2050},  {51, 1951},
                                    {99, 1999}, {100, 100}, {2016, 2016}};
    for (auto& g : gevallen)
        EXPECT_EQ(seizoen_jaar(g[0]), g[1]);
}

TEST(Schermdelen, VolgordeVanDeOrderlijst) {
    auto rij = [](uint16_t datum, int32_t nummer, const char* lev, int32_t offset) {
        ordkop k{};
        k.orderdatum = datum;
        k.ordernummer = nummer;
        VASTIN(k.lev_ordernr, lev);
        return orderrij_maak(k, offset, true);
    };
    struct {
        const char* wat;
        orderrij eerst, daarna;
        int sleutel;
    } gevallen[] = {
        {"latest date", rij(42001, 1, "", 0), rij(42000, 9, "", 0), 1},
        {"same date: highest number", rij(42000, 2001, "", 0), rij(42000, 2000, "", 500), 1},
        {"same date, no numbers: latest in the journal", rij(42000, 0, "", 500), rij(42000, 0, "", 0), 1},
        {"highest number", rij(1, 1500, "", 0), rij(42000, 1499, "", 0), 2},
        {"supplier's number", rij(1, 1, "A1", 0), rij(42000, 9, "B1", 0), 3},
        {"none first", rij(1, 1, "", 0), rij(42000, 9, "A", 0), 3},
        {"case does not separate", rij(1, 1, "a1", 0), rij(1, 1, "B1", 0), 3},
        {"same supplier's number: highest number", rij(1, 9, "A", 0), rij(42000, 1, "A", 0), 3},
    };
    for (auto& g : gevallen) {
        EXPECT_LT(orderrij_vergelijk(g.eerst, g.daarna, g.sleutel), 0) << g.wat;
        EXPECT_GT(orderrij_vergelijk(g.daarna, g.eerst, g.sleutel), 0) << g.wat;
    }
}

// More than 32 bits hold: 95 sizes of the largest price in large numbers.
TEST(Schermdelen, TotalenLopenNietOver) {
    regelprijzen prijzen{};
    int32_t rij[MAATKOLOMMEN] = {};
    for (int m = 1; m <= MAAT_MAX; m++) {
        prijzen.bruto[m] = 2000000000;
        rij[m] = 1000000;
    }
    rij[2] = -5;    // what isn't above 0 doesn't count
    rij[0] = 12345; // the row's own total isn't a size
    ordertotalen t;
    kop = {};
    regel_totaal(rij, prijzen, &t);
    EXPECT_EQ(t.regels, 0);
    EXPECT_EQ(t.stuks, 94 * 1000000LL);
    EXPECT_EQ(t.bruto, 94 * 1000000LL * 2000000000LL);
    EXPECT_EQ(t.netto, 0);
    ordertotaal = {};
    order_totaal_bij('+', t);
    order_totaal_bij('+', t);
    order_totaal_bij('-', t);
    EXPECT_EQ(ordertotaal.regels, 1);
    EXPECT_EQ(ordertotaal.bruto, t.bruto);
}
