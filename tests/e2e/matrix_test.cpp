// The order matrix on the screen: colours by size of a model or an article group over two size types.
#include "e2e/loop.h"
#include "term/gesprek.h"

using namespace zg::test;

namespace {

// A line of sizes 1 to `maten` at 10.00, n pieces of size n, the last one in a second branch and term.
std::string regel(int kleur, const char* kenmerk, int maten) {
    zg::orddessin d = een_dessin("", kleur, maten);
    zg::VASTIN(d.kenmerk, kenmerk);
    std::string prijzen, term = rec_term(42440, 42450);
    for (int maat = 1; maat <= maten; maat++) {
        prijzen += rec_maat(maat, 1200, 1000);
        term += (maat == maten ? rec_term(42460, 42470) : "") + rec_cel(maat == maten ? 2 : 0, maat, maat);
    }
    return record('D', d) + prijzen + term;
}

} // namespace

TEST(Matrix, TweeMaatsoorten) {
    std::string order = record('O', maak_kop("Matrix")) + rec_model(5, "POLO", 2);
    for (int kleur = 40; kleur >= 1; kleur--)
        order += regel(kleur, "", 13);
    order += rec_model(5, "ROK", 3) + regel(7, "b", 25) + rec_model(5, "POLO", 3, 20000) + regel(7, "C", 25) +
             regel(7, "b", 25) + regel(7, "A", 25) + regel(7, "b", 25);
    Orderscherm p(order);
    const std::string regels = p.t.scherm();

    // The model: 40 colours and their total on three screens of thirteen sizes, then the other type.
    stappen(p.t, {{"M", {{8, 60, "┌── matrix order"}}},
                  {"1",
                   {{3, 2, " Model  POLO"},
                    {4, 67, "Scherm 1/4"},
                    {5, 2, " kl km   tot      30   31   32   33   34   35   36   37   38   39   40   41 >>"},
                    {6, 2, "  1       91       1    2    3    4    5    6    7    8    9   10   11   12"},
                    {22, 2, " 17       91"},
                    {23, 36, "Netto    49400.00 EUR    Inkoop    49400.00"}}},
                  {"R", {{5, 2, " kl km   tot <<   42  "}, {6, 2, "  1       91      13  "}}},
                  {"<PgDn><PgDn>",
                   {{4, 67, "Scherm 3/4"},
                    {11, 2, " 40       91      13  "},
                    {12, 2, "***     3640     520  "},
                    {13, 2, "      "}}}});
    const int bellen = p.t.bellen();
    p.t.toetsen("R");
    EXPECT_EQ(p.t.bellen(), bellen + 1) << "no column lies beyond";
    stappen(p.t, {{"<PgDn>",
                   {{4, 67, "Scherm 4/4"},
                    {5, 2, " kl km   tot      50   51"}, // its own columns, from the first
                    {6, 2, "  7 A    325       1    2"},
                    {7, 2, "  7 b    650       2    4"},
                    {8, 2, "  7 C    325"},
                    {9, 2, "***     1300       4    8"}}},
                  {"R", {{5, 2, " kl km   tot <<   62   63"}, {5, 77, " >>"}}},
                  {"R", {{5, 2, " kl km   tot <<   74     "}, {9, 2, "***     1300     100     "}}},
                  {"L", {{5, 2, " kl km   tot <<   62   63"}}},
                  {"<F1>", {{10, 27, "PGUP  Vorig   scherm"}}}});
    p.t.toetsen("<Enter><Esc>");
    EXPECT_EQ(p.t.scherm(), regels) << "nothing is left, and the cursor's line is the same";

    // The article group goes over models, and is what the next call begins with after this one.
    stappen(p.t,
            {{"M2", {{3, 2, " Artg   10001 Jurken"}, {23, 36, "Netto    39650.00 EUR"}}},
             {"<PgDn><PgDn><PgDn>", {{4, 67, "Scherm 4/4"}, {6, 2, "  7 b    325"}, {7, 2, "***      325"}}},
             {"<PgDn><Esc>M<Enter>", {{3, 2, " Artg   10001"}}}});
    p.uit("<Esc><Esc>");
    EXPECT_EQ(p.journaal(), order);
}
