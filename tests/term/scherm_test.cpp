// The screen against a terminal emulator: start and end, windows, text, status line, variants, hang-ups.
#include "support/terminal.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <gtest/gtest.h>

using namespace zg;
using namespace zg::test;

TEST(Scherm, WindowRestoresWhatItCovered) {
    Terminal t([] {
        SCRINIT();
        SCRPUT(A_WAARDE, 10, 10, "M\x9Bller & S\x9Bn onder het venster");
        TOETS();
        WINOPEN1(9, 12, 4, 20);
        WINBOX("%s", " Titel ");
        SCRPUT(A_LABEL, 1, 1, "binnen");
        TOETS();
        WINCLOSE();
        TOETS();
        SCREXIT();
        return 0;
    });
    t.kalm();
    std::string voor = t.scherm();
    EXPECT_EQ(t.stuk(10, 10, 12), "Møller & Søn");
    t.toetsen("x");
    EXPECT_EQ(t.stuk(9, 12, 20), "┌───── Titel ──────┐");
    EXPECT_EQ(t.stuk(10, 12, 7), "│binnen");
    t.toetsen("x");
    EXPECT_EQ(t.scherm(), voor);
    t.stuur("x");
    EXPECT_EQ(t.einde(), 0);
}
