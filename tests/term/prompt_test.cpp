// Prompts, boxes, line editor, choice row and the interrupt poll, as a user meets them.
#include "gesprek.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include <cstring>
#include <ctime>
#include <unistd.h>

using namespace zg;
using namespace zg::test;

TEST(Prompt, JaNee) {
    struct {
        const char *tekst, *keys, *regel;
        int uit;
    } const gevallen[] = {
        {"[-]Regel verwijderen", "<Enter>", "Regel verwijderen? (J/N)N", 0},
        {"[-]Regel verwijderen", "j<Enter>", "Regel verwijderen? (J/N)N", 1},
        {"[+]", "<Enter>", "Akkoord? (J/N)J", 1},
        {"", "<Enter>+<Enter>", "Akkoord? (J/N)_", 1}, // nothing to accept yet: ENTER is refused
        {"[J],Printen", "<Enter>", "Printen? (J/N)J", 1},
        {"[x]Printen", "<Enter>", "Printen? (J/N)N", 0},
        {"[+]Printen", "<Cancel>", "Printen? (J/N)J", 0},
        {"[+]Printen", "<Esc>", "Printen? (J/N)J", 0},
        {"[]Printen", "n<Enter>", "[]Printen? (J/N)_", 0},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(std::string(g.tekst) + " " + g.keys);
        Gesprek t([&] {
            SCRPUT(A_WAARDE, 10, 5, "%s", std::string(70, 'x').c_str());
            return vorm("%d", JNVRAAG(10, 5, "%s", g.tekst));
        });
        EXPECT_EQ(t.regel(10), std::string(4, ' ') + g.regel);
        EXPECT_EQ(t.cursor_kolom(), 5 + static_cast<int>(strlen(g.regel)) - 1);
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), vorm("%d", g.uit));
    }
}

TEST(Prompt, TeLangeVraagHoudtZijnVeld) {
    Gesprek t([] {
        WINOPEN1(5, 11, 3, 32);
        WINBOX(nullptr);
        int uit = JNVRAAG(1, 2, "[-]%s", std::string(50, 'v').c_str());
        WINCLOSE();
        return vorm("%d", uit);
    });
    EXPECT_EQ(t.stuk(6, 11, 32), "│ " + std::string(21, 'v') + "? (J/N)N│");
    t.toetsen("j<Enter>");
    EXPECT_EQ(t.antwoord(), "1");
}

TEST(Prompt, ToetsKies) {
    Gesprek t([] {
        SCHERM.vlag = 0;
        int32_t a = TOETSKIES("JN");
        uint32_t va = SCHERM.vlag;
        int32_t b = TOETSKIES(&SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], "");
        uint32_t vb = SCHERM.vlag;
        ENTERWACHT(12, 3);
        return vorm("%c %u %d %u %d %d", a, va, b, vb, SCHERM.laatste, static_cast<int>(INSTEL.toe.count()));
    });
    t.toetsen("xj<Up>N<Up>J<F5>");
    EXPECT_EQ(t.regel(12), "  <ENTER> voor vervolg");
    t.toetsen("q<Enter>");
    EXPECT_EQ(t.antwoord(), "N 0 269 8 10 0");
}

