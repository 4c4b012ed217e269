// The preview, in a terminal: every action by key, by letter and from the menu; sizes; odd reports; time.
#include "print/printjob.h"
#include "support/proef.h"
#include "term/scherm.h"

namespace zg {
namespace {

using Voorbeeld = test::InMap;

// A report of numbered pages; each line says where it stands, at its start and in columns 100 and on.
std::string rapport(int bladen, int regels, bool met_bladen = true) {
    std::string uit;
    for (int b = 1; b <= bladen; b++) {
        for (int r = 1; r <= regels; r++) {
            std::string regel = "b" + std::to_string(b) + " r" + std::to_string(r);
            regel.resize(100, ' ');
            uit += regel + "ver" + std::to_string(b) + "." + std::to_string(r) + "\n";
        }
        if (met_bladen)
            uit += '\f';
    }
    return uit;
}

printjob opdracht(const std::string& tekst, int kolommen, bool apparaat = true) {
    printjob job{.weg = apparaat ? Printweg::wachtrij : Printweg::geen,
                 .kolommen = kolommen,
                 .init = "\x1B@\n\f",
                 .exit = "\x1BZ\f",
                 .apparaat = apparaat ? "laser" : "",
                 .kopieen = 1,
                 .spool = "spool"};
    job.begin = static_cast<int64_t>(job.init.size());
    job.plaats = static_cast<int64_t>(job.init.size() + tekst.size() + job.exit.size());
    test::schrijf_bestand("spool", job.init + tekst + job.exit);
    return job;
}

// The preview in a child: its answer is the exit status, 100 and more when SCHERM.laatste isn't that of leaving.
std::function<int()> kijk(const printjob& job) {
    return [job] {
        SCRINIT();
        const int n = PRT_SCR(job);
        const bool goed = n > 0 || SCHERM.laatste == K_CANCEL;
        const bool terug = SCHERM.cols == 80 && SCHERM.aantal == 1;
        SCRFLUSH(job.spool == "weg" ? 1 : 0); // its message is to be seen
        SCREXIT();
        return n + (goed ? 0 : 100) + (terug ? 0 : 200);
    };
}

// What the screen shows: first row under the head, the head, the status row.
std::string stand(test::Terminal& t) {
    auto kort = [](std::string s) { return s.substr(0, s.find("  ")); };
    std::string onder = t.regel(25);
    onder.erase(0, onder.find_first_not_of(' '));
    for (size_t p; (p = onder.find("  ")) != std::string::npos;)
        onder.erase(p, 1);
    return kort(t.regel(1)) + "|" + kort(t.regel(2)) + "|" + onder;
}

TEST_F(Voorbeeld, EveryActionByKeyLetterAndMenu) {
    // Three pages of 60 lines: three screenfuls each of 23 under a head of one.
    test::Terminal t(kijk(opdracht(rapport(3, 60), 132)));
    ASSERT_TRUE(t.wacht("(blad 1 van 3)")) << t.scherm();
    for (const auto& [toetsen, beeld] : test::Rijen<const char*, const char*>{
             {"", "b1 r1|b1 r2|(blad 1 van 3)"},
             {"x<Enter>", "b2 r1|b2 r2|(blad 2 van 3)"}, // the menu begins on what can be done here
             {"<PgUp><PgUp><Enter>", "b1 r1|b1 r25|(blad 1 van 3)"}, // off at the very start
             {"e", "b1 r1|b1 r48|(blad 1 van 3)"},
             {"E", "b2 r1|b2 r2|(blad 2 van 3)"},
             {"<Enter><PgUp>", "b1 r1|b1 r2|(blad 1 van 3)"},
             {"<PgDn>d", "b3 r1|b3 r2|(blad 3 van 3)"},
             {"<End>", "b3 r1|b3 r48|Einde overzicht (blad 3 van 3)"}, // of a last page that goes on
             {"d<Enter>t", "b3 r1|b3 r48|Einde overzicht (blad 3 van 3)"},
             {"h<F6>2<Enter>", "b2 r1|b2 r2|(blad 2 van 3)"},
             {"s3<Enter>", "b3 r1|b3 r2|(blad 3 van 3)"},
             {"<F6>9<Enter><Esc>", "b3 r1|b3 r2|(blad 3 van 3)"}, // out of range: asked again
             {"h<Right>rl", "~ver1.2"},                           // no further than the width
             {"ll", "b1 r1|b1 r2|(blad 1 van 3)"},
             {"i70<Enter>rr", "~ver1.2"},
             {"<Left>k3<Enter><Enter>", "b1 r1|b1 r2|(blad 1 van 3)"}, // the second row is of the head now
             {"k16<Enter>1<Enter><PgDn>", "b2 r1|b2 r2|(blad 2 van 3)"},
             // The same from the menu, that any other key opens on its first item that is on.
             {"x<Enter>", "b1 r1|b1 r2|(blad 1 van 3)"},
             {"xtx<PgUp>x<Esc>", "b2 r1|b2 r2|(blad 2 van 3)"},
             {"xs1<Enter>xr", "~ver1.2"},
         }) {
        t.toetsen(toetsen);
        if (beeld[0] == '~')
            EXPECT_TRUE(t.regel(2).ends_with(std::string(" ") + (beeld + 1))) << toetsen << t.scherm();
        else
            EXPECT_EQ(stand(t), beeld) << toetsen << "\n" << t.scherm();
    }
    t.toetsen("x");
    for (const char* tekst : {"PrintMenu", "Vorig blad      <PgUp>", "Volgend scherm <Enter>", "Scrollen",
                              "Instellen (70)", "Kopregels (1)", "Einde", "Niet printen"})
        EXPECT_TRUE(t.wacht(tekst)) << tekst << "\n" << t.scherm();
    t.toetsen("<Esc><F4>21<Enter>", "Aantal Afdrukken"); // 20 at most
    t.toetsen("<Del><Del>12<Enter>");
    t.toetsen("a<Esc>p");
    EXPECT_EQ(t.einde(), 12) << t.scherm();
}

TEST_F(Voorbeeld, LeavingAndDevices) {
    const struct {
        bool apparaat;
        const char* toetsen;
        int einde;
    } rijen[] = {{true, "xp", 1}, {false, "p<F4>3<Enter>xp<Esc><Esc>", 0}}; // nothing to print to
    for (const auto& r : rijen) {
        test::Terminal t(kijk(opdracht("een regel\n\f", 80, r.apparaat)));
        ASSERT_TRUE(t.wacht("een regel"));
        EXPECT_TRUE(t.regel(25).starts_with("Einde overzicht")) << t.scherm();
        t.toetsen("<F4>"); // a question, and its messages
        EXPECT_TRUE(t.regel(25).starts_with("   ")) << t.scherm();
        t.toetsen("<Esc>");
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.einde(), r.einde) << r.toetsen << t.scherm();
    }
    // Without a screen nobody looks; a report that is gone is told.
    printjob job = opdracht("x\n", 80);
    EXPECT_EQ(PRT_SCR(job), 1);
    job.spool = "weg";
    test::Terminal t(kijk(job));
    t.wacht("Kan tijdelijk print bestand niet openen !");
}

// Where the report fits there is no going sideways; what is beyond its own width isn't shown.
TEST_F(Voorbeeld, Widths) {
    for (const auto& [kolommen, breed] : {std::pair{132, 132}, {80, 132}, {40, 80}}) {
        test::Opties o;
        o.kolommen = breed;
        test::Terminal t(kijk(opdracht(rapport(1, 5), kolommen)), o);
        ASSERT_TRUE(t.wacht("b1 r5"));
        t.toetsen("r");
        EXPECT_EQ(t.regel(2).find("ver1.2") != std::string::npos, kolommen == 132) << t.scherm();
        EXPECT_TRUE(t.regel(2).starts_with("b1 r2"));
        t.toetsen("n");
        EXPECT_EQ(t.einde(), 0);
    }
}

TEST_F(Voorbeeld, OddReports) {
    const struct {
        std::string tekst;
        std::vector<const char*> regels; // of the first page
        int bladen;
    } rijen[] = {
        {"a\n\nb\n\f", {"a", "", "b"}, 1}, // an empty line is a line
        {"a\rb\n", {"a", "b"}, 1},
        {"\fb\n\f", {}, 2},
        {"a\f\fb", {"a"}, 3},
        {std::string("\x1B[J\x9Bm\a|\x7F\0b\tc\n", 13), {".[Jøm.|..b.c"}, 1},
        {"1234567890123456789012345\nx\n", {"12345678901234567890", "x"}, 1}, // what is too wide makes no row
        {"", {}, 1},
    };
    for (const auto& r : rijen) {
        test::Terminal t(kijk(opdracht(r.tekst, 20)));
        ASSERT_TRUE(t.wacht("(blad 1 van " + std::to_string(r.bladen) + ")")) << r.tekst << t.scherm();
        for (size_t i = 0; i < 4; i++)
            EXPECT_EQ(t.regel(static_cast<int>(i) + 1), i < r.regels.size() ? r.regels[i] : "")
                << r.tekst << t.scherm();
        t.toetsen("<Enter><End><Esc>");
        EXPECT_EQ(t.einde(), 0);
    }
}

// 100,000 lines, in pages and in one: every key answers at once.
TEST_F(Voorbeeld, LongReports) {
    for (bool bladen : {true, false}) {
        const printjob job = opdracht(rapport(2500, 40, bladen), 132);
        test::Terminal t(kijk(job));
        ASSERT_TRUE(t.wacht("b1 r24"));
        const std::pair<const char*, const char*> toetsen[] = {
            {"<End>", bladen ? "b2500 r24" : "b2500 r40"},
            {"<Home>", "b1 r24"},
            {"<PgDn>", bladen ? "b2 r24" : "b1 r25"},
            {"<Enter>", bladen ? "b2 r40" : "b2 r30"},
            {"<PgUp>", "b1 r24"},
        };
        for (const auto& [toets, ziet] : toetsen) {
            const auto nu = std::chrono::steady_clock::now();
            t.toetsen(toets);
            EXPECT_TRUE(t.wacht(ziet)) << toets << t.scherm();
            EXPECT_LT(std::chrono::steady_clock::now() - nu, std::chrono::seconds(3)) << toets;
        }
        t.toetsen("n");
        EXPECT_EQ(t.einde(), 0);
    }
}

} // namespace
} // namespace zg
