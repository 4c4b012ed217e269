// A header that the disk refuses, in the real program: the call is refused by strace, which counts those on the
// supplier's files only. A full disk, or a kill, at every single write: tests/order.
#include "e2e/loop.h"

using namespace zg::test;

// Each is told, and screen and file have what was; the same keys are accepted later. The first write in place is that
// of the index of lines, the first two in order those of work file and mark.
TEST(Storing, GeweigerdDoorVolleSchijf) {
    const struct {
        const char *wat, *toetsen, *weigering;
        int rij, kolom;
        const char *oud, *nieuw; // on the screen
    } gevallen[] = {
        {"the header", "WOOZomer<Enter>G5<Enter><Esc>", "pwrite64:error=ENOSPC:when=2", 5, 14, "0 / Mijn",
         "0 / Zomer"},
        {"a change", "WDDANDERS<Enter><Esc>", "write:error=ENOSPC:when=3", 8, 36, "D1 ", "ANDERS"},
        {"a line", "TX<Enter>10001<Enter><Esc>2<Enter><Esc>S<Enter><Enter>9<Enter><Esc><Esc><Esc>",
         "write:error=ENOSPC:when=3", 4, 58, "3", "4"},
        {"a duplicate", "D<Enter>2<Enter><Esc><Esc>A<Esc>", "write:error=ENOSPC:when=3", 4, 58, "3", "4"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
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
        argv.insert(argv.end(), {"-e", "trace=write,pwrite64", "-e", std::string("inject=") + g.weigering});
        for (const std::string& a : map.overgave())
            argv.push_back(a);
        Terminal t(argv, map.opties());
        t.wacht_op(1, 46, "2016");
        t.toetsen("<Enter><Enter>12<Enter><Down><Enter>");
        t.toetsen(g.toetsen, "schijf vol");
        t.toetsen("<Enter>", g.rij, g.kolom, g.oud);
        EXPECT_EQ(t.stuk(5, 52, 8), "   0.00%");
        t.toetsen(g.toetsen, g.rij, g.kolom, g.nieuw);
        t.toetsen("<Esc><Esc><Esc>");
        EXPECT_EQ(t.einde(10000), 0) << t.scherm();
        const std::string na = map.journaal();
        EXPECT_TRUE(na.substr(0, voor.size()) == voor && na.ends_with(achter));
        EXPECT_EQ(map.restjes(), "");
    }
}
