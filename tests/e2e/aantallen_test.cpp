// The quantities of a line as a buyer enters them: delivery terms, spreading, and the records of the journal.
#include "e2e/loop.h"
#include "order/ioord.h"
#include "term/gesprek.h"

using namespace zg;
using namespace zg::test;

namespace {

struct Cel {
    int filiaal, maat, aantal;
};
struct Termijn {
    int van, tot;
    std::vector<Cel> cellen;
};

// An order of one model in four sizes: a line for each list of terms.
std::string order_van(const std::vector<std::vector<Termijn>>& regels) {
    ordmodel m{};
    m.merk = 5;
    VASTIN(m.model, "JURK");
    m.maatsoort = 1;
    m.artikelgroep = 10001;
    std::string uit = record('O', maak_kop("Aantallen")) + record('M', m);
    for (size_t i = 0; i < regels.size(); i++) {
        orddessin d{};
        VASTIN(d.dessin, "UNI");
        d.kleur = static_cast<uint16_t>(i + 1);
        d.maten[0] = 0x1E;
        uit += record('D', d);
        for (uint8_t maat = 1; maat <= 4; maat++)
            uit += record('S', ordmaat{maat, {}, 1000, 1000});
        for (const Termijn& t : regels[i]) {
            uit += record('L', ordlevt{static_cast<uint16_t>(t.van), static_cast<uint16_t>(t.tot)});
            for (const Cel& c : t.cellen)
                uit += record(
                    'F', ordfil{static_cast<uint8_t>(c.filiaal), static_cast<uint8_t>(c.maat), 0, c.aantal});
        }
    }
    return uit;
}

// What a journal has of each line: colour, and its terms with branch/size=pieces.
std::string termen_van(const std::string& jrn) {
    std::string uit;
    for (size_t p = 0; p < jrn.size(); p += 1 + static_cast<size_t>(ord_lengte(jrn[p]))) {
        if (jrn[p] == 'D') {
            orddessin d;
            memcpy(&d, &jrn[p + 1], sizeof d);
            uit += vorm("\n%u:", d.kleur);
        } else if (jrn[p] == 'L') {
            ordlevt l;
            memcpy(&l, &jrn[p + 1], sizeof l);
            uit += vorm(" %u-%u", l.eerste, l.laatste);
        } else if (jrn[p] == 'F') {
            ordfil f;
            memcpy(&f, &jrn[p + 1], sizeof f);
            uit += vorm(" %u/%u=%d", f.filiaal, f.maat, f.aantal);
        }
    }
    return uit;
}

} // namespace

// Weights 3, 2, 1. The second term goes on where the first stands.
TEST(Aantallen, TweeTermijnenVerdeeld) {
    Datamap map;
    map.journaal(order_van({{{42440, 42470, {{0, 1, 7}, {0, 2, 1}}}}}));
    Programma p(map);
    p.eerste_order();
    p.t.toetsen("WA");
    EXPECT_TRUE(p.t.wacht_op(7, 3, "Levertermijn")) << p.t.scherm();
    p.t.toetsen("A");
    EXPECT_TRUE(p.t.wacht_op(10, 2, "  2    3    2    1")) << p.t.scherm();
    p.t.toetsen("D<Enter>200416<Enter>T");
    EXPECT_TRUE(p.t.wacht("2/2")) << p.t.scherm();
    EXPECT_TRUE(p.t.wacht_op(9, 2, "  1    8    7    1")) << p.t.scherm();
    p.t.toetsen("A");
    EXPECT_TRUE(p.t.wacht_op(9, 2, "  1    4    3    1")) << p.t.scherm();
    p.t.toetsen("L120316<Enter>210416<Enter>-");
    EXPECT_TRUE(p.t.wacht_op(7, 17, "110316 - 100416   1/2")) << p.t.scherm();
    p.t.toetsen("N");
    EXPECT_TRUE(p.t.wacht("2 levertermijnen")) << p.t.scherm();
    EXPECT_EQ(p.t.stuk(12, 2, 20), "tot   16   14    2  ") << p.t.scherm();
    p.t.toetsen("<Enter>+<F5>");
    EXPECT_TRUE(p.t.wacht("12   010316 120316 210416        8")) << p.t.scherm();
    p.t.toetsen("<Enter><Esc><Esc>");
    p.uit();
    EXPECT_EQ(map.journaal(), order_van({{{42440, 42470, {{0, 1, 4}, {1, 1, 2}, {1, 2, 1}, {2, 1, 1}}},
                                          {42441, 42481, {{0, 1, 3}, {0, 2, 1}, {1, 1, 2}, {2, 1, 2}}}}}));
}

// What of the old quantities a duplicate takes: nothing, the totals in the first branch, all; ESC takes all.
TEST(Aantallen, InEenDuplicaat) {
    Datamap map;
    map.journaal(
        order_van({{{42440, 42470, {{0, 1, 4}, {1, 1, 2}, {2, 4, 1}}}, {42441, 42481, {{1, 2, 5}}}}}));
    Programma p(map);
    p.eerste_order();
    for (const char* keus : {"N<Esc>", "T<Esc>", "V<Esc>", "<Esc><Esc>"}) {
        p.t.toetsen("<Up><Up><Up>D<Enter>2<Enter><Esc><Esc>");
        EXPECT_TRUE(p.t.wacht("2 levertermijnen")) << p.t.scherm();
        p.t.toetsen(keus);
        p.t.wacht_op(24, 1, "Uw keuze");
    }
    p.t.toetsen("<Esc>");
    p.uit();
    const std::string alles = " 42440-42470 0/1=4 1/1=2 2/4=1 42441-42481 1/2=5";
    EXPECT_EQ(termen_van(map.journaal()),
              "\n1:" + alles + "\n2:\n2: 42440-42470 0/1=6 0/4=1 42441-42481 0/2=5\n2:" + alles +
                  "\n2:" + alles);
}

// A firm of one branch: a window of eight rows, its items, a term that takes the quantities, and the view.
TEST(Aantallen, EenFiliaal) {
    Datamap map;
    map.sys(39, "\1");
    map.journaal(order_van({{{42440, 42470, {{0, 1, 4}}}}}));
    Programma p(map);
    p.eerste_order();
    p.t.toetsen("WA");
    p.t.wacht_op(12, 3, "Uw keuze _  Aantal-ingave, Levertermijn wijzigen, Deelorder toevoegen");
    EXPECT_EQ(p.t.stuk(9, 2, 20), "       4    4       ") << p.t.scherm();
    EXPECT_EQ(p.t.stuk(13, 1, 3), "└──") << p.t.scherm();
    p.t.toetsen("A<Enter>3<Enter>1200<Enter><Enter>");
    EXPECT_TRUE(p.t.wacht_op(9, 2, "    1207    4    3 1200")) << p.t.scherm();
    p.t.toetsen("D<Enter>200416<Enter>A<Esc>RA<F5><Down><Enter>");
    EXPECT_TRUE(p.t.wacht_op(7, 17, "110316 - 200416   2/2")) << p.t.scherm();
    p.t.toetsen("<Esc><Esc>");
    p.uit();
    EXPECT_EQ(termen_van(map.journaal()),
              "\n1: 42440-42470 0/1=4 0/2=3 0/3=1200 42440-42480 0/1=4 0/2=3 0/3=1200");
}
