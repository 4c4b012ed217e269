// A macro from the menu through the order program into an order's header, and back to the menu: recorded in the one
// program, played from the other.
#include "store/diepcheck.h"
#include "support/demomap.h"

using namespace zg::test;

namespace {

bool transferfile(const DemoMap& map) {
    return system(("ls \"" + map.pad() + "\"/MAC*.TMP >/dev/null 2>&1").c_str()) == 0;
}

} // namespace

TEST(Macro, FromTheMenuThroughAnOrderAndBack) {
    DemoMap map;
    Opties o = demo_opties(map);
    o.klok = ""; // files have the real time
    o.omgeving.emplace_back("MACRO", "macro");
    Terminal t({programma("zgbsmenu")}, o);
    naar_seizoen(t);
    t.reeks("<F2><Ins>");
    ASSERT_TRUE(t.wacht("Macro Opnemen")) << t.scherm();
    t.toetsen("aHeen en terug<Enter>");
    ASSERT_TRUE(t.wacht("Druk de gewenste toetsen nu in"));
    // In the menu: the orders. Season, supplier, his first order, its header, the collection typed over, and back.
    t.toetsen("<Enter><Enter><Enter>13<Enter><Enter>WOCMacro<Enter><Esc><Esc><Esc><Down>");
    t.toetsen("<F2><Esc>");
    ASSERT_TRUE(t.weg("Macro Opnemen"));
    t.toetsen("<Esc>");
    ASSERT_TRUE(t.wacht("Orders registreren"));
    const auto voor = map.inhoud();
    t.reeks("<F2>A");
    t.wacht("Orders registreren");
    t.kalm();
    ASSERT_TRUE(t.wacht("Orders registreren")) << t.scherm();
    const std::string journaal = lees_bestand(map.bestand("2016Z/ORD0013.JRN"));
    EXPECT_NE(journaal.find("Macro"), std::string::npos) << t.scherm();
    EXPECT_FALSE(transferfile(map));
    // The last key moved the menu's cursor: ENTER there lets another user in, who has none of it.
    t.toetsen("<Enter>");
    ASSERT_TRUE(t.wacht("Gebruiker")) << t.scherm();
    t.toetsen("<Down><Enter>");
    ASSERT_TRUE(t.wacht("Orders registreren"));
    t.reeks("<F2>a");
    t.wacht("Macro a is niet aanwezig !");
    t.toetsen("n<Esc>");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    EXPECT_TRUE(zg::IXDIEPCHECK(map.bestand("macro/MACRO").c_str()).empty());
}
