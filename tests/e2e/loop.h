// The program at its season prompt, and the short ways to an order that cases need.
#pragma once
#include "e2e/datamap.h"
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

namespace zg::test {

struct Programma {
    Terminal t;
    explicit Programma(Datamap& map, int sessie = SESSIE, const char* gebruiker = "Joke")
        : Programma(map, sessie, gebruiker, map.opties()) {}
    Programma(Datamap& map, int sessie, const char* gebruiker, const Opties& opties)
        : t(map.overgave(sessie, gebruiker), opties) {
        EXPECT_TRUE(t.wacht_op(1, 46, "2016")) << t.scherm();
        t.kalm();
    }
    // Season and supplier; an order list or the date prompt is next.
    void leverancier(int nummer = 12) { t.toetsen("<Enter><Enter>" + std::to_string(nummer) + "<Enter>"); }
    // The first order of the list on the line screen.
    void eerste_order(int nummer = 12) {
        leverancier(nummer);
        EXPECT_TRUE(t.wacht("</> voor nieuwe order")) << t.scherm();
        t.toetsen("<Enter>");
        EXPECT_TRUE(t.wacht_op(24, 1, "Uw keuze")) << t.scherm();
    }
    // From the season prompt to the end.
    void uit() {
        t.kalm();
        t.reeks("<Esc>");
        EXPECT_EQ(t.einde(), 0) << t.scherm();
    }
};

} // namespace zg::test
