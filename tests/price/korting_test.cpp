// The discount field: what its calculation does, and the field with its window in a real terminal.
#include "price/kortingveld.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <gtest/gtest.h>

using namespace zg;
using namespace zg::test;

TEST(Korting, Stappen) {
    EXPECT_DOUBLE_EQ(korting_stap('+', 10, 10), 20);
    EXPECT_NEAR(korting_stap('*', 10, 10), 19, 1e-9);
    EXPECT_NEAR(korting_stap('*', 50, -10), 45, 1e-9);
    EXPECT_DOUBLE_EQ(korting_stap('C', 30, 5), 0);
    EXPECT_DOUBLE_EQ(korting_stap('I', 30, 5), 5);
}

TEST(Korting, VeldEnBerekening) {
    struct {
        const char *wat, *toetsen;
        double uit;
        const char* melding;
    } gevallen[] = {
        {"typed", "7,5<Enter>", 7.5, nullptr},
        {"negative: a surcharge", "-3<Enter>", -3, nullptr},
        {"three decimals", "1,234<Enter><Home><Home><Enter>", 10, "Teveel cijfers na de komma"},
        {"out of range", "100<Enter><Home><Home><Enter>", 10, "Alleen"},
        {"cancelled", "7<Esc>", 10, nullptr},
        {"10 * 10", "<F10>*10<Enter><Esc><Enter>", 19, " BEREKENEN KORTING "},
        {"10 + 5 * 10", "<F10>+5<Enter>*10<Enter><Esc><Enter>", 23.5, nullptr},
        {"cleared, then 8", "<F10>C8<Enter><Esc><Enter>", 8, nullptr},
        {"calculation left without taking it", "<F10>+5<Enter><Esc><Esc><Enter>", 10, nullptr},
    };
    for (auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        TijdelijkeMap map(false);
        std::string uit = map.pad() + "/uit";
        Terminal t([&] {
            SCRINIT();
            double procent = 10;
            korting_veld(5, 10, &procent);
            SCREXIT();
            schrijf_bestand(uit, std::to_string(procent));
            return 0;
        });
        ASSERT_TRUE(t.kalm());
        std::string toetsen = g.toetsen;
        if (g.melding) {
            size_t enter = toetsen.find("<Enter>") + 7;
            t.toetsen(toetsen.substr(0, enter));
            EXPECT_TRUE(t.wacht(g.melding)) << t.scherm();
            toetsen = toetsen.substr(enter);
        }
        size_t laatste = toetsen.rfind('<');
        t.toetsen(toetsen.substr(0, laatste));
        t.reeks(toetsen.substr(laatste));
        ASSERT_EQ(t.einde(), 0) << t.scherm();
        EXPECT_NEAR(std::stod(lees_bestand(uit)), g.uit, 1e-6);
    }
}
