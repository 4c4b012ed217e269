// The way to an order: season, supplier, list of orders, date of a new one.
#include "e2e/loop.h"

using namespace zg::test;

using Keuze = InDatamap;

TEST_F(Keuze, SeizoenGetyptGekozenOfStandaard) {
    Programma p(map);
    for (const auto& [toetsen, melding] : Rijen<const char*, const char*>{
             {"123<Enter>", "<123> Ongeldig jaartal"},
             {"1979<Enter>", "<1979> Alleen 1980 t/m 2021 mogelijk"},
             {"51<Enter>", "<1951> Alleen 1980 t/m 2021 mogelijk"},
             {"50<Enter>", "<2050> Alleen 1980 t/m 2021 mogelijk"},
             {"2022<Enter>", "<2022> Alleen 1980 t/m 2021 mogelijk"},
             {"15<Enter>W<Enter>", "2015W: onbekend inkoopseizoen"},
             {"99<Enter>K<Enter>", "1999K: onbekend inkoopseizoen"},
         }) {
        p.t.toetsen(toetsen);
        EXPECT_TRUE(p.t.wacht_op(25, 1, melding)) << toetsen << "\n" << p.t.scherm();
        EXPECT_EQ(p.t.cursor_rij(), 1);
    }
    // ESC at the letter goes back to the year, the second one out of the field would leave.
    p.t.toetsen("16<Enter><Esc>");
    EXPECT_EQ(p.t.cursor_kolom(), 46);
    p.t.toetsen("16<Enter>w<Enter>", 1, 46, "2016W");
    EXPECT_EQ(p.t.cursor_rij(), 3);
    // From the supplier back to the season; then a season by the list.
    p.t.toetsen("<Esc><F5>", "selecteren inkoopseizoen");
    p.t.toetsen("<Enter><Esc>");
    // An empty year is the standard season, whose directory is made on the spot.
    EXPECT_FALSE(map.bestaat("0000K"));
    p.t.toetsen("<Back><Enter>K<Enter>");
    EXPECT_EQ(p.t.cursor_rij(), 3) << p.t.scherm();
    EXPECT_TRUE(map.bestaat("0000K"));
    EXPECT_EQ(p.t.stuk(1, 46, 7), "Std K  ");
    p.uit("<Esc>");
}

TEST_F(Keuze, EerstVerwerken) {
    for (auto [bestand, melding] : {std::pair{"STAT07.TXT", "Eerst stamgegevens verwerken a.u.b."},
                                    {"2016Z/NEWORD.TXT", "Eerst orders verwerken a.u.b."}}) {
        schrijf_bestand(map.bestand(bestand), "");
        Programma p(map);
        p.t.toetsen("<Enter><Enter>", melding);
        p.t.reeks("<Enter>");
        EXPECT_EQ(p.t.einde(), 0);
        unlink(map.bestand(bestand).c_str());
    }
}

TEST_F(Keuze, LeverancierOpNummerEnUitDeLijst) {
    Programma p(map);
    p.t.toetsen("<Enter><Enter>999<Enter>", "Wilt u leverancier 999 toevoegen");
    p.t.toetsen("<Enter>", "<999> Onbekende leverancier");
    p.t.toetsen("40<Enter>", "Deze relatie is geen leverancier, toevoegen als leverancier");
    p.t.toetsen("<Enter>", "<40> Deze relatie is geen leverancier");
    p.t.toetsen("31<Enter>", 3, 19, "Møller & Søn");
    p.t.toetsen("<Esc>");
    // The list shows suppliers only; by name behind TAB.
    p.t.toetsen("<Enter><Enter><F5><PgUp>", "Mode Centrale");
    EXPECT_FALSE(bevat(p.t.scherm(), "Agentuur"));
    p.t.toetsen("<Tab>NOO<Enter>");
    EXPECT_TRUE(p.t.kalm());
    p.t.toetsen("<Enter>", 3, 19, "Noord Ltd");
    p.uit("<Esc>");
    EXPECT_FALSE(map.bestaat("2016Z/ORD0027.JRN")) << "an empty journal stays behind";
}

TEST_F(Keuze, OrderlijstSorteringPositieEnVerlaten) {
    map.sys(32, std::string("\x04\0", 2)); // supplier's order numbers are in use: three orderings
    std::string inhoud;
    for (const auto& [oms, nr, dag, ordernr] :
         Rijen<const char*, const char*, int, int>{{"Eerste", "B-7", 0, 1500},
                                                   {"Tweede", "A-9", -30, 1700},
                                                   {"Vierde", "", -10, 1600},
                                                   {"Vijfde", "b-1", 0, 1501},
                                                   {"Derde", "", -10, 1600}}) {
        zg::ordkop kop = maak_kop(oms, static_cast<uint16_t>(WERKDATUM + dag));
        kop.ordernummer = ordernr;
        memcpy(kop.lev_ordernr, nr, strlen(nr));
        inhoud += maak_order(kop, {Regel{}});
    }
    map.journaal(inhoud);
    Programma p(map);
    p.t.toetsen("<Enter><Enter>12<Enter>");
    auto rijen = [&p](std::initializer_list<const char*> namen) {
        int rij = 8;
        for (const char* naam : namen)
            EXPECT_NE(p.t.regel(rij++).find(naam), std::string::npos) << naam << "\n" << p.t.scherm();
    };
    p.t.wacht("</> voor nieuwe order");
    EXPECT_NE(p.t.regel(22).find("<TAB> voor sortering"), std::string::npos) << p.t.scherm();
    // Latest date first, then the highest number, then the latest in the journal.
    rijen({"Vijfde", "Eerste", "Derde", "Vierde", "Tweede"});
    p.t.toetsen("<Tab>", "Ordernr");
    p.t.toetsen("9999<Enter>"); // above all: the first
    rijen({"1700", "1600", "1600", "1501", "1500"});
    p.t.toetsen("1600<Enter>");
    rijen({"Derde", "Vierde", "1501", "1500"});
    p.t.toetsen("<Tab>", "Lev ordernr");
    p.t.toetsen("<PgUp>");
    rijen({"Derde", "Vierde", "Tweede", "Vijfde", "Eerste"}); // without a number first, case doesn't separate
    // Behind something typed "/" is a character of the number; in an empty field it leads to the date.
    p.t.toetsen("A/<Back>-9<Enter>");
    rijen({"Tweede", "Vijfde", "Eerste"});
    p.t.toetsen("<Home>b-/", 22, 16, "b-/");
    p.t.toetsen("<Home><Del><Del><Del>");
    // F5 opens the list again, F3 leaves it.
    p.t.toetsen("/");
    p.t.weg("</> voor nieuwe");
    EXPECT_EQ(p.t.cursor_kolom(), 74) << p.t.scherm();
    p.t.toetsen("<F5>", "</> voor nieuwe");
    p.t.toetsen("<F3>");
    EXPECT_EQ(p.t.cursor_kolom(), 74) << p.t.scherm();
    EXPECT_EQ(p.t.stuk(1, 74, 6), "010316") << "the working date again";
    p.t.toetsen("<F5><Enter>", "1501 / Vijfde");
    p.uit("<Esc>");
    EXPECT_EQ(map.journaal(), inhoud);
}
