// The order on paper: what stands on it, the same from the shell and from the line screen; the printed lists of
// distributions and runs.
#include "e2e/loop.h"
#include "order/ioord.h"
#include "shared/ioeti.h"
#include "term/gesprek.h"
#include "tools/shell.h"
#include <thread>

using namespace zg;
using namespace zg::test;

namespace {

namespace fs = std::filesystem;

// Lines without what depends on the moment (the first of each page) and without pages.
std::string zonder_blad(const std::string& tekst) {
    std::string uit;
    for (size_t p = 0; p < tekst.size();) {
        const size_t e = std::min(tekst.find('\n', p), tekst.size());
        std::string regel(VASTTRIM(std::string_view(tekst).substr(p, e - p)));
        p = e + 1;
        regel.erase(0, regel.find_first_not_of('\f'));
        if (regel.find(" blad:") == std::string::npos && !(regel.empty() && uit.ends_with("\n\n")))
            uit += regel + "\n";
    }
    while (uit.ends_with("\n\n"))
        uit.pop_back();
    return uit.substr(std::min(uit.find_first_not_of('\n'), uit.size()));
}

std::string ordprint(const DemoMap& map, const std::string& wat) {
    const Uit uit = sh("cd '" + map.pad() + "' && ordprint " + wat);
    EXPECT_EQ(uit.status, 0) << wat << "\n" << uit.tekst;
    return zonder_blad(uit.tekst);
}

// Two models in dollars: prices by size and two terms; one price, a remark; more sizes than a row holds.
std::string order_van_drie() {
    ordkop k = maak_kop("Voorjaar");
    VASTIN(k.valuta, "USD");
    k.koers = 9000, k.koerseenheid = 1;
    k.korting = -1000;
    std::string uit = record('O', k) + tekst(1, "Franco huis\nper collo") + rec_model(5, "JURK", 1) +
                      tekst(3, "Zie monster 14");
    auto dessin = [&](const char* naam, int kleur, int maten, const char* opmerking = "") {
        orddessin d = een_dessin(naam, kleur, maten);
        VASTIN(d.materiaal, "KATOEN");
        VASTIN(d.omschrijving, "Jurk kort");
        d.volgnummer = 1;
        uit += record('D', d) + tekst(4, opmerking);
    };
    dessin("UNI", 1, 4);
    for (int maat = 1; maat <= 4; maat++)
        uit += rec_maat(maat, maat <= 2 ? 1000 : 123456, maat <= 2 ? 1000 : 123456);
    uit += rec_term(42440, 42470) + rec_cel(0, 1, 4) + rec_cel(0, 2, 5) + rec_cel(2, 4, 3);
    uit += rec_term(42500, 42520) + rec_cel(2, 1, 2);
    dessin("RUIT", 2, 2, "Let op: gevo\x89rd");
    uit += rec_maat(1, 2000, 2000) + rec_maat(2, 2000, 2000) + rec_term(42440, 42470) + rec_cel(1, 2, 7);
    uit += rec_model(5, "TRUI", 3);
    dessin("KABEL", 1, 25);
    for (int maat = 1; maat <= 25; maat++)
        uit += rec_maat(maat, 500, 500);
    uit += rec_term(42440, 42470);
    for (int maat = 1; maat <= 25; maat++)
        uit += rec_cel(maat % 2, maat, maat);
    return uit;
}

} // namespace

