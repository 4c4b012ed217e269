// The format language by table: what INGAVEFMT makes of a format, a variable and a range of the caller. No
// screen.
#include "support/proef.h"
#include "term/formaat.h"
#include "term/ingave.h"
#include "term/veld.h"
#include <cfloat>

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

// What the program may not do wrong, with the report that stops it.
TEST(VeldFormaat, Fouten) {
    for (const auto& [formaat, min, max, melding] : test::Rijen<const char*, double, double, const char*>{
             {"256c", 0, -1, "cs=256c --> Lengte > 255 tekens"},
             {" 4q ", 0, -1, "r=3, c=7, cs=4q --> ongeldige vartype"},
             {"", 0, -1, "ongeldige vartype"},
             {"4c[abc", 0, -1, "[ zonder ]"},
             {"2u", 100, 200, "ongeldig bereik"},
             {"8D", 1, 100, "ongeldig bereik"},
             {"4s", 0, -1, "STRING fout"},
         }) {
        Doel d("abcdefgh", 9);
        test::verwacht_stop([&] { lees(formaat, d, min, max); }, melding);
    }
}

} // namespace
} // namespace zg
