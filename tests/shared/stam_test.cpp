// Branches and their range text, the reader of master records, the sizes.
#include "shared/filveld.h"
#include "shared/iomaat.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

struct Filialen : InMap {
    ~Filialen() override {
        iofil('C', 0, nullptr);
        firma = {};
    }
};

TEST_F(Filialen, RecordsAndHeadOffice) {
    maak_filialen({1, 2, 3, 14, 20});
    filiaalrec rec{};
    memset(static_cast<void*>(&rec), 'h', sizeof rec);
    VASTIN(firma.naam, "Van Weelde Mode B.V. te Zutphen");
    firma.vlag30 = 4;
    iofil('W', 5, &rec);
    EXPECT_EQ(rec.naam[0], 'h') << "the caller's record stays";
    std::string bytes = lees_bestand("DTFILGEG.TXT");
    ASSERT_EQ(bytes.size(), 6 * sizeof rec);
    EXPECT_EQ(bytes.substr(0, 32), std::string(32, '\0')) << "the head office is record 0, without its name";
    EXPECT_EQ(bytes[32], 'h');
    EXPECT_EQ(static_cast<uint8_t>(bytes[5 * sizeof rec + 599]), 20) << "index 4 is record 5";
    EXPECT_FALSE(bevat(bytes, "Filiaal")) << "names don't stand open in the file";
    iofil('R', 5, &rec);
    EXPECT_EQ(memcmp(&rec, &firma, 32), 0);
    EXPECT_EQ(iofil_naam(4), "Filiaal 20");
    rec = {};
    VASTIN(rec.naam, "\x90"
                     "tage \x84 een heel lange naam van een filiaal"); // cut to what fits scrambled
    iofil('W', 2, &rec);
    EXPECT_EQ(iofil_naam(2), "\x90"
                             "tage \x84 een heel lange naam v");
}

TEST_F(Filialen, NumberToIndex) {
    maak_filialen({1, 2, 3, 14, 20});
    struct {
        uint8_t nummer;
        int antwoord, index;
    } const rijen[] = {{1, 1, 0}, {3, 1, 2}, {14, 1, 3}, {20, 1, 4}, {0, 0, -1}, {4, 0, -1}, {251, 0, -1}};
    for (const auto& r : rijen) {
        int index = -1;
        EXPECT_EQ(iofil_index(r.nummer, &index), r.antwoord) << +r.nummer;
        EXPECT_EQ(index, r.index) << +r.nummer;
        EXPECT_EQ(iofil_nummer(r.index), r.antwoord ? r.nummer : 0);
    }
}

TEST_F(Filialen, ShortFileAndFaults) {
    maak_filialen({1, 2, 3});
    schrijf_bestand("DTFILGEG.TXT", std::string(1300, '\xFE')); // the second branch is cut
    filiaalrec rec;
    iofil('R', 1, &rec);
    EXPECT_EQ(rec.nummer, 0);
    EXPECT_EQ(iofil_naam(2), "");
    EXPECT_EQ(iofil_naam(99), "");
    EXPECT_EQ(iofil('Z', 0, &rec), 0);
    verwacht_stop([&] { iofil('R', 4, &rec); }, "iofil: errno=1");
    verwacht_stop([&] { iofil('W', -1, &rec); }, "iofil: errno=1");
    iofil('C', 0, nullptr);
    verwacht_stop([&] { iofil('R', 0, &rec); }, "iofil: errno=2");
    IOUNLINK("DTFILGEG.TXT");
    verwacht_stop([] { iofil('O', 0, nullptr); }, "iofil: Open niet gelukt (file=DTFILGEG.TXT, errno=2)");
}

