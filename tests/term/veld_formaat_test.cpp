// The format language by table: what INGAVEFMT makes of a format, a variable and a range of the caller. No
// screen.
#include "term/formaat.h"
#include "term/ingave.h"
#include "term/veld.h"
#include <cfloat>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace zg {
namespace {

struct Doel {
    alignas(8) char bytes[300];
    Doel(const void* p, size_t n) {
        memset(bytes, '#', sizeof bytes);
        memcpy(bytes, p, n);
    }
};

template <class T> Doel getal(T x) {
    return {&x, sizeof x};
}

Doel tekst(const char* s) {
    return {s, strlen(s) + 1};
}

void lees(const char* formaat, Doel& d, double min = 0.0, double max = -1.0, int kpos = 2) {
    memset(SCHERM.toets, 0, sizeof SCHERM.toets);
    INSTELLEEG();
    INSTEL.minimum = min, INSTEL.maximum = max;
    SCHERM.kpos = kpos;
    SCHERM.rij = 3, SCHERM.kolom = 7;
    SCHERM.doel = d.bytes;
    INGAVEFMT(formaat);
}

std::string toegestaan() {
    std::string s;
    for (int c = 32; c <= 255; c++)
        if (TOETSTOE(c))
            s += static_cast<char>(c);
    return s;
}

TEST(VeldFormaat, Bereik) {
    static const struct {
        const char* formaat;
        double min, max;     // of the caller
        double onder, boven; // afterwards
        const char *tekens, *opties;
    } gevallen[] = {
        // widths and decimals
        {"4u", 0, -1, 0, 9999, "0123456789", "NZP"},

        {"3U,ZEJP", 0, -1, 0, 255, "0123456789", "ZEJP"},

        {"4d", 0, -1, -999, 9999, "-0123456789", "NZP"},

        {"4n", 0, -1, -128, 127, "-0123456789", "NZP"},

        {"12l", 0, -1, -2147483647.0, 2147483647.0, "-0123456789", "NZP"},
        {"8.4f,EP", 0, -1, 0.0001, 999.9999, ",.0123456789", "EP"},
        {"6.2fZPN", 0, -1, -99.99, 999.99, ",-.0123456789", "ZPN"},

        {"3.2f", 0, -1, 0, 0.99, ",.0123456789", "NZP"},
        {"8B,ZP", 0, -1, 0, 99999.99, ",.0123456789", "ZP"},

        // the sign options
        {"4d,Z", 0, -1, 0, 0, "0123456789", "Z"},
        {"4d,N", 0, -1, -999, -1, "-0123456789", "N"},
        {"4d,P", 0, -1, 1, 9999, "0123456789", "P"},

        // a caller may narrow, not widen
        {"4u", 5, 50, 5, 50, "0123456789", "NZP"},
        {"4u", -5, 50000, 0, 9999, "0123456789", "NZP"},
        {"4d", -50, -5, -50, -5, "-0123456789", "NZP"},

        // dates: day numbers
        {"D", 0, -1, 29221, 55153, "+-0123456789", ""},
        {"10D", 0, -1, 1, 65380, "+-0123456789", ""},
        {"8D", 36526, 60000, 36526, 55153, "+-0123456789", ""},

    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.formaat);
        Doel d = getal<double>(0);
        lees(g.formaat, d, g.min, g.max);
        EXPECT_DOUBLE_EQ(INSTEL.minimum, g.onder);
        EXPECT_DOUBLE_EQ(INSTEL.maximum, g.boven);
        EXPECT_STREQ(SCHERM.opties, g.opties);
        EXPECT_EQ(toegestaan(), g.tekens);
    }
    Doel d = getal<double>(0);
    lees("8B,ZP", d, 0, -1, 0); // a firm without decimals
    EXPECT_EQ(SCHERM.decimalen, 0);
    EXPECT_EQ(INSTEL.maximum, 99999999.0);
    EXPECT_FALSE(TOETSTOE('.'));
    lees("255f", d);
    EXPECT_EQ(INSTEL.maximum, 1e255);
}

