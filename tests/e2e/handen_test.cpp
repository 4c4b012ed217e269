// Three users of one group on one directory, each with a umask of his own, working on one supplier by turns.
#include "e2e/loop.h"
#include "term/vast.h"
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace zg::test;
namespace fs = std::filesystem;

namespace {

constexpr gid_t GROEP = 4000;
constexpr int SESSIES[] = {7, 8, 9};

// A directory as docs/hands.md sets it up, with or without setgid; and a third user.
void richt_in(Datamap& map, bool setgid) {
    std::string sys = lees_bestand(map.bestand("DTSYS.TXT"));
    map.sys(Datamap::slot(9), sys.substr(Datamap::slot(8), 64));
    auto geef = [](const fs::path& p, mode_t mode) {
        EXPECT_EQ(chown(p.c_str(), static_cast<uid_t>(-1), GROEP) | chmod(p.c_str(), mode), 0) << p;
    };
    const mode_t mapmode = setgid ? 02770 : 0770;
    geef(map.pad(), mapmode);
    for (const auto& e : fs::recursive_directory_iterator(map.pad()))
        geef(e.path(), e.is_directory() ? mapmode : e.path().filename() == "zgbsmenu" ? 0770 : 0660);
}

// The program as user 3001, 3002 or 3003, who has a group of his own and that of the directory.
struct Beurt : Terminal {
    Beurt(Datamap& map, int wie, const char* masker)
        : Terminal(
              [&] {
                  const std::string id = std::to_string(3001 + wie);
                  std::vector<std::string> argv = {"setpriv",
                                                   "--reuid=" + id,
                                                   "--regid=" + id,
                                                   "--groups=" + std::to_string(GROEP),
                                                   "sh",
                                                   "-c",
                                                   std::string("umask ") + masker + "; exec \"$@\"",
                                                   "sh"};
                  for (const std::string& a : map.overgave(SESSIES[wie], wie ? "Piet" : "Joke"))
                      argv.push_back(a);
                  return argv;
              }(),
              [&] {
                  Opties o = map.opties();
                  o.klok.clear(); // what fixes it belongs to the user who came first
                  return o;
              }()) {
        EXPECT_TRUE(wacht_op(1, 46, "2016")) << scherm();
        kalm();
    }
    void order(const std::string& verwacht) {
        toetsen("<Enter><Enter>12<Enter>");
        EXPECT_TRUE(wacht(verwacht)) << scherm();
        toetsen("<Enter>");
        EXPECT_TRUE(wacht_op(24, 1, "Uw keuze")) << scherm();
    }
    void uit() {
        kalm();
        reeks("<Esc>");
        EXPECT_EQ(einde(), 0) << scherm();
    }
};

std::string rechten(const std::string& pad) {
    struct stat st {};
    char uit[40] = "none";
    if (stat(pad.c_str(), &st) == 0)
        snprintf(uit, sizeof uit, "%04o %u", st.st_mode & 07777, st.st_gid);
    return uit;
}

} // namespace

TEST(Handen, DrieGebruikersOmDeBeurt) {
    if (geteuid() != 0)
        GTEST_SKIP() << "three users can only be played by root";
    for (bool setgid : {true, false}) {
        SCOPED_TRACE(setgid ? "setgid directory" : "plain directory");
        Datamap map;
        map.journaal(maak_order(maak_kop("Begin"), {{5, "A", "D1"}, {5, "B", "D2"}}));
        richt_in(map, setgid);
        std::string vorige = "Begin";
        int beurt = 0;
        for (const char* masker : {"022", "077", "002"})
            for (int wie = 0; wie < 3; wie++) {
                const std::string nieuw = "Beurt" + std::to_string(++beurt);
                SCOPED_TRACE(nieuw + " umask " + masker);
                Beurt b(map, wie, masker);
                b.order(vorige);
                b.toetsen("WOO" + nieuw + "<Enter><Esc><Esc>");
                b.uit();
                EXPECT_EQ(rechten(map.bestand("2016Z/ORD0012.JRN")), "0660 4000");
                vorige = nieuw;
                ASSERT_FALSE(HasFailure()) << b.scherm();
            }
        EXPECT_EQ(zg::VASTTEKST(kop_van(map.journaal()).omschrijving), vorige);
        // Killed in the middle of his turn; a colleague gets the change, and can go on.
        {
            Beurt een(map, 0, "077");
            een.order(vorige);
            een.toetsen("WOOGestrand<Enter><Esc>");
            // Another looks in vain meanwhile, and is told at whom.
            Beurt twee(map, 1, "022");
            twee.toetsen("<Enter><Enter>12<Enter>");
            EXPECT_TRUE(twee.wacht("Order ORD0012.JRN in gebruik op ander scherm.")) << twee.scherm();
            EXPECT_TRUE(twee.wacht("Informatie in gebruik door Joke")) << twee.scherm();
            twee.toetsen("<Enter><Enter>");
            een.sein(SIGKILL);
            EXPECT_EQ(een.einde(), 128 + SIGKILL);
            twee.toetsen("<Esc>");
            twee.uit();
        }
        Beurt drie(map, 2, "022");
        drie.toetsen("<Enter><Enter>12<Enter>");
        EXPECT_TRUE(drie.wacht("worden automatisch hersteld...")) << drie.scherm();
        drie.toetsen("<Enter>");
        EXPECT_TRUE(drie.wacht("Gestrand")) << drie.scherm();
        drie.toetsen("<Esc><Esc>");
        // The standard season's directory and a supplier's first journal are made by whoever comes first.
        drie.toetsen("<Back><Enter>K<Enter>31<Enter>");
        EXPECT_EQ(rechten(map.bestand("0000K")), setgid ? "2770 4000" : "0770 4000") << drie.scherm();
        EXPECT_EQ(rechten(map.bestand("0000K/ORD0031.JRN")), "0660 4000") << drie.scherm();
        drie.hangop();
        drie.einde();
        EXPECT_EQ(map.restjes(), "");
        // Out of reach for the others: said why, and nothing stops.
        ASSERT_EQ(chmod(map.bestand("2016Z/ORD0012.JRN").c_str(), 0600), 0);
        Beurt twee(map, 1, "022");
        twee.toetsen("<Enter><Enter>12<Enter>");
        EXPECT_TRUE(twee.wacht("Order ORD0012.JRN: Bestand niet te openen")) << twee.scherm();
        EXPECT_TRUE(twee.wacht("geen rechten")) << twee.scherm();
        twee.toetsen("<Enter>");
        EXPECT_TRUE(twee.wacht_op(24, 1, "Orderjournaal niet beschikbaar.")) << twee.scherm();
        twee.toetsen("<Enter><Esc>");
        twee.uit();
    }
}
