// Prompts, boxes, line editor, choice row and the interrupt poll, as a user meets them.
#include "gesprek.h"
#include "term/keuze.h"

using namespace zg;
using namespace zg::test;

TEST(Prompt, JaNee) {
    for (const auto& [tekst, keys, regel, uit] : Rijen<const char*, const char*, const char*, int>{
             {"[-]Regel verwijderen", "<Enter>", "Regel verwijderen? (J/N)N", 0},
             {"[-]Regel verwijderen", "j<Enter>", "Regel verwijderen? (J/N)N", 1},
             {"[+]", "<Enter>", "Akkoord? (J/N)J", 1},
             {"", "<Enter>+<Enter>", "Akkoord? (J/N)_", 1}, // nothing to accept yet: ENTER is refused
             {"[x]Printen", "<Enter>", "Printen? (J/N)N", 0},
             {"[+]Printen", "<Cancel>", "Printen? (J/N)J", 0},
         }) {
        SCOPED_TRACE(std::string(tekst) + " " + keys);
        Gesprek t([&] {
            SCRPUT(A_WAARDE, 10, 5, "%s", std::string(70, 'x').c_str());
            return vorm("%d", JNVRAAG(10, 5, "%s", tekst));
        });
        EXPECT_EQ(t.regel(10), std::string(4, ' ') + regel);
        EXPECT_EQ(t.cursor_kolom(), 5 + static_cast<int>(strlen(regel)) - 1);
        EXPECT_EQ(t.antwoord(keys), vorm("%d", uit));
    }
}

TEST(Prompt, ToetsKies) {
    Gesprek t([] {
        SCHERM.vlag = 0;
        std::string uit = vorm("%c ", TOETSKIES("JN"));
        uit += vorm("%u ", SCHERM.vlag);
        uit += vorm("%d ", TOETSKIES(&SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], ""));
        uit += vorm("%u ", SCHERM.vlag);
        ENTERWACHT(12, 3);
        return uit + vorm("%d %d", SCHERM.laatste, static_cast<int>(INSTEL.toe.count()));
    });
    t.toetsen("xj<Up>N<Up>J<F5>");
    EXPECT_EQ(t.regel(12), "  <ENTER> voor vervolg");
    t.toetsen("q");
    EXPECT_EQ(t.regel(25), "Ongeldige toets");
    t.toetsen("<Enter>");
    EXPECT_EQ(t.regel(25), "");
    EXPECT_EQ(t.antwoord(), "N 0 269 8 10 0");
}