TEST_F(Filialen, RangeText) {
    maak_filialen({1, 2, 3, 14, 20}); // bits 0 to 4
    // eerste: the bits of the first byte
    for (const auto& [tekst, uitslag, eerste, terug] : Rijen<const char*, Filreeks, int, const char*>{
             {"", Filreeks::goed, 0, ""},
             {"1-3,14", Filreeks::goed, 0b01111, "1-3,14"},
             {" 1 - 2 , 20 ", Filreeks::goed, 0b10011, "1-2,20"},
             {"3,1", Filreeks::goed, 0b00101, "1,3"},
             {"1-250", Filreeks::goed, 0b11111, "1-3,14,20"},
             {"15-19", Filreeks::goed, 0, ""},
             {"4", Filreeks::onbekend, -1, nullptr},
             {"3-1", Filreeks::fout, -1, nullptr},
             {"1-", Filreeks::fout, -1, nullptr},
             {"1,,2", Filreeks::fout, -1, nullptr},
             {"1 2", Filreeks::fout, -1, nullptr},
         }) {
        uint8_t bits[32];
        memset(bits, 0xAA, sizeof bits);
        EXPECT_EQ(filreeks_lees(tekst, bits), uitslag) << tekst;
        EXPECT_EQ(bits[0], eerste < 0 ? 0xAA : eerste) << tekst;
        if (terug)
            EXPECT_EQ(filreeks_tekst(bits), terug) << tekst;
    }
}

struct Stam : InMap {
    artrec art(int32_t groep, const char* naam) {
        artrec rec{};
        rec.artikelgroep = groep;
        VASTIN(rec.omschrijving, naam);
        rec.regtype = 1;
        return rec;
    }
};

TEST_F(Stam, ReadsOnlyWhenItMust) {
    ICB* icb = nieuw_paar("DTART", {"artikelgroepen,304", "k1,NODUPS,I,1,4", "k2,NODUPS,C,7,17,I,1,4"});
    schrijf(icb, art(1100, "Shirts"));
    schrijf(icb, art(0, "Zonder nummer"));
    IXSWITCH(icb, 2);
    artrec rec{};
    EXPECT_EQ(leesart(icb, &rec, 1100), 1);
    EXPECT_EQ(IXSLEUTEL(icb), 2) << "the current key is put back";
    EXPECT_TRUE(VASTGELIJK(rec.omschrijving, "Shirts") && rec.regtype == 1);
    schrijf(icb, art(1100, "Hemden"));
    EXPECT_EQ(leesart(icb, &rec, 1100), 1);
    EXPECT_TRUE(VASTGELIJK(rec.omschrijving, "Shirts")) << "no read: the buffer holds the record";
    EXPECT_EQ(leesart(icb, &rec, 1200), 0);
    EXPECT_EQ(rec.artikelgroep, 0) << "else 1200 would pass at the second question";
    EXPECT_EQ(leesart(icb, &rec, 1200), 0);
    EXPECT_EQ(leesart(icb, &rec, 1100), 1);
    EXPECT_TRUE(VASTGELIJK(rec.omschrijving, "Hemden"));
    EXPECT_EQ(leesart(icb, &rec, 0), 1);
    schrijf(icb, art(0, "Anders"));
    EXPECT_EQ(leesart(icb, &rec, 0), 1);
    EXPECT_TRUE(VASTGELIJK(rec.omschrijving, "Anders")) << "code 0 always reads";
    IXCLOSE(icb);
    verwacht_stop([&] { leesart(nullptr, &rec, 1); }, "leesstam: errno=1");
}

TEST_F(Stam, EanCodes) {
    ICB* icb = nieuw_paar("DTEAN", {"EAN-relaties,28", "k1,NODUPS,C,1,13",
                                    "k2,NODUPS,C,14,14,I,17,20,I,15,16,I,21,22,I,23,23"});
    eanrec rec{};
    rec.soort = 'M', rec.artikelgroep = 1100, rec.kleur = 4, rec.volgnummer = 2, rec.maat = 3;
    VASTIN(rec.code, "012345678905");
    schrijf(icb, rec);
    for (const char* tekst : {"012345678905", "0012345678905", " 012345678905 ", "00123456789056666"}) {
        eanrec uit;
        EXPECT_EQ(leesean(icb, &uit, tekst), 1) << tekst;
        EXPECT_EQ(uit.maat, 3) << tekst;
    }
    eanrec uit;
    EXPECT_EQ(leesean(icb, &uit, "0999999999999"), 0);
    EXPECT_TRUE(VASTGELIJK(uit.code, "0999999999999")) << "as it was asked";
    EXPECT_EQ(leeseanmaat(icb, &uit, {1100, 4, 2}, 3), 1);
    EXPECT_TRUE(VASTGELIJK(uit.code, "012345678905"));
    EXPECT_EQ(leeseanmaat(icb, &uit, {1100, 4, 2}, 4), 0);
    EXPECT_EQ(IXSLEUTEL(icb), 1);
    IXCLOSE(icb);
}