TEST(Prompt, FflashMaten) {
    const std::string v25 = [] {
        std::string s;
        for (int i = 1; i <= 25; i++)
            s += vorm("%sregel %d", i > 1 ? "\n" : "", i);
        return s;
    }();
    struct {
        const char* naam;
        int optie;
        std::string titel, tekst;
        const char* keys;
        Doos doos;
        int rij, kolom;
        std::string daar; // what stands at row, column of the screen
        int uit;
    } const gevallen[] = {
        {"short text", -1, "", "kort", "<Enter>", {10, 25, 4, 32}, 12, 27, "<ENTER> voor vervolg", 1},
        {"nothing", -1, "", "", "<Enter>", {11, 25, 3, 32}, 12, 27, "<ENTER> voor vervolg", 1},
        {"25 lines", -1, "Titel", v25, "x<Enter>", {1, 25, 23, 32}, 21, 27, "regel 20 ", 1},
        {"long line",
         -1,
         "",
         std::string(100, 'a'),
         "<Enter>",
         {10, 1, 4, 80},
         11,
         3,
         std::string(76, 'a') + " │",
         1},
        {"title wider", -1, std::string(40, 't'), "x\ty", "<Enter>", {10, 19, 4, 44}, 11, 21, "x y", 1},
        {"title of 66", -1, std::string(66, 't'), "x", "<Enter>", {10, 25, 4, 32}, 10, 26, "────", 1},
        {"title", -1, "Let op", "x\n\nz", "<Enter>", {9, 25, 6, 32}, 9, 37, " Let op ", 1},
        {"question",
         -2,
         "Vraag",
         "een\ntwee\n[-]Doorgaan met de lange vraag",
         "<Enter>",
         {10, 19, 5, 43},
         13,
         21,
         "Doorgaan met de lange vraag? (J/N)N",
         0},
        {"question only", -2, "", "", "j<Enter>", {11, 25, 3, 32}, 12, 27, "Akkoord? (J/N)_", 1},
        {"question of 70",
         -2,
         "",
         "[+]" + std::string(67, 'q'),
         "<Enter>",
         {11, 4, 3, 74},
         12,
         6,
         std::string(63, 'q') + "? (J/N)J│",
         1},
        {"question behind 25",
         -2,
         "",
         v25 + "\n[-]Toch",
         "<Cancel>",
         {1, 25, 22, 32},
         21,
         27,
         "Toch? (J/N)N",
         0},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.naam);
        Gesprek t([&] {
            SCHERM.laatste = 77;
            SCHERM.vlag = V_GEWIJZIGD;
            TOETSAAN(K_F5);
            int uit = FFLASH(g.optie, 0, A_WAARDE, g.titel.c_str(), "%s", g.tekst.c_str());
            return vorm("%d %d %u %d", uit, SCHERM.laatste, SCHERM.vlag, TOETSTOE(K_F5));
        });
        EXPECT_EQ(doos(t), g.doos) << t.scherm();
        t.wacht_op(g.rij, g.kolom, g.daar);
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), vorm("%d 77 4 1", g.uit));
    }
}

TEST(Prompt, FflashMetTijdEnFout) {
    Gesprek t([] {
        int uit = FFLASH(0, 2, A_WAARDE, "Langere titel dan tekst", "x");
        WACHTBOX();
        return vorm("%d", uit);
    });
    EXPECT_EQ(t.antwoord(), "1");
    EXPECT_NE(t.uitvoer().find("Langere titel dan tekst"), std::string::npos);
    EXPECT_NE(t.uitvoer().find("Even geduld a.u.b."), std::string::npos);

    Gesprek fout([] { return vorm("%d", FFLASH(-3, 0, A_WAARDE, "", "x")); });
    fout.wacht("FFLASH invalid option [-3]");
    fout.stuur("\r");
    EXPECT_EQ(fout.einde(), 1);
}

TEST(Prompt, FoutboxEnMeldbox) {
    Gesprek t([] {
        SCHERM.laatste = 77;
        SCHERM.vlag = V_VERS;
        TOETSTERUG(K_ENTER); // typed ahead: thrown away, so the box stands
        FOUTBOX("Regel een\nEn een tweede regel die langer is", 0);
        MELDBOX(MELD_INFO, "Geen informatie", nullptr, nullptr);
        MELDBOX(MELD_WAARSCHUWING, "een", nullptr, "drie");
        return vorm("%d %u", SCHERM.laatste, SCHERM.vlag);
    });
    EXPECT_EQ(doos(t), (Doos{9, 22, 7, 37}));
    t.wacht_op(9, 34, " FOUTMELDING ");
    t.wacht_op(12, 24, "En een tweede regel die langer is │");
    t.wacht_op(14, 24, "<ENTER> voor vervolg");
    EXPECT_TRUE(t.cel(11, 24).vet);
    t.toetsen("x<Enter>");
    EXPECT_EQ(doos(t), (Doos{20, 29, 4, 24}));
    t.wacht_op(21, 31, "Geen informatie");
    t.wacht_op(22, 31, "<ENTER> voor vervolg");
    EXPECT_EQ(t.bellen(), 0);
    t.toetsen("x");
    EXPECT_EQ(doos(t), (Doos{19, 29, 5, 24}));
    t.wacht_op(19, 34, " waarschuwing ");
    EXPECT_EQ(t.bellen(), 1);
    t.toetsen("<Up>");
    EXPECT_EQ(t.antwoord(), "77 1");
}

TEST(Prompt, BovensteRij) {
    Gesprek t([] {
        SCRPUT(A_WAARDE, 5, 1, "blijft");
        TOPTITEL("  orders van crediteuren ");
        TOETS();
        TOPREGEL(' ', "%s %d", "leverancier", 12);
        TOETS();
        TOPREGEL('C', "%s", "nieuw");
        return std::string("klaar");
    });
    EXPECT_EQ(t.regel(1), " ORDERS VAN CREDITEUREN");
    EXPECT_TRUE(t.cel(1, 1).keus && t.cel(1, 80).keus);
    t.toetsen("x");
    EXPECT_EQ(t.regel(1), " ORDERS VAN CREDITEUREN * Leverancier 12");
    EXPECT_EQ(t.regel(5), "blijft");
    t.toetsen("x");
    EXPECT_EQ(t.regel(1), " ORDERS VAN CREDITEUREN * Nieuw");
    EXPECT_EQ(t.regel(5), "");
    EXPECT_EQ(t.antwoord(), "klaar");
}

