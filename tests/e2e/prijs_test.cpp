// Prices of an order in the real program: what its screens show beside sums of the journal's records, what a change
// leaves in the journal, and what screens make of a journal and of tables that hold anything.
#include "e2e/handsom.h"
#include "e2e/loop.h"
#include "price/koers.h"
#include "shared/sysrec.h"
#include "support/paar.h"

using namespace zg;
using namespace zg::test;

namespace {

constexpr size_t VALUTA5 = SYS_VALUTA.start + 4 * sizeof(valutarec); // the first free slot

ordkop prijskop(const char* naam, const char* valuta, uint32_t koers, uint16_t eenheid, uint32_t toeslag,
                int16_t korting) {
    ordkop k = maak_kop(naam);
    VASTIN(k.valuta, valuta);
    k.koers = koers, k.koerseenheid = eenheid, k.toeslag = toeslag, k.korting = korting;
    return k;
}

// A model of the first size type with a line for each colour: four sizes at odd prices, with E and B behind them, and
// pieces in two terms and two branches. `blok` is the line's advice prices.
std::string regels(int kleuren, const std::string& blok = "", int merk = 5, int32_t groep = 10001) {
    std::string uit = rec_model(merk, "JURK", 1, groep);
    for (int kleur = 1; kleur <= kleuren; kleur++) {
        orddessin d = een_dessin("UNI", kleur, 4);
        memcpy(d.adviesblok, blok.data(), blok.size());
        uit += record('D', d);
        for (int maat = 1; maat <= 4; maat++) {
            uit += rec_maat(maat, 1999 + 37 * maat * kleur, 1733 + 31 * maat * kleur);
            if (maat == 2)
                uit += record('E', ordextra{"extra"}) + record('B', ordextra{"bij"});
        }
        for (int t = 0; t < 2; t++) {
            uit += rec_term(WERKDATUM + t, WERKDATUM + 30 + t);
            for (int maat = 1; maat <= 4; maat++)
                uit += rec_cel(t * 2, maat, maat + 7 * kleur + t);
        }
    }
    return uit;
}

// Ranges of advice prices as a line has them.
std::string advies(std::initializer_list<std::pair<int, int32_t>> rangen) {
    std::string uit(40, '\0');
    size_t n = 0;
    for (const auto& [einde, prijs] : rangen) {
        uit[n] = static_cast<char>(einde);
        memcpy(&uit[8 + 4 * n++], &prijs, sizeof prijs);
    }
    return uit;
}

// What stands on the order screen and in the matrix of the cursor's model, and what should.
std::string op_scherm(Terminal& t, size_t n) {
    std::string uit = kopsom(t);
    for (size_t i = 0; i < n; i++)
        uit += "\n" + t.stuk(8 + static_cast<int>(i), 64, 5) + t.stuk(8 + static_cast<int>(i), 70, 10);
    t.toetsen("M1");
    uit += "\n" + t.stuk(23, 42, 11) + t.stuk(23, 68, 11);
    t.toetsen("<Esc>");
    return uit;
}
std::string volgens(const Handsom& h, int dec) {
    std::string uit = kopsom(h.order, dec);
    for (const Som& s : h.regels)
        uit += "\n" + vorm("%5ld", static_cast<long>(s.stuks)) + bedrag(s.netto, dec, 10);
    return uit + "\n" + bedrag(h.order.netto, dec, 11) + bedrag(h.order.inkoop, 2, 11);
}

// Sizes and prices of a journal's lines as text: colour: size gross/net ...; end of range=advice price ...
std::string prijzen_van(const std::string& jrn) {
    std::string uit;
    orddessin d{};
    auto blok = [&] {
        for (int i = 0; i < 8 && d.adviesblok[i]; i++) {
            int32_t prijs;
            memcpy(&prijs, &d.adviesblok[8 + 4 * i], sizeof prijs);
            uit += vorm(" %d=%d", d.adviesblok[i], prijs);
        }
    };
    for (size_t p = 0; p < jrn.size(); p = volgend_record(jrn, p)) {
        if (jrn[p] == 'D') {
            blok();
            d = lichaam<orddessin>(jrn, p);
            uit += vorm("\n%d:", d.kleur);
        } else if (jrn[p] == 'S') {
            const auto s = lichaam<ordmaat>(jrn, p);
            uit += vorm(" %d %d/%d", s.maat, s.bruto, s.netto);
        }
    }
    blok();
    return uit;
}

} // namespace

