// The data dictionary: its rows, and every pair of them made, compared, damaged and repaired.
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/ix.h"
#include "support/proef.h"

using namespace zg;
using zg::test::lees_bestand;
using zg::test::schrijf_bestand;
using zg::test::TijdelijkeMap;

namespace {

std::set<int> nummers() {
    std::set<int> s;
    for (const DDRIJ* r = DDRIJEN; r->bestandnr < DDEINDE; r++)
        s.insert(r->bestandnr);
    return s;
}

DDRAPPORT keur(int nr, const char* naam, int repair, int verwacht) {
    DDRAPPORT r{};
    r.repair = repair;
    EXPECT_EQ(DDCHECK(nr, naam, &r), verwacht) << "file " << nr;
    EXPECT_EQ(r.fout == DDF_GEEN, verwacht == 1);
    return r;
}

void zet_byte(const char* pad, size_t plaats, int waarde) {
    std::string s = lees_bestand(pad);
    s.at(plaats) = static_cast<char>(waarde);
    schrijf_bestand(pad, s);
}

} // namespace

TEST(Woordenboek, rows) {
    EXPECT_EQ(nummers().size(), 66u);
    DDRIJ r;
    ASSERT_EQ(DDROW(29, 4, &r), 1); // C,13,25 I,5,8 I,3,4 I,9,10 I,11,12 I,1,1 I,2,2
    EXPECT_EQ(r.keys, 5);
    EXPECT_EQ(r.reclen, 32);
    EXPECT_EQ(r.dups, 1);
    EXPECT_EQ(r.delen[0].type, 'C');
    EXPECT_EQ(r.delen[0].van * 1000 + r.delen[0].tot, 13025);
    EXPECT_EQ(r.delen[6].van * 1000 + r.delen[6].tot, 2002);
    EXPECT_EQ(r.delen[7].type, 0);
    ASSERT_EQ(DDROW(61, 1, &r), 1);
    EXPECT_EQ(r.reclen, 512);
    EXPECT_EQ(DDROW(3, 2, &r), 0);
    EXPECT_GE(r.bestandnr, DDEINDE);
    EXPECT_EQ(DDROW(46, 1, nullptr), 0);
    // Keys of a file stand together, numbered from 1, and say the same of the file.
    for (const DDRIJ* p = DDRIJEN; p->bestandnr < DDEINDE; p++) {
        EXPECT_EQ(p->keynr, p > DDRIJEN && p[-1].bestandnr == p->bestandnr ? p[-1].keynr + 1 : 1);
        EXPECT_TRUE(p[1].bestandnr != p->bestandnr ? p->keynr == p->keys
                                                   : p[1].keys == p->keys && p[1].reclen == p->reclen);
        EXPECT_FALSE(p->keynr == 1 && p->dups);
    }
    char titel[19];
    EXPECT_STREQ(DDTITLE(44, titel), "verzamelopdrachten");
    EXPECT_STREQ(DDTITLE(5, titel), "");
    EXPECT_STREQ(DDTITLE(0, titel), "");
    EXPECT_EQ(DDNUMMER("ergens/DTSER"), 55);
    EXPECT_EQ(DDNUMMER("DTNIETS"), 0);
}

TEST(Woordenboek, every_file_made_damaged_in_each_way_and_repaired) {
    TijdelijkeMap map;
    for (int nr : nummers()) {
        SCOPED_TRACE(nr);
        const std::string naam = "F" + std::to_string(nr), inx = naam + ".INX", txt = naam + ".TXT";
        const char* n = naam.c_str();
        keur(nr, n, 0, 0);
        DDRAPPORT r = keur(nr, n, 1, 1); // made from nothing
        EXPECT_TRUE(r.indexnieuw);
        ASSERT_EQ(DDCOMPARE(nr, n), DD_GELIJK);
        ASSERT_EQ(IXDIEPCHECK(n), std::vector<std::string>());
        ICB* icb = IXOPEN(n, 1);
        const IXHEADER h = icb->h;
        char titel[19];
        EXPECT_EQ(std::string(h.title, strnlen(h.title, 19)), *DDTITLE(nr, titel) ? titel : naam);
        for (int i = 0; i < 25; i++) {
            char rec[IXRECMAX] = {};
            for (int b = 0; b < h.reclen; b++)
                rec[b] = static_cast<char>(1 + (i * 7 + b * 3) % 90);
            IXWRITE(icb, rec);
        }
        IXCLOSE(icb);
        keur(nr, n, 0, 1);
        const std::string index = lees_bestand(inx), data = lees_bestand(txt);
        auto terug = [&] { schrijf_bestand(inx, index), schrijf_bestand(txt, data); };

        // A definition that differs: said, and never repaired.
        zet_byte(inx.c_str(), 48 + 21, h.keydef[0].pstart[0] + 1);
        EXPECT_EQ(keur(nr, n, 1, 0).code, DD_SLEUTEL + 1);
        EXPECT_TRUE(lees_bestand(txt) == data);
        // What a rebuild cures: refused without leave, cured with it.
        for (bool er : {true, false}) {
            terug();
            er ? zet_byte(inx.c_str(), 45, 1) : void(unlink(inx.c_str())); // marked busy, lost
            EXPECT_EQ(keur(nr, n, 0, 0).fout, er ? DDF_STUK : DDF_INDEX);
            EXPECT_TRUE(keur(nr, n, 1, 1).herbouwd);
            EXPECT_TRUE(IXDIEPCHECK(n).empty() && lees_bestand(txt) == data);
        }
        IXREMOVE(n);
    }
}

TEST(Woordenboek, files_that_are_never_empty) {
    TijdelijkeMap map;
    for (const char* naam : {"DTDD", "DTISOLND", "DTISOVAL"}) {
        ASSERT_TRUE(DDNEW(DDNUMMER(naam), naam));
        EXPECT_EQ(keur(DDNUMMER(naam), naam, 1, 0).fout, DDF_LEEG);
    }
    EXPECT_EQ(DDNEW(46, "X"), 0);
    EXPECT_FALSE(IOEXISTS("X.INX") || IOEXISTS("X.TXT"));
    EXPECT_EQ(DDCOMPARE(3, "X"), DD_ONLEESBAAR);
}
