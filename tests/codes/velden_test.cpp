// The fields of codes, currencies and rates on a terminal, and the list of seasons: typed, unknown, picked,
// left alone.
#include "codes/codeveld.h"
#include "codes/seizoen.h"
#include "codes/valveld.h"
#include "price/ing_val.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

struct Velden : Systeem {
    Velden() {
        VASTIN(instel15.valuta, "EUR");
        valuta(1, "EUR", 2, "Euro");
        valuta(2, "USD", 2, "Amerikaanse dollar");
        valuta(7, "JPY", 0, "Japanse yen");
        valuta_vergeet();
        zet(1, tekst30{"Inkoopcode"}, SYS_INKOOP_KOP);
        zet(2, tekst30{"Uitverkoop"}, SYS_INKOOP);
        zet(5, tekst30{"Jubileum"}, SYS_INKOOP);
    }
};

// The field itself: tests/shared/lijstveld_test.cpp.
TEST_F(Velden, Currency) {
    gesprekken_over<const char*>(
        [](const char* begin) {
            char code[4] = "";
            memcpy(code, begin, strlen(begin));
            bool anders = lijstveld(VALUTATABEL, 5, 10, "U", code, 3) == Lijstuit::anders;
            return vorm("%s %d %u %d", code, anders, SCHERM.vlag & V_LEEG, SCHERM.laatste);
        },
        {
            {"USD", "XXX<Enter>eur<Enter>", "EUR 1 0 10"},
            {"USD", "<F5><Down><Enter>", "JPY 1 0 10"},
            {"USD", "<F5>xxx<Enter>usd<Enter><Esc><Enter>", "USD 0 0 10"},
            {"", "<F5>usd<Enter><Enter>", "USD 1 0 10"}, // picked in an empty field: no longer empty
            {"", "<Enter>", " 0 8 10"},
        });
}

TEST_F(Velden, Rate) {
    struct {
        double begin;
        const char *regel, *toetsen, *uit;
    } const rijen[] = {
        {1.25, "1.25000", "<Enter>", "1.25 0"},
        {0.1341, "0.13410", "0,15<Enter>",
         "0.15 1"}, // a unit of 10 is not used: none of what stood there stays
        {0.0079, "7.90000__ (per 1000)", "8<Enter>", "0.008 1"},
        {0.0079, "7.90000__ (per 1000)", "8<Esc>", "0.0079 0"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(vorm("%g %s", r.begin, r.toetsen));
        Gesprek t([&] {
            SCRPUT(A_WAARDE, 5, 1, "79.00000  (per 10000)");
            double koers = r.begin;
            bool anders = koers_veld(5, 1, "E", "JPY", &koers);
            return vorm("%g %d", koers, anders);
        });
        std::string regel = t.regel(5);
        EXPECT_EQ(regel.substr(0, regel.find_last_not_of('_') + 1), r.regel);
        EXPECT_EQ(t.antwoord(r.toetsen), r.uit);
    }
}

TEST_F(Velden, Code) {
    Gesprek t([] {
        uint8_t code = 2;
        lijstveld(INKOOPTABEL, 5, 10, "", &code);
        return vorm("%d %s", code, lijstnaam(INKOOPTABEL, {code, ""}).c_str());
    });
    t.toetsen("7<Enter><Enter>", 25, 1, "<7> Onbekende inkoopcode");
    t.toetsen("<F5>");
    EXPECT_TRUE(t.wacht("Inkoopcode")) << "the head slot's text\n" << t.scherm();
    t.wacht("5     Jubileum");
    EXPECT_EQ(t.antwoord("<Down><Enter>"), "5 Jubileum");
}

TEST_F(Velden, Seasons) {
    for (const char* seizoen : {"0000Z", "2015W", "2015Z", "2016Z", "1998K", "2016X", "20161"})
        mkdir(seizoen, 0777);
    auto kies = [] {
        uint16_t jaar = 2015;
        char letter = 'Z';
        bool er = seizoen_kiezen(&jaar, &letter);
        return seizoen_map(jaar, letter) + vorm(" %d", er);
    };
    gesprekken(kies, {
                         {"<Enter>", "2015Z 1"}, // the list begins on it
                         {"<Up><Up><Enter>", "2016Z 1"},
                         {"2015<Enter><Enter>", "2015W 1"},
                         {"15<Enter><Enter>", "2015W 1"},
                         {"99<Enter><Enter>", "1998K 1"},
                         {"1970<Enter><Enter>", "0000Z 1"},
                         {"<Esc>", "2015Z 0"},
                     });
}

} // namespace
} // namespace zg::test
