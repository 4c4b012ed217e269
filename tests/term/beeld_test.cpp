// What goes out to the terminal: how many bytes a step costs, when they go, that the picture is right on every kind
// of terminal, and how the terminal is taken, handed over and given back.
#include "gesprek.h"
#include "support/toetsreeksen.h"
#include <random>
#include <vterm.h>

using namespace zg;
using namespace zg::test;

namespace {

void slaap(int ms) {
    for (timespec t{ms / 1000, (ms % 1000) * 1000000L}; nanosleep(&t, &t) != 0;)
        ;
}

int tel(const std::string& in, const char* wat) {
    int n = 0;
    for (size_t p = 0; (p = in.find(wat, p)) != std::string::npos; p++)
        n++;
    return n;
}

// Two fields, again and again.
std::string velden() {
    char naam[21] = "", plaats[21] = "";
    SCRPUT(A_LABEL, 3, 5, "Naam");
    SCRPUT(A_LABEL, 4, 5, "Plaats");
    BEZIGAAN();
    while (SCHERM.laatste != K_ESC) {
        INGAVE(3, 15, "20s", &SCHERM.toets[key_cancel], naam);
        INGAVE(4, 15, "20s", &SCHERM.toets[key_cancel], plaats);
    }
    return "klaar";
}

} // namespace

// A step may cost little more than what changes on the screen.
TEST(Beeld, BytesOfAStep) {
    Gesprek t(velden);
    static const struct {
        const char* wat;
        const char* toetsen;
        size_t hoogstens;
    } STAPPEN[] = {
        {"the first character", "L", 8},      {"a character", "i", 1},
        {"ten in a burst", "ndalovisae", 10}, {"back", "<Back>", 6},
        {"to the start", "<Home>", 9},        {"into the next field", "<Enter>", 48},
        {"a character there", "B", 2},        {"a key that isn't one here", "<F9>", 40},
        {"the message goes", "o", 40},
    };
    for (const auto& s : STAPPEN) {
        const size_t was = t.uitvoer().size();
        t.reeks(s.toetsen);
        EXPECT_TRUE(t.kalm());
        EXPECT_LE(t.uitvoer().size() - was, s.hoogstens) << s.wat << "\n" << t.uitvoer().substr(was);
    }
    EXPECT_EQ(t.stuk(3, 15, 20), "Lindalovisa         ");
    EXPECT_EQ(t.stuk(4, 15, 20), "Bo__________________");
    EXPECT_EQ(t.cursor_rij(), 4);
    EXPECT_EQ(t.cursor_kolom(), 17) << "the cursor stands in the field";
    EXPECT_FALSE(bevat(t.uitvoer(), "Even geduld")) << "there was nothing to wait for";
}

// While keys wait the screen stands still, but not for longer than a second.
TEST(Beeld, OnceASecondWhileKeysWait) {
    OpScherm t([] {
        for (int i = 1; i <= 16; i++) {
            TOETS();
            SCRPUT(A_WAARDE, 5, 5, "slag %02d", i);
            slaap(100);
        }
    });
    t.stuur(std::string(16, 'x'));
    std::set<std::string> gezien;
    for (int i = 0; i < 3000 && !gezien.contains("slag 16"); i++) {
        gezien.insert(t.stuk(5, 5, 7));
        slaap(2);
    }
    EXPECT_TRUE(gezien.contains("slag 16"));
    EXPECT_GE(gezien.size(), 3u) << "nothing was shown on the way";
    EXPECT_LE(gezien.size(), 6u) << "drawn while keys waited";
}

