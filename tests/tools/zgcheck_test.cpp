// The operators' check of a data directory: each kind of damage is told at its file, a repair puts right what can be and
// leaves the rest as it stands; who is in keeps a repair out.
#include "order/ordrec.h"
#include "tools/schade.h"
#include "tools/shell.h"
#include <algorithm>
#include <grp.h>

using namespace zg;
using namespace zg::test;

namespace {

// Who may only read: what the check answers him.
void als_gast(const std::string& opdracht, int status, const std::vector<std::string>& woorden) {
    const auto gast = in_proces([&] {
        constexpr int NIEMAND = 65534;
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(NIEMAND) != 0 || setuid(NIEMAND) != 0))
            return 9;
        if (access(ZG_BINARY_DIR "/zgcheck", X_OK) != 0)
            return 0; // a checkout that nobody else may enter
        const Uit uit = sh(opdracht);
        printf("%d\n%s", uit.status, uit.tekst.c_str());
        return uit.status == status &&
                       std::ranges::all_of(woorden, [&](const std::string& w) { return uit.zegt(w); })
                   ? 0
                   : 1;
    });
    EXPECT_EQ(gast.status, 0) << gast.uitvoer;
}

// What needs no repair is a note, and what nobody will ever want is swept.
TEST(Zgcheck, Remains) {
    const DemoMap map("data/demo", "--register");
    const std::string hier = " " + map.pad();
    for (const char* naam : {"2016Z/ORD0012.TMP", "2016Z/ORD0012.ORS", "PRAB13.UIT", "EDISYS.CVC"})
        plak(map, naam, "x");
    size_t model = 1 + sizeof(ordkop);
    while (haal<char>(map, "2016Z/ORD0013.JRN", model) == 'T')
        model += 1 + sizeof(ordtekst);
    zet(map, "2016Z/ORD0013.JRN", model + 1 + offsetof(ordmodel, merk), uint16_t{9999});
    zet(map, "2016Z/ORD0013.JRN", model + 1 + offsetof(ordmodel, maatsoort), uint8_t{77});
    std::filesystem::create_directory(map.bestand(".ixwerkAAAAAA"));
    std::filesystem::create_directory(map.bestand(".ixwerkBBBBBB"));
    for (const char* naam : {".ixwerkAAAAAA/DTLEV.TXT", ".ixwerkBBBBBB/vorige"})
        plak(map, naam, "x");
    plak(map, "2016Z/ORD0019.JRN", ""); // of a buyer who died before his first order
    sh("chmod -R g+rwX,g-s,o=" + hier);
    // What the package doesn't know: named as it is typed, and left as it is.
    for (const char* naam : {"caf\xC3\xA9.TXT", "\xff\xC2\x9b.TXT", "2016Z/ORD0014.JRN~",
                             "2016Z/ORD0014.JRN (copy)", "2016Z/ORD0000.JRN", "2016Z/ORD99999.JRN"}) {
        plak(map, naam, "x");
        EXPECT_EQ(chmod(map.bestand(naam).c_str(), 0600), 0);
    }
    std::filesystem::create_directory(map.bestand("2016z"));
    const Uit uit = sh("LC_ALL=C.UTF-8 zgcheck" + hier);
    EXPECT_EQ(uit.status, 0);
    for (const char* tekst :
         {"2015W: note: mode 0770, should be 2770", "2016Z/ORD0019.JRN: note: empty",
          "2016Z/ORD0012.TMP: note: left by an order",
          "2016Z/ORD0012.ORS: note: ", "PRAB13.UIT: note: left by", "EDISYS.CVC: note: settings half made",
          "2016Z/ORD0013.JRN: note: brand 9999 isn't there",
          "2016Z/ORD0013.JRN: note: size type 77 isn't there", ".ixwerkAAAAAA: note: a load or copy",
          ".ixwerkBBBBBB: note: a load that was killed: its \"vorige\" is the only copy",
          "other files: note: caf\xC3\xA9.TXT", "note: \\xff\\xc2\\x9b.TXT", "note: 2016z/",
          "note: 2016Z/ORD0014.JRN~", "note: 2016Z/ORD0014.JRN (copy)", "note: 2016Z/ORD0000.JRN",
          "note: 2016Z/ORD99999.JRN"})
        EXPECT_TRUE(uit.zegt(tekst)) << tekst << "\n" << uit.tekst;
    hoort("zgcheck -r" + hier, 0, "repair: .ixwerkAAAAAA: removed\n");
    for (const char* naam : {"2016Z/ORD0012.TMP", "2016Z/ORD0012.ORS", "PRAB13.UIT", ".ixwerkAAAAAA"})
        EXPECT_FALSE(std::filesystem::exists(map.bestand(naam))) << naam;
    // The only copy of something stays.
    struct stat st;
    EXPECT_TRUE(stat(map.bestand("caf\xC3\xA9.TXT").c_str(), &st) == 0 && (st.st_mode & 07777) == 0600);
    EXPECT_TRUE(std::filesystem::exists(map.bestand(".ixwerkBBBBBB/vorige")));
}

