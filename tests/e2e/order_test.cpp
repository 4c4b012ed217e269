// An order on the screen: its pages, its header field by field, lines deleted, and what the journal holds then.
#include "e2e/loop.h"
#include "term/gesprek.h"

using namespace zg::test;

namespace {

std::vector<Regel> genummerd(int n, int per_model = 1) {
    std::vector<Regel> regels;
    for (int i = 1; i <= n; i++) {
        Regel r;
        r.model = "M" + std::to_string((i - 1) / per_model + 1);
        r.dessin = "D" + std::to_string(i);
        r.aantal = i;
        regels.push_back(r);
    }
    return regels;
}

} // namespace

TEST(Order, BladerenEnTotalen) {
    for (const auto& [regels, toetsen, cursor, top] : Rijen<int, const char*, int, int>{
             {1, "<Down><PgDn>", 1, 1},
             {15, "<PgDn>", 15, 15},
             {15, "<Down><Down><Down><Down><Down><Down><Down><Down><Down><Down><Down><Down><Down><Down>", 15,
              2},
             {60, "<PgDn><PgDn><PgUp><Up>", 14, 14},
         }) {
        SCOPED_TRACE(std::to_string(regels) + toetsen);
        std::string inhoud = maak_order(maak_kop("Bladeren"), genummerd(regels));
        Orderscherm p(inhoud);
        p.t.toetsen(toetsen);
        std::string eerste = "D" + std::to_string(top) + " ", hier = "D" + std::to_string(cursor) + " ";
        int rij = 8 + cursor - top;
        EXPECT_EQ(p.t.stuk(8, 36, static_cast<int>(eerste.size())), eerste) << p.t.scherm();
        EXPECT_EQ(p.t.stuk(rij, 36, static_cast<int>(hier.size())), hier) << p.t.scherm();
        EXPECT_TRUE(p.t.cel(rij, 36).keus);
        int onder = top + 13 <= regels ? 14 : regels - top + 1;
        for (int r = 0; r < 14; r++)
            EXPECT_EQ(p.t.cel(8 + r, 36).teken != " ", r < onder) << "row " << 8 + r << "\n" << p.t.scherm();
        int stuks = regels * (regels + 1) / 2;
        EXPECT_EQ(p.t.stuk(3, 50, 9), vorm("%9d", stuks));
        EXPECT_EQ(p.t.stuk(4, 69, 11), vorm("%11.2f", stuks * 10.0));
        p.uit("<Esc>");
        EXPECT_EQ(p.journaal(), inhoud) << "looked at, not changed";
        EXPECT_EQ(p.restjes(), "");
    }
}

// Amounts and numbers that are too wide lose their decimals, then show as asterisks; no column moves.
TEST(Order, GroteBedragenBlijvenInHunKolom) {
    Orderscherm p(maak_order(maak_kop("Groot"), {{5, "A", "D1", 1, 99999, 9999},
                                                 {5, "B", "D2", 1, 99999, 10001},
                                                 {5, "C", "D3", 1, 2000000, 2000000000},
                                                 {5, "D", "D4", 1, 7, 100}}));
    const char* const rechts[] = {"99999 9998900.01", "99999   10000900", "***** **********",
                                  "    7       7.00"};
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(p.t.stuk(8 + i, 64, 17), rechts[i] + std::string(" ")) << p.t.scherm();
        EXPECT_EQ(p.t.stuk(8 + i, 36, 3), "D" + std::to_string(i + 1) + " ");
    }
    EXPECT_EQ(p.t.stuk(4, 69, 12), "*********** ") << p.t.scherm();
    EXPECT_EQ(p.t.regel(24).substr(0, 8), "Uw keuze");
    p.t.toetsen("<Down><Down>VJ<Enter>", 4, 69, "19999807.00 ");
    p.uit("<Esc>");
}