// Rate of the day, fixed, typed; surcharge; discount; a currency without decimals: lines, order and matrix add up to the
// cent, at once and when the order is opened again. What the header changes changes nothing but the header.
TEST(Prijs, TotalenZijnDieVanHetJournaal) {
    for (const auto& [wat, toetsen, kop, decimalen] : Rijen<const char*, const char*, ordkop, int>{
             {"pounds at the rate of the day, with surcharge and discount", "",
              prijskop("a", "GBP", 0, 1, 10500, -250), 2},
             {"at a fixed rate", "", prijskop("b", "GBP", 13507, 1, 10500, 0), 2},
             {"typed", "WOK1,36789<Enter><Esc>", prijskop("c", "GBP", 13500, 1, 10500, 0), 2},
             {"a small one typed", "WOK0,0078913<Enter>T1,0625<Enter><Esc>",
              prijskop("d", "USD", 9150, 1, 10000, -3333), 2},
             {"yen", "", prijskop("e", "JPY", 7913, 100, 10500, 0), 0},
             {"yen with a discount entered", "WOG12,5<Enter><Esc>", prijskop("f", "JPY", 7913, 100, 10500, 0),
              0},
             {"home", "WOG33,33<Enter><Esc>", prijskop("g", "", 10000, 1, 10000, 0), 2},
         }) {
        SCOPED_TRACE(wat);
        const std::string inhoud = regels(3);
        Orderscherm p(record('O', kop) + inhoud);
        p.t.toetsen(toetsen);
        const std::string gezien = op_scherm(p.t, 3);
        p.t.toetsen("<Esc><Enter><Enter>12<Enter><Enter>");
        const std::string weer = op_scherm(p.t, 3);
        if (toetsen[0] && lichaam<ordkop>(p.journaal(), 0).korting != 0) {
            const int bellen = p.t.bellen();
            p.t.toetsen("WOG<Esc>"); // with lines it stays
            EXPECT_GT(p.t.bellen(), bellen) << p.t.scherm();
        }
        p.uit("<Esc>");
        const std::string jrn = p.journaal();
        EXPECT_EQ(jrn.substr(121), inhoud);
        EXPECT_EQ(jrn.substr(0, 121) == record('O', kop), !toetsen[0]);
        const std::string hoort = volgens(handsom(jrn, 0, decimalen, 12500), decimalen);
        EXPECT_EQ(gezien, hoort);
        EXPECT_EQ(weer, hoort);
    }
}

// Whatever stands in journal and tables: its prices can be looked at in every screen without a change of anything, and a
// change of a text changes that text alone.
TEST(Prijs, WatNiemandWijzigdeBlijft) {
    const ordkop goed = prijskop("goed", "", 10000, 1, 10000, 0);
    auto met_kop = [&](void (*maak)(ordkop*), const std::string& rest) {
        ordkop k = goed;
        maak(&k);
        return record('O', k) + rest;
    };
    auto met_prijs = [&](int32_t bruto, int32_t netto) {
        std::string uit = regels(1);
        const size_t s = uit.find(record('S', ordmaat{3, {}, 2110, 1826}));
        return record('O', goed) + uit.replace(s, 13, record('S', ordmaat{3, {}, bruto, netto}));
    };
    const std::string r = regels(1, advies({{2, 4995}, {4, 5995}}));
    for (const auto& [wat, order] : Rijen<const char*, std::string>{
             {"discount 2.5", met_kop([](ordkop* k) { k->korting = -250; }, r)},
             {"discount 33.33, no advice prices", met_kop([](ordkop* k) { k->korting = -3333; }, regels(1))},
             {"discount of the whole", met_kop([](ordkop* k) { k->korting = -10000; }, r)},
             {"100 % on top", met_kop([](ordkop* k) { k->korting = 10000; }, r)},
             {"as much as fits", met_kop([](ordkop* k) { k->korting = 32767; }, r)},
             {"currency of 1 decimal", met_kop([](ordkop* k) { memcpy(k->valuta, "EEN", 3); }, r)},
             {"of 7", met_kop([](ordkop* k) { memcpy(k->valuta, "ZEV", 3); }, r)},
             {"not in the table", met_kop([](ordkop* k) { memcpy(k->valuta, "XXX", 3); }, r)},
             {"no rate, unit, surcharge", record('O', prijskop("goed", "GBP", 0, 0, 0, 0)) + r},
             {"largest rate and surcharge",
              record('O', prijskop("goed", "GBP", UINT32_MAX, 1, UINT32_MAX, 0)) + r},
             {"unit 0", record('O', prijskop("goed", "GBP", 10000, 0, 10000, 0)) + r},
             {"VAT code 11 at 6553.5 %, factor below 0", record('O', goed) + regels(1, "", 7, 10002)},
             {"VAT code 1, factor above 9.999", record('O', goed) + regels(1, "", 8, 10003)},
             {"ends beyond the bar", record('O', goed) + regels(1, advies({{200, 1}, {96, 2}, {255, 3}}))},
             {"an end twice", record('O', goed) + regels(1, advies({{2, 100}, {2, 200}, {4, 300}}))},
             {"out of order, below 0",
              record('O', goed) + regels(1, advies({{4, -5}, {1, INT32_MIN}, {3, INT32_MAX}}))},
             {"no end at all", record('O', goed) + regels(1, advies({{0, 100}, {3, 200}}))},
             {"the mark of an unknown price", met_prijs(INT32_MAX, INT32_MAX)},
             {"net alone", met_prijs(100, INT32_MAX)},
             {"0", met_prijs(0, 0)},
             {"below 0", met_prijs(INT32_MIN, -1)},
         }) {
        SCOPED_TRACE(wat);
        Datamap map;
        map.sys(VALUTA5, std::string("EEN\1Een", 7));
        map.sys(VALUTA5 + 36, std::string("ZEV\7Zeven", 9));
        map.sys(offsetof(sysfirma, btw), std::string("\xFF\xFF", 2));
        map.journaal(order);
        Programma p(map);
        p.eerste_order();
        const std::string regel = p.t.regel(8);
        p.t.toetsen("WP", " PRIJSINFORMATIE ");
        p.t.toetsen("P<Esc><Esc>I<Esc><Esc>A<Esc><Esc><Esc>", 24, 1, "Uw keuze");
        EXPECT_EQ(p.t.regel(8), regel) << p.t.scherm();
        p.t.toetsen("<Esc><Enter><Enter>12<Enter>");
        EXPECT_TRUE(map.journaal() == order) << "looked at";
        p.t.toetsen("<Enter>WDDANDERS<Enter><Esc>", 8, 36, "ANDERS");
        p.uit("<Esc>");
        std::string anders = order;
        const size_t d = anders.find("UNI");
        anders.replace(d, 6, "ANDERS");
        EXPECT_TRUE(map.journaal() == anders) << "a text";
    }
}

