// The quantities of a line as a buyer enters them: delivery terms, spreading, and the records of the journal.
#include "e2e/handsom.h"
#include "e2e/loop.h"

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
    std::string uit = record('O', maak_kop("Aantallen")) + rec_model(5, "JURK", 1);
    int kleur = 0;
    for (const std::vector<Termijn>& regel : regels) {
        uit += record('D', een_dessin("UNI", ++kleur, 4));
        for (int maat = 1; maat <= 4; maat++)
            uit += rec_maat(maat, 1000, 1000);
        for (const Termijn& t : regel) {
            uit += rec_term(t.van, t.tot);
            for (const Cel& c : t.cellen)
                uit += rec_cel(c.filiaal, c.maat, c.aantal);
        }
    }
    return uit;
}

// What a journal has of each line: colour, and its terms with branch/size=pieces.
std::string termen_van(const std::string& jrn) {
    std::string uit;
    for (size_t p = 0; p < jrn.size(); p = volgend_record(jrn, p)) {
        const auto l = jrn[p] == 'L' ? lichaam<ordlevt>(jrn, p) : ordlevt{};
        const auto f = jrn[p] == 'F' ? lichaam<ordfil>(jrn, p) : ordfil{};
        uit += jrn[p] == 'D'   ? vorm("\n%u:", lichaam<orddessin>(jrn, p).kleur)
               : jrn[p] == 'L' ? vorm(" %u-%u", l.eerste, l.laatste)
               : jrn[p] == 'F' ? vorm(" %u/%u=%d", f.filiaal, f.maat, f.aantal)
                               : "";
    }
    return uit;
}

} // namespace

// Weights 3, 2, 1. The second term goes on where the first stands.
TEST(Aantallen, TweeTermijnenVerdeeld) {
    Orderscherm p(order_van({{{42440, 42470, {{0, 1, 7}, {0, 2, 1}}}}}));
    p.t.toetsen("WA", 7, 3, "Levertermijn");
    p.t.toetsen("A", 10, 2, "  2    3    2    1");
    p.t.toetsen("D<Enter>200416<Enter>T", "2/2");
    p.t.wacht_op(9, 2, "  1    8    7    1");
    p.t.toetsen("A", 9, 2, "  1    4    3    1");
    p.t.toetsen("L120316<Enter>210416<Enter>-", 7, 17, "110316 - 100416   1/2");
    p.t.toetsen("N", "2 levertermijnen");
    EXPECT_EQ(p.t.stuk(12, 2, 20), "tot   16   14    2  ") << p.t.scherm();
    p.t.toetsen("<Enter>+<F5>", "12   010316 120316 210416        8");
    p.uit("<Enter><Esc><Esc>");
    EXPECT_EQ(p.journaal(), order_van({{{42440, 42470, {{0, 1, 4}, {1, 1, 2}, {1, 2, 1}, {2, 1, 1}}},
                                        {42441, 42481, {{0, 1, 3}, {0, 2, 1}, {1, 1, 2}, {2, 1, 2}}}}}));
}

// What of the old quantities a duplicate takes: nothing, the totals in the first branch, all; ESC takes all.
TEST(Aantallen, InEenDuplicaat) {
    Orderscherm p(
        order_van({{{42440, 42470, {{0, 1, 4}, {1, 1, 2}, {2, 4, 1}}}, {42441, 42481, {{1, 2, 5}}}}}));
    for (const char* keus : {"N<Esc>", "T<Esc>", "V<Esc>", "<Esc><Esc>"}) {
        p.t.toetsen("<Up><Up><Up>D<Enter>2<Enter><Esc><Esc>", "2 levertermijnen");
        p.t.toetsen(keus, 24, 1, "Uw keuze");
    }
    p.uit("<Esc>");
    const std::string alles = " 42440-42470 0/1=4 1/1=2 2/4=1 42441-42481 1/2=5";
    EXPECT_EQ(termen_van(p.journaal()), "\n1:" + alles +
                                            "\n2:\n2: 42440-42470 0/1=6 0/4=1 42441-42481 0/2=5\n2:" + alles +
                                            "\n2:" + alles);
}

// A firm of one branch: a window of eight rows, its items, a term that takes the quantities, and the view.
TEST(Aantallen, EenFiliaal) {
    Datamap map;
    map.sys(39, "\1");
    map.journaal(order_van({{{42440, 42470, {{0, 1, 4}}}}}));
    Programma p(map);
    p.eerste_order();
    p.t.toetsen("WA", 12, 3, "Uw keuze _  Aantal-ingave, Levertermijn wijzigen, Deelorder toevoegen");
    EXPECT_EQ(p.t.stuk(9, 2, 20), "       4    4       ") << p.t.scherm();
    EXPECT_EQ(p.t.stuk(13, 1, 3), "└──") << p.t.scherm();
    p.t.toetsen("A<Enter>3<Enter>1200<Enter><Enter>", 9, 2, "    1207    4    3 1200");
    p.t.toetsen("D<Enter>200416<Enter>A<Esc>RA<F5><Down><Enter>", 7, 17, "110316 - 200416   2/2");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(termen_van(map.journaal()),
              "\n1: 42440-42470 0/1=4 0/2=3 0/3=1200 42440-42480 0/1=4 0/2=3 0/3=1200");
}
