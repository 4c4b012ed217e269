// The arithmetic of a series' prices, with numbers worked out by hand.
#include "price/ing_val.h"
#include "price/uniprijs.h"
#include "support/systeem.h"
#include <limits>
#include <random>
#include <sstream>

namespace zg {
namespace {

constexpr int32_t HOOGSTE = INT32_MAX - 1;
constexpr double GEEN_GETAL = std::numeric_limits<double>::quiet_NaN();

// Twenty sizes on the bar: size 10 comes first, then 1 to 9, then 11 to 20.
struct Uniprijs : test::Systeem {
    prijsrijen rijen{};
    Uniprijs() {
        VASTIN(instel15.valuta, "EUR");
        valuta(3, "EUR", 2, "Euro");
        valuta_vergeet();
        up_context = {};
        up_valuta("EUR", 1, 0);
        up_context.btw = 210;
        firma.maatstelsel = 1;
        firma.btw[0] = 60, firma.btw[1] = 210;
        dtmaat = test::nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2);
        maatrij rec{};
        rec.stelsel = 1, rec.soort = 4;
        for (int maat = 1; maat <= 20; maat++)
            rec.entry[maat].link = static_cast<uint8_t>(maat == 10 ? 1 : maat < 10 ? maat + 1 : maat);
        test::schrijf(dtmaat, rec);
        balk_open(1, 4, test::maten_van({3}).data()); // the choice is the grid's, not the walks'
    }
    ~Uniprijs() override {
        balk_sluit();
        IXCLOSE(dtmaat);
        dtmaat = nullptr;
    }
};

TEST_F(Uniprijs, discounts) {
    // bruto: out of range is none; 0.4 would take the size out of the row
    for (const auto& [order, regel, bruto, netto] : test::Rijen<double, double, int32_t, int32_t>{
             {10, 10, 100, 81},
             {99.99, 0, 10000, 1},
             {50, 99.98, 10000, 1}, // 99.99 and a little more in doubles
             {0, -99.99, 10000, 19999},
             {99.991, 25, 10000, 7500},
             {100, 0, 10000, 10000},
             {18, 0, 75, 61},      // 61.5 but for the last bit: every program gets 61
             {-50, -50, 100, 100}, // -125 is out of range
             {GEEN_GETAL, 0, 100, 100},
             {-50, 0, 201, 302},
             {60, 0, 1, 1},
             {-99.99, 0, HOOGSTE, HOOGSTE},
             {10, 0, PRIJS_ONBEKEND, PRIJS_ONBEKEND}}) {
        SCOPED_TRACE(std::to_string(order) + " " + std::to_string(regel));
        up_orderkorting(order);
        up_regelkorting(regel);
        rijen = {};
        rijen.bruto[95] = bruto;
        up_netto_alle(&rijen);
        EXPECT_EQ(rijen.netto[95], netto);
        prijsgroep_info groep{};
        maat_aan(groep.maten, 95);
        rijen.netto[95] = 7;
        up_netto_groep(&rijen, &groep, up_totaalkorting(order, regel));
        EXPECT_EQ(rijen.netto[95], netto) << "by group";
    }
    struct {
        int32_t bruto, netto;
        double korting;
    } const terug[] = {
        {300, 200, 33.33}, {100, 150, -50}, {100, 200, -100}, {100, PRIJS_ONBEKEND, 0}, {1, HOOGSTE, -100}};
    for (const auto& g : terug) {
        rijen.bruto[7] = g.bruto, rijen.netto[7] = g.netto;
        prijsgroep_info groep{};
        groep.eerste.maatnr = 7;
        EXPECT_DOUBLE_EQ(up_korting_groep(rijen, groep), g.korting) << g.bruto << " " << g.netto;
    }
}

TEST_F(Uniprijs, advice_prices) {
    constexpr auto F = Calcmodus::factor, M = Calcmodus::marge;
    // kaal: 1.21 x 2034 = 2461.14
    for (const auto& [inkoop, modus, waarde, kaal, rond] :
         test::Rijen<int32_t, Calcmodus, double, int32_t, int32_t>{{480, F, 2.5, 1200, 1250},
                                                                   {1251, F, 1, 1251, 1295},
                                                                   {10000, F, 1, 10000, 10050},
                                                                   {10001, F, 1, 10001, 10500},
                                                                   {10501, F, 1, 10501, 10950},
                                                                   {412, F, 2.42, 997, 995}, // 997.04
                                                                   {1000, M, 50, 2420, 2450},
                                                                   {1017, M, 50, 2461, 2495},
                                                                   {1000, Calcmodus::geen, 2.5, 0, 0},
                                                                   {1000, M, 100, 0, 0},
                                                                   {1000, F, GEEN_GETAL, 0, 0},
                                                                   {HOOGSTE, F, 1, HOOGSTE, HOOGSTE},
                                                                   {HOOGSTE, M, 99.99, HOOGSTE, HOOGSTE}}) {
        SCOPED_TRACE(std::to_string(inkoop) + " x " + std::to_string(waarde));
        EXPECT_EQ(up_bereken_advies(inkoop, modus, waarde, false), kaal);
        EXPECT_EQ(up_bereken_advies(inkoop, modus, waarde, true), rond);
    }
    VASTIN(instel15.valuta, "USD");
    EXPECT_EQ(up_bereken_advies(480, F, 2.5, true), 1200) << "another home currency";

    // Margin: 100 - 2 x 1000 x 100 / (2 x 2420 / 1.21).
    prijsgroep_info groep{};
    for (int maat : {4, 5}) {
        maat_aan(groep.maten, maat);
        rijen.inkoop[static_cast<size_t>(maat)] = 1000;
        rijen.advies[static_cast<size_t>(maat)] = 2420;
    }
    EXPECT_DOUBLE_EQ(up_marge_groep(rijen, groep), 50);
}

// Calculation factors of brands, stored without VAT; the highest rate is 21%.
TEST_F(Uniprijs, calculation_factor) {
    EXPECT_DOUBLE_EQ(calcfactor_btw('L', 2), 2.42);
    EXPECT_DOUBLE_EQ(calcfactor_btw('L', 0.333), 0.403); // 0.40293
    EXPECT_DOUBLE_EQ(calcfactor_btw('F', 2.42), 2);
    EXPECT_DOUBLE_EQ(calcfactor_btw('F', calcfactor_btw('L', 1.999)), 2.419 / 1.21) << "not 1.999 again";
    struct {
        int merk, factor;
        double calc; // 0: not calculated
    } const gevallen[] = {{12, 2000, 2.42}, {12, 2000, 3.5}, {12, 2100, 2.541}, {14, -5, 0},
                          {13, 2000, 2.42}, {15, 32767, 0},  {15, 2000, 2.42}};
    for (const auto& g : gevallen) {
        if (g.calc == 3.5)
            up_calcfactor(3.5); // entered since: the same brand leaves it
        up_calcfactor_merk(static_cast<uint16_t>(g.merk), static_cast<int16_t>(g.factor));
        EXPECT_DOUBLE_EQ(up_context.calcfactor, g.calc) << g.merk << " " << g.factor;
        EXPECT_EQ(up_context.calcmodus, g.calc == 0 ? Calcmodus::geen : Calcmodus::factor) << g.merk;
    }
    up_calcfactor(GEEN_GETAL);
    EXPECT_DOUBLE_EQ(up_context.calcfactor, 2.42);
    for (auto [code, promille] : {std::pair{2, 210}, {0, 0}, {11, 0}}) {
        up_btw(static_cast<uint8_t>(code));
        EXPECT_EQ(up_context.btw, promille) << code;
    }
}

TEST_F(Uniprijs, groups_along_the_bar) {
    // Size 3 is absent, 6 has no price yet, 9 went and left its advice price.
    const int gegeven[][3] = {{10, 500, 90},           {1, 600, 90}, {2, 600, 95}, {4, 600, 90}, {5, 500, 90},
                              {6, PRIJS_ONBEKEND, 90}, {9, 0, 90}};
    for (auto [maat, bruto, advies] : gegeven) {
        const auto m = static_cast<size_t>(maat);
        rijen.bruto[m] = rijen.netto[m] = bruto, rijen.advies[m] = advies;
    }
    for (const auto& [zicht, groepen] : test::Rijen<prijszicht, const char*>{
             {ZICHT_INKOOP, "10=500/0 1,2,4=600/0 5=500/0 6=0/0 "},
             {ZICHT_ADVIES, "1,10=0/90 2=0/95 4,5,6=0/90 "},
             {ZICHT_SAMEN, "10=500/90 1=600/90 2=600/95 4=600/90 5=500/90 6=0/90 "},
             {{PK_MATEN, false}, "1,2,4,5,6,10=0/0 "},
         }) {
        std::string door;
        prijsgroep_info groep{}, zelf;
        int n = 0;
        for (; up_volgende_groep(rijen, zicht, &groep); n++) {
            door += test::maten_in(groep.maten) + "=" + std::to_string(groep.bruto) + "/" +
                    std::to_string(groep.advies) + " ";
            EXPECT_TRUE(up_groep_nummer(rijen, zicht, n, &zelf));
            EXPECT_EQ(test::maten_in(zelf.maten), test::maten_in(groep.maten));
        }
        EXPECT_EQ(door, groepen);
        EXPECT_EQ(up_aantal_groepen(rijen, zicht), n);
        EXPECT_FALSE(up_groep_nummer(rijen, zicht, n, &groep));
        EXPECT_FALSE(up_volgende_groep(rijen, zicht, &groep)) << "over is over";
    }
    EXPECT_EQ(up_aantal_verkoopprijzen(rijen), 3) << "runs, not different prices";
    EXPECT_TRUE(up_compleet(rijen));
    up_wis_advies_maat(&rijen, 5);
    EXPECT_FALSE(up_compleet(rijen));

    // Twenty groups of a size each: pages of six groups and eighteen sizes.
    for (int maat = 1; maat <= 20; maat++)
        up_zet_maat(&rijen, maat, maat, maat);
    struct {
        int pagina, eerste;
        const char* maten;
        bool er;
    } const paginas[] = {{1, 0, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18", true},
                         {2, 6, "19,20", true},
                         {4, 18, "", true},
                         {5, 18, "", false},
                         {0, 0, "", false}};
    for (const auto& p : paginas) {
        int eerste;
        uint8_t maten[MAATBYTES];
        EXPECT_EQ(up_pagina(rijen, ZICHT_INKOOP, p.pagina, &eerste, maten), p.er) << p.pagina;
        EXPECT_EQ(eerste, p.eerste) << p.pagina;
        EXPECT_EQ(test::maten_in(maten), p.maten) << p.pagina;
    }
    balk_sluit();
    test::verwacht_stop([&] { up_aantal_groepen(rijen, ZICHT_SAMEN); }, "uniprijs: errno=7");
}

TEST_F(Uniprijs, stored_advice_prices) {
    // Advice prices along the bar, and of each range the last size and its price. Blank: not of the line.
    for (const auto& [wat, prijzen, rangen, past] : test::Rijen<const char*, const char*, const char*, bool>{
             {"runs, not different prices", "10=50 1=50 2=60 3=50", "1=50 2=60 3=50", true},
             {"eight", "1=1 2=2 3=3 4=4 5=5 6=6 7=7 8=8 9=8", "1=1 2=2 3=3 4=4 5=5 6=6 7=7 9=8", true},
             {"nine", "1=1 2=2 3=3 4=4 5=5 6=6 7=7 8=8 9=9 11=1", "1=1 2=2 3=3 4=4 5=5 6=6 7=7 11=8", false},
             {"no price yet", "1=2147483647 2=60", "1=0 2=60", true},
         }) {
        SCOPED_TRACE(wat);
        rijen = {};
        std::string uit;
        for (std::stringstream in(prijzen); in >> uit;) {
            const int maat = stoi(uit);
            up_zet_maat(&rijen, maat, 1, 1);
            up_zet_advies(&rijen, maat, stoi(uit.substr(uit.find('=') + 1)));
        }
        up_zet_advies(&rijen, 4 + 8, 77); // kept of a size that went
        uint8_t blok[ADVIESBLOK];
        EXPECT_EQ(up_advies_bewaren(rijen, blok), past);
        uit.clear();
        for (size_t r = 0; r < ADVIESRANGEN && blok[r]; r++) {
            int32_t prijs;
            memcpy(&prijs, blok + ADVIESRANGEN + 4 * r, sizeof prijs);
            uit += (r ? " " : "") + std::to_string(blok[r]) + "=" + std::to_string(prijs);
        }
        EXPECT_EQ(uit, rangen);
    }

    // What is on file, and the prices of sizes 2, 7 and 9 by it. Size 77 is not on the bar (any more).
    struct {
        const char* wat;
        uint8_t einde[3];
        int32_t prijs[3], maat2, maat7, maat9;
    } const blokken[] = {{"a size put in between, one behind all", {2, 8}, {60, 70}, 60, 70, 70},
                         {"no ranges", {}, {60}, 60, 60, 60},
                         {"none, nor a price", {}, {}, 1, 1, 1},
                         {"a price of 0, one below it", {2, 7, 9}, {0, -7, 50}, 1, 1, 50},
                         {"the mark of an unknown price", {9}, {INT32_MAX}, HOOGSTE, HOOGSTE, HOOGSTE},
                         {"an end that left the bar", {77, 7, 9}, {60, 70, 80}, 70, 70, 80},
                         {"no size at all, twice the same", {255, 7, 7}, {60, 70, 80}, 70, 70, 80},
                         {"out of order", {9, 2, 7}, {60, 70, 80}, 60, 60, 60}};
    for (const auto& b : blokken) {
        SCOPED_TRACE(b.wat);
        uint8_t blok[ADVIESBLOK] = {};
        memcpy(blok, b.einde, sizeof b.einde);
        memcpy(blok + ADVIESRANGEN, b.prijs, sizeof b.prijs);
        up_advies_laden(&rijen, test::maten_van({2, 7, 9}).data(), blok);
        EXPECT_EQ(rijen.advies[2], b.maat2);
        EXPECT_EQ(rijen.advies[7], b.maat7);
        EXPECT_EQ(rijen.advies[9], b.maat9);
        EXPECT_EQ(rijen.advies[1], 0) << "not in the set";
    }
}

// Random lines: groups hold the sizes that are there, each once and in bar order; what is packed comes back.
TEST_F(Uniprijs, random_lines) {
    std::mt19937 toeval(61);
    auto kies = [&](int n) { return static_cast<int32_t>(toeval() % static_cast<unsigned>(n)); };
    for (int ronde = 0; ronde < 2000; ronde++) {
        SCOPED_TRACE(ronde);
        rijen = {};
        uint8_t aanwezig[MAATBYTES] = {};
        const int prijzen = 1 + kies(4);
        for (int maat = 1; maat <= 20; maat++) {
            if (kies(4) == 0) {
                rijen.advies[static_cast<size_t>(maat)] = kies(2) * 5; // gone, perhaps with a kept price
                continue;
            }
            const int32_t bruto = kies(9) ? 1 + kies(prijzen) * 100 : PRIJS_ONBEKEND;
            up_zet_maat(&rijen, maat, bruto, bruto);
            up_zet_advies(&rijen, maat, kies(9) ? 1 + kies(prijzen) : PRIJS_ONBEKEND);
            maat_aan(aanwezig, maat);
        }
        up_orderkorting(kies(200) - 100);
        up_regelkorting(kies(200) - 100);
        up_netto_alle(&rijen);
        up_valuta("EUR", (1 + kies(30000)) / 1000.0, 1 + kies(30000));
        up_inkoop_alle(&rijen);
        for (prijszicht zicht : {ZICHT_INKOOP, ZICHT_ADVIES, ZICHT_SAMEN}) {
            uint8_t gezien[MAATBYTES] = {};
            int vorige = 0, geteld = 0;
            for (prijsgroep_info g{}; up_volgende_groep(rijen, zicht, &g);) {
                EXPECT_GT(mtpos(maatbalk, g.eerste.maatnr), vorige);
                vorige = mtpos(maatbalk, g.laatste.maatnr);
                geteld += g.aantal_maten;
                for (size_t i = 0; i < MAATBYTES; i++)
                    gezien[i] |= g.maten[i];
            }
            EXPECT_EQ(test::maten_in(gezien), test::maten_in(aanwezig));
            EXPECT_EQ(geteld,
                      static_cast<int>(std::count(rijen.bruto.begin(), rijen.bruto.end(), 0) * -1 + 96));
        }
        for (size_t maat = 1; maat <= 20; maat++) {
            const bool er = maat_in(aanwezig, static_cast<int>(maat)),
                       prijs = up_lees(rijen.bruto, static_cast<int>(maat));
            for (const prijsrij* rij : {&rijen.netto, &rijen.inkoop})
                EXPECT_TRUE(!er     ? (*rij)[maat] == 0
                            : prijs ? (*rij)[maat] >= 1 && (*rij)[maat] < PRIJS_ONBEKEND
                                    : (*rij)[maat] == PRIJS_ONBEKEND);
        }
        uint8_t blok[ADVIESBLOK];
        if (up_advies_bewaren(rijen, blok)) {
            EXPECT_LE(up_aantal_verkoopprijzen(rijen), ADVIESRANGEN);
            prijsrijen terug{};
            up_advies_laden(&terug, aanwezig, blok);
            for (int maat = 1; maat <= 20; maat++)
                if (maat_in(aanwezig, maat))
                    EXPECT_EQ(terug.advies[static_cast<size_t>(maat)],
                              std::max(up_lees(rijen.advies, maat), 1));
        } else
            EXPECT_GT(up_aantal_verkoopprijzen(rijen), ADVIESRANGEN);
    }
}

TEST_F(Uniprijs, another_set_of_sizes) {
    for (int maat : {1, 2, 6}) {
        up_zet_maat(&rijen, maat, maat * 10, maat * 10);
        up_zet_advies(&rijen, maat, maat * 100);
    }
    up_zet_advies(&rijen, 4, 444); // kept from when it was there before
    // 10 stands before 1; 4 and 5 before 6; 8 behind all; 77 is not on the bar. 2 goes, and comes back.
    up_maten_gewijzigd(&rijen, test::maten_van({1, 2, 6}).data(),
                       test::maten_van({1, 4, 5, 6, 8, 10, 77}).data());
    struct {
        size_t maat;
        int32_t bruto, advies;
    } const wil[] = {{10, 10, 100}, {1, 10, 100}, {2, 0, 200}, {4, 60, 444},
                     {5, 60, 600},  {8, 60, 600}, {77, 0, 0}};
    for (const auto& w : wil) {
        EXPECT_EQ(rijen.bruto[w.maat], w.bruto) << w.maat;
        EXPECT_EQ(rijen.netto[w.maat], w.bruto) << w.maat;
        EXPECT_EQ(rijen.advies[w.maat], w.advies) << w.maat;
    }
    EXPECT_EQ(balk_kolommen(), 1) << "the grid's choice stays";
    up_maten_gewijzigd(&rijen, test::maten_van({1, 4}).data(), test::maten_van({1, 2, 4}).data());
    EXPECT_EQ(rijen.bruto[2], 60) << "of its neighbour";
    EXPECT_EQ(rijen.advies[2], 200) << "its own again";

    // No neighbour that has prices: unknown, so that it belongs to a group and can be priced.
    rijen = {};
    up_maten_gewijzigd(&rijen, test::maten_van({6}).data(), test::maten_van({6, 7}).data());
    for (const prijsrij* rij : {&rijen.bruto, &rijen.netto, &rijen.inkoop, &rijen.advies})
        EXPECT_EQ((*rij)[7], PRIJS_ONBEKEND);
}

} // namespace
} // namespace zg
