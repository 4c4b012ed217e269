// The windows that a field opens: compose box and help; keys that a field gives to the program or the abort; and
// keys typed ahead.
#include "gesprek.h"
#include "term/dm_hdl.h"
#include "term/formaat.h"
#include "term/menu.h"
#include "term/teksten.h"

namespace zg::test {
namespace {

// One field at a place; its leaving key, text and variable at row 1 afterwards.
template <class... A>
std::function<void()> veld(int rij, int kolom, const char* formaat, const char* begin, A... sleutels) {
    return [=] {
        char doel[21] = "";
        strcpy(doel, begin);
        INGAVE(rij, kolom, formaat, sleutels..., doel);
        SCRPUT(A_WAARDE, 1, 1, "klaar %d [%s] [%s]", SCHERM.laatste, ingavetekst, doel);
    };
}

TEST(VeldVenster, Compose) {
    OpScherm t(veld(5, 10, "10s", "", &SCHERM.toets[key_cancel]));
    t.toetsen("<F11>");
    EXPECT_EQ(t.stuk(5, 10, 6), "┌────┐");
    EXPECT_EQ(t.stuk(6, 10, 6), "│____│");
    EXPECT_EQ(t.cursor_rij(), 6);
    t.toetsen("e'<Enter>");
    EXPECT_EQ(t.stuk(5, 10, 10), "é_________") << t.scherm();
    EXPECT_EQ(t.regel(7), "");
    t.toetsen("<F11>3/4<Enter><F11>65<Enter><F11>225<Enter><F11>a^<Enter>");
    EXPECT_EQ(t.stuk(5, 10, 10), "é¾Aßâ_____");
    // none of these is a character; the field stays as it is
    for (const char* niets : {"xx<Enter>", "aG<Enter>", "a^x<Enter>", "<Enter>", "e'<Esc>", "31<Enter>",
                              "256<Enter>", "9999", "0<Enter>"}) {
        t.toetsen("<F11>");
        t.toetsen(niets);
        EXPECT_EQ(t.regel(25), "Ongeldige toets") << niets;
        EXPECT_EQ(t.stuk(5, 10, 10), "é¾Aßâ_____") << niets;
        t.toetsen("<Left><Right>");
    }
    t.toetsen("<Enter>");
    EXPECT_EQ(t.cursor_rij(), 1);
    EXPECT_EQ(t.regel(1), "klaar 10 [é¾Aßâ] [é¾Aßâ]");
}

TEST(VeldVenster, Hulp) {
    struct {
        const char *formaat, *soort, *breedte, *tekens, *bereik; // rows 2, 3, 5 and 10 of the window
    } const gevallen[] = {
        {"20c,E", "van een tekst", "U moet 20 posities vullen", "Alle tekens", ""},
        {"8.4f,P", "van een getal", "U mag 8 posities vullen, waarvan  4 cijfers na de komma", "Alle cijfers",
         "Bereik : 0.0001 t/m 999.9999"},
        {"8f,P", "van een getal", "U mag 8 posities vullen", "Alle cijfers", "Bereik : 1 t/m 99999999"},
        {"8B,ZP", "van een bedrag", "U mag 8 posities vullen, waarvan  2 cijfers na de komma", "Alle cijfers",
         "Bereik : 0.00 t/m 99999.99"},
        {"10D", "van een datum", "U mag 10 posities vullen  (DDMMJJ)", "Alle cijfers", ""},
        {"6x", "van een hexadecimale waarde", "U mag 6 posities vullen", "Hexadecimale tekens", ""},
        {"b", "Ja of Nee", "U moet 1 posities vullen", "J, N", ""},
        {"1c[+*C],EA", "van een tekst", "U moet 1 posities vullen", "* + C", ""},
        {"3c[^.,]", "van een tekst", "U mag 3 posities vullen", ", . niet", ""},
    };
    Terminal t([&] {
        SCRINIT();
        for (const auto& g : gevallen) {
            alignas(8) char doel[32] = {};
            INGAVE(3, 10, g.formaat, &SCHERM.toets[key_cancel], &SCHERM.toets[key_up],
                   &SCHERM.toets[key_pgdn], &SCHERM.toets[key_f5], &SCHERM.toets[key_f12], doel);
        }
        SCREXIT();
        return 0;
    });
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.formaat);
        t.toetsen("<Help>");
        EXPECT_EQ(t.stuk(9, 27, 26), "─ Ingave HELP-informatie ─") << t.scherm();
        const std::pair<int, std::string> regels[] = {
            {2, std::string("Er wordt ingave ") + g.soort + " verwacht"},
            {3, g.breedte},
            {5, std::string(g.tekens) + " toegestaan"},
            {7, "De volgende functietoetsen zijn toe te passen :"},
            {8, "Cursor Up, Page Down, CANCEL"},
            {9, "F5, F12"},
            {10, g.bereik},
            {12, "<ENTER> voor vervolg _"}};
        for (auto [rij, tekst] : regels) {
            tekst.resize(66, ' ');
            EXPECT_EQ(t.stuk(9 + rij, 7, 66), tekst);
        }
        EXPECT_EQ(std::make_pair(t.cursor_rij(), t.cursor_kolom()), std::make_pair(21, 28));
        t.toetsen("x<F1>");
        EXPECT_EQ(t.regel(25), "Ongeldige ingave");
        t.toetsen(&g == gevallen ? "<Enter>" : "<Esc>");
        EXPECT_EQ(t.regel(25), "");
        EXPECT_EQ(t.regel(9), "");
        t.toetsen("<Esc>");
    }
    EXPECT_EQ(t.einde(), 0);
}

