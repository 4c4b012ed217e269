// Each field that can't be what it is has its line in the check, by file, record, field and value; and fields that may hold
// anything are left in peace.
#include "tools/keurwerk.h"
#include "tools/schade.h"
#include "tools/shell.h"

using namespace zg;
using namespace zg::test;

namespace {

struct Veldschade {
    const char* bestand;
    size_t plaats;
    std::string bytes;
    const char* gezegd;
    bool te_herstellen = false;
};

const std::string GAT("A\0\0Z", 4), BEL("\7"), TOT = i16(65500);

void sla(const DemoMap& map, const Veldschade& s) {
    wijzig_bestand(map.bestand(s.bestand), s.plaats, s.bytes);
}

constexpr size_t SER = sizeof(serrec), LAND = 46900, GEBRUIKER = 2640, SYS7 = 6 * 64, SYS15 = 14 * 64;

// No key of a pair is among them: a tree that disagrees is told first.
const Veldschade FOUT[] = {
    {"DTART.TXT", 28, "\xFD", "DTART: article group 1100: magazijn 253, of 0 to 250 or 255"},
    {"DTART.TXT", 29, "Q", "DTART: article group 1100: verdeelsoort Q, of \"AP\""},
    {"DTART.TXT", 35, "\x80", "DTART: article group 1100: vlaggen 128, of 0 to 7"},
    {"DTART.TXT", 36, i32(-5), "DTART: article group 1100: branchecode -5, of 0 to 999999"},
    {"DTART.TXT", 43, "\xFB", "DTART: article group 1100: perfiliaal at 3 is 251, of 0 to 250"},
    {"DTMERK.TXT", 32, i16(-5), "DTMERK: brand 101: calculatiefactor -5, of 0 to 32767"},
    {"DTMERK.TXT", 36, "\x1F", "DTMERK: brand 101: all branches are excluded"},
    {"DTLEV.TXT", 22, BEL, "DTLEV: relation 10: adres holds byte 07, which is no letter"},
    {"DTLEV.TXT", 59, GAT, "DTLEV: relation 10: plaats has bytes behind its end"},
    {"DTLEV.TXT", 199, i32(10000) + i16(0), "DTLEV: relation 10: koerseenheid is 0 for a rate"},
    {"DTLEV.TXT", 205, "\x08", "DTLEV: relation 10: soorten 8, of 1 to 7"},
    {"DTOMZGRP.TXT", 22, "\x0B", "DTOMZGRP: turnover group 1: btwcode 11, of 1 to 10"},
    {"DTMAAT.TXT", 18, BEL, "DTMAAT: size type 1 of system 1: the name of entry 1 holds a byte"},
    {"DTMAAT.TXT", 404 + 18, std::string(380, '\0'), ": no sizes"},
    {"DTVVTAB.TXT", 8, std::string(32, '\0'),
     "DTVVTAB: distribution 1 of size type 1, row 1: filialen is empty"},
    {"DTSER.TXT", SER + 12, "Q", "DTSER: series 1100.15.1: seizoen Q, of \"ZWK\""},
    {"DTSER.TXT", SER + 54, GAT, "DTSER: series 1100.15.1: dessin has bytes behind its end"},
    {"DTSER.TXT", SER + 92, "\x60", "DTSER: series 1100.15.1: adviesgrenzen at 0 is 96, of 0 to 95"},
    {"DTSER.TXT", SER + 104, i32(-5), "DTSER: series 1100.15.1: adviesprijzen at 1 is -5, below 0"},
    {"DTSER.TXT", SER + 136, TOT, "DTSER: series 1100.15.1: laatste_termijn 65500 is no day of the calendar"},
    {"DTSER.TXT", 2 * SER + 136, i16(42000) + i16(42001), ": its first delivery date is behind the last"},
    {"DTIPA.TXT", 12, i32(-1), "set 10 until #65534: koersfactor -1, below 0"},
    {"DTIPG.TXT", 24, "QQQ", "DTIPG.TXT record 0: another currency or kind than its set's"},
    {"DTIPG.TXT", 40 + 28, i32(-5), "DTIPA: DTIPG.TXT record 1: netto -5, below 0"},
    {"DTEAN.TXT", 28 + 24, TOT, "DTEAN: code 2013000000015: datum 65500 is no day of the calendar"},
    {"DTORDNR.TXT", 45, "\x09", "DTORDNR: order 1000: edi_soort 9, of 0 to 3"},
    {"DTETI.TXT", 8, i16(999), "DTETI: series 1100.14.1, block 0: a label: etiketsoort 255, of 0 to 100"},
    {"DTETI.TXT", 16, i32(-50), "DTETI: series 1100.14.1, block 0: a label: inkoop -5, below 0"},
    {"DTETI.TXT", 52 + 23, "\xFE", "a label: receiving location 253 is no branch of the firm"},
    {"DTETI.TXT", 88 + 30, i16(60000), "a label: a delivery term that ends before it begins"},
    {"DTSYS.TXT", 0, BEL, "DTSYS.TXT: system record 1: naam holds byte 07, which is no letter"},
    {"DTSYS.TXT", 4 * 64, i32(-5), "DTSYS.TXT: system record 5: laatste -5, of 0 to 9999999", true},
    {"DTSYS.TXT", SYS7 + 25, "\x05", "DTSYS.TXT: system record 7: modus 5, of 0 to 1 or 10"},
    {"DTSYS.TXT", SYS15 + 22, "abc", "DTSYS.TXT: system record 15: prefix1 is no number"},
    {"DTSYS.TXT", GEBRUIKER + 58, TOT, "DTSYS.TXT: user 1: werkdatum 65500 is no day of the calendar"},
    {"DTSYS.TXT", LAND + 7, BEL, "DTSYS.TXT: country 1: naam holds byte 07, which is no letter"},
    {"DTSYS.TXT", 18444, BEL, "DTSYS.TXT: colour "},
    {"DTSYS.TXT", 38425, std::string(12, '\0'), "DTSYS.TXT: size bar 1: no sizes"},
    {"DTFILGEG.TXT", 612 + 599, "\xFB", "DTFILGEG.TXT: branch index 0: nummer 251, of 0 to 250"},
    {"2016Z/ORD0013.JRN", 1 + 8, GAT, "2016Z/ORD0013.JRN: at 0: omschrijving has bytes behind its end"},
    {"2016Z/ORD0013.JRN", 1 + 44, i16(-20000), "2016Z/ORD0013.JRN: at 0: korting -20000, of -9999 to 9999"},
    {"2016Z/ORD0013.JRN", 1 + 52, i32(10000) + i16(0),
     "2016Z/ORD0013.JRN: at 0: koerseenheid is 0 for a rate"},
    {"2016Z/ORD0013.JRN", 1 + 59, "\x09", "2016Z/ORD0013.JRN: at 0: edi_soort 9, of 0 to 3"},
    {"2016Z/ORD0013.JRN", 408 + 4, i32(INT32_MAX), ": quantities of a line that add up to 21474836"},
};

// Whatever stands in these is nobody's business but its owner's.
const Veldschade VRIJ[] = {
    {"DTLEV.TXT", 22, "Rue \x82t\x90", ""}, // letters of code page 850
    {"DTMERK.TXT", 68, "\1\2\3", ""},
    {"DTSER.TXT", SER + 192, "\1\2\3", ""},
    {"DTSYS.TXT", 2000, "\1\2\3", ""},
    {"DTFILGEG.TXT", 612 + 100, "\1\2\3", ""},
    {"2016Z/ORD0013.JRN", 1 + 104, "\1\2\3", ""},
    {"2016Z/ORD0013.JRN", 1 + 46, "\x07", ""}, // its state
};

} // namespace

