// The screen against a terminal emulator: start and end, windows, text, status line, variants, the abort box.
#include "gesprek.h"
#include <termios.h>

using namespace zg;
using namespace zg::test;

namespace {

const int WIT = 7, BLAUW = 4, CYAAN = 6, ROOD = 1;

void goed_einde() {
    WINCURSOR(0);
    TOETS();
    SCRSTOP(0);
}

void vensters(int aantal) {
    while (aantal-- > 0)
        WINOPEN1(1, 1, 3, 3);
}

} // namespace

TEST(Venster, RestoresWhatItCovered) {
    OpScherm t([] {
        SCRPUT(A_WAARDE, 10, 10, "M\x9Bller & S\x9Bn onder het venster");
        TOETS();
        WINOPEN1(9, 12, 4, 20);
        WINBOX("%s", " Titel ");
        SCRPUT(A_LABEL, 1, 1, "binnen");
        TOETS();
        WINOPEN2(8, 1, 6, 30);
        WINBOX(nullptr);
        SCRBASE(A_WAARDE, 10, 1, "basis");
        TOETS();
        WINCLOSE();
        TOETS();
        WINCLOSE();
    });
    stappen(
        t, {{"", {{10, 10, "Møller & Søn"}}}, {"x", {{9, 12, "┌───── Titel ──────┐"}, {10, 12, "│binnen"}}}});
    EXPECT_EQ(t.cel(10, 13).achter, WIT);
    // text on the base does not go over the windows above
    stappen(t, {{"x", {{10, 1, "│  "}, {8, 1, "┌────────────────────────────┐"}}},
                {"x", {{10, 1, "basis    Mø│binnen "}}},
                {"x", {{10, 1, "basis    Møller & Søn onder het venster "}, {9, 1, std::string(80, ' ')}}}});
    EXPECT_EQ(t.cel(9, 13).achter, BLAUW);
}

TEST(Venster, KeepsItsBorder) {
    OpScherm t([] {
        WINOPEN1(5, 5, 5, 12);
        WINBOX("%s", "T");
        for (int r = 1; r <= 3; r++)
            SCRPUT(A_WAARDE, r, 1, "langer dan het venster");
        SCRCLREOL(2, 4);
        SCRCLREOW(3, 10); // the cursor on the last cell
        SCRADD("meer dan past");
    });
    stappen(t, {{"",
                 {{5, 5, "┌────T─────┐"},
                  {6, 5, "│langer dan│"},
                  {7, 5, "│lan       │"},
                  {8, 5, "│langer dam│"},
                  {9, 5, "└──────────┘"}}}});
}

TEST(Scherm, AttributesAndColours) {
    static const struct {
        uint32_t attr;
        int voor, achter;
        bool vet, keus;
    } GEVALLEN[] = {
        {A_LABEL, WIT, BLAUW, false, false},     {A_WAARDE, WIT, BLAUW, true, false},
        {A_KEUS, WIT, BLAUW, false, true},       {A_SNELLETTER, CYAAN, BLAUW, true, false},
        {A_WAARDE_KEUS, WIT, BLAUW, true, true}, {A_KEUS | A_SNELLETTER, WIT, BLAUW, true, true},
    };
    OpScherm t([] {
        int rij = 1;
        for (const auto& g : GEVALLEN)
            SCRPUT(g.attr, rij++, 1, "tekst");
        WINOPEN3(15, 1, 3, 10);
        SCRPUT(A_SNELLETTER, 1, 1, "let op");
        TOETS();
        for (int i = SCHERM.aantal; i < VENSTERS; i++)
            WINOPEN(20, 40, 2, 4, i % 8);
    });
    int rij = 1;
    for (const auto& g : GEVALLEN) {
        const Cel c = t.cel(rij++, 1);
        EXPECT_EQ(std::tuple(c.voor, c.achter, c.vet, c.keus), std::tuple(g.voor, g.achter, g.vet, g.keus))
            << std::hex << g.attr;
        EXPECT_FALSE(c.streep) << "underline is a colour here";
    }
    EXPECT_EQ(t.cel(15, 1).voor, ROOD);
    t.toetsen("x");
    EXPECT_EQ(t.cel(1, 1).voor, WIT);
    EXPECT_EQ(t.cel(4, 1).voor, CYAAN) << "a deep window changed the colours below it";
    EXPECT_EQ(t.cel(15, 1).voor, ROOD);
}

