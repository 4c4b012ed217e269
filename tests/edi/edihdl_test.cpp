// The mailboxes: where they are, made, moved; and what messages say.
#include "edi/edifys.h"
#include "edi/edihdl.h"
#include "support/rechten.h"
#include "support/roepstoring.h"
#include "support/systeem.h"
#include "term/datum.h"

namespace zg::test {
namespace {

namespace fs = std::filesystem;

struct Postbus : InMap {
    Postbus() {
        EXPECT_TRUE(edi_maak(1));
        edisys('C', 0, nullptr);
    }
};

TEST_F(Postbus, Places) {
    const std::string hier = fs::current_path();
    ASSERT_EQ(edipath(EDI_PRICAT), hier + "/zebedi/pricat"); // nothing set: made, and set
    EXPECT_EQ(ediget("ZEBEDI"), hier + "/zebedi");
    EXPECT_TRUE(fs::is_directory("zebedi"));
    for (const auto& [root, soort, pad, bewaar, patroon] :
         Rijen<const char*, int, const char*, const char*, const char*>{
             {"/edi", EDI_ORDER, "/edi/order", "/edi/order/save", "*.INH"},
             {"/edi/", EDI_IBIS, "/edi/ibis", "/edi/ibis/save", "*.*"},
             {"/", EDI_SLSMON, "/slsmon", "/slsmon/save", "*.MON"},
             {"a b", EDI_UIT, "a b/out", "", "*"},
             {"/edi", EDI_ONGELDIG, "/edi/ongeldig", "", "*.*"},
             {"/edi", 11, "/edi", "", "*"},
         }) {
        ASSERT_TRUE(ediset("ZEBEDI", root));
        EXPECT_EQ(edipath(soort), pad) << root << soort;
        EXPECT_EQ(edisavepath(soort), bewaar) << root << soort;
        EXPECT_EQ(edipattern(soort), patroon) << soort;
    }
    // A disk that isn't mounted: told, and it stays set; nothing is made.
    const Afloop a = in_proces([] {
        ediset("ZEBEDI", "/nergens/edi");
        return edipath(0) == "/nergens/edi/order" && edipath(1) != "" &&
               !strcmp(ediget("ZEBEDI"), "/nergens/edi");
    });
    EXPECT_EQ(a.uitvoer, "/nergens/edi is er niet\n");
    EXPECT_EQ(a.status, 1);
}

TEST_F(Postbus, TreeAndLocationFiles) {
    const std::string root = "post bus; $(touch x) 'q'/";
    ASSERT_TRUE(ediset("ZEBEDI", root.c_str()) && ediset("EDIDIR", "loc"));
    EXPECT_EQ(edimaketree() + edimaketree(), 2); // again: all there
    for (int soort = 0; soort < EDI_SOORTEN; soort++) {
        EXPECT_EQ(rechten(edipath(soort)).substr(0, 4), "2774") << soort;
        EXPECT_EQ(fs::is_directory(edipath(soort) + "/save"), soort <= EDI_SLSMON) << soort;
    }
    EXPECT_EQ(edifilenr(), 0);
    ASSERT_EQ(edimakeloc(), 1);
    for (auto [naam, soort] :
         {std::pair{"PRI", "pricat"}, {"ORD", "admord"}, {"INV", "invrpt"}, {"SLS", "slsrpt"}}) {
        std::string regel = root + soort + "/";
        regel.resize(100, ' ');
        EXPECT_EQ(lees_bestand(std::string("loc/LOC_") + naam + ".GBL"), regel + "\n");
    }
    schrijf_bestand("loc/.zgedi.tmp", "left by a kill");
    const Afloop vol = in_proces([] {
        ediset("ZEBEDI", "elders");
        stoor_roep(1, false); // the line itself
        return edimakeloc();
    });
    EXPECT_EQ(vol.status, 0);
    EXPECT_EQ(lees_bestand("loc/LOC_PRI.GBL").substr(0, root.size()), root) << "refused: the old one stays";
    EXPECT_EQ(FILES_PRESENT("loc/*"), 4) << "and nothing beside them";
    for (auto [tekst, nummer] :
         {std::pair{"0042\r\nx", 42}, {"", 0}, {"-3", 0}, {"99999999999", 0}, {"12x", 12}}) {
        schrijf_bestand("loc/FILENR.GBL", tekst);
        EXPECT_EQ(edifilenr(), nummer) << tekst;
    }
    ASSERT_TRUE(ediset("ZEBEDI", root.c_str()));
    fs::remove_all(root + "out");
    schrijf_bestand(root + "out", "a file");
    EXPECT_EQ(edimaketree(), 0);
    EXPECT_FALSE(fs::exists("x"));
}

// ---- moving

// Plain files below a directory by their content, which is different for each: the path of each from there; a content
// that is there twice is marked.
std::map<std::string, std::string> bestanden(const std::string& root) {
    std::map<std::string, std::string> uit;
    if (!fs::exists(root))
        return uit;
    for (const auto& e : fs::recursive_directory_iterator(root))
        if (e.is_symlink())
            uit["-> " + fs::read_symlink(e.path()).string()] =
                fs::relative(e.path().parent_path(), root) / e.path().filename();
        else if (e.is_regular_file())
            uit[lees_bestand(e.path())] += fs::relative(e.path(), root).string();
    return uit;
}

void zet_boom(const std::string& root, int aantal) {
    const std::string soorten[] = {
        "IBIS", "a b.PRI", "-rf", "q'\"",         "$(touch x)",          ";reboot",
        "n\nl", ".punt",   "*",   "\xE9\xFF\x01", std::string(240, 'l'), ".zgedi.tmp",
        "%s%n", "a.b.c",   "~"};
    fs::create_directories(root + "/leeg/diep");
    for (int i = 0; i < aantal; i++) {
        const std::string map = i % 3 == 0   ? "/"
                                : i % 3 == 1 ? "/order/"
                                             : "/order/save/",
                          nr = i / 15 ? std::to_string(i) : "";
        fs::create_directories(root + map);
        schrijf_bestand(root + map + soorten[i % 15] + nr,
                        "bericht " + std::to_string(i) + std::string(static_cast<size_t>(i), 'x'));
    }
    fs::create_symlink("/etc", root + "/link");
}

TEST_F(Postbus, MovesEveryKindOfName) {
    zet_boom("oud", 1000);
    schrijf_bestand("oud/zgedi.tmp", "mail");
    auto was = bestanden("oud");
    schrijf_bestand("oud/.zgedi.tmp", "mail of the name that a copy has");
    was[lees_bestand("oud/.zgedi.tmp")] = "zgedi.tmp1";
    ASSERT_EQ(was.size(), 1003u);
    ASSERT_TRUE(chown("oud/order", geteuid(), GROEP) == 0 && chmod("oud/order", 02750) == 0);
    const std::string recht = rechten("oud/order");
    ASSERT_TRUE(ediset("ZEBEDI", "oud/") && ediset("EDIDIR", "oud/leeg/diep"));
    ASSERT_EQ(edi_verplaats("nieuw"), 1);
    EXPECT_STREQ(ediget("EDIDIR"), "nieuw/leeg/diep"); // it lay in the old root, and went along
    EXPECT_EQ(lees_bestand("nieuw/leeg/diep/LOC_PRI.GBL").substr(0, 14), "nieuw/pricat/ ");
    EXPECT_EQ(fs::remove_all("nieuw/leeg/diep"), 5u);
    EXPECT_EQ(bestanden("nieuw"), was);
    EXPECT_EQ(rechten("nieuw/order"), recht);
    EXPECT_TRUE(fs::is_directory("nieuw/slsmon/save")) << "what the old root hadn't";
    EXPECT_FALSE(fs::exists("oud") || fs::exists("x"));
    EXPECT_STREQ(ediget("ZEBEDI"), "nieuw");
}

// Killed at each call and refused each, on one file system and to another: every file is in one of the trees, whole and
// under its name. The next run ends with all of them in the new tree, once.
TEST_F(Postbus, MoveCutOff) {
    zet_boom("oud", 12);
    fs::copy("oud", "bewaard", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    const auto was = bestanden("oud");
    for (bool ver : {false, true})
        for (bool dood : {true, false})
            for (int n = 0, status = 1; status != 0; n++) {
                SCOPED_TRACE(std::string(ver ? "other disk, " : "") + (dood ? "killed at " : "refused ") +
                             std::to_string(n));
                ASSERT_LT(n, 400);
                fs::remove_all("oud");
                fs::remove_all("nieuw");
                fs::copy("bewaard", "oud", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
                if (ver) // a link can't go there
                    fs::remove("oud/link");
                ASSERT_TRUE(ediset("ZEBEDI", "oud"));
                auto verplaats = [&](int roep) {
                    if (ver) {
                        static const auto echt = SYS.link;
                        SYS.link = [](const char* a, const char* b) {
                            return strstr(a, "/.zgedi.tm") && strstr(a, "nieuw") ? echt(a, b)
                                                                                 : (errno = EXDEV, -1);
                        };
                    }
                    stoor_roep(roep, dood);
                    const int uit = edi_verplaats("nieuw");
                    return gestoord() ? 7 : 1 - uit;
                };
                const Afloop afloop = in_proces([&] { return verplaats(n); });
                status = afloop.status;
                const auto a = bestanden("oud"), b = bestanden("nieuw");
                for (const auto& [inhoud, naam] : was)
                    EXPECT_TRUE((ver && inhoud[0] == '-') || (a.contains(inhoud) && a.at(inhoud) == naam) ||
                                (b.contains(inhoud) && b.at(inhoud) == naam))
                        << naam;
                EXPECT_TRUE(strcmp(ediget("ZEBEDI"), "oud") == 0 || a.empty());
                EXPECT_TRUE(dood || a.empty() || b.empty() ||
                            afloop.uitvoer.find("nogmaals") != std::string::npos)
                    << "half of it is there, and that is told: " << afloop.uitvoer;
                EXPECT_EQ(in_proces([&] { return verplaats(1'000'000); }).status, 0);
                auto straks = bestanden("nieuw");
                if (ver)
                    straks["-> /etc"] = "./link";
                EXPECT_EQ(straks, was);
                EXPECT_TRUE(bestanden("oud").empty() && fs::exists("oud") <= !dood);
                EXPECT_STREQ(ediget("ZEBEDI"), "nieuw");
                if (testing::Test::HasFailure())
                    return;
            }
}

// What is refused leaves both trees as they were, and the setting.
TEST_F(Postbus, MoveRefused) {
    zet_boom("oud", 20);
    fs::create_directories("vol/order");
    schrijf_bestand("vol/q'\"", "somebody else's");
    schrijf_bestand("plat", "");
    fs::create_directories("seizoen");
    schrijf_bestand("seizoen/ORD0001.JRN", "an order");
    fs::create_directories("strik/in");
    fs::create_directory_symlink("../oud/order", "strik/order");
    fs::create_directory_symlink("oud", "ook_oud");
    const std::string elders = map.pad() + ".elders";
    const auto was = bestanden(".");
    for (const auto& [van, naar, zegt] : Rijen<const char*, const char*, const char*>{
             {"oud", "vol", "vol/q'\" staat er al"},
             {"oud", "plat", "plat staat er al"},
             {"oud", "oud/order/verder", "ligt in de oude directory"},
             {"ook_oud", "oud/erin", "ligt in de oude directory"},
             {"oud", "geen/zo/diep", "kan niet worden gemaakt: bestaat niet"},
             {"oud", "strik", "strik/order ligt in de oude directory"}, // there each file is its own copy
             {"oud", "seizoen", "In seizoen staat iets anders"},
             {"", "seizoen", "In seizoen staat iets anders"},
             {"oud", ".", "De datadirectory is geen postbus"},
             {".", elders.c_str(), "De datadirectory is geen postbus"},
             {"weg", "nieuw", "weg is er niet"},
             {"oud", "", "Ingave verplicht"},
             {"oud", "123456789012345678901234567890123456789012345678901234567890", "ten hoogste 59 tekens"},
         }) {
        ASSERT_TRUE(ediset("ZEBEDI", van));
        const Afloop a = in_proces([&] { return edi_verplaats(naar); });
        EXPECT_EQ(a.status, 0) << naar;
        EXPECT_TRUE(bevat(a.uitvoer, zegt)) << naar;
        EXPECT_STREQ(ediget("ZEBEDI"), van);
        std::map<std::string, std::string> nu = bestanden(".");
        nu.erase(lees_bestand("DTRCMSYS.TXT"));
        auto toen = was;
        std::erase_if(toen, [](const auto& p) { return p.second == "DTRCMSYS.TXT"; });
        EXPECT_EQ(nu, toen) << naar;
    }
    ASSERT_TRUE(ediset("ZEBEDI", "oud"));
    fs::remove("vol/q'\"");
    EXPECT_EQ(edi_verplaats("vol"), 1) << "into a tree that is there";
}

// ---- messages

// "text=what it is here", nothing behind the "=" when it is refused.
TEST(Bericht, DatesNumbersCodes) {
    enum { DATUM, GETAL, CODE };
    instel15 = {};
    instel15.prefix_aan = 1;
    VASTIN(instel15.prefix[4], "213");
    for (const auto& [soort, rijen] : Rijen<int, std::vector<std::string>>{
             {DATUM,
              {"160301=010316", "20160301=01032016", "20160229235959=29022016", "20150229=",
               "XX160301=010316", "2016030=", "16031=", "=", "161301=", "      =", "000229=290200"}},
             {GETAL,
              {"12.50=12.5", "12,00=12", "100=100", "0.0=0", ".00=0", "-.00=-0", "12,5-=12,5-", "=", "7.=7",
               "1.000,00=1.000", "1.05=1.05"}},
             {CODE,
              {"4006381333931=4006381333931", "04006381333931=4006381333931", "14006381333938=",
               "036000291452=0036000291452", "4006381333930=", "96385074=96385074", "2012345678903=",
               "2130000000019=2130000000019", "22345677=", "400638133393x=", "=", "123456789012345678="}},
         })
        for (const std::string& rij : rijen) {
            const std::string in = rij.substr(0, rij.find('=')), uit = rij.substr(rij.find('=') + 1);
            char tekst[32];
            int goed = !uit.empty();
            snprintf(tekst, sizeof tekst, "%s", in.c_str());
            if (soort == GETAL)
                edigetal(tekst);
            else
                goed = soort == CODE ? ediean(tekst) : edidatum(in.c_str(), tekst);
            EXPECT_EQ(goed, !uit.empty()) << rij;
            EXPECT_EQ(tekst, soort == CODE && uit.empty() ? in : uit) << rij;
        }
    instel15 = {};
}

TEST(Bericht, Brands) {
    TijdelijkeMap map;
    DDNEW(DDNUMMER("DTMERK"), "DTMERK");
    ICB* icb = IXOPEN("DTMERK", 2);
    uint16_t nummer = 0;
    for (const char* naam :
         {"Nordlys", "nordlys b", "Dubbel", "DUBBEL  ", " Ruimte", "Ruim", "K\x94ln", "Vol twintig tekens..",
          "  Twee", "Twee", "Caf\x82 Noir", "\x90t\x82", "\x82T\x90"}) {
        merkrec rec{};
        rec.merk = ++nummer;
        VASTIN(rec.naam, naam);
        ASSERT_EQ(IXWRITE(icb, &rec), 1);
    }
    const struct {
        const char* naam;
        int breedte, merk;
    } rijen[] = {
        {"  nordlys ", 20, 1},
        {"Nordlys breed", 7, 1},
        {"nordlys b", 20, 2},
        {"Dubbel", 20, 0},
        {"ruimte", 20, 5},
        {"Rui", 20, 0},
        {"k\x99ln", 20, 7},
        {"koln", 20, 0},
        {"vol TWINTIG tekens..", 20, 8},
        {"twee", 20, 0},
        {"CAF\x90 noir", 20, 11}, // of this letter the capital has another place among the keys
        {"\x82t\x82", 20, 0},
        {"", 20, 0},
        {"Nordlys", -5, 0},
    };
    for (const auto& r : rijen)
        EXPECT_EQ(edimerk(icb, r.naam, r.breedte), r.merk) << r.naam;
    EXPECT_EQ(IXSLEUTEL(icb), 1);
    IXCLOSE(icb);
}

struct Bezet : Systeem {};

TEST_F(Bezet, OptionsHolderAndRow) {
    firma = {};
    EXPECT_TRUE(!isedi(2) && !isedi3(3));
    firma.vlaggen = 4;
    EXPECT_TRUE(isedi2(2) && !isedi2(3) && isedi3(3) && isedi(2) && isedi(3) && !isedi(1) && !isedi(0));
    firma = {};
    EXPECT_EQ(edi_termregel(7, 13, "M\x9Bller & S\x9Bn", DATUMNR("010316"), 0, 12),
              " 7   13 M\x9Bller & S\x9Bn         010316-            12");
    gebruiker_in(3, "Joke", "07");
    schrijf_bestand("bericht", "x");
    Agent joke([] {
        open();
        int32_t nr = 3;
        gebruikerslot g;
        const int fd = ::open("bericht", O_RDWR);
        return iotab('X', &nr, &g, SYS_GEBRUIKER) && IOLOCK('S', fd, 0, 1);
    });
    const int fd = ::open("bericht", O_RDWR);
    EXPECT_EQ(edi_bezet(fd, 0, 1), "Communicatie EDI in gebruik door Joke (tty07)");
    close(fd);
}

} // namespace
} // namespace zg::test