TEST(Velden, EachWrongOneIsToldAndLeft) {
    const DemoMap map("data/demo", "--register");
    for (const Veldschade& s : FOUT)
        sla(map, s);
    const Uit uit = sh("zgcheck " + map.pad()),
              jrn = sh("orddump --check " + map.bestand("2016Z/ORD0013.JRN"));
    EXPECT_EQ(uit.status, 1);
    EXPECT_EQ(jrn.status, 1);
    for (const Veldschade& s : FOUT) {
        EXPECT_TRUE(uit.zegt(s.gezegd)) << s.gezegd << "\n" << uit.tekst;
        const std::string bij = strstr(s.gezegd, "at 0: ") ? strstr(s.gezegd, "at 0: ") : "";
        EXPECT_TRUE(jrn.zegt(bij)) << bij << "\n" << jrn.tekst;
    }
    // Who wrote it has to say what it should be: a repair leaves it, and says it again.
    const Uit na = sh("zgcheck --repair " + map.pad());
    for (const Veldschade& s : FOUT) {
        EXPECT_EQ(na.zegt(s.gezegd), !s.te_herstellen) << s.gezegd << "\n" << na.tekst;
        EXPECT_EQ(lees_bestand(map.bestand(s.bestand)).compare(s.plaats, s.bytes.size(), s.bytes) == 0,
                  !s.te_herstellen)
            << s.gezegd;
    }
}

