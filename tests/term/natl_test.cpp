// National tables, both directions to Unicode, and the guard on catalogue texts.
#include "support/terminal.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace zg;

TEST(Natl, ClassesAndCase) {
    static const struct {
        uint8_t c;
        int klasse;
        uint8_t groot, klein;
    } GEVALLEN[] = {
        {'a', N_KLEIN | N_HEX, 'A', 'a'}, {'Z', N_GROOT, 'Z', 'z'},        {'7', N_CIJFER | N_HEX, '7', '7'},
        {9, N_WIT | N_CONTROL, 9, 9},     {32, N_WIT | N_BLANCO, 32, 32},  {255, N_WIT | N_BLANCO, 255, 255},
        {127, N_CONTROL, 127, 127},       {0x82, N_KLEIN, 0x90, 0x82},     {0x90, N_GROOT, 0x90, 0x82},
        {0x98, N_KLEIN, 'Y', 0x98},       {0xD8, N_GROOT, 0xD8, 0xD8},     {0x8B, N_KLEIN, 0xD8, 0x8B},
        {0x9F, N_LEESTEKEN, 0x9F, 0x9F},  {0xE6, N_LEESTEKEN, 0xE6, 0xE6}, {0xE1, N_KLEIN, 0xE1, 0xE1},
        {0xB3, N_LEESTEKEN, 0xB3, 0xB3},  {0xB5, N_GROOT, 0xB5, 0xA0},     {0x9B, N_KLEIN, 0x9D, 0x9B},
        {0xD1, N_GROOT, 0xD1, 0xD0},      {0xDC, N_LEESTEKEN, 0xDC, 0xDC}, {0xDE, N_GROOT, 0xDE, 0x8D},
        {'@', N_LEESTEKEN, '@', '@'},     {0xFE, 0, 0xFE, 0xFE},           {'G', N_GROOT, 'G', 'g'},
    };
    for (const auto& g : GEVALLEN) {
        EXPECT_EQ(NKLASSE[g.c], g.klasse) << int{g.c};
        EXPECT_EQ(NGROOT(g.c), g.groot) << int{g.c};
        EXPECT_EQ(NKLEIN(g.c), g.klein) << int{g.c};
    }
    for (int c = 0; c < 256; c++) { // the pairs agree with the character set
        uint8_t b = static_cast<uint8_t>(c), ander = NKAST[b];
        if (ander != b && b != 0x98 && b != 0x8B) {
            EXPECT_EQ(NKAST[ander], b) << c;
        }
    }
}

TEST(Natl, Helpers) {
    char s[] = "  \x82\x82n \x98";
    BEGINGROOT(s);
    EXPECT_STREQ(s, "  \x90\x82n \x98");
    EXPECT_STREQ(GROOTKOPIE(s), "  \x90\x90N Y");
    GROOT(s);
    EXPECT_STREQ(s, "  \x90\x90N Y");
    std::string lang(400, 'a');
    EXPECT_EQ(GROOTKOPIE(lang.c_str()), std::string(255, 'A'));
    char leeg[] = "   ";
    BEGINGROOT(leeg);
    EXPECT_STREQ(leeg, "   ");
}

TEST(Natl, Compose) {
    static const struct {
        const char* reeks;
        int code;
    } GEVALLEN[] = {{"a^", 131}, {"3/4", 243}, {"a`", 133}, {"aG", 0},
                    {"xx", 0},   {"", 0},      {"SS", 245}, {"a^x", 0}};
    for (const auto& g : GEVALLEN)
        EXPECT_EQ(COMPOSE(g.reeks), g.code) << g.reeks;
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

TEST(Codepage, FromUnicode) {
    static const struct {
        const char *utf8, *cp850;
        bool goed;
    } GEVALLEN[] = {
        {"é’“–", "\x82'\"-", true},
        {"€5", "?5", false},
        {"a\xC3", "a?", false},
        {"\xC3\x28", "?(", false},
        {"\xED\xA0\x80", "???", false},
        {"\xF0\x9F\x98\x80x", "?x", false},
        {"\xC0\xAF", "??", false},
        {"", "", true},
        // longer than need be, and beyond the last character
        {"\xC1\x81", "??", false},
        {"\xE0\x80\xAF", "???", false},
        {"\xE0\x9F\xBF", "???", false},
        {"\xF0\x80\x81\x81", "????", false},
        {"\xF0\x8F\xBF\xBF", "????", false},
        {"\xF4\x90\x80\x80", "????", false},
        {"\xF5\x80\x80\x80", "????", false},
        {"\xE0\xA0\x80", "?", false},
    };
    for (const auto& g : GEVALLEN) {
        std::string uit;
        EXPECT_EQ(CP850NAAR(g.utf8, &uit), g.goed) << g.utf8;
        EXPECT_EQ(uit, g.cp850) << g.utf8;
    }
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
    for (const char* c : {"\x82"
                          "e",
                          "\x9B"
                          "o",
                          "\xA5N",
                          "\xB5"
                          "A",
                          "\xE1s",
                          "\x91"
                          "a",
                          "\xED"
                          "Y",
                          "\xFD"
                          "2"})
        EXPECT_EQ(CP850BASIS(static_cast<uint8_t>(c[0])), c[1]) << c;
    for (const char* c : {"\xB3x", "\xBAx", "\xC4q", "\xCDq", "\xDAl", "\xC9l", "\xBFk", "\xBBk", "\xC0m",
                          "\xD9j", "\xB4u", "\xC3t", "\xC2w", "\xC1v", "\xC5n", "\xCEn",
                          "\xB1"
                          "a",
                          "\xF8"
                          "f"})
        EXPECT_EQ(CP850LIJN(static_cast<uint8_t>(c[0])), c[1]) << c;
}

TEST(Tekst, OnlyTheSameDirectivesPass) {
    static const struct {
        const char *standaard, *vertaald;
        bool past;
    } GEVALLEN[] = {
        {"%s %d", "ordre %s no %d", true},
        {"%s %d", "%d %s", false},
        {"%s", "tekst", false},
        {"tekst", "%s", false},
        {"tekst", "100%% texte", true},
        {"%5.2f%%", "%5.2f %%", true},
        {"%ld", "%d", false},
        {"%-20.20s", "%-30.30s", false},
        {"%s", "%1$s", false},
        {"%s", "%s%n", false},
        {"%*d", "%d", false},
        {"%s %", "%s", false},
        {"50% korting", "50 % remise", false},
        {"%hd", "%hhd", false},
    };
    for (const auto& g : GEVALLEN)
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