TEST(Afdruk, WhatStandsOnIt) {
    Datamap map;
    map.journaal(order_van_drie());
    EXPECT_EQ(ordprint(map, "-f full 2016Z/ORD0012.JRN"),
              R"(Leverancier      : 12 Mode Centrale     Adres            : Utrecht
Seizoen          : 2016Z                Orderdatum       : 01-03-2016
Orderomschrijving: Voorjaar             Collectie        : ZOMER
Korting          : 10.00%               Valutacode       : USD
Valutakoers      : 90.00000  (per 100)

Leveringscondities:
    Franco huis
    per collo

merk model           materiaal    dessin       km artgr  kl d stuks netto(USD)
------------------------------------------------------------------------------
VIJF JURK            KATOEN       UNI             10001   1      14    3432.30
    Vijf Sterren  Serie 10001.1.1  Jurk kort  maatsoort 1 Maten
    maat              tot      35      36      37      38
    110316-100416      12       4       5               3
    100516-300516       2       2
    besteld            14       6       5               3
    bruto                   10.00   10.00 1234.56 1234.56
    netto                    9.00    9.00 1111.10 1111.10
Model Opmerking:
    Zie monster 14

                     KATOEN       RUIT            10001   2       7     126.00
    Vijf Sterren  Serie 10001.2.1  Jurk kort  maatsoort 1 Maten
    bruto 20.00  netto 18.00
    maat              tot   35   36
    110316-100416       7         7
Dessin Opmerking:
    Let op: gevoërd

VIJF TRUI            KATOEN       KABEL           10001   1     325    1462.50
    Vijf Sterren  Serie 10001.1.1  Jurk kort  maatsoort 3 Vijfentwintig
    bruto 5.00  netto 4.50
    maat              tot   50   51   52   53   54   55   56   57   58   59   60
    110316-100416     325    1    2    3    4    5    6    7    8    9   10   11
    maat              tot   61   62   63   64   65   66   67   68   69   70   71
    110316-100416     325   12   13   14   15   16   17   18   19   20   21   22
    maat              tot   72   73   74
    110316-100416     325   23   24   25

------------------------------------------------------------------------------
Regels           : 3                    Stuks            : 346
Bruto            : USD 5578.68          Netto            : USD 5020.80
Inkoop           : EUR 4518.72
)");
    // A branch without prices: what it has of the lines that it has; each piece is in one sheet.
    const std::string vellen = ordprint(map, "-f branch -x 2016Z/ORD0012.JRN");
    EXPECT_NE(vellen.find(R"(
VIJF JURK            KATOEN       UNI             10001   1       5
    maat              tot   35   36   37   38
    stuks               5    2              3
------------------------------------------------------------------------------
Regels           : 1                    Stuks            : 5
)"),
              vellen.npos)
        << vellen;
    for (const char* som : {"Stuks            : 165\n", "Stuks            : 176\n"})
        EXPECT_TRUE(bevat(vellen, som));
    // As a PDF, with every letter; nothing over what is there.
    const std::string pdf = "cd '" + map.pad() + "' && ordprint -f full -o o.pdf 2016Z/ORD0012.JRN";
    EXPECT_TRUE(sh("mkdir '" + map.pad() + "/uit'; " + pdf).zegt("nothing is printed there"));
    const std::string uit = "cd '" + map.pad() + "' && ordprint -w 132 -o uit/o.pdf 2016Z/ORD0012.JRN";
    EXPECT_EQ(sh(uit).status, 0);
    EXPECT_EQ(sh(uit).status, 3);
    EXPECT_TRUE(sh("pdftotext -layout '" + map.bestand("uit/o.pdf") + "' -").zegt("EUR 4518.72"));
    EXPECT_EQ(map.restjes(), "");
}

// To a printer by its name: only to that one, and told where it can't be said which way; nothing is left of a refused job.
TEST(Afdruk, ToAPrinterFromTheShell) {
    Datamap map;
    map.journaal(order_van_drie());
    for (const char* m : {"prt", "uit"})
        fs::create_directory(map.bestand(m));
    schrijf_bestand(map.bestand("printers"), R"(printer 2 naam=Map
verbinding 2 1 apparaat=uit map=1
configuratie 2 1 kolommen=80 rijen=64
configuratie 2 2 kolommen=132 rijen=72
printer 3 naam=Twee
verbinding 3 1 apparaat=uit map=1
configuratie 3 1 kolommen=80 rijen=64 omschrijving=hoog
configuratie 3 2 kolommen=80 rijen=0
printer 4 naam=Kaal
configuratie 4 1 kolommen=80 rijen=64
printer 5 naam=Twins
printer 6 naam=TWINX
printer 7 naam=Leeg
verbinding 7 1 apparaat=""
configuratie 7 1 kolommen=80 rijen=64
)");
    const std::string hier = "cd '" + map.pad() + "' && export ZEBPRT=prt && ";
    ASSERT_EQ(sh(hier + "zgdruk load printers && sed -i s/TWINX/TWINS/ prt/TR_PTRG.TXT").tekst, "");
    const struct {
        const char *wat, *zegt;
        int status;
    } rijen[] = {
        {"-p Map", "", 0},
        {"-p map/1 -w 132", "", 0},
        {"-p Twee -C 2", "", 0},
        {"-p Twee", "--configuration says which:\n  1 hoog\n  2 ", 2},
        {"-p Map -w 40", "no such", 2},
        {"-p Map/2", "no such", 2},
        {"-p Map/x", "no such", 2},
        {"-p Kaal", "no such", 2},
        {"-p SCR", "no such", 2},
        {"-p twins", "more than one printer has this name", 2},
        {"-p ''", "is empty", 2},
        {"-o ''", "is empty", 2},
        {"-p Leeg", "has no device", 2},
        {">/dev/full", "write failed", 3},
    };
    int bestanden = 0;
    for (const auto& r : rijen) {
        const Uit uit = sh(hier + "ordprint " + r.wat +
                           " 2016Z/ORD0012.JRN; s=$?; while ls PR* >/dev/null 2>&1; do sleep "
                           "0.1; done; exit $s");
        EXPECT_TRUE(uit.status == r.status && (*r.zegt ? uit.zegt(r.zegt) : uit.tekst.empty()))
            << r.wat << uit.tekst;
        bestanden += r.status == 0;
        EXPECT_EQ(sh(hier + "grep -l 'Stuks            : 346' uit/T* | wc -l").tekst,
                  std::to_string(bestanden) + "\n")
            << r.wat;
    }
}

