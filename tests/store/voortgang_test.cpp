// The progress bar on a terminal: window and status line, columns that only grow, and what lay below.
#include "store/voortgang.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <gtest/gtest.h>

using namespace zg;
using namespace zg::test;

namespace {

int vol(Terminal& t, int rij) { // highlighted cells of a row
    int n = 0;
    for (int k = 1; k <= 80; k++)
        n += t.cel(rij, k).keus;
    return n;
}

} // namespace

TEST(Voortgang, window_at_the_bottom) {
    Terminal t([] {
        SCRINIT();
        SCRPUT(A_WAARDE, 23, 10, "eronder");
        struct {
            int64_t waarde, totaal;
        } stappen[] = {{0, 200}, {100, 200}, {50, 200}, {int64_t{1} << 61, int64_t{1} << 61}};
        VOORTGANG(VG_OPEN, 0, 0, " Herbouw ");
        for (auto s : stappen) {
            VOORTGANG(VG_TOON, s.waarde, s.totaal);
            TOETS();
        }
        VOORTGANG(VG_SLUIT);
        VOORTGANG(VG_SLUIT);
        VOORTGANG(VG_TOON, 1, 2); // no bar: nothing happens
        TOETS();
        VOORTGANG(VG_OPEN, 0, 0, nullptr);
        VOORTGANG(VG_TOON, 0, 0);
        TOETS();
        VOORTGANG(VG_TOON, 7, 0); // a total of 0 counts as the value
        TOETS();
        SCREXIT();
        return 0;
    });
    const int verwacht[] = {0, 39, 39, 78};
    t.kalm();
    EXPECT_NE(t.regel(22).find(" Herbouw "), std::string::npos);
    EXPECT_EQ(t.stuk(23, 1, 3), "│■■");
    for (int n : verwacht) {
        EXPECT_EQ(vol(t, 23), n);
        t.toetsen("x");
    }
    EXPECT_EQ(t.stuk(23, 10, 7), "eronder");
    EXPECT_EQ(vol(t, 23), 0);
    t.toetsen("x");
    EXPECT_EQ(vol(t, 23), 0);
    t.toetsen("x");
    EXPECT_EQ(vol(t, 23), 78);
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 0);
}

TEST(Voortgang, status_line) {
    Terminal t([] {
        SCRINIT();
        VOORTGANG(VG_STATUSOPEN, 0, 0, "Bezig met lezen");
        VOORTGANG(VG_STATUSTOON, 1, 2);
        TOETS();
        VOORTGANG(VG_STATUSSLUIT);
        TOETS();
        VOORTGANG(VG_STATUSTOON, 1, 4); // opens it by itself
        TOETS();
        SCREXIT();
        return 0;
    });
    t.kalm();
    EXPECT_NE(t.regel(25).find("Bezig met lezen"), std::string::npos);
    EXPECT_EQ(vol(t, 25), 39);
    t.toetsen("x");
    EXPECT_EQ(t.regel(25), "");
    t.toetsen("x");
    EXPECT_EQ(vol(t, 25), 19);
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 0);
}

// Without a screen nothing is shown; a program's own painter hears every step.
TEST(Voortgang, painter_of_a_tool) {
    VOORTGANG(VG_OPEN, 0, 0, "stil");
    VOORTGANG(VG_TOON, 1, 2);
    static int stappen;
    VOORTGANGHAAK = [](int stap, int64_t waarde, int64_t, const char* tekst) {
        stappen += stap == VG_OPEN ? tekst[0] : static_cast<int>(waarde);
    };
    VOORTGANG(VG_OPEN, 0, 0, "A");
    VOORTGANG(VG_TOON, 5, 9);
    VOORTGANGHAAK = nullptr;
    VOORTGANG(VG_TOON, 7, 9);
    EXPECT_EQ(stappen, 'A' + 5);
}