TEST(Prompt, FflashMaten) {
    auto x = [](int n, char c) { return std::string(static_cast<size_t>(n), c); };
    std::string v25 = "regel 1";
    for (int i = 2; i <= 25; i++)
        v25 += vorm("\nregel %d", i);
    const std::string lang = "een\ntwee\n[-]Doorgaan met de lange vraag";
    const std::string enter = "<ENTER> voor vervolg";
    struct {
        int optie;
        std::string titel, tekst;
        const char* keys;
        Doos doos;
        int rij, kolom;
        std::string daar; // what stands at row, column of the screen
        int uit;
    } const gevallen[] = {
        {-1, "", "kort", "<Enter>", {10, 25, 4, 32}, 12, 27, enter, 1},
        {-1, "", "", "<Enter>", {11, 25, 3, 32}, 12, 27, enter, 1}, // no row for a text that there isn't
        {-1, "", "\nx", "<Enter>", {10, 25, 5, 32}, 13, 27, enter, 1},
        {-1, "Titel", v25, "x<Enter>", {1, 25, 23, 32}, 21, 27, "regel 20 ", 1},
        {-1, x(66, 't'), "x", "<Enter>", {10, 25, 4, 32}, 10, 26, "────", 1}, // too long for a title

        {-2, "Vraag", lang, "<Enter>", {10, 19, 5, 43}, 13, 21, "Doorgaan met de lange vraag? (J/N)N", 0},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(vorm("%d [%s] %.60s", g.optie, g.titel.c_str(), g.tekst.c_str()));
        Gesprek t([&] {
            SCHERM.laatste = 77;
            SCHERM.vlag = V_GEWIJZIGD;
            TOETSAAN(K_F5);
            int uit = FFLASH(g.optie, 0, A_WAARDE, g.titel.c_str(), "%s", g.tekst.c_str());
            return vorm("%d %d %u %d", uit, SCHERM.laatste, SCHERM.vlag, TOETSTOE(K_F5));
        });
        EXPECT_EQ(doos(t), g.doos) << t.scherm();
        t.wacht_op(g.rij, g.kolom, g.daar);
        EXPECT_EQ(t.antwoord(g.keys), vorm("%d 77 4 1", g.uit));
    }
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
    EXPECT_TRUE(t.cel(11, 24).vet);
    stappen(t,
            {{"",
              {{9, 34, " FOUTMELDING "},
               {12, 24, "En een tweede regel die langer is │"},
               {14, 24, "<ENTER> voor vervolg"}}},
             {"x<Enter>", {{20, 29, "┌"}, {21, 31, "Geen informatie"}, {22, 31, "<ENTER> voor vervolg"}}}});
    EXPECT_EQ(doos(t), (Doos{20, 29, 4, 24}));
    EXPECT_EQ(t.bellen(), 1); // of the key that the box before refused
    stappen(t, {{"x", {{19, 34, " waarschuwing "}}}});
    EXPECT_EQ(doos(t), (Doos{19, 29, 5, 24}));
    EXPECT_EQ(t.bellen(), 2);
    EXPECT_EQ(t.antwoord("<Up>"), "77 1");
}

TEST(Prompt, BovensteRij) {
    Gesprek t([] {
        SCRPUT(A_WAARDE, 5, 1, "blijft");
        TOPTITEL("  orders van crediteuren ");
        TOETS();
        TOPREGEL(' ', "%s %d", "leverancier", 12);
        TOETS();
        TOPREGEL('C', "%s", "nieuw");
        TOETS();
        return std::string("klaar");
    });
    EXPECT_TRUE(t.cel(1, 1).keus && t.cel(1, 80).keus);
    stappen(t, {{"", {{1, 1, " ORDERS VAN CREDITEUREN  "}}},
                {"x", {{1, 1, " ORDERS VAN CREDITEUREN * Leverancier 12 "}, {5, 1, "blijft"}}},
                {"x", {{1, 1, " ORDERS VAN CREDITEUREN * Nieuw  "}, {5, 1, "      "}}}});
    EXPECT_EQ(t.antwoord("x"), "klaar");
}

TEST(Prompt, RegelEdit) {
    struct {
        const char *begin, *keys, *uit;
    } const gevallen[] = {
        {"", "e'<Enter>", "266 [e']"},
        {"", "12345", "266 [12345]"}, // full: ends by itself
        {"", "ab<Esc>", "27 [ab]"},
        {"", "<Cancel>", "27 []"},
        {"", "a<Cancel>b<Enter>", "266 [a/b]"},
        {"abc", "x<Right><Del>z<Enter>", "266 [xbz]"},
        {"abc", "<End><Back>c<Home><Ins>x<F2>", "266 [xabc]"},
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
        EXPECT_EQ(t.antwoord(g.keys), g.uit);
    }
}

namespace {
const char* keuzelabel(int n) {
    static const char* labels[] = {
        "&Toevoegen",           "&Raadplegen",    "&Matrix",      "&Wijzigen",
        "&Bijbestellen",        "&Dupliceren",    "&Verwijderen", "e&Xport naar het bestand",
        "&Zoeken in de orders", "&Alle gegevens", "&Qua maten"};
    return n < 11 ? labels[n] : nullptr;
}
} // namespace

const char* korte_keuze(int n) {
    static char kort[8];
    const char* lang = keuzelabel(n);
    snprintf(kort, sizeof kort, "%.4s", lang ? strchr(lang, '&') : "");
    return lang ? kort : nullptr;
}

