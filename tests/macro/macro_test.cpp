// Macros recorded and played on a screen: records byte for byte, whose they are, what comes first and what ends them,
// and a table that can't be used.
#include "macro/speler.h"
#include "support/paar.h"
#include "support/schrijfstoring.h"
#include "term/menu.h"

namespace zg::test {
namespace {

using Macro = InMap;

std::string codes_na(const std::string& getypt, uint16_t gebruiker = 7,
                     const std::function<void()>& wat = toon_toetsen) {
    Terminal t(speler(gebruiker, wat));
    return codes_na(t, getypt);
}

TEST_F(Macro, RecordedAndPlayed) {
    Terminal t(speler(7));
    t.kalm();
    t.reeks("<F2><Ins>");
    ASSERT_TRUE(t.wacht_op(10, 12, "Activerende toets :")) << t.scherm();
    EXPECT_EQ(doos(t), (Doos{7, 10, 12, 60}));
    EXPECT_EQ(t.stuk(7, 32, 15), " Macro Opnemen ");
    EXPECT_EQ(t.stuk(16, 12, 53), "Druk op <ESC> om te stoppen en de macro's te bewaren.");
    t.toetsen("-<Down>K"); // the first two are no letters
    EXPECT_EQ(t.stuk(10, 33, 5), "k    ");
    t.toetsen("Naar de kop<Enter>");
    EXPECT_EQ(doos(t, 11), (Doos{12, 10, 5, 60})) << t.scherm();
    t.toetsen("ab2<Enter><F5><Down><Esc><Cancel>é<Tab><Back> ");
    EXPECT_EQ(t.stuk(15, 12, 50), "2    RTRN F5   DOWN ESC  /    é    TAB  BACK SPACE") << t.scherm();
    t.toetsen("<F2>");
    EXPECT_EQ(t.stuk(12, 12, 45), "Omschrijving :                               ");
    t.toetsen("<Esc>");
    const mac_rec k = macro('k', 7, {'a', 'b', '2', 10, 269, 258, 27, 47, 130, 9, 263, ' '}, "Naar de kop");
    EXPECT_EQ(lees_bestand("MACRO.TXT"), bytes(k));
    t.reeks("<F2>K");
    t.wacht_op(1, 1, "97 98 50 10 269 258 27 47 130 9 263 32");

    // A new description leaves the keys; no keys are no macro.
    t.reeks("<F2><Ins>k");
    t.wacht("Naar de kop");
    t.toetsen("Terug<End>!<F2><F2>");
    t.toetsen("3<F2><F2>", "Er zijn geen toetsen opgenomen.");
    t.toetsen("<Enter><Esc>");
    mac_rec anders = k;
    VASTIN(anders.omschrijving, "Terugde kop!");
    EXPECT_EQ(lees_bestand("MACRO.TXT"), bytes(anders));
    EXPECT_TRUE(IXDIEPCHECK("MACRO").empty());
    EXPECT_EQ(codes_na(std::string(F2) + "kn", 8), "") << "another user's";
}

TEST_F(Macro, AHundredKeys) {
    Terminal t(speler(7));
    t.kalm();
    t.reeks("<F2><Ins>");
    t.toetsen("1<F2>");
    t.stuur(std::string(100, 'x') + "\rab");
    t.wacht("De macro is vol: 100 toetsen.");
    t.kalm();
    t.toetsen("<Enter>");
    EXPECT_EQ(t.stuk(10, 33, 5), "     ") << "what was typed on is no key of the next: " << t.scherm();
    t.toetsen("<Esc>");
    EXPECT_EQ(lees_bestand("MACRO.TXT"), bytes(vol_macro('1')));
}

// Nothing behind F2 for three seconds: the menu, and from it the lists, which have one's own macros only.
TEST_F(Macro, MenuAndLists) {
    MACROSCHRIJF(macro('a', 7, {'x'}, "Eerste"));
    MACROSCHRIJF(macro('a', 8, {'y'}, "Vreemde"));
    MACROSCHRIJF(macro('b', 7, {'z'}, "Tweede"));
    Terminal t(speler(7));
    t.kalm();
    t.stuur(F2);
    ASSERT_TRUE(t.wacht("macro Uitvoeren")) << t.scherm();
    t.toetsen("U", "User   Key   Omschrijving");
    t.wacht("7      b     Tweede");
    t.wacht("Cursor Up, Cursor Down, Page Up, Page Down");
    EXPECT_FALSE(bevat(t.scherm(), "Vreemde"));
    t.toetsen("<Up>"); // above the first is none
    EXPECT_EQ(t.scherm().find("Eerste"), t.scherm().rfind("Eerste")) << t.scherm();
    t.toetsen("<Down><Enter>", 1, 1, "122");
    t.reeks("<F2><Del>");
    t.wacht("Druk op <Del> om een macro te verwijderen");
    t.toetsen("<Enter>"); // chooses nothing here
    t.toetsen("<Del>");
    t.weg("Tweede");
    t.wacht("Eerste");
    t.toetsen("<Del>");
    t.weg("Macro Lijst");
    t.reeks("<F2><Del>");
    t.wacht("Geen informatie");
    t.toetsen("<Enter>q");
    EXPECT_EQ(t.einde(), 0);
    std::vector<mac_rec> rest;
    EXPECT_EQ(MACROLEES(0, &rest), 1);
    ASSERT_EQ(rest.size(), 1u);
    EXPECT_EQ(bytes(rest[0]), bytes(macro('a', 8, {'y'}, "Vreemde")));
}

// What is typed while it plays comes first and in its order; CANCEL and ESC end it, F2 too; none is lost.
TEST_F(Macro, TypedWhileItPlays) {
    MACROSCHRIJF(macro('k', 7, {'1', 13, '2', 27, '3'}));
    MACROSCHRIJF(macro('e', 7, {'5'}));
    const std::string f2 = F2;
    auto pollend = [] { // looks for keys more often than it reads them, and pushes back what it has read
        int kolom = 1;
        for (int32_t key = 0; key != 'q';) {
            TOETSKLAAR();
            TOETSKLAAR();
            key = TOETS();
            TOETSDRUK(key);
            TOETSKLAAR();
            key = TOETS();
            kolom += SCRPUT(A_WAARDE, 1, kolom, "%d ", key);
            WINAT(2, 1);
        }
    };
    for (const auto& [getypt, codes, poll] : Rijen<std::string, std::string, bool>{
             {f2 + "k", "49 10 50 27 51", false},
             {f2 + "kxyz", "49 120 121 122 10 50 27 51", false},
             {f2 + "kxyz", "49 120 121 122 10 50 27 51", true},
             {f2 + "kx\030y", "49 120 355 121", false},
             {f2 + "kx\030y", "49 120 355 121", true},
             {f2 + "kx\033", "49 120 27", false},
             {f2 + "k" + f2 + "e", "49 53", false},
             {f2 + "k" + f2 + f2, "49", false},
             {f2 + "-" + f2 + "\033[15~" + "a", "97", false}, // no letters: no macro, and no key
         })
        EXPECT_EQ(codes_na(getypt, 7, poll ? std::function<void()>(pollend) : toon_toetsen), codes)
            << getypt << poll;
    auto ander = [] {
        TOETS();
        MACROGEBRUIKER(8);
        toon_toetsen();
    };
    EXPECT_EQ(codes_na(f2 + "k", 7, ander), "") << "it ends with its user";
    auto terug = [] {
        TOETS();
        TOETSDRUK('x');
        TOETSTERUG(K_CANCEL);
        toon_toetsen();
    };
    EXPECT_EQ(codes_na(f2 + "k", 7, terug), "355 120") << "what is pushed on it outlives it";
    auto vol = [] { // no room for the dialog's windows
        while (SCHERM.aantal < VENSTERS - 2)
            WINOPEN1(1, 1, 1, 80);
        toon_toetsen();
    };
    EXPECT_EQ(codes_na(f2 + "k", 7, vol), "107");
}

// Each waits for a key in its own way; a look at the lists leaves nothing behind, and the macro answers all of them. A field with an F2 of its own keeps it.
TEST_F(Macro, InEveryConversation) {
    MACROSCHRIJF(macro('m', 7, {258, 10}));
    MACROSCHRIJF(macro('j', 7, {'J', 10}));
    MACROSCHRIJF(macro('t', 7, {'o', 'k', 10}));
    const struct {
        const char *naam, *toets, *antwoord;
        std::function<std::string()> vraag;
    } rijen[] = {
        {"field", "x<F2><Del><Esc><F2>t", "xok 10",
         [] {
             char tekst[9] = "";
             INGAVE(3, 3, "8c", tekst);
             return vorm("%.8s %d", tekst, SCHERM.laatste);
         }},
        {"its own F2", "<F2>", "266",
         [] {
             char tekst[9] = "";
             INGAVE(3, 3, "8c", &SCHERM.toets[key_f2], tekst);
             return std::to_string(SCHERM.laatste);
         }},
        {"question", "<F2><Del><Esc><F2>j", "1", [] { return std::to_string(JNVRAAG(3, 3, "[-]Zeker")); }},
        {"menu", "<F2><Del><Esc><F2>m", "2",
         [] {
             TR_MENU* menu = TR_NEW(1, 5, 5, 0, nullptr);
             TR_ADD(menu, -1, "&Een", 1, 1, 0, nullptr);
             TR_ADD(menu, -1, "&Twee", 2, 1, 0, nullptr);
             const int uit = TR_RUN(menu, 1);
             TR_FREE(menu);
             return std::to_string(uit);
         }},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.naam);
        Gesprek t([&] {
            MACROBEGIN();
            MACROGEBRUIKER(7);
            MACROAAN();
            return r.vraag();
        });
        t.reeks(r.toets);
        EXPECT_EQ(t.antwoord(), r.antwoord);
    }
}

// ESC typed in a long run asks, and ends the macro, which would go on answering; F2 there opens nothing.
TEST_F(Macro, BreakingOffALongRun) {
    MACROSCHRIJF(macro('k', 7, {'1', 'J', 10, 'J', 10}));
    Terminal t(speler(7, [] {
        TOETS();
        SCRPUT(A_WAARDE, 2, 1, "loopt");
        SCRFLUSH(0);
        while (!ONDERBREKEN())
            usleep(10'000);
        toon_toetsen();
    }));
    t.kalm();
    t.reeks("<F2>k");
    t.wacht("loopt");
    t.stuur(F2);
    t.wacht("Alleen <CANCEL> voor onderbreken");
    t.stuur("\030");
    t.wacht("Akkoord? (J/N)");
    t.kalm();
    t.reeks("J<Enter>");
    t.weg("Akkoord");
    t.toetsen("z");
    EXPECT_EQ(t.regel(1), "122") << "and nothing of the macro";
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0);
}

// Whatever became of the table: a message or a repair, and the program goes on.
TEST_F(Macro, TableThatCantBeUsed) {
    const std::string lang(64, 'x');
    const char *anders = "is geen macrobestand", *opnieuw = "Macro k kan niet worden gespeeld";
    const struct {
        const char *wat, *map, *opdracht, *melding; // null: it plays
        const char* bestand = nullptr;              // a byte of it is changed
        size_t plaats = 0;
    } rijen[] = {
        {"sound", "m/", "", nullptr},
        {"unset", nullptr, "cp m/* .", nullptr},
        {"missing directory", "weg", "", "bestaat niet"},
        {"name too long", lang.c_str(), "", "te lang"},
        {"index gone", "m", "rm m/MACRO.INX", nullptr},
        {"data gone", "m", "rm m/MACRO.TXT", "Macro k is niet aanwezig !"},
        {"index cut", "m", "truncate -s 700 m/MACRO.INX", nullptr},
        {"marked", "m", "", nullptr, "m/MACRO.INX", 45},
        {"entry", "m", "", nullptr, "m/MACRO.INX", 512 + 8},
        {"former version", "m", "", anders, "m/MACRO.INX", 258},
        {"another key", "m", "mv m/Y.INX m/MACRO.INX; mv m/Y.TXT m/MACRO.TXT", anders},
        {"a pipe", "m", "rm m/MACRO.TXT; mkfifo m/MACRO.TXT", anders},
        {"no keys", "m", "printf '\\0' | dd of=m/MACRO.TXT bs=1 seek=4 conv=notrunc status=none", opnieuw},
        {"no key's code", "m", "", opnieuw, "m/MACRO.TXT", 7},
        {"not to be written", "m", "chmod 0755 .; rm m/MACRO.INX; chmod 0555 m", "geen rechten"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        const std::string melding = r.melding ? r.melding : "";
        ASSERT_EQ(system("rm -rf m MACRO.*; mkdir m"), 0);
        setenv("MACRO", "m", 1);
        MACROSCHRIJF(macro('k', 7, {'1', '2'}));
        unsetenv("MACRO");
        IXCLOSE(nieuw_paar("m/Y", {"x,236", "k,I,3,4,I,1,2"}));
        ASSERT_EQ(system((std::string(":; ") + r.opdracht).c_str()), 0);
        if (r.bestand) {
            std::string s = lees_bestand(r.bestand);
            s[r.plaats] = static_cast<char>(s[r.plaats] ^ (r.plaats == 258 ? 1 : 0x55)); // 351 is 350 then
            schrijf_bestand(r.bestand, s);
        }
        Opties o;
        if (r.map)
            o.omgeving = {{"MACRO", r.map}};
        Terminal t(
            [&] {
                return speler(7, [&] {
                    if (melding == "geen rechten" && geteuid() == 0 && setresuid(65534, 65534, 65534) != 0)
                        return;
                    toon_toetsen();
                })();
            },
            o);
        t.kalm();
        t.reeks("<F2>k");
        if (r.melding) {
            t.wacht(melding);
            EXPECT_TRUE(melding.starts_with("Macro k") || t.wacht("Macro's kunnen niet worden gebruikt:"));
            t.toetsen(melding.ends_with("aanwezig !") ? "n" : "<Enter>");
            t.toetsen("x");
        }
        t.wacht_op(1, 1, r.melding ? "120" : "49 50");
        t.stuur("q");
        EXPECT_EQ(t.einde(), 0) << t.scherm();
        chmod("m", 0755);
    }
}

// Several tables, so that they meet at the making of each.
TEST_F(Macro, MadeByTwoAtOnce) {
    constexpr int TABELLEN = 20;
    auto map_van = [](int i) {
        const std::string naam = "m" + std::to_string(i);
        mkdir(naam.c_str(), 0700);
        setenv("MACRO", naam.c_str(), 1);
    };
    auto maak = [=](const std::string& gebruiker) {
        int goed = 0;
        for (int i = 0; i < TABELLEN; i++) {
            map_van(i);
            goed += MACROSCHRIJF(macro('k', static_cast<uint16_t>(atoi(gebruiker.c_str())), {'1'})) == 1;
        }
        return std::to_string(goed);
    };
    Agent een(maak), twee(maak);
    een.vraag("1", 0), twee.vraag("2", 0);
    EXPECT_EQ(een.antwoord(60'000) + twee.antwoord(60'000), "2020");
    for (int i = 0; i < TABELLEN; i++) {
        map_van(i);
        std::vector<mac_rec> alle;
        EXPECT_TRUE(MACROLEES(0, &alle) == 1 && alle.size() == 2 && IXDIEPCHECK(MACROPAD().c_str()).empty())
            << i;
    }
    unsetenv("MACRO");
}

// Killed at each write, and refused each, when one is added, changed, deleted: it is as it was or as it was to be.
TEST_F(Macro, KilledAndRefusedAtEachWrite) {
    schrijf_bestand("DTSYS.TXT", "");
    MACROSCHRIJF(macro('a', 7, {'1'}));
    MACROSCHRIJF(macro('b', 7, {'2'}));
    auto stand = [] {
        std::vector<mac_rec> alle;
        std::string uit = MACROLEES(0, &alle) == 1 ? "" : "none ";
        for (const mac_rec& r : alle)
            uit += vorm("%c%u%s ", r.toets, unsigned{r.toetsen[0]}, MACROGAAF(r) ? "" : "!");
        return uit;
    };
    bij_elke_schrijfactie([] { MACROSCHRIJF(macro('c', 7, {'3'})); }, "\n\n", {"MACRO"}, stand,
                          {"a49 b50 ", "a49 b50 c51 "});
    bij_elke_schrijfactie([] { MACROWEG('a', 7); }, "\n\n", {"MACRO"}, stand, {"a49 b50 ", "b50 "});
}

} // namespace
} // namespace zg::test