// While a printer on the terminal's own port is open, nothing of the screen may go out.
TEST(Scherm, LockedWhilePrinting) {
    Terminal t([] {
        SCRINIT();
        SCRPUT(A_WAARDE, 1, 1, "klaar");
        SCRFLUSH(0);
        TOETS();
        SCHERM.dicht = 1;
        dprintf(1, "<<");
        int n = SCRPUT(A_WAARDE, 2, 1, "tekst");
        error("fout");
        WINOPEN1(5, 5, 5, 5);
        SCRFLUSH(0);
        PIEP();
        while (!TOETSKLAAR()) {
        }
        WINCLOSE();
        dprintf(1, ">>");
        SCRFATAL("klaar %d", n);
        return 0;
    });
    t.kalm();
    t.stuur("x");
    t.wacht("<<");
    t.stuur("y");
    t.wacht("klaar 0");
    std::string u = t.uitvoer();
    size_t van = u.find("<<");
    EXPECT_EQ(u.substr(van, u.find(">>") - van), "<<") << "went to the printer";
    EXPECT_EQ(u.find("\x1b[4i", van), u.find(">>") + 2) << "the printer port is closed first";
    t.stuur("\r");
    EXPECT_EQ(t.einde(), 1);
}

TEST(Scherm, StatusLine) {
    OpScherm t([] {
        WINOPEN1(5, 5, 5, 20);
        BEZIGTOON(); // not until BEZIGAAN
        for (const char* s : {"Ongeldige toets", "kort", "kort", ""}) {
            error("%s", s);
            TOETS();
        }
        error("%0200d", 7);
    });
    std::string gezien; // each text, and how often it has rung until then
    for (int i = 0; i < 5; i++) {
        gezien += t.regel(25) + vorm(" %d|", t.bellen());
        t.toetsen("x");
    }
    EXPECT_EQ(gezien, "Ongeldige toets 1|kort 2|kort 3| 3|" + std::string(80, '0') + " 4|");
}

struct Variant {
    const char* naam;
    int rijen, kolommen;
};
TEST(Scherm, Variants) {
    for (const Variant& g : {Variant{"-w", 25, 132}, {"-l", 43, 80}}) {
        SCOPED_TRACE(g.naam);
        OpScherm t(
            [&g] {
                SCRPUT(A_WAARDE, 12, 30, "gewoon scherm");
                WINOPEN1(3, 3, 5, 20);
                WINBOX("%s", "V");
                WINCURSOR(0);
                TOETS();
                SCRTERM(g.naam);
                WINCURSOR(1);
                SCRPUT(A_WAARDE, SCHERM.lines, SCHERM.cols - 4, "hoek!");
                SCRPUT(A_WAARDE, 1, 1, "%dx%d", SCHERM.lines, SCHERM.cols);
                WINOPEN1(6, 40, 4, 10);
                error("fout");
                TOETS();
                WINCLOSE();
                WINCLOSE();
                SCRPUT(A_WAARDE, 1, 1, "%dx%d %d", SCHERM.lines, SCHERM.cols, SCHERM.aantal);
            },
            {.rijen = 50, .kolommen = 140});
        const std::string maat = std::to_string(g.rijen) + "x" + std::to_string(g.kolommen);
        EXPECT_EQ(t.cel(25, 80).achter, BLAUW);
        EXPECT_EQ(t.cel(25, 81).achter, -1) << "only our part of a larger window is coloured";
        EXPECT_EQ(t.cel(26, 1).achter, -1);
        const Kijk gewoon{12, 30, "gewoon scherm"}, leeg{12, 30, "             "};
        stappen(t, {{"x", {{g.rijen, g.kolommen - 4, "hoek!"}, {1, 1, maat}, leeg, {g.rijen, 1, "fout"}}}});
        EXPECT_EQ(t.cel(6, 42).achter, WIT);
        stappen(t, {{"x", {{4, 4, "25x80 2"}, gewoon, {40, 1, std::string(80, ' ')}}}});
        EXPECT_GT(t.uitvoer().rfind("\x1b[?25h"), t.uitvoer().rfind("\x1b[?25l")) << "the cursor follows";
    }
}

TEST(Scherm, VariantThatIsNotThereFallsBack) {
    TijdelijkeMap map(false);
    std::filesystem::create_directory(map.pad() + "/X");
    std::filesystem::copy(ZG_BINARY_DIR "/terminfo/X/Xterm", map.pad() + "/X/Xterm");
    OpScherm t(
        [] {
            SCRPUT(A_WAARDE, 5, 5, "onder");
            SCRTERM("-w");
            SCRPUT(A_WAARDE, 1, 1, "%dx%d %d", SCHERM.lines, SCHERM.cols, SCHERM.aantal);
            TOETS();
            WINCLOSE();
        },
        {.rijen = 50, .kolommen = 140, .omgeving = {{"TERMINFO_DIRS", map.pad()}}});
    EXPECT_EQ(t.regel(1), "25x80 2");
    EXPECT_EQ(t.regel(5), "");
    t.toetsen("x");
    EXPECT_EQ(t.regel(5), "    onder");
}

