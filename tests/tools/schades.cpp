#include "order/ordloop.h"
#include "order/ordrec.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "term/macro/macrobestand.h"
#include "tools/schade.h"
#include "tools/shell.h"
#include <algorithm>
#include <fcntl.h>
#include <grp.h>

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

void rechten(const DemoMap& map, const char* naam, mode_t mode) {
    EXPECT_EQ(chmod(map.bestand(naam).c_str(), mode), 0);
}

constexpr size_t SYS2 = 64, SYS4 = 3 * 64, SYS9 = 8 * 64, SYS14 = 13 * 64, BLOK = sizeof(etiblok),
                 SER = sizeof(serrec);

// What is done to a directory: other bytes at a place, a file of these bytes, files less, a file cut, a record deleted.
using Daad = std::function<void(const DemoMap&)>;
template <class T> Daad op(const char* naam, size_t plaats, T waarde) {
    return [=](const DemoMap& m) { zet(m, naam, plaats, waarde); };
}
Daad met(const char* naam, const std::string& bytes) {
    return [=](const DemoMap& m) { plak(m, naam, bytes); };
}
Daad zonder(const std::vector<const char*>& namen) {
    return [=](const DemoMap& m) {
        for (const char* naam : namen)
            std::filesystem::remove(m.bestand(naam));
    };
}
Daad kort(const char* naam, size_t bytes) {
    return [=](const DemoMap& m) { std::filesystem::resize_file(m.bestand(naam), bytes); };
}
Daad buizen(const std::vector<const char*>& namen) {
    return [=](const DemoMap& m) {
        for (const char* naam : namen) {
            std::filesystem::remove(m.bestand(naam));
            EXPECT_EQ(mkfifo(m.bestand(naam).c_str(), 0660), 0) << naam;
        }
    };
}
Daad gewist(const char* naam, int32_t nr) {
    return [=](const DemoMap& m) { wis(m, naam, nr); };
}
// Prices and a code of a series that isn't there.
void wezen(const DemoMap& m) {
    std::string code = lees_bestand(m.bestand("DTEAN.TXT")).substr(sizeof(eanrec), sizeof(eanrec));
    code.replace(0, 13, "8711253001202").replace(offsetof(eanrec, volgnummer), 2, "\x77\x77");
    schrijf(m, "DTEAN", code);
    const prijsset set{.serie = {4711, 1, 1}, .groep = -1};
    schrijf(m, "DTIPA", std::string(reinterpret_cast<const char*>(&set), sizeof set));
}
// The first order of a journal as it stands in a work file: with all five pieces of each text.
std::string werkbestand(const std::string& jrn) {
    const int fd = open(jrn.c_str(), O_RDONLY | O_CLOEXEC);
    ordloop l;
    ordrauw r;
    std::string uit;
    for (ordloop_begin(&l, fd, 0, INT64_MAX);
         ordloop_volgende(&l, &r) == LOOP_RECORD && (r.tag != 'O' || uit.empty());) {
        if (r.tag != 'T')
            uit.append(reinterpret_cast<const char*>(r.data), r.lengte);
        for (const char soort : std::string(r.tag == 'O'   ? "\1\2"
                                            : r.tag == 'M' ? "\3"
                                            : r.tag == 'D' ? "\4"
                                                           : ""))
            for (int i = 0; i < 5; i++)
                uit += std::string{'T', soort} + std::string(60, '\0');
    }
    close(fd);
    return uit;
}
// A block behind the others that is in no chain.
void los_blok(const DemoMap& map, etiblok b) {
    auto t = haal<sysetiket>(map, "DTSYS.TXT", SYS4);
    b.volgende = -1;
    zet(map, "DTETI.TXT", static_cast<size_t>(t.hoogste) * BLOK, b);
    t.vrijkop = ++t.hoogste;
    zet(map, "DTSYS.TXT", SYS4, t);
}

Schade heelt(const char* wat, const std::vector<const char*>& gezegd, const Daad& doe) {
    return {wat, doe, gezegd, true};
}
Schade blijft(const char* wat, const std::vector<const char*>& gezegd, const Daad& doe) {
    return {wat, doe, gezegd, false};
}

} // namespace

void plak(const DemoMap& map, const char* naam, const std::string& bytes) {
    schrijf_bestand(map.bestand(naam), bytes);
}

