// Three users of one group on one directory, each with a umask of his own, working on one supplier by turns.
#include "e2e/loop.h"
#include "support/rechten.h"

using namespace zg::test;
namespace fs = std::filesystem;

namespace {

constexpr int SESSIES[] = {7, 8, 9};

// A directory as docs/hands.md sets it up, with or without setgid; and a third user. The terminal descriptions go along:
// the build may stand where only its owner comes.
void richt_in(Datamap& map, bool setgid) {
    fs::copy(ZG_BINARY_DIR "/terminfo", map.bestand("terminfo"), fs::copy_options::recursive);
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
struct Beurt : Programma {
    Beurt(Datamap& map, int wie, const char* masker) : Programma(argv(map, wie, masker), opties(map)) {}
    static std::vector<std::string> argv(Datamap& map, int wie, const char* masker) {
        const std::string id = std::to_string(3001 + wie);
        std::vector<std::string> uit = map.overgave(SESSIES[wie], wie ? "Piet" : "Joke");
        uit.insert(uit.begin(), {"sh", "-c",
                                 std::string("umask ") + masker + "; exec setpriv --reuid=" + id +
                                     " --regid=" + id + " --groups=" + std::to_string(GROEP) + " \"$@\"",
                                 "sh"});
        return uit;
    }
    static Opties opties(Datamap& map) {
        Opties o = map.opties();
        o.klok.clear(); // what fixes it belongs to the user who came first
        o.omgeving.emplace_back("TERMINFO", map.bestand("terminfo"));
        return o;
    }
};

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
                b.eerste_order();
                b.t.wacht(vorige);
                b.uit("WOO" + nieuw + "<Enter><Esc><Esc>");
                EXPECT_EQ(rechten(map.bestand("2016Z/ORD0012.JRN")), "0660 4711");
                vorige = nieuw;
                ASSERT_FALSE(HasFailure()) << b.t.scherm();
            }
        EXPECT_EQ(zg::VASTTEKST(kop_van(map.journaal()).omschrijving), vorige);
        // Killed in the middle of his turn; a colleague gets the change, and can go on.
        {
            Beurt een(map, 0, "077");
            een.eerste_order();
            een.t.toetsen("WOOGestrand<Enter><Esc>");
            een.t.sein(SIGKILL);
            EXPECT_EQ(een.t.einde(), 128 + SIGKILL);
        }
        Beurt drie(map, 2, "022");
        drie.leverancier();
        drie.t.wacht("worden automatisch hersteld...");
        drie.t.toetsen("<Enter>", "Gestrand");
        drie.t.toetsen("<Esc><Esc>");
        // The standard season's directory and a supplier's first journal are made by whoever comes first.
        drie.t.toetsen("<Back><Enter>K<Enter>31<Enter>");
        EXPECT_EQ(rechten(map.bestand("0000K")), setgid ? "2770 4711" : "0770 4711") << drie.t.scherm();
        EXPECT_EQ(rechten(map.bestand("0000K/ORD0031.JRN")), "0660 4711") << drie.t.scherm();
        drie.t.hangop();
        drie.t.einde();
        EXPECT_EQ(map.restjes(), "");
    }
}