// What is to be seen before long work gets there, though the program doesn't come back to it: at once, and with
// keys waiting within a second. The busy text stands as long as the work.
TEST(Beeld, LongWorkWithoutAWord) {
    for (const char* wachtend : {"", "yy"}) {
        SCOPED_TRACE(wachtend);
        OpScherm t([] {
            BEZIGAAN();
            TOETS();
            slaap(50);
            SCRPUT(A_WAARDE, 5, 5, "aan het werk");
            SCRFLUSH(0);
            slaap(2000);
            SCRRATE(1); // nothing is due, so it is the timer that shows it
            BEZIGTOON();
            slaap(2000);
            BEZIGWIS();
            SCRBASE(A_WAARDE, SCHERM.lines, SCHERM.cols - 16, "wat daar nu staat");
            BEZIGWIS(); // there is nothing to take away
            TOETSLEEG();
        });
        t.stuur(std::string("x") + wachtend);
        t.wacht("aan het werk", 1900);
        EXPECT_FALSE(bevat(t.scherm(), "Even geduld"));
        t.wacht("Even geduld aub");
        t.wacht("wat daar nu staat");
    }
}

// A picture drawn by differences is the one that a fresh screen gives, whatever the terminal can.
TEST(Beeld, DifferencesGiveTheSamePicture) {
    for (const char* term : {"xterm", "tmux-256color", "screen", "linux", "rxvt", "vt220", "vt100"}) {
        SCOPED_TRACE(term);
        OpScherm t(
            [] {
                std::mt19937 kans(7);
                auto n = [&kans](int tot) { return static_cast<int>(kans() % static_cast<unsigned>(tot)); };
                static constexpr uint32_t ATTR[] = {A_LABEL,      A_WAARDE,      A_KEUS,
                                                    A_SNELLETTER, A_WAARDE_KEUS, A_WAARSCHUWING | A_LABEL};
                for (int ronde = 0; ronde < 40; ronde++) {
                    if (n(4) == 0 && SCHERM.aantal < 6)
                        WINOPEN(1 + n(20), 1 + n(60), 3 + n(12), 6 + n(50), n(8)), WINBOX("%s", "t");
                    else if (n(4) == 0 && SCHERM.aantal > 1)
                        WINCLOSE();
                    for (int i = n(6); i >= 0; i--)
                        SCRPUT(ATTR[n(6)], 1 + n(25), 1 + n(80), "%.*s", 1 + n(25),
                               n(3) ? "tekst  met   gaten \x82\x9B en meer" : "                          ");
                    if (n(5) == 0)
                        SCRCLREOL(1 + n(5), 1 + n(8));
                    SCRLIJN(A_LIJN_LABEL, 1 + n(20), 1 + n(70), L_HORIZONTAAL, n(9));
                    WINCURSOR(n(3));
                    WINAT(1 + n(3), 1 + n(4));
                    TOETS();
                }
            },
            {.term = term, .locale = "C.UTF-8"});
        auto beeld = [&t] {
            std::string s;
            for (int i = 0; i < 25 * 80; i++) {
                const zg::test::Cel c = t.cel(1 + i / 80, 1 + i % 80);
                const bool leeg = c.teken == " " && !c.keus;
                s += c.teken + vorm("%d%d%d ", c.achter, c.keus, leeg ? 0 : c.vet * 20 + c.voor);
            }
            return s;
        };
        for (int ronde = 0; ronde < 39 && !testing::Test::HasFailure(); ronde++) {
            const std::string verschillen = beeld();
            const size_t was = t.uitvoer().size();
            t.sein(SIGWINCH);
            for (int i = 0; i < 2000 && t.uitvoer().size() == was; i++)
                slaap(1);
            EXPECT_GT(t.uitvoer().size(), was) << "nothing was sent again";
            EXPECT_TRUE(t.kalm());
            EXPECT_TRUE(beeld() == verschillen) << "round " << ronde << "\n" << t.scherm();
            t.toetsen("x");
        }
    }
}