// A new order with a discount, a line with one of its own in two groups of sizes; looked at, sizes out and in, and the
// same in another colour. The journal holds net prices without the order's discount.
TEST(Prijs, VanBeginTotJournaal) {
    Datamap map;
    Programma p(map);
    Terminal& t = p.t;
    p.leverancier();
    t.toetsen("<Enter><Esc>G10<Enter><Esc>");
    t.toetsen("T9<Enter>X<Enter>10003<Enter><Esc>2<Enter><Esc>S<Enter>", " DEFINIEREN PRIJZEN ");
    stappen(
        t, {{"37<Enter><F10>110<Enter>", {{23, 3, "Kortingsmethode Automatisch  19.00%"}}},
            {"10<Enter>", {{17, 18, "  8.10"}, {19, 16, "19.60"}}},
            {"<F10><Enter><Enter><Enter>12<Enter>", {{17, 27, "  9.72"}, {19, 25, "23.52"}}},
            {"<F10><Enter><Enter>", {{12, 32, " WIJZIGEN PRIJZEN "}, {19, 18, " 19.95"}, {19, 27, " 23.95"}}},
            {"<Esc><Enter><Enter>2<Enter><Esc><Esc>", {{8, 64, "    2      16.20"}, {4, 74, " 16.20"}}},
            {"RP", {{8, 5, " 35  36  37  38 "}, {9, 5, "   2 "}, {14, 18, "  8.10"}, {16, 27, " 23.95"}}}});
    const int bellen = t.bellen();
    t.toetsen("P<Esc>"); // only to be looked at
    EXPECT_GT(t.bellen(), bellen);
    // Two advice prices within the first group, then the second size goes, and comes back with its own.
    stappen(t, {{"WPA35<Enter>18<Enter>36<Enter>21<Enter><Enter><Enter><Enter><Enter><Esc>",
                 {{16, 18, " 18.00    21.00    19.95    23.95"}}},
                {"MN<Enter>N", {{25, 1, "Maat met aantallen"}}}});
    t.toetsen("<Esc>MN<Enter><Right>N<Esc>");
    stappen(t, {{"<Enter>", {{8, 5, " 35  37  38     "}, {16, 18, " 18.00    19.95    23.95    "}}},
                {"MN<Enter><Right>J<Esc><Enter>", {{16, 18, " 18.00    21.00    19.95    23.95"}}}});
    t.toetsen("MN<Enter><Enter><Enter><Enter>N<Enter><Esc>"); // the last one goes for good
    t.toetsen("D<Enter>1<Enter><Esc>", " PRIJSINFORMATIE ");
    t.toetsen("I<Enter>20<Enter><Enter><Esc><Esc>A<Esc>", 4, 58, "2");
    t.toetsen("<Esc>");
    p.uit();
    EXPECT_EQ(prijzen_van(map.journaal()), "\n2: 1 1000/900 2 1000/900 3 1000/900 1=1800 2=2100 3=1995"
                                           "\n1: 1 2000/1800 2 2000/1800 3 2000/1800 1=1800 2=2100 3=1995");
}

