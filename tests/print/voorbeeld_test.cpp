// The preview, in a terminal: every action by key, by letter and from the menu; sizes; odd reports; time.
#include "print/overzicht.h"
#include "print/printjob.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include <chrono>
#include <gtest/gtest.h>

namespace zg {
namespace {

// A report of numbered pages; each line says where it stands, at its start and in columns 100 and on.
std::string rapport(int bladen, int regels, bool met_bladen = true) {
    std::string uit;
    for (int b = 1; b <= bladen; b++) {
        for (int r = 1; r <= regels; r++) {
            char regel[160];
            snprintf(regel, sizeof regel, "b%d r%d%*s", b, r, 100 - (b > 9 ? 6 : 5), "");
            snprintf(regel + 100, 40, "ver%d.%d", b, r);
            uit += regel + std::string("\n");
        }
        if (met_bladen)
            uit += '\f';
    }
    return uit;
}

printjob opdracht(const std::string& tekst, int kolommen, bool apparaat = true) {
    printjob job{};
    job.spool = "spool";
    job.kolommen = kolommen;
    job.init = "\x1B@\n\f";
    job.exit = "\x1B"
               "E\f";
    job.begin = static_cast<int64_t>(job.init.size());
    job.plaats = static_cast<int64_t>(job.init.size() + tekst.size() + job.exit.size());
    job.weg = apparaat ? Printweg::wachtrij : Printweg::geen;
    job.apparaat = apparaat ? "laser" : "";
    job.kopieen = 1;
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

TEST(Voorbeeld, EveryActionByKeyLetterAndMenu) {
    test::TijdelijkeMap map;
    // Three pages of 60 lines: three screenfuls each of 23 under a head of one.
    test::Terminal t(kijk(opdracht(rapport(3, 60), 132)));
    ASSERT_TRUE(t.wacht("(blad 1 van 3)")) << t.scherm();
    const struct {
        const char *toetsen, *stand;
    } rijen[] = {
        {"", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"<PgUp>", "b1 r1|b1 r2|(blad 1 van 3)"}, // off at the very start
        {"<Enter>", "b1 r1|b1 r25|(blad 1 van 3)"},
        {"e", "b1 r1|b1 r48|(blad 1 van 3)"},
        {"E", "b2 r1|b2 r2|(blad 2 van 3)"},
        {"<Enter><PgUp>", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"<PgDn>", "b2 r1|b2 r2|(blad 2 van 3)"},
        {"d", "b3 r1|b3 r2|(blad 3 van 3)"},
        {"<End>", "b3 r1|b3 r48|Einde overzicht (blad 3 van 3)"}, // of a last page that goes on
        {"d<Enter>t", "b3 r1|b3 r48|Einde overzicht (blad 3 van 3)"},
        {"h", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"<F6>2<Enter>", "b2 r1|b2 r2|(blad 2 van 3)"},
        {"s3<Enter>", "b3 r1|b3 r2|(blad 3 van 3)"},
        {"<F6>9<Enter><Esc>", "b3 r1|b3 r2|(blad 3 van 3)"}, // out of range: asked again
        {"h<Right>rl", "~ver1.2"}, // no further than the width
        {"ll", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"i70<Enter>rr", "~ver1.2"},
        {"<Left>k3<Enter><Enter>", "b1 r1|b1 r2|(blad 1 van 3)"}, // the second row is of the head now
        {"k16<Enter>15<Enter><PgDn>", "b2 r1|b2 r2|(blad 2 van 3)"},
        {"k1<Enter>", "b2 r1|b2 r2|(blad 2 van 3)"},
        // The same from the menu, that any other key opens on its first item that is on.
        {"x<Enter>", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"x<PgDn>", "b2 r1|b2 r2|(blad 2 van 3)"},
        {"x<Home>", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"xt", "b3 r1|b3 r2|(blad 3 van 3)"},
        {"xs1<Enter>", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"xr", "~ver1.2"},
        {"xl", "b1 r1|b1 r2|(blad 1 van 3)"},
        {"x<Esc>", "b1 r1|b1 r2|(blad 1 van 3)"},
    };
    for (const auto& r : rijen) {
        t.toetsen(r.toetsen);
        if (r.stand[0] == '~') {
            const std::string rij = t.regel(2);
            EXPECT_EQ(rij.substr(std::min(rij.size(), rij.find_first_not_of(' '))), r.stand + 1)
                << r.toetsen << "\n"
                << t.scherm();
            continue;
        }
        EXPECT_EQ(stand(t), r.stand) << r.toetsen << "\n" << t.scherm();
    }
    t.toetsen("x");
    for (const char* tekst : {"PrintMenu", "Vorig blad      <PgUp>", "Volgend scherm <Enter>", "Scrollen",
                              "Instellen (70)", "Kopregels (1)", "Einde", "Niet printen"})
        EXPECT_TRUE(t.wacht(tekst)) << tekst << "\n" << t.scherm();
    t.toetsen("<Esc><F4>21<Enter>");
    EXPECT_TRUE(t.wacht("Aantal Afdrukken")) << t.scherm(); // 20 at most
    t.toetsen("<Del><Del>12<Enter>");
    t.toetsen("a<Esc>p");
    EXPECT_EQ(t.einde(), 12) << t.scherm();
}

TEST(Voorbeeld, LeavingAndDevices) {
    test::TijdelijkeMap map;
    const struct {
        bool apparaat;
        const char* toetsen;
        int einde;
    } rijen[] = {
        {true, "p", 1},
        {true, "n", 0},
        {true, "<Esc>", 0},
        {true, "xp", 1},
        {false, "p<F4>3<Enter>xp<Esc>n", 0}, // nothing to print to
    };
    for (const auto& r : rijen) {
        test::Terminal t(kijk(opdracht("een regel\n\f", 80, r.apparaat)));
        ASSERT_TRUE(t.wacht("een regel"));
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.einde(), r.einde) << r.toetsen << t.scherm();
    }
    // Without a screen nobody looks; a report that is gone is told.
    printjob job = opdracht("x\n", 80);
    EXPECT_EQ(PRT_SCR(job), 1);
    job.spool = "weg";
    test::Terminal t([job] {
        SCRINIT();
        const int n = PRT_SCR(job);
        SCRFLUSH(2);
        SCREXIT();
        return n;
    });
    EXPECT_TRUE(t.wacht("Kan tijdelijk print bestand niet openen !"));
    EXPECT_EQ(t.einde(), 0);
}

TEST(Voorbeeld, Widths) {
    test::TijdelijkeMap map;
    const struct {
        int kolommen, breed;
        bool schuift;
        const char* rij;
    } rijen[] = {{132, 132, false, "ver1.2"},
                 {132, 80, true, nullptr},
                 {80, 132, false, nullptr},
                 {40, 80, false, nullptr}};
    for (const auto& r : rijen) {
        test::Opties o;
        o.kolommen = r.breed;
        test::Terminal t(kijk(opdracht(rapport(1, 5), r.kolommen)), o);
        ASSERT_TRUE(t.wacht("b1 r5"));
        EXPECT_EQ(t.regel(2).find("ver1.2") != std::string::npos, r.rij != nullptr) << t.scherm();
        EXPECT_TRUE(t.regel(1).size() <= static_cast<size_t>(r.kolommen));
        t.toetsen("r");
        EXPECT_EQ(t.regel(2).find("ver1.2") != std::string::npos, r.rij || r.schuift) << t.scherm();
        t.toetsen("n");
        EXPECT_EQ(t.einde(), 0);
    }
}

TEST(Voorbeeld, OddReports) {
    test::TijdelijkeMap map;
    const struct {
        std::string tekst;
        std::vector<const char*> regels; // of the first page
        int bladen;
    } rijen[] = {
        {"a\n\nb\n\f", {"a", "", "b"}, 1}, // an empty line is a line
        {"a\rb\n", {"a", "b"}, 1},
        {"\fb\n\f", {}, 2},
        {"a\f\fb", {"a"}, 3},
        {"\x1B[2J\x9B"
         "31m\a|\x7F\n",
         {".[2J\xC3\xB8"
          "31m.|."},
         1},
        {std::string("a\0b\tc\n", 6), {"a.b.c"}, 1},
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
TEST(Voorbeeld, LongReports) {
    test::TijdelijkeMap map;
    for (bool bladen : {true, false}) {
        const std::string tekst = rapport(2500, 40, bladen);
        const printjob job = opdracht(tekst, 132);
        const auto begin = std::chrono::steady_clock::now();
        Overzicht o;
        ASSERT_TRUE(overzicht_open(&o, "spool", job.begin, job.begin + static_cast<int64_t>(tekst.size())));
        EXPECT_EQ(o.regels.size(), 100'000u);
        EXPECT_EQ(overzicht_bladen(o), bladen ? 2500 : 1);
        EXPECT_EQ(overzicht_regel(o, 99'999, 100, 132), "ver2500.40");
        overzicht_sluit(&o);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
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
