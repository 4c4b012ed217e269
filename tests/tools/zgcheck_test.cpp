// The operators' check of the full registration: each kind of damage is told at its file, a repair gives back what can be
// given back and leaves the rest as it stands; who is in keeps a repair out.
#include "order/ordrec.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/iotab.h"
#include "shared/registerrec.h"
#include "support/demomap.h"
#include "support/proces.h"
#include "tools/shell.h"
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace zg;
using namespace zg::test;

namespace {

template <class T> void zet(const DemoMap& map, const char* naam, size_t plaats, T waarde) {
    std::string b = lees_bestand(map.bestand(naam));
    if (b.size() < plaats + sizeof waarde)
        b.resize(plaats + sizeof waarde);
    memcpy(&b[plaats], &waarde, sizeof waarde);
    schrijf_bestand(map.bestand(naam), b);
}

template <class T> T haal(const DemoMap& map, const char* naam, size_t plaats) {
    T uit;
    memcpy(&uit, &lees_bestand(map.bestand(naam)).at(plaats), sizeof uit);
    return uit;
}

// A record of a pair by its place, deleted through the store.
void wis(const DemoMap& map, const char* naam, int32_t nr) {
    const Afloop a = in_proces([&] {
        if (chdir(map.pad().c_str()) != 0)
            return 1;
        ICB* icb = IXOPEN(naam, 2);
        uint8_t rec[IXRECMAX];
        const int er = IXGET(icb, rec, nr);
        IXDELETE(icb, rec);
        IXCLOSE(icb);
        return er == 1 ? 0 : 2;
    });
    EXPECT_EQ(a.status, 0) << naam << a.uitvoer;
}

void schrijf(const DemoMap& map, const char* naam, std::string rec) {
    rec.resize(IXRECMAX);
    const Afloop a = in_proces(
        [&] { return chdir(map.pad().c_str()) == 0 && IXWRITE(IXOPEN(naam, 2), rec.data()) == 1 ? 0 : 1; });
    EXPECT_EQ(a.status, 0) << naam << a.uitvoer;
}

constexpr size_t SYS2 = 64, SYS4 = 3 * 64, SYS9 = 8 * 64, SYS14 = 13 * 64, BLOK = sizeof(etiblok),
                 SER = sizeof(serrec);

struct Schade {
    const char* wat;
    std::function<void(const DemoMap&)> doe;
    std::vector<const char*> gezegd;
    bool te_herstellen;
};

const Schade SCHADES[] = {
    {"counts of a series",
     [](const DemoMap& m) { zet(m, "DTSER.TXT", SER + offsetof(serrec, voorraad), int32_t{7}); },
     {"DTSER: series 1100.15.1: counts "},
     true},
    {"a chain into another series",
     [](const DemoMap& m) { zet(m, "DTETI.TXT", 2 * BLOK + offsetof(etiblok, volgende), int32_t{100}); },
     {"DTETI: series ", "block 100: is of series "},
     false},
    {"a chain past the end",
     [](const DemoMap& m) { zet(m, "DTSER.TXT", offsetof(serrec, etiketkop), int32_t{99999}); },
     {"DTETI: series ", "block 99999: outside the file"},
     false},
    {"a block that nobody has",
     [](const DemoMap& m) {
         const auto t = haal<sysetiket>(m, "DTSYS.TXT", SYS4);
         etiblok b{};
         b.serie = {1100, 15, 1};
         b.volgende = -1;
         sysetiket na = t;
         na.vrijkop = na.hoogste = t.hoogste + 1;
         zet(m, "DTETI.TXT", static_cast<size_t>(t.hoogste) * BLOK, b);
         zet(m, "DTSYS.TXT", SYS4, na);
     },
     {"DTETI: block ", ": in no chain, of series 1100.15.1"},
     true},
    {"a block with more than a first label that nobody has", // no death leaves that
     [](const DemoMap& m) {
         const auto t = haal<sysetiket>(m, "DTSYS.TXT", SYS4);
         etiblok b = haal<etiblok>(m, "DTETI.TXT", 0);
         b.volgende = -1;
         sysetiket na = t;
         na.vrijkop = na.hoogste = t.hoogste + 1;
         zet(m, "DTETI.TXT", static_cast<size_t>(t.hoogste) * BLOK, b);
         zet(m, "DTSYS.TXT", SYS4, na);
     },
     {"DTETI: block ", ": in no chain, of series "},
     false},
    {"wild counters of labels",
     [](const DemoMap& m) { zet(m, "DTSYS.TXT", SYS4, int32_t{-5}); },
     {"DTETI: "},
     true},
    {"counters of labels far behind the file",
     [](const DemoMap& m) {
         zet(m, "DTSYS.TXT", SYS4, std::pair{500'000, 500'000});
     },
     {"DTETI: DTSYS.TXT system record 4"},
     true},
    {"a series that has lost its chain",
     [](const DemoMap& m) { zet(m, "DTSER.TXT", SER + offsetof(serrec, etiketkop), int32_t{-1}); },
     {"DTETI: series 1100.15.1", "a part is cut off"},
     false},
    {"labels cut off",
     [](const DemoMap& m) { std::filesystem::resize_file(m.bestand("DTETI.TXT"), 200 * BLOK + 5); },
     {"DTETI: series ", "outside the file"},
     false},
    {"a status that there isn't",
     [](const DemoMap& m) {
         for (size_t i = 0; i < ETIPLAATS; i++)
             zet(m, "DTETI.TXT", offsetof(etiblok, plaats) + i, uint8_t{0xFF});
     },
     {"DTETI: series ", "block 0: a label of a status"},
     false},
    {"a group that disagrees",
     [](const DemoMap& m) { zet(m, "DTIPG.TXT", offsetof(prijsgroeprec, setnr), uint16_t{999}); },
     {"DTIPA: series ", "record 0: not a group of this set"},
     false},
    {"a price record that nobody has",
     [](const DemoMap& m) {
         const auto einde = haal<int32_t>(m, "DTSYS.TXT", SYS9 + 4);
         zet(m, "DTIPG.TXT", static_cast<size_t>(einde) * sizeof(prijsgroeprec), prijsgroeprec{});
         zet(m, "DTSYS.TXT", SYS9, std::pair{einde + 1, einde + 1});
     },
     {"DTIPA: DTIPG.TXT: 1 records that no set has"},
     true},
    {"a series without its record", // a deletion takes that last: it was lost, and all that it led to stays
     [](const DemoMap& m) { wis(m, "DTSER", 1); },
     {"DTIPA: sets of 1100.15.1", "DTEAN: ", "DTETI: ", "journals: note: 0000Z/ORD0010.JRN"},
     false},
    {"prices and a code of a series that is nowhere else",
     [](const DemoMap& m) {
         std::string code = lees_bestand(m.bestand("DTEAN.TXT")).substr(sizeof(eanrec), sizeof(eanrec));
         code.replace(0, 13, "8711253001202").replace(offsetof(eanrec, volgnummer), 2, "\x77\x77");
         schrijf(m, "DTEAN", code);
         prijsset set{};
         set.serie = {4711, 1, 1};
         set.groep = -1;
         schrijf(m, "DTIPA", std::string(reinterpret_cast<char*>(&set), sizeof set));
     },
     {"DTIPA: sets of 4711.1.1, which isn't there", "DTEAN: code 8711253001202 and 0 more: of series "},
     true},
    {"a number of a series before the counter",
     [](const DemoMap& m) { zet(m, "DTSYS.TXT", SYS2, int32_t{1}); },
     {"DTSER: DTSYS.TXT system record 2: the last number is 1, series "},
     true},
    {"a size type that there isn't",
     [](const DemoMap& m) { zet(m, "DTSER.TXT", SER + offsetof(serrec, maatsoort), uint8_t{77}); },
     {"DTSER: series 1100.15.1: size type 77, which isn't there"},
     false},
    {"half a block behind the labels",
     [](const DemoMap& m) {
         zet(m, "DTETI.TXT", haal<sysetiket>(m, "DTSYS.TXT", SYS4).hoogste * BLOK + 96, int32_t{-1});
     },
     {"DTETI: DTSYS.TXT system record 4: ", " blocks and a half"},
     true},
    {"labels that are gone", // their numbers stand on pieces: none is given out again
     [](const DemoMap& m) { std::filesystem::resize_file(m.bestand("DTETI.TXT"), 0); },
     {"DTETI: series ", "outside the file"},
     false},
    {"price records cut off",
     [](const DemoMap& m) {
         std::filesystem::resize_file(m.bestand("DTIPG.TXT"), 50 * sizeof(prijsgroeprec));
     },
     {"DTIPA: series ", "outside DTIPG.TXT"},
     false},
    {"a wild counter of codes",
     [](const DemoMap& m) { zet(m, "DTSYS.TXT", SYS14, uint32_t{0xFFFFFFFF}); },
     {"DTEAN: DTSYS.TXT system record 14: the last code is 4294967295, more than there are"},
     true},
    {"a label of a size that its series hasn't",
     [](const DemoMap& m) { zet(m, "DTETI.TXT", offsetof(etiblok, plaats) + 20, uint16_t{9001}); },
     {"DTETI: series ", ": 1 labels of a size that neither it nor their prices have"},
     false},
    {"a label of another day than its order",
     [](const DemoMap& m) { zet(m, "DTETI.TXT", offsetof(etiblok, plaats) + 26, uint16_t{1}); },
     {"DTETI: series ", "which has another supplier or date"},
     false},
    {"a line whose prices are gone", // its groups are the last that knows of them
     [](const DemoMap& m) { wis(m, "DTIPA", 0); },
     {"DTIPA: series ", ": no prices for its line of 0000Z/ORD0010.JRN at 0: order ", "which has labels"},
     false},
    {"a second code for a size",
     [](const DemoMap& m) {
         std::string code = lees_bestand(m.bestand("DTEAN.TXT")).substr(sizeof(eanrec), sizeof(eanrec));
         schrijf(m, "DTEAN", code.replace(0, 13, "8711253001202"));
     },
     {"DTEAN: code 8711253001202: series ", " has another for size"},
     false},
    {"a block that its chain breaks at", // is its own, whatever it says
     [](const DemoMap& m) {
         zet(m, "DTETI.TXT", 0, seriesleutel{4711, 1, 1});
     },
     {"DTETI: series ", "block 0: is of series 4711.1.1"},
     false},
    {"an order without its number",
     [](const DemoMap& m) { wis(m, "DTORDNR", 0); },
     {"has no number record"},
     false},
    {"two orders of one number",
     [](const DemoMap& m) {
         const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
         schrijf_bestand(jrn, lees_bestand(jrn) + lees_bestand(jrn));
     },
     {"journals: ", "has the number of 2016Z/ORD0010.JRN at 0"},
     false},
    {"a journal that goes",
     [](const DemoMap& m) { std::filesystem::remove(m.bestand("2016Z/ORD0010.JRN")); },
     {"DTORDNR: number ", "of an order that isn't there"},
     false},
    {"a journal cut off",
     [](const DemoMap& m) {
         const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
         std::filesystem::resize_file(jrn, std::filesystem::file_size(jrn) - 1);
     },
     {"journals: 2016Z/ORD0010.JRN at "},
     false},
    {"a broken tree", // and nothing is read along it
     [](const DemoMap& m) { zet(m, "DTIPA.INX", 4 * 512 + 20, uint32_t{0xFFFFFFFF}); },
     {"DTIPA: key 1, block ", "ixremake first: DTIPA;"},
     false},
    {"a pair that a death left marked",
     [](const DemoMap& m) { zet(m, "DTSER.INX", offsetof(IXHEADER, busy), uint8_t{1}); },
     {"DTSER: header: marked", "ixremake first: DTSER;"},
     false},
    {"damaged notes of a change of prices and of codes",
     [](const DemoMap& m) {
         schrijf_bestand(m.bestand("2016Z/ORD0012.PRS"), "ZGPRIJS1");
         schrijf_bestand(m.bestand("2016Z/ORD0012.LBW"), "ZGLABEL1");
         schrijf_bestand(m.bestand("2016Z/ORD0013.LBW"), std::string("ZGLABEL1\xf0\3\0\0\1", 13));
     },
     {"journals: 2016Z/ORD0012.PRS: damaged", "journals: 2016Z/ORD0012.LBW: damaged",
      "journals: note: 2016Z/ORD0013.LBW: code or location of the labels of order 1008 half changed"},
     false},
};

TEST(Zgcheck, EachDamageAndItsRepair) {
    for (const Schade& s : SCHADES) {
        SCOPED_TRACE(s.wat);
        const DemoMap map("data/demo", "--register");
        const std::string hier = " " + map.pad();
        ASSERT_EQ(sh("zgcheck -q" + hier).tekst, "");
        s.doe(map);
        const auto stuk = map.inhoud();
        const Uit uit = sh("zgcheck" + hier);
        EXPECT_EQ(uit.status, 1);
        for (const char* tekst : s.gezegd)
            EXPECT_TRUE(uit.zegt(tekst)) << tekst << "\n" << uit.tekst;
        EXPECT_EQ(DemoMap::verschil(stuk, map.inhoud()), "") << "a check only reads";
        const Uit na = sh("zgcheck --repair" + hier);
        EXPECT_EQ(na.status, s.te_herstellen ? 0 : 1) << na.tekst;
        if (!uit.zegt("ixremake")) {
            EXPECT_EQ(sh("ixcheck -q" + hier).tekst, "");
        }
        if (!s.te_herstellen) { // what can't be known stays: no series, group or label goes
            for (const char* naam :
                 {"DTSER.TXT", "DTIPA.TXT", "DTIPG.TXT", "DTETI.TXT", "DTEAN.TXT", "DTSYS.TXT"})
                EXPECT_TRUE(lees_bestand(map.bestand(naam)) == stuk.at(naam)) << naam;
        }
    }
}

TEST(Zgcheck, BesidePeople) {
    const DemoMap map("data/demo", "--register");
    const std::string hier = " " + map.pad();
    zet(map, "DTSER.TXT", SER + offsetof(serrec, voorraad), int32_t{7});
    const auto voor = map.inhoud();
    { // a buyer at his season prompt
        Terminal t(overgave(map), demo_opties(map));
        t.wacht_op(1, 46, "2016");
        t.kalm();
        const auto bezig = map.inhoud();
        const Uit uit = sh("zgcheck --repair" + hier);
        EXPECT_EQ(uit.status, 4);
        EXPECT_TRUE(uit.zegt("user 1 Joke") && uit.zegt("nothing was changed")) << uit.tekst;
        EXPECT_EQ(sh("zgcheck" + hier).status, 1);
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
        const Uit bouw = sh("ixremake --force" + hier + "/DTSER");
        EXPECT_TRUE(bouw.status == 4 && bouw.zegt("key 1100 15 77 is reserved by a user")) << bouw.tekst;
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
        const Uit uit = sh("zgcheck" + hier);
        EXPECT_EQ(uit.status, 0);
        EXPECT_TRUE(uit.zegt("(in use)")) << uit.tekst;
        EXPECT_EQ(sh("zgcheck --repair --wait 0" + hier).status, 4);
    }
    EXPECT_EQ(lees_bestand(map.bestand("DTSER.TXT")), voor.at("DTSER.TXT"));
    EXPECT_EQ(sh("zgcheck -r" + hier).status, 0);
    sh("chmod -R a+rX" + hier);
    const auto gast = in_proces([&] { // who may only read
        constexpr int NIEMAND = 65534;
        const bool anders =
            geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(NIEMAND) == 0 && setuid(NIEMAND) == 0);
        return anders ? sh("zgcheck -q" + hier).status : 9;
    });
    EXPECT_EQ(gast.status, 0) << gast.uitvoer;
    EXPECT_EQ(sh("zgcheck").status, 2);
    EXPECT_EQ(sh("zgcheck --nonsense" + hier).status, 2);
    EXPECT_EQ(sh("zgcheck /").status, 3);
    std::filesystem::remove(map.bestand("DTIPG.TXT"));
    EXPECT_EQ(sh("zgcheck" + hier).status, 3);
}

} // namespace
