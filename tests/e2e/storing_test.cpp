// A header that the disk refuses, in the real program: the call is refused by strace, which counts those on the
// supplier's files only. A full disk, or a kill, at every single write: tests/order.
#include "e2e/loop.h"
#include <gtest/gtest.h>

using namespace zg::test;

// Told, and screen and files have the old one; the same change is accepted later.
TEST(Storing, KopGeweigerdDoorVolleSchijf) {
    Datamap map;
    auto order = [](const char* naam, int dagen) {
        return maak_order(maak_kop(naam, static_cast<uint16_t>(WERKDATUM - dagen)),
                          {{5, "A", "D1"}, {5, "A", "D2"}, {5, "B", "D3"}}, "Franco");
    };
    const std::string voor = order("Eerst", 1), achter = order("Laatst", 9);
    map.journaal(voor + order("Mijn", 5) + achter);
    std::vector<std::string> argv = {"strace", "-D", "-f", "-qq", "-o", map.bestand("strace.out")};
    for (const char* ext : {"JRN", "WRK", "TMP", "ORS", "ACT"})
        for (std::string pad : {std::string("2016Z/"), map.bestand("2016Z/"), std::string()})
            argv.insert(argv.end(), {"-P", pad + "ORD0012." + ext});
    // The first is the index of lines.
    argv.insert(argv.end(), {"-e", "trace=pwrite64", "-e", "inject=pwrite64:error=ENOSPC:when=2"});
    for (const std::string& a : map.overgave())
        argv.push_back(a);
    Terminal t(argv, map.opties());
    t.wacht_op(1, 46, "2016");
    t.toetsen("<Enter><Enter>12<Enter><Down><Enter>WOOZomer<Enter>G5<Enter><Esc>");
    t.wacht("schijf vol");
    t.toetsen("<Enter>");
    t.wacht("0 / Mijn");
    EXPECT_EQ(t.stuk(5, 52, 8), "   0.00%");
    t.toetsen("WOOZomer<Enter><Esc>");
    t.wacht("0 / Zomer");
    t.toetsen("<Esc><Esc><Esc>");
    EXPECT_EQ(t.einde(10000), 0) << t.scherm();
    EXPECT_TRUE(map.journaal() == voor + order("Zomer", 5) + achter);
    EXPECT_EQ(map.restjes(), "");
}