struct Maten : Systeem {
    Maten() {
        zet(8, sysmaat{{}, 4711, {}}, SYS_RECORD);
        firma.maatstelsel = 1;
        dtmaat = nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2);
        dtmtom = nieuw_paar("DTMTOM", {"maatomschr.,10", "k1,NODUPS,I,1,1,I,2,2,I,3,3"}, 2);
    }
    ~Maten() override {
        IXCLOSE(dtmaat);
        IXCLOSE(dtmtom);
        dtmaat = dtmtom = nullptr;
    }
    static mtinfo info(int positie, const char* naam, int nummer = 0) {
        mtinfo i{};
        i.positie = static_cast<uint8_t>(positie);
        i.maatnr = static_cast<uint8_t>(nummer);
        VASTIN(i.naam, naam);
        return i;
    }
    static void voeg(mthandle* h, std::initializer_list<const char*> namen) {
        int p = 0;
        for (const char* naam : namen) {
            p++;
            mtinfo i = info(p, naam, h->stelsel == 1 ? 0 : p);
            EXPECT_EQ(mtinsert(h, &i), 1) << naam;
        }
    }
    // A walk under a key: "S:1@2" is size number 1 at position 2.
    static std::string loop(mthandle* h, int sleutel, char begin = 'F', mtinfo i = {}) {
        std::string uit;
        for (char letter = begin; mtread(h, letter, &i, sleutel); letter = begin == 'P' ? 'P' : 'N')
            uit += VASTTEKST(i.naam) + ":" + std::to_string(i.maatnr) + "@" + std::to_string(i.positie) +
                   (i.rang ? "#" + std::to_string(i.rang) : "") + " ";
        return uit;
    }
};

TEST_F(Maten, WalksUnderEachKey) {
    mthandle* h = mtopen(1, 4, 2);
    voeg(h, {"S", "M", "L"});
    mtinfo xs = info(1, "XS");
    ASSERT_EQ(mtinsert(h, &xs), 1);
    EXPECT_EQ(xs.maatnr, 4) << "the lowest free number";
    mtclose(h);
    h = mtopen(1, 4, 0);
    uint8_t masker[MAATBYTES] = {};
    maat_aan(masker, 1);
    maat_aan(masker, 4);
    maat_aan(masker, 90); // not in this type
    mtselect(h, masker);
    EXPECT_EQ(loop(h, 1), "S:1@2#2 M:2@3 L:3@4 XS:4@1#1 ");
    EXPECT_EQ(loop(h, 2), "XS:4@1#1 S:1@2#2 M:2@3 L:3@4 ");
    EXPECT_EQ(loop(h, 3), "L:3@4 M:2@3 S:1@2#2 XS:4@1#1 ");
    EXPECT_EQ(loop(h, 4), "XS:4@1#1 S:1@2#2 ");
    EXPECT_EQ(loop(h, 2, 'P'), "L:3@4 M:2@3 S:1@2#2 XS:4@1#1 ") << "from position 0 to the last one";
    mtinfo hoog{};
    hoog.rang = 9;
    EXPECT_EQ(loop(h, 4, 'P', hoog), "S:1@2#2 XS:4@1#1 ");
    EXPECT_EQ(mtranks(h), 2);
    EXPECT_STREQ(mtname(h, 3), "  L");
    EXPECT_STREQ(mtname(h, 9), "   ");
    EXPECT_STREQ(mtname(h, 1000), "   ");
    EXPECT_EQ(mtpos(h, 4), 1);
    mtinfo i = info(1, "??", 77);
    mtinfo voor = i;
    EXPECT_EQ(mtread(h, 'P', &i, 2), 0);
    EXPECT_EQ(mtread(h, 'R', &i, 1), 0);
    EXPECT_EQ(mtread(h, 'R', &i, 3), 0);
    EXPECT_EQ(memcmp(&i, &voor, sizeof i), 0) << "no size: the record as it came";
    EXPECT_EQ(mtinsert(h, &i), 0) << "not open for writing";
    mtclose(h);
}