TEST(VeldFormaat, Laden) {
    struct {
        const char* formaat;
        Doel doel;
        const char* tekst;
        double waarde;
    } const gevallen[] = {
        {"8B", getal<int32_t>(-123456), "-1234.56", -1234.56},
        {"6d", getal<int16_t>(-32768), "-32768", -32768},
        {"4n", getal<int8_t>(-100), "-100", -100},

        {"6.2f", getal<double>(-DBL_MAX / 0.5), "0.00", 0},
        {"8D", getal<uint16_t>(42490), "30-04-16", 42490},
        {"9b", getal<uint8_t>(0), "N", 0},
        {"8D,I", getal<uint16_t>(42490), "", 0},
        {"4c", tekst("abcdefgh"), "abcd", 0},
        {"4s", tekst("abcd"), "abcd", 0},

    };
    for (auto g : gevallen) {
        SCOPED_TRACE(g.formaat);
        lees(g.formaat, g.doel);
        EXPECT_STREQ(ingavetekst, g.tekst);
        EXPECT_EQ(ingavewaarde, g.waarde);
        for (size_t i = strlen(ingavetekst); i < INGAVEMAX; i++)
            ASSERT_EQ(ingavetekst[i], 0);
    }
}

// What the program may not do wrong, with the report that stops it.
TEST(VeldFormaatDeathTest, Fouten) {
    struct {
        const char* formaat;
        double min, max;
        const char* melding;
    } const gevallen[] = {
        {"256c", 0, -1, "cs=256c --> Lengte > 255 tekens"},

        {" 4q ", 0, -1, "r=3, c=7, cs=4q --> ongeldige vartype"},
        {"", 0, -1, "ongeldige vartype"},
        {"4c[abc", 0, -1, "\\[ zonder \\]"},
        {"2u", 100, 200, "ongeldig bereik"},
        {"8D", 1, 100, "ongeldig bereik"},

        {"4s", 0, -1, "STRING fout"},

    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.formaat);
        EXPECT_EXIT(
            {
                dup2(2, 1);
                dup2(open("/dev/null", O_RDONLY), 0);
                Doel d = tekst("abcdefgh");
                lees(g.formaat, d, g.min, g.max);
            },
            testing::ExitedWithCode(1), g.melding);
    }
}

TEST(Instel, Toetsen) {
    INSTELLEEG();
    for (int32_t key : {0, -1, -2, 512, 1 << 30})
        TOETSAAN(key);
    EXPECT_TRUE(INSTEL.toe.none());
    memset(SCHERM.toets, 0, sizeof SCHERM.toets);
    SCHERM.toets[key_cancel] = K_CANCEL;
    SCHERM.toets[key_up] = K_UP;
    for (int32_t key : {int32_t{K_CANCEL}, int32_t{K_HELP}, int32_t{'a'}, int32_t{K_UP}})
        TOETSAAN(key);
    TOETSUIT(K_CANCEL); // only the named key is taken away
    EXPECT_TRUE(TOETSTOE(K_ESC) && TOETSTOE(K_F1) && !TOETSTOE(K_CANCEL));
    EXPECT_TRUE(TOETSNAMED(K_UP) && !TOETSNAMED('a') && !TOETSCHECK(K_UP));
    TOETSCHECKAAN(K_UP);
    TOETSCHECKAAN(0); // the empty slots have no bit
    EXPECT_EQ(INSTEL.check, 1u << key_up);
    EXPECT_TRUE(TOETSCHECK(K_UP));
    TOETSCHECKAAN(K_CANCEL);
    TOETSCHECKUIT(K_CANCEL);
    TOETSUIT(K_UP);
    EXPECT_FALSE(TOETSCHECK(K_UP));
    INSTELLEEG();
    EXPECT_TRUE(!TOETSTOE('a') && INSTEL.maximum == -1.0);
}

} // namespace
} // namespace zg
