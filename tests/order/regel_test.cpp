// The order line in memory: prices with and without the discount, terms, extensions, areas beside the shared
// line; and orddump on what was built.
#include "bouw.h"
#include "order/regelscherm.h"
#include "shared/syscalls.h"
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {
namespace {

// An order of one model with this line, opened, the line loaded.
void open_regel(const Regel& l, int korting = 0) {
    Order o{42500, "", "", {{1, "m", {l}}}, 0, korting};
    zet("JRN", bytes(o));
    ASSERT_TRUE(kies(0));
    ASSERT_TRUE(regel_lees(regel_op(1)));
}

TEST(Regel, nettoprijs_met_en_zonder_orderkorting) {
    struct {
        int32_t opgeslagen;
        int korting;
        int32_t geladen;
        int32_t terug; // written when the price in hand is set anew
    } const rijen[] = {
        {1000, 0, 1000, 1000}, {1000, -250, 975, 1000},
        {100, -250, 98, 101},  {1, -5000, 1, 2},
        {0, 0, 1, 1},          {100, 1000, 110, 100},
        {999, -10000, 1, 1},   {INT32_MAX, 10000, INT32_MAX - 1, 1073741823},
        {-3, 0, -3, -3},
    };
    for (const auto& rij : rijen) {
        auto k = static_cast<int16_t>(rij.korting);
        EXPECT_EQ(netto_uit_opslag(rij.opgeslagen, k), rij.geladen) << rij.opgeslagen << " " << rij.korting;
        EXPECT_EQ(netto_voor_opslag(rij.geladen, k), rij.terug) << rij.opgeslagen << " " << rij.korting;
    }
}

TEST(Regel, prijs_die_niemand_wijzigde_gaat_terug_zoals_hij_was) {
    OrderMap map;
    Regel l{5, "t", {{1, 200, 100, "EB"}, {40, 300, 0, "B"}, {95, 400, 77, "E"}}, {}};
    open_regel(l, -250);
    EXPECT_EQ(regel_prijzen.netto[1], 98);
    EXPECT_EQ(regel_prijzen.netto[40], 1);
    regel_prijzen.netto[95] = 50;
    dessin.maten[0] = 0; // size 1 goes, and its extensions with it
    ors_ingang e = regel_op(1);
    strcpy(dessintekst, "t");
    ASSERT_TRUE(wrk_regel_vervang(&e));
    sluit();
    l.maten = {{40, 300, 0, "B"}, {95, 400, 51, "E"}};
    EXPECT_EQ(inhoud("JRN"), bytes(Order{42500, "", "", {{1, "m", {l}}}, 0, -250}));
}

TEST(Regel, termen_met_dezelfde_laatste_datum_worden_een) {
    OrderMap map;
    Regel l{
        5,
        "",
        {{1, 1, 1, ""}},
        {{42010, 42020, {{2, 1, 4}, {0, 1, 3}}}, {42000, 42015, {}}, {42005, 42020, {{0, 1, 5}, {1, 1, 2}}}}};
    open_regel(l);
    uint16_t van = 0, tot = 0;
    std::vector<int32_t> m(matrix_cellen());
    ASSERT_TRUE(lt_lees('N', &van, &tot, m.data()));
    EXPECT_EQ(tot, 42015);
    EXPECT_EQ(matrix_cel(m.data(), 3, 0), 0);
    ASSERT_TRUE(lt_lees('N', &van, &tot, m.data()));
    EXPECT_EQ(van, 42005);
    EXPECT_EQ(matrix_cel(m.data(), 0, 1), 8);
    EXPECT_EQ(matrix_cel(m.data(), 3, 1), 14);
    EXPECT_FALSE(lt_lees('N', &van, &tot, m.data()));
    EXPECT_EQ(matrix_cel(order_aantallen, 3, 0), 14);
    // Written by last date, quantities by branch.
    ors_ingang e = regel_op(1);
    ASSERT_TRUE(wrk_regel_vervang(&e));
    sluit();
    l.termen = {{42000, 42015, {}}, {42005, 42020, {{0, 1, 8}, {1, 1, 2}, {2, 1, 4}}}};
    EXPECT_EQ(inhoud("JRN"), bytes(Order{42500, "", "", {{1, "m", {l}}}}));
}

TEST(Regel, lijst_van_termen) {
    OrderMap map;
    std::vector<int32_t> m(matrix_cellen());
    lt_wis();
    for (int tot : {300, 100, 200}) {
        matrix_cel(m.data(), 1, 7) = tot;
        lt_schrijf(50, static_cast<uint16_t>(tot), m.data());
    }
    EXPECT_EQ(lt_volgnr(200), 2);
    EXPECT_EQ(lt_volgnr(150), 0);
    EXPECT_FALSE(lt_verzet(200, 60, 300)) << "another term has that date";
    EXPECT_FALSE(lt_verzet(150, 60, 160));
    EXPECT_TRUE(lt_verzet(100, 60, 400));
    uint16_t van, tot;
    ASSERT_TRUE(lt_nr(3, &van, &tot, m.data()));
    EXPECT_EQ(tot, 400);
    EXPECT_EQ(van, 60);
    EXPECT_EQ(matrix_cel(m.data(), 3, 7), 100);
    EXPECT_FALSE(lt_nr(0, &van, &tot, nullptr));
    EXPECT_FALSE(lt_nr(4, &van, &tot, nullptr));
    EXPECT_EQ(lt_aantal(), 3);
}

TEST(Regel, lopen_langs_andere_regels_laat_de_cursor_staan) {
    OrderMap map;
    zet("JRN", bytes(std::vector<Order>{maak_order(2, {2, 2})}));
    ASSERT_TRUE(kies(0));
    ors_ingang e = regel_op(2);
    ASSERT_TRUE(regel_lees(e));
    regelgebied voor, na, langs;
    regel_bewaar(&voor);
    for (bool er = ors_lees('F', &e); er; er = ors_lees('N', &e)) {
        ASSERT_TRUE(regel_lees_in(e, &langs));
        EXPECT_EQ(langs.dessin.kleur, 200 + e.regel);
        char tekst[BLOKLEN];
        ASSERT_TRUE(regel_teksten(e, nullptr, tekst));
        EXPECT_EQ(strlen(tekst), langs.dessin.kleur % 3 ? 0U : 77U);
    }
    regel_bewaar(&na);
    EXPECT_EQ(memcmp(&voor.dessin, &na.dessin, sizeof na.dessin), 0);
    EXPECT_EQ(voor.aantallen, na.aantallen);
    EXPECT_EQ(memcmp(voor.prijzen.netto, na.prijzen.netto, sizeof na.prijzen.netto), 0);
    // An entry that points elsewhere does not load.
    for (ors_ingang fout : std::array<ors_ingang, 4>{
             {{1, 0, 0, e.d}, {1, 0, e.m, e.d + 1}, {1, 0, -1, e.d}, {1, 0, e.m, INT32_MAX}}})
        EXPECT_FALSE(regel_lees_in(fout, &langs)) << fout.m << " " << fout.d;
    sluit();
}

// More than 32 bits hold: 95 sizes of the largest price in large numbers.
TEST(Regel, totalen_lopen_niet_over) {
    regelprijzen prijzen{};
    int32_t rij[MAATKOLOMMEN] = {};
    for (int m = 1; m <= MAAT_MAX; m++) {
        prijzen.bruto[m] = 2000000000;
        rij[m] = 1000000;
    }
    rij[2] = -5;    // what isn't above 0 doesn't count
    rij[0] = 12345; // the row's own total isn't a size
    ordertotalen t;
    kop = {};
    regel_totaal(rij, prijzen, &t);
    EXPECT_EQ(t.regels, 0);
    EXPECT_EQ(t.stuks, 94 * 1000000LL);
    EXPECT_EQ(t.bruto, 94 * 1000000LL * 2000000000LL);
    EXPECT_EQ(t.netto, 0);
    ordertotaal = {};
    order_totaal_bij('+', t);
    order_totaal_bij('+', t);
    order_totaal_bij('-', t);
    EXPECT_EQ(ordertotaal.regels, 1);
    EXPECT_EQ(ordertotaal.bruto, t.bruto);
}

// ---- orddump

struct Uit {
    int status;
    std::string tekst;
};
Uit dump(const std::string& rest) {
    FILE* p = popen((std::string("\"" ZG_BINARY_DIR "/orddump\" ") + rest + " 2>&1").c_str(), "r");
    std::string tekst;
    char buf[4096];
    for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;)
        tekst.append(buf, n);
    int st = pclose(p);
    return {WEXITSTATUS(st), tekst};
}

TEST(Orddump, leest_een_journaal_en_stoort_niet) {
    OrderMap map;
    Order o = maak_order(3, {2});
    o.levering = "caf\x82"; // é
    zet("JRN", bytes(o));
    ASSERT_TRUE(kies(0)); // the program holds both files
    Uit t = dump(pad("JRN"));
    EXPECT_EQ(t.status, 0) << t.tekst;
    EXPECT_NE(t.tekst.find("         0 O leverancier=12 jaar=2016 orderdatum=2016-02-0"), std::string::npos)
        << t.tekst;
    EXPECT_NE(t.tekst.find("soort=1 tekst=\"caf\xC3\xA9\""), std::string::npos) << t.tekst;
    Uit j = dump("-j " + pad("WRK"));
    EXPECT_EQ(j.status, 0) << j.tekst;
    int64_t som = 0, records = 0;
    for (size_t b = 0; b < j.tekst.size(); b = j.tekst.find('\n', b) + 1, records++) {
        auto rec = nlohmann::json::parse(j.tekst.substr(b, j.tekst.find('\n', b) - b));
        if (rec["tag"] == "F")
            som += rec["aantal"].get<int>();
    }
    EXPECT_EQ(som, 5 + 302 + 5 + 303 + 6 + 303);
    EXPECT_NE(dump("-c " + pad("WRK")).tekst.find(std::to_string(records) + " records, good"),
              std::string::npos);
    EXPECT_EQ(in_kind([] { return kies(0) ? 0 : 5; }), 5) << "the lock is still ours";
    // Half written in the eyes of a reader: in use, not wrong.
    ASSERT_EQ(ftruncate(werk->fd, SYSOMVANG(werk->fd) - 1), 0);
    EXPECT_EQ(dump("-c " + pad("WRK")).status, 4);
}

TEST(Orddump, vindt_wat_niet_kan) {
    OrderMap map;
    const std::string o = bytes(Order{42500, "", "", {}}),
                      m = bytes(Order{42500, "", "", {{1, "", {}}}}).substr(o.size());
    auto lijn = [&](const Regel& l) {
        return bytes(Order{42500, "", "", {{1, "", {l}}}}).substr(o.size() + m.size());
    };
    const std::string d = lijn(Regel{1, "", {}, {}});
    const std::string s = lijn(Regel{1, "", {{5, 1, 1, "E"}}, {}}), goed = o + m + s;
    struct {
        std::string b;
        const char* zegt;
        const char* opties = "";
    } const rijen[] = {
        {goed, "1 lines"},
        {"", "0 orders"},
        {goed + "Q", "unknown tag, byte 51"},
        {goed.substr(0, goed.size() - 1), "ends inside this 'E'"},
        {m + s, "does not begin with an order"},
        {o + s, "line without a model"},
        {o + m, "model without a line"},
        {goed + std::string(1, 'T') + std::string(61, '\1'), "wrong place"},
        {o + m + s.substr(0, 129), "size 5 has no prices"},
        {o + m + d + s.substr(129, 13), "size 5 has prices but is not"},
        {o + m + d + s.substr(142), "extension without"},
        {o + m + d + std::string(1, 'F') + std::string(8, '\1'), "quantity outside"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{0, 96, 1}}}}}), "size 96"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{0, 1, -1}}}}}), "quantity -1"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{3, 1, 1}}}}}), "branch index 3", "-b 3"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {}}, {0, 2, {}}}}), "same last date"},
        {goed, "of its five pieces", "-k work"},
        {goed + goed, "second order", "-k work"},
    };
    for (const auto& rij : rijen) {
        zet("JRN", rij.b);
        Uit u = dump(std::string("-c ") + rij.opties + " " + pad("JRN"));
        EXPECT_EQ(u.status, strstr(rij.zegt, "1 lines") || strstr(rij.zegt, "0 orders") ? 0 : 1)
            << rij.zegt << u.tekst;
        EXPECT_NE(u.tekst.find(rij.zegt), std::string::npos) << rij.zegt << "\n" << u.tekst;
    }
    EXPECT_EQ(dump("--version").status, 0);
    EXPECT_EQ(dump("--help").status, 0);
    EXPECT_EQ(dump("").status, 2);
    EXPECT_EQ(dump("-b x " + pad("JRN")).status, 2);
    EXPECT_EQ(dump("weg.JRN").status, 3);
    EXPECT_EQ(dump("2016Z").status, 3);
}

} // namespace
} // namespace zg::test
