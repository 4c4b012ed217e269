// A buyer's letters: what stands on the screen, and the bytes in the journal.
#include "e2e/loop.h"

using namespace zg::test;

// The other sets, and what becomes of each key: tests/term.
TEST(Tekenset, LettersInEenOrder) {
    Datamap map;
    map.journaal(maak_order(maak_kop("B\x82ige"), {Regel{}}));
    Opties o = map.opties();
    o.locale = "nl_XX.ISO-8859-15", o.tekenset = "ISO-8859-15";
    Programma p(map.overgave(), o);
    p.eerste_order();
    p.t.wacht("/ Béige");
    p.t.toetsen("WOO");
    p.t.stuur("n\xE9 caf\xE9\033O5D\033O5C\033x 5\xA4!"); // né, café, Ctrl-arrows, Alt-x, a euro
    p.t.kalm();
    p.t.toetsen("<Enter><Esc>", "/ né café 5!");
    p.uit("<Esc>");
    EXPECT_EQ(zg::VASTTEKST(kop_van(map.journaal()).omschrijving), "n\x82 caf\x82 5!");
}

// The menu asks a terminal of which nothing is said, and the order program goes by the answer.
TEST(Tekenset, HetMenuVraagt) {
    for (const char* emulator : {"UTF-8", "ISO-8859-1"}) {
        SCOPED_TRACE(emulator);
        DemoMap map;
        Opties o = demo_opties(map);
        o.locale = "";
        o.tekenset = emulator;
        Terminal t({programma("zgbsmenu")}, o);
        naar_seizoen(t);
        t.toetsen("<Enter><Enter>13<Enter>");
        const bool utf8 = std::string(emulator) == "UTF-8";
        t.wacht(utf8 ? "Møller & Søn" : "Moller & Son");
        EXPECT_EQ(t.uitvoer().find("\xC3\xB8\033[6n"), 1U);
        EXPECT_EQ(t.uitvoer().find("\xC3\xB8\033[6n", 2), std::string::npos) << "asked once";
    }
}
