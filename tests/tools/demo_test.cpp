// The stand-in menu, on the demo data directory.
#include "shared/iotab.h"
#include "support/demomap.h"
#include "tools/shell.h"

namespace zg {
namespace {

using test::DemoMap;
using test::Terminal;

template <class R> R slot(const DemoMap& demo, const Systabel& tabel, int nr) {
    std::string bytes = test::lees_bestand(demo.bestand("DTSYS.TXT"));
    R rec{};
    memcpy(static_cast<void*>(&rec), bytes.data() + tabel.start + (nr - 1) * tabel.grootte, sizeof rec);
    return rec;
}

// A line of its texts that can't be is told with its number.
TEST(Demo, ALineThatCantBeIsTold) {
    test::TijdelijkeMap map;
    std::string maten;
    for (int i = 1; i <= 95; i++)
        maten += " " + std::to_string(i);
    const std::pair<std::string, const char*> rijen[] = {
        {"100 Veel: 36", "maten.txt:1: not a number from 1 to 99: 100"},
        {"12 Niets:", "maten.txt:1: 1 to 95 sizes"},
        {"12 Veel:" + maten + " 96", "maten.txt:1: 1 to 95 sizes"},
        {"12 Veel:" + maten, ""}};
    for (const auto& [zin, zegt] : rijen)
        test::hoort("rm -rf bron doel; cp -r '" ZG_SOURCE_DIR "/data/demo' bron && sed -i '1i " + zin +
                        "' bron/maten.txt && zgdemo doel --from bron",
                    *zegt ? 1 : 0, zegt);
}

// Killed at any moment it leaves nothing that the next one takes for a firm, nor for somebody else's.
TEST(Demo, OneThatWasKilledIsMadeAgain) {
    test::TijdelijkeMap map;
    for (const char* gedeeld : {"", "ZGGEDEELD=1 "})
        for (const char* na : {"0.01", "0.02", "0.04", "0.08"}) {
            test::sh(std::string("timeout --foreground -s KILL ") + na + " zgdemo --fresh --alone doel");
            test::hoort(std::string(gedeeld) + "zgdemo doel && zgcheck -q doel", 0);
        }
    test::sh("truncate -s 69 doel/ZGDEMO.MRK");
    test::Agent maker([] { return IOLOCK('E', open("doel/ZGDEMO.MRK", O_RDWR | O_CLOEXEC), 0, 0) == 1; });
    test::hoort("zgdemo doel", 1, "another zgdemo is at work there (process " + std::to_string(maker.pid()));
}

TEST(Menu, HandsOverAndTakesBack) {
    DemoMap demo;
    Terminal t({test::programma("zgbsmenu")}, test::demo_opties(demo));
    test::naar_seizoen(t, 2);
    gebruikerslot in = slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2);
    EXPECT_EQ(in.userstate, 1);
    EXPECT_EQ(std::string(VASTUIT(in.userprog)), "zgbestel");
    EXPECT_FALSE(VASTLEEG(in.usertty));
    t.toetsen("<Esc>");
    ASSERT_TRUE(t.wacht("Orders registreren")) << t.scherm();
    EXPECT_EQ(std::string(VASTUIT(slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2).userprog)), "zgbsmenu");
    t.toetsen("<Esc>");
    EXPECT_EQ(t.einde(), 0);
    gebruikerslot uit = slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2);
    EXPECT_EQ(uit.userstate, 0);
    EXPECT_TRUE(VASTLEEG(uit.usertty) && VASTLEEG(uit.userprog));
    EXPECT_EQ(std::string(gebruiker_naam(uit)), "Pieter");
}

TEST(Menu, RefusesAWrongHandOver) {
    DemoMap demo;
    for (auto [naam, nr] : {std::pair{"Pieter", "1"}, {"Joke", "0"}, {"Joke", "50"}, {"Joke", "x"}}) {
        Terminal t({test::programma("zgbsmenu"), "zgbsmenu", naam, nr, "zgbestel"}, test::demo_opties(demo));
        EXPECT_TRUE(t.wacht("PROGRAMMA AFGEBROKEN")) << naam << nr << t.scherm();
        t.toetsen("<Enter>");
        EXPECT_EQ(t.einde(), 1) << naam << nr;
    }
}

} // namespace
} // namespace zg