TEST(Prompt, Telaf) {
    Gesprek t([] {
        TOETS();
        TELAF(12, 2);
        return std::string("klaar");
    });
    t.stuur("x");
    t.wacht_op(12, 1, ".. ");
    t.wacht_op(12, 1, ".  ");
    EXPECT_EQ(t.antwoord(), "klaar");
    EXPECT_EQ(t.regel(12), "");
}

TEST(Prompt, RegelEdit) {
    struct {
        const char *begin, *keys, *uit;
    } const gevallen[] = {
        {"", "e'<Enter>", "266 [e']"},
        {"", "12345", "266 [12345]"}, // full: ends by itself
        {"", "ab<F2>", "266 [ab]"},
        {"", "ab<Esc>", "27 [ab]"},
        {"", "<Cancel>", "27 []"},
        {"", "a<Cancel>b<Enter>", "266 [a/b]"},
        {"abc", "<End>d<Enter>", "266 [abcd]"},
        {"abc", "x<Right><Del>z<Enter>", "266 [xbz]"},
        {"abc", "<Ins>x<Enter>", "266 [xabc]"},
        {"abcd", "<Ins>x", "266 [xabcd]"},
        {"abc", "<End><Back><Back><Home><Back>y<Enter>", "266 [y]"},
        {"abcde", "z<F5><Up><Tab><PgDn><Enter>", "266 [zbcde]"},
        {"abcde", "vwxyz", "266 [vwxyz]"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(std::string(g.begin) + " " + g.keys);
        Gesprek t([&] {
            char tekst[6];
            snprintf(tekst, sizeof tekst, "%s", g.begin);
            WINAT(3, 3);
            int32_t key = REGELEDIT(8, 20, tekst, 5);
            std::string uit = vorm("%d [%s]", key, tekst);
            return WINRIJ() == 3 && WINKOLOM() == 3 ? uit : "cursor";
        });
        t.wacht_op(8, 20, (g.begin + std::string("_____")).substr(0, 5) + " ");
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), g.uit);
    }
}

namespace {
const char* orde_label(int n) {
    static const char* labels[] = {"&Toevoegen",    "&Raadplegen", "&Matrix",     "&Wijzigen",
                                   "&Bijbestellen", "&Dupliceren", "&Verwijderen"};
    return n < 7 ? labels[n] : nullptr;
}
const char* lang_label(int n) {
    static const char* labels[] = {"e&Xport naar het bestand", "&Zoeken in de orders", "&Alle gegevens",
                                   "&Qua maten"};
    return n < 7 ? orde_label(n) : n < 11 ? labels[n - 7] : nullptr;
}
} // namespace

TEST(Keuze, Rij) {
    struct {
        const char *keys, *uit;
    } const gevallen[] = {
        {"<Enter>", "1 10"}, // the default
        {"w", "3 10"},       // small letters will do, and no ENTER is needed
        {"xqv", "6 10"},     // letters that are not there are refused
        {"b", "-"},          // disabled: nothing yet
        {"<PgDn>", "-1 338"}, {"<Cancel>", "-1 355"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.keys);
        Gesprek t([] {
            KEUZESTART(orde_label);
            for (int n : {0, 1, 2, 3, 6})
                KEUZEAAN(n);
            KEUZEVAST(1);
            TOETSAAN(K_PGDN);
            TOETSAAN(K_CANCEL);
            int n = KEUZE(24, 2);
            return vorm("%d %d", n, SCHERM.laatste);
        });
        EXPECT_EQ(t.regel(24), " Uw keuze R  Toevoegen, Raadplegen, Matrix, Wijzigen, Verwijderen");
        EXPECT_FALSE(t.cel(24, 14).voor == t.cel(24, 15).voor && t.cel(24, 14).vet == t.cel(24, 15).vet);
        t.toetsen(g.keys);
        if (strcmp(g.uit, "-") == 0)
            t.toetsen("<Cancel>");
        else
            EXPECT_EQ(t.antwoord(), g.uit);
    }
}

