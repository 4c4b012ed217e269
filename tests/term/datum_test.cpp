#include "term/datum.h"
#include <cmath>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

namespace zg {
namespace {

struct Datumgeval {
    const char* tekst;
    int geldig;
    int nummer;
};

TEST(Datum, TekstNaarNummer) {
    const Datumgeval gevallen[] = {
        {"29021901", 0, 0},   {"01012079", 1, 0},   {"31121899", 1, 0},   {"01019999", 1, 0},
        {"010100", 1, 36526}, {"290200", 1, 36585}, {"010180", 1, 29221}, {"311250", 1, 55153},
        {"010151", 1, 18629}, {"290201", 0, 0},     {"310416", 0, 0},     {"000116", 0, 0},
        {"010016", 0, 0},     {"011316", 0, 0},     {"320116", 0, 0},     {"", 0, 0},
        {"01011", 0, 0},      {"0101160", 0, 0},    {"010120166", 0, 0},  {"01-116", 0, 0},
        {" 10116", 0, 0},     {"+10116", 0, 0},     {"01011 16", 0, 0},
    };
    for (const auto& g : gevallen) {
        EXPECT_EQ(DATUMGELDIG(g.tekst), g.geldig) << g.tekst;
        EXPECT_EQ(DATUMNR(g.tekst), g.nummer) << g.tekst;
    }
}

// Each number has one text, the texts run on day by day, and they lead back as far as the year range reaches.
TEST(Datum, AlleNummers) {
    const int lengte[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int d = 1, m = 1, j = 1900;
    for (int nr = 1; nr <= 65535; nr++) {
        char verwacht[40], uit[9];
        snprintf(verwacht, sizeof verwacht, "%02d%02d%04d", d, m, j);
        DATUMTEKST(uit, static_cast<uint16_t>(nr), true);
        ASSERT_STREQ(uit, verwacht);
        ASSERT_EQ(DATUMNR(uit), j > 2078 ? 0 : nr) << uit;
        DATUMTEKST(uit, static_cast<uint16_t>(nr), false);
        ASSERT_EQ(std::string(uit), std::string(verwacht, 4) + (verwacht + 6));
        if (j >= 1951 && j <= 2050) {
            ASSERT_EQ(DATUMNR(uit), nr) << uit;
        }
        if (++d > lengte[m] + (m == 2 && j % 4 == 0)) {
            d = 1;
            if (++m > 12) {
                m = 1;
                j++;
            }
        }
    }
}

TEST(Datum, Vormen) {
    EXPECT_STREQ(DATUM6(36585), "290200");
    EXPECT_STREQ(DATUM8(36585), "29-02-00");
    EXPECT_STREQ(DATUM10(36585), "29-02-2000");
    EXPECT_STREQ(DATUM10(36525), "31-12-1999");
    EXPECT_STREQ(DATUM6(0), "      ");
    EXPECT_STREQ(DATUM8(0), "  -  -  ");
    EXPECT_STREQ(DATUM10(0), "  -  -    ");
    EXPECT_EQ(DATUM6(1), DATUM10(2)) << "one buffer for all";
}

TEST(Datum, Afronden) {
    const std::pair<double, int32_t> gevallen[] = {
        {0.5, 1},
        {-0.5, -1},
        {0.49999999999999994, 0},
        {-0.49999999999999994, 0},
        {2147483647.4, INT32_MAX},
        {1e300, INT32_MAX},
        {-1e300, INT32_MIN},
        {std::nan(""), 0},
        {8.29 * 100, 829},
    };
    for (auto [waarde, verwacht] : gevallen)
        EXPECT_EQ(round(waarde), verwacht) << waarde;
}

TEST(Datum, Klok) {
    time_t voor = time(nullptr);
    uint16_t dag = VANDAAG();
    int32_t seconden = NUSECONDEN();
    tm t{};
    localtime_r(&voor, &t);
    char tekst[32];
    strftime(tekst, sizeof tekst, "%d%m%Y", &t);
    EXPECT_NEAR(DATUMNR(tekst), dag, 1);
    EXPECT_GE(seconden, 0);
    EXPECT_LT(seconden, 86401);
    EXPECT_STREQ(TIJDTEKST(86399), "23:59:59");
    EXPECT_STREQ(TIJDTEKST(61), "00:01:01");
}

} // namespace
} // namespace zg