TEST(Scherm, UnknownTerminal) {
    TijdelijkeMap leeg;
    for (auto [term, naam] : {std::pair{"bestaatniet", "Bestaatniet"},
                              {"", "TERM"},
                              {"../../etc/passwd", "../../etc/passwd"},
                              {"x\033[2Jy", "X?[2Jy"},
                              {"dumb", "Dumb"}}) { // the lower-case entry alone is not enough
        Terminal t(op_scherm([] {}), {.omgeving = {{"TERM", term}}});
        EXPECT_EQ(t.einde(), 10) << term;
        EXPECT_EQ(t.regel(2), vorm("Onbekende terminfo (%s)", naam));
    }
}

// The modes of the terminal are the same after every way out.
TEST(Scherm, TerminalIsGivenBackAsFound) {
    static const struct {
        const char* naam;
        void (*werk)();
        const char *tekst, *toets; // what appears, and the key then
        int status = 1;
    } GEVALLEN[] = {
        {"end", goed_einde, "", "x", 0},
        {"subshell", [] { SCHELP("", "true", false), goed_einde(); }, "", "x", 0},
        {"a crash", [] { TOETS(), abort(); }, "", "x", SIGABRT},
        {"a long report", [] { SCRFATAL("%s is te lezen", std::string(200, 'n').c_str()); }, "is te lezen",
         "\r"},
        {"abort in a variant", [] { SCRTERM("-l"), vensters(1), SCRFATAL("ioord"); }, "ioord", "\r"},
        {"a report in the report", [] { SCRFATALHAAK = [] { SCRFATAL("nog eens"); }, SCRFATAL("eerste"); },
         "", ""},
        {"no such option", [] { FFLASH(-3, 0, A_WAARDE, "", "x"); }, "FFLASH invalid option [-3]", "\r"},
        {"a full stack", [] { vensters(VENSTERS); }, "Teveel vensters", "\r"},
        {"its last place for a variant", [] { vensters(VENSTERS - 1), SCRTERM("-l"); }, "Teveel vensters",
         "\r"},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.naam);
        Terminal t(
            [&g] {
                termios voor{}, na{};
                tcgetattr(0, &voor);
                voor.c_cc[VERASE] = 8;
                voor.c_iflag |= IXANY;
                tcsetattr(0, TCSANOW, &voor);
                pid_t kind = fork();
                if (kind == 0) {
                    SCRINIT();
                    g.werk();
                    _exit(99);
                }
                int status = 0;
                waitpid(kind, &status, 0);
                tcgetattr(0, &na);
                printf("status %d modes %s\n", WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status),
                       voor.c_lflag == na.c_lflag && voor.c_iflag == na.c_iflag &&
                               voor.c_oflag == na.c_oflag && memcmp(voor.c_cc, na.c_cc, NCCS) == 0
                           ? "goed"
                           : "fout");
                return 0;
            },
            {.rijen = 43});
        t.wacht(g.tekst);
        t.stuur(g.toets);
        t.wacht(vorm("status %d modes goed", g.status));
        EXPECT_EQ(t.einde(), 0);
        for (const char* terug : {"\x1b[?1049l", "\x1b[?1036r"})
            EXPECT_GT(t.uitvoer().rfind(terug) + 1, t.uitvoer().rfind("\x1b[?1036s\x1b[?1036h")) << terug + 1;
        EXPECT_GT(t.uitvoer().rfind("\x1b[?25h") + 1, t.uitvoer().rfind("\x1b[?25l") + 1) << "no cursor";
    }
}

TEST(Afbreken, BoxOnTheScreen) {
    Terminal t([] {
        SCRINIT();
        error("rest");
        SCHERM.dicht = 1;
        SCRFATAL("%s: errno=%d", "ioord", 13);
        return 0;
    });
    t.wacht("voor vervolg");
    stappen(t, {{"",
                 {{18, 10, "┌─────────PROGRAMMA AFGEBROKEN─────────┐"},
                  {19, 10, "│ ioord: errno=13                      │"},
                  {20, 10, "│ Neem contact op met de Support-groep │"},
                  {21, 10, "│ <ENTER> voor vervolg                 │"},
                  {22, 10, "└──────────────────────────────────────┘"}}}});
    t.toetsen("x<Esc><F1>");
    EXPECT_TRUE(t.leeft());
    t.stuur("\r");
    EXPECT_EQ(t.einde(), 1);
}

TEST(Afbreken, WithoutAScreen) {
    Terminal t([] {
        SCRFATAL("%s: geen scherm", "iotab");
        return 0;
    });
    t.wacht("<ENTER> voor vervolg");
    EXPECT_EQ(t.regel(1), "PROGRAMMA AFGEBROKEN");
    EXPECT_EQ(t.regel(2), "iotab: geen scherm");
    EXPECT_EQ(t.regel(3), "Neem contact op met de Support-groep");
    EXPECT_TRUE(bevat(t.uitvoer(), "AFGEBROKEN\r"));
    t.stuur("x\n");
    EXPECT_EQ(t.einde(), 1);
}