// The help names the field as its label does, and what its function keys do.
TEST(VeldVenster, HulpNoemtHetVeld) {
    struct {
        const char *label, *rij;
        bool record;
    } const gevallen[] = {
        {"11 Leverancier . :", "11 Leverancier: F5 lijst, F10 gegevens", true},
        {"Maat   K\x94rting:", "Körting: F5 lijst", false},
        {"", "F5 lijst, F10 gegevens", true},
        {"14", "F5 lijst", false},                    // a row of a grid
        {"Korting    :", "Korting: F5 lijst", false}, // under longer ones
        {"Adrescode van de Leverancier 14", "Adrescode van de Leverancier 14: F5 lijst", false},
    };
    OpScherm t([&] {
        WINOPEN1(2, 1, 6, 60);
        WINBOX(nullptr);
        for (const auto& g : gevallen) {
            SCRCLREOL(3, 1);
            SCRPUT(A_LABEL, 3, 2, "%s", g.label);
            if (strlen(g.label) < 20)
                SCRPUT(A_WAARDE, 3, 22, "waarde");
            if (g.record)
                TOETSAANMET(K_F10, T_HELP_F_RECORD);
            int32_t n = 0;
            INGAVE(3, 36, "4l,Z", &SCHERM.toets[key_f5], &SCHERM.toets[key_cancel], &n);
        }
    });
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.rij);
        t.toetsen("<F1>");
        std::string rij = t.stuk(20, 7, 66);
        EXPECT_EQ(rij.substr(0, rij.find_last_not_of(' ') + 1), g.rij) << t.scherm();
        t.toetsen("<Enter><Esc>");
    }
}

// Field, list, menu and question in the middle of a field, as the macro dialog has them, leave no trace in it: not
// in a text with its insert mode, nor in a number with its caller's range and keys.
TEST(VeldVenster, DialoogMiddenInHetVeld) {
    OpScherm t([] {
        char doel[21] = "";
        int32_t getal = 120;
        MACROHAAK.aan = 1;
        MACROHAAK.dialoog = []() -> int32_t {
            double breuk = 0;
            BEZIGAAN();
            WINOPEN2(10, 20, 5, 40);
            WINBOX(" dialoog ");
            INGAVE(1, 2, "5.1f,N", &SCHERM.toets[key_f5], &breuk);
            DMREC* lijst = DMNEW("lijst");
            DMITEM(lijst, "&geen", 1, 1);
            DMITEM(lijst, "&toets", 2, 1);
            int keuze = DMRUN(lijst, 12, 1);
            TR_MENU* menu = TR_NEW(1, 5, 5, 0, nullptr);
            TR_ADD(menu, -1, "&Een", 1, 1, 0, nullptr);
            TR_RUN(menu, 0);
            TR_FREE(menu);
            bool ja = JNVRAAG(2, 2, "[+]Verder");
            WINCLOSE();
            return ja && keuze == 2 && breuk == -2.5 ? '9' : -2;
        };
        INGAVE(5, 10, "20.8S[^Q],U", &SCHERM.toets[key_up], doel);
        TOETSAAN(K_PGDN);
        INSTEL.maximum = 125;
        INGAVE(6, 10, "6l,", &SCHERM.toets[key_f5], &getal);
        SCRPUT(A_WAARDE, 1, 1, "klaar %s %d %d %u", doel, getal, SCHERM.laatste, SCHERM.vlag & V_GEWIJZIGD);
    });
    t.toetsen("ab<Ins><F2>", "dialoog");
    t.toetsen("<F2>");
    EXPECT_EQ(t.regel(25), "Ongeldige toets") << "no dialog inside the dialog";
    t.toetsen("-2,5<Enter><Down><Enter>e<Enter>");
    EXPECT_EQ(t.regel(5), "         AB9_____");
    EXPECT_EQ(t.regel(11), "");
    EXPECT_EQ(t.regel(25), "") << "the field waits, so the program isn't busy";
    t.toetsen("q");
    EXPECT_EQ(t.regel(25), "<Q> Ongeldige ingave!!  (HELP voor toelichting)");
    t.toetsen("<F1>", "Q niet toegestaan");
    t.toetsen("<Enter><F2><Enter><Esc><Esc>n<Enter><Home>c");
    EXPECT_EQ(t.regel(5), "         CAB9____") << "insert mode is still on";
    t.toetsen("<Up><End><F2>-2,5<Enter><Down><Enter>e<Enter><Enter>");
    EXPECT_EQ(t.stuk(6, 10, 6), "1209__") << "beyond the range that the caller had set";
    t.toetsen("<End><Back><PgDn>");
    EXPECT_EQ(t.regel(1), "klaar CAB9 120 338 0");
}

