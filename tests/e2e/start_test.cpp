// The hand-over from the menu and back, and every way in which it is refused.
#include "control/batchvw.h"
#include "e2e/loop.h"
#include "order/start.h"
#include "shared/iotab.h"

using namespace zg::test;

TEST(Start, SeizoenspromptInformatieEnTerug) {
    Datamap map;
    Opties opties = map.opties();
    opties.omgeving = {{"TSTBIN", map.bestand("bin")}, {"BIN", "/bestaat/niet"}}; // which of them goes first
    Terminal t(map.overgave(), opties);
    ASSERT_TRUE(t.wacht_op(1, 46, "2016Z")) << t.scherm();
    ASSERT_TRUE(t.kalm());
    EXPECT_NE(t.regel(1).find("ORDERS"), std::string::npos) << t.scherm();
    EXPECT_EQ(t.stuk(3, 1, 11), "Leverancier");
    EXPECT_EQ(t.cursor_rij(), 1);
    EXPECT_EQ(t.cursor_kolom(), 46);
    EXPECT_EQ(lees_bestand(map.bestand("DTSYS.TXT"))[Datamap::slot() + 38], 1) << "level: in a program";
    t.toetsen("<F10>");
    for (const char* tekst : {"zgbestel", "870 ", "4711 Modehuis De Proef", "Lantaarn8.70  3F", "Joke (B)"})
        EXPECT_TRUE(t.wacht(tekst)) << tekst << "\n" << t.scherm();
    t.toetsen("<Enter>");
    t.weg("4711");
    t.toetsen("<Esc>");
    ASSERT_EQ(t.einde(), 0) << t.scherm();
    EXPECT_TRUE(bevat(t.uitvoer(), "menu: zgbsmenu Joke 7 zgbestel"));
    std::string slot = lees_bestand(map.bestand("DTSYS.TXT")).substr(Datamap::slot(), 64);
    EXPECT_EQ(slot[38], 2);
    EXPECT_EQ(slot.substr(48, 9), std::string("zgbsmenu") + '\0');
}

// A fault in the run of the unattended user, whom nobody would tell: back to the menu, which sees that it ended.
TEST(Start, BatchgebruikerTerugNaarHetMenu) {
    for (bool dicht : {false, true}) {
        Datamap map;
        char naam[8] = "Nacht";
        zg::SCRAMBLE(naam);
        map.sys(Datamap::slot(99), naam);
        std::vector<std::string> argv = map.overgave(99, "Nacht");
        Terminal t(
            [&] {
                std::vector<char*> args;
                for (std::string& a : argv)
                    args.push_back(a.data());
                if (chdir(map.pad().c_str()) != 0)
                    return 1;
                zg::prog_start("zgbestel", "", 5, args.data());
                int32_t nr = 0;
                if (dicht)
                    zg::iotab('C', &nr, nullptr, zg::SYS_RECORD);
                zg::batch_claim(dicht ? 5 : 16);
                return 2;
            },
            map.opties());
        EXPECT_EQ(t.einde(), 0) << t.scherm();
        EXPECT_NE(t.uitvoer().find("menu: zgbsmenu Nacht 99 zgbestel"), std::string::npos) << t.uitvoer();
        EXPECT_EQ(lees_bestand(map.bestand("DTSYS.TXT"))[Datamap::slot(99) + 38], 2);
    }
}

