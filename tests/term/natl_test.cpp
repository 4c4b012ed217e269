// National tables, both directions to Unicode, and the guard on catalogue texts.
#include "support/proef.h"
#include "term/natl.h"
#include "term/teksten.h"

using namespace zg;

TEST(Natl, ClassesAndCase) {
    static const struct {
        uint8_t c;
        int klasse;
        uint8_t groot, klein;
    } GEVALLEN[] = {
        {'a', N_KLEIN | N_HEX, 'A', 'a'}, {'7', N_CIJFER | N_HEX, '7', '7'}, {9, N_WIT | N_CONTROL, 9, 9},
        {32, N_WIT | N_BLANCO, 32, 32},   {255, N_WIT | N_BLANCO, 255, 255}, {127, N_CONTROL, 127, 127},
        {0x82, N_KLEIN, 0x90, 0x82},      {0x98, N_KLEIN, 'Y', 0x98},        {0xD8, N_GROOT, 0xD8, 0xD8},
        {0x8B, N_KLEIN, 0xD8, 0x8B},      {0x9F, N_LEESTEKEN, 0x9F, 0x9F},   {0xE6, N_LEESTEKEN, 0xE6, 0xE6},
        {0xE1, N_KLEIN, 0xE1, 0xE1},
    };
    for (const auto& g : GEVALLEN) {
        EXPECT_EQ(NKLASSE[g.c], g.klasse) << int{g.c};
        EXPECT_EQ(NGROOT(g.c), g.groot) << int{g.c};
        EXPECT_EQ(NKLEIN(g.c), g.klein) << int{g.c};
    }
    for (int c = 0; c < 256; c++) { // the pairs agree with the character set
        uint8_t b = static_cast<uint8_t>(c), ander = NKAST[b];
        if (ander != b && b != 0x98 && b != 0x8B)
            EXPECT_EQ(NKAST[ander], b) << c;
    }
}

TEST(Codepage, EveryByteComesBack) {
    std::string alle;
    for (int c = 0; c < 256; c++) {
        alle += static_cast<char>(c);
        EXPECT_EQ(CP850EXACT(CP850UIT(static_cast<uint8_t>(c))), c);
    }
    std::string terug;
    EXPECT_TRUE(CP850NAAR(CP850UTF8(alle), &terug));
    EXPECT_EQ(terug, alle);
    EXPECT_EQ(CP850UTF8("M\x9Bller & S\x9Bn \xD5"), "Møller & Søn ı");
}

// Also what is longer than need be, and beyond the last character.
TEST(Codepage, FromUnicode) {
    std::string alles;
    for (const char* utf8 :
         {"é’“–", "", "€5", "a\xC3", "\xC3\x28", "\xED\xA0\x80", "\xF0\x9F\x98\x80x", "\xC1\x81",
          "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE0\xA0\x80"}) {
        std::string uit;
        alles += CP850NAAR(utf8, &uit) ? "+" : "-";
        alles += uit;
    }
    std::replace(alles.begin(), alles.end(), '?', '#');
    EXPECT_EQ(alles, "+\x82'\"-+-#5-a#-#(-###-#x-##-###-####-####-####-#");
    EXPECT_EQ(CP850EXACT(0x2019), -1);
}

// What a terminal without letters beyond ASCII shows.
TEST(Codepage, BaseLetters) {
    std::string basis, lijn;
    for (int c = 128; c < 256; c++) {
        char b = CP850BASIS(static_cast<uint8_t>(c)), l = CP850LIJN(static_cast<uint8_t>(c));
        EXPECT_TRUE(b >= 32 && b < 127) << c;
        if (NKLASSE[static_cast<size_t>(c)] & (N_GROOT | N_KLEIN)) {
            EXPECT_EQ(l, 0) << c;
            bool groot = NKLASSE[static_cast<size_t>(c)] & N_GROOT;
            EXPECT_TRUE(groot ? b >= 'A' && b <= 'Z' : b >= 'a' && b <= 'z') << c;
        }
    }
    for (char c : std::string("\x82\x9B\xA5\xB5\xE1\x91\xED\xFD"))
        basis += CP850BASIS(static_cast<uint8_t>(c));
    EXPECT_EQ(basis, "eoNAsaY2");
    for (char c : std::string("\xB3\xBA\xC4\xCD\xDA\xC9\xBF\xBB\xC0\xD9\xB4\xC3\xC2\xC1\xC5\xCE\xB1\xF8"))
        lijn += CP850LIJN(static_cast<uint8_t>(c));
    EXPECT_EQ(lijn, "xxqqllkkmjutwvnnaf");
}

// A translation with other directives would be read as it stands: with what isn't there.
TEST(Tekst, OnlyTheSameDirectivesPass) {
    const struct {
        const char *standaard, *vertaald;
        bool past;
    } gevallen[] = {
        {"%s %d", "ordre %s no %d", true},
        {"%s %d", "%d %s", false},
        {"tekst", "%s", false},
        {"tekst", "100%% texte", true},
        {"%s", "%1$s", false},
        {"%s", "%s%n", false},
        {"%s %", "%s", false},
        {"50% korting", "50 % remise", false},
    };
    for (const auto& g : gevallen)
        EXPECT_EQ(TXTPAST(g.standaard, g.vertaald), g.past) << g.standaard << " | " << g.vertaald;
}

// A real catalogue: its texts where they fit, the defaults elsewhere and after closing.
TEST(Tekst, Catalogue) {
    test::TijdelijkeMap map;
    test::schrijf_bestand("bron",
                          "$ codeset=IBM850\n$quote \"\n$set 1\n18 \"Open failed : %s\"\n94 \"%s %n\"\n"
                          "74 \"Y\"\n75 \"\"\n144 \"Agr\x82\"\n");
    ASSERT_EQ(system("gencat ZEBCAT.cat bron"), 0);
    setenv("NLSPATH", (map.pad() + "/%N.cat").c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_STREQ(TXT(T_AKKOORD), "Akkoord");
    CATOPEN();
    EXPECT_STREQ(TXT(T_AKKOORD), "Agr\x82");
    EXPECT_STREQ(TXT(T_OPEN_MISLUKT), "Open failed : %s");
    EXPECT_STREQ(TXT(T_AFGEBROKEN), "PROGRAMMA AFGEBROKEN") << "a text that would read what was not passed";
    EXPECT_STREQ(TXT(T_SUPPORT), "Neem contact op met de Support-groep");
    EXPECT_STREQ(TXT(T_ONBEKENDE_TERMINFO), "Onbekende terminfo") << "the other catalogue is not there";
    EXPECT_EQ(TXTLETTER(T_JA), 'Y');
    EXPECT_EQ(TXTLETTER(T_NEE), 'N') << "an empty letter would answer nothing";
    CATCLOSE();
    EXPECT_STREQ(TXT(T_AKKOORD), "Akkoord");

    // a language whose locale is not installed
    mkdir("xx_XX", 0755);
    rename("ZEBCAT.cat", "xx_XX/ZEBCAT.cat");
    setenv("NLSPATH", (map.pad() + "/%L/%N.cat").c_str(), 1);
    unsetenv("LC_ALL");
    setenv("LANG", "xx_XX", 1);
    CATOPEN();
    EXPECT_STREQ(TXT(T_AKKOORD), "Agr\x82");
    CATCLOSE();
    unsetenv("NLSPATH");
    unsetenv("LANG");
}