// A key of the caller's own never opens a window.
TEST(VeldVenster, EigenToetsen) {
    for (auto [toets, code] : {std::pair<const char*, int>{"<Help>", K_HELP}, {"<F1>", K_F1}}) {
        OpScherm t(veld(5, 10, "8c", "abc", &SCHERM.toets[key_help]));
        t.toetsen(toets);
        EXPECT_EQ(t.regel(1), vorm("klaar %d [abc] [abc]", code));
    }
    OpScherm t(veld(5, 10, "8c", "abc", &SCHERM.toets[key_f1], &SCHERM.toets[key_f11]));
    t.toetsen("q<F11>");
    EXPECT_EQ(t.regel(1), "klaar 275 [q] [q]");
}

TEST(VeldVenster, ExitBreektAf) {
    OpScherm t(veld(5, 10, "8c", "abc", &SCHERM.toets[key_cancel]));
    t.toetsen("x");
    t.sein(SIGQUIT);
    t.wacht("Ongeldige toets");
    t.toetsen("<Home>");
    t.sein(SIGINT); // deletes a character
    t.wacht_op(5, 10, "________");
    t.sein(SIGQUIT);
    t.wacht("EXIT-toets gebruikt");
    t.toetsen("<Enter>");
    EXPECT_EQ(t.einde(), 1);
}

// On some terminals CANCEL is a printable character: it cancels at the start of a field and is typed behind it.
TEST(VeldVenster, CancelIsOokEenTeken) {
    TijdelijkeMap map;
    std::string maak = "infocmp -1 -A \"" ZG_BINARY_DIR
                       "/terminfo\" Xterm | sed 's/kcan=.*/kcan=\\/,/' >x.ti && tic -o " +
                       map.pad() + " x.ti 2>/dev/null";
    ASSERT_EQ(system(maak.c_str()), 0);
    const Opties opties{.omgeving = {{"TERMINFO_DIRS", map.pad()}}};
    for (auto [keys, uit] :
         {std::pair{"/", "klaar 355 [abc] [abc]"}, {"1/2<Enter>", "klaar 10 [1/2] [1/2]"}}) {
        OpScherm t(veld(5, 10, "8c", "abc", &SCHERM.toets[key_cancel]), opties);
        t.toetsen(keys);
        EXPECT_EQ(t.regel(1), uit);
    }
}

// A caller may have CANCEL and Esc looked at before they leave; the old value comes back all the same, also from
// behind the first column, and no text keeps anyone in.
TEST(VeldVenster, AfbrekenNaKeuring) {
    static const struct {
        const char *formaat, *begin, *keys, *einde;
    } GEVALLEN[] = {
        {"6s", "abc", "xyz<Esc>", "27 [abc] abc   "},
        {"6s", "abc", "<Cancel>", "355 [abc] abc   "},
        {"6s", "abc", "xy<Cancel><Esc>", "27 [abc] abc   "},
        {"6s[123456789-],Z", "12", "3-3<Esc>", "27 [12] 12    "},
        {"4c,F", "abc", "xyz<Esc>wxyz<Esc>", "27 [abc] abc   "}, // looked at, and still nothing stored
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.keys);
        OpScherm t([&g] {
            alignas(2) char doel[7] = {};
            strcpy(doel, g.begin);
            TOETSAAN(K_ESC);
            TOETSCHECKAAN(K_CANCEL);
            TOETSCHECKAAN(K_ESC);
            INGAVE(5, 10, g.formaat, &SCHERM.toets[key_cancel], doel);
            SCRPUT(A_WAARDE, 1, 1, "%d [%s]", SCHERM.laatste, doel);
        });
        t.toetsen(g.keys);
        EXPECT_EQ(t.regel(1) + " " + t.stuk(5, 10, 6), g.einde);
    }
}

} // namespace
} // namespace zg::test
