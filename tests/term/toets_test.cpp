// Keys beyond the keyboard's bytes: signals, type-ahead, hang-up, the macro hook, names.
#include "toetslog.h"
#include <fcntl.h>
#include <termios.h>

using namespace zg;
using namespace zg::test;

TEST(Toets, Signals) {
    Terminal t(toetslog);
    t.kalm();
    t.sein(SIGINT);
    t.wacht_op(1, 1, "330");
    t.stuur("\034"); // the quit character
    t.wacht_op(1, 5, "361");
    t.stuur("\032"); // suspend: no effect
    t.kalm();
    t.stuur("a");
    t.wacht_op(1, 9, "97");
    t.reeks("abc\003def"); // the interrupt key leaves what is typed around it alone
    for (const char* k : {"98", "99", "100", "101", "102"})
        t.wacht(k);
    t.maat(30, 90);
    t.toetsen("q");
    size_t eerste = t.scherm().find("330");
    EXPECT_NE(t.scherm().find("330", eerste + 1), std::string::npos);
    EXPECT_FALSE(bevat(t.scherm(), "410"));
    t.stuur("x");
    EXPECT_EQ(t.einde(), 0);
}

// The shell takes the terminal of a program that was stopped, and may set it as it likes it.
TEST(Toets, StoppedAndContinued) {
    Terminal t(toetslog);
    t.kalm();
    t.sein(SIGSTOP);
    const int tty = open(vorm("/proc/%d/fd/0", t.pid()).c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios regels{};
    ASSERT_EQ(tcgetattr(tty, &regels), 0);
    regels.c_lflag |= ICANON | ECHO;
    ASSERT_EQ(tcsetattr(tty, TCSANOW, &regels), 0);
    close(tty);
    t.sein(SIGCONT);
    t.kalm();
    t.stuur("a"); // no Enter behind it
    EXPECT_TRUE(t.wacht_op(1, 1, "97", 5000)) << t.scherm();
}

TEST(Toets, StackBeforeKeyboard) {
    OpScherm t([] {
        int leeg = TOETSKLAAR();
        TOETSDRUK('b');
        TOETSTERUG('a');
        int vol = TOETSKLAAR();
        int32_t a = TOETS(), b = TOETS(), c = TOETS();
        int wacht = TOETSWACHT(3, 3, 1);
        SCRPUT(A_WAARDE, 1, 1, "%d %d %c%c%c %d", leeg, vol, a, b, c, wacht);
        wacht = TOETSWACHT(3, 3, 30);
        SCRPUT(A_WAARDE, 2, 1, "%d %d", wacht, TOETS());
        TOETSTERUG('x');
        TOETSLEEG();
        SCRPUT(A_WAARDE, 3, 1, "%d", TOETSKLAAR());
    });
    t.stuur("c");
    t.wacht("0 1 abc 0");
    t.stuur("k");
    t.wacht("1 107", 2000);
    t.kalm();
    EXPECT_EQ(t.regel(3), "0");
}

// What is typed ahead survives a change of variant, the end of the screen and the next program.
TEST(Toets, TypeAheadIsKept) {
    Terminal t(
        [] {
            char c[8] = {};
            for (int i = 0; i < 2; i++) // typed before the screen was there
                if (read(0, c, 1) != 1)
                    return 1;
            SCRINIT();
            std::string gelezen;
            auto lees = [&](int n) {
                while (n-- > 0)
                    gelezen += static_cast<char>(TOETS());
            };
            lees(2);
            SCRTERM("-l");
            lees(2);
            WINCLOSE();
            lees(1);
            TOETSKLAAR(); // moves a key to the stack
            SCREXIT();
            SCRINIT(); // as the next program in the same process does
            lees(3);
            SCRPUT(A_WAARDE, 1, 1, "%s", gelezen.c_str());
            lees(1);
            SCREXIT();
            return 0;
        },
        {.rijen = 43});
    t.stuur("1\nab\033\tc\033\td"); // the last Esc is looked at together with what follows it
    t.wacht_op(1, 1, "ab  c  d");   // Esc and Tab show as blanks
}

// Keys left over go to the next program of the chain, in their order; never to another process or a later one.
TEST(Toets, KeysHandedOver) {
    static const struct {
        int pid, seconden;
        const char *keys, *codes;
    } GEVALLEN[] = {
        {0, 0, " 98 97", "97 98 113"}, {0, -60, " 97", "113"},          {0, 60, " 97", "113"},
        {1, 0, " 97", "113"},          {0, 0, " 355 27", "27 355 113"}, {0, 0, "x97", "113"},
        {0, 0, " 97 ", "97 113"},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(std::to_string(g.pid) + " " + std::to_string(g.seconden) + g.keys);
        Terminal t([&g] {
            std::string waarde =
                std::to_string(getpid() + g.pid) + " " + std::to_string(time(nullptr) + g.seconden) + g.keys;
            setenv("ZGTOETSEN", waarde.c_str(), 1);
            return op_scherm([] {
                SCRPUT(A_WAARDE, 3, 1, "%s", getenv("ZGTOETSEN") ? "still there" : "");
                toon_toetsen();
            })();
        });
        t.kalm();
        t.toetsen("q");
        EXPECT_EQ(t.regel(1), g.codes);
        EXPECT_EQ(t.regel(3), "");
    }
}

// Nothing reaches a field that can't be seen; the screen says why, and comes back by itself.
TEST(Toets, WindowTooSmall) {
    for (const auto& [rijen, kolommen, eerste] :
         Rijen<int, int, const char*>{{24, 80, "Venster: 80 kolommen, 24 rijen"},
                                      {25, 79, "Venster: 79 kolommen, 25 rijen"},
                                      {10, 24, "Venster: 24 kolommen, 1"},
                                      {2, 60, "Maak het venster groter om verder te gaan."},
                                      {2, 10, "Maak het"},
                                      {1, 1, ""}}) {
        SCOPED_TRACE(eerste);
        Terminal t(op_scherm([] {
                       char tekst[9] = "abc";
                       SCRPUT(A_WAARDE, 25, 70, "hoek");
                       TOETSTERUG('k');
                       INGAVE(5, 10, "8s", &SCHERM.toets[key_cancel], tekst);
                       SCRPUT(A_WAARDE, 1, 1, "(%s)", tekst);
                   }),
                   {.rijen = rijen, .kolommen = kolommen});
        t.wacht(eerste); // at the start
        t.kalm();
        t.stuur("xyz\r\033");
        t.kalm();
        EXPECT_EQ(t.regel(1), eerste);
        EXPECT_GE(t.bellen(), 5) << "heard, not taken";
        t.maat(25, 80);
        t.wacht_op(25, 70, "hoek");
        t.kalm();
        EXPECT_EQ(t.stuk(5, 10, 8), "k_______") << "a key from before counts, those of meanwhile don't";
        t.toetsen("1");
        t.maat(rijen, kolommen); // and while it lasts
        t.wacht(eerste);
        t.kalm();
        t.stuur("2\003\r");
        t.kalm();
        t.maat(40, 100);
        t.wacht_op(25, 70, "hoek");
        t.toetsen("3<Enter>");
        EXPECT_EQ(t.regel(1), "(k13)");
        t.toetsen("q");
        EXPECT_EQ(t.einde(), 0);
    }
    Terminal t(toetslog, {.rijen = 20});
    t.wacht("Ctrl-\\ stopt het programma.");
    t.kalm();
    t.stuur("\034");
    EXPECT_EQ(t.einde(), 1);
}

TEST(Toets, HangUpEnds) {
    static const struct {
        const char* naam;
        void (*werk)();
    } GEVALLEN[] = {
        {"waiting for a key", [] { TOETS(); }}, {"the abort box", [] { SCRFATAL("x"); }},
        {"sleeping", [] { SCRFLUSH(60); }},     {"output", [] { SCRPUT(A_WAARDE, 1, 1, "x"); }},
        {"polling", [] { TOETSKLAAR(); }},      {"waiting for a lock", [] { SCRFLUSH(0), sleep(2); }},
        {"computing", [] { clock(); }},
    };
    for (const auto& g : GEVALLEN) {
        for (int sein : {0, SIGHUP, SIGTERM}) {
            SCOPED_TRACE(testing::Message() << g.naam << ", signal " << sein);
            Terminal t([&g] {
                SCRINIT();
                SCRPUT(A_WAARDE, 2, 1, "begint");
                SCRFLUSH(0);
                for (;;)
                    g.werk();
                return 0;
            });
            t.wacht("begint");
            if (sein)
                t.sein(sein);
            else
                t.hangop();
            EXPECT_EQ(t.einde(10000), 1);
        }
    }
}

TEST(Toets, HangUpWithoutASignalToo) {
    Terminal t(op_scherm([] {
        signal(SIGHUP, SIG_IGN);
        SCRPUT(A_WAARDE, 2, 1, "begint");
    }));
    t.wacht("begint");
    t.hangop();
    EXPECT_EQ(t.einde(10000), 1);
}