TEST(Keuze, KorteVormMetHulplijst) {
    struct {
        const char *keys, *uit;
    } const gevallen[] = {
        {"z", "8 10"},
        {"<F1><Enter>", "2 10"}, // the list stands on the default
        {"<F1><Down><Down><Enter>", "4 10"},
        {"<F1>x", "7 120"},
        {"<F1><Esc>d", "5 10"}, // back to the row
        {"<F1><F6><F1><Cancel><Enter>", "2 10"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.keys);
        Gesprek t([] {
            KEUZESTART(lang_label);
            for (int n = 0; n < 32; n++)
                KEUZEAAN(n);
            KEUZEVAST(2);
            int n = KEUZE(24, 2);
            return vorm("%d %d", n, SCHERM.laatste);
        });
        EXPECT_EQ(t.regel(24), " Uw keuze M  T, R, M, W, B, D, V, X, Z, A, Q");
        EXPECT_TRUE(t.cel(24, 14).vet);
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), g.uit);
    }
}

TEST(Keuze, Getallen) {
    struct {
        int minimum, maximum;
        const char *keys, *uit;
    } const gevallen[] = {
        {11, 12, "12", "9 12"}, {11, 12, "011", "9 11"},       {1, 9, "4", "9 4"},
        {11, 12, "w", "3 0"},   {15, 28, "1<Enter>2w", "3 0"}, {15, 28, "28", "9 28"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.keys);
        Gesprek t([&] {
            uint16_t getal = 0;
            KEUZESTART(orde_label);
            KEUZEAAN(3);
            bool enig = KEUZEENIG(3);
            KEUZEAAN(6);
            KEUZEGETAL(9, &getal, g.minimum, g.maximum);
            int n = KEUZE(20, 5);
            return enig && !KEUZEENIG(3) ? vorm("%d %d", n, getal) : "mask";
        });
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), g.uit);
    }
    Gesprek t([] {
        uint16_t getal = 0;
        KEUZESTART(orde_label);
        KEUZEAAN(3);
        KEUZEGETAL(9, &getal, 11, 12);
        int n = KEUZE(20, 5);
        return vorm("%d %d", n, getal);
    });
    t.toetsen("13");
    EXPECT_EQ(t.regel(25), "<13> ongeldige keuze");
    EXPECT_EQ(t.cursor_kolom(), 14);
    t.toetsen("9");
    EXPECT_EQ(t.regel(25), "<9> ongeldige keuze");
    t.toetsen("11");
    EXPECT_EQ(t.antwoord(), "9 11");
}

// ---- the interrupt poll

namespace {

// Polls until it is told to stop, at most ten seconds.
int lange_loop() {
    time_t tot = time(nullptr) + 10;
    while (time(nullptr) < tot)
        if (ONDERBREKEN())
            return 1;
        else
            usleep(5000);
    return 0;
}

} // namespace

TEST(Onderbreken, Vraag) {
    Gesprek t([] {
        SCHERM.laatste = 77;
        int uit = lange_loop();
        std::string s = vorm("%d %d %d", uit, ONDERBREKEN(), SCHERM.laatste);
        ONDERBREKRESET();
        return s + vorm(" %d", ONDERBREKEN());
    });
    t.stuur("x");
    t.wacht("Alleen <CANCEL> voor onderbreken");
    t.stuur("ab\033");
    t.wacht(" Onderbreken ");
    EXPECT_EQ(doos(t), (Doos{18, 11, 5, 24}));
    t.wacht_op(20, 15, "Akkoord? (J/N)J");
    t.stuur("n\r");
    t.weg(" Onderbreken ");
    t.stuur("\033");
    t.wacht(" Onderbreken ");
    t.stuur("\r");
    EXPECT_EQ(t.antwoord(), "1 1 77 0");
}

namespace {
int gehaald;
int32_t macro_haal() {
    return gehaald++, K_ESC;
}
} // namespace

// A macro that plays holds an ESC of its own: the poll must not take it, and one look a second is enough.
TEST(Onderbreken, LaatDeMacroMetRust) {
    Gesprek t([] {
        MACROHAAK.haal = macro_haal;
        MACROHAAK.over = [] { return 1; };
        MACROHAAK.druk = [](int32_t) { gehaald += 100; };
        MACROHAAK.stop = [] { gehaald += 1000; };
        MACROHAAK.aan = MACROHAAK.speelt = 1;
        TOETSTERUG('x');
        TOETSTERUG('y');
        int uit = ONDERBREKEN();
        int over = SCHERM.statustekst[0] == 'A';
        TOETSTERUG('z'); // a second look in this second would take it
        uit += ONDERBREKEN();
        MACROHAAK.speelt = 0;
        int z = TOETS();
        MACROHAAK = MacroHaak{};
        return vorm("%d %d %c %d", uit, over, z, gehaald);
    });
    EXPECT_EQ(t.antwoord(), "0 1 z 0");
}
