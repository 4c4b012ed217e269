// A buyer's letters on terminals of four character sets: what stands on the screen, and the bytes in the journal.
#include "e2e/loop.h"

using namespace zg::test;

TEST(Tekenset, LettersInEenOrder) {
    static const struct {
        const char *locale, *tekenset, *emulator;
        const char *getypt, *opgeslagen, *getoond;
    } GEVALLEN[] = {
        // né, café, Ctrl-arrows, Alt-letters, a euro
        {"C.UTF-8", "", "UTF-8",
         "n\xC3\xA9 caf\xC3\xA9\033[1;5D\033[1;5D\033[1;5C\033[1;5C\033x\033\xC3\xA9 5\xE2\x82\xAC!",
         "n\x82 caf\x82 5!", "né café 5!"},
        {"C", "ISO-8859-15", "ISO-8859-15", "n\xE9 caf\xE9\033Od\033Oc\033x\033\xE9 5\xA4!",
         "n\x82 caf\x82 5!", "né café 5!"},
        {"nl_XX.ISO-8859-15", "", "ISO-8859-15", "n\xE9 caf\xE9\033O5D\033O5C\033x 5\xA4!",
         "n\x82 caf\x82 5!", "né café 5!"},
        {"C.UTF-8", "CP850", "CP850", "n\x82 caf\x82\033[D\033[C\033x 5\x9B!", "n\x82 caf\x82 5\x9B!",
         "né café 5ø!"},
        {"C", "", "", "n\xC3\xA9 caf\xC3\xA9\033[D\033[C\033x 5\xE2\x82\xAC!", "n caf 5!", "n caf 5!"},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(std::string(g.locale) + " " + g.tekenset);
        Datamap map;
        map.journaal(maak_order(maak_kop("B\x82ige"), {Regel{}}));
        Opties o = map.opties();
        o.locale = g.locale;
        o.tekenset = g.emulator;
        if (*g.tekenset)
            o.omgeving.push_back({"ZGTEKENSET", g.tekenset});
        Programma p(map.overgave(), o);
        p.eerste_order();
        p.t.wacht(*g.locale == 'C' && !*g.tekenset && !*g.emulator ? "/ Beige" : "/ Béige");
        p.t.toetsen("WOO");
        p.t.stuur(g.getypt);
        p.t.kalm();
        p.t.toetsen("<Enter><Esc>", std::string("/ ") + g.getoond);
        p.uit("<Esc>");
        EXPECT_EQ(zg::VASTTEKST(kop_van(map.journaal()).omschrijving), g.opgeslagen);
    }
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