// Key by key, and in bursts: that gives the same.
TEST(Order, KopVeldVoorVeld) {
    for (bool vooruit : {false, true}) {
        SCOPED_TRACE(vooruit);
        Datamap map;
        std::string ander =
            maak_order(maak_kop("Blijft", WERKDATUM - 40), {Regel{}, {5, "X"}}, "Franco", "14 dagen");
        std::string achter = maak_order(maak_kop("Ook zo", WERKDATUM - 50), {Regel{}});
        std::string mijn = maak_order(maak_kop("Oud"), {Regel{}, {5, "JURK", "STREEP", 2}}, "Af fabriek");
        map.journaal(ander + mijn + achter);
        Programma p(map);
        auto tik = [&](const char* toetsen) {
            vooruit ? p.t.reeks(toetsen) : p.t.toetsen(toetsen);
            EXPECT_TRUE(p.t.kalm());
        };
        p.eerste_order(); // the latest date
        tik("WO");
        p.t.wacht_op(18, 42, "Af fabriek");
        tik("OZomer<Enter>A40<Enter>Z2<Enter>CStrand<Enter>I1<Enter>G2,5<Enter>T1,05<Enter>");
        p.t.wacht_op(10, 42, "40   Agentuur Smit");
        p.t.wacht_op(11, 42, "2  Hoogzomer");
        EXPECT_EQ(p.t.stuk(14, 42, 7), "2.50   ") << p.t.scherm();
        // An agent that isn't one, a code that isn't there: told, and the field stays open.
        tik("A12<Enter><Enter>");
        p.t.wacht("<12> Deze relatie is geen agent");
        tik("<Esc>Z7<Enter>");
        p.t.wacht("Wilt u deelseizoen 7 toevoegen");
        tik("<Enter>");
        p.t.wacht("<7> Onbekend deelseizoen");
        tik("<Esc>");
        p.t.wacht_op(11, 42, "2  Hoogzomer");
        tik("L<End>, spoed<Enter>tweede regel<Esc>");
        p.t.wacht_op(18, 42, "Af fabriek, spoed                  ...");
        tik("B30 dagen<F3><Esc>");
        p.t.wacht("0 / Zomer");
        EXPECT_EQ(p.t.stuk(5, 52, 8), "   2.50%");
        tik("<Esc>");
        p.uit();
        zg::ordkop kop = kop_van(mijn);
        zg::VASTIN(kop.omschrijving, "Zomer");
        kop.agent = 40;
        kop.deelseizoen = 2;
        zg::VASTIN(kop.collectie, "Strand");
        kop.inkoopcode = 1;
        kop.korting = -250;
        kop.toeslag = 10500;
        std::string regels = mijn.substr(mijn.find('M', 121 + 62));
        std::string verwacht =
            record('O', kop) + tekst(1, "Af fabriek, spoed\ntweede regel") + tekst(2, "30 dagen") + regels;
        EXPECT_EQ(map.journaal(), ander + verwacht + achter);
        EXPECT_EQ(map.restjes(), "");
    }
}

// A refused agent leaves nothing of his: the supplier's name stays, and his currency on an order without one.
TEST(Order, GeweigerdeAgent) {
    Orderscherm p(maak_order(maak_kop("Agent"), {Regel{}}));
    p.t.toetsen("WOA27<Enter><Enter>", "<27> Deze relatie is geen agent");
    EXPECT_EQ(p.t.cursor_rij(), 10) << "the field stays open";
    p.t.toetsen("<Esc>", 5, 42, "12   Mode Centrale");
    p.t.toetsen("<Esc>", "netto(EUR)");
    // By the list, and one that goes.
    p.t.toetsen("WOA<F5><Enter>", 10, 42, "40   Agentuur Smit");
    p.uit("A0<Enter><Esc><Esc>");
    EXPECT_EQ(kop_van(p.journaal()).agent, 0);
}

// A new order's texts: the work file keeps them through every header behind the first.
TEST(Order, TekstenVanEenNieuweOrder) {
    Datamap map;
    Programma p(map);
    p.leverancier();
    p.t.reeks("<Enter>Nieuw<Enter><Esc>LFranco<Esc>B30 dagen<Esc><Esc>"); // all in one burst
    p.t.kalm();
    for (int keer = 0; keer < 2; keer++) {
        p.t.toetsen("WO", 18, 42, "Franco");
        p.t.wacht_op(19, 42, "30 dagen");
        p.t.toetsen("OWeer<Enter><Esc>");
        std::string werk = lees_bestand(map.bestand("2016Z/ORD0012.WRK"));
        EXPECT_TRUE(bevat(werk, "Franco"));
        EXPECT_TRUE(bevat(werk, "30 dagen"));
    }
    // The next new order begins without them.
    p.t.toetsen("<Esc><Enter><Enter>12<Enter><Enter><Esc>", 21, 23, "Uw keuze");
    EXPECT_EQ(p.t.scherm().find("Franco"), std::string::npos) << p.t.scherm();
    p.uit("<F6>J<Enter>");
}

