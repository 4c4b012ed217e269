// The progress bar on a terminal: window and status line, columns that only grow, and what lay below.
#include "store/voortgang.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <gtest/gtest.h>
#include <unistd.h>

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

TEST(Voortgang, window_and_status_line) {
    Terminal t([] {
        SCRINIT();
        SCRPUT(A_WAARDE, 23, 10, "eronder");
        VOORTGANG(VG_OPEN, 0, 0, " Herbouw ");
        for (auto [waarde, totaal] :
             {std::pair<int64_t, int64_t>{0, 200}, {100, 200}, {50, 200}, {1LL << 61, 1LL << 61}}) {
            VOORTGANG(VG_TOON, waarde, totaal);
            TOETS();
        }
        VOORTGANG(VG_SLUIT);
        VOORTGANG(VG_SLUIT);
        VOORTGANG(VG_TOON, 1, 2); // no bar: nothing happens
        TOETS();
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
    EXPECT_NE(t.regel(22).find(" Herbouw "), std::string::npos);
    EXPECT_EQ(t.stuk(23, 1, 3), "│■■");
    // Highlighted cells of the window and of the status line, and what each shows.
    const struct {
        int venster, status;
        const char *op23, *op25;
    } verwacht[] = {{0, 0, "", ""},        {39, 0, "", ""},       {39, 0, "", ""},
                    {78, 0, "", ""},       {0, 0, "eronder", ""}, {0, 39, "eronder", "Bezig met lezen"},
                    {0, 0, "eronder", ""}, {0, 19, "", ""}};
    for (const auto& v : verwacht) {
        for (int i = 0; i < 200 && (vol(t, 23) != v.venster || vol(t, 25) != v.status); i++) {
            usleep(10'000); // a busy machine: the key is on its way
            t.kalm();
        }
        EXPECT_EQ(vol(t, 23), v.venster);
        EXPECT_EQ(vol(t, 25), v.status);
        EXPECT_NE(t.regel(23).find(v.op23), std::string::npos) << t.scherm();
        EXPECT_TRUE(v.status ? t.regel(25).find(v.op25) != std::string::npos : t.regel(25).empty())
            << t.scherm();
        t.toetsen("x");
    }
    EXPECT_EQ(t.einde(), 0);
}