// The same on the line screen; its line is in hand as before.
TEST(Afdruk, FromTheLineScreen) {
    Datamap map;
    map.journaal(order_van_drie());
    fs::create_directory(map.bestand("prt"));
    Opties opties = map.opties();
    opties.omgeving.push_back({"ZEBPRT", map.bestand("prt")});
    Programma p(map.overgave(), opties);
    p.eerste_order();
    for (const char* keus : {"RFKMT", "RFVZT", "RFFMT"}) {
        const char* getypt = keus[2] == 'K' ? "Vår.txt" : ""; // in the characters of the terminal
        p.t.toetsen(keus + std::string(getypt) + "<Enter>", "Printbreedte");
        p.t.toetsen("8", std::string("Vastgelegd in uit/") + getypt);
        p.t.toetsen("<Enter>");
        const std::string naam = map.bestand(*getypt ? "uit/Vår.txt" : "uit/order12-010316.txt");
        const std::string wat = keus[2] == 'K' ? "-f short " : keus[2] == 'V' ? "-x -f full " : "-f branch ";
        EXPECT_EQ(zonder_blad(lees_bestand(naam)), ordprint(map, wat + "2016Z/ORD0012.JRN"));
        fs::remove(naam);
    }
    p.t.toetsen("RFKMDlijst<Enter>8", "Vastgelegd in uit/lijst.pdf");
    p.t.toetsen("<Enter>RFKMD.<Enter>", "Invalid path to outputfile");
    p.t.toetsen("<Enter>RFKMS", "Einde overzicht");
    p.t.wacht("Orderomschrijving: Voorjaar");
    p.t.toetsen("<Esc>RA", "35   36   37   38");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(map.restjes(), "");
}

// Bytes of the reports that are being made.
uintmax_t rapport_omvang(const Datamap& map) {
    uintmax_t uit = 0;
    for (const char* in : {"", "uit"})
        for (const auto& e : fs::directory_iterator(map.bestand(in)))
            if (std::error_code weg; e.path().filename().string().starts_with("PR") && e.is_regular_file(weg))
                uit += e.path().extension() == ".JOB" ? 0 : fs::file_size(e, weg);
    return uit;
}

// For 40 columns only; and a long order that the user breaks off: what there was of it, and a row that says so.
TEST(Afdruk, FortyColumnsAndBrokenOff) {
    constexpr int REGELS = 30000;
    Datamap map;
    std::vector<Regel> regels(REGELS);
    for (int i = 0; i < REGELS; i++)
        regels[static_cast<size_t>(i)].dessin = "D" + std::to_string(i);
    map.journaal(maak_order(maak_kop("Voorjaar"), regels));
    fs::create_directory(map.bestand("prt"));
    Opties opties = map.opties();
    opties.omgeving.push_back({"ZEBPRT", map.bestand("prt")});
    opties.klok.clear(); // the keyboard is looked at once a second
    const auto argv = map.overgave();
    map.sys(Datamap::slot() + 28, std::string("\1\0", 2)); // the mask of widths
    Programma p(argv, opties);
    p.eerste_order();
    p.t.toetsen("RFKMS", "Orderomschrijving: Voorjaar");
    p.t.wacht("Leverancier      : 12 Mode Centrale\n");
    p.t.toetsen("<End>", "Stuks            : " + std::to_string(REGELS) + "\n");
    p.t.toetsen("<Esc>", 24, 1, "Uw keuze");
    p.t.toetsen("RFVMT");
    p.t.stuur("\r\033"); // typed ahead
    // The keyboard is looked at a second after the beginning: the report stands still in its middle until then.
    for (int keer = 0; keer < 20000 && rapport_omvang(map) == 0; keer++)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    p.t.sein(SIGSTOP);
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    p.t.sein(SIGCONT);
    p.t.wacht(" Onderbreken ");
    p.t.kalm();
    p.t.stuur("j\r");
    p.t.wacht("Vastgelegd in");
    p.t.toetsen("<Enter>");
    const std::string uit = lees_bestand(map.bestand("uit/order12-010316.txt")), sterren(25, '*');
    EXPECT_TRUE(uit.ends_with("\n" + sterren + "\n** Printen onderbroken **\n" + sterren + "\n\f"))
        << uit.size();
    EXPECT_TRUE(bevat(uit, " D0 "));
    EXPECT_FALSE(bevat(uit, " D" + std::to_string(REGELS - 1) + " "));
    p.uit("<Esc>");
    EXPECT_EQ(sh("cd '" + map.pad() + "' && ls . uit | grep ^PR").tekst, "");
}