// A new order without lines leaves nothing, refused or accepted; a journal that is only touched goes.
TEST(Order, NieuweOrderZonderRegels) {
    for (bool geweigerd : {false, true}) {
        SCOPED_TRACE(geweigerd);
        Datamap map;
        zg::ordparm parm{};
        parm.jaar = 2016;
        parm.letter = 'Z';
        parm.kopvraag[4] = parm.kopvraag[9] = 1; // description and discount only
        schrijf_bestand(map.bestand("ORDPARM.SYS"), {reinterpret_cast<const char*>(&parm), sizeof parm});
        Programma p(map);
        p.leverancier();
        EXPECT_EQ(p.t.cursor_kolom(), 74) << "no orders, no list\n" << p.t.scherm();
        p.t.toetsen("<F5>", 25, 1, "Geen orders van deze leverancier");
        p.t.toetsen("150316<Enter>");
        p.t.wacht("ORDER");
        EXPECT_EQ(p.t.cursor_rij(), 9);
        p.t.wacht_op(1, 74, "150316");
        p.t.toetsen("Nieuw<Enter>");
        EXPECT_EQ(p.t.cursor_rij(), 14) << "the discount is next\n" << p.t.scherm();
        p.t.toetsen("<F6>", "Toevoegen afbreken? (J/N)");
        p.t.toetsen("<Enter>"); // no: the same field again
        EXPECT_EQ(p.t.cursor_rij(), 14) << p.t.scherm();
        p.t.toetsen("5<Enter>", 21, 23, "Uw keuze");
        if (geweigerd) {
            p.t.toetsen("<F6>J<Enter>");
        } else {
            p.t.toetsen("<Esc>", "0 / Nieuw");
            EXPECT_EQ(p.t.stuk(5, 52, 8), "   5.00%");
            p.t.toetsen("M", "Geen informatie");
            p.t.toetsen("<Enter>WO<F6>", 25, 1, "Ongeldige toets"); // once accepted it is no longer refused
            p.t.toetsen("<Esc><Esc>");
        }
        EXPECT_EQ(p.t.cursor_rij(), 1) << p.t.scherm();
        p.uit();
        EXPECT_FALSE(map.bestaat("2016Z/ORD0012.JRN"));
        EXPECT_EQ(map.restjes(), "");
    }
}

TEST(Order, RegelsVerwijderen) {
    struct {
        const char *wat, *toetsen;
        std::vector<size_t> over;
    } const gevallen[] = {
        {"first of a model of two", "VJ<Enter>", {2, 3, 4}},
        {"middle: second of its model", "<Down>VJ<Enter>", {1, 3, 4}},
        {"asked, and no", "V<Enter>", {1, 2, 3, 4}},
        {"all: the journal goes", "VJ<Enter>VJ<Enter>VJ<Enter>VJ<Enter>", {}},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        const std::vector<Regel> regels = genummerd(4, 2);
        Orderscherm p(maak_order(maak_kop("Regels"), regels));
        p.t.toetsen(g.toetsen);
        // The screen shows what is left, in order, and counts it.
        std::vector<Regel> over;
        int rij = 8;
        for (size_t nr : g.over) {
            over.push_back(regels[nr - 1]);
            EXPECT_EQ(p.t.stuk(rij++, 36, 3), over.back().dessin + " ") << p.t.scherm();
        }
        EXPECT_EQ(p.t.stuk(rij, 36, 3), "   ") << p.t.scherm();
        EXPECT_EQ(p.t.stuk(4, 58, 1), std::to_string(over.size()));
        p.uit("<Esc>");
        EXPECT_EQ(p.journaal(), over.empty() ? "" : maak_order(maak_kop("Regels"), over));
        EXPECT_EQ(p.bestaat("2016Z/ORD0012.JRN"), !over.empty());
        EXPECT_EQ(p.restjes(), "");
    }
}

