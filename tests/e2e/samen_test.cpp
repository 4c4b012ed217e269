// Two users on one directory, and terminals that go away wherever the program stands.
#include "e2e/loop.h"

using namespace zg::test;

namespace {

// An order of supplier 12 in each of two seasons, so that two users can have that supplier on their screen.
void twee_seizoenen(Datamap& map) {
    map.journaal(maak_order(maak_kop("Zomer"), {Regel{}}));
    zg::ordkop kop = maak_kop("Winter");
    kop.seizoen = 'W';
    map.journaal(maak_order(kop, {Regel{}}), 12, "2016W");
}

void winterorder(Programma& p) {
    p.t.toetsen("2016<Enter>W<Enter>12<Enter>", "</> voor nieuwe order");
    p.t.toetsen("<Enter>", 24, 1, "Uw keuze");
}

} // namespace

TEST(Samen, TweeLeveranciersNaastElkaar) {
    Datamap map;
    map.journaal(maak_order(maak_kop("Een"), {{5, "A", "D1"}, {5, "A", "D2"}}));
    zg::ordkop kop = maak_kop("Twee");
    kop.leverancier = 31;
    map.journaal(maak_order(kop, {{5, "A", "D1"}, {5, "A", "D2"}}), 31);
    Programma een(map), twee(map, 8, "Piet");
    een.eerste_order(12);
    // The other's supplier is told and left alone.
    twee.leverancier(12);
    twee.t.wacht_op(22, 3, "Order ORD0012.JRN in gebruik op ander scherm.");
    twee.t.wacht("Informatie in gebruik door Joke");
    twee.t.toetsen("<Enter>", 24, 1, "Orderjournaal niet beschikbaar.");
    twee.t.toetsen("<Enter>");
    twee.eerste_order(31);
    een.t.toetsen("VJ<Enter>");
    twee.t.toetsen("<Down>VJ<Enter>");
    een.t.toetsen("<Esc>");
    twee.uit("<Esc>");
    een.uit();
    EXPECT_EQ(map.journaal(), maak_order(maak_kop("Een"), {{5, "A", "D2"}}));
    EXPECT_EQ(map.journaal(31), maak_order(kop, {{5, "A", "D1"}}));
    EXPECT_EQ(map.restjes(), "");
}

// A size type that another terminal changes: the next action on the open order has it as it is now, and so has the next
// order.
TEST(Samen, MatenElders) {
    Orderscherm p(maak_order(maak_kop("Een"), {Regel{}}));
    std::string rij = lees_bestand(p.bestand("DTMAAT.TXT"));
    const size_t naam = rij.find("35");
    ASSERT_NE(naam, std::string::npos);
    for (const char* nieuw : {"XX", "YY"}) {
        rij.replace(naam, 2, nieuw);
        schrijf_bestand(p.bestand("DTMAAT.TXT"), rij);
        p.t.toetsen("wa", std::string(" ") + nieuw);
        p.t.toetsen("<Esc>");
    }
    rij.replace(naam, 2, "ZZ");
    p.t.toetsen("<Esc>");
    schrijf_bestand(p.bestand("DTMAAT.TXT"), rij);
    p.eerste_order();
    p.t.toetsen("ra", " ZZ");
    p.uit("<Esc><Esc>");
}

// A supplier whom another terminal changed meanwhile: a new order begins with what is on file now.
TEST(Samen, LeverancierElders) {
    Datamap map;
    twee_seizoenen(map);
    map.sys(46900, std::string("\x01\0NLNLDNederland", 16)); // the first country
    Programma een(map), twee(map, 8, "Piet");
    een.leverancier();
    een.t.wacht_op(3, 19, "Mode Centrale");
    een.t.toetsen("<Esc><Esc>");
    winterorder(twee);
    // Name; a country that isn't there and isn't to be, then one that is; the goods' country out of the list; currency,
    // surcharge.
    twee.t.toetsen("WLW11Anders "
                   "BV<Enter>15xxx<Enter><Enter>nld<Enter>2414<F5><Enter><Esc>2514gbp<Enter>161,5<Enter><Esc>"
                   "<Esc><Esc><Esc>");
    een.leverancier();
    een.t.wacht_op(3, 19, "Anders BV");
    een.t.toetsen("/<Enter><Esc>", 15, 42, "GBP  Pond");
    EXPECT_EQ(een.t.stuk(16, 42, 7), "1.25000") << een.t.scherm();
    EXPECT_EQ(een.t.stuk(17, 42, 6), "1.5000") << een.t.scherm();
    // Another currency takes its own rate; that at home has none to enter.
    een.t.toetsen("Vxyz<Enter>", "Onbekende valutacode");
    een.t.toetsen("eur<Enter>", 16, 42, "nvt ");
    een.t.toetsen("K", "Ongeldige ingave");
    een.uit("<Esc><Esc>");
    twee.uit();
}

// The second one is told who holds the record, and gets it as soon as the first is done.
TEST(Samen, EenLeverancierTweeGebruikers) {
    Datamap map;
    twee_seizoenen(map);
    Programma een(map), twee(map, 8, "Piet");
    een.eerste_order();
    winterorder(twee);
    een.t.toetsen("WL");
    twee.t.reeks("WL");
    twee.t.wacht("in gebruik door Joke");
    een.t.toetsen("<Esc>");
    twee.t.weg("in gebruik door", 6000);
    EXPECT_TRUE(twee.t.kalm());
    twee.t.wacht("Mode Centrale");
    // And whoever waits for it ends with his terminal too.
    een.t.reeks("WL");
    een.t.wacht("in gebruik door Piet");
    een.t.hangop();
    EXPECT_EQ(een.t.einde(10000), 1);
    twee.uit("<Esc><Esc>");
}

// Wherever it stands, the program ends within a second of its terminal, and lets go of what it held.
TEST(Samen, TerminalWeg) {
    struct {
        const char *waar, *toetsen;
        bool anders = false; // the repair brings a change
    } gevallen[] = {
        {"season prompt", ""},
        {"season field, half typed", "20"},
        {"supplier prompt", "<Enter><Enter>"},
        {"list of suppliers", "<Enter><Enter><F5>"},
        {"list of orders", "<Enter><Enter>12<Enter>"},
        {"order screen", "<Enter><Enter>12<Enter><Enter>"},
        {"header field", "<Enter><Enter>12<Enter><Enter>WOOZom"},
        {"text", "<Enter><Enter>12<Enter><Enter>WOLFranco"},
        {"question", "<Enter><Enter>12<Enter><Enter>V"},
        {"field help", "<Enter><Enter>12<Enter><Enter>WOO<F1>"},
        {"behind a change", "<Enter><Enter>12<Enter><Enter>WOOZomer<Enter>COok<Enter><Esc>", true},
    };
    Datamap map;
    twee_seizoenen(map);
    const std::string jrn = map.journaal();
    for (auto& g : gevallen) {
        SCOPED_TRACE(g.waar);
        {
            Programma p(map);
            p.t.toetsen(g.toetsen);
            p.t.hangop();
            EXPECT_EQ(p.t.einde(10000), 1);
        }
        Programma p(map); // the same session, and the journal, are free
        p.leverancier();
        bool hersteld = p.t.scherm().find("worden automatisch hersteld...") != std::string::npos;
        if (hersteld)
            p.t.toetsen("<Enter>");
        p.t.wacht("</> voor nieuwe order");
        p.uit("<Esc><Esc>");
        EXPECT_EQ(map.journaal() != jrn, g.anders && hersteld);
    }
    EXPECT_TRUE(bevat(map.journaal(), "Ook"));
}