// Five labels fit; all of them don't: shorter ones, else letters only, and a list on F1.
TEST(Keuze, Rij) {
    struct {
        uint32_t masker;
        const char *keys, *uit;
        bool kort = false;
    } const gevallen[] = {
        {0x4F, "w", "3 10", true},    {~0u, "<F1><Enter>", "2 10", true},
        {0x4F, "<Enter>", "2 10"}, // the default
        {0x4F, "w", "3 10"},       // small letters will do, and no ENTER is needed
        {0x4F, "xqbv", "6 10"},    // letters that are not there or disabled are refused
        {0x4F, "<Cancel>", "-1 355"}, {~0u, "z", "8 10"},
        {~0u, "<F1><Enter>", "2 10"},                              // the list stands on the default
        {~0u, "<F1>x", "7 120"},      {~0u, "<F1><Esc>d", "5 10"}, // back to the row

    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(vorm("%x %s", g.masker, g.keys));
        Gesprek t([&] {
            KEUZESTART(keuzelabel);
            for (int n = 0; n < 32; n++)
                if (g.masker >> n & 1)
                    KEUZEAAN(n);
            KEUZEVAST(2);
            if (g.kort)
                KEUZEKORT(korte_keuze);
            TOETSAAN(K_PGDN);
            TOETSAAN(K_CANCEL);
            int n = KEUZE(24, 2);
            return vorm("%d %d", n, SCHERM.laatste);
        });
        const bool alle = g.masker == ~0u;
        EXPECT_EQ(t.regel(24), alle && g.kort
                                   ? " Uw keuze M  Toe, Raa, Mat, Wij, Bij, Dup, Ver, Xpo, Zoe, All, Qua"
                               : alle ? " Uw keuze M  T, R, M, W, B, D, V, X, Z, A, Q"
                                      : " Uw keuze M  Toevoegen, Raadplegen, Matrix, Wijzigen, Verwijderen");
        EXPECT_TRUE(alle && !g.kort ? t.cel(24, 14).vet : t.cel(24, 14).voor != t.cel(24, 15).voor);
        EXPECT_EQ(t.antwoord(g.keys), g.uit);
    }
}

// A window whose row has nothing to choose says how to go on; the border keeps its corners, and a narrow one its line.
TEST(Keuze, NietsTeKiezen) {
    for (const bool smal : {false, true}) {
        Gesprek t([smal] {
            WINOPEN1(5, 10, 6, smal ? 14 : 30);
            WINBOX(" Kijk ");
            KEUZESTART(keuzelabel);
            TOETSAAN(K_CANCEL);
            return vorm("%d", KEUZE(4, 2));
        });
        EXPECT_EQ(t.stuk(10, 10, smal ? 14 : 30), smal ? "└────────────┘" : "└────────────── Esc: verder ─┘");
        EXPECT_EQ(t.antwoord("<Esc>"), "-1");
    }
}

// ---- the interrupt poll

TEST(Onderbreken, Vraag) {
    Gesprek t(
        [] {
            SCHERM.laatste = 77;
            const time_t tot = time(nullptr) + 10;
            while (!ONDERBREKEN() && time(nullptr) < tot)
                usleep(5000);
            std::string s = vorm("%d %d", ONDERBREKEN(), SCHERM.laatste);
            ONDERBREKRESET();
            return s + vorm(" %d", ONDERBREKEN());
        },
        {}, false);
    t.stuur("x");
    t.wacht("Alleen <CANCEL> voor onderbreken");
    t.stuur("ab\033");
    t.wacht(" Onderbreken ");
    t.kalm(); // drawn to its end
    EXPECT_EQ(doos(t), (Doos{18, 11, 5, 24}));
    t.wacht_op(20, 15, "Akkoord? (J/N)J");
    t.stuur("n\r");
    t.weg(" Onderbreken ");
    t.stuur("\033");
    t.wacht(" Onderbreken ");
    t.stuur("\r");
    EXPECT_EQ(t.antwoord(), "1 77 0");
}
