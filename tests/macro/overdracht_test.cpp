// A macro handed over to the next program: the transfer file, what of it is believed, and a kill on the way.
#include "macro/speler.h"
#include "support/roepstoring.h"

namespace zg::test {
namespace {

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
    return codes_na(t, typen);
}

struct Overdracht : InMap {
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
    EXPECT_EQ(keten(f2k + "x" + f2k, [] {}), "49 50 51 52 53") << "F2 is no key of a macro";
    EXPECT_EQ(keten(
                  f2k, [] {}, 8),
              "")
        << "another user on this terminal";
    // An end that hands nothing over leaves nothing behind.
    Terminal t(speler(7, [] { TOETS(); }));
    t.kalm();
    t.stuur(f2k);
    EXPECT_EQ(t.einde(), 0);
    EXPECT_EQ(system("ls MAC*.TMP >/dev/null 2>&1") != 0, true);
}

// Nothing plays but what this user's program has left a moment ago; the file goes, whatever it is, and no link is followed.
TEST_F(Overdracht, WhatIsBelieved) {
    const std::string goed = bestand(7, REC);
    mac_rec vol = vol_macro('k');
    vol.aantal = 101, vol.omschrijving[0] = 'a'; // which would be the last key
    auto byte = [&](size_t plaats, char c) {
        std::string s = goed;
        s[plaats] = c;
        return s;
    };
    enum Wat { speelt, speelt_niet, blijft };
    const struct {
        const char* wat;
        std::string inhoud;
        const char* opdracht; // $f is the file
        Wat hoe = speelt_niet;
    } rijen[] = {
        {"good", goed, "", speelt},
        {"some seconds old", goed, "touch -d '-5 seconds' $f", speelt},
        {"stale", goed, "touch -d '-12 seconds' $f"},
        {"from the future", goed, "touch -d '+60 seconds' $f"},
        {"another user's", bestand(8, macro('k', 8, {'2', '1'})), ""},
        {"says another user, holds his", bestand(8, REC), ""},
        {"nobody's", bestand(0, macro('k', 0, {'2', '1'})), ""},
        {"cut", goed.substr(0, 405), ""},
        {"doesn't play", byte(160, 0), ""},
        {"a hundred and one", bestand(7, vol), ""},
        {"code that no key has", byte(177, 2), ""},
        {"F2", bestand(7, macro('k', 7, {K_F2, '1'})), ""},
        {"for others to write", goed, "chmod 0620 $f"},
        {"a link", goed, "mv $f doel; ln -s doel $f"},
        {"two names", goed, "ln $f doel"},
        {"a pipe", "", "rm $f; mkfifo $f"},
        {"a directory", "", "rm $f; mkdir $f", blijft},
        {"a stranger's", goed, "chown 4711 $f || rm $f"},
        {"not to be taken away", goed, "geen unlink", blijft},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        Terminal t([&] {
            const std::string naam = bestandsnaam();
            schrijf_bestand(naam, r.inhoud);
            chmod(naam.c_str(), 0600);
            if (strcmp(r.opdracht, "geen unlink") == 0)
                SYS.unlink = [](const char*) { return errno = EACCES, -1; };
            else if (system(("f=" + naam + "; " + r.opdracht + " 2>/dev/null").c_str()) != 0)
                return 1;
            return speler(7, [&] {
                SCRPUT(A_WAARDE, 5, 1, "%s", access(naam.c_str(), F_OK) == 0 ? "er" : "weg");
                toon_toetsen();
            })();
        });
        t.kalm();
        EXPECT_EQ(t.regel(5), r.hoe == blijft ? "er" : "weg");
        EXPECT_EQ(codes_na(t, ""), r.hoe == speelt ? "49 50" : "");
        EXPECT_TRUE(access("doel", F_OK) != 0 || lees_bestand("doel") == r.inhoud);
        EXPECT_EQ(system("rm -rf MAC?*.TMP doel"), 0);
    }
}

// Killed or refused at each of its calls: the next start plays the whole rest or nothing, and no file stays. What stood in
// the way of a new file is not written through.
TEST_F(Overdracht, KilledOnTheWay) {
    for (bool dood : {true, false})
        for (int n = 0; n < 4; n++) { // the last is not disturbed
            SCOPED_TRACE((dood ? "killed at " : "refused ") + std::to_string(n));
            schrijf_bestand("doel", "blijft");
            Terminal t([&] {
                EXPECT_EQ(symlink("doel", bestandsnaam().c_str()), 0);
                const pid_t eerste = fork();
                if (eerste == 0) {
                    speler(7, [&] {
                        MACROSPEEL('k');
                        EXPECT_EQ(symlink("doel", bestandsnaam().c_str()), 0);
                        stoor_roep(n, dood);
                        SCROVERGEVEN();
                    })();
                    _exit(gestoord());
                }
                int status;
                waitpid(eerste, &status, 0);
                return speler(7, [&] {
                    SCRPUT(A_WAARDE, 5, 1, "%d", status);
                    toon_toetsen();
                })();
            });
            t.kalm();
            const std::string einde = t.regel(5), codes = codes_na(t, ""), vol = "50 51 52 53";
            EXPECT_TRUE(codes == vol ? dood || einde == "0" : codes.empty() && einde != "0")
                << codes << einde;
            EXPECT_EQ(lees_bestand("doel"), "blijft");
            EXPECT_NE(system("ls MAC?*.TMP >/dev/null 2>&1"), 0);
        }
}

} // namespace
} // namespace zg::test
