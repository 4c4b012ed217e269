#include "support/proef.h"
#include "term/datum.h"
#include <cmath>

namespace zg {
namespace {

TEST(Datum, TekstNaarNummer) {
    static const struct {
        const char* tekst;
        int geldig, nummer;
    } gevallen[] = {
        {"29021901", 0, 0},   {"01012079", 1, 0},   {"31121899", 1, 0},   {"01019999", 1, 0},
        {"010100", 1, 36526}, {"290200", 1, 36585}, {"311250", 1, 55153}, {"290201", 0, 0},
        {"310416", 0, 0},     {"000116", 0, 0},     {"011316", 0, 0},     {"320116", 0, 0},
        {"", 0, 0},           {"01011", 0, 0},      {"010120166", 0, 0},  {"01-116", 0, 0},
        {"+10116", 0, 0},
    };
    for (const auto& g : gevallen) {
        EXPECT_EQ(DATUMGELDIG(g.tekst), g.geldig) << g.tekst;
        EXPECT_EQ(DATUMNR(g.tekst), g.nummer) << g.tekst;
    }
}

// Each number has a text of its own that leads back to it, as far as the year range reaches.
TEST(Datum, AlleNummers) {
    for (int nr = 1; nr <= 65535; nr++) {
        char lang[9], kort[9];
        DATUMTEKST(lang, static_cast<uint16_t>(nr), true);
        DATUMTEKST(kort, static_cast<uint16_t>(nr), false);
        const int jaar = atoi(lang + 4);
        ASSERT_EQ(DATUMNR(lang), jaar > 2078 ? 0 : nr) << lang;
        ASSERT_EQ(std::string(kort), std::string(lang, 4) + (lang + 6));
        ASSERT_EQ(DATUMNR(kort), jaar < 1951 || jaar > 2050 ? DATUMNR(kort) : nr) << kort;
    }
    char laatste[9];
    DATUMTEKST(laatste, 65535, true);
    EXPECT_STREQ(laatste, "04062079");
}

TEST(Datum, Afronden) {
    std::string uit;
    for (double waarde : {0.5, -0.5, 0.49999999999999994, -0.49999999999999994, 2147483647.4, 1e300, -1e300,
                          std::nan(""), 8.29 * 100})
        uit += std::to_string(round(waarde)) + " ";
    EXPECT_EQ(uit, "1 -1 0 0 2147483647 2147483647 -2147483648 0 829 ");
}

TEST(Datum, Klok) {
    time_t nu = time(nullptr);
    tm t{};
    localtime_r(&nu, &t);
    char tekst[32];
    strftime(tekst, sizeof tekst, "%d%m%Y", &t);
    EXPECT_NEAR(DATUMNR(tekst), VANDAAG(), 1);
    EXPECT_STREQ(TIJDTEKST(86399), "23:59:59");
    EXPECT_STREQ(TIJDTEKST(61), "00:01:01");
}

} // namespace
} // namespace zg
