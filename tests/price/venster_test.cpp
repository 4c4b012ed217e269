// The windows of the price screens, in a real terminal: what is refused, what stays for the next group, what a cancel
// puts back.
#include "price/ing_val.h"
#include "price/prijsvenster.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg {
namespace {

struct Prijsvenster : test::Systeem {
    Prijsvenster() {
        VASTIN(instel15.valuta, "EUR");
        valuta(3, "EUR", 2, "Euro");
        valuta(4, "JPY", 0, "Japanse yen");
        valuta_vergeet();
        valuta_decimalen(""); // into memory before the child is made
        up_context = {};
        up_context.methode = Kortingsmethode::automatisch;
        up_context.btw = 210;
    }
    // Keys; where a "|" stands in them, these must be seen.
    static void speel(test::Terminal& t, std::string_view toetsen, std::initializer_list<const char*> beeld) {
        const size_t streep = std::min(toetsen.find('|'), toetsen.size());
        t.toetsen(toetsen.substr(0, streep));
        for (const char* tekst : beeld)
            EXPECT_TRUE(!tekst || t.wacht(tekst)) << tekst;
        t.toetsen(toetsen.substr(std::min(streep + 1, toetsen.size())));
    }
    // Over a price window at the foot of a screen that has a title.
    static std::string in_venster(const std::function<std::string()>& kind) {
        TOPTITEL("orders");
        SCRPUT(A_KEUS, 1, 62, "Orderdatum: 201115");
        WINOPEN1(12, 1, 13, 80);
        WINBOX(nullptr);
        const std::string uit = kind();
        WINCLOSE();
        return uit;
    }
};

// The line's discount below the order's, and the method whose window it is.
TEST_F(Prijsvenster, method_and_discount_of_the_line) {
    up_context.regelkorting = 7;
    struct {
        double order;
        const char *toetsen, *uit;                  // method and discount
        const char *een = nullptr, *twee = nullptr; // seen on the way
    } const gevallen[] = {
        {0, "1|12,5<Enter>", "Automatisch  12.50% 12.5", " AUTOMATISCH ", "Korting"},
        {10, "1|10<Enter>", "Automatisch  19.00% 10", "Orderkorting    10.00%", "Totaalkorting   16.30%"},
        {10, "199,99<Enter>|99<Enter>", "Automatisch  99.10% 99", "<99.99%> Totaalkorting alleen"},
        {10, "1<F1>|x5<Enter>", "Automatisch  14.50% 5", "<F10>  Berekenen korting",
         "<F1> HELP Orderdatum: 201115"},
        {10, "199,99<Enter><Esc>|2", "Ingave korting 7", "KORTINGSMETHODE"},
        {10, "3", "Ingave nettoprijs 7"},
        {-50, "1-60<Enter>-20<Enter>", "Automatisch -80.00% -20"}, // -140 for both is refused
        {10, "<Esc>", "Automatisch  16.30% 7"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.toetsen);
        test::Gesprek t([&] {
            return in_venster([&] {
                up_context.orderkorting = g.order;
                kortingsmethode_kiezen(41);
                return kortingsmethode_tekst() + test::vorm(" %g", up_context.regelkorting);
            });
        });
        speel(t, g.toetsen, {g.een, g.twee});
        t.wacht("\n= ");
        EXPECT_EQ(t.regel(1), " ORDERS" + std::string(54, ' ') + "Orderdatum: 201115")
            << "no hint left behind";
        EXPECT_EQ(t.antwoord(), g.uit);
    }
}

// An entry stands at the next group, one below an order's discount and one without, until that is another.
TEST_F(Prijsvenster, new_discount_from_group_to_group) {
    test::Gesprek t([] {
        return in_venster([] {
            std::string uit;
            for (double order : {10, 10, 10, 0, 20}) {
                up_context.orderkorting = order;
                const bool goed = nieuwe_korting_venster("Nieuwe korting", 80);
                uit += test::vorm("%d %g ", goed, up_context.nieuwe_korting);
            }
            return uit;
        });
    });
    t.wacht_op(7, 55, "┌──── NIEUWE KORTING ────┐"); // it doesn't leave the screen
    t.toetsen("15<Enter><Enter>30<Esc><Enter>", "Totaalkorting   20.00%");
    EXPECT_EQ(t.antwoord("5<Enter>"), "1 15 1 15 0 15 1 0 1 5");
}

TEST_F(Prijsvenster, calculation_of_an_advice_price) {
    constexpr auto G = Calcmodus::geen, F = Calcmodus::factor, M = Calcmodus::marge;
    struct {
        Calcmodus modus;
        int32_t inkoop;
        const char *toetsen, *uit;                  // accepted, price; mode, factor and margin from then on
        const char *een = nullptr, *twee = nullptr; // seen on the way
        const char* thuis = "EUR";
    } const gevallen[] = {
        {F, 412, "2,42<Enter>|<Enter>", "1 995; 1 2.42 40", "Calc.pr     EUR      9.97"},
        {G, 1000, "50<Enter>24,20<Enter>", "1 2420; 2 1.5 50"},
        {M, 1000, "<Tab>2|<Tab>50<Enter><Esc><Esc>", "0 7; 2 1.5 40", "Calc.factor         2____"},
        {G, 1000, "<Tab>2<Enter><Esc><Esc>", "0 7; 0 1.5 40"},
        {F, 1000, "<F1>|x2<Enter><Esc>3<Enter><Enter>", "1 3050; 1 3 40", "<TAB>  Calc.marge"},
        // No price comes of it, or one that the field can't hold: neither is taken by ENTER alone.
        {F, 1000, "0<Enter><Enter>|9<Enter>", "1 900; 1 0 40", "Ingave verplicht"},
        {F, 9000000, "2<Enter>|<Enter>99999,99<Enter>", "1 9999999; 1 2 40", "<180005.00> Bedrag te groot",
         "Adv.pr      EUR  ________"},
        // Without decimals, nor rounding; the next field has two again.
        {F, 412, "2,42<Enter><Esc>|<Enter>998<Enter>", "1 998; 1 2.42 40", "Adv.pr      JPY       997",
         nullptr, "JPY"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.toetsen);
        test::Gesprek t([&] {
            return in_venster([&] {
                up_context.calcmodus = g.modus, up_context.calcfactor = 1.5, up_context.calcmarge = 40;
                int32_t advies = 7;
                VASTIN(instel15.valuta, g.thuis);
                const bool goed = bereken_advies_venster(2, g.inkoop, &advies) && SCHERM.kpos == 2;
                return test::vorm("%d %d; %d %g %g", goed, advies, static_cast<int>(up_context.calcmodus),
                                  up_context.calcfactor, up_context.calcmarge);
            });
        });
        t.wacht_op(19, 1, "┌────────── BEREKENEN ADVIESPRIJS (3) ───────────┐");
        speel(t, g.toetsen, {g.een, g.twee});
        EXPECT_EQ(t.antwoord(), g.uit);
    }
}

} // namespace
} // namespace zg
