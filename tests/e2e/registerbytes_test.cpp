// What two orders leave in the files of a new register, byte for byte: a line in euros, one in pounds with a surcharge, a
// discount and sizes whose numbers don't run along the bar. Worked out by hand from the keys below; nothing here reads
// or packs with the program's own code.
#include "e2e/loop.h"
#include "term/gesprek.h"

using namespace zg::test;

namespace {

const auto u16 = i16;
const auto u8 = [](int64_t n) { return getal(n, 1); };
std::string vast(std::string t, size_t breedte) { // NULs behind a text
    t.resize(breedte);
    return t;
}
std::string maten(std::initializer_list<int> nummers) {
    std::string uit(12, '\0');
    for (int nr : nummers)
        uit[static_cast<size_t>(nr / 8)] |= static_cast<char>(1 << nr % 8);
    return uit;
}
constexpr int DAG = 42430, APRIL_1 = 42461, APRIL_30 = 42490, MEI_1 = 42491, MEI_31 = 42521, BEGIN = 29221;
const std::string EURO = i32(1110) + u16(14) + u16(1), POND = i32(2110) + u16(4) + u16(1);

struct Stuks {
    int maat, filiaal, aantal, van, tot;
};

// The blocks of a series from block `eerste` on: its pieces in the order in which they are written. `bedragen` are
// purchase value and code, selling price, net price and status of a size's label.
std::string blokken(const std::string& serie, int eerste, const std::vector<Stuks>& stuks, int maatsoort,
                    int leverancier, int order, const std::function<std::string(int maat)>& bedragen) {
    std::string plaatsen;
    for (const Stuks& s : stuks)
        for (int i = 0; i < s.aantal; i++)
            plaatsen += bedragen(s.maat) + i32(0) + i32(0) + u16(s.maat * 100 + maatsoort) + u16(s.filiaal) +
                        u16(leverancier) + u16(DAG) + u16(s.tot) + u16(s.van) + i32(order);
    std::string uit;
    for (size_t p = 0; p < plaatsen.size(); p += 360, eerste++)
        uit += serie + u16(1) + u16(0) + i32(p + 360 < plaatsen.size() ? eerste + 1 : -1) +
               vast(plaatsen.substr(p, 360), 360);
    return uit;
}

TEST(Registerbytes, TwoOrdersInANewRegister) {
    DemoMap map("data/demo", "--empty-register");
    // Trousers: 54 has come between 46 and 50, and 48 behind 52.
    std::string dtmaat = lees_bestand(map.bestand("DTMAAT.TXT"));
    const size_t heren = dtmaat.find("46 \1") - 18;
    ASSERT_EQ(dtmaat.substr(heren, 2), "\1\3");
    dtmaat[heren + 14 + 2 * 4 + 3] = 5;
    dtmaat[heren + 14 + 5 * 4 + 3] = 2;
    schrijf_bestand(map.bestand("DTMAAT.TXT"), dtmaat);

    auto order = [&](const std::string& kop, const std::string& regel) {
        Programma p(overgave(map), demo_opties(map));
        p.t.toetsen("<Enter><Enter>" + kop, "Uw keuze _  T");
        p.t.toetsen(regel, "Uw keuze _  T");
        const std::string beeld = p.t.scherm();
        p.uit("<Esc><Esc>");
        return beeld;
    };
    const std::string euro = order(
        "99<Enter><Enter>Basis<Enter><Esc><Esc>",
        "TBROU<Enter>Blouse<Enter>1110<Enter><Enter><Enter><Esc><Esc>"
        "Katoen<Enter>Streep<Enter>14<Enter>Streepbloes<Enter><Enter>1<Esc>M<Enter>79.95<Enter><Esc><Enter>"
        "<Down>S<Enter>40<Enter>24.50<Enter>79.95<Enter><Enter>27<Enter>84.95<Enter><Esc>"
        "010416<Enter>300416<Enter>2<Enter>1<Enter>3<Enter>1<Enter>2<Enter>"
        "F1<Enter><Down>1<Enter><Down>1<Enter><Down>2<Enter><Down>1<Enter><Esc>");
    const std::string pond =
        order("15<Enter>/<Enter>Pantalons<Enter><Esc>I2<Enter>G5<Enter>T1.085<Enter><Esc>",
              "THART<Enter>Chino<Enter>2110<Enter><Enter><Enter><Esc><Esc>"
              "Twill<Enter>Uni<Enter>4<Enter><Enter><Enter>2<Esc>M<Enter><Enter><Esc><Enter>"
              "<Down>S<Enter>50<Enter>45<Enter>199.50<Enter><Enter>48<Enter>209.50<Enter><Esc>"
              "010416<Enter>300416<Enter>1<Enter>2<Enter>2<Enter>1<Enter>AD010516<Enter>310516<Enter>V<Esc>");

    // Along the bar 54, 50, 52, 48, that is sizes 5, 3, 4, 2; pounds 45.00 and 48.00 less 5 %, at 1.31 and a surcharge of 8.5 %.
    const std::vector<Stuks> euro_stuks = {
        {2, 0, 1, APRIL_1, APRIL_30}, {3, 0, 1, APRIL_1, APRIL_30}, {3, 1, 1, APRIL_1, APRIL_30},
        {4, 0, 3, APRIL_1, APRIL_30}, {4, 2, 1, APRIL_1, APRIL_30}, {5, 0, 1, APRIL_1, APRIL_30},
        {5, 3, 2, APRIL_1, APRIL_30}, {6, 0, 2, APRIL_1, APRIL_30}, {6, 4, 1, APRIL_1, APRIL_30}};
    std::vector<Stuks> pond_stuks; // spread by equal weights, and the same again in May
    for (auto [van, tot] : {std::pair{APRIL_1, APRIL_30}, {MEI_1, MEI_31}})
        for (auto [maat, filiaal] : {std::pair{5, 0}, {3, 1}, {3, 2}, {4, 3}, {4, 4}, {2, 0}})
            pond_stuks.push_back({maat, filiaal, 1, van, tot});
    auto gelijk = [&](const char* naam, const std::string& hoort, size_t rij) {
        EXPECT_EQ(hex(lees_bestand(map.bestand(naam)), rij), hex(hoort, rij)) << naam;
    };
    const std::string adv_euro = u8(4) + u8(6) + getal(0, 6) + i32(7995) + i32(8495) + std::string(24, '\0');
    const std::string adv_pond =
        u8(3) + u8(2) + getal(0, 6) + i32(19950) + i32(20950) + std::string(24, '\0');
    // 01-03-2016 at noon.
    const int64_t stempel = (DAG - BEGIN) * 86400LL + 43200;
    gelijk("DTSER.TXT",
           EURO + u16(101) + u16(2016) + "Z" + u8(0) + u8(1) + "D" + u8(2) + u8(0) + u8(1) +
               vast("BLOUSE", 15) + vast("Streepbloes", 20) + vast("Streep", 12) + vast("Katoen", 12) +
               vast("", 2) + maten({2, 3, 4, 5, 6}) + adv_euro + i32(99) + u16(APRIL_30) + u16(APRIL_1) +
               i32(0) + i32(0) + i32(0) + i32(13) + u16(DAG) + std::string(12, '\0') + u8(1) + u8(0) +
               i32(7995) + i32(0) + i32(stempel) + i32(0) + i32(1000) + i32(0) + i32(0) + POND + u16(106) +
               u16(2016) + "Z" + u8(0) + u8(0) + "H" + u8(3) + u8(0) + u8(1) + vast("CHINO", 15) +
               vast("", 20) + vast("Uni", 12) + vast("Twill", 12) + vast("", 2) + maten({2, 3, 4, 5}) +
               adv_pond + i32(15) + u16(MEI_31) + u16(APRIL_1) + i32(0) + i32(0) + i32(0) + i32(12) +
               u16(DAG) + std::string(12, '\0') + u8(1) + u8(0) + i32(0) + i32(2) + i32(stempel) + i32(0) +
               i32(1001) + i32(0) + i32(0),
           200);
    gelijk("DTIPA.TXT",
           EURO + u16(99) + u16(65534) + i32(10000) + u8(0) + maten({2, 3, 4, 5, 6}) + "EUR" + u16(BEGIN) +
               u16(0) + i32(0) + POND + u16(15) + u16(65534) + i32(10850) + u8(0) + maten({2, 3, 4, 5}) +
               "GBP" + u16(BEGIN) + u16(0) + i32(2),
           40);
    auto groep = [](const std::string& serie, int lev, const std::string& m, const char* valuta, int bruto,
                    int netto, int volgende) {
        return serie + u16(lev) + u16(65534) + m + valuta + u8(0) + i32(netto) + i32(bruto) + i32(volgende);
    };
    gelijk("DTIPG.TXT",
           groep(EURO, 99, maten({2, 3, 4}), "EUR", 2450, 2450, 1) +
               groep(EURO, 99, maten({5, 6}), "EUR", 2700, 2700, -1) +
               groep(POND, 15, maten({5, 3}), "GBP", 4500, 4275, 3) +
               groep(POND, 15, maten({4, 2}), "GBP", 4800, 4560, -1),
           40);
    gelijk("DTETI.TXT",
           blokken(EURO, 0, euro_stuks, 2, 99, 1000,
                   [](int maat) {
                       return maat < 5 ? i32(24500) + i32(79950) + i32(24501)
                                       : i32(27000) + i32(84950) + i32(27001);
                   }) +
               blokken(POND, 2, pond_stuks, 3, 15, 1001,
                       [](int maat) {
                           return maat == 5 || maat == 3 ? i32(60762) + i32(199500) + i32(42751)
                                                         : i32(64812) + i32(209500) + i32(45601);
                       }),
           376);
    std::string codes = vast("0", 28); // the lock
    for (auto [code, maat] : {std::pair{"2013000000015", 2},
                              {"2013000000022", 3},
                              {"2013000000039", 4},
                              {"2013000000046", 5},
                              {"2013000000053", 6},
                              {"2013000000060", 5},
                              {"2013000000077", 3},
                              {"2013000000084", 4},
                              {"2013000000091", 2}})
        codes += code + std::string("M") +
                 (codes.size() < 6 * 28 ? u16(14) + i32(1110) : u16(4) + i32(2110)) + u16(1) + u8(maat) +
                 u8(0) + u16(DAG) + u16(0);
    gelijk("DTEAN.TXT", codes, 28);
    auto nummer = [](int nr, int lev) {
        return i32(nr) + std::string(35, '\0') + u8(0) + u16(lev) + u16(2016) + "Z" + u8(0) + u16(DAG);
    };
    gelijk("DTORDNR.TXT", nummer(1000, 99) + nummer(1001, 15), 48);
    const std::string sys = lees_bestand(map.bestand("DTSYS.TXT"));
    EXPECT_EQ(hex(sys.substr(64, 64), 64), hex(vast(i32(1001), 64), 64)) << "series";
    EXPECT_EQ(hex(sys.substr(3 * 64, 64), 64), hex(vast(i32(4) + i32(4), 64), 64)) << "blocks";
    EXPECT_EQ(hex(sys.substr(4 * 64, 64), 64), hex(vast(i32(1001), 64), 64)) << "orders";
    EXPECT_EQ(hex(sys.substr(8 * 64, 64), 64), hex(vast(i32(4) + i32(4), 64), 64)) << "groups";
    EXPECT_EQ(hex(sys.substr(13 * 64, 64), 64), hex(vast(i32(9), 64), 64)) << "codes";

    for (const auto& [leverancier, beeld] : {std::pair{99, euro}, {15, pond}}) {
        Programma p(overgave(map), demo_opties(map));
        p.eerste_order(leverancier);
        EXPECT_EQ(p.t.scherm(), beeld);
        p.uit("<Esc><Esc>");
    }
}

} // namespace
