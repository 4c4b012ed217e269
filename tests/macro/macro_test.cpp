// Macros recorded and played on a screen: records byte for byte, whose they are, what comes first and what ends them,
// and a table that can't be used.
#include "macro/speler.h"
#include "shared/files.h"
#include "store/tabel.h"
#include "support/proces.h"
#include "support/schrijfstoring.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/menu.h"
#include "term/prompt.h"
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

using namespace test;

struct Macro : testing::Test {
    TijdelijkeMap map;
};

// What the keys gave, in a program that shows their codes.
std::string codes_na(const std::string& bytes, uint16_t gebruiker = 7,
                     const std::function<void()>& wat = toon_toetsen) {
    Terminal t(speler(gebruiker, wat));
    t.kalm();
    t.stuur(bytes);
    t.kalm();
    const std::string uit = t.regel(1);
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    return uit;
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
    EXPECT_TRUE(t.wacht_op(1, 1, "97 98 50 10 269 258 27 47 130 9 263 32")) << t.scherm();

    // A new description leaves the keys; no keys are no macro.
    t.reeks("<F2><Ins>k");
    EXPECT_TRUE(t.wacht("Naar de kop"));
    t.toetsen("Terug<End>!<F2><F2>");
    t.toetsen("3<F2><F2>");
    EXPECT_TRUE(t.wacht("Er zijn geen toetsen opgenomen.")) << t.scherm();
    t.toetsen("<Enter><Esc>");
    mac_rec anders = k;
    VASTIN(anders.omschrijving, "Terugde kop!");
    EXPECT_EQ(lees_bestand("MACRO.TXT"), bytes(anders));
    EXPECT_TRUE(IXDIEPCHECK("MACRO").empty());
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0);
    EXPECT_EQ(codes_na(std::string(F2) + "kn", 8), "") << "another user's";
}

TEST_F(Macro, AHundredKeys) {
    Terminal t(speler(7));
    t.kalm();
    t.reeks("<F2><Ins>");
    t.toetsen("1");
    t.toetsen("<F2>");
    t.stuur(std::string(130, 'x'));
    EXPECT_TRUE(t.wacht("De macro is vol: 100 toetsen.")) << t.scherm();
    t.kalm();
    t.toetsen("<Enter>");
    EXPECT_EQ(t.stuk(10, 33, 5), "     ") << "what was typed on is no key of the next: " << t.scherm();
    t.toetsen("<Esc>");
    mac_rec vol{};
    memcpy(&vol, lees_bestand("MACRO.TXT").data(), sizeof vol);
    EXPECT_EQ(vol.aantal, 100);
    EXPECT_EQ(vol.toetsen[99], 'x');
    // A hundred to come, and one more typed: none is lost.
    t.stuur(std::string(F2) + "1yz");
    EXPECT_TRUE(t.wacht("120 121 122 120")) << t.scherm();
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0);
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
    t.toetsen("U");
    EXPECT_TRUE(t.wacht("User   Key   Omschrijving")) << t.scherm();
    EXPECT_TRUE(t.wacht("7      b     Tweede"));
    EXPECT_TRUE(t.wacht("Cursor Up, Cursor Down, Page Up, Page Down"));
    EXPECT_EQ(t.scherm().find("Vreemde"), std::string::npos);
    t.toetsen("<Down><Enter>");
    EXPECT_TRUE(t.wacht_op(1, 1, "122"));
    t.reeks("<F2><Del>");
    EXPECT_TRUE(t.wacht("Druk op <Del> om een macro te verwijderen"));
    t.toetsen("<Enter>"); // chooses nothing here
    t.toetsen("<Del>");
    t.weg("Tweede");
    EXPECT_TRUE(t.wacht("Eerste")) << t.scherm();
    t.toetsen("<Del>");
    EXPECT_TRUE(t.weg("Macro Lijst"));
    t.reeks("<F2><Del>");
    EXPECT_TRUE(t.wacht("Geen informatie"));
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
    const struct {
        std::string getypt, codes;
        bool poll;
    } rijen[] = {
        {f2 + "k", "49 10 50 27 51", false},
        {f2 + "kxyz", "49 120 121 122 10 50 27 51", false},
        {f2 + "kxyz", "49 120 121 122 10 50 27 51", true},
        {f2 + "kx\030y", "49 120 355 121", false},
        {f2 + "kx\030y", "49 120 355 121", true},
        {f2 + "kx\033", "49 120 27", false},
        {f2 + "k" + f2 + "e", "49 53", false},
        {f2 + "k" + f2 + f2, "49", false},
        {f2 + "-" + f2 + "\033[15~" + "a", "97", false}, // no letters: no macro, and no key
    };
    for (const auto& r : rijen)
        EXPECT_EQ(codes_na(r.getypt, 7, r.poll ? std::function<void()>(pollend) : toon_toetsen), r.codes)
            << r.getypt << r.poll;
}