const std::vector<Schade> SCHADES = {
    blijft("a chain into another series", {"DTETI: series ", "block 100: is of series "},
           op("DTETI.TXT", 2 * BLOK + offsetof(etiblok, volgende), int32_t{100})),
    // and nobody else may have them
    blijft("blocks and groups of zeros that a series and a set lead to",
           {"DTETI: series 1100.15.1, block ", "is of series 0.0.0", "DTIPA: series ",
            "not a group of this set"},
           [](const DemoMap& m) {
               zet(m, "DTETI.TXT", static_cast<size_t>(haal<serrec>(m, "DTSER.TXT", SER).etiketkop) * BLOK,
                   etiblok{});
               zet(m, "DTIPG.TXT",
                   static_cast<size_t>(haal<prijsset>(m, "DTIPA.TXT", 0).groep) * sizeof(prijsgroeprec),
                   prijsgroeprec{});
           }),
    blijft("series gone, and their labels there", {"DTSER: isn't there: there is no registration without it"},
           zonder({"DTSER.INX", "DTSER.TXT"})),
    heelt("a block that nobody has", {"DTETI: block ", ": in no chain, of series 1100.15.1"},
          [](const DemoMap& m) {
              etiblok b{};
              b.serie = {1100, 15, 1};
              los_blok(m, b);
          }),
    // no death leaves that
    blijft("a block with more than a first label that nobody has",
           {"DTETI: block ", ": in no chain, of series "},
           [](const DemoMap& m) { los_blok(m, haal<etiblok>(m, "DTETI.TXT", 0)); }),
    // no chain leads to it
    blijft("a block of zeros that nobody has, with a label that can't be",
           {"DTETI: block ", ": in no chain, of series 0.0.0",
            "repair: DTETI: 1 blocks without a series stay: there is a label of a status that there isn't"},
           [](const DemoMap& m) {
               etiblok b{};
               b.plaats[3][8] = 7; // its status
               los_blok(m, b);
           }),
    heelt("wild counters of labels", {"DTETI: "}, op("DTSYS.TXT", SYS4, int32_t{-5})),
    heelt("counters of labels far behind the file", {"DTETI: DTSYS.TXT system record 4"},
          op("DTSYS.TXT", SYS4, std::pair{500'000, 500'000})),
    blijft("a series that has lost its chain", {"DTETI: series 1100.15.1", "a part is cut off"},
           op("DTSER.TXT", SER + offsetof(serrec, etiketkop), int32_t{-1})),
    blijft("labels cut off", {"DTETI: series ", "outside the file"}, kort("DTETI.TXT", 200 * BLOK + 5)),
    blijft("a status that there isn't", {"DTETI: series ", "block 0: a label of a status"},
           [](const DemoMap& m) {
               for (size_t i = 0; i < ETIPLAATS; i++)
                   zet(m, "DTETI.TXT", offsetof(etiblok, plaats) + i, uint8_t{0xFF});
           }),
    heelt("a price record that nobody has", {"DTIPA: DTIPG.TXT: 1 records that no set has"},
          [](const DemoMap& m) {
              const auto einde = haal<int32_t>(m, "DTSYS.TXT", SYS9 + 4);
              zet(m, "DTIPG.TXT", static_cast<size_t>(einde) * sizeof(prijsgroeprec), prijsgroeprec{});
              zet(m, "DTSYS.TXT", SYS9, std::pair{einde + 1, einde + 1});
          }),
    // a deletion takes that last: it was lost, and all that it led to stays
    blijft("a series without its record",
           {"DTIPA: sets of 1100.15.1", "DTEAN: ", "DTETI: ", "journals: note: 0000Z/ORD0010.JRN"},
           gewist("DTSER", 1)),
    blijft("prices and a code of a series that is nowhere else",
           {"DTIPA: sets of 4711.1.1, which isn't there", "DTEAN: code 8711253001202 and 0 more: of series ",
            "DTETI: block ", ": in no chain, of series 4711.1.1"},
           [](const DemoMap& m) {
               wezen(m);
               los_blok(m, {.serie = {4711, 1, 1}});
           }),
    blijft("the season that is proposed is gone",
           {"ORDPARM.SYS: the season that is proposed, 2016Z, isn't there"},
           [](const DemoMap& m) { std::filesystem::remove_all(m.bestand("2016Z")); }),
    blijft("digits of labels, amounts on one in stock, a link table without its index",
           {"DTSYS.TXT: system record 15: etiketcijfers 99, of 6 to 8 or 0", "DTETI: series ",
            ": a label: prijs -214748365, below 0", ": a label: netto -214748365, below -214748363",
            "edistam/DTKL0012: edistam/DTKL0012.INX isn't there", "DTMAAT: note: size type ",
            ": count 65535, that of DTSYS.TXT system record 8 is 0"},
           [](const DemoMap& m) {
               zet(m, "DTSYS.TXT", 14 * 64 + offsetof(sysinstel, etiketcijfers), '\x63');
               // a label that came in, and is counted so
               const auto b = haal<etiblok>(m, "DTETI.TXT", 0);
               constexpr int32_t WOORDEN[] = {10, INT32_MIN, INT32_MIN};
               zet(m, "DTETI.TXT", offsetof(etiblok, plaats), std::to_array(WOORDEN));
               auto series = m.alle<serrec>("DTSER.TXT");
               auto& s = *std::ranges::find_if(
                   series, [&](const serrec& r) { return zelfde_serie(r.serie, b.serie); });
               s.in_nota--, s.voorraad++;
               zet(m, "DTSER.TXT", static_cast<size_t>(&s - series.data()) * SER, s);
               std::filesystem::create_directory(m.bestand("edistam"));
               plak(m, "edistam/DTKL0012.TXT", std::string(81, 'x'));
               zet(m, "DTMAAT.TXT", offsetof(maatrij, mtcount), uint16_t{65535});
           }),
    // of which it may have lines
    blijft("the same beside a journal that can't be read",
           {"2016Z/ORD0012.JRN: can't be read: not a plain file", "DTORDNR: note: number ",
            "repair: journals: one is damaged or can't be read"},
           [](const DemoMap& m) { wezen(m), buizen({"2016Z/ORD0012.JRN"})(m); }),
    // it has none, as far as that can be read
    blijft("labels on a disk that fails",
           {"DTETI.TXT: can't be read: Input/output error",
            "repair: DTETI.TXT: can't be read whole: series, prices, labels, codes and numbers stay"},
           [](const DemoMap& m) {
               wezen(m);
               std::filesystem::remove(m.bestand("DTETI.TXT"));
               std::filesystem::create_symlink("/proc/self/mem", m.bestand("DTETI.TXT"));
           }),
    // the rest is looked at, and stays where it hangs on them
    blijft("a pipe in place of labels",
           {"DTETI: DTETI.TXT can't be read: not a plain file", "DTETI can't be read; labels, ",
            "DTIPA: sets of 4711.1.1, which isn't there", "DTEAN: code 8711253001202 and 0 more: of series "},
           [](const DemoMap& m) { wezen(m), buizen({"DTETI.TXT"})(m); }),
    blijft("a directory in place of series",
           {"DTSER: DTSER.TXT can't be read: not a plain file",
            "DTSER can't be read; series, and all that names", " has no number record",
            "record 0: not a group of this set", "repair: DTMERK: index rebuilt",
            "repair: DTSER can't be read; "},
           [](const DemoMap& m) {
               zonder({"DTSER.TXT", "DTMERK.INX"})(m);
               std::filesystem::create_directory(m.bestand("DTSER.TXT"));
               wis(m, "DTORDNR", 0);
               zet(m, "DTIPG.TXT", offsetof(prijsgroeprec, setnr), uint16_t{999});
           }),
    blijft("pipes in place of files",
           {"DTLEV: DTLEV.TXT can't be read: not a plain file", "DTVVTAB: DTVVTAB.INX can't",
            "DTIPG: DTIPG.TXT can't", "DTEAN: DTEAN.TXT can't", "print/TR_PTRG: print/TR_PTRG.TXT can't",
            "2016Z/ORD0012.PRS: can't", "2016Z/ORD0013.LBW: can't", "DTFILGEG.TXT: can't",
            "ORDPARM.SYS: not a plain file", "DTLEVEXT: DTLEVEXT.TXT can't be read: not a plain file"},
           [](const DemoMap& m) {
               buizen({"DTLEV.TXT", "DTVVTAB.INX", "DTIPG.TXT", "DTEAN.TXT", "print/TR_PTRG.TXT",
                       "2016Z/ORD0012.PRS", "2016Z/ORD0013.LBW", "DTFILGEG.TXT", "ORDPARM.SYS"})(m);
               std::filesystem::remove(m.bestand("DTLEVEXT.TXT"));
               std::filesystem::create_directory(m.bestand("DTLEVEXT.TXT"));
           }),
    heelt("a number of a series before the counter",
          {"DTSER: DTSYS.TXT system record 2: the last number is 1, series "},
          op("DTSYS.TXT", SYS2, int32_t{1})),
    blijft("a size type that there isn't", {"DTSER: series 1100.15.1: size type 77, which isn't there"},
           op("DTSER.TXT", SER + offsetof(serrec, maatsoort), uint8_t{77})),
    heelt("half a block behind the labels", {"DTETI: DTSYS.TXT system record 4: ", " blocks and a half"},
          [](const DemoMap& m) {
              zet(m, "DTETI.TXT", haal<sysetiket>(m, "DTSYS.TXT", SYS4).hoogste * BLOK + 96, int32_t{-1});
          }),
    // their numbers stand on pieces: none is given out again
    blijft("labels that are gone", {"DTETI: series ", "outside the file"}, kort("DTETI.TXT", 0)),
    // its groups tell that it isn't one of a series that is gone
    blijft("a set whose series was hit", {"DTIPA: "}, op("DTIPA.TXT", sizeof(prijsset) + 4, uint16_t{77})),
    heelt(
        "a free chain of prices that leads nowhere, a count of free blocks",
        {"DTIPA: DTIPG.TXT record -5: free chain leads outside", "DTETI: DTSYS.TXT system record 4: 0 free"},
        [](const DemoMap& m) {
            zet(m, "DTSYS.TXT", SYS9, int32_t{-5});
            zet(m, "DTSYS.TXT", SYS4 + 8, int32_t{7});
        }),
    // they may be those that a series and an order lack
    blijft("a code and a number that were hit", {"DTEAN: ", "DTORDNR: ", "repair: DTORDNR: index rebuilt"},
           [](const DemoMap& m) {
               zet(m, "DTEAN.TXT", sizeof(eanrec) + offsetof(eanrec, kleur), uint16_t{77});
               zet(m, "DTORDNR.TXT", sizeof(ordnrrec), int32_t{77});
           }),
    blijft("price records cut off", {"DTIPA: series ", " until #65534: the chain ", "outside DTIPG.TXT"},
           kort("DTIPG.TXT", 50 * sizeof(prijsgroeprec))),
    heelt("a wild counter of codes",
          {"DTEAN: DTSYS.TXT system record 14: the last code is 4294967295, more than there are"},
          op("DTSYS.TXT", SYS14, uint32_t{0xFFFFFFFF})),
    blijft("a label of a size that its series hasn't",
           {"DTETI: series ", ": 1 labels of a size that neither it nor their prices have"},
           op("DTETI.TXT", offsetof(etiblok, plaats) + 20, uint16_t{9001})),
    blijft("a label of another day than its order", {"DTETI: series ", "which has another supplier or date"},
           op("DTETI.TXT", offsetof(etiblok, plaats) + 26, uint16_t{1})),
    // its groups are the last that knows of them
    blijft(
        "a line whose prices are gone",
        {"DTIPA: series ", ": no prices for its line of 0000Z/ORD0010.JRN at 0: order ", "which has labels"},
        gewist("DTIPA", 0)),
    blijft("a second code for a size", {"DTEAN: code 8711253001202: series ", " has another for size"},
           [](const DemoMap& m) {
               std::string code = lees_bestand(m.bestand("DTEAN.TXT")).substr(sizeof(eanrec), sizeof(eanrec));
               schrijf(m, "DTEAN", code.replace(0, 13, "8711253001202"));
           }),
    // is its own, whatever it says
    blijft("a block that its chain breaks at", {"DTETI: series ", "block 0: is of series 4711.1.1"},
           op("DTETI.TXT", 0, seriesleutel{4711, 1, 1})),
    blijft("an order without its number", {"has no number record"}, gewist("DTORDNR", 0)),
    blijft("two orders of one number", {"journals: ", "has the number of 2016Z/ORD0010.JRN at 0"},
           [](const DemoMap& m) {
               const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
               schrijf_bestand(jrn, lees_bestand(jrn) + lees_bestand(jrn));
           }),
    blijft("fixed tables that were wiped",
           {"DTSYS.TXT: ", "repair: nothing of the registration is put right: DTSYS"},
           [](const DemoMap& m) { schrijf_bestand(m.bestand("DTSYS.TXT"), std::string(896, '\xFF')); }),
    blijft("a journal that goes", {"DTORDNR: number ", "of an order that isn't there"},
           zonder({"2016Z/ORD0010.JRN"})),
    blijft("the same beside labels of zeros",
           {"DTORDNR: number ", "DTETI: series ",
            "repair: DTETI: a series' chain is damaged: numbers and prices"},
           [](const DemoMap& m) {
               zonder({"2016Z/ORD0010.JRN"})(m);
               schrijf_bestand(m.bestand("DTETI.TXT"),
                               std::string(lees_bestand(m.bestand("DTETI.TXT")).size(), '\0'));
           }),
    // a number that only it may have stays
    blijft("a journal whose name leads nowhere, and an emptied one",
           {"2016Z/ORD0010.JRN: a link that leads nowhere",
            "journals: 2016Z/ORD0011.JRN: empty, and DTORDNR has 2 ",
            "DTORDNR: note: number 7710 of an order that isn't there, as far as its supplier's journals",
            "DTORDNR: note: number 7711 of an order that isn't there, as far as its supplier's journals"},
           [](const DemoMap& m) {
               const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
               for (const uint16_t lev : {uint16_t{10}, uint16_t{11}}) {
                   const ordnrrec rec{.ordernummer = 7700 + lev,
                                      .leverancier = lev,
                                      .jaar = 2016,
                                      .seizoen = 'Z',
                                      .orderdatum = 42400};
                   schrijf(m, "DTORDNR", std::string(reinterpret_cast<const char*>(&rec), sizeof rec));
               }
               std::filesystem::remove(jrn);
               std::filesystem::create_symlink("/nowhere/ORD0010.JRN", jrn);
               kort("2016Z/ORD0011.JRN", 0)(m);
           }),
    blijft("a journal cut off", {"2016Z/ORD0010.JRN: at "},
           [](const DemoMap& m) {
               const std::string jrn = m.bestand("2016Z/ORD0010.JRN");
               std::filesystem::resize_file(jrn, std::filesystem::file_size(jrn) - 1);
           }),
    // and nothing is read along it, nor anything left out that doesn't hang on it
    heelt("broken trees",
          {"DTIPA: key 1, block ", "ixremake first: DTIPA;", "DTSER: series 1100.15.1: counts "},
          [](const DemoMap& m) {
              zet(m, "DTIPA.INX", 4 * 512 + 20, uint32_t{0xFFFFFFFF});
              zet(m, "DTSERPIC.INX", 512 + 5, uint32_t{0xFFFFFFFF});
              zet(m, "DTSER.TXT", SER + offsetof(serrec, voorraad), int32_t{7});
          }),
    heelt("a pair that a death left marked", {"DTSER: header: marked", "ixremake first: DTSER;"},
          op("DTSER.INX", offsetof(IXHEADER, busy), uint8_t{1})),
    blijft("damaged notes of a change of prices and of codes",
           {"2016Z/ORD0012.PRS: damaged", "2016Z/ORD0012.LBW: damaged",
            "2016Z/ORD0013.LBW: note: code or location of the labels of order 1008 half changed"},
           [](const DemoMap& m) {
               schrijf_bestand(m.bestand("2016Z/ORD0012.PRS"), "ZGPRIJS1");
               schrijf_bestand(m.bestand("2016Z/ORD0012.LBW"), "ZGLABEL1");
               schrijf_bestand(m.bestand("2016Z/ORD0013.LBW"), std::string("ZGLABEL1\xf0\3\0\0\1", 13));
           }),
};

