// The state of the package at the shell and in the menu, which starts nothing while it is shut.
#include "shared/iotab.h"
#include "support/demomap.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

constexpr size_t SLOT2 = 2640 + 64;

struct Status : testing::Test {
    DemoMap demo;
    Status() { EXPECT_EQ(chdir(demo.pad().c_str()), 0); }
    ~Status() override { EXPECT_EQ(chdir("/"), 0); }
    static void zet(size_t plaats, std::string_view bytes) { wijzig_bestand("DTSYS.TXT", plaats, bytes); }
};

TEST_F(Status, TheMenuStartsNothingWhileItIsShut) {
    const struct {
        const char *zet, *toont;
    } rijen[] = {{"set 1", "Foutieve of ontbrekende bestanden"},
                 {"set 3", "Afgebroken op kritieke plaats"},
                 {"block 'Inventarisatie, caf\xC3\xA9 tot 14:00'", "Inventarisatie, caf\xC3\xA9 tot 14:00"},
                 {"block @9", "Laatste back-up is niet gelukt!"}};
    Terminal t({programma("zgbsmenu")}, demo_opties(demo));
    t.wacht("Joke");
    t.toetsen("<Enter>", "Orders registreren");
    for (const auto& r : rijen) {
        EXPECT_EQ(sh(std::string("zgstatus ") + r.zet).tekst, "") << r.zet;
        EXPECT_EQ(sh("zgstatus").status, 1) << r.zet;
        EXPECT_TRUE(sh("zgstatus show").zegt(r.toont)) << r.zet;
        t.toetsen("<Enter>");
        EXPECT_TRUE(t.wacht("Er kan nu niet worden gewerkt") && t.wacht(r.toont)) << t.scherm();
        t.toetsen("<Enter>");
        t.weg("Er kan nu niet");
        EXPECT_TRUE(t.wacht_op(21, 4, r.toont)) << "it stays at the foot\n" << t.scherm();
    }
    EXPECT_EQ(sh("zgstatus free").status, 0);
    t.toetsen("<Enter>", "Seizoen");
    EXPECT_TRUE(sh("zgstatus").zegt("Joke, zgbestel, level 1"));
    EXPECT_TRUE(sh("zgstatus").zegt("orders     user 1\n"));
}

TEST_F(Status, AUserWhoDied) {
    zet(SLOT2 + 38, "\x0c");
    EXPECT_TRUE(sh("zgstatus").zegt(": died in a critical step"));
    EXPECT_TRUE(sh("zgstatus -j").zegt("\"free\":false,\"code\":0"));
    {
        // It is seen before anybody can log in at that slot, which would take the mark away.
        Terminal t({programma("zgbsmenu")}, demo_opties(demo));
        t.wacht("Joke");
        t.toetsen("<Down><Enter>", "Orders registreren");
        t.wacht("Afgebroken op kritieke plaats");
        t.toetsen("<Enter>", "Er kan nu niet worden gewerkt");
    }
    EXPECT_EQ(sh("zgstatus set 0; zgstatus").status, 0) << "he has logged in since";
    zet(SLOT2 + 64 + 38, "\x0b");
    EXPECT_EQ(sh("zgstatus set 0; zgstatus").status, 1);
    hoort("zgstatus free; zgstatus", 0, "till link  off\n");
}

TEST_F(Status, WrongUseAndHostileBytes) {
    EXPECT_EQ(sh("zgstatus set 4").status, 2);
    EXPECT_EQ(sh("zgstatus block '\xE2\x98\x83'").status, 2);
    EXPECT_EQ(sh("zgstatus -D /does/not/exist").status, 3);
    EXPECT_EQ(sh("mkdir leeg; zgstatus -D leeg").status, 3);
    EXPECT_EQ(sh(": > leeg/DTSYS.TXT; zgstatus -D leeg free; test -s leeg/DTSYS.TXT").status, 1);
    zet(64 * 9 + 58, "8.60 ");
    EXPECT_TRUE(sh("zgstatus").zegt("of release 8.60, not 8.70"));
    zet(64 * 9 + 58, "8.70 ");
    zet(64 * 9 + 8, "\x1b[2J\x07rood");
    zet(64 * 9 + 63, "\x4d");
    const Uit u = sh("zgstatus");
    EXPECT_TRUE(u.zegt("state      77 shut:  [2J rood")) << u.tekst;
    sh("printf 'Mar 1 2016\\nGeen tape\\n-\\n' > result.bu");
    EXPECT_TRUE(sh("zgstatus set 0; zgstatus backup .")
                    .zegt("0 free: Back-up niet gelukt, geen tape in tapestreamer"));
    EXPECT_EQ(sh("zgstatus > /dev/full").status, 1);
}

} // namespace
} // namespace zg::test