TEST(Velden, FreeOnesAreQuietAndManyAreCounted) {
    const DemoMap map("data/demo", "--register");
    for (const Veldschade& s : VRIJ)
        sla(map, s);
    // Orders of before the register, which have no number.
    std::string order = lees_bestand(DemoMap().bestand("2016Z/ORD0011.JRN"));
    order.replace(1, 2, i16(99));
    plak(map, "2016Z/ORD0099.JRN", order + order);
    EXPECT_EQ(sh("zgcheck -q " + map.pad()).tekst, "");
    // A fault that each record has is told of the first ones, and counted.
    for (size_t nr = 0; nr < 50; nr++)
        sla(map, {"DTSER.TXT", nr * SER + 54, GAT, ""});
    const Uit uit = sh("zgcheck -q " + map.pad());
    EXPECT_TRUE(uit.zegt("DTSER: dessin: 40 more records with a wrong one") && uit.zegt("DTSER: 11 wrong"))
        << uit.tekst;
}

// What goes on being written is as long as it was read, not as it was measured.
TEST(Velden, AFileCutUnderItsReader) {
    TijdelijkeMap map;
    schrijf_bestand("kort", "0123456789");
    static SYSCALLS echt;
    echt = SYS;
    SYS.pread = [](int fd, void* buf, size_t n, off_t plaats) {
        return truncate("kort", 4) == 0 ? echt.pread(fd, buf, n, plaats) : -1;
    };
    std::string bytes;
    keurbestand b;
    EXPECT_TRUE(keur_lees("kort", 100, &bytes, &b));
    SYS = echt;
    EXPECT_EQ(bytes, "0123");
}

TEST(Velden, ALinkToWhatIsGoneIsANote) {
    const DemoMap map;
    std::filesystem::create_directory(map.bestand("edistam"));
    const Afloop a = in_proces([&] {
        const struct {
            int bestandnr;
            const char* naam;
            size_t plaats;
            int32_t nummer;
        } TABELLEN[] = {{23, "edistam/DTKL0010", 36, 998}, {5, "edistam/DTAG4711", 72, 1100}};
        if (chdir(map.pad().c_str()) != 0)
            return 1;
        for (const auto& t : TABELLEN) {
            uint8_t rec[IXRECMAX] = "partner's own";
            memcpy(rec + t.plaats, &t.nummer, sizeof t.nummer);
            DDNEW(t.bestandnr, t.naam);
            ICB* icb = IXOPEN(t.naam, 2);
            if (IXWRITE(icb, rec) != 1)
                return 2;
            IXCLOSE(icb);
        }
        return 0;
    });
    ASSERT_EQ(a.status, 0) << a.uitvoer;
    const Uit uit = sh("zgcheck " + map.pad());
    EXPECT_TRUE(uit.zegt("edistam/DTKL0010: note: colour 998 isn't there") &&
                uit.zegt("edistam/DTAG4711: note: relation 4711 isn't there") &&
                !uit.zegt("group 1100 isn't"))
        << uit.tekst;
}
