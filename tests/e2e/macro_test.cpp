// A macro from the menu through the order program into an order's header, and back to the menu: recorded in the one
// program, played from the other.
#include "store/diepcheck.h"
#include "support/demomap.h"

using namespace zg::test;

TEST(Macro, FromTheMenuThroughAnOrderAndBack) {
    DemoMap map;
    Opties o = demo_opties(map);
    o.klok = ""; // files have the real time
    o.omgeving.emplace_back("MACRO", "macro");
    Terminal t({programma("zgbsmenu")}, o);
    naar_seizoen(t);
    t.reeks("<F2><Ins>");
    t.wacht("Macro Opnemen");
    t.toetsen("aHeen en terug<Enter>", "Druk de gewenste toetsen nu in");
    // In the menu: the orders. Season, supplier, his first order, its header, the collection typed over, and back.
    t.toetsen("<Enter><Enter><Enter>13<Enter><Enter>WOCMacro<Enter><Esc><Esc><Esc><Down>");
    t.toetsen("<F2><Esc>");
    ASSERT_TRUE(t.weg("Macro Opnemen"));
    t.toetsen("<Esc>", "Orders registreren");
    t.reeks("<F2>A");
    t.wacht("Orders registreren");
    t.kalm();
    ASSERT_TRUE(t.wacht("Orders registreren"));
    EXPECT_TRUE(bevat(lees_bestand(map.bestand("2016Z/ORD0013.JRN")), "Macro")) << t.scherm();
    for (const auto& [naam, inhoud] : map.inhoud())
        EXPECT_FALSE(naam.starts_with("MAC") && naam.ends_with(".TMP")) << naam;
    // The last key moved the menu's cursor: ENTER there lets another user in, who has none of it.
    t.toetsen("<Enter>", "Gebruiker");
    t.toetsen("<Down><Enter>", "Orders registreren");
    t.reeks("<F2>a");
    t.wacht("Macro a is niet aanwezig !");
    t.toetsen("n<Esc>");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    EXPECT_TRUE(zg::IXDIEPCHECK(map.bestand("macro/MACRO").c_str()).empty());
}
