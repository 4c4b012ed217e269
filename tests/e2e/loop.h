// The program at its season prompt, and the short ways to an order that cases need.
#pragma once
#include "e2e/datamap.h"

namespace zg::test {

struct Programma {
    Terminal t;
    explicit Programma(Datamap& map, int sessie = SESSIE, const char* gebruiker = "Joke")
        : Programma(map.overgave(sessie, gebruiker), map.opties()) {}
    Programma(const std::vector<std::string>& argv, const Opties& opties) : t(argv, opties) {
        t.wacht_op(1, 46, "2016");
        t.kalm();
    }
    // Season and supplier; an order list or the date prompt is next.
    void leverancier(int nummer = 12) { t.toetsen("<Enter><Enter>" + std::to_string(nummer) + "<Enter>"); }
    // The first order of the list on the line screen.
    void eerste_order(int nummer = 12) {
        leverancier(nummer);
        t.wacht("</> voor nieuwe order");
        t.toetsen("<Enter>", 24, 1, "Uw keuze");
    }
    // By these keys to the season prompt, and to the end.
    void uit(std::string_view reeks = "") {
        if (!reeks.empty())
            t.toetsen(reeks);
        t.kalm();
        t.reeks("<Esc>");
        EXPECT_EQ(t.einde(), 0) << t.scherm();
    }
};

// A journal of supplier 12 in a directory of its own, and its first order on the line screen.
struct Orderscherm : Datamap, Programma {
    explicit Orderscherm(const std::string& jrn) : Programma((journaal(jrn), static_cast<Datamap&>(*this))) {
        eerste_order();
    }
};

} // namespace zg::test
