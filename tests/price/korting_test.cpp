// The discount field: what its calculation does, and the field with its window in a real terminal.
#include "price/kortingveld.h"
#include "term/gesprek.h"

using namespace zg;
using namespace zg::test;

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
        {"a total out of range is refused", "<F10>+95<Enter><Esc><Enter>50<Enter>", 50, nullptr},
        {"calculation left without taking it", "<F10>+5<Enter><Esc><Esc><Enter>", 10, nullptr},
    };
    for (auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        Gesprek t([] {
            double procent = 10;
            korting_veld(5, 10, &procent);
            return vorm("%g", procent);
        });
        const std::string_view toetsen = g.toetsen;
        const size_t enter = toetsen.find("<Enter>");
        if (g.melding && enter != toetsen.npos) {
            t.toetsen(toetsen.substr(0, enter + 7), g.melding);
            t.toetsen(toetsen.substr(enter + 7));
        } else {
            t.toetsen(toetsen);
        }
        EXPECT_EQ(t.antwoord(), vorm("%g", g.uit));
    }
}