TEST_F(Maten, DeleteClosesTheGap) {
    mthandle* h = mtopen(1, 4, 2);
    voeg(h, {"a", "b", "c", "d", "e"});
    mtinfo i = info(2, "b", 2);
    EXPECT_EQ(mtdelete(h, &i), 1);
    EXPECT_EQ(mtdelete(h, &i), 0);
    mtinfo gat = info(6, "x");
    EXPECT_EQ(mtinsert(h, &gat), 0) << "positions stay dense";
    mtinfo nul = info(0, "x");
    EXPECT_EQ(mtinsert(h, &nul), 0);
    mtinfo anders = info(2, "c", 1);
    EXPECT_EQ(mtupdate(h, &anders), 0) << "that number is elsewhere";
    mtinfo goed = info(2, "C", 3);
    EXPECT_EQ(mtupdate(h, &goed), 1);
    EXPECT_EQ(loop(h, 2), "a:1@1 C:3@2 d:4@3 e:5@4 ");
    mtclose(h);
    h = mtopen(1, 4, 0);
    EXPECT_EQ(loop(h, 2), "a:1@1 C:3@2 d:4@3 e:5@4 ");
    mtclose(h);
    uint8_t rec[IXRECMAX] = {1, 4};
    ASSERT_EQ(IXREAD(dtmaat, rec), 1);
    maatrij rij;
    memcpy(&rij, rec, sizeof rij);
    EXPECT_EQ(rij.mtcount, 4711);
    EXPECT_EQ(rij.entry[2].link, 0);
    EXPECT_TRUE(rij.entry[3].link == 2 && rij.entry[3].naam[0] == 'C') << "on file by number";
    h = mtopen(1, 4, 2);
    for (int nummer : {1, 3, 4, 5}) {
        i.maatnr = static_cast<uint8_t>(nummer);
        EXPECT_EQ(mtdelete(h, &i), 1);
    }
    mtclose(h);
    EXPECT_EQ(IXREAD(dtmaat, rec), 0) << "a type without sizes has no record";
}

TEST_F(Maten, OtherSystemKeepsPositionsOnly) {
    mthandle* h = mtopen(2, 4, 2);
    EXPECT_EQ(loop(h, 2) + loop(h, 4), "");
    voeg(h, {"38", "40"});
    mtinfo zonder = info(1, "36");
    EXPECT_EQ(mtinsert(h, &zonder), 0) << "a number must be given here";
    mtinfo met = info(1, "36", 7);
    EXPECT_EQ(mtinsert(h, &met), 1);
    mtclose(h);
    h = mtopen(2, 4, 0);
    EXPECT_EQ(loop(h, 2), "36:7@1 38:1@2 40:2@3 ");
    EXPECT_EQ(loop(h, 1), "38:1@2 40:2@3 36:7@1 ");
    uint8_t masker[MAATBYTES] = {};
    maat_aan(masker, 7);
    maat_aan(masker, 2);
    leesmaat(&h, 2, 4, masker);
    EXPECT_EQ(loop(h, 4), "36:7@1#1 40:2@3#2 ") << "the choice of sizes";
    leesmaat(&h, 2, 4, nullptr);
    EXPECT_EQ(loop(h, 4), "36:7@1#1 40:2@3#2 ") << "the same type stays open, with its choice";
    leesmaat(&h, 1, 4, nullptr);
    EXPECT_EQ(loop(h, 2), "");
    mtclose(h);
}

