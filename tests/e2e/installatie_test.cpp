// What "cmake --install" puts down, under a prefix that the build doesn't know and that no path leads to.
#include "support/demomap.h"
#include "tools/shell.h"
#include <regex>

using namespace zg::test;
namespace fs = std::filesystem;

namespace {

// Installed, and moved to where it is from then on: a name with a blank.
std::string installeer(const TijdelijkeMap& map) {
    hoort("cmake --install \"" ZG_BINARY_DIR "\" --prefix " + map.pad() + "/eerst", 0);
    fs::rename(map.pad() + "/eerst", map.pad() + "/hier staat het");
    return map.pad() + "/hier staat het";
}

} // namespace

TEST(Installatie, StaatOpZichzelf) {
    TijdelijkeMap map;
    const std::string waar = installeer(map), bin = waar + "/bin/", kaal = "env -i '";
    std::set<std::string> versies;
    int programmas = 0;
    for (const auto& e : fs::directory_iterator(bin)) {
        const std::string naam = e.path().filename();
        SCOPED_TRACE(naam);
        programmas++;
        const Uit versie = sh(kaal + bin + naam + "' --version </dev/null");
        const Uit hulp = sh(kaal + bin + naam + "' --help </dev/null 2>/dev/null");
        EXPECT_TRUE(versie.status == 0 && versie.tekst.rfind(naam + " 8.70 (", 0) == 0) << versie.tekst;
        versies.insert(versie.tekst.substr(naam.size()));
        EXPECT_TRUE(hulp.status == 0 && hulp.zegt(naam)) << hulp.tekst;
        EXPECT_EQ(sh(kaal + bin + naam + "' --help >/dev/full").status, 1);
        EXPECT_TRUE(fs::exists(waar + "/share/man/man1/" + naam + ".1"));
    }
    EXPECT_EQ(versies.size(), 1u) << "one line for all";
    // Pages lead to no page that stayed behind.
    const std::regex link("\\]\\(([^)#:]+)[)#]");
    for (const auto& e : fs::directory_iterator(waar + "/share/doc/zgbestel")) {
        const std::string tekst = lees_bestand(e.path());
        for (std::sregex_iterator i(tekst.begin(), tekst.end(), link), eind; i != eind; ++i)
            EXPECT_TRUE(fs::exists(e.path().parent_path() / (*i)[1].str())) << e.path() << " " << (*i)[1];
    }
    EXPECT_GE(programmas, 20);

    // The demo firm's texts, the terminal's description, the language, the next program: all from their own place.
    ASSERT_EQ(sh(kaal + bin + "zgdemo' " + map.pad() + "/zaak").status, 0);
    fs::create_directories(waar + "/share/zgbestel/catalogues/fy");
    ASSERT_EQ(sh("printf '$set 28\\n2 \"&Oarders\"\\n' | gencat '" + waar +
                 "/share/zgbestel/catalogues/fy/DETAIL' -")
                  .status,
              0);
    Terminal t({bin + "zgbsmenu"}, {.locale = "",
                                    .map = map.pad() + "/zaak",
                                    .omgeving = {{"TERMINFO_DIRS", ""},
                                                 {"PATH", "/usr/bin:/bin"},
                                                 {"LC_MESSAGES", "fy_NL.UTF-8"},
                                                 {"LC_CTYPE", "C.UTF-8"}}});
    ASSERT_TRUE(t.wacht("Gebruiker"));
    t.toetsen("<Enter>");
    ASSERT_TRUE(t.wacht("Oarders")) << t.scherm();
    t.toetsen("<Enter>", "Seizoen");
    t.toetsen("<Esc>");
    EXPECT_TRUE(t.wacht("Oarders")) << "and back again\n" << t.scherm();
}