// Under a surcharge a net price may be stored as one that reads a cent beside it: what is added up is what reads back.
TEST(Prijs, ToeslagTeltWatHetBestandHoudt) {
    zg::ordkop kop = maak_kop("Toeslag");
    kop.korting = 500;
    Orderscherm p(maak_order(kop, {Regel{.aantal = 100, .prijs = 2000}}));
    p.t.toetsen("wpi<Esc>n20,05<Enter><Esc><Esc>", "Netto      2006.00");
    p.t.wacht("100    2006.00");
    p.uit("<Esc><Esc>");
}

// More groups and sizes than a page has, both ways; what is shown is as it was.
TEST(Prijs, Bladeren) {
    std::string order =
        record('O', maak_kop("Veel")) + rec_model(5, "", 3) + record('D', een_dessin("", 0, 25));
    for (int maat = 1; maat <= 25; maat++)
        order += rec_maat(maat, 1000 + maat / 4, 1000 + maat / 4);
    Orderscherm p(order);
    stappen(p.t,
            {{"WP", {{8, 5, " 50  51  52 "}, {8, 77, ">"}, {10, 20, "1  "}, {12, 18, " 10.00    10.01"}}},
             {"<F8>", {{8, 3, "<  68  69  70  71  72  73  74 "}, {12, 18, " 10.06"}}},
             {"<F7>", {{8, 5, " 50  51  52 "}, {12, 18, " 10.00    10.01"}}}});
    p.uit("<Esc><Esc>");
    EXPECT_EQ(p.journaal(), order);
}

// Another rate of the day counts from the next action on, for the lines and all sums; an action keeps the one that it
// began with.
TEST(Prijs, DagkoersVerandertOnderDeOrder) {
    Datamap map;
    auto dagkoers = [&](uint32_t koers, uint16_t datum) {
        ICB* icb = IXOPEN(map.bestand("DTKOERS").c_str(), 2);
        schrijf(icb, koersrec{{'G', 'B', 'P'}, 0, static_cast<int32_t>(koers), 1, datum});
        IXCLOSE(icb);
    };
    const std::string order = record('O', prijskop("a", "GBP", 0, 1, 10000, 0)) + regels(2);
    auto hoort = [&](int64_t koers) { return volgens(handsom(order, 0, 2, koers), 2); };
    map.journaal(order);
    Programma p(map);
    p.eerste_order();
    EXPECT_EQ(op_scherm(p.t, 2), hoort(12500));
    dagkoers(15000, WERKDATUM - 1);
    stappen(p.t, {{"WP", {{15, 18, " 26.46"}}}}); // 17.64 in pounds
    dagkoers(20000, WERKDATUM);
    stappen(p.t, {{"I<Esc><Esc>", {{15, 18, " 26.46"}}}, {"<Esc>", {{24, 1, "Uw keuze"}}}});
    EXPECT_EQ(kopsom(p.t), kopsom(handsom(order, 0, 2, 15000).order, 2));
    p.t.toetsen("M1<Esc>");
    EXPECT_EQ(op_scherm(p.t, 2), hoort(20000));
    p.uit("<Esc>");
    EXPECT_EQ(map.journaal(), order);
}

// A brand maintained from under the line: its factor counts from then on, not the one that the line was begun with.
TEST(Prijs, FactorVanHetMerkVerandertOnderDeOrder) {
    Orderscherm p(maak_order(maak_kop("a"), {{9}})); // of one size
    stappen(p.t, {{"WPA<Enter><F10>", {{21, 3, "Calc.factor         2.420"}}}});
    p.t.toetsen("<Esc><Esc><Esc><Esc>WMR<F5><F10>W163<Enter><Esc><Esc><Esc><Esc>", 24, 1, "Uw keuze");
    stappen(p.t, {{"WPA<Enter><F10>", {{21, 3, "Calc.factor         3.000"}}}});
}