// All else than the register: what a repair puts right, what it leaves, files that are gone or cut off.
const std::vector<std::vector<Schade>> SAMEN = {
    {
        heelt("an index that is gone", {"DTART: DTART.INX isn't there"}, zonder({"DTART.INX"})),
        heelt("a header that makes no sense", {"DTDOELGR: header: "},
              op("DTDOELGR.INX", offsetof(IXHEADER, nkeys), '\x63')),
        heelt("headers: a key without length, records of another, names that are none",
              {"DTLEVEXT: header: a key's length", "DTVVTAB: data: ends inside a record",
               "DTKOERS: header: its name or title holds a byte",
               "DTMTOM: header: the name of key 1 holds a byte"},
              [](const DemoMap& m) {
                  zet(m, "DTLEVEXT.INX", offsetof(IXHEADER, keydef) + offsetof(IXKEYDEF, keylen), '\0');
                  zet(m, "DTVVTAB.INX", offsetof(IXHEADER, reclen), int16_t{423});
                  zet(m, "DTKOERS.INX", offsetof(IXHEADER, title), '\x1b');
                  zet(m, "DTMTOM.INX", offsetof(IXHEADER, keydef) + offsetof(IXKEYDEF, keyname), '\7');
              }),
        // and the free chain
        heelt("a count of records", {"DTMERK: ", "DTOMZGRP: "},
              [](const DemoMap& m) {
                  zet(m, "DTMERK.INX", offsetof(IXHEADER, nrecs), int32_t{3});
                  zet(m, "DTOMZGRP.INX", offsetof(IXHEADER, freehead), int32_t{999});
              }),
        heelt("a tree of printers", {"print/TR_PTRC: key 1"},
              op("print/TR_PTRC.INX", 512 + 5, uint32_t{0xFFFFFFFF})),
        heelt("a key reserved by nobody", {"DTLEV: key reserved: 30583, and nobody is in"},
              [](const DemoMap& m) {
                  Agent([&m] {
                      uint8_t rec[IXRECMAX] = "\x77\x77";
                      return chdir(m.pad().c_str()) == 0 && IXREADL(IXOPEN("DTLEV", 2), rec) == 0;
                  }).dood();
              }),
        heelt("files that others of the group can't write, or anybody can",
              {"DTLEV.TXT: mode 0640, should be 0660", "2016Z/ORD0010.JRN: mode 4777, should be 0660",
               "2016Z: mode 3770, should be 2770", "print: mode 0700, should be 2770",
               "print/TR_PTRG.TXT: mode 0600, should be 0660"},
              [](const DemoMap& m) {
                  for (const auto& [naam, mode] : {std::pair{"", 02770},
                                                   {"2016Z", 03770},
                                                   {"print", 0700},
                                                   {"print/TR_PTRG.TXT", 0600},
                                                   {"DTLEV.TXT", 0640},
                                                   {"2016Z/ORD0010.JRN", 04777}})
                      rechten(m, naam, static_cast<mode_t>(mode));
              }),
    },
    {
        blijft(
            "another release, a state, a share of VAT",
            {"DTSYS.TXT: system record 10: release \"9", "state 7, which there isn't", "VAT code 1 is 190.0"},
            [](const DemoMap& m) {
                zet(m, "DTSYS.TXT", 9 * 64 + offsetof(sysstatus, release), '9');
                zet(m, "DTSYS.TXT", 9 * 64 + offsetof(sysstatus, status), '\x7');
                zet(m, "DTSYS.TXT", offsetof(sysfirma, btw), uint16_t{1900});
            }),
        blijft("the home currency that is gone",
               {"DTSYS.TXT: system record 15: the home currency \"EUR\" isn't there"},
               op("DTSYS.TXT", SYS_VALUTA.start, valutarec{})),
        blijft("a size run that doesn't add up, a bar of no type",
               {"DTSYS.TXT: size run 1: its sum is 77", "DTSYS.TXT: size bar 1: size type 77"},
               [](const DemoMap& m) {
                   zet(m, "DTSYS.TXT", SYS_MAATREEKS.start + 8, int32_t{77});
                   zet(m, "DTSYS.TXT", SYS_MAATBALK.start, '\x4d');
               }),
        blijft("two branches of one number",
               {"DTFILGEG.TXT: branch index 1: number 1 is also that of index 0"},
               op("DTFILGEG.TXT", 2 * 612 + offsetof(filiaalrec, nummer), '\x1')),
        blijft("a season that there can't be", {"ORDPARM.SYS: season \"2016Q\""}, op("ORDPARM.SYS", 4, 'Q')),
        blijft("half a record at the end", {"DTLEVEXT: data: ends inside a record"},
               [](const DemoMap& m) {
                   std::filesystem::resize_file(m.bestand("DTLEVEXT.TXT"),
                                                std::filesystem::file_size(m.bestand("DTLEVEXT.TXT")) - 5);
               }),
        blijft("a file of the group's that only its owner may write, behind a link",
               {"DTDOELGR.TXT: the file that it is a link to: mode 0640, should be 0660"},
               [](const DemoMap& m) {
                   std::filesystem::rename(m.bestand("DTDOELGR.TXT"), m.bestand("uit/elders"));
                   std::filesystem::create_symlink("uit/elders", m.bestand("DTDOELGR.TXT"));
                   rechten(m, "uit/elders", 0640), rechten(m, "", 02770);
               }),
        blijft("a temporary index of nothing",
               {"DTSER.01: header: ", "DTSER.01: a temporary or old index, which no program needs"},
               met("DTSER.01", std::string(1536, 'x'))),
        blijft("a code of VAT and a share that there can't be",
               {"DTART: article group 1100: btwcode 99, of 1 to 10", "magazijnpct 200, of 0 to 100"},
               op("DTART.TXT", offsetof(artrec, btwcode), uint16_t{0xC863})),
        blijft("a rate of nothing", {"DTKOERS: CHF from 2015-01-01: koers 0, below 1"},
               op("DTKOERS.TXT", offsetof(koersrec, koers), int32_t{0})),
        blijft("two sizes in one place", {"DTMAAT: size type ", "its sizes don't make one bar"},
               [](const DemoMap& m) {
                   zet(m, "DTMAAT.TXT", offsetof(maatrij, entry) + 2 * 4 + 3,
                       haal<char>(m, "DTMAAT.TXT", offsetof(maatrij, entry) + 1 * 4 + 3));
               }),
        blijft("a distribution that doesn't add up", {"DTVVTAB: distribution ", ": the sum of row "},
               op("DTVVTAB.TXT", offsetof(vvrec, aantal), int32_t{9999})),
        blijft("a picture elsewhere", {"DTSERPIC: series ", "can't be a picture"},
               op("DTSERPIC.TXT", offsetof(serpicrec, bestand), std::array<char, 4>{"../"})),
        blijft("no screen among the printers", {"print/TR_PTRG: no screen"}, gewist("print/TR_PTRG", 0)),
        blijft("a macro that can't be played", {"macro/MACRO: the macro of key 97, user 1, can't be played"},
               [](const DemoMap& m) {
                   const Afloop a = in_proces([&] {
                       setenv("MACRO", m.bestand("macro").c_str(), 1);
                       return MACROSCHRIJF({'a', 1, 200, {}, ""}) == 1 ? 0 : 1;
                   });
                   EXPECT_EQ(a.status, 0) << a.uitvoer;
               }),
        blijft("another supplier's order, another season's",
               {"2016Z/ORD0011.JRN: at 0: an order of supplier 99 in a file of supplier 11",
                "2016Z/ORD0013.JRN: at 0: an order of season 2014Z in a file of 2016Z"},
               [](const DemoMap& m) {
                   zet(m, "2016Z/ORD0011.JRN", 1, uint16_t{99});
                   zet(m, "2016Z/ORD0013.JRN", 1 + offsetof(ordkop, jaar), uint16_t{2014});
               }),
        blijft("a branch that the firm hasn't",
               {"2016Z/ORD0012.JRN: at ", "branch index 200, which the firm does not have"},
               [](const DemoMap& m) {
                   std::string jrn = lees_bestand(m.bestand("2016Z/ORD0012.JRN"));
                   schrijf_bestand(m.bestand("2016Z/ORD0012.JRN"),
                                   jrn + std::string("F\xc8\x01\0\0\1\0\0\0", 9));
               }),
        blijft("a work file that can't be restored",
               {"2016Z/ORD0018.WRK: a broken-off order that can't be restored"},
               met("2016Z/ORD0018.WRK", "Oh")),
        blijft("notes of programs",
               {"SERNR01.RES: ends inside a key", "MUT01.RES: a link", "MUT02.RES: line 2 is no mutation",
                "MUT02.RES: note: the last line has no end", "KASMUT.TXT: line 2 is no mutation",
                "other files: note: elders"},
               [](const DemoMap& m) {
                   plak(m, "SERNR01.RES", "12345");
                   plak(m, "elders", "C1100\n");
                   std::filesystem::create_symlink("elders", m.bestand("MUT01.RES"));
                   plak(m, "MUT02.RES", "C1100\n99\nM0");
                   plak(m, "KASMUT.TXT", "255255C1100\n255255\n");
               }),
        blijft("settings of the transfer",
               {"DTIPCSYS.TXT: 100 bytes of 512", "DTRCMSYS.TXT: ZEBEDI has no end", "EDICMD has no end",
                "method 5"},
               [](const DemoMap& m) {
                   plak(m, "DTIPCSYS.TXT", std::string(100, '\0'));
                   plak(m, "DTRCMSYS.TXT",
                        std::string(128, '\0') + std::string(60, 'z') + std::string(324, '\x5'));
               }),
        blijft("a print job's description", {"PRAB12.JOB: damaged: nobody sends PRAB12"},
               [](const DemoMap& m) { plak(m, "PRAB12.JOB", "zgspoel?"), plak(m, "PRAB12", "report"); }),
    },
    {
        blijft("fixed tables cut off", {"DTSYS.TXT: 100000 bytes of 122952"}, kort("DTSYS.TXT", 100'000)),
        blijft("a user who died in a critical step", {"DTSYS.TXT: user 1 \"Joke\": died in a critical step"},
               op("DTSYS.TXT", SYS_GEBRUIKER.start + offsetof(gebruikerslot, userstate), '\xc')),
        blijft("branches cut off", {"DTFILGEG.TXT: 3000 bytes, of 3672 for 5 branches"},
               kort("DTFILGEG.TXT", 3000)),
        blijft("settings cut off", {"ORDPARM.SYS: 50 bytes"}, kort("ORDPARM.SYS", 50)),
        // of which the index is the last that tells
        blijft("emptied tables",
               {"DTLEV: header: counts 13 records, the data file holds 0", "DTMERK: free chain: "},
               [](const DemoMap& m) {
                   kort("DTLEV.TXT", 0)(m);
                   plak(m, "DTMERK.TXT",
                        std::string(std::filesystem::file_size(m.bestand("DTMERK.TXT")), '\xff'));
               }),
        blijft("a data file that is gone", {"DTMAAT: DTMAAT.TXT isn't there"}, zonder({"DTMAAT.TXT"})),
        blijft("a pair that is gone", {"DTKOERS: isn't there: the order program doesn't start"},
               zonder({"DTKOERS.TXT", "DTKOERS.INX"})),
        blijft(
            "a mailbox that is gone, and one that others can't write",
            {"/zebedi/ongeldig isn't there", "/zebedi/pricat/save: mode 0755", "loc/LOC_INV.GBL isn't there",
             "loc/LOC_SLS.GBL doesn't name the mailbox slsrpt", "loc/FILENR.GBL: no number"},
            [](const DemoMap& m) {
                const std::string zgedi = "zgedi -D " + m.pad();
                ASSERT_EQ(
                    sh(zgedi + " init internet && " + zgedi + " set EDIDIR loc && " + zgedi + " make").status,
                    0);
                std::filesystem::remove(m.bestand("loc/LOC_INV.GBL"));
                zet(m, "loc/LOC_SLS.GBL", 0, '?');
                plak(m, "loc/FILENR.GBL", "12a\n");
                std::filesystem::remove(m.bestand("zebedi/ongeldig"));
                rechten(m, "zebedi/pricat/save", 0755);
            }),
    },
    {
        blijft("broken-off orders whose journal is gone, or another, or whose ACT tells nothing; a season "
               "that is gone, and "
               "the table that the other tables of printers lean on",
               {"2016Z/ORD0014.WRK: a broken-off order that can't be restored (its journal is no longer",
                "so keep a copy of 2016Z/ORD0014.WRK before",
                "2016Z/ORD0015.WRK: a broken-off order that can't be restored (its journal is no longer",
                "2016Z/ORD0015.JRN: at 878: ", "2016W/ORD0010.WRK: note: a broken-off order, restored",
                "2016Z/ORD0011.WRK: a broken-off order that can't be restored (its ACT file doesn't",
                "journals: note: 0000Z: its directory isn't there, and DTORDNR has 1 number",
                "print/TR_PTRG: note: isn't there, though the other tables", "print/TR_PTRC: good"},
               [](const DemoMap& m) {
                   for (const auto& [stam, omvang] : Rijen<std::string, int32_t>{{"2016Z/ORD0014", 803},
                                                                                 {"2016Z/ORD0015", 878},
                                                                                 {"2016W/ORD0010", 2210},
                                                                                 {"2016Z/ORD0011", -1}}) {
                       const act_record act{0, -1, omvang, 1, {}};
                       plak(m, (stam + ".WRK").c_str(), werkbestand(m.bestand(stam + ".JRN")));
                       zet(m, (stam + ".ACT").c_str(), 0, act);
                       rechten(m, (stam + ".WRK").c_str(), 0660), rechten(m, (stam + ".ACT").c_str(), 0660);
                   }
                   std::filesystem::remove(m.bestand("2016Z/ORD0014.JRN"));
                   plak(m, "2016Z/ORD0015.JRN", lees_bestand(m.bestand("2016Z/ORD0015.JRN")) + "x");
                   std::filesystem::remove_all(m.bestand("0000Z"));
                   zonder({"print/TR_PTRG.TXT", "print/TR_PTRG.INX"})(m);
               }),
    },
};

} // namespace zg::test