// Each waits for a key in its own way; the macro answers all of them. A field with an F2 of its own keeps it.
TEST_F(Macro, InEveryConversation) {
    MACROSCHRIJF(macro('m', 7, {258, 10}));
    MACROSCHRIJF(macro('j', 7, {'J', 10}));
    MACROSCHRIJF(macro('t', 7, {'o', 'k', 10}));
    const struct {
        const char *naam, *toets, *antwoord;
        std::function<std::string()> vraag;
    } rijen[] = {
        {"field", "<F2>t", "xok 10",
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
        {"question", "<F2>j", "1", [] { return std::to_string(JNVRAAG(3, 3, "[-]Zeker")); }},
        {"box", "<F2>j", "1",
         [] { return std::to_string(FFLASH(-2, 0, A_WAARDE, "vraag", "tekst\n[-]Zeker")); }},
        {"menu", "<F2>m", "2",
         [] {
             TR_MENU* menu = TR_NEW(1, 5, 5, 0, nullptr);
             TR_ADD(menu, -1, "&Een", 1, 1, 0, nullptr);
             TR_ADD(menu, -1, "&Twee", 2, 1, 0, nullptr);
             const int uit = TR_RUN(menu, 1);
             TR_FREE(menu);
             return std::to_string(uit);
         }},
        {"list", "<F2>m", "2",
         [] {
             DMREC* lijst = DMNEW("lijst");
             DMITEM(lijst, "&Een", 1, 1);
             DMITEM(lijst, "&Twee", 2, 1);
             return std::to_string(DMRUN(lijst, 5, 1));
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
        if (r.naam == std::string("field"))
            t.toetsen("x");
        // First a look at the lists, which leave nothing behind.
        if (r.toets != std::string("<F2>")) {
            t.reeks("<F2><Del>");
            EXPECT_TRUE(t.wacht("Macro Lijst"));
            t.toetsen("<Esc>");
        }
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
    EXPECT_TRUE(t.wacht("loopt"));
    t.stuur(F2);
    EXPECT_TRUE(t.wacht("Alleen <CANCEL> voor onderbreken")) << t.scherm();
    t.stuur("\030");
    EXPECT_TRUE(t.wacht("Akkoord? (J/N)")) << t.scherm();
    t.kalm();
    t.reeks("N<Enter>");
    t.weg("Akkoord");
    t.stuur("\030");
    EXPECT_TRUE(t.wacht("Akkoord? (J/N)"));
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
    const char* dicht = "Macro's kunnen niet worden gebruikt:";
    auto flip = [](const char* bestand, size_t plaats) {
        std::string s = lees_bestand(bestand);
        s[plaats] = static_cast<char>(s[plaats] ^ 0x55);
        schrijf_bestand(bestand, s);
    };
    static std::pair<const char*, const char*> tekst;
    auto ander = [](const char* titel, const char* sleutel) {
        tekst = {titel, sleutel};
        ASSERT_EQ(system("rm m/*"), 0);
        IXCLOSE(IXEIGEN(
            "m/MACRO", 1, [](ICB* i) { IXUPDFCB(i, 0, tekst.first), IXUPDFCB(i, 1, tekst.second); },
            nullptr));
    };
    const struct {
        const char* wat;
        const char *map, *melding; // null: it plays
        std::function<void()> maak;
    } rijen[] = {
        {"sound", "m/", nullptr, [] {}},
        {"unset", nullptr, nullptr, [] { EXPECT_EQ(system("cp m/* ."), 0); }},
        {"missing directory", "weg", "bestaat niet", [] {}},
        {"no directory", "m/MACRO.TXT", "bestaat niet", [] {}},
        {"name too long", lang.c_str(), "te lang", [] {}},
        {"index gone", "m", nullptr, [] { unlink("m/MACRO.INX"); }},
        {"data gone", "m", "Macro k is niet aanwezig !", [] { unlink("m/MACRO.TXT"); }},
        {"index cut", "m", nullptr, [] { EXPECT_EQ(truncate("m/MACRO.INX", 700), 0); }},
        {"header", "m", nullptr, [&] { flip("m/MACRO.INX", 24); }},
        {"marked", "m", nullptr, [&] { flip("m/MACRO.INX", 45); }},
        {"key definition", "m", nullptr, [&] { flip("m/MACRO.INX", 48 + 21); }},
        {"node", "m", nullptr, [&] { flip("m/MACRO.INX", 512 + 2); }},
        {"entry", "m", nullptr, [&] { flip("m/MACRO.INX", 512 + 8); }},
        {"old version", "m", "is geen macrobestand",
         [] {
             std::string s = lees_bestand("m/MACRO.INX");
             s[258] = 94, s[259] = 1;
             schrijf_bestand("m/MACRO.INX", s);
         }},
        {"half a record", "m", "is geen macrobestand", [] { EXPECT_EQ(truncate("m/MACRO.TXT", 300), 0); }},
        {"records of another length", "m", "is geen macrobestand", [&] { ander("x,59", "k,I,1,2,I,3,4"); }},
        {"another key", "m", "is geen macrobestand", [&] { ander("x,236", "k,I,3,4,I,1,2"); }},
        {"a pipe", "m", "is geen macrobestand",
         [] {
             unlink("m/MACRO.TXT");
             EXPECT_EQ(mkfifo("m/MACRO.TXT", 0600), 0);
         }},
        {"no keys", "m", "Macro k kan niet worden gespeeld",
         [&] { flip("m/MACRO.TXT", 4), flip("m/MACRO.TXT", 5); }},
        {"no key's code", "m", "Macro k kan niet worden gespeeld", [&] { flip("m/MACRO.TXT", 7); }},
        {"not to be written", "m", "geen rechten",
         [] {
             EXPECT_EQ(chmod(".", 0755), 0);
             EXPECT_EQ(chmod("m", 0555), 0);
             unlink("m/MACRO.INX");
         }},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        const std::string melding = r.melding ? r.melding : "";
        ASSERT_EQ(system("rm -rf m MACRO.*; mkdir m"), 0);
        setenv("MACRO", "m", 1);
        MACROSCHRIJF(macro('k', 7, {'1', '2'}));
        unsetenv("MACRO");
        r.maak();
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
            EXPECT_TRUE(t.wacht(melding)) << t.scherm();
            const bool macro = melding.starts_with("Macro k");
            EXPECT_TRUE(macro || t.wacht(dicht));
            t.toetsen(melding.ends_with("aanwezig !") ? "n" : "<Enter>");
            t.toetsen("x");
            EXPECT_EQ(t.regel(1), "120") << t.scherm();
        } else
            EXPECT_TRUE(t.wacht_op(1, 1, "49 50")) << t.scherm();
        t.stuur("q");
        EXPECT_EQ(t.einde(), 0) << t.scherm();
        chmod("m", 0755);
    }
}

TEST_F(Macro, MadeByManyAtOnce) {
    setenv("MACRO", ".", 1);
    constexpr int USERS = 6, STUKS = 12;
    std::vector<std::unique_ptr<Agent>> wie;
    for (int u = 1; u <= USERS; u++)
        wie.push_back(std::make_unique<Agent>([u](const std::string&) {
            int goed = 0;
            for (int i = 0; i < STUKS; i++)
                goed += MACROSCHRIJF(macro(static_cast<char>('a' + i), static_cast<uint16_t>(u), {'1'})) == 1;
            return std::to_string(goed);
        }));
    std::vector<std::string> uit;
    for (auto& a : wie)
        uit.push_back(a->vraag("ga", 1));
    for (size_t i = 0; i < wie.size(); i++)
        EXPECT_EQ(uit[i] == Agent::geen_antwoord ? wie[i]->antwoord(60'000) : uit[i], std::to_string(STUKS));
    std::vector<mac_rec> alle;
    EXPECT_EQ(MACROLEES(0, &alle), 1);
    EXPECT_EQ(alle.size(), size_t{USERS * STUKS});
    EXPECT_TRUE(IXDIEPCHECK("MACRO").empty());
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
    bij_elke_schrijfactie([] { MACROSCHRIJF(macro('a', 7, {'9'})); }, "\n\n", {"MACRO"}, stand,
                          {"a49 b50 ", "a57 b50 "});
    bij_elke_schrijfactie([] { MACROWEG('a', 7); }, "\n\n", {"MACRO"}, stand, {"a49 b50 ", "b50 "});
}

} // namespace
} // namespace zg