namespace {

struct Weigering {
    const char* wat;
    std::function<void(Datamap&, std::vector<std::string>&, Opties&)> maak;
    const char* melding;
    int status = 1;
};

void zet_userprog(Datamap& map, std::string naam) {
    naam.resize(10);
    map.sys(Datamap::slot() + 48, naam);
}

const Weigering WEIGERINGEN[] = {
    {"four arguments", [](Datamap&, auto& argv, Opties&) { argv.pop_back(); },
     "zgbestel foutief gestart, code 99"},
    {"no system tables", [](Datamap& map, auto&, Opties&) { unlink(map.bestand("DTSYS.TXT").c_str()); },
     "DTSYS.TXT niet aanwezig in"},
    {"other release", [](Datamap& map, auto&, Opties&) { map.sys(9 * 64 + 58, "8.60 "); },
     "Foutieve release: bestanden van 8.60"},
    {"session beyond the table", [](Datamap&, auto& argv, Opties&) { argv[3] = "100"; },
     "foutief gestart, code 2"},
    {"session nobody has", [](Datamap&, auto& argv, Opties&) { argv[3] = "9"; }, "foutief gestart, code 2"},
    {"other user", [](Datamap&, auto& argv, Opties&) { argv[2] = "Jan"; }, "foutief gestart, code 1"},
    {"slot is for another program", [](Datamap& map, auto&, Opties&) { zet_userprog(map, "zgvoorraad"); },
     "foutief gestart, code 0"},
    {"both say another program",
     [](Datamap& map, auto& argv, Opties&) {
         zet_userprog(map, "zgverkoop");
         argv[1] = "zgverkoop";
     },
     "foutief gestart, code 13"},
    {"no order parameters", [](Datamap& map, auto&, Opties&) { unlink(map.bestand("ORDPARM.SYS").c_str()); },
     "Open niet gelukt (file=ORDPARM.SYS"},
    {"no branch table", [](Datamap& map, auto&, Opties&) { unlink(map.bestand("DTFILGEG.TXT").c_str()); },
     "Open niet gelukt (file=DTFILGEG.TXT"},
    {"series without their index: no order without labels",
     [](Datamap& map, auto&, Opties&) { schrijf_bestand(map.bestand("DTSER.TXT"), ""); },
     "Open niet gelukt (file=DTSER.INX"},
    {"an index of series, and nothing else of the register",
     [](Datamap& map, auto&, Opties&) { schrijf_bestand(map.bestand("DTSER.INX"), ""); },
     "Open niet gelukt (file="},
    {"unknown terminal", [](Datamap&, auto&, Opties& o) { o.term = "raar"; }, "Onbekende terminfo (Raar)",
     10},
};

} // namespace

TEST(Start, WeigertEnMeldtWaarom) {
    for (const Weigering& w : WEIGERINGEN) {
        SCOPED_TRACE(w.wat);
        Datamap map;
        std::vector<std::string> argv = map.overgave();
        Opties opties = map.opties();
        w.maak(map, argv, opties);
        Terminal t(argv, opties);
        t.wacht(w.melding);
        if (w.status == 1) {
            t.wacht("PROGRAMMA AFGEBROKEN");
            t.toetsen("x"); // only ENTER ends it
            EXPECT_TRUE(t.leeft());
            t.reeks("<Enter>");
        }
        EXPECT_EQ(t.einde(), w.status);
    }
}

// Nobody at a keyboard, as under a timer: the report stands behind the screen, and nothing is waited for.
TEST(Start, MeldtOokZonderToetsenbord) {
    Datamap map;
    std::string regel = "exec";
    for (const std::string& woord : map.overgave())
        regel += " '" + woord + "'";
    unlink(map.bestand("DTFILGEG.TXT").c_str());
    Terminal t({"/bin/sh", "-c", regel + " </dev/null"}, map.opties());
    EXPECT_EQ(t.einde(), 1);
    t.wacht("Open niet gelukt (file=DTFILGEG.TXT");
}

// A menu program that isn't there: said on the screen, and the slot tells that it may run.
TEST(Start, WegTerug) {
    Datamap map;
    Opties opties = map.opties();
    opties.omgeving = {{"BIN", "/bestaat/niet"}, {"PATH", "/bestaat/niet"}};
    std::vector<std::string> argv = map.overgave(); // a copy, with no menu beside it
    std::filesystem::copy(std::exchange(argv[0], map.bestand("bin/zgbestel")), map.bestand("bin/zgbestel"));
    std::filesystem::rename(map.bestand("bin/zgbsmenu"), map.bestand("bin/menu"));
    Programma p(argv, opties);
    p.t.reeks("<Esc>");
    p.t.wacht("Programma zgbsmenu niet gevonden");
    p.t.reeks("<Enter>");
    EXPECT_EQ(p.t.einde(), 1);
    EXPECT_EQ(lees_bestand(map.bestand("DTSYS.TXT")).substr(Datamap::slot() + 48, 8), "zgbsmenu");
}