// Taken up by the batch side, or by the choice to look: nothing but the texts is offered, and nothing is written.
TEST(Order, AlleenLezen) {
    for (uint8_t status : std::initializer_list<uint8_t>{1, 0}) {
        SCOPED_TRACE(status);
        zg::ordkop kop = maak_kop("Verwerkt");
        kop.status = status;
        std::string inhoud = maak_order(kop, genummerd(3), "Franco huis");
        Orderscherm p(inhoud);
        EXPECT_EQ(p.t.regel(24).find("Toevoegen") == std::string::npos, status == 1) << p.t.scherm();
        const std::string kies = status ? "" : "R";
        p.t.toetsen(kies + "O", "Leveringscon, Betalingscon");
        for (const char* weg : {"O", "G", "D", "<F6>"}) {
            p.t.toetsen(weg);
            EXPECT_EQ(p.t.cursor_rij(), 21) << weg << p.t.scherm();
        }
        p.t.toetsen("<Back>L", " Leveringscondities ");
        p.t.wacht_op(13, 11, "Franco huis");
        p.t.toetsen("x<Enter><Esc><Down>" + kies + "L", "RAADPLEGEN");
        p.uit("<Esc><Esc>");
        EXPECT_EQ(p.journaal(), inhoud);
        EXPECT_EQ(p.restjes(), "");
    }
}

// A line whose size type is gone is shown, counted and can be deleted; everything else is refused.
TEST(Order, RegelZonderMaatsoort) {
    Orderscherm p(maak_order(maak_kop("Gat"), {{5, "A", "D1"}, {5, "B", "D2", 1, 4, 1000, 9}}));
    EXPECT_EQ(p.t.stuk(3, 50, 9), "        5") << p.t.scherm();
    p.t.toetsen("<Down>WM", "Regel niet toegankelijk");
    p.t.toetsen("VJ<Enter>", 3, 50, "        1");
    p.uit("<Esc>");
    EXPECT_EQ(p.journaal(), maak_order(maak_kop("Gat"), {{5, "A", "D1"}}));
}

// A journal that has changed since a session was killed can't take its changes: told, and it stays as it is.
TEST(Order, AfgebrokenSessie) {
    Datamap map;
    map.journaal(maak_order(maak_kop("Weg"), genummerd(3)));
    {
        Programma p(map);
        p.eerste_order();
        p.t.toetsen("VJ<Enter>", 4, 58, "2");
        p.t.sein(SIGKILL);
        p.t.einde();
    }
    const std::string voor = map.journaal() + maak_order(maak_kop("Erbij"), {Regel{}});
    map.journaal(voor);
    Programma p(map);
    p.leverancier();
    p.t.wacht_op(19, 3, "Het inbrengen/wijzigen van deze order is foutief afgesloten d.d. ");
    p.t.wacht_op(22, 3, "De laatste wijzigingen kunnen NIET worden hersteld...");
    p.t.toetsen("<Enter>", "</> voor nieuwe order");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(map.journaal(), voor);
    EXPECT_EQ(map.restjes(), "");
}

// An order of the journal without lines is walked like a new one, with what it has; F6 can't break it off.
TEST(Order, ZonderRegelsInHetJournaal) {
    Datamap map;
    std::string ander = maak_order(maak_kop("Ander", WERKDATUM - 9), {Regel{}});
    map.journaal(maak_order(maak_kop("Leeg"), {}, "Franco") + ander);
    Programma p(map);
    p.leverancier();
    p.t.toetsen("<Enter><F6>", 9, 42, "Leeg");
    p.t.wacht_op(18, 42, "Franco");
    EXPECT_EQ(p.t.scherm().find("afbreken"), std::string::npos) << p.t.scherm();
    p.t.toetsen("<Esc><F6><Esc>", "0 / Leeg");
    p.uit("<Esc>");
    EXPECT_EQ(map.journaal(), ander) << "still without lines";
}
