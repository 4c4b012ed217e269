// The order line in memory: prices with and without the discount, terms, extensions, areas beside the shared
// line; and orddump on what was built.
#include "bouw.h"
#include "order/regelscherm.h"
#include "tools/shell.h"
#include <nlohmann/json.hpp>

namespace zg::test {
namespace {

using Orderregels = InOrderMap;
using Orddump = InOrderMap;

// An order of one model with this line, opened, the line in hand.
void open_regel(const Regel& l, int korting = 0) {
    Order o{42500, "", "", {{1, "m", {l}}}, 0, korting};
    zet("JRN", bytes(o));
    ASSERT_TRUE(kies(0));
    ASSERT_TRUE(regel_lees(regel_op(1), &regel_nu));
}

TEST_F(Orderregels, prijs_die_niemand_wijzigde_gaat_terug_zoals_hij_was) {
    Regel l{5,
            "t",
            {{1, 200, 100, "EB"}, {7, 0, -3, ""}, {40, 300, 0, "B"}, {94, 0, 0, ""}, {95, 400, 77, "E"}},
            {}};
    open_regel(l, -250);
    EXPECT_EQ(regel_nu.prijzen.netto[1], 98);
    EXPECT_EQ(regel_nu.prijzen.netto[7], 1);
    EXPECT_EQ(regel_nu.prijzen.bruto[7], 1);
    EXPECT_EQ(regel_nu.prijzen.netto[2], 0);
    up_zet(&regel_nu.prijzen.netto, 95, 50);
    up_zet(&regel_nu.prijzen.netto, 94, PRIJS_ONBEKEND);
    maat_uit(regel_nu.dessin.maten, 1); // its extensions go with it
    ors_ingang e = regel_op(1);
    ASSERT_TRUE(wrk_regel_vervang(&e, &regel_nu));
    sluit();
    l.maten = {{7, 0, -3, ""}, {40, 300, 0, "B"}, {94, 0, 0, ""}, {95, 400, 51, "E"}};
    EXPECT_EQ(inhoud("JRN"), bytes(Order{42500, "", "", {{1, "m", {l}}}, 0, -250}));
}

TEST_F(Orderregels, dubbel_zonder_wat_bij_het_origineel_hoort) {
    Regel l{5, "t", {{1, 200, 100, "EB"}}, {{42000, 42010, {{1, 1, 3}}}}};
    open_regel(l, -250);
    regel_nu.dessin.volgnummer = 9;
    regel_dupliceer(&regel_nu);
    ors_ingang e = regel_op(1);
    ASSERT_TRUE(wrk_regel_in(&e, false, &regel_nu));
    Regel kopie = l;
    kopie.maten[0].extra = "";
    kopie.tijd = regel_nu.dessin.tijdstempel;
    sluit();
    EXPECT_EQ(inhoud("JRN"), bytes(Order{42500, "", "", {{1, "m", {l, kopie}}}, 0, -250}));
}

// In registermodus the records behind D belong to the register; texts are the journal's own.
TEST_F(Orderregels, registermodus_wijzigt_de_teksten_en_niets_anders) {
    Order o = maak_order(2, {1, 2});
    o.nummer = 1000;
    zet("JRN", bytes(o));
    registermodus = true;
    ASSERT_TRUE(kies(0));
    for (int nr : {3, 2}) {
        ors_ingang e = regel_op(nr);
        ASSERT_TRUE(regel_lees(e, &regel_nu));
        EXPECT_EQ(matrix_totalen(regel_nu.order_aantallen)[0], 0);
        regel_nu.model.merk = 99;
        memset(regel_nu.dessin.dessin, 'x', sizeof regel_nu.dessin.dessin);
        strcpy(regel_nu.modeltekst, "model nieuw");
        strcpy(regel_nu.dessintekst, nr == 3 ? "regel nieuw" : "\n");
        ASSERT_TRUE(wrk_regel_vervang(&e, &regel_nu));
        EXPECT_EQ(e.regel, nr);
    }
    o.modellen[1].tekst = "model nieuw";
    o.modellen[1].regels[0].tekst = "";
    o.modellen[1].regels[1].tekst = "regel nieuw";
    EXPECT_EQ(inhoud("WRK"), bytes(o, true));
    sluit();
}

TEST_F(Orderregels, termen_met_dezelfde_laatste_datum_worden_een) {
    Regel l{
        5,
        "",
        {{1, 1, 1, ""}},
        {{42010, 42020, {{2, 1, 4}, {0, 1, 3}}}, {42000, 42015, {}}, {42005, 42020, {{0, 1, 5}, {1, 1, 2}}}}};
    open_regel(l);
    uint16_t van = 0, tot = 0;
    aantalmatrix m;
    const levtermen& termen = regel_nu.termen;
    ASSERT_TRUE(lt_lees(termen, 'N', &van, &tot, &m));
    EXPECT_EQ(tot, 42015);
    EXPECT_EQ(matrix_cel(m, 3, 0), 0);
    ASSERT_TRUE(lt_lees(termen, 'N', &van, &tot, &m));
    EXPECT_EQ(van, 42005);
    EXPECT_EQ(matrix_cel(m, 0, 1), 8);
    EXPECT_EQ(matrix_cel(m, 3, 1), 14);
    EXPECT_FALSE(lt_lees(termen, 'N', &van, &tot, &m));
    EXPECT_EQ(matrix_cel(regel_nu.order_aantallen, 3, 0), 14);
    EXPECT_EQ(regel_nu.nota_aantallen, regel_nu.order_aantallen);
    // Written by last date, quantities by branch.
    ors_ingang e = regel_op(1);
    ASSERT_TRUE(wrk_regel_vervang(&e, &regel_nu));
    sluit();
    l.termen = {{42000, 42015, {}}, {42005, 42020, {{0, 1, 8}, {1, 1, 2}, {2, 1, 4}}}};
    EXPECT_EQ(inhoud("JRN"), bytes(Order{42500, "", "", {{1, "m", {l}}}}));
}

TEST_F(Orderregels, lijst_van_termen) {
    levtermen termen;
    for (int tot : {300, 100, 200}) {
        aantalmatrix m;
        fmclear(&m);
        fmadd(&m, 1, 7, tot);
        lt_schrijf(&termen, 50, static_cast<uint16_t>(tot), m);
    }
    EXPECT_EQ(lt_volgnr(termen, 200), 2);
    EXPECT_EQ(lt_volgnr(termen, 150), 0);
    EXPECT_FALSE(lt_verzet(&termen, 200, 60, 300)) << "another term has that date";
    EXPECT_FALSE(lt_verzet(&termen, 150, 60, 160));
    EXPECT_TRUE(lt_verzet(&termen, 100, 60, 400));
    uint16_t van, tot;
    aantalmatrix m;
    ASSERT_TRUE(lt_nr(termen, 3, &van, &tot, &m));
    EXPECT_EQ(tot, 400);
    EXPECT_EQ(van, 60);
    EXPECT_EQ(matrix_cel(m, 3, 7), 100);
    EXPECT_FALSE(lt_nr(termen, 0, &van, &tot, nullptr));
    EXPECT_FALSE(lt_nr(termen, 4, &van, &tot, nullptr));
}

// One value for a whole walk, lines of one model and of several: nothing of one line is left in the next.
TEST_F(Orderregels, elke_regel_van_een_loop_is_de_hare) {
    Order o = maak_order(2, {2, 3, 1});
    zet("JRN", bytes(o));
    ASSERT_TRUE(kies(0));
    const int32_t plaats = werk->offset;
    regelloop loop;
    regelloop_begin(&loop);
    orderregel r;
    ors_ingang e{};
    int nr = 0;
    for (const Model& m : o.modellen)
        for (const Regel& l : m.regels) {
            SCOPED_TRACE(++nr);
            ASSERT_TRUE(ors_lees('N', &e));
            ASSERT_TRUE(regel_lees(&loop, e, &r));
            EXPECT_EQ(r.model.merk, m.merk);
            EXPECT_EQ(r.dessin.kleur, l.kleur);
            EXPECT_EQ(std::string(r.modeltekst), m.tekst);
            EXPECT_EQ(std::string(r.dessintekst), l.tekst);
            EXPECT_EQ(r.termen.size(), l.termen.size());
            int64_t som = 0;
            for (const Term& t : l.termen)
                for (const Aantal& a : t.aantallen)
                    som += a.aantal;
            EXPECT_EQ(matrix_totalen(r.order_aantallen)[0], som);
            for (int maat = 1; maat <= MATEN; maat++) {
                auto s = std::find_if(l.maten.begin(), l.maten.end(),
                                      [&](const Maat& x) { return x.maat == maat; });
                EXPECT_EQ(up_lees(r.prijzen.bruto, maat), s == l.maten.end() ? 0 : std::max(s->bruto, 1));
            }
        }
    EXPECT_EQ(nr, 6);
    EXPECT_EQ(werk->offset, plaats) << "a walk leaves the handle alone";
    // An entry that points elsewhere does not load, and leaves nothing.
    for (ors_ingang fout : std::array<ors_ingang, 4>{
             {{1, 0, 0, e.d}, {1, 0, e.m, e.d + 1}, {1, 0, -1, e.d}, {1, 0, e.m, INT32_MAX}}}) {
        EXPECT_FALSE(regel_lees(&loop, fout, &r)) << fout.m << " " << fout.d;
        EXPECT_EQ(r.dessin.kleur, 0);
    }
    sluit();
}

// More than 32 bits hold: 95 sizes of the largest price in large numbers. Surcharge and rate in the purchase
// value; a price that isn't known yet counts nothing.
TEST_F(Orderregels, totalen) {
    regel_wis(&regel_nu);
    kop = {};
    VASTIN(kop.valuta, "USD");
    kop.koers = 9000;
    kop.toeslag = 12000;
    order_prijscontext();
    for (int m = 1; m <= MATEN; m++) {
        up_zet_maat(&regel_nu.prijzen, m, 2000000000, m == 3 ? PRIJS_ONBEKEND : 100);
        fmadd(&regel_nu.order_aantallen, 1, m, m == 2 ? 0 : 1000000);
    }
    up_inkoop_alle(&regel_nu.prijzen);
    ordertotalen t;
    regel_totaal(regel_nu, &t);
    EXPECT_EQ(t.regels, 0);
    EXPECT_EQ(t.stuks, 94 * 1000000LL);
    EXPECT_EQ(t.bruto, 94 * 1000000LL * 2000000000LL);
    EXPECT_EQ(t.netto, 93 * 1000000LL * 100);
    EXPECT_EQ(t.inkoop, 93 * 1000000LL * 108);
    ordertotaal = {};
    order_totaal_bij('+', t);
    order_totaal_bij('+', t);
    order_totaal_bij('-', t);
    EXPECT_EQ(ordertotaal.regels, 1);
    EXPECT_EQ(ordertotaal.bruto, t.bruto);
}

// ---- orddump

Uit dump(const std::string& rest) {
    return sh("orddump " + rest);
}

TEST_F(Orddump, leest_een_journaal_en_stoort_niet) {
    Order o = maak_order(3, {2});
    o.levering = "caf\x82"; // é
    for (Model& model : o.modellen)
        model.soort = 1;
    zet("JRN", bytes(o));
    ASSERT_TRUE(kies(0)); // the program holds both files
    Uit t = dump(pad("JRN"));
    EXPECT_EQ(t.status, 0) << t.tekst;
    EXPECT_TRUE(t.zegt("         0 O leverancier=12 jaar=2016 orderdatum=2016-02-0")) << t.tekst;
    EXPECT_TRUE(t.zegt("soort=1 tekst=\"caf\xC3\xA9\"")) << t.tekst;
    Uit j = dump("-j " + pad("WRK"));
    EXPECT_EQ(j.status, 0) << j.tekst;
    int64_t som = 0, records = 0;
    for (size_t b = 0; b < j.tekst.size(); b = j.tekst.find('\n', b) + 1, records++) {
        auto rec = nlohmann::json::parse(j.tekst.substr(b, j.tekst.find('\n', b) - b));
        if (rec["tag"] == "F")
            som += rec["aantal"].get<int>();
    }
    EXPECT_EQ(som, 5 + 302 + 5 + 303 + 6 + 303);
    EXPECT_TRUE(dump("-c " + pad("WRK")).zegt(std::to_string(records) + " records, good"));
    EXPECT_EQ(in_kind([] { return kies(0) ? 0 : 5; }), 5) << "the lock is still ours";
    // Half written in the eyes of a reader: in use, not wrong.
    ASSERT_EQ(ftruncate(werk->fd, SYSOMVANG(werk->fd) - 1), 0);
    EXPECT_EQ(dump("-c " + pad("WRK")).status, 4);
}

TEST_F(Orddump, vindt_wat_niet_kan) {
    const std::string o = bytes(Order{42500, "", "", {}}),
                      m = bytes(Order{42500, "", "", {{1, "", {}, 1}}}).substr(o.size());
    auto lijn = [&](const Regel& l) {
        return bytes(Order{42500, "", "", {{1, "", {l}, 1}}}).substr(o.size() + m.size());
    };
    const std::string d = lijn(Regel{1, "", {}, {}});
    const std::string s = lijn(Regel{1, "", {{5, 1, 1, "E"}}, {}}), goed = o + m + s;
    struct {
        std::string b;
        const char* zegt;
        const char* opties = "";
    } const rijen[] = {
        {goed, "1 lines"},
        {goed + "Q", "unknown tag, byte 51"},
        {goed.substr(0, goed.size() - 1), "ends inside this 'E'"},
        {o + s, "line without a model"},
        {o + m, "model without a line"},
        {goed + std::string(1, 'T') + std::string(61, '\1'), "wrong place"},
        {o + m + s.substr(0, 129), "size 5 has no prices"},
        {o + m + d + s.substr(129, 13), "size 5 has prices but is not"},
        {o + m + d + std::string(1, 'F') + std::string(8, '\1'), "quantity outside"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{0, 96, 1}}}}}), "size 96"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{0, 1, -1}}}}}), "quantity -1"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {{3, 1, 1}}}}}), "branch index 3", "-b 3"},
        {o + m + lijn(Regel{1, "", {}, {{1, 2, {}}, {0, 2, {}}}}), "same last date"},
        {goed, "of its five pieces", "-k work"},
        {bytes(Order{0, "", "", {}}), "order date 0 is no day"},
        {bytes(Order{65500, "", "", {}}), "order date 65500 is no day"},
        {std::string(o).replace(24, 1, "Q"), "season 2016Q does not exist"},
        {std::string(o).replace(24, 1, "W"), "season 2016W in a file of 2016Z"},
        {std::string(o).replace(1, 1, "\x0D"), "supplier 13 in a file of supplier 12"},
        {std::string(o).replace(9, 1, "\x01"), "description holds byte 01"},
        {o + m + lijn(Regel{1, "", {}, {{42500, 65500, {}}}}), "date 65500 of a delivery term"},
        {o + m + lijn(Regel{1, "", {}, {{42501, 42500, {}}}}), "ends before it begins"},
    };
    for (const auto& rij : rijen) {
        zet("JRN", rij.b);
        Uit u = dump(std::string("-c ") + rij.opties + " " + pad("JRN"));
        EXPECT_EQ(u.status, strstr(rij.zegt, "1 lines") ? 0 : 1) << rij.zegt << u.tekst;
        EXPECT_TRUE(u.zegt(rij.zegt)) << rij.zegt << "\n" << u.tekst;
    }
    EXPECT_EQ(dump("--version").status, 0);
    EXPECT_EQ(dump("--help").status, 0);
    EXPECT_EQ(dump("").status, 2);
    EXPECT_EQ(dump("-b x " + pad("JRN")).status, 2);
    EXPECT_EQ(dump("weg.JRN").status, 3);
    EXPECT_EQ(dump("/dev/null").status, 3);
}

} // namespace
} // namespace zg::test
