// The quantities of a line as a buyer enters them: delivery terms, spreading, and the records of the journal.
#include "e2e/loop.h"
#include "term/vast.h"

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

void naar_aantallen(Terminal& t) {
    t.toetsen("WA");
    EXPECT_TRUE(t.wacht_op(7, 3, "Levertermijn")) << t.scherm();
}

} // namespace

// Weights 3, 2, 1. The second term goes on where the first stands.
TEST(Aantallen, TweeTermijnenVerdeeld) {
    Datamap map;
    map.journaal(order_van({{{42440, 42470, {{0, 1, 7}, {0, 2, 1}}}}}));
    Programma p(map);
    p.eerste_order();
    naar_aantallen(p.t);
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
    p.t.toetsen("<Enter>+<Esc><Esc>");
    p.uit();
    EXPECT_EQ(map.journaal(), order_van({{{42440, 42470, {{0, 1, 4}, {1, 1, 2}, {1, 2, 1}, {2, 1, 1}}},
                                          {42441, 42481, {{0, 1, 3}, {0, 2, 1}, {1, 1, 2}, {2, 1, 2}}}}}));
}