// Line drawing, and letters that stay letters: in Unicode, or in the terminal's own set.
TEST(Beeld, LineDrawing) {
    for (const Opties& o : {Opties{}, Opties{.term = "vt100", .locale = "C"}, Opties{.locale = "C"},
                            Opties{.term = "linux", .locale = "C"}}) {
        SCOPED_TRACE(o.term + o.locale);
        OpScherm t(
            [] {
                SCRPUT(A_LIJN_LABEL, 1, 1, "%c%c%c", 196, 254, 251);
                SCRPUT(A_LIJN_WAARDE, 2, 1, "qx");
                SCRLIJN(A_LIJN_LABEL, 3, 5, L_HORIZONTAAL, 4);
                SCRLIJN(A_LIJN_LABEL, 4, 5, L_VERTICAAL, 2);
                WINOPEN1(6, 5, 3, 8);
                WINBOX("%s", "T");
                SCRPUT(A_WAARDE, 1, 1, "qxlk");
            },
            o);
        if (o.locale != "C") {
            EXPECT_EQ(t.regel(1), "─■√");
            stappen(t, {{"", {{2, 1, "─│ "}, {3, 5, "──── "}, {4, 5, "│ "}, {5, 5, "│ "}, {6, 5, "┌─"}}}});
        }
        EXPECT_EQ(t.uitvoer().find("lqq") != std::string::npos, o.locale == "C");
        EXPECT_EQ(t.stuk(7, 6, 4), "qxlk");
    }
}

// The init strings move neither the cursor nor its kept place: the shell's prompt would land elsewhere.
TEST(Beschrijving, InitLeavesTheCursor) {
    int aantal = 0;
    for (const auto& e : std::filesystem::recursive_directory_iterator(ZG_BINARY_DIR "/terminfo"))
        for (const char* reeks : {"is2", "rs2"}) {
            const std::string naam = e.path().filename();
            SCOPED_TRACE(naam + " " + reeks);
            if (!e.is_regular_file())
                continue;
            aantal++;
            const std::string bytes = vermogen(naam, reeks);
            EXPECT_FALSE(bytes.empty());
            EXPECT_FALSE(bevat(bytes, "\033[!p")) << "a soft reset forgets the kept place";
            if (naam.ends_with("-w")) // 132 columns clear the screen of their own accord, and of it only
                continue;
            VTerm* vt = vterm_new(25, 80);
            VTermState* state = vterm_obtain_state(vt);
            vterm_state_reset(state, 1);
            VTermPos plek{};
            auto naar = [&](const std::string& s) {
                vterm_input_write(vt, s.data(), s.size());
                vterm_state_get_cursorpos(state, &plek);
                return plek.row * 100 + plek.col;
            };
            naar("\033[10;20H\0337");
            EXPECT_EQ(naar(bytes), 919);
            EXPECT_EQ(naar("\033[2;2H\0338"), 919);
            vterm_free(vt);
        }
    EXPECT_GE(aantal, 120);
}

// A vt terminal is switched to 132 columns by its own command and back again; where the window doesn't follow, the
// normal width stays.
TEST(Beschrijving, WideVtTerminals) {
    for (bool volgt : {true, false}) {
        SCOPED_TRACE(volgt);
        Terminal t(op_scherm([] {
                       SCRTERM("-w");
                       SCRPUT(A_WAARDE, 3, 3, "%d kolommen", SCHERM.cols);
                       SCRPUT(A_WAARDE, 4, SCHERM.cols - 3, "eind");
                       TOETS();
                       WINCLOSE();
                       SCRPUT(A_WAARDE, 5, 3, "%d kolommen", SCHERM.cols);
                   }),
                   {.term = "vt220"});
        for (int i = 0; i < 5000 && t.uitvoer().find("\033[?3h") == std::string::npos; i++)
            slaap(1);
        if (volgt)
            t.maat(25, 132);
        t.wacht(volgt ? "132 kolommen" : "80 kolommen");
        t.kalm();
        EXPECT_EQ(t.stuk(4, volgt ? 129 : 77, 4), "eind");
        EXPECT_EQ(tel(t.uitvoer(), "\033[?3l"), volgt ? 0 : 1);
        t.toetsen("x");
        EXPECT_EQ(t.regel(5), "  80 kolommen");
        EXPECT_EQ(tel(t.uitvoer(), "\033[?3l"), 1);
        t.stuur("x");
        EXPECT_EQ(t.einde(), 0);
    }
}

