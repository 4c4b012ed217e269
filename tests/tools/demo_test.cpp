// The demo data directory and the stand-in menu.
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

// By the same checks that the operators have.
TEST(Demo, EveryFileIsSound) {
    DemoMap demo;
    const test::Uit u = test::sh("cd " + demo.pad() + " && ixcheck -q . && orddump -c -b 5 2016?/*.JRN");
    EXPECT_EQ(u.status, 0) << u.tekst;
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