TEST(Zgcheck, EachDamageAndItsRepair) {
    {
        const DemoMap heel("data/demo", "--register");
        ASSERT_EQ(sh("zgcheck -q " + heel.pad()).tekst, "");
    }
    std::vector<std::vector<Schade>> mappen = SAMEN;
    for (const Schade& s : SCHADES)
        mappen.push_back({s});
    for (const std::vector<Schade>& schades : mappen) {
        const DemoMap map("data/demo", "--register");
        const std::string hier = " " + map.pad();
        for (const Schade& s : schades)
            s.doe(map);
        const auto stuk = map.inhoud();
        const Uit uit = sh("zgcheck -w 0" + hier); // nobody is at work in it
        EXPECT_EQ(DemoMap::verschil(stuk, map.inhoud()), "") << "a check only reads";
        const Uit na = sh("zgcheck --repair" + hier);
        for (const Schade& s : schades) {
            SCOPED_TRACE(s.wat);
            EXPECT_EQ(uit.status, 1);
            EXPECT_EQ(na.status, s.te_herstellen ? 0 : 1) << na.tekst;
            EXPECT_TRUE(!s.te_herstellen || na.zegt("repair: ")) << na.tekst;
            for (const char* tekst : s.gezegd) {
                EXPECT_TRUE(uit.zegt(tekst) || !strncmp(tekst, "repair: ", 8)) << tekst << "\n" << uit.tekst;
                EXPECT_TRUE(s.te_herstellen || na.zegt(tekst)) << tekst << "\n" << na.tekst;
            }
        }
        if (schades[0].te_herstellen) {
            EXPECT_EQ(sh("zgcheck -q" + hier).tekst + sh("ixcheck -q" + hier).tekst, "");
        } else { // what can't be known stays: no series, group or label goes
            for (const char* naam : {"DTSER.TXT", "DTIPA.TXT", "DTIPG.TXT", "DTETI.TXT", "DTEAN.TXT",
                                     "DTSYS.TXT", "DTORDNR.TXT"})
                EXPECT_TRUE(!stuk.contains(naam) || lees_bestand(map.bestand(naam)) == stuk.at(naam)) << naam;
        }
    }
}

TEST(Zgcheck, BesidePeople) {
    const DemoMap map("data/demo", "--register");
    const std::string hier = " " + map.pad();
    zet(map, "DTSER.TXT", sizeof(serrec) + offsetof(serrec, voorraad), int32_t{7});
    const auto voor = map.inhoud();
    { // a buyer at his season prompt
        Terminal t(overgave(map), demo_opties(map));
        t.wacht_op(1, 46, "2016");
        t.kalm();
        const auto bezig = map.inhoud();
        hoort("zgcheck --repair" + hier, 4, "user 1 Joke, process ", ", zgbestel\n", "nothing was changed");
        hoort("zgcheck" + hier, 1, "DTSYS.TXT: note: user slot 1: in use by process", ", zgbestel, user Joke",
              "DTSYS.TXT: note: group 5: in use");
        EXPECT_EQ(DemoMap::verschil(bezig, map.inhoud()), "");
        // The number of a series that he is making isn't cleared under him, whatever is forced.
        const seriesleutel maakt{1100, 15, 77};
        zet(map, "SERNR01.RES", 0, maakt);
        Agent(std::function<bool()>([&] {
            if (chdir(map.pad().c_str()) != 0)
                return false;
            uint8_t rec[IXRECMAX] = {};
            memcpy(rec, &maakt, sizeof maakt);
            return IXREADL(IXOPEN("DTSER", 2), rec) == 0;
        })).dood();
        hoort("ixremake --force" + hier + "/DTSER", 4, "key 1100 15 77 is reserved by a user");
        t.sein(SIGHUP);
        t.einde();
        EXPECT_TRUE(sh("ixremake" + hier + "/DTSER").zegt("reserved key cleared: 1100 15 77"));
    }
    { // somebody has that series in hand: it may be he who is changing it
        Agent houder([&] {
            if (chdir(map.pad().c_str()) != 0)
                return false;
            ICB* icb = IXOPEN("DTSER", 2);
            uint8_t rec[IXRECMAX];
            return IXGET(icb, rec, 1) == 1 && IXREADL(icb, rec) == 1;
        });
        ASSERT_TRUE(houder.ok());
        hoort("zgcheck" + hier, 0, "(in use)", "DTSER: note: record 1: in use by process ");
        EXPECT_EQ(sh("zgcheck --repair --wait 0" + hier).status, 4);
    }
    EXPECT_EQ(lees_bestand(map.bestand("DTSER.TXT")), voor.at("DTSER.TXT"));
    EXPECT_EQ(sh("zgcheck -r" + hier).status, 0);
    sh("chmod -R a+rX" + hier);
    als_gast("zgcheck" + hier, 0, {"DTLEV: good"});
    // What he has no right to read is told at its file, and proves nothing of others.
    sh("chmod 0 " + map.bestand("2016Z/ORD0012.JRN") + " " + map.bestand("DTLEV.TXT") + " " +
       map.bestand("print"));
    als_gast("zgcheck" + hier, 1,
             {"ORD0012.JRN: can't be read: no permission", "DTLEV: DTLEV.TXT can't be read: no permission",
              "DTORDNR: good", "DTMERK: good", "print: note: can't be read: no permission"});
    sh("chmod -R a+rwX" + hier + "; chmod 0444 " + map.bestand("DTSER.TXT"));
    als_gast("zgcheck -r" + hier, 1,
             {"repair: DTSER can't be written; ", "DTSER.TXT: mode 0444", "DTEAN: good"});
    EXPECT_EQ(sh("zgcheck").status, 2);
    EXPECT_EQ(sh("zgcheck --nonsense" + hier).status, 2);
    EXPECT_EQ(sh("zgcheck /").status, 3);
    EXPECT_EQ(sh("cd" + hier + " && zgcheck elsewhere").status, 3);
    std::filesystem::remove(map.bestand("DTIPG.TXT"));
    EXPECT_TRUE(sh("zgcheck" + hier).zegt("DTIPG: DTIPG.TXT isn't there"));
}

} // namespace
