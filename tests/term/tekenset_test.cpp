// Terminals of different character sets: what their keys become, what they are sent, and what is told of it.
#include "term/tekenset.h"
#include "toetslog.h"

using namespace zg;
using namespace zg::test;

namespace {

// A terminal that is told to be something, and is it.
struct Soort {
    const char *locale, *tekenset, *emulator;
};

Opties opties(const Soort& s) {
    Opties o;
    o.locale = s.locale;
    o.tekenset = s.emulator;
    if (s.tekenset)
        o.omgeving = {{"ZGTEKENSET", s.tekenset}};
    return o;
}

constexpr Soort UTF8{"C.UTF-8", nullptr, "UTF-8"}, LATIJN9{"C", "ISO-8859-15", "ISO-8859-15"},
    LATIJN9_NAAM{"nl_XX.ISO8859-15@euro", nullptr, "ISO-8859-15"},
    LATIJN9_EURO{"nl_XX@euro", nullptr, "ISO-8859-15"}, DOS{"C.UTF-8", "CP850", "CP850"},
    WINDOWS{"C", "CP1252", "CP1252"}, NIETS{"C", nullptr, ""}, ASCII{"C.UTF-8", "ascii", ""},
    WENS_UTF8{"C", "utf8", "UTF-8"}, ONBEKEND{"C.UTF-8", "klingon", "UTF-8"},
    BREED{"C.UTF-8", "UTF-16", "UTF-8"};

constexpr char GEEN[] = "Tekenset onbekend (LANG, ZGTEKENSET): letters staan zonder accenten";

// Shows what came of the question, for the programs after this one, and the keys that were typed meanwhile.
void vraag() {
    auto gezet = [](const char* naam) { return getenv(naam) ? getenv(naam) : ""; };
    SCRPUT(A_WAARDE, 3, 1, "(%s %s)", gezet("LC_CTYPE"), gezet("ZGTEKENSET"));
    toon_toetsen();
}

} // namespace

TEST(Tekenset, Screen) {
    static const struct {
        Soort soort;
        const char *letters, *tekens, *bytes, *melding;
    } GEVALLEN[] = {
        {UTF8, "Møller café", "½ß│═", "M\xC3\xB8ller", ""},
        {WENS_UTF8, "Møller café", "½ß│═", "M\xC3\xB8ller", ""},
        {LATIJN9, "Møller café", "/ß│─", "M\xF8ller caf\xE9", ""},
        {LATIJN9_NAAM, "Møller café", "/ß│─", "M\xF8ller caf\xE9", ""},
        {LATIJN9_EURO, "Møller café", "/ß│─", "M\xF8ller caf\xE9", ""},
        {DOS, "Møller café", "½ß│═", "M\x9Bller caf\x82", ""},
        {WINDOWS, "Møller café", "½ß│─", "M\xF8ller", ""},
        {NIETS, "Moller cafe", "/s│─", "Moller cafe", GEEN},
        {ASCII, "Moller cafe", "/s│─", "Moller cafe", ""},
        {ONBEKEND, "Møller café", "½ß│═", "M\xC3\xB8ller", "ZGTEKENSET=klingon: die tekenset is niet bekend"},
        {BREED, "Møller café", "½ß│═", "M\xC3\xB8ller", "ZGTEKENSET=UTF-16: die tekenset is niet bekend"},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(std::string(g.soort.locale) + " " + (g.soort.tekenset ? g.soort.tekenset : ""));
        OpScherm t(
            [] {
                for (int c = 1; c < 256; c++) {
                    SCRPUT(0x400000 | A_WAARDE, 24, 1 + c % 64, "%c", c);
                    SCRPUT(A_WAARDE, 6 + c / 16, 1 + 4 * (c % 16), "<%c>", c);
                }
                SCRPUT(A_WAARDE, 1, 1, "M\x9Bller caf\x82");
                SCRPUT(A_WAARDE, 2, 1, "\xAB\xE1\xB3\xCD");
                WINOPEN1(3, 1, 3, 4);
                WINBOX(nullptr);
            },
            opties(g.soort));
        EXPECT_EQ(t.regel(1), g.letters);
        EXPECT_EQ(t.regel(2), g.tekens);
        EXPECT_EQ(t.stuk(3, 1, 4) + t.stuk(4, 1, 4) + t.stuk(5, 1, 4), "┌──┐│  │└──┘");
        EXPECT_EQ(t.regel(25), g.melding);
        EXPECT_EQ(t.bellen(), *g.melding ? 1 : 0) << "no byte of data rings";
        const std::string uit = t.uitvoer();
        EXPECT_TRUE(bevat(uit, g.bytes));
        for (int c = 1; c < 256; c++) { // each in one cell
            std::string s = t.stuk(6 + c / 16, 1 + 4 * (c % 16), 3);
            EXPECT_TRUE(s.front() == '<' && s.back() == '>') << c << " " << s;
        }
        EXPECT_EQ(t.stuk(6, 5, 3) + t.stuk(21, 1, 3) + t.stuk(21, 61, 3), "< ><->< >")
            << "a control, a soft hyphen, a no-break space";
        const std::string_view soort = g.soort.emulator;
        const int vanaf = soort.starts_with("ISO") ? 0xA0 : soort.empty() ? 0x100 : 0x80;
        EXPECT_TRUE(std::none_of(uit.begin(), uit.end(), [&](char c) {
            return c < 0 && static_cast<uint8_t>(c) < vanaf;
        })) << "a control of eight bits, or not known what it is there";
        for (char c = '\x80'; c < '\xA0'; c++)
            EXPECT_TRUE(soort != "UTF-8" || uit.find(std::string("\xC2") + c) == std::string::npos);
        t.toetsen("x");
    }
}

