#include "order/ordrec.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/registerrec.h"
#include "support/demomap.h"
#include "support/proces.h"
#include "term/macro/macrobestand.h"
#include "tools/schade.h"
#include "tools/shell.h"
#include <array>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zg;

namespace zg::test {
namespace {

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

void kap(const DemoMap& map, const char* naam, size_t bytes) {
    std::filesystem::resize_file(map.bestand(naam), bytes);
}
void rechten(const DemoMap& map, const char* naam, mode_t mode) {
    EXPECT_EQ(chmod(map.bestand(naam).c_str(), mode), 0);
}

constexpr size_t SYS2 = 64, SYS4 = 3 * 64, SYS9 = 8 * 64, SYS14 = 13 * 64, BLOK = sizeof(etiblok),
                 SER = sizeof(serrec);

} // namespace

void plak(const DemoMap& map, const char* naam, const std::string& bytes) {
    schrijf_bestand(map.bestand(naam), bytes);
}

const std::vector<Schade> SCHADES = {
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
    {"blocks and groups of zeros that a series and a set lead to", // and nobody else may have them
     [](const DemoMap& m) {
         zet(m, "DTETI.TXT", static_cast<size_t>(haal<serrec>(m, "DTSER.TXT", SER).etiketkop) * BLOK,
             etiblok{});
         zet(m, "DTIPG.TXT",
             static_cast<size_t>(haal<prijsset>(m, "DTIPA.TXT", 0).groep) * sizeof(prijsgroeprec),
             prijsgroeprec{});
     },
     {"DTETI: series 1100.15.1, block ", "is of series 0.0.0", "DTIPA: series ", "not a group of this set"},
     false},
    {"series gone, and their labels there",
     [](const DemoMap& m) {
         for (const char* naam : {"DTSER.INX", "DTSER.TXT"})
             std::filesystem::remove(m.bestand(naam));
     },
     {"DTSER: isn't there: there is no registration without it"},
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
    {"a block of zeros that nobody has, with a label that can't be", // no chain leads to it
     [](const DemoMap& m) {
         const auto t = haal<sysetiket>(m, "DTSYS.TXT", SYS4);
         etiblok b{};
         b.plaats[3][8] = 7; // its status
         b.volgende = -1;
         sysetiket na = t;
         na.vrijkop = na.hoogste = t.hoogste + 1;
         zet(m, "DTETI.TXT", static_cast<size_t>(t.hoogste) * BLOK, b);
         zet(m, "DTSYS.TXT", SYS4, na);
     },
     {"DTETI: block ", ": in no chain, of series 0.0.0",
      "repair: DTETI: 1 blocks without a series stay: there is a label of a status that there isn't"},
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
    {"a journal whose name leads nowhere", // a number that only it may have stays
     [](const DemoMap& m) {
         const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
         ordnrrec rec{};
         rec.ordernummer = 7777, rec.leverancier = 10, rec.jaar = 2016, rec.seizoen = 'Z',
         rec.orderdatum = 42400;
         schrijf(m, "DTORDNR", std::string(reinterpret_cast<char*>(&rec), sizeof rec));
         std::filesystem::remove(jrn);
         std::filesystem::create_symlink("/nowhere/ORD0010.JRN", jrn);
     },
     {"2016Z/ORD0010.JRN: a link that leads nowhere", "DTORDNR: number 7777 of an order that isn't there"},
     false},
    {"a journal cut off",
     [](const DemoMap& m) {
         const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
         std::filesystem::resize_file(jrn, std::filesystem::file_size(jrn) - 1);
     },
     {"2016Z/ORD0010.JRN: at "},
     false},
    {"a broken tree", // and nothing is read along it
     [](const DemoMap& m) { zet(m, "DTIPA.INX", 4 * 512 + 20, uint32_t{0xFFFFFFFF}); },
     {"DTIPA: key 1, block ", "ixremake first: DTIPA;"},
     true},
    {"a pair that a death left marked",
     [](const DemoMap& m) { zet(m, "DTSER.INX", offsetof(IXHEADER, busy), uint8_t{1}); },
     {"DTSER: header: marked", "ixremake first: DTSER;"},
     true},
    {"damaged notes of a change of prices and of codes",
     [](const DemoMap& m) {
         schrijf_bestand(m.bestand("2016Z/ORD0012.PRS"), "ZGPRIJS1");
         schrijf_bestand(m.bestand("2016Z/ORD0012.LBW"), "ZGLABEL1");
         schrijf_bestand(m.bestand("2016Z/ORD0013.LBW"), std::string("ZGLABEL1\xf0\3\0\0\1", 13));
     },
     {"2016Z/ORD0012.PRS: damaged", "2016Z/ORD0012.LBW: damaged",
      "2016Z/ORD0013.LBW: note: code or location of the labels of order 1008 half changed"},
     false},

    // ---- all else than the register: what a repair puts right
    {"an index that is gone",
     [](const DemoMap& m) { std::filesystem::remove(m.bestand("DTART.INX")); },
     {"DTART: DTART.INX isn't there"},
     true,
     1},
    {"a header that makes no sense",
     [](const DemoMap& m) { zet(m, "DTDOELGR.INX", offsetof(IXHEADER, nkeys), '\x63'); },
     {"DTDOELGR: header: "},
     true,
     1},
    {"a count of records", // and the free chain
     [](const DemoMap& m) {
         zet(m, "DTMERK.INX", offsetof(IXHEADER, nrecs), int32_t{3});
         zet(m, "DTOMZGRP.INX", offsetof(IXHEADER, freehead), int32_t{999});
     },
     {"DTMERK: ", "DTOMZGRP: "},
     true,
     1},
    {"a tree of printers",
     [](const DemoMap& m) { zet(m, "print/TR_PTRC.INX", 512 + 5, uint32_t{0xFFFFFFFF}); },
     {"print/TR_PTRC: key 1"},
     true,
     1},
    {"a key reserved by nobody",
     [](const DemoMap& m) {
         Agent([&m] {
             uint8_t rec[IXRECMAX] = "\x77\x77";
             return chdir(m.pad().c_str()) == 0 && IXREADL(IXOPEN("DTLEV", 2), rec) == 0;
         }).dood();
     },
     {"DTLEV: key reserved: 30583, and nobody is in"},
     true,
     1},
    {"files that others of the group can't write, or anybody can",
     [](const DemoMap& m) {
         for (const auto& [naam, mode] :
              {std::pair{"", 02770}, {"2016Z", 02770}, {"DTLEV.TXT", 0640}, {"2016Z/ORD0010.JRN", 0666}})
             rechten(m, naam, static_cast<mode_t>(mode));
     },
     {"DTLEV.TXT: mode 0640, should be 0660", "2016Z/ORD0010.JRN: mode 0666, should be 0664"},
     true,
     1},

    // ---- what it leaves
    {"another release, a state, a share of VAT",
     [](const DemoMap& m) {
         zet(m, "DTSYS.TXT", 9 * 64 + offsetof(sysstatus, release), '9');
         zet(m, "DTSYS.TXT", 9 * 64 + offsetof(sysstatus, status), '\x7');
         zet(m, "DTSYS.TXT", offsetof(sysfirma, btw), uint16_t{1900});
     },
     {"DTSYS.TXT: system record 10: release \"9", "state 7, which there isn't", "VAT code 1 is 190.0"},
     false,
     2},
    {"the home currency that is gone",
     [](const DemoMap& m) { zet(m, "DTSYS.TXT", SYS_VALUTA.start, valutarec{}); },
     {"DTSYS.TXT: system record 15: the home currency \"EUR\" isn't there"},
     false,
     2},
    {"a size run that doesn't add up, a bar of no type",
     [](const DemoMap& m) {
         zet(m, "DTSYS.TXT", SYS_MAATREEKS.start + 8, int32_t{77});
         zet(m, "DTSYS.TXT", SYS_MAATBALK.start, '\x4d');
     },
     {"DTSYS.TXT: size run 1: its sum is 77", "DTSYS.TXT: size bar 1: size type 77"},
     false,
     2},
    {"two branches of one number",
     [](const DemoMap& m) { zet(m, "DTFILGEG.TXT", 2 * 612 + offsetof(filiaalrec, nummer), '\x1'); },
     {"DTFILGEG.TXT: branch index 1: number 1 is also that of index 0"},
     false,
     2},
    {"a season that there can't be",
     [](const DemoMap& m) { zet(m, "ORDPARM.SYS", 4, 'Q'); },
     {"ORDPARM.SYS: season \"2016Q\""},
     false,
     2},
    {"half a record at the end",
     [](const DemoMap& m) {
         kap(m, "DTLEVEXT.TXT", std::filesystem::file_size(m.bestand("DTLEVEXT.TXT")) - 5);
     },
     {"DTLEVEXT: data: ends inside a record"},
     false,
     2},
    {"a temporary index of nothing",
     [](const DemoMap& m) { plak(m, "DTSER.01", std::string(1536, 'x')); },
     {"DTSER.01: header: "},
     false,
     2},
    {"a code of VAT and a share that there can't be",
     [](const DemoMap& m) { zet(m, "DTART.TXT", offsetof(artrec, btwcode), uint16_t{0xC863}); },
     {"DTART: article group 1100: btwcode 99, of 1 to 10", "magazijnpct 200, of 0 to 100"},
     false,
     2},
    {"a rate of nothing",
     [](const DemoMap& m) { zet(m, "DTKOERS.TXT", offsetof(koersrec, koers), int32_t{0}); },
     {"DTKOERS: CHF from 2015-01-01: koers 0, below 1"},
     false,
     2},
    {"two sizes in one place",
     [](const DemoMap& m) {
         zet(m, "DTMAAT.TXT", offsetof(maatrij, entry) + 2 * 4 + 3,
             haal<char>(m, "DTMAAT.TXT", offsetof(maatrij, entry) + 1 * 4 + 3));
     },
     {"DTMAAT: size type ", "its sizes don't make one bar"},
     false,
     2},
    {"a distribution that doesn't add up",
     [](const DemoMap& m) { zet(m, "DTVVTAB.TXT", offsetof(vvrec, aantal), int32_t{9999}); },
     {"DTVVTAB: distribution ", ": the sum of row "},
     false,
     2},
    {"a picture elsewhere",
     [](const DemoMap& m) {
         zet(m, "DTSERPIC.TXT", offsetof(serpicrec, bestand), std::array<char, 4>{"../"});
     },
     {"DTSERPIC: series ", "can't be a picture"},
     false,
     2},
    {"no screen among the printers",
     [](const DemoMap& m) { wis(m, "print/TR_PTRG", 0); },
     {"print/TR_PTRG: no screen"},
     false,
     2},
    {"a macro that can't be played",
     [](const DemoMap& m) {
         const Afloop a = in_proces([&] {
             setenv("MACRO", m.bestand("macro").c_str(), 1);
             return MACROSCHRIJF({'a', 1, 200, {}, ""}) == 1 ? 0 : 1;
         });
         EXPECT_EQ(a.status, 0) << a.uitvoer;
     },
     {"macro/MACRO: the macro of key 97, user 1, can't be played"},
     false,
     2},
    {"another supplier's order, another season's",
     [](const DemoMap& m) {
         zet(m, "2016Z/ORD0011.JRN", 1, uint16_t{99});
         zet(m, "2016Z/ORD0013.JRN", 1 + offsetof(ordkop, jaar), uint16_t{2014});
     },
     {"2016Z/ORD0011.JRN: at 0: an order of supplier 99 in a file of supplier 11",
      "2016Z/ORD0013.JRN: at 0: an order of season 2014Z in a file of 2016Z"},
     false,
     2},
    {"a branch that the firm hasn't",
     [](const DemoMap& m) {
         std::string jrn = lees_bestand(m.bestand("2016Z/ORD0012.JRN"));
         schrijf_bestand(m.bestand("2016Z/ORD0012.JRN"), jrn + std::string("F\xc8\x01\0\0\1\0\0\0", 9));
     },
     {"2016Z/ORD0012.JRN: at ", "branch index 200, which the firm does not have"},
     false,
     2},
    {"a work file that can't be restored",
     [](const DemoMap& m) { plak(m, "2016Z/ORD0018.WRK", "Oh"); },
     {"2016Z/ORD0018.WRK: a broken-off order that can't be restored"},
     false,
     2},
    {"notes of programs",
     [](const DemoMap& m) {
         plak(m, "SERNR01.RES", "12345");
         plak(m, "elders", "C1100\n");
         std::filesystem::create_symlink("elders", m.bestand("MUT01.RES"));
         plak(m, "MUT02.RES", "C1100\n99\nM0");
         plak(m, "KASMUT.TXT", "255255C1100\n255255\n");
     },
     {"SERNR01.RES: ends inside a key", "MUT01.RES: a link", "MUT02.RES: line 2 is no mutation",
      "MUT02.RES: note: the last line has no end", "KASMUT.TXT: line 2 is no mutation",
      "other files: note: elders"},
     false,
     2},
    {"settings of the transfer",
     [](const DemoMap& m) {
         plak(m, "DTIPCSYS.TXT", std::string(100, '\0'));
         plak(m, "DTRCMSYS.TXT", std::string(128, '\0') + std::string(60, 'z') + std::string(324, '\x5'));
     },
     {"DTIPCSYS.TXT: 100 bytes of 512", "DTRCMSYS.TXT: ZEBEDI has no end", "EDICMD has no end", "method 5"},
     false,
     2},
    {"a print job's description",
     [](const DemoMap& m) { plak(m, "PRAB12.JOB", "zgspoel?"), plak(m, "PRAB12", "report"); },
     {"PRAB12.JOB: damaged: nobody sends PRAB12"},
     false,
     2},

    // ---- files that are gone, or cut off
    {"fixed tables cut off",
     [](const DemoMap& m) { kap(m, "DTSYS.TXT", 100'000); },
     {"DTSYS.TXT: 100000 bytes of 122952"},
     false,
     3},
    {"a user who died in a critical step",
     [](const DemoMap& m) {
         zet(m, "DTSYS.TXT", SYS_GEBRUIKER.start + offsetof(gebruikerslot, userstate), '\xc');
     },
     {"DTSYS.TXT: user 1 \"Joke\": died in a critical step"},
     false,
     3},
    {"branches cut off",
     [](const DemoMap& m) { kap(m, "DTFILGEG.TXT", 3000); },
     {"DTFILGEG.TXT: 3000 bytes, of 3672 for 5 branches"},
     false,
     3},
    {"settings cut off",
     [](const DemoMap& m) { kap(m, "ORDPARM.SYS", 50); },
     {"ORDPARM.SYS: 50 bytes"},
     false,
     3},
    {"a data file that is gone",
     [](const DemoMap& m) { std::filesystem::remove(m.bestand("DTMAAT.TXT")); },
     {"DTMAAT: DTMAAT.TXT isn't there"},
     false,
     3},
    {"a pair that is gone",
     [](const DemoMap& m) {
         for (const char* naam : {"DTKOERS.TXT", "DTKOERS.INX"})
             std::filesystem::remove(m.bestand(naam));
     },
     {"DTKOERS: isn't there: the order program doesn't start"},
     false,
     3},
    {"a mailbox that is gone, and one that others can't write",
     [](const DemoMap& m) {
         const std::string zgedi = "zgedi -D " + m.pad();
         ASSERT_EQ(sh(zgedi + " init internet && " + zgedi + " set EDIDIR loc && " + zgedi + " make").status,
                   0);
         std::filesystem::remove(m.bestand("loc/LOC_INV.GBL"));
         zet(m, "loc/LOC_SLS.GBL", 0, '?');
         plak(m, "loc/FILENR.GBL", "12a\n");
         std::filesystem::remove(m.bestand("zebedi/ongeldig"));
         rechten(m, "zebedi/pricat/save", 0755);
     },
     {"/zebedi/ongeldig isn't there", "/zebedi/pricat/save: mode 0755", "loc/LOC_INV.GBL isn't there",
      "loc/LOC_SLS.GBL doesn't name the mailbox slsrpt", "loc/FILENR.GBL: no number"},
     false,
     3},
};

} // namespace zg::test
