// Pre-distributions: the records of a number, what fits, free numbers, refused writes, and a buyer at the list.
#include "sub/voorverd.h"
#include "sub/vvdeel.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

using Getallen = std::vector<int>;

struct Voorverd : Systeem {
    mthandle balk{};
    aantalmatrix m;

    // Five branches, sizes 1 to 3 of type 4.
    Voorverd() {
        maak_filialen({1, 2, 3, 14, 20});
        zet_balk(&balk, 3);
        zet(4, tekst20{"Jeans"}, SYS_MAATSOORT);
        paar({"k1,NODUPS,I,1,1,I,3,4,I,5,6"});
    }
    ~Voorverd() override {
        IXCLOSE(dtvvtab);
        dtvvtab = nullptr, maatbalk = nullptr;
    }
    void paar(std::vector<std::string> sleutels) {
        if (dtvvtab)
            IXCLOSE(dtvvtab);
        sleutels.insert(sleutels.begin(), "voorverdeling,424");
        dtvvtab = nieuw_paar("DTVVTAB", sleutels, 2);
    }
    // Rows of a table by branch, sizes 1 to 3.
    static aantalmatrix tabel(const std::vector<Getallen>& rijen) {
        aantalmatrix t;
        fmclear(&t);
        for (size_t f = 0; f < rijen.size(); f++)
            for (size_t i = 0; i < rijen[f].size(); i++)
                fmset(&t, static_cast<int>(f), static_cast<int>(i) + 1, rijen[f][i]);
        return t;
    }
    static vvrec rec(uint16_t nummer, uint16_t volgnummer, uint8_t filialen, const Getallen& rij) {
        vvrec r{};
        r.maatsoort = 4, r.nummer = nummer, r.volgnummer = volgnummer;
        r.filialen[0] = filialen;
        for (size_t i = 0; i < rij.size(); i++)
            r.aantal[i + 1] = rij[i], r.aantal[0] += rij[i];
        return r;
    }
    // What the file holds: "number.sequence:branches=row".
    static std::string op_schijf() {
        std::string uit;
        vvrec r{};
        uint8_t buf[IXRECMAX] = {};
        for (int er = IXFIRST(dtvvtab, buf); er; er = IXNEXT(dtvvtab, buf)) {
            stam_uit(buf, dtvvtab->h.reclen, &r);
            uit += vorm("%d.%d:%x=%d,%d,%d,%d ", r.nummer, r.volgnummer, r.filialen[0], r.aantal[0],
                        r.aantal[1], r.aantal[2], r.aantal[3]);
        }
        return uit;
    }
};

TEST_F(Voorverd, GelijkeFilialenDelenEenRecord) {
    for (const char* tweede : {"", "k2,I,1,1,I,3,4"}) {
        std::vector<std::string> sleutels{"k1,NODUPS,I,1,1,I,3,4,I,5,6"};
        if (*tweede)
            sleutels.push_back(tweede);
        paar(sleutels);
        const std::vector<Getallen> rijen{{1, 2}, {0, 0, 3}, {1, 2}, {}, {1, 2}};
        EXPECT_TRUE(vv_bewaren(4, 7, tabel(rijen)));
        EXPECT_TRUE(vv_bewaren(4, 9, tabel({{9}})));
        EXPECT_EQ(op_schijf(), "7.1:15=3,1,2,0 7.2:2=3,0,0,3 9.1:1=9,9,0,0 ");
        EXPECT_TRUE(vv_laden(4, 7, &m, nullptr));
        EXPECT_EQ(m, tabel(rijen));
        EXPECT_TRUE(vv_bewaren(4, 7, tabel({{1, 2}, {}, {1, 3}, {}, {1, 2}}))) << "one branch apart";
        EXPECT_EQ(op_schijf(), "7.1:11=3,1,2,0 7.2:4=4,1,3,0 9.1:1=9,9,0,0 ");
        EXPECT_TRUE(vv_bewaren(4, 7, tabel({})));
        EXPECT_EQ(op_schijf(), "9.1:1=9,9,0,0 ");
    }
}