TEST(Tekenset, Keys) {
    // melding: what is told of the last, after the U+ or the word "code"
    for (const auto& [soort, bytes, codes, bellen, melding] :
         Rijen<Soort, const char*, const char*, int, const char*>{
             {UTF8, "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC", "", 1,
              "Teken U+20AC bestaat hier niet en is overgeslagen"},
             {UTF8, "a\xE2\x82\xAC@c", "97 64 99", 1, "Teken U+20AC"},
             {UTF8, "a\xE9@", "97 64", 1, "Teken met code 233 bestaat hier niet en is overgeslagen"},
             {UTF8, "a\xC2\x9B", "97", 1, "Teken U+009B"},
             {LATIJN9, "n\xE9 caf\xE9 \xF8", "110 130 32 99 97 102 130 32 155", 0, ""},
             {LATIJN9, "a\xA4", "97", 1, "Teken U+20AC"},
             {LATIJN9, "a\xBD", "97", 1, "Teken U+0153"},
             {LATIJN9, "a\x9B", "97", 1, "Teken U+009B"},
             {LATIJN9, "\033\xE9x", "600 120", 0, ""}, // Alt and a letter
             {DOS, "n\x82\x9B\xDA\xFF", "110 130 155 218 32", 0, ""},
             {WINDOWS, "\x92\x96\xE9", "39 45 130", 0, ""},
             {WINDOWS, "\x80", "", 1, "Teken U+20AC"},
             {WINDOWS, "\x81", "", 1, "Teken met code 129"},
             {NIETS, "n\xC3\xA9", "110", 1, "Teken U+00E9"}, // UTF-8 all the same: one character, not two
             {NIETS, "\xE2\x82\xAC\xC3\xA9x", "120", 1, "Teken U+00E9"},
             {NIETS, "caf\xE9", "99 97 102", 1, "Teken met code 233"},
             {NIETS, "\033\xC3\xA9x", "600 120", 0, GEEN},
             {ASCII, "n\xC3\xA9", "110", 1, "Teken U+00E9"},
         }) {
        SCOPED_TRACE(std::string(soort.locale) + " " + bytes);
        Terminal t(toetslog, opties(soort));
        t.kalm();
        const int begin = t.bellen();
        t.stuur(bytes);
        if (std::string_view(melding).starts_with("Teken "))
            t.wacht(melding);
        t.toetsen("");
        EXPECT_EQ(t.regel(1), codes);
        EXPECT_EQ(t.regel(25).substr(0, strlen(melding)), melding);
        EXPECT_EQ(t.bellen() - begin, bellen);
        EXPECT_EQ(t.cursor_rij(), 1) << "refused, and back in its place";
        EXPECT_EQ(t.cursor_kolom(), *codes ? static_cast<int>(strlen(codes)) + 2 : 1);
    }
}

// Where the environment says nothing, or a multiplexer stands between the locale and the terminal, that is asked.
TEST(Tekenset, Asked) {
    static const struct {
        Soort soort;
        const char *tussen, *uitkomst, *getypt;
        bool gevraagd;
        const char* vooruit = ""; // typed ahead, at a terminal that doesn't answer by itself
    } GEVALLEN[] = {
        {{"", nullptr, "UTF-8"}, nullptr, "(C.UTF-8 )", "\xC3\xA9", true},
        {{"", nullptr, "ISO-8859-1"}, nullptr, "(C )", "", true},
        {{"", nullptr, "ISO-8859-1"}, nullptr, "(C )", "", true, "a\033[B\033[7;3R"},
        {{"", "CP850", "CP850"}, nullptr, "( CP850)", "\x82", false},
        {{"C", nullptr, "UTF-8"}, "TMUX", "( )", "", false},
        {{"C.UTF-8", nullptr, "UTF-8"}, "TMUX", "( )", "\xC3\xA9", false},
        {LATIJN9_NAAM, nullptr, "( )", "\xE9", false},
        {LATIJN9_NAAM, "STY", "( ISO8859-15)", "\xE9", true},
        {{"nl_XX.ISO8859-15", nullptr, "UTF-8"}, "TMUX", "( UTF-8)", "\xC3\xA9", true},
        {{"nl_XX.ISO8859-15", nullptr, "UTF-8"}, "TMUX", "( UTF-8)", "\xC3\xA9", true, "a\033[B"},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(std::string(g.soort.locale) + " " + g.soort.emulator + " " + (g.tussen ? g.tussen : ""));
        Opties o = opties(g.soort);
        o.antwoordt = !*g.vooruit;
        if (g.tussen)
            o.omgeving.push_back({g.tussen, "iets"});
        Terminal t(op_scherm(vraag), o);
        t.stuur(g.vooruit);
        t.wacht(g.uitkomst);
        t.toetsen("");
        EXPECT_EQ(t.regel(1), o.antwoordt ? "" : "97 258") << "nothing of the answer is a key";
        EXPECT_EQ(t.regel(25).starts_with("Tekenset UTF-8"), g.tussen && !o.antwoordt);
        EXPECT_EQ(t.uitvoer().find("\r\xC3\xB8\033[6n") != std::string::npos, g.gevraagd);
        t.stuur(g.getypt);
        t.toetsen("q");
        EXPECT_EQ(t.regel(1), std::string(o.antwoordt ? "" : "97 258 ") + (*g.getypt ? "130 113" : "113"));
    }
}
