// A macro handed over to the next program: the transfer file, what of it is believed, and a kill on the way.
#include "macro/speler.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg {
namespace {

using namespace test;

std::string bestandsnaam() {
    const std::string tty = ttyname(0);
    return "MAC" + tty.substr(tty.rfind('/') + 1) + ".TMP";
}

// As another program of the package writes it: 1 and 2 still to be played.
std::string bestand(uint16_t gebruiker, const mac_rec& rec) {
    std::string s(406, '\0');
    s.replace(0, 5, "/tmp/");
    s[160] = s[164] = 1;
    memcpy(&s[168], &gebruiker, 2);
    memcpy(&s[170], &rec, sizeof rec);
    return s;
}

const mac_rec REC = macro('k', 7, {'2', '1'});

// This program and its successor, in one process as exec has it: keys read before the hand-over, `tussen`, and what the
// successor is given as his.
std::string keten(const std::string& typen, const std::function<void()>& tussen, uint16_t volgende = 7) {
    Opties o;
    o.omgeving = {{"MACRO", "."}};
    Terminal t(
        [&] {
            speler(7, [] {
                for (int i = 0; i < 2; i++)
                    TOETS();
                TOETSKLAAR();
                SCROVERGEVEN();
            })();
            tussen();
            return speler(volgende)();
        },
        o);
    t.kalm();
    t.stuur(typen);
    t.kalm();
    const std::string uit = t.regel(1);
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    return uit;
}

struct Overdracht : testing::Test {
    TijdelijkeMap map;
    Overdracht() { MACROSCHRIJF(macro('k', 7, {'1', '2', '3', '4', '5'}, "tekst")); }
};

TEST_F(Overdracht, PlaysOnInTheNextProgram) {
    const std::string f2k = std::string(F2) + "k";
    auto kijk = [] {
        const std::string s = lees_bestand(bestandsnaam());
        ASSERT_EQ(s.size(), 406u);
        struct stat st;
        stat(bestandsnaam().c_str(), &st);
        EXPECT_EQ(st.st_mode & 07777, 0600u);
        mac_rec rest = macro('k', 7, {'5', '4', '3', '2', '1'}, "tekst");
        rest.aantal = 3; // what has been played stands behind them
        std::string verwacht(406, '\0');
        verwacht.replace(0, 2, "./");
        verwacht.replace(80, 7, "./MACRO");
        verwacht[160] = verwacht[164] = 1, verwacht[168] = 7;
        verwacht.replace(170, 236, bytes(rest));
        EXPECT_EQ(s, verwacht);
        // Gone before anybody plays: the next start finds none.
    };
    EXPECT_EQ(keten(f2k,
                    [&] {
                        kijk();
                        if (testing::Test::HasFailure())
                            _exit(3);
                    }),
              "51 52 53");
    // Typed ahead: before the rest of the macro; and what ends a macro ends it there too.
    EXPECT_EQ(keten(f2k + "x", [] {}), "50 51 52 53") << "x was the second key";
    EXPECT_EQ(keten(f2k + "xy", [] {}), "121 50 51 52 53");
    EXPECT_EQ(keten(f2k + "x\030", [] {}), "355");
    EXPECT_EQ(keten(
                  f2k, [] {}, 8),
              "")
        << "another user on this terminal";
    EXPECT_EQ(keten(f2k,
                    [] {
                        signal(SIGUSR1, SIG_IGN);
                        unlink(bestandsnaam().c_str());
                    }),
              "");
    // An end that hands nothing over leaves nothing behind.
    Terminal t(speler(7, [] { TOETS(); }));
    t.kalm();
    t.stuur(f2k);
    EXPECT_EQ(t.einde(), 0);
    EXPECT_EQ(system("ls MAC*.TMP >/dev/null 2>&1") != 0, true);
}

// Nothing plays but what this user's program has left a moment ago; the file goes, whatever it is, and no link is followed.
TEST_F(Overdracht, WhatIsBelieved) {
    struct Rij {
        const char* wat;
        std::string inhoud;
        std::function<void(const std::string&)> doe = [](const std::string&) {};
        bool speelt = false, blijft = false;
    };
    auto met = [](mac_rec r, uint16_t gebruiker = 7) { return bestand(gebruiker, r); };
    auto byte = [](size_t plaats, char c) {
        std::string s = bestand(7, REC);
        s[plaats] = c;
        return s;
    };
    auto tijd = [](int seconden) {
        return [seconden](const std::string& naam) {
            const timespec t{time(nullptr) + seconden, 0}, beide[2] = {t, t};
            EXPECT_EQ(utimensat(AT_FDCWD, naam.c_str(), beide, 0), 0);
        };
    };
    const Rij rijen[] = {
        {"good", met(REC), [](const std::string&) {}, true},
        {"five seconds old", met(REC), tijd(-5), true},
        {"stale", met(REC), tijd(-12)},
        {"from the future", met(REC), tijd(60)},
        {"another user's", met(macro('k', 8, {'2', '1'}), 8)},
        {"says one user, holds another's", met(macro('k', 8, {'2', '1'}))},
        {"nobody's", met(macro('k', 0, {'2', '1'}), 0)},
        {"cut", met(REC).substr(0, 405)},
        {"empty", ""},
        {"longer", met(REC) + "x"},
        {"doesn't play", byte(160, 0)},
        {"off", byte(164, 0)},
        {"wild switch", byte(163, 1)},
        {"no keys", met(macro('k', 7, {}))},
        {"a hundred and one", byte(170 + 4, 101)},
        {"far too many", byte(170 + 5, 1)},
        {"code that no key has", byte(170 + 7, 2)},
        {"F2", met(macro('k', 7, {K_F2, '1'}))},
        {"no letter", met(macro('-', 7, {'1'}))},
        {"for others to write", met(REC), [](const std::string& n) { chmod(n.c_str(), 0620); }},
        {"a link", met(REC),
         [](const std::string& n) {
             EXPECT_EQ(rename(n.c_str(), "doel"), 0);
             EXPECT_EQ(symlink("doel", n.c_str()), 0);
         }},
        {"two names", met(REC), [](const std::string& n) { EXPECT_EQ(link(n.c_str(), "doel"), 0); }},
        {"a pipe", "",
         [](const std::string& n) {
             unlink(n.c_str());
             EXPECT_EQ(mkfifo(n.c_str(), 0600), 0);
         }},
        {"a directory", "",
         [](const std::string& n) {
             unlink(n.c_str());
             EXPECT_EQ(mkdir(n.c_str(), 0700), 0);
         },
         false, true},
        {"a stranger's", met(REC),
         [](const std::string& n) {
             if (geteuid() != 0 || chown(n.c_str(), 4711, 4711) != 0)
                 unlink(n.c_str());
         }},
        {"not to be taken away", met(REC),
         [](const std::string&) {
             SYS.unlink = [](const char*) {
                 errno = EACCES;
                 return -1;
             };
         },
         false, true},
    };
    for (const Rij& r : rijen) {
        SCOPED_TRACE(r.wat);
        schrijf_bestand("doel", "");
        unlink("doel");
        Terminal t([&] {
            const std::string naam = bestandsnaam();
            schrijf_bestand(naam, r.inhoud);
            chmod(naam.c_str(), 0600);
            r.doe(naam);
            return speler(7, [&] {
                SCRPUT(A_WAARDE, 5, 1, "%s", access(naam.c_str(), F_OK) == 0 ? "er" : "weg");
                toon_toetsen();
            })();
        });
        t.kalm();
        EXPECT_EQ(t.regel(1), r.speelt ? "49 50" : "") << t.scherm();
        EXPECT_EQ(t.regel(5), r.blijft ? "er" : "weg");
        t.stuur("q");
        EXPECT_EQ(t.einde(), 0);
        EXPECT_TRUE(r.wat != std::string("a link") || lees_bestand("doel") == r.inhoud);
        EXPECT_EQ(system("rm -rf MAC?*.TMP"), 0);
    }
}

// Killed or refused at each of its calls: the next start plays the whole rest or nothing, and no file stays. What stood in
// the way of a new file is not written through.
TEST_F(Overdracht, KilledOnTheWay) {
    static bool dood;
    static int over;
    auto nu = [] { return over-- == 0 ? (dood ? raise(SIGKILL) : 0, errno = ENOSPC, true) : false; };
    static auto stoor = nu;
    for (bool d : {true, false})
        for (int n = 0; n < 4; n++) {
            SCOPED_TRACE((d ? "killed at " : "refused ") + std::to_string(n));
            dood = d, over = n;
            schrijf_bestand("doel", "blijft");
            Terminal t([&] {
                EXPECT_EQ(symlink("doel", bestandsnaam().c_str()), 0);
                const pid_t eerste = fork();
                if (eerste == 0) {
                    unlink("klaar");
                    speler(7, [] {
                        MACROSPEEL('k');
                        EXPECT_EQ(symlink("doel", bestandsnaam().c_str()), 0);
                        static const SYSCALLS echt = SYS;
                        SYS.unlink = [](const char* p) { return stoor() ? -1 : echt.unlink(p); };
                        SYS.open = [](const char* p, int v, mode_t m) {
                            return stoor() ? -1 : echt.open(p, v, m);
                        };
                        SYS.write = [](int f, const void* b, size_t g) {
                            return stoor() ? -1 : echt.write(f, b, g);
                        };
                        SYS.close = [](int f) { return stoor() ? (echt.close(f), -1) : echt.close(f); };
                        SCROVERGEVEN();
                    })();
                    _exit(0);
                }
                int status;
                waitpid(eerste, &status, 0);
                return speler(7)();
            });
            t.kalm();
            const std::string codes = t.regel(1);
            EXPECT_TRUE(codes == "" || (d && codes == "50 51 52 53")) << codes;
            t.stuur("q");
            EXPECT_EQ(t.einde(), 0);
            EXPECT_EQ(lees_bestand("doel"), "blijft");
            EXPECT_NE(system("ls MAC?*.TMP >/dev/null 2>&1"), 0);
        }
}

} // namespace
} // namespace zg
