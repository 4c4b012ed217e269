// The price file: what stands in both files after a write, periods cut around each other, prices of every day wherever a
// write is killed or refused, and damage that is told and never written over.
#include "shared/inkcheck.h"
#include "shared/ioink.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include <span>

namespace zg::test {
namespace {

constexpr seriesleutel SERIE = {305, 12, 3};
constexpr uint16_t LEV = 77;

prijsgroepen groepen(int32_t prijs, int aantal = 2) {
    prijsgroepen uit;
    for (int i = 0; i < aantal; i++) {
        prijsgroep g{{}, prijs * 100 + i, prijs * 90 + i};
        g.maten[i] = 6; // two sizes
        uit.push_back(g);
    }
    return uit;
}

struct Prijzen : Systeem {
    Prijzen() {
        DDNEW(20, "DTIPA");
        schrijf_bestand("DTIPG.TXT", "");
        ioink_open(2);
    }
    ~Prijzen() override { ioink_close(); }

    static prijsset set(int van, int tot) {
        const auto eerste = static_cast<uint16_t>(van), laatste = static_cast<uint16_t>(tot);
        return {SERIE, LEV, laatste, 10500, 2, {}, {'G', 'B', 'P'}, eerste, {}, -1};
    }
    static bool zet(int van, int tot, int prijs, int aantal = 2) {
        prijsset s = set(van, tot);
        return ioink_write(&s, groepen(prijs, aantal));
    }
    static void opnieuw() {
        ioink_close();
        IXREMOVE("DTIPA");
        DDNEW(20, "DTIPA");
        schrijf_bestand("DTIPG.TXT", "");
        Systeem::zet(9, sysprijs{}, SYS_RECORD);
        ioink_open(2);
    }
    static void twee_vrije() {
        prijsset weg = set(300, 300);
        EXPECT_TRUE(ioink_write(&weg, groepen(7)) && ioink_delete(weg));
    }
    static void zet_getal(const char* bestand, int plaats, int32_t waarde) {
        wijzig_bestand(bestand, static_cast<size_t>(plaats),
                       {reinterpret_cast<char*>(&waarde), sizeof waarde});
    }
    static constexpr int EERSTE = 90, LAATSTE = 210;
    // The price of each day; as runs.
    static std::vector<int> dagen() {
        std::vector<int> uit;
        for (int dag = EERSTE; dag <= LAATSTE; dag++) {
            prijsset s;
            prijsgroepen g;
            const bool gelezen =
                ioink_find(SERIE, LEV, static_cast<uint16_t>(dag), &s, &g) == Prijsset::gelezen;
            uit.push_back(gelezen ? g.at(0).bruto / 100 : 0);
        }
        return uit;
    }
    static std::string tekst(const std::vector<int>& dagen) {
        std::string uit;
        for (size_t i = 0; i < dagen.size(); i++)
            if (i == 0 || dagen[i] != dagen[i - 1])
                uit += std::to_string(EERSTE + static_cast<int>(i)) + "=" + std::to_string(dagen[i]) + " ";
        return uit;
    }
    // Both files are sound; groups that nobody has.
    static int64_t verloren() {
        inktelling t;
        for (const inkkwaal& k : ink_controle(&t))
            if (k.tekst.find("overlaps") == std::string::npos) // a kill may leave that
                ADD_FAILURE() << k.tekst;
        return t.verloren;
    }
};

// Three groups in place of two: those that were free serve last, and go first when a set is deleted.
TEST_F(Prijzen, FreeRecordsServeLast) {
    prijsset s = set(100, 65534);
    ASSERT_TRUE(ioink_write(&s, groepen(10)) && ioink_write(&s, groepen(20, 3)));
    EXPECT_EQ(s.groep, 2);
    ASSERT_TRUE(ioink_delete(s));
    EXPECT_EQ(lees_bestand("DTIPG.TXT").substr(3 * 40, 40),
              std::string(36, '\0') + std::string("\x02\0\0\0", 4));
    EXPECT_EQ(lees_bestand("DTSYS.TXT").substr(8 * 64, 8), std::string("\x04\0\0\0\x05\0\0\0", 8));
    EXPECT_EQ(verloren(), 0);
    EXPECT_FALSE(ioink_write(&s, {})) << "without groups";
    EXPECT_EQ(tekst(dagen()), "90=0 ");
}

struct Snede {
    const char* wat;
    std::vector<std::array<int, 2>> staan; // prices 1, 2, ...
    std::array<int, 2> nieuw;              // price 9
    int vervangt;                          // of those that stand, from 0; -1 new
    const char* dagen;
};
const Snede SNEDEN[] = {
    {"inside", {{100, 200}}, {120, 150}, -1, "90=0 100=1 120=9 151=1 201=0 "},
    {"over the ends of two, one whole between",
     {{100, 130}, {131, 140}, {141, 200}},
     {120, 150},
     -1,
     "90=0 100=1 120=9 151=3 201=0 "},
    {"in its place, over the next", {{100, 119}, {130, 200}}, {110, 150}, 0, "90=0 110=9 151=2 201=0 "},
    // From here on they are not disturbed.
    {"to its end", {{100, 200}}, {150, 200}, -1, "90=0 100=1 150=9 201=0 "},
    {"from its start", {{100, 200}}, {100, 150}, -1, "90=0 100=9 151=1 201=0 "},
    {"over an end", {{100, 130}}, {120, 150}, -1, "90=0 100=1 120=9 151=0 "},
    {"beside", {{100, 119}, {151, 160}}, {120, 150}, -1, "90=0 100=1 120=9 151=2 161=0 "},
    {"in its place, shorter", {{100, 200}}, {120, 150}, 0, "90=0 120=9 151=0 "},
    {"one day", {{100, 200}}, {100, 100}, -1, "90=0 100=9 101=1 201=0 "},
};

// The sets that stand, and the one to write.
prijsset klaar(const Snede& g) {
    Prijzen::opnieuw();
    prijsset uit = Prijzen::set(g.nieuw[0], g.nieuw[1]);
    for (size_t i = 0; i < g.staan.size(); i++) {
        prijsset s = Prijzen::set(g.staan[i][0], g.staan[i][1]);
        EXPECT_TRUE(ioink_write(&s, groepen(static_cast<int>(i) + 1)));
        if (static_cast<int>(i) == g.vervangt)
            uit.groep = s.groep;
    }
    return uit;
}

TEST_F(Prijzen, Cut) {
    for (const Snede& g : SNEDEN) {
        SCOPED_TRACE(g.wat);
        prijsset s = klaar(g);
        EXPECT_TRUE(ioink_write(&s, groepen(9, 3)));
        EXPECT_EQ(tekst(dagen()), g.dagen);
        EXPECT_EQ(verloren(), 0);
    }
}

TEST_F(Prijzen, Disturbed) {
    for (const Snede& g : std::span(SNEDEN, 3)) {
        SCOPED_TRACE(g.wat);
        prijsset s = klaar(g);
        ASSERT_TRUE(ioink_write(&s, groepen(9, 3)));
        const auto straks = dagen();
        s = klaar(g);
        const auto eerst = dagen();
        ioink_close();
        bij_elke_schrijf(
            {"DTIPA.INX", "DTIPA.TXT", "DTIPG.TXT", "DTSYS.TXT"}, 1,
            [&] {
                open();
                ioink_open(2);
                prijsset nieuw = s;
                return ioink_write(&nieuw, groepen(9, 3)) ? 1 : 0;
            },
            [&](const Storing& st) {
                EXPECT_EQ(st.uitvoer.empty(), st.klaar || st.dood) << st.uitvoer;
                if (IXCHECK("DTIPA") < 0)
                    IXBLDIX("DTIPA");
                ioink_open(2);
                const auto nu = dagen();
                for (size_t i = 0; i < nu.size(); i++)
                    EXPECT_TRUE((nu[i] == eerst[i] && st.status != 1) ||
                                (nu[i] == straks[i] && (st.dood || st.status == 1)))
                        << "day " << EERSTE + static_cast<int>(i) << ": " << nu[i];
                verloren();
                // What a kill left is cut like anything else.
                EXPECT_TRUE(zet(g.nieuw[0], g.nieuw[1], 9));
                EXPECT_EQ(dagen()[static_cast<size_t>(g.nieuw[0] - EERSTE)], 9);
                const int64_t lek = verloren();
                EXPECT_EQ(ink_herstel(), lek);
                EXPECT_EQ(verloren(), 0);
                ioink_close();
            });
        ioink_open(2);
    }
}

TEST_F(Prijzen, Damage) {
    struct Schade {
        const char* wat;
        int32_t nr, plaats; // 4 bytes of a record of the groups; nr -1: of the set itself
        int32_t waarde;
        const char* gemeld;
    };
    const Schade schades[] = {
        {"another series", 1, 0, 306, "uitvoeren (3)\nDTIPG.TXT 1: 305.12.3  77"},
        {"in a circle", 1, 36, 0, "uitvoeren (3)\nDTIPG.TXT 1:"},
        {"past the end", 1, 36, 4000, "uitvoeren (2)\nDTIPG.TXT 4000:"},
        {"before the start", 0, 36, -7, "uitvoeren (1)\nDTIPG.TXT -7:"},
        {"too short", 0, 36, -1, "maatbitmaps kloppen niet\nDTIPG.TXT 0:"},
        {"sizes", 0, 12, 30, "maatbitmaps kloppen niet"},
        {"no chain", -1, 36, -1, "maatbitmaps kloppen niet"},
    };
    for (const auto& s : schades) {
        SCOPED_TRACE(s.wat);
        opnieuw();
        EXPECT_TRUE(zet(100, 200, 5) && zet(201, 210, 6));
        twee_vrije();
        ioink_close();
        zet_getal(s.nr < 0 ? "DTIPA.TXT" : "DTIPG.TXT", std::max(s.nr, 0) * 40 + s.plaats, s.waarde);
        const std::string eerst = lees_bestand("DTIPG.TXT") + lees_bestand("DTIPA.TXT");
        const auto afloop = in_proces([&] { // its own process: a set is told of once
            open();
            ioink_open(2);
            prijsset p;
            prijsgroepen g;
            int goed = ioink_find(SERIE, LEV, 150, &p, &g) == Prijsset::stuk;
            const prijsset stuk = p;
            goed += ioink_find(SERIE, LEV, 150, &p, &g) == Prijsset::stuk;
            goed += !zet(120, 130, 9);
            p = set(50, 60);
            p.groep = stuk.groep;
            goed += stuk.groep == -1 || !ioink_write(&p, g);
            goed += !ioink_delete(stuk) && !ioink_deleteall(SERIE);
            ioink_close();
            return goed;
        });
        EXPECT_EQ(afloop.status, 5) << afloop.uitvoer;
        EXPECT_TRUE(bevat(afloop.uitvoer, s.gemeld));
        EXPECT_EQ(lees_bestand("DTIPG.TXT") + lees_bestand("DTIPA.TXT"), eerst);
        ioink_open(2);
        inktelling t;
        EXPECT_FALSE(ink_controle(&t).empty());
        EXPECT_GE(ink_herstel(), 0);
        EXPECT_EQ(lees_bestand("DTIPG.TXT").substr(0, 80), eerst.substr(0, 80)) << "its groups stay";
        EXPECT_TRUE(zet(205, 207, 9)) << "beside it";
        EXPECT_EQ(tekst(dagen()).substr(0, 6), "90=0 2");
    }
}

TEST_F(Prijzen, FreeRecordsAndCounters) {
    struct Stand {
        const char* wat;
        int32_t kop, hoogste; // 3, 4 as they are: records 2 and 3 free
        int32_t volgende;     // of record 2, 4 as it is
        const char* stop;     // null: written behind the end, or in the free ones
    };
    const Stand standen[] = {
        {"zeroed", 0, 0, 4, nullptr},
        {"behind the file", 1, 1, 4, nullptr},
        {"far ahead", 1 << 30, 1 << 30, 4, nullptr},
        {"end far ahead", 3, 1 << 30, 4, nullptr},
        {"below 0", -5, 4, 4, "a=R,f=%d,r=-5) -> Buiten bestand"},
        {"outside", 900, 4, 4, "r=900) -> Buiten bestand"},
        {"a record in use", 1, 4, 4, "r=1) -> Prijzenbestand inconsistent"},
        {"goes round", 3, 4, 3, "r=3) -> Prijzenbestand inconsistent"},
        {"goes astray", 3, 4, 0, "r=0) -> Prijzenbestand inconsistent"},
    };
    const auto klaar = [] {
        opnieuw();
        EXPECT_TRUE(zet(100, 200, 5));
        twee_vrije();
    };
    klaar();
    const std::string heel = lees_bestand("DTIPG.TXT") + lees_bestand("DTSYS.TXT");
    EXPECT_EQ(ink_herstel(), 0);
    EXPECT_EQ(lees_bestand("DTIPG.TXT") + lees_bestand("DTSYS.TXT"), heel) << "a sound chain stays";
    zet_getal("DTSYS.TXT", 8 * 64, 4); // no free ones: the next comes at the end
    for (const int records : {2, 1}) { // the set's are 0 and 1
        EXPECT_EQ(truncate("DTIPG.TXT", records * 40), 0);
        EXPECT_EQ(ioink_past(4), records == 2) << "a set leads behind the file";
    }
    for (const auto& s : standen) {
        SCOPED_TRACE(s.wat);
        klaar();
        ioink_close();
        zet_getal("DTSYS.TXT", 8 * 64, s.kop);
        zet_getal("DTSYS.TXT", 8 * 64 + 4, s.hoogste);
        zet_getal("DTIPG.TXT", 2 * 40 + 36, s.volgende);
        const std::string inhoud = lees_bestand("DTIPG.TXT");
        const auto afloop = in_proces([&] {
            open();
            ioink_open(2);
            const bool past = ioink_past(4) == (!s.stop && s.hoogste < 1 << 30);
            const bool goed = zet(201, 210, 6, 4);
            ioink_close();
            return !past ? 6 : goed ? 7 : 8;
        });
        EXPECT_NE(afloop.status, 6) << "said before anything is written";
        ioink_open(2);
        inktelling t;
        EXPECT_EQ(!ink_controle(&t).empty(), s.stop != nullptr);
        EXPECT_GE(ink_herstel(), 0);
        EXPECT_EQ(verloren(), 0);
        EXPECT_EQ(tekst(dagen()).substr(0, 18), s.stop ? "90=0 100=5 201=0 " : "90=0 100=5 201=6 ")
            << afloop.uitvoer;
        if (s.stop) {
            EXPECT_EQ(afloop.status, 1);
            EXPECT_TRUE(bevat(afloop.uitvoer, strchr(s.stop, 'r')));
            EXPECT_EQ(lees_bestand("DTIPG.TXT").substr(0, 80), inhoud.substr(0, 80));
        }
    }
}

TEST_F(Prijzen, TwoPrograms) {
    EXPECT_TRUE(zet(100, 200, 5));
    // One that writes keeps others from writing, and readers see old or new prices and no warning meanwhile.
    Agent schrijver([](const std::string& opdracht) {
        static bool geopend = false;
        if (!geopend) {
            open();
            ioink_close();
            ioink_open(2);
            geopend = true;
        }
        bool goed = true;
        for (int i = 0; i < 1000; i++)
            goed = goed && zet(100 + i % 3, 200, 6 + i % 2, 1 + i % 4);
        return opdracht + (goed ? " good" : " refused");
    });
    testing::internal::CaptureStderr();
    std::string antwoord = schrijver.vraag("write", 1);
    bool anders = false;
    for (int i = 0; i < 4000; i++) {
        prijsset s;
        prijsgroepen g;
        anders = anders || ioink_find(SERIE, LEV, 150, &s, &g) != Prijsset::gelezen;
        if (i % 400 == 0)
            EXPECT_TRUE(zet(180, 181 + i % 3, 8));
    }
    EXPECT_FALSE(anders);
    if (antwoord == Agent::geen_antwoord)
        antwoord = schrijver.antwoord(60'000);
    EXPECT_EQ(antwoord, "write good");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(verloren(), 0);
}

} // namespace
} // namespace zg::test
