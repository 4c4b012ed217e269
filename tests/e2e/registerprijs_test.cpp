// An order's discount in the full registration, as a buyer gives it: once, whatever he looks at afterwards.
#include "e2e/storingsmap.h"
#include "shared/ioeti.h"

using namespace zg;
using namespace zg::test;

namespace {

std::vector<int32_t> waarden(const DemoMap& map, int32_t ordernummer) {
    std::vector<int32_t> uit;
    for (const etiket& l : labels_van(map, ordernummer))
        uit.push_back(l.inkoop);
    return uit;
}

TEST(RegisterPrijs, DiscountOnceFromTheHeader) {
    DemoMap map("data/demo", "--empty-register");
    Terminal t({programma("zgbsmenu")}, demo_opties(map));
    naar_seizoen(t);
    t.toetsen("<Enter><Enter>15<Enter>", "</> voor nieuwe order");
    t.toetsen("/<Enter>", "Orderomschrijving");
    const std::string nummer = t.stuk(5, 14, 5);
    t.toetsen("<Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter><Enter><Esc><Esc><Esc>");
    t.wacht_op(24, 1, "Uw keuze");
    // A line of 14 pieces at 100.00 pounds.
    t.toetsen("T106<Enter>Shirt<Enter>1110<Enter><Enter><Enter><Esc><Esc>", "DESSIN");
    t.toetsen("<Esc>K14<Enter><Esc>", "Sernr.");
    t.toetsen("<Enter><Down>S<Enter><Enter>100<Enter><Enter><Esc>", "Levertermijn");
    t.toetsen("<Enter><Enter>2<Enter>3<Enter><Enter><Enter><Enter><Esc>");
    ASSERT_TRUE(t.wacht_op(3, 57, "14")) << t.scherm();
    const int32_t order = atoi(nummer.c_str());
    const auto eerst = waarden(map, order);
    ASSERT_EQ(eerst.size(), 14U) << t.scherm();
    // With a piece on another order of that day no discount, and a question before prices.
    auto eerste_label_op = [&](int32_t ander) {
        zet(map, "DTETI.TXT", offsetof(etiblok, plaats) + 32, ander);
    };
    eerste_label_op(order + 1);
    t.toetsen("WOG", "Het toekennen van orderkorting is niet toegestaan.");
    t.toetsen("<Enter><Esc>WPA", "Wilt u doorgaan? (J/N)");
    t.toetsen("<Enter><Esc>");
    eerste_label_op(order);
    for (int keer = 0; keer < 2; keer++) { // the second time the header is only looked through
        t.toetsen(keer ? "WOO<Enter><Esc>" : "WOG5<Enter><Esc>", 5, 55, "5.00%");
        const auto nu = waarden(map, order);
        ASSERT_EQ(nu.size(), 14U);
        EXPECT_NEAR(nu[0], eerst[0] * 0.95, 1) << keer;
        EXPECT_EQ(nu, std::vector<int32_t>(14, nu[0]));
        EXPECT_TRUE(t.regel(4).find("1330.00") != std::string::npos) << t.scherm();
    }
    t.toetsen("<Esc><Esc><Esc><Esc>");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    const std::string jrn = lees_bestand(map.bestand("2016Z/ORD0015.JRN"));
    EXPECT_TRUE(bevat(jrn, std::string("\x0c\xfe\x04", 3))) << "-500, status 4";
}

} // namespace
