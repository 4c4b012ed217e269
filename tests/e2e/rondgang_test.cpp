// The README's first steps, word for word: every key of its table, every text that it promises, and its picture.
#include "support/demomap.h"
#include "tools/shell.h"
#include <sstream>

using namespace zg::test;

namespace {

// What stands between backticks.
std::vector<std::string> woorden(const std::string& cel) {
    std::vector<std::string> uit;
    for (size_t a = 0, b;
         (a = cel.find('`', a)) != std::string::npos && (b = cel.find('`', a + 1)) != cel.npos; a = b + 1)
        uit.push_back(cel.substr(a + 1, b - a - 1));
    return uit;
}

bool toetsnaam(const std::string& w) {
    for (const char* naam : {"Enter", "Esc", "Tab", "Up", "Down", "PgUp", "PgDn", "Ins"})
        if (w == naam)
            return true;
    return w.size() > 1 && w[0] == 'F' && isdigit(static_cast<unsigned char>(w[1]));
}

// A screen as a page shows it: four blank rows stand for more.
std::string plaatje(const std::string& scherm) {
    std::istringstream in(scherm);
    std::string uit;
    int leeg = 0;
    for (std::string rij; getline(in, rij);)
        if ((leeg = rij.empty() ? leeg + 1 : 0) <= 4)
            uit += rij + "\n";
    return uit.substr(0, uit.find_last_not_of('\n') + 2);
}

// The place of a page's next picture from `p` on, and its length; false when there is none.
bool beeld_op(const std::string& pagina, size_t* p, size_t* lengte) {
    const size_t q = pagina.find("\n```\n ORDERS", *p);
    if (q == std::string::npos)
        return false;
    *p = q + 5;
    *lengte = pagina.find("```", *p) - *p;
    return true;
}

// A page's tables walked with the keys of their left cells, each behind the other in one demo directory. With
// ZG_SCHERMEN set (the target `screens`) its pictures become those that the program shows.
void loop_na(const std::string& bestand, const DemoMap& map, const char* locale) {
    std::string pagina = lees_bestand(bestand);
    std::vector<std::string> beelden, nu;
    for (size_t p = 0, n; beeld_op(pagina, &p, &n);)
        beelden.push_back(pagina.substr(p, n));
    Opties o = demo_opties(map);
    o.klok = ""; // today
    o.locale = locale;
    const bool nieuw = getenv("ZG_SCHERMEN") != nullptr;
    size_t tafel = 0;
    int tochten = 0;
    for (; (tafel = pagina.find("\n| Keys |", tafel)) != std::string::npos; tafel++, tochten++) {
        Terminal t({programma("zgbsmenu")}, o);
        std::istringstream in(pagina.substr(tafel));
        std::string rij;
        for (int kop = 0; kop < 3; kop++)
            getline(in, rij);
        int stappen = 0;
        for (; getline(in, rij) && rij.starts_with("| "); stappen++) {
            SCOPED_TRACE(rij);
            const size_t midden = rij.find(" | ");
            ASSERT_TRUE(t.kalm());
            ASSERT_TRUE(t.leeft()) << "the tour ends too early";
            std::string toetsen;
            for (const std::string& w : woorden(rij.substr(0, midden)))
                if (w != "./run")
                    toetsen += toetsnaam(w) ? "<" + w + ">" : w;
            if (toetsen.starts_with("<F2>")) // what follows it must not be late
                t.reeks(toetsen);
            else
                t.toetsen(toetsen);
            for (const std::string& w : woorden(rij.substr(midden)))
                ASSERT_TRUE(t.wacht(w));
            if (rij.find(" picture") != std::string::npos) {
                nu.push_back(plaatje(t.scherm()));
                ASSERT_LE(nu.size(), beelden.size());
                if (!nieuw)
                    EXPECT_EQ(nu.back(), beelden[nu.size() - 1]) << "the target screens makes them anew";
            }
        }
        EXPECT_GT(stappen, 6);
        EXPECT_EQ(t.einde(), 0) << t.scherm();
        // Menu, program and menu: the shell's screen was left once, and came back once.
        const std::string uit = t.uitvoer();
        for (const char* wissel : {"\033[?1049h", "\033[?1049l"})
            EXPECT_EQ(uit.find(wissel), uit.rfind(wissel));
    }
    EXPECT_EQ(tochten, 3);
    ASSERT_EQ(nu.size(), beelden.size());
    for (size_t p = 0, n, i = 0; nieuw && beeld_op(pagina, &p, &n); i++)
        pagina.replace(p, n, nu[i]);
    if (nieuw)
        schrijf_bestand(bestand, pagina);
}

} // namespace

TEST(Rondgang, AsTheReadmeTells) {
    const std::string readme = lees_bestand(ZG_SOURCE_DIR "/README.md");
    DemoMap map;
    loop_na(ZG_SOURCE_DIR "/README.md", map, "C.UTF-8");
    // What the shell says then.
    const size_t opdracht = readme.find("\n    $ ") + 7, eind = readme.find('\n', opdracht) + 1;
    std::string zegt =
        sh("cd " + map.pad() + " && ln -s . demo && " + readme.substr(opdracht, eind - opdracht)).tekst;
    std::istringstream in(zegt);
    std::string gezegd;
    for (std::string rij; getline(in, rij);)
        gezegd += "    " + rij + "\n";
    EXPECT_EQ(gezegd, readme.substr(eind, readme.find("\n\n", eind) + 1 - eind));
}

// By the name of a locale that needn't be on this machine: the catalogues are found beside the program.
TEST(Rondgang, InEnglish) {
    DemoMap map;
    loop_na(ZG_SOURCE_DIR "/docs/walk.md", map, "en_GB.UTF-8");
}

// What the commands look at before anything is built.
TEST(Rondgang, SmallWindow) {
    Opties o;
    o.rijen = 24;
    Terminal t({ZG_SOURCE_DIR "/run"}, o);
    t.wacht("This window is 80 x 24; the screens need 80 columns and 25 rows.");
    EXPECT_EQ(t.einde(), 1);
}