// From one program to the next nothing of the shell's screen shows; the terminal is given back once, at the end.
TEST(Overgave, PictureStaysUntilTheNextOne) {
    static const struct {
        const char* naam;
        void (*daarna)();
        const char* tekst;
        int status;
    } GEVALLEN[] = {
        {"the next program", [] { SCRINIT(), SCRPUT(A_WAARDE, 2, 2, "tweede"), TOETS(), SCRSTOP(0); },
         "tweede", 0},
        {"a report before its screen", [] { SCRFATAL("geen %s", "gegevens"); }, "geen gegevens", 1},
        {"a report after it", [] { SCRINIT(), SCRFATAL("niet gevonden"); }, "niet gevonden", 1},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.naam);
        Terminal t([&g] {
            SCRINIT();
            SCRPUT(A_WAARDE, 1, 1, "eerste programma");
            SCRPUT(A_WAARDE, 25, 70, "onderaan");
            TOETS();
            SCROVERGEVEN();
            g.daarna();
            return 9;
        });
        t.kalm();
        const size_t was = t.uitvoer().size();
        t.stuur("x");
        t.wacht(g.tekst);
        t.kalm();
        EXPECT_FALSE(bevat(t.scherm(), "eerste"));
        EXPECT_FALSE(bevat(t.scherm(), "onderaan"));
        for (const char* weg : {"\033[?1049l", "\033[?1049h", "\033[H\033[2J"})
            EXPECT_EQ(t.uitvoer().find(weg, was), std::string::npos) << weg + 1;
        t.stuur("\r");
        EXPECT_EQ(t.einde(), g.status);
        for (const char* eens : {"\033[?1049h", "\033[?1049l", "\033[?1036s\033[?1036h", "\033[?1036r"})
            EXPECT_EQ(tel(t.uitvoer(), eens), 1) << eens + 1;
    }
}

// A terminal that has no screen of its own for programs is left empty, in its own colours.
TEST(Overgave, PromptOnAnEmptyScreen) {
    for (const char* term : {"vt220", "linux"}) {
        Terminal t(
            [] {
                op_scherm([] { SCRPUT(A_WAARDE, 3, 3, "het oude beeld"); })();
                return printf("prompt") - 6;
            },
            {.term = term});
        t.kalm();
        t.stuur("x");
        EXPECT_EQ(t.einde(), 0);
        EXPECT_EQ(t.scherm(), "prompt" + std::string(25, '\n')) << term;
        EXPECT_EQ(t.cel(10, 10).achter, -1);
        EXPECT_FALSE(bevat(t.uitvoer(), "1036")) << "no mode that only an xterm has";
    }
}

// A note of a hand-over that isn't ours, isn't fresh or isn't for this terminal is none.
TEST(Overgave, OldNotesDontCount) {
    static const struct {
        int pid, ouder;
        const char* term;
    } GEVALLEN[] = {{1, 0, " xterm"}, {0, 60, " xterm"}, {0, -60, " xterm"}, {0, 0, " linux"}, {0, 0, ""}};
    for (const auto& g : GEVALLEN) {
        OpScherm t([&g] {
            SCREXIT();
            const std::string notitie = vorm("%d %ld%s", g.pid ? g.pid : getpid(),
                                             static_cast<long>(time(nullptr)) - g.ouder, g.term);
            setenv("ZGSCHERM", notitie.c_str(), 1);
            SCRINIT();
            SCRPUT(A_WAARDE, 2, 2, "hier");
        });
        EXPECT_EQ(tel(t.uitvoer(), "\033[?1049h"), 2) << g.pid << " " << g.ouder << g.term;
    }
}
