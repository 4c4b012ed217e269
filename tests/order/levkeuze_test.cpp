// The dates of a delivery term as they are asked: what is refused, what is accepted, what a field begins with.
#include "order/aantallen.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

constexpr uint16_t ORDERDAG = 42430; // 1 March 2016

TEST(Levkeuze, datums_van_een_termijn) {
    struct Rij {
        const char* waarom;
        bool nieuw, leeg;
        uint16_t van, tot;
        const char *toetsen, *melding, *verder, *uit;
    };
    const char* const VOOR = "leverdatum kan niet voor de orderdatum liggen";
    const char* const ER_IS = "Levertermijn met deze laatste leverdatum reeds aanwezig";
    const Rij rijen[] = {
        {"unchanged", false, false, 42440, 42450, "<Enter>", "", "<Enter>", "1 42440 42450"},
        {"the day before the order is refused, its own day isn't", false, false, 42440, 42450,
         "290216<Enter>", VOOR, "010316<Enter><Enter>", "1 42430 42450"},
        {"an old first date isn't shown again", false, false, 42400, 42450, "<Enter>", "Ingave verplicht",
         "020316<Enter><Enter>", "1 42431 42450"},
        {"the last date follows the first", false, false, 42440, 42450, "250316<Enter>", "", "<Enter>",
         "1 42454 42454"},
        {"the last date of another term", false, false, 42440, 42450, "<Enter>100416<Enter>", ER_IS, "<Esc>",
         "0 42440 42450"},
        {"raised onto that of another term", false, false, 42440, 42450, "100416<Enter><Enter>", ER_IS,
         "110416<Enter>", "1 42470 42471"},
        {"before the first", false, false, 42440, 42450, "<Enter>100316<Enter>", "Alleen datum tussen",
         "110316<Enter>", "1 42440 42440"},
        {"new: the same last date", true, false, 42440, 42450, "<Enter><Enter>", ER_IS, "220316<Enter>",
         "1 42440 42451"},
        {"new: both begin empty", true, true, 42440, 42450, "<Enter>", "Ingave verplicht",
         "010416<Enter>020416<Enter>", "1 42461 42462"},
        {"left in the first", true, false, 42440, 42450, "020316", "", "<Esc>", "0 42440 42450"},
        {"dates that no field takes", false, false, 65000, 65001, "<Enter>", "Alleen datum tussen",
         "010416<Enter>020416<Enter>", "1 42461 42462"},
    };
    for (const Rij& r : rijen) {
        SCOPED_TRACE(r.waarom);
        Gesprek t([&] {
            kop = {};
            kop.orderdatum = ORDERDAG;
            instel15.optie15 = r.leeg;
            regel_nu.termen = {{42440, 42450, {}}, {42460, 42470, {}}};
            WINOPEN1(6, 1, 8, 80);
            WINBOX(nullptr);
            uint16_t van = r.van, tot = r.tot;
            const bool goed = levt_invoer(1, 2, &van, &tot, r.nieuw);
            WINCLOSE();
            return vorm("%d %u %u", goed, van, tot);
        });
        t.toetsen(r.toetsen);
        EXPECT_TRUE(!*r.melding || t.wacht(r.melding)) << t.scherm();
        EXPECT_EQ(t.antwoord(r.verder), r.uit);
    }
}

// A date leads to the first term that is open then.
TEST(Levkeuze, een_termijn_uit_de_lijst) {
    gesprekken(
        [] {
            regel_nu.termen = {{42440, 42450, {}}, {42460, 42470, {}}};
            uint16_t tot = 0;
            const bool goed = levt_kies(&tot);
            return vorm("%d %u", goed, tot);
        },
        {{"<Enter>", "1 42450"},
         {"210316<Enter><Enter>", "1 42450"},
         {"220316<Enter><Enter>", "1 42470"},
         {"110416<Enter><Esc>", "0 0"}});
}

} // namespace
} // namespace zg::test
