// The price screens: conversations that a buyer has, and the rows that they leave.
#include "price/ing_val.h"
#include "price/prijsinvoer.h"
#include "price/prijsvraag.h"
#include "support/systeem.h"
#include "support/wild.h"
#include "term/gesprek.h"

namespace zg {
namespace {

// Sizes 40, 41, ... of index 1, 2, ...; the home currency is the euro, VAT 21%.
struct Prijsinvoer : test::Systeem {
    Prijsinvoer() {
        valuta(1, "EUR", 2, "Euro");
        valuta(2, "JPY", 0, "Yen");
        maatrij rec{};
        rec.stelsel = 1, rec.soort = 4;
        for (int maat = 1; maat <= MATEN; maat++) {
            rec.entry[maat].link = static_cast<uint8_t>(maat);
            memcpy(rec.entry[maat].naam, test::vorm("%3d", 39 + maat).c_str(), 3);
        }
        dtmaat = test::nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2);
        test::schrijf(dtmaat, rec);
        IXCLOSE(dtmaat);
        dtmaat = nullptr;
    }
    ~Prijsinvoer() override { valuta_vergeet(); }
    static void begin() {
        open();
        valuta_vergeet();
        VASTIN(instel15.valuta, "EUR");
        firma.maatstelsel = 1;
        dtmaat = IXOPEN("DTMAAT", 2);
        balk_open(1, 4, nullptr);
        up_context = {};
        up_context.methode = Kortingsmethode::automatisch;
        up_context.btw = 210;
        up_valuta("EUR", 1, 0);
    }
};

// "40-42 1000 810 810 1960": first and last size, gross, net, purchase, advice; one group after the other.
std::string tekst(const prijsrijen& rijen) {
    std::string uit;
    prijsgroep_info groep{};
    while (up_volgende_groep(rijen, ZICHT_SAMEN, &groep)) {
        const size_t maat = groep.eerste.maatnr;
        uit += (uit.empty() ? "" : ", ") + test::vorm("%zu-%d", maat + 39, groep.laatste.maatnr + 39);
        for (const prijsrij* rij : {&rijen.bruto, &rijen.netto, &rijen.inkoop, &rijen.advies})
            uit += " " + ((*rij)[maat] == PRIJS_ONBEKEND ? "?" : std::to_string((*rij)[maat]));
    }
    return uit;
}

// Groups along the bar, each to a size: gross, net, advice; 0 is a price that isn't known yet. Sizes without a gross price
// (-1) aren't there, their advice price is kept.
struct Groep {
    int tot, bruto, netto, advies;
};
prijsrijen rijen_van(const std::vector<Groep>& groepen) {
    prijsrijen rijen{};
    int maat = 1;
    auto of = [](int p) { return p ? p : PRIJS_ONBEKEND; };
    for (const Groep& g : groepen)
        for (; maat <= g.tot - 39; maat++) {
            const auto m = static_cast<size_t>(maat);
            rijen.advies[m] = of(g.advies);
            if (g.bruto >= 0)
                rijen.bruto[m] = of(g.bruto), rijen.netto[m] = of(g.netto);
        }
    up_inkoop_alle(&rijen);
    return rijen;
}

// A screen on these rows: keys, and at each "|" in them a text that must stand there. The rows afterwards, and what isn't
// as it was before.
std::string speel(double order, const std::function<prijsrijen()>& scherm, std::string_view toetsen,
                  const std::vector<const char*>& beeld) {
    test::Gesprek t([&] {
        Prijsinvoer::begin();
        up_orderkorting(order);
        const prijsrijen rijen = scherm();
        const bool goed =
            SCHERM.kpos == 2 && SCHERM.aantal == 1 && !up_lay.rijen && up_context.orderkorting == order;
        test::schrijf_bestand("uit", tekst(rijen) + (goed ? "" : " not put back"));
        return std::string("klaar");
    });
    for (const char* wat : beeld) {
        t.toetsen(toetsen.substr(0, toetsen.find('|')));
        EXPECT_TRUE(t.wacht(wat)) << wat;
        toetsen.remove_prefix(std::min(toetsen.find('|'), toetsen.size() - 1) + 1);
    }
    EXPECT_EQ(t.antwoord(toetsen), "klaar");
    EXPECT_TRUE(t.regel(1).empty()) << "no hint left behind";
    return test::lees_bestand("uit");
}

// clang-format off
TEST_F(Prijsinvoer, new_prices) {
    std::string tien; // sizes at ten prices: range, gross, and an advice price of its own for the first eight
    for (int i = 1; i <= 10; i++)
        tien += (i < 10 ? std::to_string(39 + i) : "") + "<Enter>" + std::to_string(i) + "<Enter>" +
                (i <= 8 ? std::to_string(10 + i) + "<Enter>" : "") + (i == 7 ? "|" : "");
    struct {
        const char* wat;
        int maten;
        double order, regel, factor;
        std::string toetsen;
        std::vector<const char*> beeld;
        const char* uit;
    } const gevallen[] = {
        {"line discount below the order's, advice by factor and rounded", 6, 10, 0, 2.42,
         "42<Enter><F10><Enter>10<Enter>|10<Enter>|<F10>|<Enter><Enter><Enter>12<Enter>|<F10><Enter><Enter><Esc>",
         {"Kortingsmethode Automatisch  19.00%", "19.60___", "EUR     19.95", "23.52___"},
         "40-42 1000 810 810 1995, 43-45 1200 972 972 2395"},
        {"discount by group, kept for the next; the proposed advice price taken", 3, 10, 0, 2,
         "40<Enter><F10>2|10<Enter>20<Enter><Enter><Enter>12<Enter>|<Enter><Enter><Esc>",
         {"Ingave korting", "Totaalkorting   28.00%"},
         "40-40 1000 720 720 1440, 41-42 1200 864 864 1728"},
        {"net price within its limit", 1, 0, 0, 1,
         "<Enter><F10>31<Enter>2<Enter>|1,99<Enter><Enter><Esc>", {"Alleen 0.01 t/m 1.99 mogelijk"},
         "40-40 100 199 199 199"},
        {"cancel at the range, the discount and an unknown advice price", 4, 0, 0, 0,
         "41<Esc><F10>210<Enter><Esc>|<Esc>|<Esc>", {"Adv.prijs    ________", "Uw keuze"},
         "40-43 1000 1000 1000 ?"},
        {"a calculation given up: what the field held", 1, 0, 0, 2, "<Enter>10<Enter>25<F10>2<Enter><Esc><Esc>|<Esc><Esc>",
         {"25.00___"}, "40-40 1000 1000 1000 2500"},
        {"help, and a size that isn't there", 2, 0, 0, 1,
         "7<Enter>|<F5>|<Esc>40<Enter><F1>|x<Esc>5<Enter>|<Enter><Enter>6<Enter><Enter><Esc>",
         {"<7> Onbekende/foutieve maat", "maat  omschr", "<F10>  Kortingsmethode", "Calc.factor 1.000"},
         "40-40 500 500 500 500, 41-41 600 600 600 600"},
        {"pages of sizes, from the group's end and back", 40, 0, 0, 1,
         "|<F7>|<F8>|78<Enter>10<Enter>|<Enter><Enter>20<Enter><Enter><Esc>",
         {"<<  75  76", "58  59  60", "<<  75  76", "79/ 79"}, "40-78 1000 1000 1000 1000, 79-79 2000 2000 2000 2000"},
        {"a line discount that the order's leaves no room for is forgotten", 1, 99, 99.5, 1,
         "|<Enter>100<Enter><Enter><Esc>", {"Automatisch  99.00%"}, "40-40 10000 100 100 100"},
        {"no advice question behind the eighth price; the page follows", 10, 0, 0, 1, tien + "|<Esc>",
         {"<<   6        7", "Uw keuze"},
         "40-40 100 100 100 1100, 41-41 200 200 200 1200, 42-42 300 300 300 1300, 43-43 400 400 400 1400, "
         "44-44 500 500 500 1500, 45-45 600 600 600 1600, 46-46 700 700 700 1700, 47-47 800 800 800 1800, "
         "48-48 900 900 900 1800, 49-49 1000 1000 1000 1800"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        EXPECT_EQ(speel(g.order, [&] {
            up_regelkorting(g.regel);
            if (g.factor > 0)
                up_calcfactor(g.factor);
            prijsrijen rijen = rijen_van({{95, 7, 7, 7}}); // of the series before
            uint8_t maten[MAATBYTES] = {};
            for (int m = 1; m <= g.maten; m++)
                maat_aan(maten, m);
            up_definieren_prijzen(&rijen, maten);
            return rijen;
        }, g.toetsen, g.beeld), g.uit);
    }
}

TEST_F(Prijsinvoer, changed_prices) {
    const std::vector<Groep> drie = {{41, 10000, 8000, 20000}, {43, 5000, 5000, 9000}, {44, 0, 0, 0}, {45, -1, 0, 9000}};
    std::vector<Groep> zeven, negen;
    for (int i = 1; i <= 7; i++)
        zeven.push_back({39 + i, i, i, 10});
    for (int i = 1; i <= 9; i++)
        negen.push_back({39 + i, 100, 100, i});
    struct {
        const char* wat;
        void (*scherm)(prijsrijen*, int);
        std::vector<Groep> van;
        const char* toetsen;
        std::vector<const char*> beeld;
        const char* uit;
    } const gevallen[] = {
        {"a new gross price keeps the discount", up_wijzigen_prijzen, {{41, 10000, 8000, 20000}},
         "<Enter>200<Enter>|<Enter><Enter><Esc>", {"160.00__"}, "40-41 20000 16000 16000 20000"},
        {"a range over a neighbour takes it in; what lies behind stays", up_wijzigen_prijzen, drie,
         "42<Enter><Enter><Enter><Enter>|<Esc><Esc>", {"43/ 43"},
         "40-42 10000 8000 8000 20000, 43-43 5000 5000 5000 9000, 44-44 ? ? ? ?"},
        {"cancelled behind a range: gross and net taken over, advice not", up_wijzigen_prijzen, drie,
         "43<Enter><Esc><Esc>", {},
         "40-41 10000 8000 8000 20000, 42-43 10000 8000 8000 9000, 44-44 ? ? ? ?"},
        {"net prices; without a gross price that comes first, and is the net price on cancel", up_wijzigen_prijzen, drie,
         "<Esc>n70<Enter>|<Enter>60<Enter><Esc><Esc>", {"Ink.prijs       70.00"},
         "40-41 10000 7000 7000 20000, 42-43 5000 5000 5000 9000, 44-44 6000 6000 6000 ?"},
        {"a gross price that isn't given leaves its sizes unknown", up_wijzigen_prijzen, drie,
         "<Esc>n<Enter><Enter><Esc><Esc>", {},
         "40-41 10000 8000 8000 20000, 42-43 5000 5000 5000 9000, 44-44 ? ? ? ?"},
        {"new discounts on the gross price alone, cancelled at the third", up_wijzigen_prijzen, drie,
         "<Esc>k|20<Enter>50<Enter>|<Esc><Esc>", {"NIEUWE KORTING", "50.00"},
         "40-41 10000 8000 8000 20000, 42-43 5000 2500 2500 9000, 44-44 ? ? ? ?"},
        {"a net price by discount: 18% off 75", up_wijzigen_inkoop, {{40, 75, 70, 1}},
         "<Esc>n<F10>18<Enter><Esc>", {}, "40-40 75 62 62 1"},
        {"gross prices, cancelled at the second", up_wijzigen_inkoop, drie, "<Esc>b50<Enter>60<Esc><Esc>", {},
         "40-41 5000 4000 4000 20000, 42-43 5000 5000 5000 9000, 44-44 ? ? ? ?"},
        {"pages both ways; in a pass the last group becomes the first", up_wijzigen_inkoop, zeven,
         "<Esc><F8>|<F7>|b<Enter><Enter><Enter><Enter><Enter><Enter>|77<Enter><Esc>",
         {"<<   7", "6 >>", "<<   6        7"},
         "40-40 1 1 1 10, 41-41 2 2 2 10, 42-42 3 3 3 10, 43-43 4 4 4 10, 44-44 5 5 5 10, 45-45 6 6 6 10, "
         "46-46 7700 7700 7700 10"},
        {"nine advice prices are told and refused, eight let go", up_wijzigen_prijzen, negen,
         "|<Esc><Esc>|a0,02<Enter><Esc><Esc>",
         {"Maximaal 8 verschillende verkoopprijzen", "Maximaal 8"},
         "40-41 100 100 100 2, 42-42 100 100 100 3, 43-43 100 100 100 4, 44-44 100 100 100 5, 45-45 100 100 100 6, "
         "46-46 100 100 100 7, 47-47 100 100 100 8, 48-48 100 100 100 9"},
        {"advice prices by their own groups; nothing to calculate from two purchase prices", up_wijzigen_advies, drie,
         "45<Enter>|42<Enter><F10>|150<Enter><Enter><Enter><Esc><Esc>", {"<45> Onbekende/foutieve maat", "Ongeldige toets"},
         "40-41 10000 8000 8000 15000, 42-42 5000 5000 5000 15000, 43-43 5000 5000 5000 9000, 44-44 ? ? ? ?"},
        {"calculated; the eighth advice group runs to the end", up_wijzigen_advies, negen,
         "<Enter><F10><Tab>|2<Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter>"
         "<Enter><Enter><Enter>|<Enter><Esc>",
         {"Calc.factor", "/ 48"},
         "40-40 100 100 100 250, 41-41 100 100 100 2, 42-42 100 100 100 3, 43-43 100 100 100 4, "
         "44-44 100 100 100 5, 45-45 100 100 100 6, 46-46 100 100 100 7, 47-48 100 100 100 8"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        EXPECT_EQ(speel(10, [&] {
            prijsrijen rijen = rijen_van(g.van);
            g.scherm(&rijen, 6);
            return rijen;
        }, g.toetsen, g.beeld), g.uit);
    }
}

// Group 94 is not asked; the one before it is, and keeps its size on cancel.
TEST_F(Prijsinvoer, the_last_group_runs_to_the_end) {
    for (const int nummer : {93, 94})
        EXPECT_EQ(speel(0, [=] {
            prijsrijen rijen = rijen_van({{40, 500, 400, 1}, {42, 600, 600, 1}});
            const prijslay lay;
            up_scherm(1, 2, 14, false, false, 255, &rijen);
            prijsgroep_info groep{};
            up_volgende_groep(rijen, up_zicht(), &groep);
            return vraag_maatbereik(&groep, nummer, 94) == (nummer == 94) ? rijen : prijsrijen{};
        }, nummer == 94 ? "" : "<Esc>", {}),
        nummer == 94 ? "40-42 500 400 400 1" : "40-40 500 400 400 1, 41-42 600 600 600 1");
}

// Random keys in all flows: the sizes of the line stay in the rows, and no others come in; nothing is 0 or stays set.
using test::dobbel;
int32_t wilde_prijs() {
    static const int32_t RAAR[] = {1, PRIJS_ONBEKEND, PRIJS_ONBEKEND - 1, 9999999, 10000000};
    return dobbel(3) ? 1 + dobbel(500) * 100 : RAAR[dobbel(std::size(RAAR))];
}
void druk_toetsen() {
    static const int32_t BIJZONDER[] = {K_ENTER, K_ENTER, K_ENTER, K_F1,   K_F5,   K_F7,  K_F8,
                                        K_F10,   K_F10,   K_TAB,   K_BACK, K_HOME, K_ESC, K_UP};
    static const char TEKENS[] = "0123456789,.-pnkbaPNKBA+*C123", EEN_PRIJS[] = "\n10.0";
    for (int i = 0; i < 12; i++) { // the last of the stack: one advice price for all, and out
        for (int j = 0; j < (MATEN + 5) * 5; j++)
            TOETSTERUG(EEN_PRIJS[j % 5]);
        TOETSTERUG('a');
        for (int j = 0; j < 8; j++)
            TOETSTERUG(K_ESC);
    }
    for (int i = dobbel(200); i > 0; i--)
        TOETSTERUG(dobbel(2) ? BIJZONDER[dobbel(std::size(BIJZONDER))] : TEKENS[dobbel(sizeof TEKENS - 1)]);
}
prijsrijen vul(uint8_t* maten) {
    prijsrijen rijen{};
    int32_t netto = wilde_prijs(), advies = wilde_prijs();
    for (int m = 1, kans = 1 + dobbel(4); m <= MATEN; m++) {
        up_zet(&rijen.advies, m, dobbel(4) ? 0 : advies); // kept of a size that went
        if (dobbel(kans))
            continue;
        if (dobbel(3) == 0)
            netto = wilde_prijs(), advies = wilde_prijs();
        maat_aan(maten, m);
        up_zet_maat(&rijen, m, dobbel(5) ? netto : wilde_prijs(), netto);
        up_zet_advies(&rijen, m, advies);
    }
    return rijen;
}
std::string beurt() {
    up_context.methode = static_cast<Kortingsmethode>(1 + dobbel(3));
    up_context.calcmodus = static_cast<Calcmodus>(dobbel(3));
    up_context.calcmarge = dobbel(100);
    up_valuta(dobbel(2) ? "EUR" : "JPY", 0.5 + dobbel(100), dobbel(2) ? 0 : 10500);
    const double order = dobbel(2) ? 0 : dobbel(200) - 99.99;
    up_orderkorting(order);
    up_regelkorting(dobbel(200) - 99.99);
    uint8_t maten[MAATBYTES] = {};
    prijsrijen rijen = vul(maten);
    druk_toetsen();
    const int wat = dobbel(5), rij = dobbel(25);
    switch (wat) {
    case 0: up_wijzigen_prijzen(&rijen, rij); break;
    case 1: up_wijzigen_advies(&rijen, rij); break;
    case 2: up_definieren_prijzen(&rijen, maten); break;
    case 3: up_wijzigen_inkoop(&rijen, rij); break;
    default: up_definieren_inkoop(&rijen, maten);
    }
    TOETSLEEG();
    for (size_t m = 0; m <= MATEN; m++) {
        const bool er = m > 0 && maat_in(maten, static_cast<int>(m));
        for (const prijsrij* rij_nu : {&rijen.bruto, &rijen.netto, &rijen.inkoop})
            if (er != ((*rij_nu)[m] > 0) || (er && rijen.advies[m] < 1))
                return test::vorm("flow %d: size %zu has %d, advice %d", wat, m, (*rij_nu)[m], rijen.advies[m]);
    }
    if (wat < 3 && up_aantal_verkoopprijzen(rijen) > ADVIESRANGEN)
        return "left with too many prices";
    const bool goed = SCHERM.kpos == 2 && SCHERM.aantal == 1 && !up_lay.rijen && up_context.orderkorting == order;
    return goed ? "" : test::vorm("flow %d: something stays", wat);
}

TEST_F(Prijsinvoer, random_keys) {
    test::wilde_beurten(150, 0, begin, beurt);
}
// clang-format on

} // namespace
} // namespace zg