// A piece of the first series of supplier 10's first order comes in, its second series goes.
void lever_en_verwijder(const DemoMap& map) {
    const std::vector<etiblok> blokken = map.alle<etiblok>("DTETI.TXT");
    const auto eerste = std::find_if(blokken.begin(), blokken.end(), [](const etiblok& b) {
        return b.serie.artikelgroep == 1100 && b.serie.kleur == 1;
    });
    ASSERT_NE(eerste, blokken.end());
    etiblok b = *eerste;
    etiket l;
    eti_uit(b.plaats[0], b.serie, 0, &l);
    l.status = ETI_VOORRAAD;
    EXPECT_TRUE(eti_pak(l, nullptr, b.plaats[0]));
    zet(map, "DTETI.TXT", static_cast<size_t>(eerste - blokken.begin()) * sizeof b, b);
    const Uit weg =
        sh("cd '" + map.pad() +
           "' && printf 'set artikelgroep=1100 kleur=49 volgnummer=1\nread\ndelete\n' | ixsh DTSER");
    EXPECT_TRUE(weg.zegt("0 rec=")) << weg.tekst;
}

// Out of series, sets and labels, as on the screen: its rows, its totals, what came in, a series that has gone. Nothing on
// file changes.
TEST(Afdruk, FullRegistration) {
    DemoMap map("data/demo", "--register");
    lever_en_verwijder(map);
    const auto voor = map.inhoud();
    const std::string kort = ordprint(map, "-n 1002 2016Z/ORD0010.JRN"),
                      vol = ordprint(map, "-n 1002 -f full 2016Z/ORD0010.JRN");
    sh("chmod -R a+rX,go-w '" + map.pad() + "'");
    const auto lezer = in_proces([&] { // who may only read
        if (geteuid() == 0 && setuid(65534) != 0)
            return 9;
        if (access(ZG_BINARY_DIR "/ordprint", X_OK) != 0)
            return 0; // a checkout that nobody else may enter
        return ordprint(map, "-n 1002 2016Z/ORD0010.JRN") == kort ? 0 : 1;
    });
    EXPECT_EQ(lezer.status, 0) << lezer.uitvoer;
    EXPECT_EQ(DemoMap::verschil(voor, map.inhoud()), "");
    EXPECT_TRUE(bevat(vol, "    010216-140216      35 "));
    EXPECT_TRUE(bevat(vol, "    besteld            46    9   14   14    9\n"));
    EXPECT_TRUE(bevat(kort, "serie verwijderd*\n"));
    Opties opties = demo_opties(map);
    opties.omgeving.push_back({"ZEBPRT", "print"});
    Programma p(overgave(map), opties);
    p.leverancier(10);
    p.t.wacht("</> voor nieuwe order");
    p.t.toetsen("<Down><Enter>", 24, 1, "Uw keuze");
    auto deel = [&](int rij, int kolom, int breedte) {
        const std::string tekst = p.t.stuk(rij, kolom, breedte);
        return std::string(VASTTRIM(tekst)).substr(tekst.find_first_not_of(' '));
    };
    for (const std::string& tekst :
         {deel(8, 2, 78) + "\n", deel(9, 2, 78) + "\n", "Stuks            : " + deel(3, 50, 9) + "\n",
          "Bruto            : EUR " + deel(3, 69, 11) + " ",
          "Netto            : EUR " + deel(4, 69, 11) + "\n",
          "Inkoop           : EUR " + deel(5, 69, 11) + "\n"})
        EXPECT_NE(kort.find(tekst), kort.npos) << tekst << p.t.scherm() << kort;
    // To a printer: one is to be chosen; looked at first, then a PDF.
    p.t.toetsen("RFKMP", " Printbestemming ");
    p.t.toetsen("<Esc>", "U dient een printbestemming te selecteren");
    p.t.toetsen("<Down><Down><Down><Enter>", "Einde overzicht");
    p.t.toetsen("P", 24, 1, "Uw keuze");
    const std::string pdf = "for i in $(seq 200); do pdftotext -layout '" + map.pad() +
                            "'/uit/T* - 2>/dev/null && break; sleep 0.1; done";
    EXPECT_TRUE(sh(pdf).zegt("serie verwijderd*")) << p.t.scherm();
    p.t.toetsen("<Esc>");
    p.t.kalm();
    // Prices that are lost: a report with holes isn't a good one.
    const Uit gaten =
        sh("cd '" + map.pad() + "' && truncate -s 4000 DTIPG.TXT && ordprint 2016Z/ORD0013.JRN");
    EXPECT_EQ(gaten.status, 1);
    EXPECT_TRUE(gaten.zegt("Regel niet toegankelijk*") && gaten.zegt("3 lines can't be read")) << gaten.tekst;
}
