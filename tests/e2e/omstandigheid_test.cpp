// What happens around an order: processing at work, a full disk, a damaged journal, a terminal that goes away, the
// full registration's files, EDI orders.
#include "e2e/loop.h"
#include "shared/sysrec.h"

using namespace zg::test;

using Omstandigheid = InDatamap;

// The journal can't be written: told, the old one stands, and the change is kept.
TEST_F(Omstandigheid, SchijfVolBijHetVastleggen) {
    std::string achter;
    for (int i = 0; i < 60; i++)
        achter += maak_order(maak_kop("Vulling", static_cast<uint16_t>(WERKDATUM - 10 - i)), {Regel{}});
    std::string voor = maak_order(maak_kop("Mijn"), {{5, "A", "D1"}, {5, "B", "D2"}}) + achter;
    map.journaal(voor);
    for (bool weer : {false, true}) { // at the commit, and at the repair of the next start
        std::string opdracht = "ulimit -f 16; exec";
        for (const std::string& a : map.overgave())
            opdracht += " '" + a + "'";
        Terminal t({"/bin/sh", "-c", opdracht}, map.opties());
        ASSERT_TRUE(t.wacht("2016Z"));
        t.toetsen(weer ? "<Enter><Enter>12<Enter>" : "<Enter><Enter>12<Enter><Enter>VJ<Enter><Esc>");
        t.wacht("kan niet worden geschreven: bestand te groot");
        EXPECT_TRUE(weer || t.regel(24).empty()) << t.scherm(); // where the choices were
        t.toetsen("<Enter>");
        if (weer) {
            t.wacht("De laatste wijzigingen worden later alsnog verwerkt.");
            t.toetsen("<Enter>");
        }
        EXPECT_EQ(t.cursor_rij(), 1) << t.scherm();
        t.reeks("<Esc>");
        EXPECT_EQ(t.einde(), 0) << t.scherm();
        EXPECT_EQ(map.journaal(), voor);
    }
    EXPECT_TRUE(map.bestaat("2016Z/ORD0012.WRK")) << "from which the next start restores it: tests/order";
}

// A scratch file that can't be made: told, and back to the menu with nothing changed.
TEST_F(Omstandigheid, WerkbestandNietTeOpenen) {
    std::string inhoud = maak_order(maak_kop("Dicht"), {Regel{}});
    map.journaal(inhoud);
    for (const char* ext : {"ORS", "TMP"}) {
        const std::string naam = std::string("2016Z/ORD0012.") + ext;
        mkdir(map.bestand(naam).c_str(), 0700);
        Programma p(map);
        p.leverancier();
        p.t.toetsen("<Enter>", 23, 1, naam + ": Bestand niet te openen");
        p.t.reeks("<Enter>");
        EXPECT_EQ(p.t.einde(), 0) << p.t.scherm();
        EXPECT_EQ(map.journaal(), inhoud);
        rmdir(map.bestand(naam).c_str());
        EXPECT_EQ(map.restjes(), "");
    }
}

// Receiving location and supplier's order number of an EDI order.
TEST_F(Omstandigheid, EdiOrder) {
    map.sys(32, std::string("\x04\0", 2));
    zg::ordkop kop = maak_kop("Edi");
    kop.edi_soort = 2;
    kop.ontvangstlocatie = 2;
    zg::VASTIN(kop.lev_ordernr, "SO-4711");
    map.journaal(maak_order(kop, {Regel{}}));
    Programma p(map);
    p.eerste_order();
    EXPECT_EQ(p.t.stuk(1, 54, 6), "ADMORD") << p.t.scherm();
    p.t.toetsen("WO", 7, 42, "Filiaal 2 Filiaal 2");
    p.t.wacht_op(8, 42, "SO-4711");
    p.t.toetsen("N1", 7, 42, "Magazijn");
    p.t.toetsen("N23<Enter>", 7, 42, "Filiaal 3 Filiaal 3");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(kop_van(map.journaal()).ontvangstlocatie, 3);
}
