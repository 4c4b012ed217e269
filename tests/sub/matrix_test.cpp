// Quantities in a grid, as a buyer enters them: totals, branches, dividing, key by key.
#include "sub/matrixinvoer.h"
#include "support/systeem.h"
#include "term/gesprek.h"
#include <numeric>

namespace zg::test {
namespace {

struct Matrix : Systeem {
    struct Stuks {
        int filiaal, maat, aantal;
    };
    mthandle balk;
    aantalmatrix m;
    Matrixscherm s;

    // Branches with numbers from 1, sizes "31" and up on the bar.
    void begin(int filialen, int maten, const std::vector<Stuks>& stuks) {
        std::vector<int> nummers(static_cast<size_t>(filialen));
        std::iota(nummers.begin(), nummers.end(), 1);
        maak_filialen(nummers);
        s = {};
        zet_balk(&balk, maten);
        fmclear(&m);
        for (const Stuks& st : stuks)
            fmadd(&m, st.filiaal, st.maat, st.aantal);
    }
    ~Matrix() override { maatbalk = nullptr; }
    // 'T' totals, 'H' by hand, 'V' divided from the first branch; small letters key by key. Then each row's sum
    // and sizes.
    std::string werk(char hoe) {
        const int hoogte = firma.filialen == 1 ? 8 : std::min(firma.filialen + 9, SCHERM.lines - 9);
        WINOPEN1(6, 1, hoogte, 80);
        WINBOX("AANTALLEN");
        s.sneltoetsen = islower(hoe) ? "QWERTY" : nullptr;
        matrix_begin(&s, 2, hoogte - 7, m);
        matrix_teken(&s, m);
        if (toupper(hoe) == 'T')
            matrix_totalen(&s, &m);
        else if (toupper(hoe) == 'H')
            matrix_hand(&s, &m);
        else
            matrix_verdeel(&s, &m, 0, firma.filialen - 1);
        const int laatste = SCHERM.laatste;
        WINCLOSE();
        std::string t;
        for (int f = 0; f <= firma.filialen; f++)
            for (int maat = 0; maat <= std::min(balk_kolommen(), 3); maat++)
                t += vorm(maat ? "%d " : "%d:", matrix_cel(m, f, maat));
        return t + vorm("%d", laatste);
    }
};

// Keys of which the last leaves the screen, with what must stand somewhere before it; then the matrix and that key.
TEST_F(Matrix, InvoerZoalsEenInkoper) {
    struct Rij {
        const char* hoe;     // and branches
        std::string stappen; // keys | what is seen then | keys
        const char* uit;
        std::vector<Stuks> begin = {};
    };
    const Rij RIJEN[] = {
        // a number is proposed for the next size; the last one ends
        {"T2", "12<Enter><Enter>|24|7<Enter>", "31:12 12 7 0:0 0 0 31:12 12 7 10"},
        // what is only passed is not entered
        {"T2", "5<Enter><Right>|5|<Enter>", "10:5 0 5 0:0 0 0 10:5 0 5 10"},
        // no cell below 0
        {"T2", "2<Enter>|<2> Minimaal 3|3<Enter><Esc>", "0:0 0 0 3:3 0 0 3:3 0 0 27", {{0, 1, 4}, {1, 1, 3}}},
        // one branch: no rows
        {"T1", "5<Enter>|5    5 ____|<Esc>", "5:5 0 0 5:5 0 0 27", {{0, 1, 4}}},
        // ESC takes nothing
        {"T2", "1<Enter>44|44|<Esc>", "1:1 0 0 0:0 0 0 1:1 0 0 27"},
        // ENTER goes along the row
        {"H2", "1<Enter>2<Enter>3<Enter>4<Enter>|<TAB> voor totalen|<Esc>", "6:1 2 3 4:4 0 0 10:5 2 3 27"},
        // the totals and back
        {"H2", "<Down><Tab>6<Enter>|6|<Tab>2<Tab><Esc>", "6:6 0 0 2:0 2 0 8:6 2 0 27"},
        // the last cell ends
        {"H2", "<Down><Right><Right>|tot|9<Enter>", "0:0 0 0 9:0 0 9 9:0 0 9 10"},
        // an entry refused with TAB stays
        {"H2", "<Tab>1<Tab>|<1> Minimaal 3|5<Enter><Esc>", "2:2 0 0 3:3 0 0 5:5 0 0 27", {{1, 1, 3}}},
        // too much
        {"V2",
         "8<Enter>5<Enter><Esc>|Meer stuks in filialen dan|<Down>2<Enter><Esc>",
         "8:8 0 0 2:2 0 0 10:10 0 0 27",
         {{0, 1, 10}}},
        // more than there is
        {"V2",
         "12<Enter>|<12> Maximaal 10 beschikbaar|<Esc>",
         "0:0 0 0 10:10 0 0 10:10 0 0 27",
         {{0, 1, 10}}},
        // a size without pieces; one that isn't on the bar stays
        {"V2", "1<Enter>|Maat zonder aantallen|<Esc>", "7:0 0 0 0:0 0 0 7:0 0 0 27", {{0, 5, 7}}},
        // a branch takes all, and what is left to the rest
        {"V2",
         "10<Enter>10<Enter>|+-     4         4|<Esc>",
         "0:0 0 0 14:10 4 0 14:10 4 0 27",
         {{0, 1, 10}, {0, 2, 4}}},
        // step and letters
        {"t2", "5qq-w|<-5> Minimaal 0|=w999e<Esc>", "1010:10 1 999 0:0 0 0 1010:10 1 999 27"},
        // the most of a total
        {"t2", "999q|Maximaal 999|<Esc>", "1:1 0 0 0:0 0 0 1:1 0 0 27", {{0, 1, 1}}},
        // no F5 over quantities
        {"t2", "<F5>|Ongeldige toets|<Esc>", "1:1 0 0 0:0 0 0 1:1 0 0 27", {{0, 1, 1}}},
        // F5 while empty
        {"t2", "|<F5> voor voorverdeling|<F5>", "0:0 0 0 0:0 0 0 0:0 0 0 269"},
        // a step of three digits
        {"h2", "<Down>12q1234|<4> Alleen -, =, 1-9|e<Esc>", "0:0 0 0 135:12 0 123 135:12 0 123 27"},
        // letters of what is on the screen
        {"h2", "r|<r> Alleen -, =, 1-9 of Q-E|<Esc>", "0:0 0 0 0:0 0 0 0:0 0 0 27"},
        // from the source, and back
        {"v2", "<Down>2qq|Maat reeds verdeeld|-q=q<Esc>", "2:2 0 0 1:1 0 0 3:3 0 0 27", {{0, 1, 3}}},
        // the source itself
        {"v2", "q<Down>w|Maat zonder aantallen|<Esc>", "4:4 0 0 0:0 0 0 4:4 0 0 27", {{0, 1, 3}}},
    };
    for (const Rij& rij : RIJEN) {
        SCOPED_TRACE(rij.stappen);
        begin(rij.hoe[1] - '0', 3, rij.begin);
        Gesprek t([&] { return werk(rij.hoe[0]); });
        const size_t een = rij.stappen.find('|'), twee = rij.stappen.rfind('|');
        t.toetsen(rij.stappen.substr(0, een), rij.stappen.substr(een + 1, twee - een - 1));
        EXPECT_EQ(t.antwoord(rij.stappen.substr(twee + 1)), rij.uit);
    }
}

// 250 branches: the page of rows, marks, and columns that follow the totals over 1,000 and 10,000.
TEST_F(Matrix, KolommenWordenBreder) {
    begin(250, 15, {{0, 1, 999}, {200, 2, 9990}});
    matrix_cel(m, 1, 3) = matrix_cel(m, 1, 0) = 1'000'000; // rows that don't fit their column
    filiaalrec honderd{};
    honderd.nummer = 100; // which can't move to the left
    iofil('W', 3, &honderd);
    matrix_cel(m, 3, 0) = 12'345;
    const uint8_t uit[32] = {4};
    s.uitgesloten = uit;
    s.meest = 12'000;
    Gesprek t([&] { return werk('H'); });
    stappen(t, {{"",
                 {{8, 2, "fil  tot   31   32"},
                  {9, 4, "1  999 "},
                  {10, 4, "2    *              *"},
                  {11, 4, "3*"},
                  {12, 2, "100    *"},
                  {16, 2, "   10989  999 9990"}}},
                {"<PgDn><Up><Right>11<Enter>",
                 {{8, 2, "fil  tot    31    32"}, {15, 4, "7   11"}, {16, 13, "999 10001"}}},
                {"12000<Enter>", {{25, 1, "<12000> Maximaal 1000"}}},
                {"1000<Enter><F8>", {{8, 14, "<<    41"}, {16, 5, "12000 12000"}}}});
    t.toetsen("<Esc>");
    t.antwoord();
}

} // namespace
} // namespace zg::test