TEST_F(Voorverd, WatPast) {
    vv_bewaren(4, 1, tabel({{2, 2}, {2, 2}, {5, 0, 1}}));
    const struct {
        const char* waarom;
        std::vector<Getallen> order;
        uint8_t uitgesloten;
        int rest;
        bool past;
    } rijen[] = {
        {"just enough", {{9, 4, 1}}, 0, 4, true},
        {"one short of size 1", {{8, 4, 1}}, 0, 4, false},
        {"a size without an order", {{9, 0, 0}}, 0, 4, true},
        {"the rest takes what there is", {{4, 4}}, 0, 2, true},
        {"without the excluded", {{7, 2, 1}}, 1, 4, true},
    };
    for (const auto& [waarom, order, uitgesloten, rest, past] : rijen) {
        const aantalmatrix totaal = tabel(order);
        const Vvpassing passing{matrix_totalen(totaal), &uitgesloten, rest};
        EXPECT_EQ(vv_laden(4, 1, &m, &passing), past) << waarom;
    }
}

// Whatever stands in the file, a table comes out whose sums are right.
TEST_F(Voorverd, BeschadigdeRecords) {
    schrijf(dtvvtab, rec(3, 2, 0x3, {4, -7, 100'000}));
    schrijf(dtvvtab, rec(3, 5, 0xE2, {1, 1, 1})); // branch 1 again, and three beyond the firm
    schrijf(dtvvtab, rec(0, 1, 1, {1}));
    schrijf(dtvvtab, rec(500, 1, 1, {1}));
    EXPECT_EQ(vv_nummers(4), std::vector<uint16_t>{3});
    EXPECT_TRUE(vv_laden(4, 3, &m, nullptr));
    EXPECT_EQ(m, tabel({{4}, {1, 1, 1}}));
    EXPECT_TRUE(vv_bewaren(4, 3, m)) << "the gaps go";
    EXPECT_EQ(op_schijf(), "0.1:1=1,1,0,0 3.1:1=4,4,0,0 3.2:2=3,1,1,1 500.1:1=1,1,0,0 ");
    // Of two records with all branches and sizes the second counts, not both: no sum that is too large.
    firma.filialen = 250;
    zet_balk(&balk, MATEN);
    vvrec alle = rec(8, 0, 0, {});
    memset(alle.filialen, 0xFF, sizeof alle.filialen);
    for (const int32_t stuks : {80'000, 80'001}) {
        alle.volgnummer++;
        for (int maat = 1; maat <= MATEN; maat++)
            alle.aantal[maat] = stuks;
        schrijf(dtvvtab, alle);
    }
    EXPECT_TRUE(vv_laden(4, 8, &m, nullptr));
    EXPECT_EQ(matrix_cel(m, 249, MATEN), 80'001);
}

TEST_F(Voorverd, EenNummerDatEenAnderHeeftIsNietVrij) {
    vv_bewaren(4, 1, tabel({{1}}));
    Agent ander([] {
        dtvvtab = IXOPEN("DTVVTAB", 2);
        return vv_grijp_vrije(4) == 2;
    });
    ASSERT_TRUE(ander.ok());
    EXPECT_EQ(vv_grijp_vrije(4), 3);
    vv_laatlos(4, 3);
    ander.dood();
}

// Each write of a change refused: told, and the number stands as it did. Killed: rows of the old and the new may stand, each
// whole. Another number is as it was.
TEST_F(Voorverd, GeweigerdEnGedoodBijElkeSchrijfactie) {
    vv_bewaren(4, 1, tabel({{1}, {2}, {3}}));
    vv_bewaren(4, 2, tabel({{5}, {6}}));
    const std::string oud = op_schijf();
    const auto heropen = [](bool gedood) {
        IXCLOSE(dtvvtab);
        std::vector<std::string> gewist;
        EXPECT_TRUE(!gedood || IXBLDIX("DTVVTAB", &gewist) == 1);
        dtvvtab = IXOPEN("DTVVTAB", 2);
    };
    const auto bewaar = [&] {
        heropen(false);
        return vv_bewaren(4, 1, tabel({{9}, {8}, {7}, {6}})) ? 1 : 0;
    };
    bij_elke_schrijf({"DTVVTAB.INX", "DTVVTAB.TXT"}, 1, bewaar, [&](const Storing& st) {
        heropen(st.dood && !st.klaar);
        EXPECT_EQ(st.status == 1, st.klaar);
        EXPECT_TRUE(st.dood || st.klaar || op_schijf() == oud) << op_schijf();
        vv_laden(4, 1, &m, nullptr);
        for (int f = 0; f < 5; f++) {
            const int nu = matrix_cel(m, f, 1), nieuw = f < 4 ? 9 - f : 0, was = f < 3 ? f + 1 : 0;
            EXPECT_TRUE(nu == nieuw || (!st.klaar && nu == was)) << f << " " << nu;
        }
        vv_laden(4, 2, &m, nullptr);
        EXPECT_EQ(m, tabel({{5}, {6}}));
    });
}

// On an empty table and on totals, from nothing on.
TEST_F(Voorverd, EenInkoperBijDeLijst) {
    uint8_t uit[32] = {2};
    const aantalmatrix leeg = tabel({}), vol = tabel({{}, {5, 5}, {5, 0, 1}});
    auto lijst = [&](const aantalmatrix& begin, bool totalen) {
        return [&, totalen] {
            open();
            IXCLOSE(dtvvtab);
            dtvvtab = IXOPEN("DTVVTAB", 2);
            aantalmatrix t = begin;
            const bool ja = totalen ? vv_verdelen(4, "SWTV", uit, 3, &t) : vv_kiezen(4, "SWTV", uit, &t);
            std::string tekst = ja ? "ja " : "nee ";
            for (int f = 0; f <= 5; f++)
                tekst += vorm("%d:%d,%d,%d ", matrix_cel(t, f, 0), matrix_cel(t, f, 1), matrix_cel(t, f, 2),
                              matrix_cel(t, f, 3));
            return tekst + op_schijf();
        };
    };
    Gesprek nieuw(lijst(leeg, false));
    nieuw.wacht("toevoegen filiaalverdeling  1, maatsoort 4 Jeans");
    nieuw.toetsen("1<Enter>1<Enter>1<Enter>2<Enter><Esc>T3<Enter><Esc>");
    nieuw.wacht(" filiaalverdelingen, maatsoort 4 Jeans ");
    nieuw.wacht("  2    3    3");
    nieuw.toetsen("1<Enter><Enter>");
    EXPECT_EQ(nieuw.antwoord().substr(0, 66),
              "ja 3:1,1,1 0:0,0,0 0:0,0,0 0:0,0,0 0:0,0,0 3:1,1,1 1.1:1=3,1,1,1 1");
    EXPECT_EQ(op_schijf(), "1.1:1=3,1,1,1 1.2:2=2,2,0,0 2.1:1=3,3,0,0 ");

    Gesprek totalen(
        lijst(vol, true)); // 10, 5 and 1: both fit; changed to too much, the second is listed no more
    totalen.toetsen("<Down>W20<Enter><Esc>");
    totalen.weg("  2    3    3");
    totalen.toetsen("R<Esc><Enter>");
    EXPECT_EQ(totalen.antwoord().substr(0, 51), "ja 3:1,1,1 0:0,0,0 0:0,0,0 13:9,4,0 0:0,0,0 16:10,5");

    Gesprek weg(lijst(leeg, false));
    weg.toetsen("2<Enter>VN<Enter>VJ<Enter>VJ<Enter>");
    EXPECT_EQ(weg.antwoord(), "nee 0:0,0,0 0:0,0,0 0:0,0,0 0:0,0,0 0:0,0,0 0:0,0,0");
}

} // namespace
} // namespace zg::test