// Any 404 bytes: walks end and stay inside the tables.
TEST_F(Maten, GarbageRecords) {
    uint32_t zaad = 12345;
    for (int ronde = 0; ronde < 200; ronde++) {
        uint8_t rec[IXRECMAX] = {};
        for (int i = 0; i < 404; i++)
            rec[i] = static_cast<uint8_t>((zaad = zaad * 1664525 + 1013904223) >> (ronde % 3 ? 24 : 26));
        rec[0] = static_cast<uint8_t>(1 + ronde % 2);
        rec[1] = 5;
        IXWRITE(dtmaat, rec);
        mthandle* h = mtopen(rec[0], 5, 0);
        uint8_t masker[MAATBYTES];
        memset(masker, 0xFF, sizeof masker);
        mtselect(h, masker);
        for (int sleutel = 1; sleutel <= 4; sleutel++)
            for (char letter : {'N', 'P'}) {
                mtinfo i{};
                i.maatnr = letter == 'P' ? MATEN + 1 : 0;
                int n = 0;
                while (n < 500 && mtread(h, letter, &i, sleutel))
                    n++;
                ASSERT_LE(n, MATEN) << ronde << " key " << sleutel << letter;
            }
        for (int n = -1; n < 300; n++)
            mtname(h, n);
        mtclose(h);
    }
}

TEST_F(Maten, CodesOfTheTables) {
    Slot<tekst20> rec{};
    zet(35, tekst20{"Blauw"}, SYS_KLEUR);
    EXPECT_EQ(leeskleur(&rec, 35), 1);
    EXPECT_TRUE(VASTGELIJK(rec.r.tekst, "Blauw"));
    EXPECT_EQ(leeskleur(&rec, 36), 0);
    EXPECT_EQ(leeskleur(&rec, 36), 0) << "an unknown code stays unknown";
    EXPECT_EQ(leeskleur(&rec, 1000), 0);
    EXPECT_EQ(leesmaatsoort(&rec, 100), 0);
    rec = {};
    gebruiker.set = 3;
    zet(32, tekst20{"Katoen"}, SYS_SETCODE);
    EXPECT_TRUE(leescode(&rec, 2) && rec.nr == 2 && VASTGELIJK(rec.r.tekst, "Katoen"));
    EXPECT_EQ(leescode(&rec, 4), 0);
    EXPECT_EQ(leescode(&rec, 4), 0);
    gebruiker = {};
    // The target group keeps what it read last, for all its callers; without one the record is zeros.
    ICB* icb = nieuw_paar("DTDOELGR", {"doelgroepen,24", "k1,NODUPS,C,1,1"});
    doelgrrec groep{}, nog{};
    groep.code = 'D';
    VASTIN(groep.naam, "Dames");
    schrijf(icb, groep);
    EXPECT_TRUE(leesdoelgr(icb, &nog, 'D') && VASTGELIJK(nog.naam, "Dames"));
    EXPECT_TRUE(!leesdoelgr(icb, &nog, 'H') && VASTLEEG(nog.naam) && nog.code == 0);
    EXPECT_TRUE(leesdoelgr(icb, &nog, 'D') && VASTGELIJK(nog.naam, "Dames"));
    IXCLOSE(icb);
}

TEST_F(Maten, Faults) {
    mtinfo i{};
    verwacht_stop([] { mtopen(0, 4, 0); }, "iomaat: errno=7");
    verwacht_stop([] { mtpos(nullptr, 1); }, "iomaat: errno=4");
    verwacht_stop([] { dtmaat = nullptr, mtopen(1, 4, 0); }, "iomaat: errno=5");
    verwacht_stop([&] { mtread(mtopen(1, 4, 0), 'X', &i, 2); }, "mtread(X,2) aktie ongedefinieerd");
}

} // namespace
} // namespace zg::test
